// The keying of one image, or of one slice of an image: pixels and a raw key in, an alpha plane out.
//
// There is no state: every constant is made afresh from the raw key, scratch that was not written in the same call reads as
// 0, and calls on disjoint rows may run at the same time.
#pragma once

#include <cstdint>

#include "zchromakey/com.h"
#include "zchromakey/key_types.h"
#include "zchromakey/media_types.h"

namespace zck {

/// Fills `alpha`, one byte a pixel, 0 transparent and 255 opaque, rows `AlphaStride` bytes apart, from `pixels` in place.
/// An `eZFCC_ARGB32` image gets the alpha into its fourth bytes, an `eZFCC_RGB32` image if `writeAlpha` is set.
///
/// `pixels` has |`nHeight`| rows of `nRowBytes`, `alpha` as many rows of `AlphaStride`; nothing else is touched. The width of a
/// row is measured in blocks, and what the blocks leave out on the right keeps what the plane held.
///
/// `S_OK`; `S_FALSE` when the type keys nothing, or when no entry cuts anything out (the plane is then all opaque, the pixels
/// are as they were); `E_POINTER`; `E_INVALIDARG` for props that describe no image (negative width or row bytes, rows
/// shorter than the width); the conversion's status for a format that cannot be brought to 32-bit pixels; 0xFFFFFFFA for
/// smoothing of an image without interior.
HRESULT CK_GetAlphaKeyEx3(uint8_t *pixels, uint8_t *alpha, const Z_VID_PROPS *props, const CHROMA_KEY_RAW *key,
                          bool writeAlpha);

/// The limits of what a call may touch, for callers that know them better than the props say.
struct KeyBounds {
    static constexpr int64_t kAnyRow = INT64_MAX;    ///< rows may run into each other, as far as the buffer goes

    int64_t pixelBytes;    ///< from `pixels` on; reads beyond give 0
    int64_t alphaBytes;    ///< from `alpha` on; writes beyond are dropped
    int64_t pixelRow;      ///< bytes from the start of a pixel row that may be read
    int64_t alphaRow;      ///< bytes from the start of an alpha row that may be written
};

/// `CK_GetAlphaKeyEx3` within bounds. A slice passes its own rows, so that rounded widths and slips never reach another's.
HRESULT KeyImage(uint8_t *pixels, uint8_t *alpha, const Z_VID_PROPS *props, const CHROMA_KEY_RAW *key, bool writeAlpha,
                 const KeyBounds &bounds);

}    // namespace zck
