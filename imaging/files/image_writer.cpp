#include "imaging/files/image_writer.h"

#include <cstdlib>
#include <optional>

#include "imaging/files/bmp_writer.h"
#include "imaging/files/file_extension.h"
#include "platform/codec.h"
#include "platform/files.h"
#include "platform/status.h"

namespace zck {
namespace {

struct ExtensionRow {
    TextView extension;
    CodecKind kind;
};
constexpr ExtensionRow kExtensions[] = {
    {ZCK_TEXT(".png"), CodecKind::Png},   {ZCK_TEXT(".gif"), CodecKind::Gif},  {ZCK_TEXT(".tif"), CodecKind::Tiff},
    {ZCK_TEXT(".tiff"), CodecKind::Tiff}, {ZCK_TEXT(".jpg"), CodecKind::Jpeg}, {ZCK_TEXT(".jpeg"), CodecKind::Jpeg},
};

CodecKind KindOf(TextView extension) {
    for (const ExtensionRow &row : kExtensions) {
        if (EqualNoCase(extension, row.extension)) return row.kind;
    }
    return CodecKind::Bmp;
}

std::optional<CodecPixels> PixelsOf(eZFCC fcc) {
    switch (fcc) {
        case eZFCC_ARGB32:
            return CodecPixels::Premultiplied;
        case eZFCC_RGB32:
            return CodecPixels::Rgb32;
        case eZFCC_RGB24:
            return CodecPixels::Rgb24;
        default:
            return std::nullopt;
    }
}

HRESULT Encode(CodecKind kind, const uint8_t *bytes, const ImgDesc &desc, CodecPixels pixels, TextView name) {
    const int64_t rows = std::abs(int64_t{desc.nHeight});
    const int64_t rowBytes = int64_t{4} * desc.nWidth;
    if (desc.nWidth < 1 || rows < 1 || rowBytes > INT32_MAX / rows || name.empty()) return E_FAIL;
    const bool bottomUp = desc.nHeight > 0;
    const uint8_t *top = bottomUp ? bytes + (rows - 1) * rowBytes : bytes;
    std::string file;
    const CodecSource source = {top, bottomUp ? -rowBytes : rowBytes, desc.nWidth, static_cast<int32_t>(rows), pixels};
    HRESULT hr = CodecEncode(kind, source, file);
    if (SUCCEEDED(hr)) hr = FileWrite(name, file);
    return FAILED(hr) ? E_FAIL : S_OK;
}

}    // namespace

HRESULT SaveImageFile(const uint8_t *bytes, const ImgDesc *desc, TextView name) noexcept {
    if (bytes == nullptr || desc == nullptr) return E_UNEXPECTED;
    return Guarded([&]() -> HRESULT {
        const TextView extension = FileExtension(name);
        if (EqualNoCase(extension, ZCK_TEXT(".bmp")) && desc->fcc == eZFCC_ARGB32)
            return WriteBmp(name, desc->fcc, desc->nWidth, desc->nHeight, desc->nRowPixels, bytes);
        const CodecKind kind = KindOf(extension);
        const std::optional<CodecPixels> pixels = PixelsOf(desc->fcc);
        if (!CodecEncodes(kind) || !pixels) return kCoENotSupported;
        return Encode(kind, bytes, *desc, *pixels, name);
    });
}

}    // namespace zck
