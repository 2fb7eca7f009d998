// Bitmaps as the system hands them around, by handle: those of the screen on Windows, `Z_BITMAP` elsewhere.
#pragma once

#include "zchromakey/com.h"

namespace zck {

/// A bitmap that the platform can read: |`biHeight`| rows padded to 4 bytes, a positive height with the bottom row first. 16
/// bits are 5 bits for each colour; 16 and 24 bits become pixels with alpha 0. `pixels` has `biSizeImage` bytes. The caller
/// frees the bitmap with `DeleteObject`. `E_UNEXPECTED` when the platform makes none.
HRESULT BitmapMake(const BITMAPINFOHEADER &header, const uint8_t *pixels, HBITMAP *bitmap) noexcept;

/// Header and rows of a bitmap, the bottom row first. `pixels`, if not null, takes a block of the task allocator of
/// `biSizeImage` bytes. `E_INVALIDARG` for what is no bitmap, `E_OUTOFMEMORY`.
HRESULT BitmapRead(HBITMAP bitmap, BITMAPINFOHEADER &header, uint8_t **pixels) noexcept;

}    // namespace zck
