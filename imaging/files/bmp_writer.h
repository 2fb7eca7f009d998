// Bitmap files of this library's own writing.
#pragma once

#include "platform/text.h"
#include "zchromakey/media_types.h"

namespace zck {

/// Writes a picture as a bitmap file, replacing an old one. RGB24, RGB32 and ARGB32 go as they stand; YUY2, UYVY and YVYU
/// become a bottom-up RGB32 picture, by coefficients of their own that exchange the chroma of the outer channels. Width and
/// height go into the header as they are given.
///
/// `rowPixels` are the pixels of a row in memory, 0 for `width`; an RGB picture has |`height`| rows of `RowBytes` from `pixels`
/// on. `E_INVALIDARG` for a missing argument, a format without a bitmap form, a size that is no multiple of the format's
/// groups, and a picture of more than 2 GB; the system's status for the file.
HRESULT WriteBmp(TextView name, eZFCC fcc, int32_t width, int32_t height, int32_t rowPixels, const uint8_t *pixels);

}    // namespace zck
