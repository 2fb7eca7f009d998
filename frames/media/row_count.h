// How many rows a record's height stands for.
#pragma once

#include <cstdint>

namespace zck {

/// |height|, for all values: the sign only tells the order of the rows.
constexpr int64_t RowCount(int32_t height) { return height < 0 ? -int64_t{height} : height; }

}    // namespace zck
