// The one table of pixel formats: all that any room knows about a format by its code stands here, a row per code.
//
// A new format is a row of this table, its kernels and their entries in the tables that are indexed by `PixelClass` and
// `RouteClass`. Whoever asks for a code without a row gets no row, and answers its failure.
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

/// The order of a picture's bytes, for all work that goes by pixels. Formats of one class have the same bytes, and are told
/// apart by their matrix or by what their fourth byte means. `None`: there is no such work.
enum class PixelClass : int32_t { Yvyu, Yuy2, Uyvy, Rgb24, Rgb32, Planes420, Nv12, None };
inline constexpr int32_t kPixelClasses = static_cast<int32_t>(PixelClass::None);

/// Rows and columns of the table of direct routes (imaging/colour/route.h). `None`: there is no direct route.
enum class RouteClass : int32_t { Rgb32, Rgb24, Uyvy, Hdyc, Yuy2, V210, None };
inline constexpr int32_t kRouteClasses = static_cast<int32_t>(RouteClass::None);

/// Pixels that share a chroma sample or a word, and the bytes of all of them.
struct PixelGroup {
    int32_t pixels;
    int32_t bytes;    ///< 0: no whole number
};

struct FormatRow {
    eZFCC fcc;
    eZFCC fccPlain;         ///< the format that this one reads as where only the order of bytes counts; itself for most
    int32_t nPixelBits;     ///< for the rule of packed rows; 0: the format has no size
    bool bRgb;              ///< the sign of the height carries the row order
    bool bPlanar;           ///< a plane for each component, or luma and joined chroma
    bool bPacked;           ///< one plane; a closed list: some formats are neither
    PixelGroup group;       ///< in the first plane
    PixelGroup rowGroup;    ///< rows are whole groups of this size; {0, 0}: padded to 4 bytes, or planes without padding
    bool bSure;             ///< a conversion into the format writes every whole group of a row
    bool bAlpha;            ///< the fourth byte of a pixel is its alpha
    bool bCrFirst;          ///< Cr comes before Cb in memory
    PixelClass pixels;
    RouteClass route;

    // How a platform bitmap header describes the format. Offsets and steps are bytes per component: Y, U, V, or red, green,
    // blue.
    int32_t nBits;    ///< 0: no header describes it
    int32_t nDivX;
    int32_t nDivY;
    int32_t nOffset[3];
    int32_t nStep[3];
    bool bCompressionTag;    ///< the code stands in the header's compression field

    constexpr bool Is422() const { return bPacked && !bRgb && group.pixels == 2; }
    constexpr bool IsTenBit() const { return rowGroup.pixels != 0; }
    /// Pixels of four bytes, so that an alpha can be written into them.
    constexpr bool Is32() const { return pixels == PixelClass::Rgb32; }
    /// The first byte of a packed YUV group is luma.
    constexpr bool LumaFirst() const { return Is422() && nOffset[0] == 0; }

    /// Bytes of a row that every conversion into the format writes. An odd last pixel of a 4:2:2 row is not sure to be written.
    constexpr int64_t SureRowBytes(int64_t width) const { return bSure ? width / group.pixels * group.bytes : 0; }
    /// Bytes of a row's pixels in the first plane, in whole groups.
    constexpr int64_t GroupRowBytes(int64_t width) const {
        if (group.bytes == 0) return (width * nPixelBits + 7) / 8;
        return (width + group.pixels - 1) / group.pixels * group.bytes;
    }
    /// Bytes up to the end of a row's last pixel in the first plane. An odd last pixel of 4:2:2 has luma and one chroma byte.
    constexpr int64_t PixelRowBytes(int64_t width) const {
        if (bPlanar) return width;
        return Is422() ? 2 * width : GroupRowBytes(width);
    }
};

