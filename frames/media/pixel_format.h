// Arithmetic on pixel formats: how wide a pixel is, how many bytes a row takes, how components lie.
//
// All sums are done in 64 bits; a row size that does not fit is clamped to the 32-bit range.
#pragma once

#include <cstdint>

#include "zchromakey/media_types.h"

namespace zck {

// Codes that are sized and named but have no public enumerator.
inline constexpr eZFCC kFccYvu9 = static_cast<eZFCC>(0x39555659);
inline constexpr eZFCC kFccIyu2 = static_cast<eZFCC>(0x32555949);
inline constexpr eZFCC kFccY422 = static_cast<eZFCC>(0x32323459);
inline constexpr eZFCC kFccY444 = static_cast<eZFCC>(0x34343459);
inline constexpr eZFCC kFccRgb1 = static_cast<eZFCC>(0xE436EB78);
inline constexpr eZFCC kFccRgb4 = static_cast<eZFCC>(0xE436EB79);
inline constexpr eZFCC kFccRgb565 = static_cast<eZFCC>(0xE436EB7B);
inline constexpr eZFCC kFccRgb555 = static_cast<eZFCC>(0xE436EB7C);
inline constexpr eZFCC kFccArgb1555 = static_cast<eZFCC>(0x297C55AF);
inline constexpr eZFCC kFccArgb4444 = static_cast<eZFCC>(0x6E6415E6);

// Bits per pixel, 0 when unknown. NV12 counts 16 here and 12 in the table of bitmap descriptions: this figure feeds the
// packed row rule only, which NV12 never takes.
int32_t PixelBits(eZFCC fcc);

// One plane per component (or luma and joined chroma); a row is a row of the first plane, one byte a pixel.
bool IsPlanarFormat(eZFCC fcc);

// One plane. The list is closed: 16-bit RGB is in neither of the two classes.
bool IsPackedFormat(eZFCC fcc);

// The formats whose height carries the row order in its sign: RGB8 to RGB32 (16-bit RGB included), ARGB32 and r210.
bool IsRgbFormat(eZFCC fcc);

// Bytes of a row of `width` pixels, padding included.
int32_t RowBytes(eZFCC fcc, int32_t width);

// Pixels that fit into a row of `rowBytes`; 0 for an unknown format.
int32_t RowPixels(eZFCC fcc, int32_t rowBytes);

// A format that a platform bitmap header can describe. Offsets and steps are bytes per component: Y, U, V, or red,
// green, blue.
struct PixelFormatRow {
    eZFCC fcc;
    int32_t nBits;
    int32_t nDivX;
    int32_t nDivY;
    int32_t nOffset[3];
    int32_t nStep[3];
    bool bPlanar;
    bool bCompressionTag;    // the code stands in the header's compression field
};

inline constexpr int32_t kPixelFormatRows = 15;

// The rows in their fixed order; `kPixelFormatRows` of them.
const PixelFormatRow *PixelFormatTable();

// The first row of that code, or null.
const PixelFormatRow *PixelFormatFind(eZFCC fcc);

}    // namespace zck
