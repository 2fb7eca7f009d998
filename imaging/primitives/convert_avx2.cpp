// AVX2 versions of the BT.601 conversions and of the exchanges of 4:2:2 bytes. What is left behind the last full vector goes
// through a padded block, so that there is one arithmetic only.
//
// Thousandths are divided exactly: shifted down by 3 they fit into 16 bits, and the division by 125 is a multiplication by
// 33555 / 2^22, which is right below 59074.
#include <immintrin.h>

#include "imaging/primitives/row_kernels.h"

namespace zck {
namespace {

void CopyBytes(uint8_t *dst, const uint8_t *src, int64_t n) {
    for (int64_t i = 0; i < n; ++i) dst[i] = src[i];
}

__m256i Load(const uint8_t *p) { return _mm256_loadu_si256(reinterpret_cast<const __m256i *>(p)); }
void Store(uint8_t *p, __m256i x) { _mm256_storeu_si256(reinterpret_cast<__m256i *>(p), x); }

__m256i By125(__m256i x) { return _mm256_srli_epi16(_mm256_mulhi_epu16(x, _mm256_set1_epi16(static_cast<int16_t>(33555))), 6); }

// Luma of 8 pixels and the chroma of their pairs (Cb in even places, Cr in odd ones), in eighths of thousandths.
struct Sums {
    __m256i luma;
    __m256i chroma;
};

Sums SumsOf8(const uint8_t *src) {
    const __m256i x = Load(src);
    const __m256i br = _mm256_and_si256(x, _mm256_set1_epi32(0x00FF00FF));
    const __m256i ga = _mm256_srli_epi16(x, 8);
    const __m256i br2 = _mm256_add_epi16(br, _mm256_shuffle_epi32(br, 0xB1));
    const __m256i ga2 = _mm256_add_epi16(ga, _mm256_shuffle_epi32(ga, 0xB1));
    const __m256i lumaBr = _mm256_set1_epi32(257 * 65536 + 98);
    const __m256i lumaG = _mm256_set1_epi32(504);
    const __m256i chromaBr = _mm256_set1_epi64x(0x01B7FFB9FF6C01B7);    // 439, -148; -71, 439
    const __m256i chromaG = _mm256_set1_epi64x(0x0000FE900000FEDD);     // -291; -368
    const __m256i luma = _mm256_add_epi32(_mm256_madd_epi16(br, lumaBr), _mm256_madd_epi16(ga, lumaG));
    const __m256i chroma = _mm256_add_epi32(_mm256_madd_epi16(br2, chromaBr), _mm256_madd_epi16(ga2, chromaG));
    return {_mm256_srli_epi32(_mm256_add_epi32(luma, _mm256_set1_epi32(16500)), 3),
            _mm256_srli_epi32(_mm256_add_epi32(chroma, _mm256_set1_epi32(257000)), 4)};
}

// 16 pixels. Results are 16 to 235 and 16 to 240: nothing is left to clamp.
template <bool kLumaFirst>
void Encode16(uint8_t *dst, const uint8_t *src) {
    const Sums a = SumsOf8(src);
    const Sums b = SumsOf8(src + 32);
    const __m256i luma = By125(_mm256_packus_epi32(a.luma, b.luma));
    const __m256i chroma = By125(_mm256_packus_epi32(a.chroma, b.chroma));
    const __m256i words =
        kLumaFirst ? _mm256_or_si256(luma, _mm256_slli_epi16(chroma, 8)) : _mm256_or_si256(chroma, _mm256_slli_epi16(luma, 8));
    Store(dst, _mm256_permute4x64_epi64(words, 0xD8));
}

// Writes the groups of `width` pixels but for the second luma byte of an odd row.
template <bool kLumaFirst>
void StoreGroups(uint8_t *dst, const uint8_t *groups, int32_t width) {
    CopyBytes(dst, groups, 2 * width);
    if ((width & 1) == 0) return;
    const int32_t cr = kLumaFirst ? 2 * width + 1 : 2 * width;
    dst[cr] = groups[cr];
}

template <bool kLumaFirst>
void BgraTo422(uint8_t *dst, const uint8_t *src, int32_t width) {
    for (; width >= 16; width -= 16, src += 64, dst += 32) Encode16<kLumaFirst>(dst, src);
    if (width <= 0) return;
    uint8_t in[64] = {};
    uint8_t out[32];
    CopyBytes(in, src, 4 * width);
    if ((width & 1) != 0) CopyBytes(in + 4 * width, src + 4 * width - 4, 4);
    Encode16<kLumaFirst>(out, in);
    StoreGroups<kLumaFirst>(dst, out, width);
}

// A sum of thousandths as whole part and rest (0 to 999).
struct Parts {
    __m256i whole;
    __m256i rest;
};

// 164 of the 1164 of each luma; the other 1000 are the luma itself. The offset keeps the sum above 0.
Parts LumaParts(__m256i y) {
    const __m256i t = _mm256_add_epi16(_mm256_mullo_epi16(y, _mm256_set1_epi16(164)), _mm256_set1_epi16(3000));
    const __m256i q = By125(_mm256_srli_epi16(t, 3));
    return {_mm256_add_epi16(y, _mm256_sub_epi16(q, _mm256_set1_epi16(3))),
            _mm256_sub_epi16(t, _mm256_mullo_epi16(q, _mm256_set1_epi16(1000)))};
}

// 2017 u + 500 = 2000 u + (17 u + 500)
Parts BlueParts(__m256i u) {
    const __m256i t = _mm256_add_epi16(_mm256_mullo_epi16(u, _mm256_set1_epi16(17)), _mm256_set1_epi16(2500));
    const __m256i q = By125(_mm256_srli_epi16(t, 3));
    return {_mm256_add_epi16(_mm256_slli_epi16(u, 1), _mm256_sub_epi16(q, _mm256_set1_epi16(2))),
            _mm256_sub_epi16(t, _mm256_mullo_epi16(q, _mm256_set1_epi16(1000)))};
}

// 1596 v + 500 = 2000 v + 4 * (-101 v + 125), so 250 go into a whole.
Parts RedParts(__m256i v) {
    const __m256i t = _mm256_sub_epi16(_mm256_set1_epi16(13125), _mm256_mullo_epi16(v, _mm256_set1_epi16(101)));
    const __m256i q = By125(_mm256_srli_epi16(t, 1));
    const __m256i rest = _mm256_sub_epi16(t, _mm256_mullo_epi16(q, _mm256_set1_epi16(250)));
    return {_mm256_add_epi16(_mm256_slli_epi16(v, 1), _mm256_sub_epi16(q, _mm256_set1_epi16(52))), _mm256_slli_epi16(rest, 2)};
}

// -392 u - 813 v + 500 does not fit into 16 bits: once for each pair in 32, then into both pixels.
Parts GreenParts(__m256i c) {
    const __m256i t =
        _mm256_add_epi32(_mm256_madd_epi16(c, _mm256_set1_epi32(-813 * 65536 + (65536 - 392))), _mm256_set1_epi32(154500));
    const __m256i eighth = _mm256_srli_epi32(t, 3);
    const __m256i q = By125(_mm256_or_si256(eighth, _mm256_slli_epi32(eighth, 16)));
    const __m256i both = _mm256_blend_epi16(t, _mm256_slli_epi32(t, 16), 0xAA);
    return {_mm256_sub_epi16(q, _mm256_set1_epi16(154)),
            _mm256_sub_epi16(both, _mm256_mullo_epi16(q, _mm256_set1_epi16(1000)))};
}

// The mask is -1 where the rests make another whole.
__m256i Sum(Parts a, Parts b) {
    const __m256i carry = _mm256_cmpgt_epi16(_mm256_add_epi16(a.rest, b.rest), _mm256_set1_epi16(999));
    return _mm256_sub_epi16(_mm256_add_epi16(a.whole, b.whole), carry);
}

// 16 pixels.
template <bool kLumaFirst>
void Decode16(uint8_t *dst, const uint8_t *src, __m256i alpha) {
    const __m256i dupU = _mm256_setr_epi8(0, 1, 0, 1, 4, 5, 4, 5, 8, 9, 8, 9, 12, 13, 12, 13, 0, 1, 0, 1, 4, 5, 4, 5, 8, 9, 8,
                                          9, 12, 13, 12, 13);
    const __m256i dupV = _mm256_setr_epi8(2, 3, 2, 3, 6, 7, 6, 7, 10, 11, 10, 11, 14, 15, 14, 15, 2, 3, 2, 3, 6, 7, 6, 7, 10,
                                          11, 10, 11, 14, 15, 14, 15);
    // Pixels 0-3 and 8-11 into the low lane, so that the results come out in order.
    const __m256i x = _mm256_permute4x64_epi64(Load(src), 0xD8);
    const __m256i low = _mm256_and_si256(x, _mm256_set1_epi16(0x00FF));
    const __m256i high = _mm256_srli_epi16(x, 8);
    const __m256i y = _mm256_sub_epi16(kLumaFirst ? low : high, _mm256_set1_epi16(16));
    const __m256i c = _mm256_sub_epi16(kLumaFirst ? high : low, _mm256_set1_epi16(128));
    const Parts luma = LumaParts(y);
    const __m256i b = Sum(luma, BlueParts(_mm256_shuffle_epi8(c, dupU)));
    const __m256i g = Sum(luma, GreenParts(c));
    const __m256i r = Sum(luma, RedParts(_mm256_shuffle_epi8(c, dupV)));
    const __m256i br = _mm256_packus_epi16(b, r);
    const __m256i ga = _mm256_packus_epi16(g, alpha);
    const __m256i bg = _mm256_unpacklo_epi8(br, ga);
    const __m256i ra = _mm256_unpackhi_epi8(br, ga);
    Store(dst, _mm256_unpacklo_epi16(bg, ra));
    Store(dst + 32, _mm256_unpackhi_epi16(bg, ra));
}

template <bool kLumaFirst>
void BgraFrom422(uint8_t *dst, const uint8_t *src, int32_t width, uint8_t alpha) {
    const __m256i alphas = _mm256_set1_epi16(alpha);
    for (; width >= 16; width -= 16, src += 32, dst += 64) Decode16<kLumaFirst>(dst, src, alphas);
    if (width <= 0) return;
    uint8_t in[32] = {};
    uint8_t out[64];
    CopyBytes(in, src, (width + 1) / 2 * 4);
    Decode16<kLumaFirst>(out, in, alphas);
    CopyBytes(dst, out, 4 * width);
}

__m256i SwapPairs(__m256i x) { return _mm256_or_si256(_mm256_slli_epi16(x, 8), _mm256_srli_epi16(x, 8)); }

__m256i SwapCbCr(__m256i x) {
    const __m256i order = _mm256_setr_epi8(0, 3, 2, 1, 4, 7, 6, 5, 8, 11, 10, 9, 12, 15, 14, 13, 0, 3, 2, 1, 4, 7, 6, 5, 8, 11,
                                           10, 9, 12, 15, 14, 13);
    return _mm256_shuffle_epi8(x, order);
}

template <__m256i (*kSwap)(__m256i), bool kLumaFirst>
void SwapRow(uint8_t *dst, const uint8_t *src, int32_t width) {
    for (; width >= 16; width -= 16, src += 32, dst += 32) Store(dst, kSwap(Load(src)));
    if (width <= 0) return;
    uint8_t block[32] = {};
    CopyBytes(block, src, (width + 1) / 2 * 4);
    Store(block, kSwap(Load(block)));
    StoreGroups<kLumaFirst>(dst, block, width);
}

}    // namespace

void PrimitiveConvertInitAvx2(PrimitiveKernels *table) {
    table->bgra_to_uyvy = BgraTo422<false>;
    table->bgra_to_yuy2 = BgraTo422<true>;
    table->uyvy_to_bgra = BgraFrom422<false>;
    table->yuy2_to_bgra = BgraFrom422<true>;
    table->uyvy_to_yuy2 = SwapRow<SwapPairs, true>;
    table->yuy2_to_uyvy = SwapRow<SwapPairs, false>;
    table->swap_chroma = SwapRow<SwapCbCr, true>;
}

}    // namespace zck
