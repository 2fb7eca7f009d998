// The reference: scalar, dull, and never to be made faster. It says what the bytes are.
#include <algorithm>

#include "imaging/mix/mix_kernels.h"
#include "imaging/primitives/row_kernels.h"

namespace zck {
namespace {

constexpr int32_t kBlock = 8;    // pixels

uint8_t Clamp8(int32_t v) { return static_cast<uint8_t>(std::clamp(v, 0, 255)); }
int32_t Clamp16(int32_t v) { return std::clamp(v, -32768, 32767); }

uint8_t Mixed(uint8_t dst, uint8_t over, int32_t q) {
    return Clamp8(PrimitiveScaled(dst * (128 - q), 7) + PrimitiveScaled(over * q, 7));
}

void Constant(uint8_t *dst, const uint8_t *over, int32_t q, int64_t count) {
    for (int64_t i = 0; i < count; ++i) dst[i] = Mixed(dst[i], over[i], q);
}

void Weighted(uint8_t *dst, const uint8_t *over, const uint8_t *q, int64_t count) {
    for (int64_t i = 0; i < count; ++i) dst[i] = Mixed(dst[i], over[i], q[i]);
}

template <int kBytes>
void Weights(uint8_t *q, const uint8_t *bgra, int32_t a, int32_t width) {
    constexpr int32_t kMore = kBytes == 2 ? 0 : 1;
    for (int64_t x = 0; x < width; ++x)
        for (int j = 0; j < kBytes; ++j) q[kBytes * x + j] = static_cast<uint8_t>(((bgra[4 * x + 3] + kMore) * a) >> 8);
}

void OverScaled(uint8_t *dst, const uint8_t *over, uint8_t value, int32_t scale, int32_t width) {
    for (int64_t x = 0; x < width; ++x) {
        uint8_t s[4];
        for (int j = 0; j < 4; ++j) s[j] = PrimitiveScaled(over[4 * x + j] * value, scale);
        for (int j = 0; j < 4; ++j) dst[4 * x + j] = Clamp8(s[j] + (dst[4 * x + j] * (255 - s[3]) + 127) / 255);
    }
}

int32_t OffsetOf(bool luma) { return luma ? 16 : 128; }

// One of the 8 pixels of a block: byte j of pixel p.
template <bool kLumaFirst>
bool IsLuma(int j) {
    return (j == 0) == kLumaFirst;
}

template <bool kLumaFirst>
void PremultipliedBlock(uint8_t *dst, const uint8_t *over, const uint8_t *mask, int32_t q) {
    int32_t k[kBlock];
    for (int p = 0; p < kBlock; ++p) k[p] = std::min((mask[p] * q) >> 7, 255);
    for (int p = 0; p < kBlock; ++p)
        for (int j = 0; j < 2; ++j) {
            const bool luma = IsLuma<kLumaFirst>(j);
            const int32_t offset = OffsetOf(luma);
            const int32_t weight = luma ? k[p] : (k[p & ~1] + k[p | 1]) >> 1;
            const int32_t c = (255 - weight + 1) >> 1;
            uint8_t &d = dst[2 * p + j];
            const int32_t sum = Clamp16(Clamp16((d - offset) * c) + Clamp16((over[2 * p + j] - offset) * q));
            d = Clamp8((Clamp16(sum + 127) >> 7) + offset);
        }
}

template <bool kLumaFirst>
void Premultiplied(uint8_t *dst, const uint8_t *over, const uint8_t *mask, int32_t a, int32_t width) {
    int64_t x = 0;
    for (; x + kBlock <= width; x += kBlock) PremultipliedBlock<kLumaFirst>(dst + 2 * x, over + 2 * x, mask + x, a / 2);
    MixPremultipliedTail(dst + 2 * x, over + 2 * x, mask + x, a, static_cast<int32_t>(width - x), kLumaFirst);
}

uint8_t MaskMixed(uint8_t dst, uint8_t over, int32_t k) { return Clamp8((over * k + (255 - k) * dst + 255) >> 8); }

template <bool kLumaFirst>
void MaskedBlock(uint8_t *dst, const uint8_t *over, const uint8_t *mask, int32_t a) {
    int32_t k[kBlock];
    for (int p = 0; p < kBlock; ++p) k[p] = a < 255 ? (mask[p] * a) >> 8 : mask[p];
    for (int p = 0; p < kBlock; ++p)
        for (int j = 0; j < 2; ++j) {
            const int32_t weight = IsLuma<kLumaFirst>(j) ? k[p] : (k[p & ~1] + k[p | 1]) >> 1;
            dst[2 * p + j] = MaskMixed(dst[2 * p + j], over[2 * p + j], weight);
        }
}

template <bool kLumaFirst>
void Masked(uint8_t *dst, const uint8_t *over, const uint8_t *mask, int32_t a, int32_t width) {
    int64_t x = 0;
    for (; x + kBlock <= width; x += kBlock) MaskedBlock<kLumaFirst>(dst + 2 * x, over + 2 * x, mask + x, a);
    MixMaskedTail(dst + 2 * x, over + 2 * x, mask + x, a, static_cast<int32_t>(width - x));
}

void Masked4(uint8_t *dst, const uint8_t *over, const uint8_t *mask, int32_t a, int32_t width) {
    for (int64_t x = 0; x < width; ++x)
        for (int64_t i = 4 * x; i < 4 * x + 4; ++i) dst[i] = Clamp8((over[i] * a + (255 - mask[x]) * dst[i] + 255) >> 8);
}

void Blend(uint8_t *dst, const uint8_t *over, int32_t a, int64_t count) {
    for (int64_t i = 0; i < count; ++i) dst[i] = static_cast<uint8_t>((over[i] * a + dst[i] * (256 - a)) >> 8);
}

}    // namespace

void MixPremultipliedTail(uint8_t *dst, const uint8_t *over, const uint8_t *mask, int32_t a, int32_t width, bool lumaFirst) {
    const auto whole = [](uint8_t k) { return k == 255 ? 256 : int32_t{k}; };
    for (int64_t x = 0; x + 2 <= width; x += 2) {
        const int32_t own[2] = {whole(mask[x]), whole(mask[x + 1])};
        const int32_t both = (own[0] + own[1]) >> 1;
        for (int j = 0; j < 4; ++j) {
            const bool luma = (j % 2 == 0) == lumaFirst;
            const int32_t offset = OffsetOf(luma);
            const int32_t m = luma ? own[j / 2] : both;
            uint8_t &d = dst[2 * x + j];
            const int32_t sum = (d - offset) * (256 - ((a * m) >> 8)) + a * (over[2 * x + j] - offset);
            d = Clamp8((sum >> 8) + offset);
        }
    }
}

void MixMaskedTail(uint8_t *dst, const uint8_t *over, const uint8_t *mask, int32_t a, int32_t width) {
    for (int64_t i = 0; i < int64_t{2} * width; ++i) dst[i] = MaskMixed(dst[i], over[i], (mask[i / 2] * a) >> 8);
}

void MixKernelsInitRef(MixKernels *table) {
    *table = {
        Constant,      Weighted,     Weights<3>, Weights<4>, Weights<2>, OverScaled, Premultiplied<false>, Premultiplied<true>,
        Masked<false>, Masked<true>, Masked4,    Blend};
}

}    // namespace zck
