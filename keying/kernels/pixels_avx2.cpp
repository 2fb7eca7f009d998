#include <immintrin.h>

#include "keying/kernels/kernels_avx2.h"

namespace zck::avx2 {
namespace {

// Lanes outside the mask are neither read nor written.
ZCK_INLINE __m256i LoadSome(const uint8_t *p, __m256i lanes) {
    return _mm256_maskload_epi32(reinterpret_cast<const int *>(p), lanes);
}
ZCK_INLINE void StoreSome(uint8_t *p, __m256i lanes, __m256i v) {
    _mm256_maskstore_epi32(reinterpret_cast<int *>(p), lanes, v);
}

// 8 alpha bytes as the top bytes of 8 lanes.
ZCK_INLINE __m256i TopBytes(__m128i alpha) { return _mm256_slli_epi32(_mm256_cvtepu8_epi32(alpha), 24); }
ZCK_INLINE __m256i Alpha8(const uint8_t *alpha) { return TopBytes(_mm_loadl_epi64(reinterpret_cast<const __m128i *>(alpha))); }

ZCK_INLINE __m256i AlphaSome(const uint8_t *alpha, int32_t n) {
    uint64_t bytes = 0;
    for (int32_t x = 0; x < n; ++x) bytes |= static_cast<uint64_t>(alpha[x]) << (8 * x);
    return TopBytes(_mm_cvtsi64_si128(static_cast<int64_t>(bytes)));
}

ZCK_INLINE __m256i Merged(__m256i pixels, __m256i alpha) {
    return _mm256_or_si256(_mm256_and_si256(pixels, _mm256_set1_epi32(0x00FFFFFF)), alpha);
}

// (t + (t >> 8) + 1) >> 8; at most 65280 before the last shift, so that unsigned words hold it.
ZCK_INLINE __m256i Over255(__m256i t) {
    const __m256i sum = _mm256_add_epi16(_mm256_add_epi16(t, _mm256_srli_epi16(t, 8)), _mm256_set1_epi16(1));
    return _mm256_srli_epi16(sum, 8);
}

// The fourth byte is multiplied by 255, which gives it back.
ZCK_INLINE __m256i Multiplied(__m256i pixels) {
    const __m256i zero = _mm256_setzero_si256();
    const __m256i one = _mm256_set1_epi64x(0x00FF000000000000);
    const __m256i spreadLow =
        _mm256_broadcastsi128_si256(_mm_setr_epi8(3, -1, 3, -1, 3, -1, -1, -1, 7, -1, 7, -1, 7, -1, -1, -1));
    const __m256i spreadHigh =
        _mm256_broadcastsi128_si256(_mm_setr_epi8(11, -1, 11, -1, 11, -1, -1, -1, 15, -1, 15, -1, 15, -1, -1, -1));
    const __m256i alphaLow = _mm256_or_si256(_mm256_shuffle_epi8(pixels, spreadLow), one);
    const __m256i alphaHigh = _mm256_or_si256(_mm256_shuffle_epi8(pixels, spreadHigh), one);
    const __m256i low = Over255(_mm256_mullo_epi16(_mm256_unpacklo_epi8(pixels, zero), alphaLow));
    const __m256i high = Over255(_mm256_mullo_epi16(_mm256_unpackhi_epi8(pixels, zero), alphaHigh));
    return _mm256_packus_epi16(low, high);
}

}    // namespace

void Merge(uint8_t *dst, const uint8_t *src, const uint8_t *alpha, int32_t width) {
    for (; width >= 16; width -= 16, dst += 64, src += 64, alpha += 16) {
        Store(dst, Merged(Load(src), Alpha8(alpha)));
        Store(dst + 32, Merged(Load(src + 32), Alpha8(alpha + 8)));
    }
    if (width <= 0) return;
    // The gap: 8 pixels stay as they are.
    const int32_t gap = width >= 8 ? 8 : 0;
    const int32_t n = width - gap;
    const __m256i lanes = FirstLanes(n);
    StoreSome(dst + 4 * gap, lanes, Merged(LoadSome(src + 4 * gap, lanes), AlphaSome(alpha + gap, n)));
}

void Premultiply(uint8_t *row, int32_t width) {
    for (; width >= 8; width -= 8, row += 32) Store(row, Multiplied(Load(row)));
    if (width <= 0) return;
    const __m256i lanes = FirstLanes(width);
    StoreSome(row, lanes, Multiplied(LoadSome(row, lanes)));
}

void MergePremultiply(uint8_t *dst, const uint8_t *src, const uint8_t *alpha, int32_t width) {
    for (; width >= 16; width -= 16, dst += 64, src += 64, alpha += 16) {
        OwnAhead(dst);
        Store(dst, Multiplied(Merged(Load(src), Alpha8(alpha))));
        Store(dst + 32, Multiplied(Merged(Load(src + 32), Alpha8(alpha + 8))));
    }
    if (width >= 8) {
        // The gap of the merge: multiplied by the alpha that the pixels had.
        Store(dst, Multiplied(Load(src)));
        dst += 32;
        src += 32;
        alpha += 8;
        width -= 8;
    }
    if (width <= 0) return;
    const __m256i lanes = FirstLanes(width);
    StoreSome(dst, lanes, Multiplied(Merged(LoadSome(src, lanes), AlphaSome(alpha, width))));
}

}    // namespace zck::avx2
