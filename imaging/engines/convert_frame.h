// The two engines that turn one image in memory into another of any size, format and field order.
#pragma once

#include <cstdint>

#include "imaging/engines/field_converter.h"
#include "zchromakey/com.h"
#include "zchromakey/media_types.h"

namespace zck {

/// An image to read. The record is complete (width, height and row bytes set); `p` is the start of its memory, also of
/// bottom-up images, whose rows the engines count from the top of the picture themselves.
struct EngineSource {
    const uint8_t *p;
    int64_t bytes;
    const Z_VID_PROPS *props;
};

/// The images to write, all of one record; at least one is there.
struct EngineTarget {
    uint8_t *dst;       ///< the whole picture
    uint8_t *first;     ///< a picture made of the field that comes first in time
    uint8_t *second;    ///< of the other field
    int64_t bytes;      ///< of each memory
    const Z_VID_PROPS *props;
    /// Bytes of a row that may be written, padding included. For a field, whose rows stand between those of the other one.
    int64_t rowRoom = INT64_MAX;
};

/// Both engines fit by `FitRects`. Pictures whose rectangles have one size and whose field orders do not meet are converted as
/// they stand (`ConvertSameGeometry`), with HDYC as BT.709; as soon as something is scaled all is BT.601.
///
/// S_OK; `E_POINTER` without context, source, record or any output; `E_UNEXPECTED` for a record without size or row bytes;
/// 0x80040248 when a memory does not hold its image; 0x80040201 for formats that are not scaled (v210, r210, RGB8, RGB565 and
/// others), or the failure of the plain conversion where that was tried; `E_FAIL` and `E_OUTOFMEMORY` from the stages.

/// The planar engine. `q` is a `ResizeCode`; chroma takes linear at most. A source in fields and a target in fields go field by
/// field; a different order moves the picture by one line. An interlaced source makes a progressive target of its first field
/// alone; with field outputs a progressive target gets nothing in `dst`.
HRESULT ConvertFrame2(FieldConverter *ctx, const EngineSource &source, const EngineTarget &target, int32_t q);

/// The high-quality engine, by `Img_Convert`. Outputs that would hold the same bytes are made once and copied.
HRESULT ConvertFrame3(FieldConverter *ctx, const EngineSource &source, const EngineTarget &target, int32_t q);

}    // namespace zck
