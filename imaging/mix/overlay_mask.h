// The opacities of a picture as a plane of bytes: its alpha, or its luma.
#pragma once

#include "imaging/mix/mix_image.h"

namespace zck {

/// The record of the mask of a picture: `eZFCC_RGB8`, the picture's size (an even width outside the RGB family), rows a
/// multiple of 8 bytes. The picture's top row is the first one, although the height is positive.
Z_VID_PROPS MaskRecord(const Z_VID_PROPS &picture);

/// Whether an image is such a mask, of any size, and its memory holds it. Its record is completed.
bool MaskUsable(MixOverlay &mask);

/// Fills the memory of a mask of the record `MaskRecord` of the picture: alpha of ARGB32, BT.601 luma of RGB32 and RGB24, the
/// luma of 8-bit YUV, the bytes of RGB8. `E_INVALIDARG` for any other format; 0x80040248 for a picture that its memory does not
/// hold. The picture's record is complete.
HRESULT MaskFromPicture(const MixOverlay &picture, uint8_t *mask);

/// Scales a mask to the size of another record, linear. Throws `std::bad_alloc`.
HRESULT MaskScale(const MixOverlay &mask, const Z_VID_PROPS &record, uint8_t *scaled);

}    // namespace zck
