// The 3 by 3 filters over the interior of a whole plane: all but its one-pixel border, which is read and never written.
#pragma once

#include <cstddef>
#include <cstdint>

namespace zck {

/// Answer of a filter for a plane without interior (a side below 3); nothing is touched then. Callers make it a failure by
/// setting the top bit.
inline constexpr int32_t kFilterSizeError = -6;

/// Bytes of scratch that an in-place filter needs for a plane of this width.
constexpr size_t FilterScratchBytes(int32_t width) { return width > 0 ? 2 * static_cast<size_t>(width) : 0; }

/// In place, as if the whole input were read first; `scratch` has `FilterScratchBytes(width)` bytes. `stride` is the step in
/// bytes from one row to the next and may be negative. 0 or `kFilterSizeError`.
int32_t ErodePlane(uint8_t *plane, ptrdiff_t stride, int32_t width, int32_t height, uint8_t *scratch);
int32_t DilatePlane(uint8_t *plane, ptrdiff_t stride, int32_t width, int32_t height, uint8_t *scratch);

/// From one plane into another of the same size, which must not overlap. 0 or `kFilterSizeError`.
int32_t BoxPlane(uint8_t *dst, ptrdiff_t dstStride, const uint8_t *src, ptrdiff_t srcStride, int32_t width, int32_t height);
int32_t GaussPlane(uint8_t *dst, ptrdiff_t dstStride, const uint8_t *src, ptrdiff_t srcStride, int32_t width, int32_t height);

}    // namespace zck
