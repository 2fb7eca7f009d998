// Where the pixels of an image lie: its planes, from the top of the picture down.
#pragma once

#include <cstdint>

#include "frames/media/format_table.h"
#include "imaging/colour/image_desc.h"
#include "zchromakey/media_types.h"

namespace zck {

/// The class of a format as its row in the format table says; `None` without a row. HDYC reads as UYVY here, RGB32 as ARGB32.
PixelClass PixelClassOf(eZFCC fcc);

/// Bytes from pixel to pixel in the first plane.
int64_t PixelBytes(PixelClass kind);
inline bool Is420(PixelClass kind) { return kind == PixelClass::Planes420 || kind == PixelClass::Nv12; }

/// Planes are Y, Cb, Cr, whatever their order in memory: I420 stores Cb first, YV12 Cr. NV12 has the pairs Cb Cr in plane 1.
/// Both chroma planes are half as wide and half as high, cut down: the last column and row of an odd picture have none of
/// their own, as a frame's buffer has no room for them.
struct ImageLayout {
    PixelClass kind = PixelClass::None;
    int32_t width = 0;
    int32_t rows = 0;
    int32_t chromaRows = 0;    ///< 0 without chroma planes
    int64_t offset[3] = {};    ///< of the picture's first row, in bytes from the start of the memory
    int64_t step[3] = {};      ///< to the picture's next row; negative for bottom-up images
    int64_t bytes = 0;         ///< that the pixels need from the start of the memory
};

/// The layout of an image whose rows are `rowBytes` apart (in the first plane). False without size, for rows that are shorter
/// than their pixels, and for a format of no class.
bool ImageLayoutMake(eZFCC fcc, int32_t width, int32_t height, int64_t rowBytes, ImageLayout *layout);

/// Bytes from row to row as a view tells them.
int64_t RowBytesOf(const ImgDesc &desc);

}    // namespace zck
