// Mirroring, in place and on the way to another memory.
#pragma once

#include <cstdint>

#include "zchromakey/com.h"
#include "zchromakey/media_types.h"

namespace zck {

enum MirrorIndex : int32_t { kMirrorHorz = 1, kMirrorVert = 2, kMirrorHorzVert = 3 };

/// Mirrors an image in its memory. Under a vertical mirror an interlaced picture moves up by one row in memory (the last row
/// stays), so that its fields keep their order in time. Row padding stays but for that move. `nIndex`: a `MirrorIndex`.
///
/// S_OK; `E_POINTER` without image or record; `E_INVALIDARG` for another index; `E_NOTIMPL` for planar formats, v210, RGB8 and
/// others that are not served; 0x80040200 for a record without size or row bytes; 0x80040248 when the memory does not hold the
/// image.
HRESULT MirrorBits(uint8_t *bits, int64_t bytes, const Z_VID_PROPS *props, int32_t nIndex);

/// A copy of `bytes` bytes, mirrored, in one walk over both memories, which do not overlap. Statuses as above; after a failure
/// the copy may be written or not.
HRESULT MirrorBitsCopy(const uint8_t *src, uint8_t *dst, int64_t bytes, const Z_VID_PROPS *props, int32_t nIndex);

}    // namespace zck
