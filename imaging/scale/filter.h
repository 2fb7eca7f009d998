// Convolution with a small integer kernel.
#pragma once

#include <cstdint>

#include "imaging/primitives/image.h"

namespace zck {

struct FilterKernel {
    int32_t weight[9];    ///< row by row, `size.width` each
    ROI size;
    ROI anchor;    ///< the kernel's element over the pixel that is made
    int32_t divisor;
};

/// `Filter_8u_C1R`, `_C3R`, `_C4R` by `channels`: each byte of the region becomes the sum over its neighbours of the same
/// channel, divided (toward zero) and saturated. The neighbours of the region's edge lie outside of it. `kPrimitiveBadSize` for
/// a region below 1, and nothing is done. Source and target do not overlap.
int32_t Filter_8u(const uint8_t *src, int64_t srcStep, uint8_t *dst, int64_t dstStep, ROI size, int32_t channels,
                  const FilterKernel &kernel);

}    // namespace zck
