// The parts of two images that a conversion walks.
#pragma once

#include <cstdint>

#include "imaging/colour/image_desc.h"
#include "zchromakey/com.h"

namespace zck {

/// Cuts two rectangles to what both images have. `inSrc`, `inDst`: the wish, null for the whole image. `rcSrc`, `rcDst`: the
/// result. Without `bProportional` both start with the smaller width and height; with it the target is scaled, and what one
/// side loses at its edge is taken from the other side by the scale.
///
/// Unless both formats are of the RGB family, left goes up and right goes down to an even column.
///
/// What is lost at the top goes by the horizontal scale and what is lost at the left by the vertical one; at the right and at
/// the bottom each goes by its own. Overlays in the field are placed with that.
///
/// `S_OK`; `S_FALSE` when nothing is visible; `E_INVALIDARG` without an image or a result, or for a wish whose left is not
/// below its right or top not below its bottom.
HRESULT NormalizeRects(const ImgDesc *sd, const ImgDesc *dd, tagRECT *rcSrc, tagRECT *rcDst, bool bProportional,
                       const tagRECT *inSrc, const tagRECT *inDst);

}    // namespace zck
