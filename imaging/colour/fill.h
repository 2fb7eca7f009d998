// Fills with one colour. A packed colour has red in bits 0 to 7, green in 8 to 15, blue in 16 to 23.
#pragma once

#include <cstdint>

#include "zchromakey/media_types.h"

namespace zck {

/// The colour as a pair of pixels, the first byte lowest: Y Cb Y Cr and Cb Y Cr Y. BT.601, from the formulas in thousandths
/// rounded half up, Y clamped to 16..235, Cb and Cr to 16..240.
uint32_t ColorToYUY2(uint32_t colour);
uint32_t ColorToUYVY(uint32_t colour);
/// The colour as a pixel of RGB32: red and blue change places, the top byte stays.
uint32_t ColorToRGB32(uint32_t colour);

/// Fills memory in the pixels of YUY2, UYVY, HDYC, RGB32, ARGB32 or RGB24; whole 32-bit words, in RGB24 whole pixels, what is
/// left of `bytes` stays. Any other format does nothing. The alpha byte of ARGB32 is the top byte of the colour.
void FillPlain(eZFCC fcc, uint8_t *dst, int64_t bytes, uint32_t colour);

/// Fills the image of a record (|nHeight| rows from `dst`, `nRowBytes` apart; padding stays), opaque from opacity 1.0 on;
/// below, the picture shines through, alpha byte included. A partial fill of 4:2:2 scales all components and adds those of
/// the colour, pair by pair: with an odd width the last pixel is scaled only, and an opaque fill leaves it as it is.
/// The caller makes sure that the memory holds the record's pixels.
/// `E_INVALIDARG` without image or record; `S_FALSE`, nothing done, for an opacity below 1/128 or no number and for a format
/// that `FillPlain` does not know; `E_FAIL` for a record without size.
HRESULT FillImage(const Z_VID_PROPS *props, uint8_t *dst, uint32_t colour, double opacity);

}    // namespace zck
