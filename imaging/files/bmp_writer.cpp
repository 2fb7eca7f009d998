#include "imaging/files/bmp_writer.h"

#include <algorithm>
#include <cstdlib>
#include <string>

#include "frames/media/pixel_format.h"
#include "platform/files.h"
#include "platform/status.h"

namespace zck {
namespace {

constexpr uint32_t kFileHeader = 14;
constexpr uint32_t kInfoHeader = 40;

void Put(std::string &out, uint32_t value, int32_t bytes) {
    for (int32_t i = 0; i < bytes; ++i) out += static_cast<char>(value >> 8 * i & 0xFF);
}

std::string Headers(eZFCC fcc, int32_t width, int32_t height, uint32_t imageBytes) {
    const FormatRow &row = *PixelFormatFind(fcc);
    std::string out = "BM";
    Put(out, kFileHeader + kInfoHeader + imageBytes, 4);
    Put(out, 0, 4);
    Put(out, kFileHeader + kInfoHeader, 4);
    Put(out, kInfoHeader, 4);
    Put(out, static_cast<uint32_t>(width), 4);
    Put(out, static_cast<uint32_t>(height), 4);
    Put(out, 1, 2);
    Put(out, static_cast<uint32_t>(row.nBits), 2);
    Put(out, row.bCompressionTag ? static_cast<uint32_t>(fcc) : 0, 4);
    Put(out, imageBytes, 4);
    out.resize(kFileHeader + kInfoHeader);
    return out;
}

void PutPixel(std::string &out, int32_t luma, int32_t cb, int32_t cr) {
    const int32_t y = 38142 * (luma - 16);
    const int32_t u = cb - 128;
    const int32_t v = cr - 128;
    for (const int32_t sum : {y + 52298 * u, y - 26640 * u - 12812 * v, y + 66126 * v}) {
        out += static_cast<char>(std::clamp(sum >> 15, 0, 255));
    }
    out += '\0';
}

/// The last row first.
void PutPairs(std::string &out, const FormatRow &format, int32_t width, int32_t rows, int64_t step, const uint8_t *pixels) {
    for (int64_t y = rows - 1; y >= 0; --y) {
        const uint8_t *pair = pixels + y * step;
        for (int32_t x = 0; x < width; x += 2, pair += 4) {
            const int32_t *at = format.nOffset;
            PutPixel(out, pair[at[0]], pair[at[1]], pair[at[2]]);
            PutPixel(out, pair[at[0] + 2], pair[at[1]], pair[at[2]]);
        }
    }
}

HRESULT Write(TextView name, std::string_view headers, std::string_view pixels) {
    File file;
    HRESULT hr = file.Open(name, FileMode::Create);
    size_t put = 0;
    if (SUCCEEDED(hr)) hr = file.WriteAt(0, headers.data(), headers.size(), put);
    return FAILED(hr) ? hr : file.WriteAt(headers.size(), pixels.data(), pixels.size(), put);
}

bool IsPlainRgb(eZFCC fcc) { return fcc == eZFCC_RGB24 || fcc == eZFCC_RGB32 || fcc == eZFCC_ARGB32; }
bool IsPairs(eZFCC fcc) { return fcc == eZFCC_YUY2 || fcc == eZFCC_UYVY || fcc == eZFCC_YVYU; }

bool Suits(const FormatRow &format, int32_t width, int32_t height, int32_t rowPixels) {
    if (width < 1 || width % format.nDivX != 0 || height % format.nDivY != 0) return false;
    return rowPixels == 0 || (rowPixels >= width && rowPixels % format.nDivX == 0);
}

}    // namespace

HRESULT WriteBmp(TextView name, eZFCC fcc, int32_t width, int32_t height, int32_t rowPixels, const uint8_t *pixels) {
    const FormatRow *format = PixelFormatFind(fcc);
    if (name.data() == nullptr || height == 0 || pixels == nullptr || format == nullptr) return E_INVALIDARG;
    if (!Suits(*format, width, height, rowPixels) || (!IsPlainRgb(fcc) && !IsPairs(fcc))) return E_INVALIDARG;
    return Guarded([&]() -> HRESULT {
        const eZFCC stored = IsPairs(fcc) ? eZFCC_RGB32 : fcc;
        const int64_t rows = std::abs(int64_t{height});
        const int64_t pixelBytes = int64_t{PixelFormatFind(stored)->nBits} / 8 * width;
        const int64_t rowBytes = (pixelBytes + 3) / 4 * 4;
        if (rowBytes > (INT32_MAX - 64) / rows) return E_INVALIDARG;
        const int64_t bytes = rowBytes * rows;
        const std::string headers = Headers(stored, width, height, static_cast<uint32_t>(bytes));
        if (!IsPairs(fcc)) return Write(name, headers, {reinterpret_cast<const char *>(pixels), static_cast<size_t>(bytes)});
        std::string converted;
        converted.reserve(static_cast<size_t>(bytes));
        PutPairs(converted, *format, width, static_cast<int32_t>(rows), int64_t{2} * std::max(width, rowPixels), pixels);
        return Write(name, headers, converted);
    });
}

}    // namespace zck
