#include "imaging/scale/filter.h"

#include <algorithm>

namespace zck {

int32_t Filter_8u(const uint8_t *src, int64_t srcStep, uint8_t *dst, int64_t dstStep, ROI size, int32_t channels,
                  const FilterKernel &kernel) {
    const int32_t pixel = channels;
    return ForRows(src, srcStep, dst, dstStep, size, [&](uint8_t *to, const uint8_t *from) {
        for (int64_t i = 0; i < int64_t{pixel} * size.width; ++i) {
            int32_t sum = 0;
            for (int32_t k = 0; k < kernel.size.width * kernel.size.height; ++k) {
                const int64_t down = k / kernel.size.width - kernel.anchor.height;
                const int64_t right = k % kernel.size.width - kernel.anchor.width;
                sum += kernel.weight[k] * from[i + down * srcStep + right * pixel];
            }
            to[i] = static_cast<uint8_t>(std::clamp(sum / kernel.divisor, 0, 255));
        }
    });
}

}    // namespace zck
