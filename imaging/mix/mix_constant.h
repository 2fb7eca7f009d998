// Mixes for overlays that are not multiplied by an alpha of their own.
//
// All of it works on bytes: a chroma byte has the same treatment as a luma byte, so that chroma drifts from neutral at partial
// opacity. The opacity is a number of 128ths; each product is rounded to the nearest with ties to even, the sum saturated.
#pragma once

#include "imaging/mix/overlay_rows.h"

namespace zck {

/// Lays `overlay`, narrowed to its rectangle, over the rectangle of the target, top left corners on each other. At opacity 1
/// bytes are copied. A target of `eZFCC_ARGB32` takes the overlay as premultiplied pixels that fade with the opacity.
///
/// S_OK; `S_FALSE` when there is nothing to mix, whatever the formats are; 0x8004022A for formats of two families, and for
/// those that are planar, 10-bit, or have no mix (RGB8, RGB565 and others).
HRESULT MixConstant(const MixTarget &target, const tagRECT &targetRect, OverlayRows &overlay, const tagRECT &overlayRect,
                    double opacity);

/// The same for an overlay that was ARGB32 before it was converted: the opacity of a pixel is multiplied by its alpha.
/// ((alpha + 1) * opacity) >> 8 for RGB, (alpha * opacity) >> 8 for 4:2:2, where an opaque pixel leaves 1/128 of the target.
HRESULT MixWithMask(const MixTarget &target, const tagRECT &targetRect, OverlayRows &overlay, const tagRECT &overlayRect,
                    double opacity);

}    // namespace zck
