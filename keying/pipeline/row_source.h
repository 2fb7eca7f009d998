// Where the rows of a frame come from when they are not yet in the buffer that is keyed.
#pragma once

#include <cstdint>

#include "zchromakey/com.h"

namespace zck {

/// Gives the rows of the source picture, converted, one at a time and in any order: each row exactly once, just before it is
/// keyed, so that it is still in the cache. `fetch` runs on several threads at once and must not throw.
struct RowSource {
    void *context;
    /// Writes stored row `row` of the picture to `dst`. A failure ends the whole call with its status.
    HRESULT (*fetch)(void *context, int32_t row, uint8_t *dst);
};

}    // namespace zck
