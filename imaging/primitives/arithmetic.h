// Arithmetic on 8-bit images. Exact results are divided by 2 to the n, rounded to the nearest with ties to even, and
// saturated to 0..255.
#pragma once

#include "imaging/primitives/image.h"

namespace zck {

/// dst = dst * value / 2^n
int32_t MulC_8u_C1IRSfs(uint8_t value, uint8_t *dst, int64_t dstStep, ROI size, int32_t n);
/// dst = src * value / 2^n
int32_t MulC_8u_C1RSfs(const uint8_t *src, int64_t srcStep, uint8_t value, uint8_t *dst, int64_t dstStep, ROI size, int32_t n);
/// Every byte by its channel's value.
int32_t MulC_8u_C4RSfs(const uint8_t *src, int64_t srcStep, const uint8_t *value4, uint8_t *dst, int64_t dstStep, ROI size,
                       int32_t n);
/// dst = dst * src / 2^n
int32_t Mul_8u_C1IRSfs(const uint8_t *src, int64_t srcStep, uint8_t *dst, int64_t dstStep, ROI size, int32_t n);
/// dst = src1 * src2 / 2^n
int32_t Mul_8u_C1RSfs(const uint8_t *src1, int64_t step1, const uint8_t *src2, int64_t step2, uint8_t *dst, int64_t dstStep,
                      ROI size, int32_t n);
/// dst = dst + src
int32_t Add_8u_C1IRSfs(const uint8_t *src, int64_t srcStep, uint8_t *dst, int64_t dstStep, ROI size, int32_t n);
int32_t Add_8u_C3IRSfs(const uint8_t *src, int64_t srcStep, uint8_t *dst, int64_t dstStep, ROI size, int32_t n);
int32_t Add_8u_C4IRSfs(const uint8_t *src, int64_t srcStep, uint8_t *dst, int64_t dstStep, ROI size, int32_t n);
/// A pixel value added to every pixel.
int32_t AddC_8u_C1IRSfs(uint8_t value, uint8_t *dst, int64_t dstStep, ROI size, int32_t n);
int32_t AddC_8u_C3IRSfs(const uint8_t *value3, uint8_t *dst, int64_t dstStep, ROI size, int32_t n);
int32_t AddC_8u_C4IRSfs(const uint8_t *value4, uint8_t *dst, int64_t dstStep, ROI size, int32_t n);

/// The only kind of composition: over, both images multiplied by their alpha.
inline constexpr int32_t kAlphaOverPremultiplied = 6;
/// src1 over src2, alpha included. Another type: -9999.
int32_t AlphaComp_8u_AC4R(const uint8_t *src1, int64_t step1, const uint8_t *src2, int64_t step2, uint8_t *dst, int64_t dstStep,
                          ROI size, int32_t type);

}    // namespace zck
