// AVX2 versions. What is left behind the last full vector goes element by element.
#include <immintrin.h>

#include "imaging/scale/scale_kernels.h"
#include "platform/avx2.h"

namespace zck {
namespace {

using namespace avx2;

__m256i Wide(const uint8_t *p) { return _mm256_cvtepu8_epi16(LoadHalf(p)); }

// 16 words below 256 in order.
__m128i Bytes(__m256i words) { return _mm_packus_epi16(_mm256_castsi256_si128(words), _mm256_extracti128_si256(words, 1)); }

void Blend2(uint8_t *dst, const uint8_t *a, const uint8_t *b, const uint8_t *weights, int64_t blocks) {
    const __m256i wa = _mm256_set1_epi16(weights[0]);
    const __m256i wb = _mm256_set1_epi16(weights[1]);
    for (int64_t i = 0; i < blocks * 16; i += 16) {
        const __m256i sum = _mm256_adds_epu16(_mm256_mullo_epi16(Wide(a + i), wa), _mm256_mullo_epi16(Wide(b + i), wb));
        StoreHalf(dst + i, Bytes(_mm256_srli_epi16(sum, 8)));
    }
}

template <int32_t bias>
void BlendSum(uint8_t *dst, const uint8_t *const *rows, const uint8_t *weights, int32_t taps, int64_t blocks) {
    for (int64_t i = 0; i < blocks * 16; i += 16) {
        __m256i sum = _mm256_setzero_si256();
        for (int32_t t = 0; t < taps; ++t)
            sum = _mm256_adds_epu16(sum, _mm256_mullo_epi16(Wide(rows[t] + i), _mm256_set1_epi16(weights[t])));
        StoreHalf(dst + i, Bytes(_mm256_srli_epi16(_mm256_adds_epu16(sum, _mm256_set1_epi16(bias)), 8)));
    }
}

void Blend3(uint8_t *dst, const uint8_t *const *rows, const uint8_t *weights, int64_t blocks) {
    BlendSum<0>(dst, rows, weights, 3, blocks);
}

// The weights of two rows, for products of pairs.
__m256i WeightPair(const int16_t *weights, bool both) {
    const auto second = static_cast<uint16_t>(both ? weights[1] : 0);
    return _mm256_set1_epi32(static_cast<int32_t>((static_cast<uint32_t>(second) << 16) | static_cast<uint16_t>(weights[0])));
}

struct Sums {
    __m256i low;
    __m256i high;
    void Add(__m256i a, __m256i b, __m256i pair) {
        low = _mm256_add_epi32(low, _mm256_madd_epi16(_mm256_unpacklo_epi16(a, b), pair));
        high = _mm256_add_epi32(high, _mm256_madd_epi16(_mm256_unpackhi_epi16(a, b), pair));
    }
};

// Taps known at compile time keep the weights in registers.
template <int32_t fixed>
int32_t MixBlocks(int16_t *dst, const uint8_t *const *rows, const int16_t *weights, int32_t given, int32_t count) {
    const int32_t taps = fixed > 0 ? fixed : given;
    int32_t i = 0;
    for (; i + 16 <= count; i += 16) {
        Sums sums = {_mm256_set1_epi32(128), _mm256_set1_epi32(128)};
        for (int32_t t = 0; t < taps; t += 2) {
            const bool both = t + 1 < taps;
            sums.Add(Wide(rows[t] + i), Wide(rows[both ? t + 1 : t] + i), WeightPair(weights + t, both));
        }
        const __m256i words = _mm256_packs_epi32(_mm256_srai_epi32(sums.low, 8), _mm256_srai_epi32(sums.high, 8));
        _mm256_storeu_si256(reinterpret_cast<__m256i *>(dst + i), words);
    }
    return i;
}

void MixRows(int16_t *dst, const uint8_t *const *rows, const int16_t *weights, int32_t taps, int32_t count) {
    int32_t i = taps == 2   ? MixBlocks<2>(dst, rows, weights, taps, count)
                : taps == 4 ? MixBlocks<4>(dst, rows, weights, taps, count)
                            : MixBlocks<0>(dst, rows, weights, taps, count);
    for (; i < count; ++i) {
        int32_t sum = 128;
        for (int32_t t = 0; t < taps; ++t) sum += rows[t][i] * weights[t];
        sum >>= 8;
        dst[i] = static_cast<int16_t>(sum < -32768 ? -32768 : sum > 32767 ? 32767 : sum);
    }
}

uint8_t Clamped(int32_t v) { return static_cast<uint8_t>(v < 0 ? 0 : v > 255 ? 255 : v); }

// Saturation where the rounding would wrap: such words end at 255 anyway.
__m256i Rounded(__m256i words) { return _mm256_srai_epi16(_mm256_adds_epi16(words, _mm256_set1_epi16(32)), 6); }

void Narrow(uint8_t *dst, const int16_t *src, int32_t count) {
    int32_t i = 0;
    for (; i + 16 <= count; i += 16) StoreHalf(dst + i, Bytes(Rounded(Load(src + i))));
    for (; i < count; ++i) dst[i] = Clamped((src[i] + 32) >> 6);
}

// Four elements from each of four places.
__m256i Gather(const int16_t *src, const int32_t *first) {
    const auto two = [src](int32_t a, int32_t b) {
        const __m128i low = _mm_loadl_epi64(reinterpret_cast<const __m128i *>(src + a));
        return _mm_castps_si128(_mm_loadh_pi(_mm_castsi128_ps(low), reinterpret_cast<const __m64 *>(src + b)));
    };
    return _mm256_inserti128_si256(_mm256_castsi128_si256(two(first[0], first[1])), two(first[2], first[3]), 1);
}

// Outputs x to x + 3, each as two sums side by side.
__m256i Four(const int16_t *src, const int32_t *first, const int16_t *weights, int32_t taps) {
    if (taps == kTapGroup) return _mm256_madd_epi16(Gather(src, first), Load(weights));
    const int32_t places[4] = {0, taps, 2 * taps, 3 * taps};
    __m256i sum = _mm256_setzero_si256();
    for (int32_t t = 0; t < taps; t += kTapGroup)
        sum = _mm256_add_epi32(sum, _mm256_madd_epi16(Gather(src + t, first), Gather(weights + t, places)));
    return sum;
}

uint8_t Column(const int16_t *from, const int16_t *weights, int32_t taps, int32_t channels) {
    int32_t sum = 1 << 19;
    for (int32_t t = 0; t < taps; ++t) sum += from[channels * t] * weights[t];
    return Clamped(sum >> 20);
}

void Columns1(uint8_t *dst, const int16_t *src, const int32_t *first, const int16_t *weights, int32_t taps, int32_t count) {
    const __m256i half = _mm256_set1_epi32(1 << 19);
    int32_t x = 0;
    for (; x + 8 <= count; x += 8) {
        const int16_t *const w = weights + int64_t{taps} * x;
        const __m256i mixed =
            _mm256_hadd_epi32(Four(src, first + x, w, taps), Four(src, first + x + 4, w + int64_t{4} * taps, taps));
        const __m256i ordered = _mm256_permute4x64_epi64(mixed, _MM_SHUFFLE(3, 1, 2, 0));
        const __m256i sum = _mm256_srai_epi32(_mm256_add_epi32(ordered, half), 20);
        const __m128i words = _mm_packs_epi32(_mm256_castsi256_si128(sum), _mm256_extracti128_si256(sum, 1));
        _mm_storel_epi64(reinterpret_cast<__m128i *>(dst + x), _mm_packus_epi16(words, words));
    }
    for (; x < count; ++x) dst[x] = Column(src + first[x], weights + int64_t{taps} * x, taps, 1);
}

// One output of four channels: four sums.
__m128i Pixel(const int16_t *from, const int16_t *weights, int32_t taps) {
    const __m256i pairs = _mm256_setr_epi8(0, 1, 8, 9, 2, 3, 10, 11, 4, 5, 12, 13, 6, 7, 14, 15, 0, 1, 8, 9, 2, 3, 10, 11, 4, 5,
                                           12, 13, 6, 7, 14, 15);
    const __m256i spread = _mm256_setr_epi32(0, 0, 0, 0, 1, 1, 1, 1);
    __m256i sum = _mm256_setzero_si256();
    for (int32_t t = 0; t < taps; t += kTapGroup) {
        const __m128i group = _mm_loadl_epi64(reinterpret_cast<const __m128i *>(weights + t));
        const __m256i w = _mm256_permutevar8x32_epi32(_mm256_castsi128_si256(group), spread);
        sum = _mm256_add_epi32(sum, _mm256_madd_epi16(_mm256_shuffle_epi8(Load(from + 4 * t), pairs), w));
    }
    const __m128i both = _mm_add_epi32(_mm256_castsi256_si128(sum), _mm256_extracti128_si256(sum, 1));
    return _mm_srai_epi32(_mm_add_epi32(both, _mm_set1_epi32(1 << 19)), 20);
}

void Columns4(uint8_t *dst, const int16_t *src, const int32_t *first, const int16_t *weights, int32_t taps, int32_t count) {
    int32_t x = 0;
    for (; x + 4 <= count; x += 4) {
        __m128i p[4];
        for (int32_t j = 0; j < 4; ++j) p[j] = Pixel(src + int64_t{4} * first[x + j], weights + int64_t{taps} * (x + j), taps);
        StoreHalf(dst + int64_t{4} * x, _mm_packus_epi16(_mm_packs_epi32(p[0], p[1]), _mm_packs_epi32(p[2], p[3])));
    }
    for (; x < count; ++x)
        for (int32_t c = 0; c < 4; ++c)
            dst[int64_t{4} * x + c] = Column(src + int64_t{4} * first[x] + c, weights + int64_t{taps} * x, taps, 4);
}

}    // namespace

void ScaleKernelsInitAvx2(ScaleKernels *table) {
    table->blend2 = Blend2;
    table->blend3 = Blend3;
    table->blend_many = BlendSum<255>;
    table->mix_rows = MixRows;
    table->narrow = Narrow;
    table->columns1 = Columns1;
    table->columns4 = Columns4;
}

}    // namespace zck
