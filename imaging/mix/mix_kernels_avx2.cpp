// AVX2 versions of the rows of mixing. What is left behind the last full vector goes byte by byte, or as a padded block.
#include <immintrin.h>

#include "imaging/mix/mix_kernels.h"
#include "platform/avx2.h"

namespace zck {
namespace {

using namespace avx2;

ZCK_INLINE __m256i Low(__m256i x) { return _mm256_unpacklo_epi8(x, _mm256_setzero_si256()); }
ZCK_INLINE __m256i High(__m256i x) { return _mm256_unpackhi_epi8(x, _mm256_setzero_si256()); }

// Products below 2^16 - 2^n over 2^n, rounded: just less than a half is added, and the rest if the result would be odd.
struct Rounding {
    __m128i shift;
    __m256i almostHalf;
};

ZCK_INLINE Rounding RoundingOf(int32_t n) { return {_mm_cvtsi32_si128(n), Words((1 << (n - 1)) - 1)}; }

ZCK_INLINE __m256i Rounded(__m256i p, const Rounding &r) {
    const __m256i odd = _mm256_and_si256(_mm256_srl_epi16(p, r.shift), Words(1));
    return _mm256_srl_epi16(_mm256_add_epi16(_mm256_add_epi16(p, r.almostHalf), odd), r.shift);
}

// One piece of a row, for full vectors and for the padded rest: `bytes` of `dst` and `over`, `masks` of a third row.
template <int64_t kBytes, int64_t kMasks, class Piece>
ZCK_INLINE void Rest(uint8_t *dst, const uint8_t *over, const uint8_t *mask, int64_t bytes, int64_t masks, const Piece &piece) {
    uint8_t d[kBytes] = {};
    uint8_t s[kBytes] = {};
    uint8_t m[kMasks] = {};
    CopyBytes(d, dst, bytes);
    CopyBytes(s, over, bytes);
    CopyBytes(m, mask, masks);
    piece(d, s, m);
    CopyBytes(dst, d, bytes);
}

ZCK_INLINE __m256i SumOf(__m256i low, __m256i high, __m256i lowOver, __m256i highOver) {
    return _mm256_adds_epu8(_mm256_packus_epi16(low, high), _mm256_packus_epi16(lowOver, highOver));
}

void Constant(uint8_t *dst, const uint8_t *over, int32_t q, int64_t count) {
    const Rounding r = RoundingOf(7);
    const __m256i own = Words(128 - q);
    const __m256i other = Words(q);
    const auto piece = [&](uint8_t * d, const uint8_t *s, const uint8_t *) __attribute__((always_inline)) {
        const __m256i x = Load(d);
        const __m256i y = Load(s);
        Store(d, SumOf(Rounded(_mm256_mullo_epi16(Low(x), own), r), Rounded(_mm256_mullo_epi16(High(x), own), r),
                       Rounded(_mm256_mullo_epi16(Low(y), other), r), Rounded(_mm256_mullo_epi16(High(y), other), r)));
    };
    int64_t i = 0;
    for (; i + 32 <= count; i += 32) {
        OwnAhead(dst + i);
        FetchAhead(over + i);
        piece(dst + i, over + i, nullptr);
    }
    if (i < count) Rest<32, 1>(dst + i, over + i, nullptr, count - i, 0, piece);
}

void Weighted(uint8_t *dst, const uint8_t *over, const uint8_t *q, int64_t count) {
    const Rounding r = RoundingOf(7);
    const __m256i whole = _mm256_set1_epi8(static_cast<char>(128));
    const auto piece = [&](uint8_t * d, const uint8_t *s, const uint8_t *m) __attribute__((always_inline)) {
        const __m256i x = Load(d);
        const __m256i y = Load(s);
        const __m256i other = Load(m);
        const __m256i own = _mm256_sub_epi8(whole, other);
        Store(d,
              SumOf(Rounded(_mm256_mullo_epi16(Low(x), Low(own)), r), Rounded(_mm256_mullo_epi16(High(x), High(own)), r),
                    Rounded(_mm256_mullo_epi16(Low(y), Low(other)), r), Rounded(_mm256_mullo_epi16(High(y), High(other)), r)));
    };
    int64_t i = 0;
    for (; i + 32 <= count; i += 32) {
        OwnAhead(dst + i);
        piece(dst + i, over + i, q + i);
    }
    if (i < count) Rest<32, 32>(dst + i, over + i, q + i, count - i, count - i, piece);
}

// The weights of 8 pixels, each in a lane of 32 bits.
ZCK_INLINE __m256i EightWeights(const uint8_t *bgra, __m256i more, __m256i a) {
    const __m256i alpha = _mm256_srli_epi32(Load(bgra), 24);
    return _mm256_srli_epi32(_mm256_mullo_epi16(_mm256_add_epi32(alpha, more), a), 8);
}

void Weights4(uint8_t *q, const uint8_t *bgra, int32_t a, int32_t width) {
    const __m256i factor = Dwords(a);
    const __m256i spread = _mm256_setr_epi8(0, 0, 0, 0, 4, 4, 4, 4, 8, 8, 8, 8, 12, 12, 12, 12, 0, 0, 0, 0, 4, 4, 4, 4, 8, 8, 8,
                                            8, 12, 12, 12, 12);
    const auto piece = [&](uint8_t * d, const uint8_t *s, const uint8_t *) __attribute__((always_inline)) {
        Store(d, _mm256_shuffle_epi8(EightWeights(s, Dwords(1), factor), spread));
    };
    int64_t x = 0;
    for (; x + 8 <= width; x += 8) piece(q + 4 * x, bgra + 4 * x, nullptr);
    if (x < width) Rest<32, 1>(q + 4 * x, bgra + 4 * x, nullptr, 4 * (width - x), 0, piece);
}

// 16 bytes are stored for 12, so that the last pixels need a row of their own.
void Weights3(uint8_t *q, const uint8_t *bgra, int32_t a, int32_t width) {
    const __m256i factor = Dwords(a);
    const __m256i spread = _mm256_setr_epi8(0, 0, 0, 4, 4, 4, 8, 8, 8, 12, 12, 12, -1, -1, -1, -1, 0, 0, 0, 4, 4, 4, 8, 8, 8,
                                            12, 12, 12, -1, -1, -1, -1);
    const auto piece = [&](uint8_t * d, const uint8_t *s) __attribute__((always_inline)) {
        const __m256i w = _mm256_shuffle_epi8(EightWeights(s, Dwords(1), factor), spread);
        StoreHalf(d, _mm256_castsi256_si128(w));
        StoreHalf(d + 12, _mm256_extracti128_si256(w, 1));
    };
    int64_t x = 0;
    for (; x + 10 <= width; x += 8) piece(q + 3 * x, bgra + 4 * x);
    for (; x < width; x += 8) {
        const int64_t n = width - x < 8 ? width - x : 8;
        uint8_t s[32] = {};
        uint8_t d[32];
        CopyBytes(s, bgra + 4 * x, 4 * n);
        piece(d, s);
        CopyBytes(q + 3 * x, d, 3 * n);
    }
}

void Weights2(uint8_t *q, const uint8_t *bgra, int32_t a, int32_t width) {
    const __m256i factor = Dwords(a);
    const __m256i spread = _mm256_setr_epi8(0, 0, 4, 4, 8, 8, 12, 12, -1, -1, -1, -1, -1, -1, -1, -1, 0, 0, 4, 4, 8, 8, 12, 12,
                                            -1, -1, -1, -1, -1, -1, -1, -1);
    const auto piece = [&](uint8_t * d, const uint8_t *s) __attribute__((always_inline)) {
        const __m256i w = _mm256_shuffle_epi8(EightWeights(s, _mm256_setzero_si256(), factor), spread);
        StoreHalf(d, _mm_unpacklo_epi64(_mm256_castsi256_si128(w), _mm256_extracti128_si256(w, 1)));
    };
    int64_t x = 0;
    for (; x + 8 <= width; x += 8) piece(q + 2 * x, bgra + 4 * x);
    if (x >= width) return;
    uint8_t s[32] = {};
    uint8_t d[16];
    CopyBytes(s, bgra + 4 * x, 4 * (width - x));
    piece(d, s);
    CopyBytes(q + 2 * x, d, 2 * (width - x));
}

// (x + 127) / 255 for products x up to 65025
ZCK_INLINE __m256i Over255(__m256i x) {
    return _mm256_srli_epi16(_mm256_mulhi_epu16(_mm256_add_epi16(x, Words(127)), Words(0x8081)), 7);
}

void OverScaled(uint8_t *dst, const uint8_t *over, uint8_t value, int32_t scale, int32_t width) {
    const Rounding r = RoundingOf(scale);
    const __m256i factor = Words(value);
    const __m256i alphas = _mm256_setr_epi8(3, 3, 3, 3, 7, 7, 7, 7, 11, 11, 11, 11, 15, 15, 15, 15, 3, 3, 3, 3, 7, 7, 7, 7, 11,
                                            11, 11, 11, 15, 15, 15, 15);
    const auto piece = [&](uint8_t * d, const uint8_t *s, const uint8_t *) __attribute__((always_inline)) {
        const __m256i y = Load(s);
        const __m256i scaled = _mm256_packus_epi16(Rounded(_mm256_mullo_epi16(Low(y), factor), r),
                                                   Rounded(_mm256_mullo_epi16(High(y), factor), r));
        const __m256i rest = _mm256_xor_si256(_mm256_shuffle_epi8(scaled, alphas), _mm256_set1_epi8(-1));
        const __m256i x = Load(d);
        const __m256i low = Over255(_mm256_mullo_epi16(Low(x), Low(rest)));
        const __m256i high = Over255(_mm256_mullo_epi16(High(x), High(rest)));
        Store(d, _mm256_adds_epu8(scaled, _mm256_packus_epi16(low, high)));
    };
    int64_t x = 0;
    for (; x + 8 <= width; x += 8) {
        OwnAhead(dst + 4 * x);
        FetchAhead(over + 4 * x);
        piece(dst + 4 * x, over + 4 * x, nullptr);
    }
    if (x < width) Rest<32, 1>(dst + 4 * x, over + 4 * x, nullptr, 4 * (width - x), 0, piece);
}

// The weights of 8 pixels of 4:2:2 in the order of their bytes: a luma byte has its own, a chroma byte the mean of two.
template <bool kLumaFirst>
ZCK_INLINE __m256i PairWeights(__m128i k) {
    const __m128i other = _mm_shufflehi_epi16(_mm_shufflelo_epi16(k, 0xB1), 0xB1);
    const __m128i mean = _mm_srli_epi16(_mm_add_epi16(k, other), 1);
    const __m128i first = kLumaFirst ? k : mean;
    const __m128i second = kLumaFirst ? mean : k;
    return _mm256_set_m128i(_mm_unpackhi_epi16(first, second), _mm_unpacklo_epi16(first, second));
}

ZCK_INLINE __m128i EightBytes(const uint8_t *p) {
    return _mm_cvtepu8_epi16(_mm_loadl_epi64(reinterpret_cast<const __m128i *>(p)));
}

// 16 words of a range that fits 8 bits after saturation.
ZCK_INLINE void StoreBytes(uint8_t *dst, __m256i words) {
    StoreHalf(dst, _mm_packus_epi16(_mm256_castsi256_si128(words), _mm256_extracti128_si256(words, 1)));
}

template <bool kLumaFirst>
void Premultiplied(uint8_t *dst, const uint8_t *over, const uint8_t *mask, int32_t a, int32_t width) {
    const int32_t q = a / 2;
    const __m128i factor = _mm_set1_epi16(static_cast<int16_t>(q));
    const __m256i factors = Words(q);
    const __m256i offset = Dwords(kLumaFirst ? 0x00800010 : 0x00100080);
    int64_t x = 0;
    for (; x + 8 <= width; x += 8) {
        const __m128i k = _mm_srli_epi16(_mm_mullo_epi16(EightBytes(mask + x), factor), 7);
        const __m256i c = _mm256_srli_epi16(_mm256_sub_epi16(Words(256), PairWeights<kLumaFirst>(k)), 1);
        const __m256i d = _mm256_sub_epi16(_mm256_cvtepu8_epi16(LoadHalf(dst + 2 * x)), offset);
        const __m256i s = _mm256_sub_epi16(_mm256_cvtepu8_epi16(LoadHalf(over + 2 * x)), offset);
        const __m256i sum = _mm256_adds_epi16(_mm256_mullo_epi16(d, c), _mm256_mullo_epi16(s, factors));
        StoreBytes(dst + 2 * x, _mm256_add_epi16(_mm256_srai_epi16(_mm256_adds_epi16(sum, Words(127)), 7), offset));
    }
    MixPremultipliedTail(dst + 2 * x, over + 2 * x, mask + x, a, static_cast<int32_t>(width - x), kLumaFirst);
}

template <bool kLumaFirst>
void Masked(uint8_t *dst, const uint8_t *over, const uint8_t *mask, int32_t a, int32_t width) {
    const __m128i factor = _mm_set1_epi16(static_cast<int16_t>(a < 255 ? a : 256));
    int64_t x = 0;
    for (; x + 8 <= width; x += 8) {
        const __m256i k = PairWeights<kLumaFirst>(_mm_srli_epi16(_mm_mullo_epi16(EightBytes(mask + x), factor), 8));
        const __m256i d = _mm256_cvtepu8_epi16(LoadHalf(dst + 2 * x));
        const __m256i s = _mm256_cvtepu8_epi16(LoadHalf(over + 2 * x));
        const __m256i own = _mm256_mullo_epi16(d, _mm256_sub_epi16(Words(255), k));
        const __m256i sum = _mm256_add_epi16(_mm256_add_epi16(own, _mm256_mullo_epi16(s, k)), Words(255));
        StoreBytes(dst + 2 * x, _mm256_srli_epi16(sum, 8));
    }
    MixMaskedTail(dst + 2 * x, over + 2 * x, mask + x, a, static_cast<int32_t>(width - x));
}

// The sum of both products saturates to 16 bits exactly where the result saturates to 8.
void Masked4(uint8_t *dst, const uint8_t *over, const uint8_t *mask, int32_t a, int32_t width) {
    const __m256i factor = Words(a);
    const __m256i spread =
        _mm256_setr_epi8(0, 0, 0, 0, 1, 1, 1, 1, 2, 2, 2, 2, 3, 3, 3, 3, 4, 4, 4, 4, 5, 5, 5, 5, 6, 6, 6, 6, 7, 7, 7, 7);
    const auto mixed = [&](__m256i d, __m256i s, __m256i rest) __attribute__((always_inline)) {
        const __m256i sum = _mm256_adds_epu16(_mm256_mullo_epi16(s, factor), _mm256_mullo_epi16(d, rest));
        return _mm256_srli_epi16(_mm256_adds_epu16(sum, Words(255)), 8);
    };
    const auto piece = [&](uint8_t * d, const uint8_t *s, const uint8_t *m) __attribute__((always_inline)) {
        const __m128i eight = _mm_loadl_epi64(reinterpret_cast<const __m128i *>(m));
        const __m256i k = _mm256_shuffle_epi8(_mm256_broadcastsi128_si256(eight), spread);
        const __m256i rest = _mm256_xor_si256(k, _mm256_set1_epi8(-1));
        const __m256i x = Load(d);
        const __m256i y = Load(s);
        Store(d, _mm256_packus_epi16(mixed(Low(x), Low(y), Low(rest)), mixed(High(x), High(y), High(rest))));
    };
    int64_t x = 0;
    for (; x + 8 <= width; x += 8) {
        OwnAhead(dst + 4 * x);
        FetchAhead(over + 4 * x);
        piece(dst + 4 * x, over + 4 * x, mask + x);
    }
    if (x < width) Rest<32, 8>(dst + 4 * x, over + 4 * x, mask + x, 4 * (width - x), width - x, piece);
}

void Blend(uint8_t *dst, const uint8_t *over, int32_t a, int64_t count) {
    const __m256i factor = Words(a);
    const __m256i own = Words(256 - a);
    const auto mixed = [&](__m256i d, __m256i s) __attribute__((always_inline)) {
        return _mm256_srli_epi16(_mm256_add_epi16(_mm256_mullo_epi16(s, factor), _mm256_mullo_epi16(d, own)), 8);
    };
    const auto piece = [&](uint8_t * d, const uint8_t *s, const uint8_t *) __attribute__((always_inline)) {
        const __m256i x = Load(d);
        const __m256i y = Load(s);
        Store(d, _mm256_packus_epi16(mixed(Low(x), Low(y)), mixed(High(x), High(y))));
    };
    int64_t i = 0;
    for (; i + 32 <= count; i += 32) {
        OwnAhead(dst + i);
        FetchAhead(over + i);
        piece(dst + i, over + i, nullptr);
    }
    if (i < count) Rest<32, 1>(dst + i, over + i, nullptr, count - i, 0, piece);
}

}    // namespace

void MixKernelsInitAvx2(MixKernels *table) {
    *table = {Constant,      Weighted,     Weights3, Weights4, Weights2, OverScaled, Premultiplied<false>, Premultiplied<true>,
              Masked<false>, Masked<true>, Masked4,  Blend};
}

}    // namespace zck
