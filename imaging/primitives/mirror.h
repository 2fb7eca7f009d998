// Mirrored copies, mirroring in place, and the order of bytes in a pixel.
#pragma once

#include "imaging/primitives/image.h"

namespace zck {

/// The axis: 0 reverses the rows, 1 the columns, 2 both. Another one: -5, and nothing is done.
enum MirrorAxis : int32_t { kMirrorRows = 0, kMirrorColumns = 1, kMirrorBoth = 2 };
inline constexpr int32_t kPrimitiveBadArgument = -5;

/// Not in place: source and target do not overlap.
int32_t Mirror_8u_C1R(const uint8_t *src, int64_t srcStep, uint8_t *dst, int64_t dstStep, ROI size, int32_t axis);
int32_t Mirror_16u_C1R(const uint8_t *src, int64_t srcStep, uint8_t *dst, int64_t dstStep, ROI size, int32_t axis);
int32_t Mirror_8u_C3R(const uint8_t *src, int64_t srcStep, uint8_t *dst, int64_t dstStep, ROI size, int32_t axis);
int32_t Mirror_8u_C4R(const uint8_t *src, int64_t srcStep, uint8_t *dst, int64_t dstStep, ROI size, int32_t axis);

/// In place.
int32_t Mirror_16u_C1IR(uint8_t *dst, int64_t dstStep, ROI size, int32_t axis);
int32_t Mirror_8u_C3IR(uint8_t *dst, int64_t dstStep, ROI size, int32_t axis);
int32_t Mirror_8u_C4IR(uint8_t *dst, int64_t dstStep, ROI size, int32_t axis);

/// Byte j of each pixel becomes its byte order[j], in place. A position above 3: -5.
int32_t SwapChannels_8u_C4IR(uint8_t *dst, int64_t dstStep, ROI size, const int32_t *order);

}    // namespace zck
