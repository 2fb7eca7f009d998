#include <immintrin.h>

#include "keying/kernels/kernels_avx2.h"

namespace zck::avx2 {
namespace {

// The three source rows at one column.
struct Rows {
    const uint8_t *above, *middle, *below;
};

ZCK_INLINE __m256i Minimum(const Rows &r, int32_t x) {
    return _mm256_min_epu8(_mm256_min_epu8(Load(r.above + x), Load(r.middle + x)), Load(r.below + x));
}

ZCK_INLINE __m256i Maximum(const Rows &r, int32_t x) {
    return _mm256_max_epu8(_mm256_max_epu8(Load(r.above + x), Load(r.middle + x)), Load(r.below + x));
}

ZCK_INLINE __m256i Erode32(const Rows &r, int32_t x) {
    return _mm256_min_epu8(_mm256_min_epu8(Minimum(r, x - 1), Minimum(r, x)), Minimum(r, x + 1));
}

ZCK_INLINE __m256i Dilate32(const Rows &r, int32_t x) {
    return _mm256_max_epu8(_mm256_max_epu8(Maximum(r, x - 1), Maximum(r, x)), Maximum(r, x + 1));
}

// Weights of a byte pair, low byte first, for _mm256_maddubs_epi16.
ZCK_INLINE __m256i Pair(int32_t low, int32_t high) { return _mm256_set1_epi16(static_cast<int16_t>(low | high << 8)); }

struct Sums {
    __m256i even, odd;    // words: columns x, x + 2, ... and x + 1, x + 3, ...
};

// One row's weighted sums of three columns, weights w 2w w or w w w. The load one column to the left holds the pairs (-1, 0),
// the one to the right the pairs (1, 2), counted from an even column.
ZCK_INLINE Sums RowSums(const uint8_t *p, int32_t side, int32_t centre) {
    const __m256i left = Load(p - 1);
    const __m256i right = Load(p + 1);
    Sums s;
    s.even = _mm256_add_epi16(_mm256_maddubs_epi16(left, Pair(side, centre)), _mm256_maddubs_epi16(right, Pair(side, 0)));
    s.odd = _mm256_add_epi16(_mm256_maddubs_epi16(left, Pair(0, side)), _mm256_maddubs_epi16(right, Pair(centre, side)));
    return s;
}

ZCK_INLINE __m256i Add3(__m256i a, __m256i b, __m256i c) { return _mm256_add_epi16(_mm256_add_epi16(a, b), c); }
ZCK_INLINE __m256i Interleave(__m256i even, __m256i odd) { return _mm256_or_si256(even, _mm256_slli_epi16(odd, 8)); }

// The sum is at most 2295: (s + 5) * 455 >> 12 is the high word of (s + 5) * 7280.
ZCK_INLINE __m256i BoxMean(__m256i s) {
    return _mm256_mulhi_epu16(_mm256_add_epi16(s, _mm256_set1_epi16(5)), _mm256_set1_epi16(455 * 16));
}

ZCK_INLINE __m256i GaussMean(__m256i s) {
    const __m256i tie = _mm256_and_si256(_mm256_srli_epi16(s, 4), _mm256_set1_epi16(1));
    return _mm256_srli_epi16(Add3(s, _mm256_set1_epi16(7), tie), 4);
}

ZCK_INLINE __m256i Box32(const Rows &r, int32_t x) {
    const Sums a = RowSums(r.above + x, 1, 1);
    const Sums m = RowSums(r.middle + x, 1, 1);
    const Sums b = RowSums(r.below + x, 1, 1);
    return Interleave(BoxMean(Add3(a.even, m.even, b.even)), BoxMean(Add3(a.odd, m.odd, b.odd)));
}

ZCK_INLINE __m256i Gauss32(const Rows &r, int32_t x) {
    const Sums a = RowSums(r.above + x, 1, 2);
    const Sums m = RowSums(r.middle + x, 2, 4);
    const Sums b = RowSums(r.below + x, 1, 2);
    return Interleave(GaussMean(Add3(a.even, m.even, b.even)), GaussMean(Add3(a.odd, m.odd, b.odd)));
}

// Runs of 32 columns; the last run is moved left so that it ends with the row. A row that is too short for one run goes
// through padded copies.
template <__m256i (*Run)(const Rows &, int32_t)>
ZCK_INLINE void Filter(uint8_t *dst, const Rows &r, int32_t width) {
    int32_t x = 0;
    for (; x + 32 <= width; x += 32) _mm256_storeu_si256(reinterpret_cast<__m256i *>(dst + x), Run(r, x));
    if (x >= width) return;
    if (width >= 32) {
        _mm256_storeu_si256(reinterpret_cast<__m256i *>(dst + width - 32), Run(r, width - 32));
        return;
    }
    uint8_t padded[3][34] = {};
    for (int32_t i = 0; i < width + 2; ++i) {
        padded[0][i] = r.above[i - 1];
        padded[1][i] = r.middle[i - 1];
        padded[2][i] = r.below[i - 1];
    }
    uint8_t out[32];
    _mm256_storeu_si256(reinterpret_cast<__m256i *>(out), Run({padded[0] + 1, padded[1] + 1, padded[2] + 1}, 0));
    for (int32_t i = 0; i < width; ++i) dst[i] = out[i];
}

}    // namespace

void Erode(uint8_t *dst, const uint8_t *above, const uint8_t *middle, const uint8_t *below, int32_t width) {
    Filter<Erode32>(dst, {above, middle, below}, width);
}

void Dilate(uint8_t *dst, const uint8_t *above, const uint8_t *middle, const uint8_t *below, int32_t width) {
    Filter<Dilate32>(dst, {above, middle, below}, width);
}

void Box(uint8_t *dst, const uint8_t *above, const uint8_t *middle, const uint8_t *below, int32_t width) {
    Filter<Box32>(dst, {above, middle, below}, width);
}

void Gauss(uint8_t *dst, const uint8_t *above, const uint8_t *middle, const uint8_t *below, int32_t width) {
    Filter<Gauss32>(dst, {above, middle, below}, width);
}

}    // namespace zck::avx2
