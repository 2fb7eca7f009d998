// Mixes by alpha: of the overlay itself, premultiplied, or of a mask beside it.
#pragma once

#include "imaging/mix/mix_image.h"

namespace zck {

/// Lays an overlay with premultiplied alpha over the target, top left corners on each other; what both have in common is
/// mixed. The overlay is ARGB32 or RGB32, whose fourth byte counts as it stands. At opacity 0 the target stays.
///
/// S_OK; `E_POINTER` without an image; `E_INVALIDARG` for another overlay; the failure of the conversion into the target's
/// format; `E_FAIL` for a target that is converted to and not mixed (RGB24, v210); 0x80040248 when a memory does not hold
/// its picture. Nothing is written after a failure. Throws `std::bad_alloc`.
HRESULT MixImage_PARGB(const MixTarget &target, const MixOverlay &overlay, double opacity);

/// `MixImage_PARGB` of parts of both. `S_FALSE` when there is nothing to mix, whatever the formats are.
HRESULT MixPremultiplied(const MixTarget &target, const tagRECT &targetRect, const MixOverlay &overlay,
                         const tagRECT &overlayRect, double opacity);

/// A plane of 8-bit opacities. Row i of the overlay's memory goes by the row `p` + i * `step`, which has as many bytes as the
/// overlay has pixels.
struct MixMask {
    const uint8_t *p;
    int64_t step;
};

/// Lays an overlay over a target of its family by a mask, or without one. By the overlay's format:
/// - RGB32 with a mask: it counts as multiplied by the mask, and the opacity acts on it alone. Without: pixels are copied at
///   opacity 1, below only the first half of each row is mixed.
/// - UYVY, HDYC, YUY2 with a mask: as multiplied by the mask when `bField` is set, otherwise mixed by it; without: blended.
/// - ARGB32: by its own premultiplied alpha; a mask is not used.
///
/// S_OK; `E_POINTER` without an image; `E_INVALIDARG` for formats of two families and for all others; 0x80040248 when a memory
/// does not hold its picture. Nothing is written after a failure.
HRESULT MixImage_Mask8(const MixTarget &target, const MixOverlay &overlay, bool bField, const MixMask *mask, double opacity);

}    // namespace zck
