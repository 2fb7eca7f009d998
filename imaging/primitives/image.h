// Types that all image primitives share.
//
// An image argument is a pointer to the first pixel of the region and a signed step in bytes to the next row. A primitive
// answers 0 when it is done and a negative value when it did nothing. No primitive allocates or keeps anything; they may run
// on any thread at the same time on images that do not overlap.
#pragma once

#include <cstdint>

namespace zck {

/// Size of a region in pixels.
struct ROI {
    int32_t width;
    int32_t height;
};

inline constexpr int32_t kPrimitiveOk = 0;
inline constexpr int32_t kPrimitiveBadSize = -6;           ///< a width or height below 1
inline constexpr int32_t kPrimitiveNull = -8;              ///< a pointer is missing
inline constexpr int32_t kPrimitiveNotProvided = -9999;    ///< there is no such conversion

inline int32_t PrimitiveCheck(const void *a, const void *b, ROI size) {
    if (a == nullptr || b == nullptr) return kPrimitiveNull;
    return size.width < 1 || size.height < 1 ? kPrimitiveBadSize : kPrimitiveOk;
}

/// Runs `row(dst, src)` for each row.
template <class Row>
int32_t ForRows(const uint8_t *src, int64_t srcStep, uint8_t *dst, int64_t dstStep, ROI size, Row &&row) {
    const int32_t status = PrimitiveCheck(src, dst, size);
    for (int64_t y = 0; status == kPrimitiveOk && y < size.height; ++y) row(dst + y * dstStep, src + y * srcStep);
    return status;
}

/// Runs `row(dst)` for each row.
template <class Row>
int32_t ForRows(uint8_t *dst, int64_t dstStep, ROI size, Row &&row) {
    const int32_t status = PrimitiveCheck(dst, dst, size);
    for (int64_t y = 0; status == kPrimitiveOk && y < size.height; ++y) row(dst + y * dstStep);
    return status;
}

}    // namespace zck
