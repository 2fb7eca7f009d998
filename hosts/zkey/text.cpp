#include "hosts/zkey/text.h"

#include <charconv>
#include <cstdint>
#include <cstdio>

namespace zkey {
namespace {

char Small(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

/// One code point off the front of the text; a malformed byte stands for itself.
uint32_t TakeCodePoint(std::string_view text, std::size_t &at) {
    const auto byte = [&](std::size_t i) { return static_cast<uint32_t>(static_cast<unsigned char>(text[i])); };
    const uint32_t lead = byte(at++);
    const int more = lead >= 0xF0 ? 3 : lead >= 0xE0 ? 2 : lead >= 0xC0 ? 1 : 0;
    if (more == 0 || at + static_cast<std::size_t>(more) > text.size()) return lead;
    uint32_t code = lead & (0x3FU >> more);
    for (int i = 0; i < more; ++i) code = (code << 6) | (byte(at++) & 0x3FU);
    return code;
}

void AppendUtf8(std::string &out, uint32_t code) {
    const auto put = [&](uint32_t b) { out.push_back(static_cast<char>(b)); };
    if (code < 0x80) {
        put(code);
    } else if (code < 0x800) {
        put(0xC0 | (code >> 6));
        put(0x80 | (code & 0x3F));
    } else if (code < 0x10000) {
        put(0xE0 | (code >> 12));
        put(0x80 | ((code >> 6) & 0x3F));
        put(0x80 | (code & 0x3F));
    } else {
        put(0xF0 | (code >> 18));
        put(0x80 | ((code >> 12) & 0x3F));
        put(0x80 | ((code >> 6) & 0x3F));
        put(0x80 | (code & 0x3F));
    }
}

}    // namespace

Counted::Counted(std::string_view utf8) {
    std::basic_string<OLECHAR> units;
    for (std::size_t at = 0; at < utf8.size();) {
        const uint32_t code = TakeCodePoint(utf8, at);
        if (code < 0x10000) {
            units.push_back(static_cast<OLECHAR>(code));
        } else {
            units.push_back(static_cast<OLECHAR>(0xD800 + ((code - 0x10000) >> 10)));
            units.push_back(static_cast<OLECHAR>(0xDC00 + (code & 0x3FF)));
        }
    }
    m_text = SysAllocStringLen(units.data(), static_cast<uint32_t>(units.size()));
}

BSTR *Counted::Put() {
    SysFreeString(m_text);
    m_text = nullptr;
    return &m_text;
}

std::string Counted::Utf8() const {
    std::string out;
    const uint32_t n = SysStringLen(m_text);
    for (uint32_t i = 0; i < n; ++i) {
        uint32_t code = static_cast<uint16_t>(m_text[i]);
        if (code >= 0xD800 && code < 0xDC00 && i + 1 < n) {
            const uint32_t low = static_cast<uint16_t>(m_text[++i]);
            code = 0x10000 + ((code - 0xD800) << 10) + (low & 0x3FF);
        }
        AppendUtf8(out, code);
    }
    return out;
}

bool SameWord(std::string_view a, std::string_view b) {
    if (a.size() != b.size()) return false;
    for (std::size_t i = 0; i < a.size(); ++i) {
        if (Small(a[i]) != Small(b[i])) return false;
    }
    return true;
}

bool ParseWhole(std::string_view text, int32_t &value) {
    const bool minus = text.starts_with('-');
    std::string_view digits = text.substr(minus ? 1 : 0);
    const bool hex = digits.starts_with("0x") || digits.starts_with("0X");
    if (hex) digits.remove_prefix(2);
    int64_t wide = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), wide, hex ? 16 : 10);
    if (digits.empty() || digits.starts_with('-') || error != std::errc() || end != digits.data() + digits.size()) return false;
    if (minus) wide = -wide;
    // Hexadecimal is a pattern of 32 bits; its top bit may be set.
    if (wide < INT32_MIN || wide > (hex ? int64_t{UINT32_MAX} : int64_t{INT32_MAX})) return false;
    value = static_cast<int32_t>(static_cast<uint32_t>(wide & 0xFFFFFFFF));
    return true;
}

bool ParseReal(std::string_view text, double &value) {
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value, std::chars_format::fixed);
    return !text.empty() && error == std::errc() && end == text.data() + text.size() && value >= 0 && value < 1e9;
}

std::string JsonText(const std::string &text) {
    std::string out = "\"";
    for (const char c : text) {
        if (c == '"' || c == '\\') out += '\\';
        if (static_cast<unsigned char>(c) >= 0x20) {
            out += c;
        } else {
            char code[8];
            std::snprintf(code, sizeof code, "\\u%04x", static_cast<unsigned>(static_cast<unsigned char>(c)));
            out += code;
        }
    }
    return out + "\"";
}

std::string ExtensionOf(const std::string &path) {
    const std::size_t dot = path.find_last_of('.');
    const std::size_t slash = path.find_last_of("/\\");
    if (dot == std::string::npos || (slash != std::string::npos && dot < slash)) return {};
    std::string out = path.substr(dot);
    for (char &c : out) c = Small(c);
    return out;
}

}    // namespace zkey
