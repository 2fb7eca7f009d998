// Images as rows from the top of the picture down.
#pragma once

#include "imaging/primitives/image.h"
#include "zchromakey/media_types.h"

namespace zck {

/// Completes the record (`VideoPropsUpdate`, the fields win) and makes `*p` the start of the picture's first row: a
/// bottom-up RGB image is entered at its last row and gets a negative `nRowBytes`. The height keeps its sign, so do this
/// once per record. A record of one line with row bytes stays at one line, also where its format is higher.
/// `size`, if given, starts as {0, 0} and shrinks to the smallest width and |height| of all images it went through.
/// `E_POINTER` without record, `p` or `*p`; `E_UNEXPECTED` when the row bytes stay 0.
HRESULT NormaliseRowOrder(uint8_t **p, Z_VID_PROPS *props, ROI *size);
HRESULT NormaliseRowOrder(const uint8_t **p, Z_VID_PROPS *props, ROI *size);

/// The same without an image: `*offset` becomes the distance in bytes by which its start would move.
HRESULT NormaliseRecord(Z_VID_PROPS *props, int64_t *offset, ROI *size);

}    // namespace zck
