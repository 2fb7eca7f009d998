// Two pictures become the two fields of one.
#pragma once

#include <cstdint>

#include "zchromakey/com.h"
#include "zchromakey/media_types.h"

namespace zck {

/// Makes the even rows of `dst` of the even rows of `a` and the odd rows of the odd rows of `b`, converted to the target's
/// format; a second-field-first target exchanges a and b, and so does a bottom-up one. Rows count from the top of the picture.
/// A last odd row is not written.
///
/// Where the conversion writes an alpha of its own (UYVY or YUY2 to 4-byte RGB), row 0 comes from a, the rows 1 to
/// h / 2 from b, and the others stay.
///
/// S_OK; `E_POINTER`; `E_UNEXPECTED` for a record without size; 0x80040201 without a route between the formats; `E_FAIL` for a
/// route that is not provided; 0x80040248 when a memory does not hold its image. `props` describes both sources.
HRESULT WeaveFields(const uint8_t *a, int64_t aBytes, const uint8_t *b, int64_t bBytes, const Z_VID_PROPS *props, uint8_t *dst,
                    int64_t dstBytes, const Z_VID_PROPS *dstProps);

}    // namespace zck
