// Bitmaps of the platform, by handle.
#pragma once

#include "platform/bitmap.h"

namespace zck {

/// Header and rows of a bitmap, the bottom row first; either may be null, but not both. The caller frees the block with
/// `CoTaskMemFree`. `E_INVALIDARG` without a bitmap, `E_POINTER` without any place, `E_OUTOFMEMORY`.
HRESULT ReadHbitmap(HBITMAP bitmap, BITMAPINFOHEADER *header, uint8_t **pixels) noexcept;

}    // namespace zck
