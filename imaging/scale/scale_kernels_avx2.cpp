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

// Of 16 elements.
struct Sums {
    __m256i low = _mm256_set1_epi32(128);
    __m256i high = _mm256_set1_epi32(128);
    ZCK_INLINE void Add(Sums &sums, const uint8_t *a, const uint8_t *b, __m256i pair) {
        const __m256i first = Wide(a);
        const __m256i second = Wide(b);
        sums.low = _mm256_add_epi32(sums.low, _mm256_madd_epi16(_mm256_unpacklo_epi16(first, second), pair));
        sums.high = _mm256_add_epi32(sums.high, _mm256_madd_epi16(_mm256_unpackhi_epi16(first, second), pair));
    }
    ZCK_INLINE void Put(int16_t *dst, const Sums &sums) {
        Store(dst, _mm256_packs_epi32(_mm256_srai_epi32(sums.low, 8), _mm256_srai_epi32(sums.high, 8)));
    }
};

int32_t MixTwo(int16_t *dst, const uint8_t *const *rows, const int16_t *weights, int32_t count) {
    const uint8_t *const a = rows[0];
    const uint8_t *const b = rows[1];
    const __m256i pair = WeightPair(weights, true);
    int32_t i = 0;
    for (; i + 16 <= count; i += 16) {
        Sums sums;
        FetchAhead(b + i);
        Sums::Add(sums, a + i, b + i, pair);
        Sums::Put(dst + i, sums);
    }
    return i;
}

int32_t MixFour(int16_t *dst, const uint8_t *const *rows, const int16_t *weights, int32_t count) {
    const uint8_t *const a = rows[0];
    const uint8_t *const b = rows[1];
    const uint8_t *const c = rows[2];
    const uint8_t *const d = rows[3];
    const __m256i upper = WeightPair(weights, true);
    const __m256i lower = WeightPair(weights + 2, true);
    int32_t i = 0;
    for (; i + 16 <= count; i += 16) {
        Sums sums;
        Sums::Add(sums, a + i, b + i, upper);
        FetchAhead(c + i);
        FetchAhead(d + i);
        Sums::Add(sums, c + i, d + i, lower);
        Sums::Put(dst + i, sums);
    }
    return i;
}

int32_t MixAny(int16_t *dst, const uint8_t *const *rows, const int16_t *weights, int32_t taps, int32_t count) {
    int32_t i = 0;
    for (; i + 16 <= count; i += 16) {
        Sums sums;
        for (int32_t t = 0; t < taps; t += 2) {
            const bool both = t + 1 < taps;
            Sums::Add(sums, rows[t] + i, rows[both ? t + 1 : t] + i, WeightPair(weights + t, both));
        }
        Sums::Put(dst + i, sums);
    }
    return i;
}

