#include "imaging/primitives/copy.h"

#include <algorithm>
#include <cstring>

#include "imaging/primitives/row_kernels.h"

namespace zck {
namespace {

using RowKernel = void (*)(uint8_t *, const uint8_t *, int32_t);

// Rows may lie over their own source.
int32_t CopyRows(const uint8_t *src, int64_t srcStep, uint8_t *dst, int64_t dstStep, ROI size, int64_t pixelBytes) {
    const auto bytes = static_cast<size_t>(size.width * pixelBytes);
    return ForRows(src, srcStep, dst, dstStep, size, [=](uint8_t *d, const uint8_t *s) { std::memmove(d, s, bytes); });
}

int32_t KernelRows(RowKernel kernel, const uint8_t *src, int64_t srcStep, uint8_t *dst, int64_t dstStep, ROI size) {
    return ForRows(src, srcStep, dst, dstStep, size, [=](uint8_t *d, const uint8_t *s) { kernel(d, s, size.width); });
}

}    // namespace

int32_t Copy_8u_C1R(const uint8_t *src, int64_t srcStep, uint8_t *dst, int64_t dstStep, ROI size) {
    return CopyRows(src, srcStep, dst, dstStep, size, 1);
}

int32_t Copy_16u_C1R(const uint8_t *src, int64_t srcStep, uint8_t *dst, int64_t dstStep, ROI size) {
    return CopyRows(src, srcStep, dst, dstStep, size, 2);
}

int32_t Copy_8u_C3R(const uint8_t *src, int64_t srcStep, uint8_t *dst, int64_t dstStep, ROI size) {
    return CopyRows(src, srcStep, dst, dstStep, size, 3);
}

int32_t Copy_8u_C4R(const uint8_t *src, int64_t srcStep, uint8_t *dst, int64_t dstStep, ROI size) {
    return CopyRows(src, srcStep, dst, dstStep, size, 4);
}

int32_t Copy_8u_C4C3R(const uint8_t *src, int64_t srcStep, uint8_t *dst, int64_t dstStep, ROI size) {
    return KernelRows(PrimitiveKernelsGet().drop_alpha, src, srcStep, dst, dstStep, size);
}

int32_t Copy_8u_C3C4R(const uint8_t *src, int64_t srcStep, uint8_t *dst, int64_t dstStep, ROI size) {
    return KernelRows(PrimitiveKernelsGet().add_alpha, src, srcStep, dst, dstStep, size);
}

int32_t Copy_8u_C4C1R(const uint8_t *src, int64_t srcStep, uint8_t *dst, int64_t dstStep, ROI size) {
    return KernelRows(PrimitiveKernelsGet().get_channel, src, srcStep, dst, dstStep, size);
}

int32_t Copy_8u_C1C4R(const uint8_t *src, int64_t srcStep, uint8_t *dst, int64_t dstStep, ROI size) {
    return KernelRows(PrimitiveKernelsGet().put_channel, src, srcStep, dst, dstStep, size);
}

int32_t Set_8u_C1R(uint8_t value, uint8_t *dst, int64_t dstStep, ROI size) {
    return ForRows(dst, dstStep, size, [=](uint8_t *d) { std::memset(d, value, static_cast<size_t>(size.width)); });
}

int32_t Set_8u_C3R(const uint8_t *value, uint8_t *dst, int64_t dstStep, ROI size) {
    if (value == nullptr) return kPrimitiveNull;
    const PrimitiveKernels &k = PrimitiveKernelsGet();
    return ForRows(dst, dstStep, size, [&](uint8_t *d) { k.set3(d, value, size.width); });
}

int32_t Set_8u_C4R(const uint8_t *value, uint8_t *dst, int64_t dstStep, ROI size) {
    if (value == nullptr) return kPrimitiveNull;
    const PrimitiveKernels &k = PrimitiveKernelsGet();
    return ForRows(dst, dstStep, size, [&](uint8_t *d) { k.set4(d, value, size.width); });
}

int32_t Set_8u_C4CR(uint8_t value, uint8_t *dst, int64_t dstStep, ROI size) {
    const PrimitiveKernels &k = PrimitiveKernelsGet();
    return ForRows(dst, dstStep, size, [&](uint8_t *d) { k.set_channel(d, value, size.width); });
}

int32_t Set_32s(uint32_t value, uint8_t *dst, int64_t count) {
    if (dst == nullptr) return kPrimitiveNull;
    if (count < 1) return kPrimitiveBadSize;
    const uint8_t bytes[4] = {static_cast<uint8_t>(value), static_cast<uint8_t>(value >> 8), static_cast<uint8_t>(value >> 16),
                              static_cast<uint8_t>(value >> 24)};
    const PrimitiveKernels &k = PrimitiveKernelsGet();
    // The kernel counts in 32 bits.
    constexpr int64_t kMost = 1 << 28;
    for (int64_t done = 0; done < count; done += kMost)
        k.set4(dst + 4 * done, bytes, static_cast<int32_t>(std::min(kMost, count - done)));
    return kPrimitiveOk;
}

int32_t Zero_8u(uint8_t *dst, int64_t count) {
    if (dst == nullptr) return kPrimitiveNull;
    if (count < 1) return kPrimitiveBadSize;
    std::memset(dst, 0, static_cast<size_t>(count));
    return kPrimitiveOk;
}

}    // namespace zck
