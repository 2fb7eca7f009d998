// Narrowing a video record to a part of its picture: the same memory, read from another start and in other steps.
#pragma once

#include <cstdint>

#include "zchromakey/media_types.h"

namespace zck {

// Both narrow `props` and return the bytes by which the first pixel moves (negative where a record has negative row
// bytes). Nothing is checked against a buffer.

// One field; `index` 0 is the field that comes first in time. A record without fields is taken to start with its upper row.
int64_t FieldView(Z_VID_PROPS &props, int32_t index);

// A rectangle in pixels from the top left corner of the picture, clamped to it, and rounded inwards to even columns for
// formats outside the RGB family and to even rows for interlaced pictures. Planar and invalid records stay whole. The
// result may be empty.
//
// With `field` 1 or 2, the first or second in time, also one field of the rectangle: its rows are rounded to even ones, and for
// the field of the lower rows both edges move down by one; then the height halves and the row bytes double. A bottom-up
// rectangle that reaches the bottom starts at the first row in memory for both fields; hosts rely on it.
int64_t SubRectView(Z_VID_PROPS &props, const tagRECT &rect, int32_t field = -1);

}    // namespace zck
