// In which pictures of a clip the screen is looked for.
#pragma once

#include <cstdint>
#include <vector>

namespace zkey {

/// From a pipe: so many as come first, held back until the key is made.
inline constexpr int64_t kFirstPictures = 4;

/// From a clip of `count` pictures, whose light may drift: the numbers of some all over it, rising, without the first one.
std::vector<int64_t> SpreadPictures(int64_t count);

}    // namespace zkey
