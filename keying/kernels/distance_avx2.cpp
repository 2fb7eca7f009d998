#include <immintrin.h>

#include "keying/kernels/kernels_avx2.h"

namespace zck::avx2 {
namespace {

// A key spread over the lanes: each 32-bit lane is one pixel, its words are channels 0 and 2, or 1 and none.
struct Lanes {
    __m256i k02, k1;
    __m256i w02, w1;
    __m256i off;
    __m256 div;
    __m256i full;    // every V above it has alpha 255
};

// 256 on the ramp is well past the last rounding to 254, so that float errors of this bound do not matter.
ZCK_INLINE int32_t FullSurplus(float div) {
    const float side = 256.0F * div;
    const float v = side * side;
    return v < 2147483000.0F ? static_cast<int32_t>(v) : INT32_MAX;
}

ZCK_INLINE __m256i Words(int32_t low, int32_t high) { return _mm256_set1_epi32(low | high * 65536); }

ZCK_INLINE Lanes LanesOf(const DistanceKey &key) {
    Lanes l;
    l.k02 = Words(key.k[0], key.k[2]);
    l.k1 = Words(key.k[1], 0);
    l.w02 = Words(key.w[0], key.w[2]);
    l.w1 = Words(key.w[1], 0);
    l.off = _mm256_set1_epi32(key.off);
    l.div = _mm256_set1_ps(key.div);
    l.full = _mm256_set1_epi32(FullSurplus(key.div));
    return l;
}

ZCK_INLINE __m256i HalfSquare(__m256i channels, __m256i centre) {
    const __m256i e = _mm256_sub_epi16(channels, centre);
    return _mm256_srli_epi16(_mm256_mullo_epi16(e, e), 1);
}

// V of 8 pixels. Half squares are at most 32258 and weights at most 16382: signed words and 32-bit sums hold them. The
// fourth byte has weight 0.
ZCK_INLINE __m256i Surplus(const uint8_t *src, const Lanes &l) {
    const __m256i v = _mm256_loadu_si256(reinterpret_cast<const __m256i *>(src));
    const __m256i q02 = HalfSquare(_mm256_and_si256(v, _mm256_set1_epi16(255)), l.k02);
    const __m256i q1 = HalfSquare(_mm256_srli_epi16(v, 8), l.k1);
    const __m256i sum = _mm256_add_epi32(_mm256_madd_epi16(q02, l.w02), _mm256_madd_epi16(q1, l.w1));
    return _mm256_sub_epi32(sum, l.off);
}

// Alpha as 32-bit lanes, not clamped from above. Inside the key V is negative: it is made 0, not left to a not-a-number.
ZCK_INLINE __m256i Ramp(__m256i v, const Lanes &l) {
    const __m256 f = _mm256_cvtepi32_ps(_mm256_max_epi32(v, _mm256_setzero_si256()));
    return _mm256_cvtps_epi32(_mm256_div_ps(_mm256_sqrt_ps(f), l.div));
}

// 32 alphas of four times 8 lanes, clamped to bytes, in order.
ZCK_INLINE __m256i Bytes(__m256i a, __m256i b, __m256i c, __m256i d) {
    const __m256i packed = _mm256_packus_epi16(_mm256_packs_epi32(a, b), _mm256_packs_epi32(c, d));
    return _mm256_permutevar8x32_epi32(packed, _mm256_setr_epi32(0, 4, 1, 5, 2, 6, 3, 7));
}

ZCK_INLINE __m256i Ramp32(const __m256i *v, const Lanes &l) {
    return Bytes(Ramp(v[0], l), Ramp(v[1], l), Ramp(v[2], l), Ramp(v[3], l));
}

// 32 pixels. On a clean screen most runs lie wholly inside or wholly outside the key, and the roots are the cost.
ZCK_INLINE __m256i Alpha32(const uint8_t *src, const Lanes &l) {
    const __m256i v[4] = {Surplus(src, l), Surplus(src + 32, l), Surplus(src + 64, l), Surplus(src + 96, l)};
    const __m256i high = _mm256_max_epi32(_mm256_max_epi32(v[0], v[1]), _mm256_max_epi32(v[2], v[3]));
    if (_mm256_movemask_epi8(_mm256_cmpgt_epi32(high, _mm256_setzero_si256())) == 0) return _mm256_setzero_si256();
    const __m256i low = _mm256_min_epi32(_mm256_min_epi32(v[0], v[1]), _mm256_min_epi32(v[2], v[3]));
    if (_mm256_movemask_epi8(_mm256_cmpgt_epi32(low, l.full)) == -1) return _mm256_set1_epi8(-1);
    return Ramp32(v, l);
}

ZCK_INLINE void Block(uint8_t *dst, const uint8_t *src, const Lanes &l) {
    const __m256i a = Ramp(Surplus(src, l), l);
    _mm_storel_epi64(reinterpret_cast<__m128i *>(dst), _mm256_castsi256_si128(Bytes(a, a, a, a)));
}

}    // namespace

void Distance(uint8_t *dst, const uint8_t *src, int32_t blocks, const DistanceKey *key) {
    const Lanes l = LanesOf(*key);
    for (; blocks >= 4; blocks -= 4, dst += 32, src += 128) {
        FetchAhead(src);
        FetchAhead(src + 64);
        _mm256_storeu_si256(reinterpret_cast<__m256i *>(dst), Alpha32(src, l));
    }
    for (; blocks > 0; --blocks, dst += 8, src += 32) Block(dst, src, l);
}

}    // namespace zck::avx2
