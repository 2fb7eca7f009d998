#include "platform/bitmap.h"

namespace zck {
namespace {

/// The system writes masks or a palette behind the header, and reads a palette there.
struct BitmapInfo {
    BITMAPINFOHEADER header;
    RGBQUAD colours[256];

    BITMAPINFO *get() { return reinterpret_cast<BITMAPINFO *>(this); }
};

class Screen {
public:
    Screen() noexcept : m_dc(GetDC(nullptr)) {}
    ~Screen() {
        if (m_dc != nullptr) ReleaseDC(nullptr, m_dc);
    }
    Screen(const Screen &) = delete;
    Screen &operator=(const Screen &) = delete;

    HDC get() const noexcept { return m_dc; }

private:
    const HDC m_dc;
};

}    // namespace

HRESULT BitmapMake(const BITMAPINFOHEADER &header, const uint8_t *pixels, HBITMAP *bitmap) noexcept {
    BitmapInfo info = {};
    info.header = header;
    const Screen screen;
    *bitmap = CreateDIBitmap(screen.get(), &info.header, CBM_INIT, pixels, info.get(), DIB_RGB_COLORS);
    return *bitmap != nullptr ? S_OK : E_UNEXPECTED;
}

HRESULT BitmapRead(HBITMAP bitmap, BITMAPINFOHEADER &header, uint8_t **pixels) noexcept {
    if (pixels != nullptr) *pixels = nullptr;
    const Screen screen;
    BitmapInfo info = {};
    info.header.biSize = sizeof(info.header);
    if (GetDIBits(screen.get(), bitmap, 0, 0, nullptr, info.get(), DIB_RGB_COLORS) == 0) return E_INVALIDARG;
    // The system answers with masks where there are none.
    if (info.header.biBitCount == 24 || info.header.biBitCount == 32) info.header.biCompression = BI_RGB;
    header = info.header;
    if (pixels == nullptr) return S_OK;
    const auto rows = static_cast<UINT>(header.biHeight < 0 ? -header.biHeight : header.biHeight);
    auto *block = static_cast<uint8_t *>(CoTaskMemAlloc(header.biSizeImage));
    if (block == nullptr) return E_OUTOFMEMORY;
    if (GetDIBits(screen.get(), bitmap, 0, rows, block, info.get(), DIB_RGB_COLORS) == 0) {
        CoTaskMemFree(block);
        return E_INVALIDARG;
    }
    *pixels = block;
    return S_OK;
}

}    // namespace zck
