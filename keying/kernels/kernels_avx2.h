// The rows of the vector table, by file. What they do stands in kernels.h.
#pragma once

#include "keying/kernels/kernels.h"
#include "platform/avx2.h"

namespace zck::avx2 {

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
