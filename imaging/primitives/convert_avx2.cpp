// AVX2 versions of the BT.601 conversions and of the exchanges of 4:2:2 bytes. What is left behind the last full vector goes
// through a padded block, so that there is one arithmetic only.
#include <immintrin.h>

#include "imaging/primitives/bt601_avx2.h"
#include "imaging/primitives/row_kernels.h"

namespace zck {
namespace {

// Luma of 8 pixels and the chroma of their pairs (Cb in even places, Cr in odd ones), in eighths of thousandths.
struct Sums {
    __m256i luma;
    __m256i chroma;
};

ZCK_INLINE Sums SumsOf8(const uint8_t *src) {
    const __m256i x = Load(src);
    const __m256i br = _mm256_and_si256(x, _mm256_set1_epi32(0x00FF00FF));
    const __m256i ga = _mm256_srli_epi16(x, 8);
    const __m256i chroma = Chroma8(PairSum(br), PairSum(ga));
    return {Luma8(br, ga), _mm256_srli_epi32(_mm256_add_epi32(chroma, _mm256_set1_epi32(257000)), 4)};
}

// 16 pixels. Results are 16 to 235 and 16 to 240: nothing is left to clamp.
template <bool kLumaFirst>
ZCK_INLINE void Encode16(uint8_t *dst, const uint8_t *src) {
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

// 16 pixels.
template <bool kLumaFirst>
ZCK_INLINE void Decode422(uint8_t *dst, const uint8_t *src, __m256i alpha) {
    // Each luma byte with the Cb byte of its group in front of it.
    const __m256i uyvy = _mm256_setr_epi8(0, 1, 0, 3, 4, 5, 4, 7, 8, 9, 8, 11, 12, 13, 12, 15, 0, 1, 0, 3, 4, 5, 4, 7, 8, 9, 8,
                                          11, 12, 13, 12, 15);
    const __m256i yuy2 = _mm256_setr_epi8(1, 0, 1, 2, 5, 4, 5, 6, 9, 8, 9, 10, 13, 12, 13, 14, 1, 0, 1, 2, 5, 4, 5, 6, 9, 8, 9,
                                          10, 13, 12, 13, 14);
    const __m256i at = kLumaFirst ? yuy2 : uyvy;
    const __m256i x = _mm256_permute4x64_epi64(Load(src), 0xD8);
    // Cr is two bytes behind Cb.
    Decode16(dst, _mm256_shuffle_epi8(x, at), _mm256_shuffle_epi8(x, _mm256_add_epi8(at, Words(2))), alpha);
}

template <bool kLumaFirst>
void BgraFrom422(uint8_t *dst, const uint8_t *src, int32_t width, uint8_t alpha) {
    const __m256i alphas = _mm256_set1_epi16(alpha);
    for (; width >= 16; width -= 16, src += 32, dst += 64) {
        FetchAhead(src, kAhead / 2);
        OwnAhead(dst);
        Decode422<kLumaFirst>(dst, src, alphas);
    }
    if (width <= 0) return;
    uint8_t in[32] = {};
    uint8_t out[64];
    CopyBytes(in, src, (width + 1) / 2 * 4);
    Decode422<kLumaFirst>(out, in, alphas);
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
