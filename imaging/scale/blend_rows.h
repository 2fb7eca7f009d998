// One target row of `Scale_Dyn`.
#pragma once

#include <cstdint>

#include "imaging/scale/tap_table.h"

namespace zck {

/// The rows of an image, by address.
struct TapSource {
    const uint8_t *first;    ///< row 0
    int64_t step;            ///< to the next row
    const uint8_t *end;      ///< behind the last byte of the row with the highest address
};

/// Mixes the rows of a list into `width` bytes. One tap or none is a copy. Blocks of 16 bytes and the bytes behind them are
/// rounded in different ways: from four taps on the blocks keep white at 255; all else brings it to 254.
///
/// With three taps, byte j behind the blocks is made of byte j of the first row and byte 2 j of the second row, which counts
/// for the third row, too. Where this leaves the row it takes what follows in memory, and 0 behind `end`.
void BlendRows(uint8_t *dst, const TapSource &src, const TapRow &taps, int64_t width);

}    // namespace zck
