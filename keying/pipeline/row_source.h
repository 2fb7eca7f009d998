// Where the rows of a frame come from when they are not yet in the buffer that is keyed.
#pragma once

#include <cstdint>

#include "zchromakey/com.h"

namespace zck {

/// Gives the rows of the source picture, converted, one at a time and in any order, just before they are keyed, so that they
/// are still in the cache. The functions run on several threads at once and must not throw. `row` counts stored rows of
/// the buffer that is keyed.
struct RowSource {
    void *context;
    /// Writes row `row` of the picture to `dst`. Each row is asked for exactly once. A failure ends the whole call with its
    /// status.
    HRESULT (*fetch)(void *context, int32_t row, uint8_t *dst);
    /// Or null. For a source that has the buffer's own format in memory: where row `row` stands there, with as many bytes as
    /// the buffer's row has. Rows are then read where they stand, as often as needed until the call returns, and each row of
    /// the buffer is written once; `fetch` is not called and may be null.
    const uint8_t *(*view)(void *context, int32_t row) = nullptr;
};

}    // namespace zck
