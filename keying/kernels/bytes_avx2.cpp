#include <immintrin.h>

#include "keying/kernels/kernels_avx2.h"

namespace zck::avx2 {
namespace {

ZCK_INLINE uint8_t AddByte(int32_t a, int32_t b) { return static_cast<uint8_t>(a + b < 255 ? a + b : 255); }
ZCK_INLINE int32_t Limit(int32_t v) { return v < 0 ? 0 : v > 255 ? 255 : v; }
ZCK_INLINE __m256i Mask(bool on) { return _mm256_set1_epi32(on ? -1 : 0); }

struct Bounds {
    __m256i high, above;    // bytes over `high`, or all where `above` is set, become 255
    __m256i low, below;     // of the others, bytes up to `low` become 0 where `below` is set
};

ZCK_INLINE __m256i Bounded(__m256i v, const Bounds &b) {
    const __m256i within = _mm256_cmpeq_epi8(_mm256_max_epu8(v, b.high), b.high);
    const __m256i under = _mm256_and_si256(_mm256_cmpeq_epi8(_mm256_min_epu8(v, b.low), v), b.below);
    const __m256i over = _mm256_or_si256(_mm256_xor_si256(within, _mm256_set1_epi8(-1)), b.above);
    return _mm256_or_si256(_mm256_andnot_si256(under, v), over);
}

}    // namespace

void Join(uint8_t *dst, const uint8_t *src, int32_t width, int32_t c) {
    const __m256i addend = _mm256_set1_epi8(static_cast<char>(c));
    for (; width >= 32; width -= 32, dst += 32, src += 32) {
        Store(dst, _mm256_min_epu8(Load(dst), _mm256_adds_epu8(Load(src), addend)));
    }
    if (width < 16) return;
    StoreHalf(dst, _mm_min_epu8(LoadHalf(dst), _mm_adds_epu8(LoadHalf(src), _mm256_castsi256_si128(addend))));
}

void Invert(uint8_t *row, int32_t width, bool writeSlipByte) {
    const __m256i ones = _mm256_set1_epi8(-1);
    for (; width >= 32; width -= 32, row += 32) Store(row, _mm256_xor_si256(Load(row), ones));
    if (width >= 16) {
        StoreHalf(row, _mm_xor_si128(LoadHalf(row), _mm256_castsi256_si128(ones)));
        row += 16;
        width -= 16;
    }
    // One byte late, as the reference has it.
    for (int32_t x = 1; x < width; ++x) row[x] = static_cast<uint8_t>(~row[x]);
    if (width > 0 && writeSlipByte) row[width] = static_cast<uint8_t>(~row[width]);
}

void AddConst(uint8_t *row, int32_t width, int32_t c) {
    const __m256i addend = _mm256_set1_epi8(static_cast<char>(c));
    for (; width >= 32; width -= 32, row += 32) Store(row, _mm256_adds_epu8(Load(row), addend));
    for (int32_t x = 0; x < width; ++x) row[x] = AddByte(row[x], static_cast<uint8_t>(c));
}

void AddPlane(uint8_t *dst, const uint8_t *src, int32_t width) {
    for (; width >= 32; width -= 32, dst += 32, src += 32) Store(dst, _mm256_adds_epu8(Load(dst), Load(src)));
    for (int32_t x = 0; x < width; ++x) dst[x] = AddByte(dst[x], src[x]);
}

void Threshold(uint8_t *row, int32_t width, int32_t low, int32_t high) {
    const Bounds bounds = {_mm256_set1_epi8(static_cast<char>(Limit(high))), Mask(high < 0),
                           _mm256_set1_epi8(static_cast<char>(low > 0 ? Limit(low - 1) : 0)), Mask(low > 0)};
    for (; width >= 32; width -= 32, row += 32) Store(row, Bounded(Load(row), bounds));
    for (int32_t x = 0; x < width; ++x) {
        row[x] = row[x] > high ? uint8_t{255} : row[x] < low ? uint8_t{0} : row[x];
    }
}

}    // namespace zck::avx2
