// Arithmetic on pixel formats: how wide a pixel is, how many bytes a row takes, how components lie.
//
// All of it follows from the format's row in format_table.h; a code without a row has width 0 and belongs to no class. All
// sums are done in 64 bits; a row size that does not fit is clamped to the 32-bit range.
#pragma once

#include <cstdint>

#include "frames/media/format_table.h"
#include "zchromakey/media_types.h"

namespace zck {

// Bits per pixel, 0 when unknown. NV12 counts 16 here and 12 in the table of bitmap descriptions: this figure feeds the
// packed row rule only, which NV12 never takes.
int32_t PixelBits(eZFCC fcc);

// One plane per component (or luma and joined chroma); a row is a row of the first plane, one byte a pixel.
bool IsPlanarFormat(eZFCC fcc);

// One plane. The list is closed: 16-bit RGB is in neither of the two classes.
bool IsPackedFormat(eZFCC fcc);

// The formats whose height carries the row order in its sign: RGB8 to RGB32 (16-bit RGB included), ARGB32 and r210.
bool IsRgbFormat(eZFCC fcc);

// The format as which this one reads where only the order of its bytes counts: HDYC is UYVY, RGB32 is ARGB32, any other
// itself.
eZFCC PlainFormat(eZFCC fcc);

// 4:2:2 in packed bytes, two pixels in four.
bool Is422Format(eZFCC fcc);

// v210 and r210.
bool IsTenBitFormat(eZFCC fcc);

// Pixels have four bytes, so that alpha can be written into them.
bool Is32BitFormat(eZFCC fcc);

// Pixels have an alpha byte.
bool HasAlpha(eZFCC fcc);

// Bytes of a row of `width` pixels, padding included.
int32_t RowBytes(eZFCC fcc, int32_t width);

// Pixels that fit into a row of `rowBytes`; 0 for an unknown format.
int32_t RowPixels(eZFCC fcc, int32_t rowBytes);

// The formats that a platform bitmap header can describe: the first `kPixelFormatRows` rows of the format table, in their
// fixed order.
inline constexpr int32_t kPixelFormatRows = 15;
const FormatRow *PixelFormatTable();

// The row of that code among them, or null.
const FormatRow *PixelFormatFind(eZFCC fcc);

}    // namespace zck
