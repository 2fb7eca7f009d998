#include "keying/kernels/filter_plane.h"

#include <cstring>
#include <utility>

#include "keying/kernels/kernels.h"

namespace zck {
namespace {

using Filter = KeyingKernels::Filter3x3;

int32_t InPlace(Filter filter, uint8_t *plane, ptrdiff_t stride, int32_t width, int32_t height, uint8_t *scratch) {
    if (width < 3 || height < 3) return kFilterSizeError;
    const size_t bytes = static_cast<size_t>(width);
    uint8_t *above = scratch;
    uint8_t *middle = scratch + bytes;
    std::memcpy(above, plane, bytes);
    for (int32_t y = 1; y < height - 1; ++y) {
        uint8_t *row = plane + y * stride;
        std::memcpy(middle, row, bytes);
        filter(row + 1, above + 1, middle + 1, row + stride + 1, width - 2);
        std::swap(above, middle);
    }
    return 0;
}

int32_t Across(Filter filter, uint8_t *dst, ptrdiff_t dstStride, const uint8_t *src, ptrdiff_t srcStride, int32_t width,
               int32_t height) {
    if (width < 3 || height < 3) return kFilterSizeError;
    for (int32_t y = 1; y < height - 1; ++y) {
        const uint8_t *row = src + y * srcStride + 1;
        filter(dst + y * dstStride + 1, row - srcStride, row, row + srcStride, width - 2);
    }
    return 0;
}

}    // namespace

int32_t ErodePlane(uint8_t *plane, ptrdiff_t stride, int32_t width, int32_t height, uint8_t *scratch) {
    return InPlace(KeyingKernelsGet().erode, plane, stride, width, height, scratch);
}

int32_t DilatePlane(uint8_t *plane, ptrdiff_t stride, int32_t width, int32_t height, uint8_t *scratch) {
    return InPlace(KeyingKernelsGet().dilate, plane, stride, width, height, scratch);
}

int32_t BoxPlane(uint8_t *dst, ptrdiff_t dstStride, const uint8_t *src, ptrdiff_t srcStride, int32_t width, int32_t height) {
    return Across(KeyingKernelsGet().box, dst, dstStride, src, srcStride, width, height);
}

int32_t GaussPlane(uint8_t *dst, ptrdiff_t dstStride, const uint8_t *src, ptrdiff_t srcStride, int32_t width, int32_t height) {
    return Across(KeyingKernelsGet().gauss, dst, dstStride, src, srcStride, width, height);
}

}    // namespace zck
