// The reference of the entries for planes: scalar, dull, and never to be made faster.
#include "imaging/primitives/bt601_ref.h"
#include "imaging/primitives/row_kernels.h"

namespace zck {
namespace {

// Where the components lie in a group of two pixels.
struct Uyvy {
    static constexpr int kY0 = 1, kY1 = 3, kCb = 0, kCr = 2;
};
struct Yuy2 {
    static constexpr int kY0 = 0, kY1 = 2, kCb = 1, kCr = 3;
};

template <class Order>
void Split(uint8_t *y, uint8_t *cb, uint8_t *cr, const uint8_t *src, int32_t width) {
    for (int64_t x = 0; x < width; x += 2) {
        const uint8_t *group = src + 2 * x;
        y[x] = group[Order::kY0];
        if (x + 1 < width) y[x + 1] = group[Order::kY1];
        cb[x / 2] = group[Order::kCb];
        cr[x / 2] = group[Order::kCr];
    }
}

template <class Order>
void Join(uint8_t *dst, const uint8_t *y, const uint8_t *cb, const uint8_t *cr, int32_t width) {
    for (int64_t x = 0; x < width; x += 2) {
        uint8_t *group = dst + 2 * x;
        group[Order::kY0] = y[x];
        if (x + 1 < width) group[Order::kY1] = y[x + 1];
        group[Order::kCb] = cb[x / 2];
        group[Order::kCr] = cr[x / 2];
    }
}

void SplitPairs(uint8_t *first, uint8_t *second, const uint8_t *src, int32_t count) {
    for (int64_t i = 0; i < count; ++i) {
        first[i] = src[2 * i];
        second[i] = src[2 * i + 1];
    }
}

void JoinPairs(uint8_t *dst, const uint8_t *first, const uint8_t *second, int32_t count) {
    for (int64_t i = 0; i < count; ++i) {
        dst[2 * i] = first[i];
        dst[2 * i + 1] = second[i];
    }
}

void Mean(uint8_t *dst, const uint8_t *a, const uint8_t *b, int32_t count) {
    for (int64_t i = 0; i < count; ++i) dst[i] = static_cast<uint8_t>((a[i] + b[i] + 1) / 2);
}

void PlanesToBgra(uint8_t *dst, const uint8_t *y, const uint8_t *cb, const uint8_t *cr, int32_t width, uint8_t alpha) {
    for (int64_t x = 0; x < width; ++x) Bt601Decode(dst + 4 * x, y[x], cb[x / 2], cr[x / 2], alpha);
}

void Nv12ToBgra(uint8_t *dst, const uint8_t *y, const uint8_t *cbcr, int32_t width, uint8_t alpha) {
    for (int64_t x = 0; x < width; ++x) Bt601Decode(dst + 4 * x, y[x], cbcr[x / 2 * 2], cbcr[x / 2 * 2 + 1], alpha);
}

void BgraTo420(uint8_t *y0, uint8_t *y1, uint8_t *cb, uint8_t *cr, const uint8_t *src0, const uint8_t *src1, int32_t width) {
    for (int64_t x = 0; x < width; ++x) {
        y0[x] = Bt601Luma(src0 + 4 * x);
        y1[x] = Bt601Luma(src1 + 4 * x);
    }
    for (int64_t x = 0; x < width; x += 2) {
        const int64_t next = x + 1 < width ? 4 : 0;
        const uint8_t *p = src0 + 4 * x;
        const uint8_t *q = src1 + 4 * x;
        const int32_t b = p[0] + p[next] + q[0] + q[next];
        const int32_t g = p[1] + p[next + 1] + q[1] + q[next + 1];
        const int32_t r = p[2] + p[next + 2] + q[2] + q[next + 2];
        cb[x / 2] = Bt601Cb(b, g, r, 4);
        cr[x / 2] = Bt601Cr(b, g, r, 4);
    }
}

}    // namespace

void PrimitivePlanesInitRef(PrimitiveKernels *table) {
    table->split_uyvy = Split<Uyvy>;
    table->split_yuy2 = Split<Yuy2>;
    table->join_uyvy = Join<Uyvy>;
    table->join_yuy2 = Join<Yuy2>;
    table->split_pairs = SplitPairs;
    table->join_pairs = JoinPairs;
    table->mean = Mean;
    table->planes_to_bgra = PlanesToBgra;
    table->nv12_to_bgra = Nv12ToBgra;
    table->bgra_to_420 = BgraTo420;
}

}    // namespace zck
