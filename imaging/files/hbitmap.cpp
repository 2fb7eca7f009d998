#include "imaging/files/hbitmap.h"

namespace zck {

HRESULT ReadHbitmap(HBITMAP bitmap, BITMAPINFOHEADER *header, uint8_t **pixels) noexcept {
    if (pixels != nullptr) *pixels = nullptr;
    if (bitmap == nullptr) return E_INVALIDARG;
    if (header == nullptr && pixels == nullptr) return E_POINTER;
    BITMAPINFOHEADER own = {};
    return BitmapRead(bitmap, header != nullptr ? *header : own, pixels);
}

}    // namespace zck
