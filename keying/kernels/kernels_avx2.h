// The rows of the vector table, by file. What they do stands in kernels.h.
#pragma once

#include "keying/kernels/kernels.h"

// For the pieces of a row: a call would pass vectors through memory and load every constant again.
#define ZCK_INLINE inline __attribute__((always_inline))

namespace zck::avx2 {

// Asks for what lies about a row's half ahead: rows of frames come from and go to the memory, they follow one another there,
// and what the processor fetches by itself ends with each page and with each kernel. No address is wrong for this.
constexpr int kAhead = 4096;
ZCK_INLINE void FetchAhead(const uint8_t *p) { __builtin_prefetch(p + kAhead, 0); }
ZCK_INLINE void OwnAhead(uint8_t *p) { __builtin_prefetch(p + kAhead, 1); }

// distance_avx2.cpp
void Distance(uint8_t *dst, const uint8_t *src, int32_t blocks, const DistanceKey *key);

// bytes_avx2.cpp
void Join(uint8_t *dst, const uint8_t *src, int32_t width, int32_t c);
void Invert(uint8_t *row, int32_t width, bool writeSlipByte);
void AddConst(uint8_t *row, int32_t width, int32_t c);
void AddPlane(uint8_t *dst, const uint8_t *src, int32_t width);
void Threshold(uint8_t *row, int32_t width, int32_t low, int32_t high);

// pixels_avx2.cpp
void Merge(uint8_t *dst, const uint8_t *src, const uint8_t *alpha, int32_t width);
void Premultiply(uint8_t *row, int32_t width);
void MergePremultiply(uint8_t *dst, const uint8_t *src, const uint8_t *alpha, int32_t width);

// spaces_avx2.cpp
void ToHls(uint8_t *dst, const uint8_t *src, int32_t width);
void ToYuv(uint8_t *dst, const uint8_t *src, int32_t width);
void FromYuv(uint8_t *dst, const uint8_t *src, int32_t width);

// flat_avx2.cpp
bool Flat(const uint8_t *row, const uint8_t *above, int32_t width, const uint8_t *first, int32_t limit);

// filters_avx2.cpp
void Erode(uint8_t *dst, const uint8_t *above, const uint8_t *middle, const uint8_t *below, int32_t width);
void Dilate(uint8_t *dst, const uint8_t *above, const uint8_t *middle, const uint8_t *below, int32_t width);
void Box(uint8_t *dst, const uint8_t *above, const uint8_t *middle, const uint8_t *below, int32_t width);
void Gauss(uint8_t *dst, const uint8_t *above, const uint8_t *middle, const uint8_t *below, int32_t width);

}    // namespace zck::avx2
