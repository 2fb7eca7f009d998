#include <immintrin.h>

#include "imaging/geometry/turn_kernels.h"
#include "platform/avx2.h"

namespace zck {
namespace {

// Pairs of rows, then pairs of pairs, then the halves change places.
void Transpose4(uint8_t *dst, int64_t dstStep, const uint8_t *src, int64_t srcStep) {
    __m256i r[8];
    __m256i t[8];
    for (int64_t i = 0; i < 8; ++i) r[i] = avx2::Load(src + i * srcStep);
    for (int i = 0; i < 8; i += 2) {
        t[i] = _mm256_unpacklo_epi32(r[i], r[i + 1]);
        t[i + 1] = _mm256_unpackhi_epi32(r[i], r[i + 1]);
    }
    for (int i = 0; i < 8; i += 4) {
        r[i] = _mm256_unpacklo_epi64(t[i], t[i + 2]);
        r[i + 1] = _mm256_unpackhi_epi64(t[i], t[i + 2]);
        r[i + 2] = _mm256_unpacklo_epi64(t[i + 1], t[i + 3]);
        r[i + 3] = _mm256_unpackhi_epi64(t[i + 1], t[i + 3]);
    }
    for (int i = 0; i < 4; ++i) {
        const __m256i low = _mm256_permute2x128_si256(r[i], r[i + 4], 0x20);
        const __m256i high = _mm256_permute2x128_si256(r[i], r[i + 4], 0x31);
        avx2::Store(dst + i * dstStep, low);
        avx2::Store(dst + (i + 4) * dstStep, high);
    }
}

}    // namespace

void TurnKernelsInitAvx2(TurnKernels *table) { table->transpose4 = Transpose4; }

}    // namespace zck
