#include "hosts/zkey/screen_samples.h"

namespace zkey {

std::vector<int64_t> SpreadPictures(int64_t count) {
    constexpr int64_t kMost = 5;
    std::vector<int64_t> out;
    for (int64_t i = 1; i <= kMost; ++i) {
        // Not quite to the last picture: how many there are is an estimate in some files.
        const int64_t at = (count - 1) * i / kMost - (i == kMost ? count / 50 : 0);
        if (at > (out.empty() ? 0 : out.back())) out.push_back(at);
    }
    return out;
}

}    // namespace zkey
