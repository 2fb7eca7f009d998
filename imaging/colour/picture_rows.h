// Rows of a picture from one format to another, 4:2:0 included. BT.601 throughout, whatever the formats: HDYC is UYVY here.
#pragma once

#include <cstdint>

#include "imaging/colour/image_layout.h"

namespace zck {

/// A row to read: pixels, or luma in `p` and its chroma samples in `cb` and `cr` (NV12: all in `cb`).
struct RowFrom {
    const uint8_t *p;
    const uint8_t *cb;
    const uint8_t *cr;
};

/// Two rows of 4:2:0 to write, with their chroma. One row alone is given as both.
struct RowsTo {
    uint8_t *y0;
    uint8_t *y1;
    uint8_t *cb;
    uint8_t *cr;    ///< null in NV12: pairs in `cb`
};

/// A row into packed pixels. Null if there is no such row.
///
/// YVYU to 4-byte pixels reads the bytes as YUY2, so that Cb and Cr come out exchanged: keys of hosts with YVYU cameras are
/// made on such pictures. YVYU to RGB24 has the right colours.
using PackedRow = void (*)(uint8_t *dst, const RowFrom &src, int32_t width);
PackedRow PackedRowFind(PixelClass from, PixelClass to);

/// Two rows into 4:2:0, in Y, Cb, Cr. From 4:2:2 the chroma is the mean of both rows, from RGB that of four pixels. Null if
/// the source is 4:2:0 itself.
using PlanesRows = void (*)(const RowsTo &dst, const RowFrom &a, const RowFrom &b, int32_t width);
PlanesRows PlanesRowsFind(PixelClass from, PixelClass to);

/// A part of two pictures, of one size, inside both.
struct PicturePart {
    int32_t srcLeft;
    int32_t srcTop;
    int32_t dstLeft;
    int32_t dstTop;
    int32_t width;
    int32_t rows;
};

/// Converts a part; the memories hold all bytes of their layouts. Columns are even unless both formats are RGB. `bSetAlpha`:
/// the fourth byte of 4-byte pixels becomes 255 where they are copied.
///
/// The last luma row of an odd 4:2:0 picture takes the chroma of the rows above it when it is read, and has no chroma of its
/// own to write. A picture of one row has none at all: it reads as grey.
void PictureConvert(const uint8_t *src, const ImageLayout &from, uint8_t *dst, const ImageLayout &to, const PicturePart &part,
                    bool bSetAlpha);

/// Where the row `y` of a picture is read from column `left` on.
RowFrom PictureRow(const uint8_t *image, const ImageLayout &layout, int32_t left, int32_t y, int32_t chromaRow);

}    // namespace zck
