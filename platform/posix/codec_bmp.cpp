// Bitmap files without an alpha: 24 bits, and 32 bits for pictures whose pixels have four bytes.
#include "platform/codec_rows.h"
#include "platform/posix/codec_parts.h"

namespace zck {
namespace {

constexpr uint32_t kHeaders = 14 + 40;

void Put(std::string &file, uint32_t value, int32_t bytes) {
    for (int32_t i = 0; i < bytes; ++i) file += static_cast<char>(value >> (8 * i) & 0xFF);
}

void PutHeaders(std::string &file, const CodecSource &source, uint32_t bits, uint32_t imageBytes) {
    file += "BM";
    Put(file, kHeaders + imageBytes, 4);
    Put(file, 0, 4);
    Put(file, kHeaders, 4);
    Put(file, 40, 4);
    Put(file, static_cast<uint32_t>(source.width), 4);
    Put(file, static_cast<uint32_t>(source.height), 4);
    Put(file, 1, 2);
    Put(file, bits, 2);
    Put(file, 0, 4);
    Put(file, imageBytes, 4);
    file.resize(kHeaders);
}

}    // namespace

HRESULT BmpEncode(const CodecSource &source, std::string &file) {
    const bool wide = source.pixels == CodecPixels::Rgb32;
    const int64_t rowBytes = wide ? int64_t{4} * source.width : (int64_t{3} * source.width + 3) / 4 * 4;
    const int64_t imageBytes = rowBytes * source.height;
    if (imageBytes > INT32_MAX - int64_t{kHeaders}) return E_FAIL;
    file.reserve(kHeaders + static_cast<size_t>(imageBytes));
    PutHeaders(file, source, wide ? 32 : 24, static_cast<uint32_t>(imageBytes));
    for (int32_t y = source.height - 1; y >= 0; --y) {
        const size_t start = file.size();
        for (int32_t x = 0; x < source.width; ++x) {
            const CodecPixel pixel = CodecPixelAt(source, x, y);
            for (const uint8_t byte : {pixel.blue, pixel.green, pixel.red}) file += static_cast<char>(byte);
            if (wide) file += static_cast<char>(source.top[y * source.stride + int64_t{4} * x + 3]);
        }
        file.resize(start + static_cast<size_t>(rowBytes));
    }
    return S_OK;
}

}    // namespace zck
