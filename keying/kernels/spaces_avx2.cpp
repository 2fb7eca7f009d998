#include <immintrin.h>

#include "keying/kernels/kernels_avx2.h"

namespace zck::avx2 {
namespace {

ZCK_INLINE __m256i FirstLanes(int32_t n) {
    return _mm256_cmpgt_epi32(_mm256_set1_epi32(n), _mm256_setr_epi32(0, 1, 2, 3, 4, 5, 6, 7));
}

// Byte j of each 32-bit lane.
ZCK_INLINE __m256i Channel(__m256i v, int j) { return _mm256_and_si256(_mm256_srli_epi32(v, 8 * j), _mm256_set1_epi32(255)); }

ZCK_INLINE __m256 Unit(__m256i v, int j) { return _mm256_div_ps(_mm256_cvtepi32_ps(Channel(v, j)), _mm256_set1_ps(255.0F)); }

ZCK_INLINE __m256i Rounded(__m256 v) { return _mm256_cvttps_epi32(_mm256_add_ps(v, _mm256_set1_ps(0.499999F))); }

// Three bytes of each lane, with the top byte of `dst`.
ZCK_INLINE __m256i Assemble(__m256i b0, __m256i b1, __m256i b2, __m256i dst) {
    const __m256i low = _mm256_or_si256(b0, _mm256_slli_epi32(b1, 8));
    const __m256i high = _mm256_or_si256(_mm256_slli_epi32(b2, 16), _mm256_andnot_si256(_mm256_set1_epi32(0x00FFFFFF), dst));
    return _mm256_or_si256(low, high);
}

// In degrees. One rule for the three sextant pairs: a difference times 60 over the chroma, plus 0, 120 or 240; the order of
// the roundings is that of the reference.
ZCK_INLINE __m256 Hue(__m256 b, __m256 g, __m256 r, __m256 top, __m256 chroma) {
    const __m256 redTop = _mm256_cmp_ps(r, top, _CMP_EQ_OQ);
    const __m256 greenTop = _mm256_cmp_ps(g, top, _CMP_EQ_OQ);
    const __m256 from = _mm256_blendv_ps(_mm256_blendv_ps(r, b, greenTop), g, redTop);
    const __m256 less = _mm256_blendv_ps(_mm256_blendv_ps(g, r, greenTop), b, redTop);
    const __m256 base = _mm256_andnot_ps(redTop, _mm256_blendv_ps(_mm256_set1_ps(240.0F), _mm256_set1_ps(120.0F), greenTop));
    const __m256 part = _mm256_div_ps(_mm256_mul_ps(_mm256_sub_ps(from, less), _mm256_set1_ps(60.0F)), chroma);
    const __m256 h = _mm256_add_ps(part, base);
    const __m256 negative = _mm256_cmp_ps(h, _mm256_setzero_ps(), _CMP_LT_OQ);
    return _mm256_add_ps(h, _mm256_and_ps(negative, _mm256_set1_ps(360.0F)));
}

ZCK_INLINE __m256i Hls(__m256i pixels, __m256i dst) {
    const __m256 full = _mm256_set1_ps(255.0F);
    const __m256 b = Unit(pixels, 0);
    const __m256 g = Unit(pixels, 1);
    const __m256 r = Unit(pixels, 2);
    const __m256 top = _mm256_max_ps(_mm256_max_ps(b, g), r);
    const __m256 bottom = _mm256_min_ps(_mm256_min_ps(b, g), r);
    const __m256 chroma = _mm256_sub_ps(top, bottom);
    const __m256 sum = _mm256_add_ps(top, bottom);
    const __m256 l = _mm256_mul_ps(sum, _mm256_set1_ps(0.5F));    // exact, as the division by 2 is
    // Grey has neither hue nor saturation: what the divisions by 0 gave is masked out.
    const __m256 coloured = _mm256_cmp_ps(chroma, _mm256_setzero_ps(), _CMP_NEQ_OQ);
    const __m256 dark = _mm256_cmp_ps(l, _mm256_set1_ps(0.5F), _CMP_LE_OQ);
    const __m256 range = _mm256_blendv_ps(_mm256_sub_ps(_mm256_set1_ps(2.0F), sum), sum, dark);
    const __m256 s = _mm256_and_ps(_mm256_div_ps(chroma, range), coloured);
    const __m256 h = _mm256_and_ps(Hue(b, g, r, top, chroma), coloured);
    const __m256 hue = _mm256_div_ps(_mm256_mul_ps(h, full), _mm256_set1_ps(360.0F));
    return Assemble(Rounded(hue), Rounded(_mm256_mul_ps(l, full)), Rounded(_mm256_mul_ps(s, full)), dst);
}

// ((x << 16) - t + 32767) >> 16, the colour difference of one channel.
ZCK_INLINE __m256i Difference(__m256i x, __m256i t) {
    const __m256i scaled = _mm256_add_epi32(_mm256_slli_epi32(x, 16), _mm256_set1_epi32(32767));
    return _mm256_srai_epi32(_mm256_sub_epi32(scaled, t), 16);
}

ZCK_INLINE __m256i Yuv(__m256i pixels, __m256i dst) {
    const __m256i x02 = _mm256_and_si256(pixels, _mm256_set1_epi16(255));
    const __m256i x1 = Channel(pixels, 1);
    // The weight of channel 1 is too large for a signed word: it is given as two halves of one lane.
    const __m256i x11 = _mm256_or_si256(x1, _mm256_slli_epi32(x1, 16));
    const __m256i t = _mm256_add_epi32(_mm256_madd_epi16(x02, _mm256_set1_epi32(19595 | 7471 << 16)),
                                       _mm256_madd_epi16(x11, _mm256_set1_epi32(19235 | 19235 << 16)));
    const __m256i du = Difference(_mm256_srli_epi32(x02, 16), t);
    const __m256i dv = Difference(_mm256_and_si256(x02, _mm256_set1_epi32(0xFFFF)), t);
    // Only the low words count from here; differences fit into them. d * 57475 >> 16 is d plus the high word of d * -8061.
    const __m256i mid = _mm256_set1_epi16(128);
    const __m256i u = _mm256_add_epi16(mid, _mm256_mulhi_epi16(du, _mm256_set1_epi16(32244)));
    const __m256i v = _mm256_add_epi16(mid, _mm256_add_epi16(dv, _mm256_mulhi_epi16(dv, _mm256_set1_epi16(57475 - 65536))));
    const __m256i clipped = _mm256_max_epi16(_mm256_min_epi16(v, _mm256_set1_epi16(255)), _mm256_setzero_si256());
    const __m256i byte = _mm256_set1_epi32(255);
    return Assemble(_mm256_srli_epi32(t, 16), _mm256_and_si256(u, byte), _mm256_and_si256(clipped, byte), dst);
}

}    // namespace

void ToHls(uint8_t *dst, const uint8_t *src, int32_t width) {
    for (; width >= 8; width -= 8, dst += 32, src += 32) {
        auto *out = reinterpret_cast<__m256i *>(dst);
        _mm256_storeu_si256(out, Hls(_mm256_loadu_si256(reinterpret_cast<const __m256i *>(src)), _mm256_loadu_si256(out)));
    }
    if (width <= 0) return;
    const __m256i lanes = FirstLanes(width);
    const __m256i pixels = _mm256_maskload_epi32(reinterpret_cast<const int *>(src), lanes);
    auto *out = reinterpret_cast<int *>(dst);
    _mm256_maskstore_epi32(out, lanes, Hls(pixels, _mm256_maskload_epi32(out, lanes)));
}

void ToYuv(uint8_t *dst, const uint8_t *src, int32_t width) {
    for (; width >= 8; width -= 8, dst += 32, src += 32) {
        auto *out = reinterpret_cast<__m256i *>(dst);
        _mm256_storeu_si256(out, Yuv(_mm256_loadu_si256(reinterpret_cast<const __m256i *>(src)), _mm256_loadu_si256(out)));
    }
    if (width <= 0) return;
    const __m256i lanes = FirstLanes(width);
    const __m256i pixels = _mm256_maskload_epi32(reinterpret_cast<const int *>(src), lanes);
    auto *out = reinterpret_cast<int *>(dst);
    _mm256_maskstore_epi32(out, lanes, Yuv(pixels, _mm256_maskload_epi32(out, lanes)));
}

}    // namespace zck::avx2
