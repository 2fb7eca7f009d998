#include "imaging/primitives/arithmetic.h"

#include "imaging/primitives/row_kernels.h"

namespace zck {
namespace {

int32_t AddPixels(const uint8_t *src, int64_t srcStep, uint8_t *dst, int64_t dstStep, ROI size, int64_t bytes, int32_t n) {
    const PrimitiveKernels &k = PrimitiveKernelsGet();
    return ForRows(src, srcStep, dst, dstStep, size,
                   [&](uint8_t *d, const uint8_t *s) { k.add(d, d, s, size.width * bytes, n); });
}

int32_t AddValue(const uint8_t *value, int bytes, uint8_t *dst, int64_t dstStep, ROI size, int32_t n) {
    if (value == nullptr) return kPrimitiveNull;
    uint8_t value12[12];
    for (int i = 0; i < 12; ++i) value12[i] = value[i % bytes];
    const PrimitiveKernels &k = PrimitiveKernelsGet();
    return ForRows(dst, dstStep, size, [&](uint8_t *d) { k.add_const(d, d, value12, int64_t{size.width} * bytes, n); });
}

// Rows of two sources; `row(dst, a, b)`.
template <class Row>
int32_t ForPairs(const uint8_t *a, int64_t stepA, const uint8_t *b, int64_t stepB, uint8_t *dst, int64_t dstStep, ROI size,
                 Row &&row) {
    if (b == nullptr) return kPrimitiveNull;
    const int32_t status = PrimitiveCheck(a, dst, size);
    for (int64_t y = 0; status == kPrimitiveOk && y < size.height; ++y) row(dst + y * dstStep, a + y * stepA, b + y * stepB);
    return status;
}

}    // namespace

int32_t MulC_8u_C1IRSfs(uint8_t value, uint8_t *dst, int64_t dstStep, ROI size, int32_t n) {
    return MulC_8u_C1RSfs(dst, dstStep, value, dst, dstStep, size, n);
}

int32_t MulC_8u_C1RSfs(const uint8_t *src, int64_t srcStep, uint8_t value, uint8_t *dst, int64_t dstStep, ROI size, int32_t n) {
    const PrimitiveKernels &k = PrimitiveKernelsGet();
    return ForRows(src, srcStep, dst, dstStep, size,
                   [&](uint8_t *d, const uint8_t *s) { k.mul_const(d, s, value, size.width, n); });
}

int32_t MulC_8u_C4RSfs(const uint8_t *src, int64_t srcStep, const uint8_t *value4, uint8_t *dst, int64_t dstStep, ROI size,
                       int32_t n) {
    if (value4 == nullptr) return kPrimitiveNull;
    const PrimitiveKernels &k = PrimitiveKernelsGet();
    const bool alike = value4[0] == value4[1] && value4[0] == value4[2] && value4[0] == value4[3];
    if (alike)
        return ForRows(src, srcStep, dst, dstStep, size,
                       [&](uint8_t *d, const uint8_t *s) { k.mul_const(d, s, value4[0], int64_t{size.width} * 4, n); });
    return ForRows(src, srcStep, dst, dstStep, size, [&](uint8_t *d, const uint8_t *s) {
        for (int64_t x = 0; x < size.width; ++x)
            for (int j = 0; j < 4; ++j) k.mul_const(d + 4 * x + j, s + 4 * x + j, value4[j], 1, n);
    });
}

int32_t Mul_8u_C1IRSfs(const uint8_t *src, int64_t srcStep, uint8_t *dst, int64_t dstStep, ROI size, int32_t n) {
    return Mul_8u_C1RSfs(dst, dstStep, src, srcStep, dst, dstStep, size, n);
}

int32_t Mul_8u_C1RSfs(const uint8_t *src1, int64_t step1, const uint8_t *src2, int64_t step2, uint8_t *dst, int64_t dstStep,
                      ROI size, int32_t n) {
    const PrimitiveKernels &k = PrimitiveKernelsGet();
    return ForPairs(src1, step1, src2, step2, dst, dstStep, size,
                    [&](uint8_t *d, const uint8_t *a, const uint8_t *b) { k.mul(d, a, b, size.width, n); });
}

int32_t Add_8u_C1IRSfs(const uint8_t *src, int64_t srcStep, uint8_t *dst, int64_t dstStep, ROI size, int32_t n) {
    return AddPixels(src, srcStep, dst, dstStep, size, 1, n);
}

int32_t Add_8u_C3IRSfs(const uint8_t *src, int64_t srcStep, uint8_t *dst, int64_t dstStep, ROI size, int32_t n) {
    return AddPixels(src, srcStep, dst, dstStep, size, 3, n);
}

int32_t Add_8u_C4IRSfs(const uint8_t *src, int64_t srcStep, uint8_t *dst, int64_t dstStep, ROI size, int32_t n) {
    return AddPixels(src, srcStep, dst, dstStep, size, 4, n);
}

int32_t AddC_8u_C1IRSfs(uint8_t value, uint8_t *dst, int64_t dstStep, ROI size, int32_t n) {
    return AddValue(&value, 1, dst, dstStep, size, n);
}

int32_t AddC_8u_C3IRSfs(const uint8_t *value3, uint8_t *dst, int64_t dstStep, ROI size, int32_t n) {
    return AddValue(value3, 3, dst, dstStep, size, n);
}

int32_t AddC_8u_C4IRSfs(const uint8_t *value4, uint8_t *dst, int64_t dstStep, ROI size, int32_t n) {
    return AddValue(value4, 4, dst, dstStep, size, n);
}

int32_t AlphaComp_8u_AC4R(const uint8_t *src1, int64_t step1, const uint8_t *src2, int64_t step2, uint8_t *dst, int64_t dstStep,
                          ROI size, int32_t type) {
    if (type != kAlphaOverPremultiplied) return kPrimitiveNotProvided;
    const PrimitiveKernels &k = PrimitiveKernelsGet();
    return ForPairs(src1, step1, src2, step2, dst, dstStep, size,
                    [&](uint8_t *d, const uint8_t *a, const uint8_t *b) { k.alpha_over(d, a, b, size.width); });
}

}    // namespace zck
