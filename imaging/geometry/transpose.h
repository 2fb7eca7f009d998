// Rows become columns.
#pragma once

#include <cstdint>

#include "imaging/primitives/image.h"

namespace zck {

/// Row i of the target is column i of the source, whose size is `size`; pixels of 1, 3 or 4 bytes. Steps are of any sign; the
/// images do not overlap. It walks in tiles, so that neither side runs through more pages than a processor keeps at hand.
void Transpose(uint8_t *dst, int64_t dstStep, const uint8_t *src, int64_t srcStep, ROI size, int32_t pixel);

}    // namespace zck
