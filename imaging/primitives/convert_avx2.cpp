// AVX2 versions of the BT.601 conversions and of the exchanges of 4:2:2 bytes. What is left behind the last full vector goes
// through a padded block, so that there is one arithmetic only.
//
// Thousandths are divided exactly: brought into 16 bits first, and then multiplied by 33555 / 2^22 for a division by 125, which
// is right below 59074.
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

__m256i Words(int32_t n) { return _mm256_set1_epi16(static_cast<int16_t>(n)); }
__m256i Times(__m256i x, int32_t n) { return _mm256_mullo_epi16(x, Words(n)); }
// n * 33555 / 2^(16 + shift): by 125 with shift 6, by 250 with 7, by 1000 with 9.
template <int kShift>
__m256i Divided(__m256i n) {
    return _mm256_srli_epi16(_mm256_mulhi_epu16(n, Words(33555)), kShift);
}

// The sums in thousandths do not fit into 16 bits. Of each, what is a multiple of 1000 (for green of 125) is taken out before
// the rest is divided, which changes no result; constants keep the rests above 0. With y, u, v without their offsets:
//   blue:  1164 y + 2017 u + 500         = 1000 (y + 2 u) + (164 y + 17 u + 500)
//   red:   1164 y + 1596 v + 500         = 1000 (y + 2 v) + 4 (41 y - 101 v + 125)
//   green: 1164 y - 392 u - 813 v + 500  = 125 (9 y - 3 u - 6 v + 4) + (39 y - 17 u - 63 v)
// The arguments still have their offsets, which are in the constants.
__m256i Blue(__m256i y, __m256i y41, __m256i u, __m256i u17) {
    const __m256i rest = _mm256_add_epi16(_mm256_add_epi16(_mm256_slli_epi16(y41, 2), Words(700)), u17);
    const __m256i whole = _mm256_add_epi16(_mm256_add_epi16(y, Words(-277)), _mm256_add_epi16(u, u));
    return _mm256_add_epi16(whole, Divided<9>(rest));
}

__m256i Red(__m256i y, __m256i y41, __m256i v) {
    const __m256i rest = _mm256_sub_epi16(_mm256_add_epi16(y41, Words(28397)), Times(v, 101));
    const __m256i whole = _mm256_add_epi16(_mm256_add_epi16(y, Words(-336)), _mm256_add_epi16(v, v));
    return _mm256_add_epi16(whole, Divided<7>(rest));
}

__m256i Green(__m256i y, __m256i y41, __m256i u, __m256i u17, __m256i v) {
    const __m256i y39 = _mm256_sub_epi16(y41, _mm256_add_epi16(y, y));
    const __m256i uv63 = _mm256_add_epi16(u17, Times(v, 63));
    const __m256i rest = _mm256_sub_epi16(_mm256_add_epi16(y39, Words(22116)), uv63);
    const __m256i u2v = _mm256_add_epi16(u, _mm256_add_epi16(v, v));
    const __m256i u3v6 = _mm256_add_epi16(_mm256_add_epi16(u2v, u2v), u2v);
    const __m256i y9 = _mm256_add_epi16(_mm256_slli_epi16(y, 3), _mm256_add_epi16(y, Words(912)));
    return _mm256_srai_epi16(_mm256_add_epi16(_mm256_sub_epi16(y9, u3v6), Divided<6>(rest)), 3);
}

// 16 pixels.
template <bool kLumaFirst>
void Decode16(uint8_t *dst, const uint8_t *src, __m256i alpha) {
    // Byte 0 of each group (with luma first: byte 1) into the 16 bits of both pixels; Cr is two bytes on.
    const __m256i dupU = _mm256_setr_epi8(0, -1, 0, -1, 4, -1, 4, -1, 8, -1, 8, -1, 12, -1, 12, -1, 0, -1, 0, -1, 4, -1, 4, -1,
                                          8, -1, 8, -1, 12, -1, 12, -1);
    const __m256i at = kLumaFirst ? _mm256_or_si256(dupU, Words(1)) : dupU;
    // Pixels 0-3 and 8-11 into the low lane, so that the results come out in order.
    const __m256i x = _mm256_permute4x64_epi64(Load(src), 0xD8);
    const __m256i y = kLumaFirst ? _mm256_and_si256(x, Words(0x00FF)) : _mm256_srli_epi16(x, 8);
    const __m256i u = _mm256_shuffle_epi8(x, at);
    const __m256i v = _mm256_shuffle_epi8(x, _mm256_or_si256(at, Words(2)));
    const __m256i y41 = Times(y, 41);
    const __m256i u17 = Times(u, 17);
    const __m256i br = _mm256_packus_epi16(Blue(y, y41, u, u17), Red(y, y41, v));
    const __m256i ga = _mm256_packus_epi16(Green(y, y41, u, u17, v), alpha);
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
