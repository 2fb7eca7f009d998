#include <immintrin.h>

#include "keying/kernels/kernels_avx2.h"

namespace zck::avx2 {
namespace {

// Byte j of each 32-bit lane.
ZCK_INLINE __m256i Channel(__m256i v, int j) { return _mm256_and_si256(_mm256_srli_epi32(v, 8 * j), _mm256_set1_epi32(255)); }

ZCK_INLINE __m256 Times(__m256 v, double f) { return _mm256_mul_ps(v, _mm256_set1_ps(static_cast<float>(f))); }

// Byte j over 255, rounded as a division rounds it: divisions are what a row of this costs. A 255th is 257/65536 and a rest of
// 2^-16 of that. The first product is exact, and the second one's rounding too small to be seen in the sum.
ZCK_INLINE __m256 Unit(__m256i v, int j) {
    const __m256i twice = _mm256_set1_epi32(static_cast<int32_t>(0x80800000U) | j << 8 | j);
    const __m256i lanes = _mm256_setr_epi32(0, 0x0404, 0x0808, 0x0C0C, 0, 0x0404, 0x0808, 0x0C0C);
    const __m256 f = _mm256_cvtepi32_ps(_mm256_shuffle_epi8(v, _mm256_add_epi32(twice, lanes)));    // 257 times the byte
    return _mm256_add_ps(Times(f, 0x1p-16), Times(f, 0x1p-32 + 0x1p-48));
}

// Degrees times 255 over 360, as near to the division as the byte that is made of it needs: where that one is exact, as it is
// on the boundary from byte to byte, so is this. The walk over all colours proves it.
ZCK_INLINE __m256 Over360(__m256 v) { return _mm256_add_ps(Times(v, 182.0 / 65536), Times(v, 2.0 / 45 / 65536)); }

ZCK_INLINE __m256i Rounded(__m256 v) { return _mm256_cvttps_epi32(_mm256_add_ps(v, _mm256_set1_ps(0.499999F))); }

// A blend by masks of whole lanes, which costs less than the instruction for it.
ZCK_INLINE __m256 Either(__m256 mask, __m256 yes, __m256 no) {
    return _mm256_or_ps(_mm256_and_ps(mask, yes), _mm256_andnot_ps(mask, no));
}

// Bytes 0 and 2 of each lane, byte 1, and the top byte of `dst`.
ZCK_INLINE __m256i Assemble(__m256i b02, __m256i b1, __m256i dst) {
    const __m256i low = _mm256_or_si256(b02, _mm256_slli_epi32(b1, 8));
    return _mm256_or_si256(low, _mm256_andnot_si256(_mm256_set1_epi32(0x00FFFFFF), dst));
}

// In degrees. One rule for the three sextant pairs: a difference times 60 over the chroma, plus 0, 120 or 240; the order of
// the roundings is that of the reference.
ZCK_INLINE __m256 Hue(__m256 b, __m256 g, __m256 r, __m256 top, __m256 chroma) {
    const __m256 redTop = _mm256_cmp_ps(r, top, _CMP_EQ_OQ);
    const __m256 greenTop = _mm256_cmp_ps(g, top, _CMP_EQ_OQ);
    const __m256 notRed = Either(greenTop, _mm256_sub_ps(b, r), _mm256_sub_ps(r, g));
    const __m256 part = _mm256_div_ps(Times(Either(redTop, _mm256_sub_ps(g, b), notRed), 60), chroma);
    const __m256 less = _mm256_and_ps(greenTop, _mm256_set1_ps(120.0F));
    const __m256 h = _mm256_add_ps(part, _mm256_andnot_ps(redTop, _mm256_sub_ps(_mm256_set1_ps(240.0F), less)));
    const __m256 negative = _mm256_cmp_ps(h, _mm256_setzero_ps(), _CMP_LT_OQ);
    return _mm256_add_ps(h, _mm256_and_ps(negative, _mm256_set1_ps(360.0F)));
}

ZCK_INLINE __m256i Hls(__m256i pixels, __m256i dst) {
    const __m256 b = Unit(pixels, 0);
    const __m256 g = Unit(pixels, 1);
    const __m256 r = Unit(pixels, 2);
    const __m256 top = _mm256_max_ps(_mm256_max_ps(b, g), r);
    const __m256 bottom = _mm256_min_ps(_mm256_min_ps(b, g), r);
    const __m256 chroma = _mm256_sub_ps(top, bottom);
    const __m256 sum = _mm256_add_ps(top, bottom);
    // The sum up to 1, and what it lacks of 2 above: the smaller of the two.
    const __m256 s = _mm256_div_ps(chroma, _mm256_min_ps(sum, _mm256_sub_ps(_mm256_set1_ps(2.0F), sum)));
    const __m256i hue = Rounded(Over360(Times(Hue(b, g, r, top, chroma), 255)));
    const __m256i saturation = Rounded(Times(s, 255));
    // Grey has neither hue nor saturation: what the divisions by 0 gave is masked out.
    const __m256i coloured = _mm256_castps_si256(_mm256_cmp_ps(chroma, _mm256_setzero_ps(), _CMP_NEQ_OQ));
    const __m256i both = _mm256_and_si256(_mm256_or_si256(hue, _mm256_slli_epi32(saturation, 16)), coloured);
    // Half the sum is exact, and so is half of 255.
    return Assemble(both, Rounded(Times(sum, 127.5)), dst);
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
    const __m256i luma = _mm256_srli_epi32(t, 16);
    return Assemble(_mm256_or_si256(luma, _mm256_slli_epi32(_mm256_and_si256(clipped, byte), 16)), _mm256_and_si256(u, byte),
                    dst);
}

ZCK_INLINE __m256i HighClipped(__m256i sum) {
    return _mm256_max_epi32(_mm256_min_epi32(_mm256_srai_epi32(sum, 16), _mm256_set1_epi32(255)), _mm256_setzero_si256());
}

ZCK_INLINE __m256i Weighted(__m256i v, int32_t weight) { return _mm256_mullo_epi32(v, _mm256_set1_epi32(weight)); }

ZCK_INLINE __m256i YuvBack(__m256i pixels, __m256i dst) {
    const __m256i mid = _mm256_set1_epi32(128);
    const __m256i y = _mm256_slli_epi32(Channel(pixels, 0), 16);
    const __m256i u = _mm256_sub_epi32(Channel(pixels, 1), mid);
    const __m256i v = _mm256_sub_epi32(Channel(pixels, 2), mid);
    const __m256i b0 = HighClipped(_mm256_add_epi32(y, Weighted(v, 74711)));
    const __m256i b1 = HighClipped(_mm256_sub_epi32(y, _mm256_add_epi32(Weighted(u, 25821), Weighted(v, 38076))));
    const __m256i b2 = HighClipped(_mm256_add_epi32(y, Weighted(u, 133169)));
    return Assemble(_mm256_or_si256(b0, _mm256_slli_epi32(b2, 16)), b1, dst);
}

}    // namespace

void ToHls(uint8_t *dst, const uint8_t *src, int32_t width) {
    for (; width >= 8; width -= 8, dst += 32, src += 32) {
        auto *out = reinterpret_cast<__m256i *>(dst);
        FetchAhead(src);
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
        FetchAhead(src);
        _mm256_storeu_si256(out, Yuv(_mm256_loadu_si256(reinterpret_cast<const __m256i *>(src)), _mm256_loadu_si256(out)));
    }
    if (width <= 0) return;
    const __m256i lanes = FirstLanes(width);
    const __m256i pixels = _mm256_maskload_epi32(reinterpret_cast<const int *>(src), lanes);
    auto *out = reinterpret_cast<int *>(dst);
    _mm256_maskstore_epi32(out, lanes, Yuv(pixels, _mm256_maskload_epi32(out, lanes)));
}

void FromYuv(uint8_t *dst, const uint8_t *src, int32_t width) {
    for (; width >= 8; width -= 8, dst += 32, src += 32) {
        auto *out = reinterpret_cast<__m256i *>(dst);
        FetchAhead(src);
        _mm256_storeu_si256(out, YuvBack(_mm256_loadu_si256(reinterpret_cast<const __m256i *>(src)), _mm256_loadu_si256(out)));
    }
    if (width <= 0) return;
    const __m256i lanes = FirstLanes(width);
    const __m256i pixels = _mm256_maskload_epi32(reinterpret_cast<const int *>(src), lanes);
    auto *out = reinterpret_cast<int *>(dst);
    _mm256_maskstore_epi32(out, lanes, YuvBack(pixels, _mm256_maskload_epi32(out, lanes)));
}

}    // namespace zck::avx2