void MixRows(int16_t *dst, const uint8_t *const *rows, const int16_t *weights, int32_t taps, int32_t count) {
    int32_t i = taps == 2   ? MixTwo(dst, rows, weights, count)
                : taps == 4 ? MixFour(dst, rows, weights, count)
                            : MixAny(dst, rows, weights, taps, count);
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

uint8_t Column(const int16_t *src, const ColumnTable &table, int32_t x, int32_t channels) {
    const int16_t *const from = src + int64_t{channels} * table.first[x];
    int32_t sum = 1 << 19;
    for (int32_t t = 0; t < table.taps; ++t)
        sum += from[channels * t] * table.weights[2 * (int64_t{t / 2} * table.outputs + x) + t % 2];
    return Clamped(sum >> 20);
}

// Two times 16 bytes.
ZCK_INLINE __m256i Halves(const void *a, const void *b) {
    return _mm256_inserti128_si256(_mm256_castsi128_si256(LoadHalf(a)), LoadHalf(b), 1);
}

// Four elements each from two times two places.
ZCK_INLINE __m256i Quarters(const int16_t *a, const int16_t *b, const int16_t *c, const int16_t *d) {
    const auto two = [](const int16_t *low, const int16_t *high) {
        const __m128i half = _mm_loadl_epi64(reinterpret_cast<const __m128i *>(low));
        return _mm_castps_si128(_mm_loadh_pi(_mm_castsi128_ps(half), reinterpret_cast<const __m64 *>(high)));
    };
    return _mm256_inserti128_si256(_mm256_castsi128_si256(two(a, b)), two(c, d), 1);
}

ZCK_INLINE __m256i PairWeights(const ColumnTable &table, int32_t pair, int32_t x) {
    return Load(table.weights + 2 * (int64_t{pair} * table.outputs + x));
}

// Outputs x to x + 7 that lie close together: of each pair of taps one load for four outputs.
template <int32_t pairs>
struct Close {
    struct Eight {
        __m256i places;
        const int16_t *low;
        const int16_t *high;
        __m256i sum;
    };
    // From pair p on. Recursion, since loops are not unrolled.
    template <int32_t p>
    ZCK_INLINE void Add(Eight &eight, const ColumnTable &table, int32_t x) {
        const __m256i elements = _mm256_shuffle_epi8(Halves(eight.low + 2 * p, eight.high + 2 * p), eight.places);
        eight.sum = _mm256_add_epi32(eight.sum, _mm256_madd_epi16(elements, PairWeights(table, p, x)));
        if constexpr (p + 1 < pairs) Add<p + 1>(eight, table, x);
    }
    ZCK_INLINE __m256i Sums(const int16_t *src, const ColumnTable &table, int32_t x) {
        Eight eight = {Load(table.places + x), src + table.first[x], src + table.first[x + 4], _mm256_set1_epi32(1 << 19)};
        Add<0>(eight, table, x);
        return _mm256_srai_epi32(eight.sum, 20);
    }
};

// Outputs anywhere: of each two pairs one load for each output. `fixed`: the number of pairs, if it is known.
template <int32_t fixed>
struct Apart {
    // Pairs p and p + 1, or p alone.
    ZCK_INLINE __m256i Two(const int16_t *from, const ColumnTable &table, int32_t p, int32_t x, bool both) {
        const int32_t *const first = table.first + x;
        const __m256 a = _mm256_castsi256_ps(Quarters(from + first[0], from + first[1], from + first[4], from + first[5]));
        const __m256 b = _mm256_castsi256_ps(Quarters(from + first[2], from + first[3], from + first[6], from + first[7]));
        const __m256i even = _mm256_castps_si256(_mm256_shuffle_ps(a, b, _MM_SHUFFLE(2, 0, 2, 0)));
        const __m256i sum = _mm256_madd_epi16(even, PairWeights(table, p, x));
        if (!both) return sum;
        const __m256i odd = _mm256_castps_si256(_mm256_shuffle_ps(a, b, _MM_SHUFFLE(3, 1, 3, 1)));
        return _mm256_add_epi32(sum, _mm256_madd_epi16(odd, PairWeights(table, p + 1, x)));
    }
    ZCK_INLINE __m256i Sums(const int16_t *src, const ColumnTable &table, int32_t x) {
        const int32_t pairs = fixed > 0 ? fixed : table.taps / 2;
        __m256i sum = _mm256_set1_epi32(1 << 19);
        for (int32_t p = 0; p < pairs; p += 2) sum = _mm256_add_epi32(sum, Two(src + 2 * p, table, p, x, p + 1 < pairs));
        return _mm256_srai_epi32(sum, 20);
    }
};

template <class Outputs>
void Columns1By(uint8_t *dst, const int16_t *src, const ColumnTable &given, int32_t count) {
    const ColumnTable table = given;    // no byte that is written is part of it
    int32_t x = 0;
    for (; x + 16 <= count; x += 16) {
        const __m256i words = _mm256_packs_epi32(Outputs::Sums(src, table, x), Outputs::Sums(src, table, x + 8));
        StoreHalf(dst + x, _mm_shuffle_epi32(Bytes(words), _MM_SHUFFLE(3, 1, 2, 0)));
    }
    for (; x < count; ++x) dst[x] = Column(src, table, x, 1);
}

void Columns1(uint8_t *dst, const int16_t *src, const ColumnTable &table, int32_t count) {
    const bool close = table.places != nullptr;
    if (table.taps == 2) return (close ? Columns1By<Close<1>> : Columns1By<Apart<1>>)(dst, src, table, count);
    if (table.taps == 4) return (close ? Columns1By<Close<2>> : Columns1By<Apart<2>>)(dst, src, table, count);
    if (table.taps == 6 && close) return Columns1By<Close<3>>(dst, src, table, count);
    Columns1By<Apart<0>>(dst, src, table, count);
}

// Two outputs, one in each half of a vector, with the weights of output `place` among their four.
template <int32_t place>
ZCK_INLINE void AddPixels(__m256i &sum, const int16_t *from, const int32_t *first, __m256i weights) {
    const __m256i pairs = _mm256_setr_epi8(0, 1, 8, 9, 2, 3, 10, 11, 4, 5, 12, 13, 6, 7, 14, 15, 0, 1, 8, 9, 2, 3, 10, 11, 4, 5,
                                           12, 13, 6, 7, 14, 15);
    const __m256i pixels = Halves(from + int64_t{4} * first[place], from + int64_t{4} * first[place + 4]);
    const __m256i w = _mm256_shuffle_epi32(weights, 0x55 * place);
    sum = _mm256_add_epi32(sum, _mm256_madd_epi16(_mm256_shuffle_epi8(pixels, pairs), w));
}

// Outputs x to x + 7.
template <int32_t fixed>
ZCK_INLINE __m256i EightPixels(const int16_t *src, const ColumnTable &table, int32_t x) {
    const int32_t *const first = table.first + x;
    const int32_t count = fixed > 0 ? fixed : table.taps / 2;
    __m256i a = _mm256_set1_epi32(1 << 19);
    __m256i b = a;
    __m256i c = a;
    __m256i d = a;
    for (int32_t p = 0; p < count; ++p) {
        const int16_t *const from = src + int64_t{8} * p;
        const __m256i weights = PairWeights(table, p, x);
        AddPixels<0>(a, from, first, weights);
        AddPixels<1>(b, from, first, weights);
        AddPixels<2>(c, from, first, weights);
        AddPixels<3>(d, from, first, weights);
    }
    const __m256i low = _mm256_packs_epi32(_mm256_srai_epi32(a, 20), _mm256_srai_epi32(b, 20));
    const __m256i high = _mm256_packs_epi32(_mm256_srai_epi32(c, 20), _mm256_srai_epi32(d, 20));
    return _mm256_packus_epi16(low, high);
}

template <int32_t fixed>
void Columns4By(uint8_t *dst, const int16_t *src, const ColumnTable &given, int32_t count) {
    const ColumnTable table = given;    // no byte that is written is part of it
    int32_t x = 0;
    for (; x + 8 <= count; x += 8) Store(dst + int64_t{4} * x, EightPixels<fixed>(src, table, x));
    for (; x < count; ++x)
        for (int32_t c = 0; c < 4; ++c) dst[int64_t{4} * x + c] = Column(src + c, table, x, 4);
}

void Columns4(uint8_t *dst, const int16_t *src, const ColumnTable &table, int32_t count) {
    if (table.taps == 2) return Columns4By<1>(dst, src, table, count);
    if (table.taps == 4) return Columns4By<2>(dst, src, table, count);
    Columns4By<0>(dst, src, table, count);
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
