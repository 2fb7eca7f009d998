// The arithmetic of BT.601 for 16 pixels at a time, shared by the AVX2 files of this folder, and only for them.
//
// Thousandths are divided exactly: brought into 16 bits first, and then multiplied by 33555 / 2^22 for a division by 125, which
// is right below 59074.
#pragma once

#include "platform/avx2.h"

namespace zck {

using avx2::CopyBytes;
using avx2::FetchAhead;
using avx2::kAhead;
using avx2::Load;
using avx2::LoadHalf;
using avx2::OwnAhead;
using avx2::Store;
using avx2::StoreHalf;
using avx2::Words;

static inline __m256i By125(__m256i x) { return _mm256_srli_epi16(_mm256_mulhi_epu16(x, Words(33555)), 6); }

// Sums of 8 pixels in thousandths: bytes 0 and 2 of each pixel times the first factors, byte 1 times the second.
static inline __m256i Sum8(__m256i br, __m256i ga, __m256i kBr, __m256i kG) {
    return _mm256_add_epi32(_mm256_madd_epi16(br, kBr), _mm256_madd_epi16(ga, kG));
}

// Luma of 8 pixels in eighths of thousandths, the half for rounding included.
static inline __m256i Luma8(__m256i br, __m256i ga) {
    const __m256i sum = Sum8(br, ga, _mm256_set1_epi32(257 * 65536 + 98), _mm256_set1_epi32(504));
    return _mm256_srli_epi32(_mm256_add_epi32(sum, _mm256_set1_epi32(16500)), 3);
}

// Chroma of sums of pixels without offset, Cb in even places, Cr in odd ones.
static inline __m256i Chroma8(__m256i br, __m256i ga) {
    const __m256i kBr = _mm256_set1_epi64x(0x01B7FFB9FF6C01B7);    // 439, -148; -71, 439
    const __m256i kG = _mm256_set1_epi64x(0x0000FE900000FEDD);     // -291; -368
    return Sum8(br, ga, kBr, kG);
}

// Each 32-bit place and its neighbour.
static inline __m256i PairSum(__m256i x) { return _mm256_add_epi16(x, _mm256_shuffle_epi32(x, 0xB1)); }

// Two bytes of each 16-bit place times their factors.
static inline __m256i Pairs(__m256i bytes, int32_t low, int32_t high) {
    return _mm256_maddubs_epi16(bytes, Words((high << 8) | (low & 255)));
}

// 16 pixels, chroma in the low bytes of `cbY` and `crY`, luma in their high bytes: pixels 0-3 and 8-11 in the low lane, the
// others in the high one, so that the results come out in order. `alpha` in 16 bits.
//
// The sums in thousandths do not fit into 16 bits. Of each, what is a multiple of 125 is taken out before the rest is divided,
// and the last factor of 8 is a shift; that is exact. Offsets are in the constants, which keep the rests above 0:
//   blue:  1164 y + 2017 u - 276300         = 125 (9 y + 16 u - 2211) + (39 y + 17 u + 75)
//   red:   1164 y + 1596 v - 222412         = 125 (9 y + 13 v - 1839) + (39 y - 29 v + 7463)
//   green: 1164 y - 392 u - 813 v + 136116  = 125 (9 y - 3 u - 6 v + 925) + (39 y - 17 u - 63 v + 20491)
ZCK_INLINE void Decode16(uint8_t *dst, __m256i cbY, __m256i crY, __m256i alpha) {
    const __m256i b = _mm256_add_epi16(_mm256_add_epi16(Pairs(cbY, 16, 9), Words(-2211)),
                                       By125(_mm256_add_epi16(Pairs(cbY, 17, 39), Words(75))));
    const __m256i r = _mm256_add_epi16(_mm256_add_epi16(Pairs(crY, 13, 9), Words(-1839)),
                                       By125(_mm256_add_epi16(Pairs(crY, -29, 39), Words(7463))));
    const __m256i whole = _mm256_add_epi16(_mm256_add_epi16(Pairs(cbY, -3, 9), Pairs(crY, -6, 0)), Words(925));
    const __m256i rest = _mm256_add_epi16(_mm256_add_epi16(Pairs(cbY, -17, 39), Pairs(crY, -63, 0)), Words(20491));
    const __m256i g = _mm256_add_epi16(whole, By125(rest));
    const __m256i br = _mm256_packus_epi16(_mm256_srai_epi16(b, 3), _mm256_srai_epi16(r, 3));
    const __m256i ga = _mm256_packus_epi16(_mm256_srai_epi16(g, 3), alpha);
    const __m256i bg = _mm256_unpacklo_epi8(br, ga);
    const __m256i ra = _mm256_unpackhi_epi8(br, ga);
    Store(dst, _mm256_unpacklo_epi16(bg, ra));
    Store(dst + 32, _mm256_unpackhi_epi16(bg, ra));
}

}    // namespace zck
