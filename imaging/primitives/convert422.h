// Conversions between RGB and interleaved 4:2:2, and between the orders of 4:2:2. `YCbCr422` is YUY2, `CbYCr422` UYVY,
// `YCrCb422` YVYU, `BGR` the order of RGB24 and RGB32 in memory. The matrix is BT.601, video range; bytes and odd widths as
// in row_kernels.h.
#pragma once

#include "imaging/primitives/image.h"

namespace zck {

int32_t BGRToCbYCr422_8u_AC4C2R(const uint8_t *src, int64_t srcStep, uint8_t *dst, int64_t dstStep, ROI size);
int32_t BGRToYCbCr422_8u_AC4C2R(const uint8_t *src, int64_t srcStep, uint8_t *dst, int64_t dstStep, ROI size);
int32_t BGRToYCbCr422_8u_C3C2R(const uint8_t *src, int64_t srcStep, uint8_t *dst, int64_t dstStep, ROI size);
int32_t CbYCr422ToBGR_8u_C2C4R(const uint8_t *src, int64_t srcStep, uint8_t *dst, int64_t dstStep, ROI size, uint8_t alpha);
int32_t YCbCr422ToBGR_8u_C2C4R(const uint8_t *src, int64_t srcStep, uint8_t *dst, int64_t dstStep, ROI size, uint8_t alpha);
int32_t YCbCr422ToBGR_8u_C2C3R(const uint8_t *src, int64_t srcStep, uint8_t *dst, int64_t dstStep, ROI size);
int32_t CbYCr422ToYCbCr422_8u_C2R(const uint8_t *src, int64_t srcStep, uint8_t *dst, int64_t dstStep, ROI size);
int32_t YCbCr422ToCbYCr422_8u_C2R(const uint8_t *src, int64_t srcStep, uint8_t *dst, int64_t dstStep, ROI size);
/// Also from YVYU to YUY2.
int32_t YCbCr422ToYCrCb422_8u_C2R(const uint8_t *src, int64_t srcStep, uint8_t *dst, int64_t dstStep, ROI size);

/// Rows of the two that go by way of 4-byte pixels, a piece at a time through a small scratch.
void RowBgrToYuy2(uint8_t *dst, const uint8_t *src, int32_t width);
void RowBgrToUyvy(uint8_t *dst, const uint8_t *src, int32_t width);
void RowYuy2ToBgr(uint8_t *dst, const uint8_t *src, int32_t width);
void RowUyvyToBgr(uint8_t *dst, const uint8_t *src, int32_t width);

}    // namespace zck
