#include "platform/codec.h"

#include "platform/codec_facts.h"
#include "platform/posix/codec_parts.h"
#include "platform/status.h"

namespace zck {

bool CodecEncodes(CodecKind kind) noexcept {
    switch (kind) {
        case CodecKind::Gif:
            return GifThere();
        case CodecKind::Tiff:
            return TiffThere();
        case CodecKind::Bmp:
            return true;
        default:
            return PixbufThere();
    }
}

HRESULT CodecEncode(CodecKind kind, const CodecSource &source, std::string &file) noexcept {
    const HRESULT hr = Guarded([&]() -> HRESULT {
        file.clear();
        switch (kind) {
            case CodecKind::Gif:
                return GifEncode(source, file);
            case CodecKind::Tiff:
                return TiffEncode(source, file);
            case CodecKind::Bmp:
                return BmpEncode(source, file);
            default:
                return PixbufEncode(kind, source, file);
        }
    });
    return FAILED(hr) ? E_FAIL : S_OK;
}

HRESULT CodecDecode(std::string_view file, bool straight, CodecSink &sink) noexcept {
    return Guarded([&]() -> HRESULT {
        const std::optional<CodecFacts> facts = CodecFactsOf(file);
        if (!facts) return E_INVALIDARG;
        const HRESULT hr = CodecFactsAsk(*facts, sink);
        if (FAILED(hr)) return hr;
        switch (facts->kind) {
            case CodecKind::Gif:
                return GifDecode(file, sink);
            case CodecKind::Tiff:
                return TiffDecode(file, straight, sink);
            default:
                return PixbufDecode(facts->kind, file, straight, sink);
        }
    });
}

}    // namespace zck
