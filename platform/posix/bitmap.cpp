#include "platform/bitmap.h"

#include <cstdlib>
#include <cstring>

namespace zck {
namespace {

uint8_t Of5Bits(uint32_t value) { return static_cast<uint8_t>((value & 31) << 3 | (value & 31) >> 2); }

void PutPixel(const uint8_t *pixel, int32_t bits, uint8_t *out) {
    if (bits == 16) {
        const uint32_t word = pixel[0] | static_cast<uint32_t>(pixel[1]) << 8;
        for (int32_t c = 0; c < 3; ++c) out[c] = Of5Bits(word >> (5 * c));
        out[3] = 0;
    } else {
        std::memcpy(out, pixel, 3);
        out[3] = bits == 32 ? pixel[3] : uint8_t{0};
    }
}

int64_t PixelBytes(const BITMAPINFOHEADER &header) { return int64_t{4} * header.biWidth * header.biHeight; }

}    // namespace

HRESULT BitmapMake(const BITMAPINFOHEADER &header, const uint8_t *pixels, HBITMAP *bitmap) noexcept {
    *bitmap = nullptr;
    const int32_t bits = header.biBitCount;
    const int64_t rows = std::abs(int64_t{header.biHeight});
    const int64_t rowBytes = (int64_t{header.biWidth} * bits + 31) / 32 * 4;
    if ((bits != 16 && bits != 24 && bits != 32) || header.biCompression != 0) return E_UNEXPECTED;
    if (header.biWidth < 1 || rows < 1 || rowBytes > INT32_MAX || rowBytes * rows > header.biSizeImage) return E_UNEXPECTED;
    if (int64_t{4} * header.biWidth * rows > INT32_MAX) return E_UNEXPECTED;
    BITMAPINFOHEADER own = {};
    own.biSize = sizeof(own);
    own.biWidth = header.biWidth;
    own.biHeight = static_cast<int32_t>(rows);
    own.biPlanes = 1;
    own.biBitCount = 32;
    own.biSizeImage = static_cast<uint32_t>(PixelBytes(own));
    void *block = std::malloc(sizeof(Z_BITMAP) + own.biSizeImage);
    if (block == nullptr) return E_UNEXPECTED;
    std::memcpy(block, &own, sizeof(own));
    uint8_t *out = static_cast<uint8_t *>(block) + sizeof(Z_BITMAP);
    for (int64_t y = 0; y < rows; ++y) {
        const uint8_t *row = pixels + (header.biHeight > 0 ? y : rows - 1 - y) * rowBytes;
        for (int32_t x = 0; x < header.biWidth; ++x, out += 4) PutPixel(row + int64_t{x} * (bits / 8), bits, out);
    }
    *bitmap = static_cast<Z_BITMAP *>(block);
    return S_OK;
}

HRESULT BitmapRead(HBITMAP bitmap, BITMAPINFOHEADER &header, uint8_t **pixels) noexcept {
    if (pixels != nullptr) *pixels = nullptr;
    header = bitmap->header;
    if (header.biSize != sizeof(header) || header.biBitCount != 32 || header.biWidth < 1 || header.biHeight < 1)
        return E_INVALIDARG;
    if (PixelBytes(header) != header.biSizeImage) return E_INVALIDARG;
    if (pixels == nullptr) return S_OK;
    void *block = CoTaskMemAlloc(header.biSizeImage);
    if (block == nullptr) return E_OUTOFMEMORY;
    std::memcpy(block, bitmap + 1, header.biSizeImage);
    *pixels = static_cast<uint8_t *>(block);
    return S_OK;
}

}    // namespace zck
