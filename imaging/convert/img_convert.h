// Conversion between two images for which `ConvertSameGeometry` has no route.
#pragma once

#include <cstdint>

#include "imaging/engines/img_convert.h"
#include "zchromakey/media_types.h"

namespace zck {

/// Converts an image into another of the same size: every format of color_convert.h and NV12, BT.601 throughout, without a look
/// at field orders. Memories hold `srcBytes` and `dstBytes`; nothing outside is touched.
///
/// With an odd width and a format outside the RGB family the last column is not written. A format that is not served (v210,
/// r210, RGB8 and others) is a success that writes nothing.
///
/// `S_OK`; `S_FALSE` when there is nothing to convert, as in a picture of one column; `E_INVALIDARG` without state, image or
/// record, and for images of different size; `E_UNEXPECTED` for a record without size or row bytes; 0x80040248 when a memory
/// does not hold its image.
HRESULT ImgConvert(ImgScaleState *state, const uint8_t *src, int64_t srcBytes, uint8_t *dst, int64_t dstBytes,
                   const Z_VID_PROPS *sp, const Z_VID_PROPS *tp);

}    // namespace zck
