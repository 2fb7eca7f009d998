#include "xml/document.h"

#include "platform/codepage.h"
#include "platform/files.h"
#include "platform/status.h"
#include "xml/decode.h"
#include "xml/limits.h"
#include "xml/parser.h"
#include "xml/writer.h"

namespace zck::XMLParse {
namespace {

static_assert(kErrorTooLarge == kErrorFileTooLarge);

/// Low byte first.
std::string BytesOfUnits(TextView text) {
    std::string bytes;
    bytes.reserve(2 * text.size());
    for (const OLECHAR unit : text) {
        bytes.push_back(static_cast<char>(unit & 0xFF));
        bytes.push_back(static_cast<char>(unit >> 8));
    }
    return bytes;
}

}    // namespace

HRESULT LoadFile(CoXMLNode &node, TextView path) noexcept {
    return Guarded([&] {
        std::string bytes;
        const HRESULT hr = FileRead(path, kFileBytesMax, bytes);
        if (FAILED(hr)) return hr;
        const Text text = DecodeBytes(bytes);
        return ParseXML(node, text);
    });
}

HRESULT SaveFile(CoXMLNode &node, TextView path, bool unicode, BSTR *out) noexcept {
    if (out != nullptr) *out = nullptr;
    return Guarded([&] {
        const Text text = XMLText(node);
        if (!path.empty()) {
            const std::string bytes = unicode ? BytesOfUnits(text) : CodePageFromText(text);
            // The system's error is not handed on.
            if (FileWrite(path, bytes) == E_OUTOFMEMORY) return E_OUTOFMEMORY;
        }
        if (text.empty()) return E_UNEXPECTED;
        return out != nullptr ? BstrCopyTo(text, out) : S_OK;
    });
}

}    // namespace zck::XMLParse
