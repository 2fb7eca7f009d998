// AVX2 versions of the arithmetic. Scales that no stage uses, and what is left behind the last full vector, go byte by byte.
#include <immintrin.h>

#include "imaging/primitives/row_kernels.h"
#include "platform/avx2.h"

namespace zck {
namespace {

using namespace avx2;

// Products up to 65025 over 2^n, ties to even, n from 0 to 8: adding just less than a half, and the rest if the result would
// be odd, stays inside 16 bits.
struct Scaler {
    __m128i shift;
    __m256i almostHalf;
    __m256i odd;    // 0 for n = 0, where nothing is rounded
};

Scaler ScalerOf(int32_t n) {
    return {_mm_cvtsi32_si128(n), _mm256_set1_epi16(static_cast<int16_t>(n == 0 ? 0 : (1 << (n - 1)) - 1)),
            _mm256_set1_epi16(n == 0 ? 0 : 1)};
}

__m256i Scaled(__m256i p, const Scaler &s) {
    const __m256i odd = _mm256_and_si256(_mm256_srl_epi16(p, s.shift), s.odd);
    const __m256i sum = _mm256_add_epi16(_mm256_add_epi16(p, s.almostHalf), odd);
    return _mm256_min_epu16(_mm256_srl_epi16(sum, s.shift), _mm256_set1_epi16(255));
}

__m256i Low(__m256i x) { return _mm256_unpacklo_epi8(x, _mm256_setzero_si256()); }
__m256i High(__m256i x) { return _mm256_unpackhi_epi8(x, _mm256_setzero_si256()); }

bool InRange(int32_t scale) { return scale >= 0 && scale <= 8; }

void MulConst(uint8_t *dst, const uint8_t *src, uint8_t value, int64_t count, int32_t scale) {
    int64_t i = 0;
    if (InRange(scale)) {
        const Scaler s = ScalerOf(scale);
        const __m256i v = _mm256_set1_epi16(value);
        for (; i + 32 <= count; i += 32) {
            const __m256i x = Load(src + i);
            const __m256i low = Scaled(_mm256_mullo_epi16(Low(x), v), s);
            const __m256i high = Scaled(_mm256_mullo_epi16(High(x), v), s);
            Store(dst + i, _mm256_packus_epi16(low, high));
        }
    }
    for (; i < count; ++i) dst[i] = PrimitiveScaled(src[i] * value, scale);
}

void Mul(uint8_t *dst, const uint8_t *a, const uint8_t *b, int64_t count, int32_t scale) {
    int64_t i = 0;
    if (InRange(scale)) {
        const Scaler s = ScalerOf(scale);
        for (; i + 32 <= count; i += 32) {
            const __m256i x = Load(a + i);
            const __m256i y = Load(b + i);
            const __m256i low = Scaled(_mm256_mullo_epi16(Low(x), Low(y)), s);
            const __m256i high = Scaled(_mm256_mullo_epi16(High(x), High(y)), s);
            Store(dst + i, _mm256_packus_epi16(low, high));
        }
    }
    for (; i < count; ++i) dst[i] = PrimitiveScaled(a[i] * b[i], scale);
}

void Add(uint8_t *dst, const uint8_t *a, const uint8_t *b, int64_t count, int32_t scale) {
    int64_t i = 0;
    if (scale == 0)
        for (; i + 32 <= count; i += 32) Store(dst + i, _mm256_adds_epu8(Load(a + i), Load(b + i)));
    for (; i < count; ++i) dst[i] = PrimitiveScaled(a[i] + b[i], scale);
}

void AddConst(uint8_t *dst, const uint8_t *src, const uint8_t *value12, int64_t count, int32_t scale) {
    int64_t i = 0;
    if (scale == 0) {
        uint8_t pattern[96];
        for (int j = 0; j < 96; ++j) pattern[j] = value12[j % 12];
        const __m256i a = Load(pattern);
        const __m256i b = Load(pattern + 32);
        const __m256i c = Load(pattern + 64);
        for (; i + 96 <= count; i += 96) {
            Store(dst + i, _mm256_adds_epu8(Load(src + i), a));
            Store(dst + i + 32, _mm256_adds_epu8(Load(src + i + 32), b));
            Store(dst + i + 64, _mm256_adds_epu8(Load(src + i + 64), c));
        }
    }
    for (; i < count; ++i) dst[i] = PrimitiveScaled(src[i] + value12[i % 12], scale);
}

// (x + 127) / 255 for products x up to 65025
__m256i Over255(__m256i x) {
    const __m256i t = _mm256_add_epi16(x, _mm256_set1_epi16(127));
    return _mm256_srli_epi16(_mm256_mulhi_epu16(t, _mm256_set1_epi16(static_cast<int16_t>(0x8081))), 7);
}

__m256i OverPixels(__m256i over, __m256i under) {
    const __m256i alphas = _mm256_setr_epi8(3, 3, 3, 3, 7, 7, 7, 7, 11, 11, 11, 11, 15, 15, 15, 15, 3, 3, 3, 3, 7, 7, 7, 7, 11,
                                            11, 11, 11, 15, 15, 15, 15);
    const __m256i rest = _mm256_xor_si256(_mm256_shuffle_epi8(over, alphas), _mm256_set1_epi8(-1));
    const __m256i low = Over255(_mm256_mullo_epi16(Low(under), Low(rest)));
    const __m256i high = Over255(_mm256_mullo_epi16(High(under), High(rest)));
    return _mm256_adds_epu8(over, _mm256_packus_epi16(low, high));
}

void AlphaOver(uint8_t *dst, const uint8_t *over, const uint8_t *under, int32_t width) {
    int64_t x = 0;
    for (; x + 8 <= width; x += 8) {
        FetchAhead(over + 4 * x);
        OwnAhead(dst + 4 * x);
        Store(dst + 4 * x, OverPixels(Load(over + 4 * x), Load(under + 4 * x)));
    }
    const int64_t left = width - x;
    if (left <= 0) return;
    uint8_t a[32] = {};
    uint8_t b[32] = {};
    for (int64_t i = 0; i < 4 * left; ++i) {
        a[i] = over[4 * x + i];
        b[i] = under[4 * x + i];
    }
    Store(a, OverPixels(Load(a), Load(b)));
    for (int64_t i = 0; i < 4 * left; ++i) dst[4 * x + i] = a[i];
}

}    // namespace

void PrimitiveArithmeticInitAvx2(PrimitiveKernels *table) {
    table->mul_const = MulConst;
    table->mul = Mul;
    table->add = Add;
    table->add_const = AddConst;
    table->alpha_over = AlphaOver;
}

}    // namespace zck
