// One image in memory into another, whatever their sizes, formats, fields and stereo layouts.
#pragma once

#include <cstdint>

#include "imaging/engines/convert_frame.h"
#include "zchromakey/com.h"

namespace zck {

/// Converts the source into each output of the target that is there: the whole picture, a picture of the field that comes first
/// in time, a picture of the other field. Records may be incomplete as those of frames are. `quality` is a number of
/// `QualityDecode`; `eye` is -1 for all that the target holds, 0 or 1 for one half of a stereo pair, which the source gives too
/// if it is one. Where a record is planar both pictures count as flat. A picture of 486 lines takes one of 480 unscaled below
/// black lines.
///
/// S_OK; `E_POINTER` without context, source, record or any output; `E_UNEXPECTED` for a record without size or row bytes, also
/// when that is so of half of it; 0x80040248 when a memory does not hold its image; else the status of the engine.
HRESULT ConvertBits(FieldConverter *ctx, const EngineSource &source, const EngineTarget &target, int32_t quality, int32_t eye);

/// The same between complete records, as they stand, and into the whole picture alone.
HRESULT ConvertBitsScaled(FieldConverter *ctx, const EngineSource &source, uint8_t *dst, int64_t dstBytes,
                          const Z_VID_PROPS *target, int32_t quality);

/// The record as work on pixels reads it: normalised, one line kept at one line, row bytes positive. `E_UNEXPECTED` when it
/// then has no size or no row bytes.
HRESULT RecordComplete(Z_VID_PROPS &props);

/// Whether `bytes` of memory hold the pixels of a complete record; false without memory.
bool MemoryHolds(const Z_VID_PROPS &props, int64_t bytes);

}    // namespace zck
