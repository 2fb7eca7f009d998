#include "imaging/primitives/convert422.h"

#include <algorithm>

#include "imaging/primitives/row_kernels.h"

namespace zck {
namespace {

using RowKernel = void (*)(uint8_t *, const uint8_t *, int32_t);
using AlphaKernel = void (*)(uint8_t *, const uint8_t *, int32_t, uint8_t);

// Even, so that no pair is cut; the scratch stays in the first-level cache.
constexpr int32_t kPiece = 512;

int32_t KernelRows(RowKernel kernel, const uint8_t *src, int64_t srcStep, uint8_t *dst, int64_t dstStep, ROI size) {
    return ForRows(src, srcStep, dst, dstStep, size, [=](uint8_t *d, const uint8_t *s) { kernel(d, s, size.width); });
}

int32_t AlphaRows(AlphaKernel kernel, const uint8_t *src, int64_t srcStep, uint8_t *dst, int64_t dstStep, ROI size,
                  uint8_t alpha) {
    return ForRows(src, srcStep, dst, dstStep, size, [=](uint8_t *d, const uint8_t *s) { kernel(d, s, size.width, alpha); });
}

void FromBgr(RowKernel encode, uint8_t *dst, const uint8_t *src, int32_t width) {
    const PrimitiveKernels &k = PrimitiveKernelsGet();
    uint8_t scratch[kPiece * 4];
    for (int64_t x = 0; x < width; x += kPiece) {
        const auto n = static_cast<int32_t>(std::min<int64_t>(kPiece, width - x));
        k.add_alpha(scratch, src + 3 * x, n);
        encode(dst + 2 * x, scratch, n);
    }
}

void ToBgr(AlphaKernel decode, uint8_t *dst, const uint8_t *src, int32_t width) {
    const PrimitiveKernels &k = PrimitiveKernelsGet();
    uint8_t scratch[kPiece * 4];
    for (int64_t x = 0; x < width; x += kPiece) {
        const auto n = static_cast<int32_t>(std::min<int64_t>(kPiece, width - x));
        decode(scratch, src + 2 * x, n, 255);
        k.drop_alpha(dst + 3 * x, scratch, n);
    }
}

}    // namespace

void RowBgrToYuy2(uint8_t *dst, const uint8_t *src, int32_t width) {
    FromBgr(PrimitiveKernelsGet().bgra_to_yuy2, dst, src, width);
}

void RowBgrToUyvy(uint8_t *dst, const uint8_t *src, int32_t width) {
    FromBgr(PrimitiveKernelsGet().bgra_to_uyvy, dst, src, width);
}

void RowYuy2ToBgr(uint8_t *dst, const uint8_t *src, int32_t width) {
    ToBgr(PrimitiveKernelsGet().yuy2_to_bgra, dst, src, width);
}

void RowUyvyToBgr(uint8_t *dst, const uint8_t *src, int32_t width) {
    ToBgr(PrimitiveKernelsGet().uyvy_to_bgra, dst, src, width);
}

int32_t BGRToCbYCr422_8u_AC4C2R(const uint8_t *src, int64_t srcStep, uint8_t *dst, int64_t dstStep, ROI size) {
    return KernelRows(PrimitiveKernelsGet().bgra_to_uyvy, src, srcStep, dst, dstStep, size);
}

int32_t BGRToYCbCr422_8u_AC4C2R(const uint8_t *src, int64_t srcStep, uint8_t *dst, int64_t dstStep, ROI size) {
    return KernelRows(PrimitiveKernelsGet().bgra_to_yuy2, src, srcStep, dst, dstStep, size);
}

int32_t BGRToYCbCr422_8u_C3C2R(const uint8_t *src, int64_t srcStep, uint8_t *dst, int64_t dstStep, ROI size) {
    return KernelRows(RowBgrToYuy2, src, srcStep, dst, dstStep, size);
}

int32_t CbYCr422ToBGR_8u_C2C4R(const uint8_t *src, int64_t srcStep, uint8_t *dst, int64_t dstStep, ROI size, uint8_t alpha) {
    return AlphaRows(PrimitiveKernelsGet().uyvy_to_bgra, src, srcStep, dst, dstStep, size, alpha);
}

int32_t YCbCr422ToBGR_8u_C2C4R(const uint8_t *src, int64_t srcStep, uint8_t *dst, int64_t dstStep, ROI size, uint8_t alpha) {
    return AlphaRows(PrimitiveKernelsGet().yuy2_to_bgra, src, srcStep, dst, dstStep, size, alpha);
}

int32_t YCbCr422ToBGR_8u_C2C3R(const uint8_t *src, int64_t srcStep, uint8_t *dst, int64_t dstStep, ROI size) {
    return KernelRows(RowYuy2ToBgr, src, srcStep, dst, dstStep, size);
}

int32_t CbYCr422ToYCbCr422_8u_C2R(const uint8_t *src, int64_t srcStep, uint8_t *dst, int64_t dstStep, ROI size) {
    return KernelRows(PrimitiveKernelsGet().uyvy_to_yuy2, src, srcStep, dst, dstStep, size);
}

int32_t YCbCr422ToCbYCr422_8u_C2R(const uint8_t *src, int64_t srcStep, uint8_t *dst, int64_t dstStep, ROI size) {
    return KernelRows(PrimitiveKernelsGet().yuy2_to_uyvy, src, srcStep, dst, dstStep, size);
}

int32_t YCbCr422ToYCrCb422_8u_C2R(const uint8_t *src, int64_t srcStep, uint8_t *dst, int64_t dstStep, ROI size) {
    return KernelRows(PrimitiveKernelsGet().swap_chroma, src, srcStep, dst, dstStep, size);
}

}    // namespace zck
