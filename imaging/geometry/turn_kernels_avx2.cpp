#include <immintrin.h>

#include "imaging/geometry/turn_kernels.h"
#include "platform/avx2.h"

namespace zck {
namespace {

using namespace avx2;

// Four pixels of row y, and of row y + 4 in the upper half.
ZCK_INLINE __m256i TwoRows(const uint8_t *src, int64_t srcStep, int64_t y) {
    return _mm256_inserti128_si256(_mm256_castsi128_si256(LoadHalf(src + y * srcStep)), LoadHalf(src + (y + 4) * srcStep), 1);
}

// Four columns: pairs of rows, then pairs of pairs.
ZCK_INLINE void FourColumns(uint8_t *dst, int64_t dstStep, const uint8_t *src, int64_t srcStep) {
    const __m256i a = TwoRows(src, srcStep, 0);
    const __m256i b = TwoRows(src, srcStep, 1);
    const __m256i c = TwoRows(src, srcStep, 2);
    const __m256i d = TwoRows(src, srcStep, 3);
    const __m256i abLow = _mm256_unpacklo_epi32(a, b);
    const __m256i abHigh = _mm256_unpackhi_epi32(a, b);
    const __m256i cdLow = _mm256_unpacklo_epi32(c, d);
    const __m256i cdHigh = _mm256_unpackhi_epi32(c, d);
    Store(dst, _mm256_unpacklo_epi64(abLow, cdLow));
    Store(dst + dstStep, _mm256_unpackhi_epi64(abLow, cdLow));
    Store(dst + 2 * dstStep, _mm256_unpacklo_epi64(abHigh, cdHigh));
    Store(dst + 3 * dstStep, _mm256_unpackhi_epi64(abHigh, cdHigh));
}

void Transpose4(uint8_t *dst, int64_t dstStep, const uint8_t *src, int64_t srcStep) {
    FourColumns(dst, dstStep, src, srcStep);
    FourColumns(dst + 4 * dstStep, dstStep, src + 16, srcStep);
}

}    // namespace

void TurnKernelsInitAvx2(TurnKernels *table) { table->transpose4 = Transpose4; }

}    // namespace zck
