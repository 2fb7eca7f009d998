#include "imaging/files/bmp_reader.h"

#include <cstdlib>
#include <cstring>

#include "frames/media/pixel_format.h"
#include "platform/files.h"
#include "platform/status.h"

namespace zck {
namespace {

constexpr uint32_t kFileHeader = 14;
constexpr uint32_t kHeaders = kFileHeader + sizeof(BITMAPINFOHEADER);
constexpr uint16_t kMagic = 0x4D42;
constexpr uint32_t kRgb = 0;          // compression
constexpr uint32_t kBitFields = 3;    // whatever the masks are

eZFCC FormatOf(const BITMAPINFOHEADER &header) {
    if (header.biCompression != kRgb && header.biCompression != kBitFields) return static_cast<eZFCC>(header.biCompression);
    switch (header.biBitCount) {
        case 16:
            return kFccRgb565;
        case 24:
            return eZFCC_RGB24;
        case 32:
            return eZFCC_RGB32;
        default:
            return eZFCC_Default;
    }
}

/// Bytes of all rows; 0 for a header that is not valid.
int64_t RowsBytes(const BITMAPINFOHEADER &header) {
    if (header.biSize != sizeof(header) || header.biPlanes != 1 || header.biWidth < 1 || header.biHeight == 0) return 0;
    if (header.biClrUsed != 0 || header.biClrImportant != 0) return 0;
    const FormatRow *format = PixelFormatFind(FormatOf(header));
    if (format == nullptr) return 0;
    const int64_t rows = std::abs(int64_t{header.biHeight});
    const int64_t first = RowBytes(format->fcc, header.biWidth) * rows;
    return format->bPlanar ? first + first / 2 : first;
}

class BmpFile {
public:
    HRESULT Open(TextView name) {
        const HRESULT hr = m_file.Open(name, FileMode::Read);
        return FAILED(hr) ? hr : m_file.Size(m_nBytes);
    }

    HRESULT HeaderRead(BITMAPINFOHEADER &header) {
        uint8_t bytes[kHeaders];
        HRESULT hr = Read(0, bytes, sizeof(bytes));
        if (FAILED(hr)) return hr;
        uint16_t magic = 0;
        uint32_t stated = 0;
        std::memcpy(&magic, bytes, sizeof(magic));
        std::memcpy(&stated, bytes + 2, sizeof(stated));
        std::memcpy(&m_nPixels, bytes + 10, sizeof(m_nPixels));
        if (magic != kMagic || m_nPixels < kHeaders || m_nPixels >= stated) return E_FAIL;
        std::memcpy(&header, bytes + kFileHeader, sizeof(header));
        return SizeCheck(header, stated);
    }

    HRESULT PixelsRead(const BITMAPINFOHEADER &header, uint8_t **pixels) {
        auto *block = static_cast<uint8_t *>(CoTaskMemAlloc(header.biSizeImage));
        if (block == nullptr) return E_OUTOFMEMORY;
        const HRESULT hr = Read(m_nPixels, block, header.biSizeImage);
        if (FAILED(hr)) {
            CoTaskMemFree(block);
            return hr;
        }
        *pixels = block;
        return S_OK;
    }

private:
    /// Nothing is allocated for what the file cannot hold.
    HRESULT SizeCheck(BITMAPINFOHEADER &header, uint32_t stated) const {
        const int64_t rows = RowsBytes(header);
        if (rows < 1 || rows > INT32_MAX) return E_FAIL;
        if (header.biSizeImage == 0) header.biSizeImage = static_cast<uint32_t>(rows);
        if (header.biSizeImage < rows || header.biSizeImage > INT32_MAX) return E_FAIL;
        const uint64_t end = uint64_t{m_nPixels} + header.biSizeImage;
        return end <= stated && end <= m_nBytes ? S_OK : E_FAIL;
    }

    HRESULT Read(uint64_t at, void *data, size_t n) {
        size_t got = 0;
        const HRESULT hr = m_file.ReadAt(at, data, n, got);
        return FAILED(hr) ? hr : got == n ? S_OK : E_FAIL;
    }

    File m_file;
    uint64_t m_nBytes = 0;
    uint32_t m_nPixels = 0;    // where they start
};

}    // namespace

HRESULT ReadBmp(TextView name, BITMAPINFOHEADER *header, uint8_t **pixels) noexcept {
    if (pixels != nullptr) *pixels = nullptr;
    if (name.data() == nullptr || header == nullptr) return E_INVALIDARG;
    if (pixels == nullptr) return E_POINTER;
    BmpFile file;
    HRESULT hr = file.Open(name);
    if (SUCCEEDED(hr)) hr = file.HeaderRead(*header);
    return FAILED(hr) ? hr : file.PixelsRead(*header, pixels);
}

}    // namespace zck
