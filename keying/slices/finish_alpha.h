// The seam pass and the last step of a frame, for callers that know the limits of their buffers.
#pragma once

#include "keying/pipeline/pipeline.h"

namespace zck {

/// `FinishAlpha` within bounds; `bounds.alphaRow` is what of an alpha row may be written.
HRESULT FinishAlphaWithin(uint8_t *pixels, uint8_t *alpha, const Z_VID_PROPS *props, const CHROMA_KEY_RAW *key,
                          const KeyBounds &bounds);

/// Multiplies the colour of a 32-bit image by its alpha. Other formats have no alpha and stay.
void PremultiplyFrame(uint8_t *pixels, const Z_VID_PROPS &props, int64_t pixelBytes);

}    // namespace zck
