// Images of other formats, brought to 32-bit pixels before they are measured.
#pragma once

#include <cstdint>

#include "zchromakey/com.h"
#include "zchromakey/media_types.h"

namespace zck {

/// Converts `src` (of `props`, `srcBytes` long) to `eZFCC_RGB32` rows of 4 * `stride` bytes in `dst`, in the same row order in
/// memory. Formats without a way there: 0x80040201.
HRESULT ToRgb32(const uint8_t *src, int64_t srcBytes, uint8_t *dst, int64_t dstBytes, const Z_VID_PROPS &props, int64_t stride);

}    // namespace zck
