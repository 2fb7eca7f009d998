// The pieces that AVX2 kernels share, for files named *_avx2.cpp and headers that only they include. Every function is
// inlined always: an object that is compiled for one processor level must not offer code to the linker.
#pragma once

#include <immintrin.h>

#include <cstdint>

/// For the pieces of a row: a call would pass vectors through memory and load every constant again.
#define ZCK_INLINE static inline __attribute__((always_inline))

namespace zck::avx2 {

/// 32 and 16 bytes, no alignment needed.
ZCK_INLINE __m256i Load(const void *p) { return _mm256_loadu_si256(static_cast<const __m256i *>(p)); }
ZCK_INLINE void Store(void *p, __m256i v) { _mm256_storeu_si256(static_cast<__m256i *>(p), v); }
ZCK_INLINE __m128i LoadHalf(const void *p) { return _mm_loadu_si128(static_cast<const __m128i *>(p)); }
ZCK_INLINE void StoreHalf(void *p, __m128i v) { _mm_storeu_si128(static_cast<__m128i *>(p), v); }

/// One value in all lanes of 16 and of 32 bits.
ZCK_INLINE __m256i Words(int32_t v) { return _mm256_set1_epi16(static_cast<int16_t>(v)); }
ZCK_INLINE __m256i Dwords(int32_t v) { return _mm256_set1_epi32(v); }

/// A mask of the first `n` of 8 lanes of 32 bits.
ZCK_INLINE __m256i FirstLanes(int32_t n) {
    return _mm256_cmpgt_epi32(_mm256_set1_epi32(n), _mm256_setr_epi32(0, 1, 2, 3, 4, 5, 6, 7));
}

/// For blocks that a tail is padded to.
ZCK_INLINE void CopyBytes(uint8_t *dst, const uint8_t *src, int64_t n) {
    for (int64_t i = 0; i < n; ++i) dst[i] = src[i];
}

/// Prefetch about half a row ahead, for reading and for writing: rows of frames follow one another in memory, and the hardware
/// prefetcher stops at page ends. Past the buffer it is harmless.
constexpr int64_t kAhead = 4096;
ZCK_INLINE void FetchAhead(const uint8_t *p, int64_t ahead = kAhead) { __builtin_prefetch(p + ahead, 0); }
ZCK_INLINE void OwnAhead(uint8_t *p) { __builtin_prefetch(p + kAhead, 1); }

}    // namespace zck::avx2