namespace format_table {

inline constexpr bool x = true;
inline constexpr bool o = false;
using P = PixelClass;
using R = RouteClass;

// The rows that a bitmap header can describe come first; their order is fixed, as callers count them.
//
// NV12 has 16 bits for the rule of packed rows, which it never takes, and 12 in a header.
// clang-format off
inline constexpr FormatRow kRows[] = {
// code           reads as      bits rgb planar packed group   row group sure alpha Cr1st pixels      route     header: bits, divisors, offsets, steps, tag
 {eZFCC_YUY2,     eZFCC_YUY2,    16, o, o, x, {2, 4},  {0, 0},    x, o, o, P::Yuy2,      R::Yuy2,  16, 2, 1, {0, 1, 3}, {2, 4, 4}, x},
 {eZFCC_UYVY,     eZFCC_UYVY,    16, o, o, x, {2, 4},  {0, 0},    x, o, o, P::Uyvy,      R::Uyvy,  16, 2, 1, {1, 0, 2}, {2, 4, 4}, x},
 {eZFCC_YV12,     eZFCC_YV12,    12, o, x, o, {1, 1},  {0, 0},    o, o, x, P::Planes420, R::None,  12, 2, 2, {0, 0, 0}, {1, 1, 1}, x},
 {eZFCC_YVYU,     eZFCC_YVYU,    16, o, o, x, {2, 4},  {0, 0},    x, o, x, P::Yvyu,      R::None,  16, 2, 1, {0, 3, 1}, {2, 4, 4}, x},
 {eZFCC_I420,     eZFCC_I420,    12, o, x, o, {1, 1},  {0, 0},    o, o, o, P::Planes420, R::None,  12, 2, 2, {0, 0, 0}, {1, 1, 1}, x},
 {kFccIyu2,       kFccIyu2,      24, o, o, o, {1, 3},  {0, 0},    o, o, o, P::None,      R::None,  24, 1, 1, {2, 1, 0}, {3, 3, 3}, x},
 {eZFCC_RGB32,    eZFCC_ARGB32,  32, x, o, x, {1, 4},  {0, 0},    x, o, o, P::Rgb32,     R::Rgb32, 32, 1, 1, {2, 1, 0}, {4, 4, 4}, o},
 {eZFCC_ARGB32,   eZFCC_ARGB32,  32, x, o, x, {1, 4},  {0, 0},    x, x, o, P::Rgb32,     R::Rgb32, 32, 1, 1, {2, 1, 0}, {4, 4, 4}, o},
 {eZFCC_RGB24,    eZFCC_RGB24,   24, x, o, x, {1, 3},  {0, 0},    x, o, o, P::Rgb24,     R::Rgb24, 24, 1, 1, {2, 1, 0}, {3, 3, 3}, o},
 {kFccRgb565,     kFccRgb565,    16, x, o, o, {1, 2},  {0, 0},    o, o, o, P::None,      R::None,  16, 1, 1, {1, 0, 0}, {2, 2, 2}, o},
 {kFccRgb555,     kFccRgb555,    16, x, o, o, {1, 2},  {0, 0},    o, o, o, P::None,      R::None,  16, 1, 1, {1, 0, 0}, {2, 2, 2}, o},
 {eZFCC_HDYC,     eZFCC_UYVY,    16, o, o, x, {2, 4},  {0, 0},    x, o, o, P::Uyvy,      R::Hdyc,  16, 2, 1, {1, 0, 2}, {2, 4, 4}, x},
 {eZFCC_v210,     eZFCC_v210,    20, o, o, x, {6, 16}, {48, 128}, x, o, o, P::None,      R::V210,  20, 2, 1, {1, 0, 2}, {2, 4, 4}, x},
 {eZFCC_r210,     eZFCC_r210,    32, x, o, x, {1, 4},  {64, 256}, o, o, o, P::None,      R::None,  32, 1, 1, {0, 1, 2}, {4, 4, 4}, o},
 {eZFCC_NV12,     eZFCC_NV12,    16, o, x, o, {1, 1},  {0, 0},    o, o, o, P::Nv12,      R::None,  12, 2, 2, {0, 0, 0}, {1, 1, 1}, x},
 {kFccYvu9,       kFccYvu9,       9, o, o, o, {1, 0},  {0, 0},    o, o, x, P::None,      R::None,   0, 1, 1, {0, 0, 0}, {0, 0, 0}, o},
 {kFccY422,       kFccY422,      16, o, x, o, {1, 1},  {0, 0},    o, o, o, P::None,      R::None,   0, 1, 1, {0, 0, 0}, {0, 0, 0}, o},
 {kFccY444,       kFccY444,      24, o, x, o, {1, 1},  {0, 0},    o, o, o, P::None,      R::None,   0, 1, 1, {0, 0, 0}, {0, 0, 0}, o},
 {eZFCC_RGB8,     eZFCC_RGB8,     8, x, o, x, {1, 1},  {0, 0},    o, o, o, P::None,      R::None,   0, 1, 1, {0, 0, 0}, {0, 0, 0}, o},
 // Named, and nothing else: they have no size.
 {kFccRgb1,       kFccRgb1,       0, o, o, o, {1, 0},  {0, 0},    o, o, o, P::None,      R::None,   0, 1, 1, {0, 0, 0}, {0, 0, 0}, o},
 {kFccRgb4,       kFccRgb4,       0, o, o, o, {1, 0},  {0, 0},    o, o, o, P::None,      R::None,   0, 1, 1, {0, 0, 0}, {0, 0, 0}, o},
 {kFccArgb1555,   kFccArgb1555,   0, o, o, o, {1, 0},  {0, 0},    o, o, o, P::None,      R::None,   0, 1, 1, {0, 0, 0}, {0, 0, 0}, o},
 {kFccArgb4444,   kFccArgb4444,   0, o, o, o, {1, 0},  {0, 0},    o, o, o, P::None,      R::None,   0, 1, 1, {0, 0, 0}, {0, 0, 0}, o},
 {eZFCC_GPU_YUV422, eZFCC_GPU_YUV422, 0, o, o, o, {1, 0}, {0, 0}, o, o, o, P::None,      R::None,   0, 1, 1, {0, 0, 0}, {0, 0, 0}, o},
 {eZFCC_GPU_RGB444, eZFCC_GPU_RGB444, 0, o, o, o, {1, 0}, {0, 0}, o, o, o, P::None,      R::None,   0, 1, 1, {0, 0, 0}, {0, 0, 0}, o},
};
// clang-format on

}    // namespace format_table

inline constexpr int32_t kFormatRows = sizeof(format_table::kRows) / sizeof(format_table::kRows[0]);
using FormatTableArray = FormatRow[kFormatRows];
/// All rows, for whoever walks the table.
inline constexpr const FormatTableArray &kFormatTable = format_table::kRows;

/// The row of a code, or null for a code of which nothing is known.
constexpr const FormatRow *FormatFind(eZFCC fcc) {
    for (const FormatRow &row : kFormatTable) {
        if (row.fcc == fcc) return &row;
    }
    return nullptr;
}

}    // namespace zck
