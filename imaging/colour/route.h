// How one row of one format becomes a row of another.
#pragma once

#include <cstdint>

#include "zchromakey/media_types.h"

namespace zck {

/// One row to convert, with the room behind both starts: a row may reach further than its pixels (see below), and then the
/// ends of the memories stop it.
struct RowJob {
    const uint8_t *src;
    const uint8_t *srcEnd;
    uint8_t *dst;
    uint8_t *dstEnd;
    int32_t width;    ///< pixels
};

/// Converts a row. The reach of most rows is their pixels; odd widths of 4:2:2 read and write whole groups but for the second
/// luma byte. The others:
///
/// - BT.709 to 4-byte pixels takes rows as blocks of 4 pixels and (width AND 3) more pairs. So widths that are no multiple of
///   4 write up to 3 pixels past the row. A pair that is not wholly inside the source is not done.
/// - HDYC to RGB24 is that same routine: 4 bytes a pixel.
/// - The BT.709 encoder turns what is left behind the last block of 4 into one group, from the first left pixel and the one
///   behind it in memory (itself at the end of the memory). With 3 left the last pixel has no output.
/// - To v210, each started block of 6 pixels reads 12 bytes; those past the end count as 0.
/// - From v210, the last pixel of a width that leaves an odd rest by 6 is not written.
using RowRoutine = void (*)(const RowJob &job);

struct ConvertRoute {
    /// There is no default: a table in which a new class has no entry does not compile.
    constexpr ConvertRoute(RowRoutine row, int32_t alphaArg) : routine(row), nAlphaArg(alphaArg) {}

    RowRoutine routine;    ///< null: not provided
    int32_t nAlphaArg;     ///< -1: the routine is told the alpha, always 255; 1: it is not
};

/// The route between two formats, or null if one of them has no class. The lookup never fails for RGB32, ARGB32, RGB24,
/// UYVY, HDYC, YUY2 and v210; RGB to v210 has a route without routine.
const ConvertRoute *ConvertRouteFind(eZFCC from, eZFCC to);

/// The bytes that a row of `width` pixels may write from its start.
int64_t ConvertRouteReach(eZFCC from, eZFCC to, int32_t width);

}    // namespace zck
