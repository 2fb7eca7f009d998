#include "imaging/primitives/mirror.h"

#include <algorithm>
#include <cstring>

#include "imaging/primitives/row_kernels.h"

namespace zck {
namespace {

using RowKernel = void (*)(uint8_t *, const uint8_t *, int32_t);

bool KnownAxis(int32_t axis) { return axis >= kMirrorRows && axis <= kMirrorBoth; }

RowKernel MirrorKernel(int pixelBytes) {
    const PrimitiveKernels &k = PrimitiveKernelsGet();
    const RowKernel kernels[] = {k.mirror1, k.mirror2, k.mirror3, k.mirror4};
    return kernels[pixelBytes - 1];
}

int32_t MirrorCopy(int pixelBytes, const uint8_t *src, int64_t srcStep, uint8_t *dst, int64_t dstStep, ROI size, int32_t axis) {
    if (!KnownAxis(axis)) return kPrimitiveBadArgument;
    if (axis != kMirrorColumns && src != nullptr) {
        src += (int64_t{size.height} - 1) * srcStep;
        srcStep = -srcStep;
    }
    const auto bytes = static_cast<size_t>(int64_t{size.width} * pixelBytes);
    if (axis == kMirrorRows)
        return ForRows(src, srcStep, dst, dstStep, size, [=](uint8_t *d, const uint8_t *s) { std::memcpy(d, s, bytes); });
    const RowKernel kernel = MirrorKernel(pixelBytes);
    return ForRows(src, srcStep, dst, dstStep, size, [=](uint8_t *d, const uint8_t *s) { kernel(d, s, size.width); });
}

// Pieces from both ends change places, each reversed, until the middle fits into the scratch.
void ReverseRow(uint8_t *row, int32_t width, int pixelBytes) {
    constexpr int32_t kPiece = 256;
    uint8_t scratch[2 * kPiece * 4];
    const RowKernel mirror = MirrorKernel(pixelBytes);
    const int64_t bytes = int64_t{kPiece} * pixelBytes;
    uint8_t *left = row;
    uint8_t *right = row + int64_t{width} * pixelBytes;
    int32_t rest = width;
    for (; rest > 2 * kPiece; rest -= 2 * kPiece) {
        right -= bytes;
        mirror(scratch, left, kPiece);
        mirror(left, right, kPiece);
        std::memcpy(right, scratch, static_cast<size_t>(bytes));
        left += bytes;
    }
    mirror(scratch, left, rest);
    std::memcpy(left, scratch, static_cast<size_t>(int64_t{rest} * pixelBytes));
}

void SwapRows(uint8_t *a, uint8_t *b, int64_t bytes) {
    uint8_t scratch[2048];
    for (int64_t done = 0; done < bytes; done += static_cast<int64_t>(sizeof(scratch))) {
        const auto n = static_cast<size_t>(std::min(bytes - done, static_cast<int64_t>(sizeof(scratch))));
        std::memcpy(scratch, a + done, n);
        std::memcpy(a + done, b + done, n);
        std::memcpy(b + done, scratch, n);
    }
}

int32_t MirrorInPlace(int pixelBytes, uint8_t *dst, int64_t dstStep, ROI size, int32_t axis) {
    if (!KnownAxis(axis)) return kPrimitiveBadArgument;
    const int32_t status = PrimitiveCheck(dst, dst, size);
    if (status != kPrimitiveOk) return status;
    const auto reverse = [=](uint8_t *d) {
        if (axis != kMirrorRows) ReverseRow(d, size.width, pixelBytes);
    };
    if (axis == kMirrorColumns) return ForRows(dst, dstStep, size, reverse);
    // Row by row what there is to do, while it is in the cache.
    int64_t y = 0;
    int64_t last = int64_t{size.height} - 1;
    for (; y < last; ++y, --last) {
        reverse(dst + y * dstStep);
        reverse(dst + last * dstStep);
        SwapRows(dst + y * dstStep, dst + last * dstStep, int64_t{size.width} * pixelBytes);
    }
    if (y == last) reverse(dst + y * dstStep);
    return kPrimitiveOk;
}

}    // namespace

int32_t Mirror_8u_C1R(const uint8_t *src, int64_t srcStep, uint8_t *dst, int64_t dstStep, ROI size, int32_t axis) {
    return MirrorCopy(1, src, srcStep, dst, dstStep, size, axis);
}

int32_t Mirror_16u_C1R(const uint8_t *src, int64_t srcStep, uint8_t *dst, int64_t dstStep, ROI size, int32_t axis) {
    return MirrorCopy(2, src, srcStep, dst, dstStep, size, axis);
}

int32_t Mirror_8u_C3R(const uint8_t *src, int64_t srcStep, uint8_t *dst, int64_t dstStep, ROI size, int32_t axis) {
    return MirrorCopy(3, src, srcStep, dst, dstStep, size, axis);
}

int32_t Mirror_8u_C4R(const uint8_t *src, int64_t srcStep, uint8_t *dst, int64_t dstStep, ROI size, int32_t axis) {
    return MirrorCopy(4, src, srcStep, dst, dstStep, size, axis);
}

int32_t Mirror_16u_C1IR(uint8_t *dst, int64_t dstStep, ROI size, int32_t axis) {
    return MirrorInPlace(2, dst, dstStep, size, axis);
}

int32_t Mirror_8u_C3IR(uint8_t *dst, int64_t dstStep, ROI size, int32_t axis) {
    return MirrorInPlace(3, dst, dstStep, size, axis);
}

int32_t Mirror_8u_C4IR(uint8_t *dst, int64_t dstStep, ROI size, int32_t axis) {
    return MirrorInPlace(4, dst, dstStep, size, axis);
}

int32_t SwapChannels_8u_C4IR(uint8_t *dst, int64_t dstStep, ROI size, const int32_t *order) {
    if (order == nullptr) return kPrimitiveNull;
    uint8_t bytes[4];
    for (int j = 0; j < 4; ++j) {
        if (order[j] < 0 || order[j] > 3) return kPrimitiveBadArgument;
        bytes[j] = static_cast<uint8_t>(order[j]);
    }
    const PrimitiveKernels &k = PrimitiveKernelsGet();
    return ForRows(dst, dstStep, size, [&](uint8_t *d) { k.swap4(d, d, bytes, size.width); });
}

}    // namespace zck
