// Copies and fills. Sizes are in pixels of the kind that the name tells.
#pragma once

#include "imaging/primitives/image.h"

namespace zck {

/// Rows of 1-, 2-, 3- and 4-byte pixels. The first is the general copy of rows of bytes.
int32_t Copy_8u_C1R(const uint8_t *src, int64_t srcStep, uint8_t *dst, int64_t dstStep, ROI size);
int32_t Copy_16u_C1R(const uint8_t *src, int64_t srcStep, uint8_t *dst, int64_t dstStep, ROI size);
int32_t Copy_8u_C3R(const uint8_t *src, int64_t srcStep, uint8_t *dst, int64_t dstStep, ROI size);
int32_t Copy_8u_C4R(const uint8_t *src, int64_t srcStep, uint8_t *dst, int64_t dstStep, ROI size);
/// The fourth byte goes.
int32_t Copy_8u_C4C3R(const uint8_t *src, int64_t srcStep, uint8_t *dst, int64_t dstStep, ROI size);
/// A fourth byte is added: 255.
int32_t Copy_8u_C3C4R(const uint8_t *src, int64_t srcStep, uint8_t *dst, int64_t dstStep, ROI size);
/// One channel of four out to a plane: `src` points at the channel of the first pixel (3 for alpha).
int32_t Copy_8u_C4C1R(const uint8_t *src, int64_t srcStep, uint8_t *dst, int64_t dstStep, ROI size);
/// A plane into one channel of four: `dst` points at the channel.
int32_t Copy_8u_C1C4R(const uint8_t *src, int64_t srcStep, uint8_t *dst, int64_t dstStep, ROI size);

int32_t Set_8u_C1R(uint8_t value, uint8_t *dst, int64_t dstStep, ROI size);
int32_t Set_8u_C3R(const uint8_t *value, uint8_t *dst, int64_t dstStep, ROI size);
int32_t Set_8u_C4R(const uint8_t *value, uint8_t *dst, int64_t dstStep, ROI size);
/// One channel of four: `dst` points at it.
int32_t Set_8u_C4CR(uint8_t value, uint8_t *dst, int64_t dstStep, ROI size);
/// 32-bit words, low byte first; `dst` needs no alignment.
int32_t Set_32s(uint32_t value, uint8_t *dst, int64_t count);
int32_t Zero_8u(uint8_t *dst, int64_t count);

}    // namespace zck
