#include <immintrin.h>

#include "keying/kernels/kernels_avx2.h"

namespace zck::avx2 {
namespace {

ZCK_INLINE __m256i Some(const uint8_t *p, __m256i lanes) {
    return _mm256_maskload_epi32(reinterpret_cast<const int *>(p), lanes);
}

// Sums of three squared differences, in the order of the pixels: unpacking and adding pairs both keep the halves apart.
ZCK_INLINE __m256i Distances(__m256i a, __m256i b) {
    const __m256i either = _mm256_or_si256(_mm256_subs_epu8(a, b), _mm256_subs_epu8(b, a));
    const __m256i d = _mm256_and_si256(either, _mm256_set1_epi32(0x00FFFFFF));
    const __m256i low = _mm256_unpacklo_epi8(d, _mm256_setzero_si256());
    const __m256i high = _mm256_unpackhi_epi8(d, _mm256_setzero_si256());
    return _mm256_hadd_epi32(_mm256_madd_epi16(low, low), _mm256_madd_epi16(high, high));
}

struct Neighbours {
    __m256i pixels, left, above, aboveLeft;
};

// Lanes of pixels that are too far from a neighbour or from `first`.
ZCK_INLINE __m256i Beyond(const Neighbours &n, __m256i first, __m256i limit) {
    const __m256i beside = _mm256_max_epi32(Distances(n.pixels, n.left), Distances(n.pixels, n.above));
    const __m256i worst = _mm256_max_epi32(beside, Distances(n.pixels, n.aboveLeft));
    const __m256i far = _mm256_cmpgt_epi32(Distances(n.pixels, first), _mm256_slli_epi32(limit, 2));
    return _mm256_or_si256(far, _mm256_cmpgt_epi32(worst, limit));
}

}    // namespace

bool Flat(const uint8_t *row, const uint8_t *above, int32_t width, const uint8_t *first, int32_t limit) {
    if (width <= 0) return true;
    const __m256i limits = _mm256_set1_epi32(limit);
    const __m256i firsts = _mm256_set1_epi32(first[0] | first[1] << 8 | first[2] << 16);
    __m256i beyond = _mm256_setzero_si256();
    for (; width >= 8; width -= 8, row += 32, above += 32) {
        const Neighbours n = {Load(row), Load(row - 4), Load(above), Load(above - 4)};
        beyond = _mm256_or_si256(beyond, Beyond(n, firsts, limits));
    }
    if (width > 0) {
        const __m256i lanes = FirstLanes(width);
        const Neighbours n = {Some(row, lanes), Some(row - 4, lanes), Some(above, lanes), Some(above - 4, lanes)};
        beyond = _mm256_or_si256(beyond, _mm256_and_si256(Beyond(n, firsts, limits), lanes));
    }
    return _mm256_testz_si256(beyond, beyond) != 0;
}

}    // namespace zck::avx2
