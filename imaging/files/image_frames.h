// The pictures of an image file.
#pragma once

#include <list>

#include "frames/memory/blob_holder.h"
#include "platform/bitmap.h"
#include "platform/text.h"
#include "zchromakey/media_types.h"

namespace zck {

/// One picture. Rows stand one behind the other, the bottom row first; in one of a .bmp file with a negative height the top
/// row.
struct ImageFrame {
    CBLOBHolder<CCoTaskAlloc> pixels;
    eZFCC fccType = eZFCC_Default;    ///< ARGB32, or RGB24 of a bitmap
    int32_t nWidth = 0;
    int32_t nHeight = 0;
    int32_t nRowPixels = 0;
    int64_t rtDuration = 0;    ///< in units of 100 ns
    int64_t rtStart = 0;       ///< sum of the durations before; pictures without one count 40 ms there
};
using ImageFrames = std::list<ImageFrame>;

/// Reads the pictures of a file, or only the first, or the picture of a bitmap, if one is given. A .bmp file of 32 bits comes
/// as it stands, all else by the system's codecs, whole pictures with colour multiplied by alpha unless `bKeepAlpha` is set.
/// The file has to be there in any case.
///
/// 0x80070002 when it is not, `E_INVALIDARG` for a file that is no image, `E_FAIL` for an image of which no picture can be
/// read, 0x80040248 for a bitmap of other than 24 or 32 bits. `E_OUTOFMEMORY` also for pictures of more than 32767 pixels a
/// side, pictures and lists of 2 GB and lists of more than 4096, which is asked before anything is decoded.
HRESULT LoadImageFrames(TextView name, HBITMAP bitmap, bool bKeepAlpha, bool bFirstOnly, ImageFrames &frames) noexcept;

}    // namespace zck
