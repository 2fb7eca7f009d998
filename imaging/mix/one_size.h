// A picture in another format with every pixel in its place.
#pragma once

#include "imaging/engines/convert_frame.h"

namespace zck {

/// Converts between complete records of one width and height, whatever their aspects, scale types, fields and stereo layouts
/// say: by the direct route of the formats, or else by planes, where only the chroma rows of 4:2:0 are resampled (linear, the
/// picture as one). What planes do not reach, the odd last column of what is not RGB, keeps its bytes.
///
/// S_OK; 0x80040201 for formats between which there is no way; `E_FAIL` for RGB to v210; 0x80040248 when a memory does not hold
/// its picture; `E_OUTOFMEMORY`.
HRESULT ConvertAtOneSize(const EngineSource &source, uint8_t *dst, int64_t bytes, const Z_VID_PROPS &target);

}    // namespace zck
