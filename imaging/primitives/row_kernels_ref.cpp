// The reference: scalar, dull, and never to be made faster. It says what the bytes are.
#include <algorithm>

#include "imaging/primitives/bt601_ref.h"
#include "imaging/primitives/row_kernels.h"

namespace zck {
namespace {

uint8_t Clamp(int64_t v) { return static_cast<uint8_t>(std::clamp<int64_t>(v, 0, 255)); }

void DropAlpha(uint8_t *dst, const uint8_t *src, int32_t width) {
    for (int64_t x = 0; x < width; ++x)
        for (int j = 0; j < 3; ++j) dst[3 * x + j] = src[4 * x + j];
}

void AddAlpha(uint8_t *dst, const uint8_t *src, int32_t width) {
    for (int64_t x = 0; x < width; ++x) {
        for (int j = 0; j < 3; ++j) dst[4 * x + j] = src[3 * x + j];
        dst[4 * x + 3] = 255;
    }
}

void GetChannel(uint8_t *dst, const uint8_t *src, int32_t width) {
    for (int64_t x = 0; x < width; ++x) dst[x] = src[4 * x];
}

void PutChannel(uint8_t *dst, const uint8_t *src, int32_t width) {
    for (int64_t x = 0; x < width; ++x) dst[4 * x] = src[x];
}

void SetChannel(uint8_t *dst, uint8_t value, int32_t width) {
    for (int64_t x = 0; x < width; ++x) dst[4 * x] = value;
}

template <int kBytes>
void SetPixels(uint8_t *dst, const uint8_t *value, int32_t width) {
    for (int64_t x = 0; x < width; ++x)
        for (int j = 0; j < kBytes; ++j) dst[kBytes * x + j] = value[j];
}

void MulConst(uint8_t *dst, const uint8_t *src, uint8_t value, int64_t count, int32_t scale) {
    for (int64_t i = 0; i < count; ++i) dst[i] = PrimitiveScaled(src[i] * value, scale);
}

void Mul(uint8_t *dst, const uint8_t *a, const uint8_t *b, int64_t count, int32_t scale) {
    for (int64_t i = 0; i < count; ++i) dst[i] = PrimitiveScaled(a[i] * b[i], scale);
}

void Add(uint8_t *dst, const uint8_t *a, const uint8_t *b, int64_t count, int32_t scale) {
    for (int64_t i = 0; i < count; ++i) dst[i] = PrimitiveScaled(a[i] + b[i], scale);
}

void AddConst(uint8_t *dst, const uint8_t *src, const uint8_t *value12, int64_t count, int32_t scale) {
    for (int64_t i = 0; i < count; ++i) dst[i] = PrimitiveScaled(src[i] + value12[i % 12], scale);
}

void AlphaOver(uint8_t *dst, const uint8_t *over, const uint8_t *under, int32_t width) {
    for (int64_t x = 0; x < width; ++x) {
        const int32_t rest = 255 - over[4 * x + 3];
        for (int64_t i = 4 * x; i < 4 * x + 4; ++i) dst[i] = Clamp(over[i] + (under[i] * rest + 127) / 255);
    }
}

template <int kBytes>
void MirrorPixels(uint8_t *dst, const uint8_t *src, int32_t width) {
    for (int64_t x = 0; x < width; ++x)
        for (int j = 0; j < kBytes; ++j) dst[kBytes * x + j] = src[kBytes * (width - 1 - x) + j];
}

void Swap4(uint8_t *dst, const uint8_t *src, const uint8_t *order, int32_t width) {
    for (int64_t x = 0; x < width; ++x) {
        const uint8_t pixel[4] = {src[4 * x], src[4 * x + 1], src[4 * x + 2], src[4 * x + 3]};
        for (int j = 0; j < 4; ++j) dst[4 * x + j] = pixel[order[j] & 3];
    }
}

// Where the components lie in a group of two pixels.
struct Uyvy {
    static constexpr int kY0 = 1, kY1 = 3, kCb = 0, kCr = 2;
};
struct Yuy2 {
    static constexpr int kY0 = 0, kY1 = 2, kCb = 1, kCr = 3;
};

template <class Order>
void BgraTo422(uint8_t *dst, const uint8_t *src, int32_t width) {
    for (int64_t x = 0; x < width; x += 2) {
        const uint8_t *p = src + 4 * x;
        const uint8_t *q = x + 1 < width ? p + 4 : p;
        const int32_t b = p[0] + q[0], g = p[1] + q[1], r = p[2] + q[2];
        uint8_t *group = dst + 2 * x;
        group[Order::kY0] = Bt601Luma(p);
        if (x + 1 < width) group[Order::kY1] = Bt601Luma(q);
        group[Order::kCb] = Bt601Cb(b, g, r, 2);
        group[Order::kCr] = Bt601Cr(b, g, r, 2);
    }
}

template <class Order>
void BgraFrom422(uint8_t *dst, const uint8_t *src, int32_t width, uint8_t alpha) {
    for (int64_t x = 0; x < width; ++x) {
        const uint8_t *group = src + 4 * (x / 2);
        Bt601Decode(dst + 4 * x, group[x % 2 != 0 ? Order::kY1 : Order::kY0], group[Order::kCb], group[Order::kCr], alpha);
    }
}

// Byte j of each group comes from byte k[j]; the second luma byte of an odd row's last group stays.
template <class Target>
void SwapGroups(uint8_t *dst, const uint8_t *src, int32_t width, const int (&k)[4]) {
    for (int64_t x = 0; x < width; x += 2) {
        const uint8_t group[4] = {src[2 * x], src[2 * x + 1], src[2 * x + 2], src[2 * x + 3]};
        for (int j = 0; j < 4; ++j)
            if (j != Target::kY1 || x + 1 < width) dst[2 * x + j] = group[k[j]];
    }
}

constexpr int kPairwise[4] = {1, 0, 3, 2};
constexpr int kChroma[4] = {0, 3, 2, 1};

void UyvyToYuy2(uint8_t *dst, const uint8_t *src, int32_t width) { SwapGroups<Yuy2>(dst, src, width, kPairwise); }
void Yuy2ToUyvy(uint8_t *dst, const uint8_t *src, int32_t width) { SwapGroups<Uyvy>(dst, src, width, kPairwise); }
void SwapChroma(uint8_t *dst, const uint8_t *src, int32_t width) { SwapGroups<Yuy2>(dst, src, width, kChroma); }

}    // namespace

uint8_t PrimitiveScaled(int32_t v, int32_t scale) {
    if (scale <= 0) return v == 0 ? uint8_t{0} : Clamp(int64_t{v} << std::min(-int64_t{scale}, int64_t{8}));
    // Less than a half from here on.
    if (scale > 17) return 0;
    const int32_t whole = v >> scale;
    const int32_t rest = v - (whole << scale);
    const int32_t half = 1 << (scale - 1);
    const bool up = rest > half || (rest == half && (whole & 1) != 0);
    return Clamp(whole + (up ? 1 : 0));
}

void PrimitiveKernelsInitRef(PrimitiveKernels *table) {
    table->drop_alpha = DropAlpha;
    table->add_alpha = AddAlpha;
    table->get_channel = GetChannel;
    table->put_channel = PutChannel;
    table->set_channel = SetChannel;
    table->set3 = SetPixels<3>;
    table->set4 = SetPixels<4>;
    table->mul_const = MulConst;
    table->mul = Mul;
    table->add = Add;
    table->add_const = AddConst;
    table->alpha_over = AlphaOver;
    table->mirror1 = MirrorPixels<1>;
    table->mirror2 = MirrorPixels<2>;
    table->mirror3 = MirrorPixels<3>;
    table->mirror4 = MirrorPixels<4>;
    table->swap4 = Swap4;
    table->bgra_to_uyvy = BgraTo422<Uyvy>;
    table->bgra_to_yuy2 = BgraTo422<Yuy2>;
    table->uyvy_to_bgra = BgraFrom422<Uyvy>;
    table->yuy2_to_bgra = BgraFrom422<Yuy2>;
    table->uyvy_to_yuy2 = UyvyToYuy2;
    table->yuy2_to_uyvy = Yuy2ToUyvy;
    table->swap_chroma = SwapChroma;
    PrimitivePlanesInitRef(table);
}

}    // namespace zck
