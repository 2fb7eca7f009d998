// The anti-spill of one picture as whole-frame passes over planes, in the order in which it is told to an operator: measure,
// invert, widen twice, halve, correct. Against it the library's walk by rows is compared.
#pragma once

#include <cstdint>

#include "tests/conformance/convert_model.h"
#include "zchromakey/key_types.h"
#include "zchromakey/media_types.h"

namespace conformance {

// Pixels per stored row of a record.
int64_t StrideOf(const Z_VID_PROPS &props);

// The distance of pixels from a key: `space` and `alpha` have `stride` pixels a row; what the blocks leave out stays.
void DistanceModel(Bytes &alpha, const Bytes &space, int32_t value, int32_t delta, int32_t smooth, int32_t width,
                   int32_t height, int64_t stride);

// The key's colour: red, green, blue in bytes 0 to 2, and as Y, U, V.
uint32_t SpillRgb(const CHROMA_KEY_RAW &key);
Yuv SpillYuv(uint32_t rgb);

// Changes `pixels`, all rows of the record. `space` is the picture in the key's space, `StrideOf` pixels of 4 bytes a row.
HRESULT SpillModel(Bytes &pixels, const Z_VID_PROPS &props, const CHROMA_KEY_RAW &key, const Bytes &space);

}    // namespace conformance
