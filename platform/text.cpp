#include "platform/text.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <new>

namespace zck {
namespace {

constexpr uint32_t kReplacement = 0xFFFD;
constexpr uint32_t kNotACodePoint = 0xFFFFFFFF;

bool IsHighSurrogate(uint32_t unit) noexcept { return unit >= 0xD800 && unit <= 0xDBFF; }
bool IsLowSurrogate(uint32_t unit) noexcept { return unit >= 0xDC00 && unit <= 0xDFFF; }

/// The code point at the start of `bytes`, which are not empty, and how many bytes it takes. What is not well-formed gives
/// `kNotACodePoint` and one byte.
uint32_t DecodeUtf8(std::string_view bytes, size_t &taken) noexcept {
    const auto at = [&](size_t i) { return static_cast<uint32_t>(static_cast<unsigned char>(bytes[i])); };
    const uint32_t first = at(0);
    taken = 1;
    if (first < 0x80) return first;
    const size_t length = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : 2;
    if (first < 0xC2 || first > 0xF4 || bytes.size() < length) return kNotACodePoint;
    uint32_t code = first & (0x7FU >> length);
    for (size_t i = 1; i < length; ++i) {
        if ((at(i) & 0xC0) != 0x80) return kNotACodePoint;
        code = code << 6 | (at(i) & 0x3F);
    }
    // Longer than needed, a surrogate, or past the last plane.
    constexpr uint32_t kLeast[] = {0, 0, 0x80, 0x800, 0x10000};
    if (code < kLeast[length] || (code >= 0xD800 && code <= 0xDFFF) || code > 0x10FFFF) return kNotACodePoint;
    taken = length;
    return code;
}

void AppendUnits(Text &text, uint32_t code) {
    if (code < 0x10000) {
        text.push_back(static_cast<OLECHAR>(code));
        return;
    }
    text.push_back(static_cast<OLECHAR>(0xD800 + ((code - 0x10000) >> 10)));
    text.push_back(static_cast<OLECHAR>(0xDC00 + (code & 0x3FF)));
}

void AppendUtf8(std::string &bytes, uint32_t code) {
    const auto tail = [&](int shift) { bytes.push_back(static_cast<char>(0x80 | (code >> shift & 0x3F))); };
    if (code < 0x80) {
        bytes.push_back(static_cast<char>(code));
    } else if (code < 0x800) {
        bytes.push_back(static_cast<char>(0xC0 | code >> 6));
        tail(0);
    } else if (code < 0x10000) {
        bytes.push_back(static_cast<char>(0xE0 | code >> 12));
        tail(6);
        tail(0);
    } else {
        bytes.push_back(static_cast<char>(0xF0 | code >> 18));
        tail(12);
        tail(6);
        tail(0);
    }
}

/// True when everything was well-formed.
bool Utf8ToText(std::string_view utf8, Text &out) {
    bool wellFormed = true;
    out.clear();
    out.reserve(utf8.size());
    while (!utf8.empty()) {
        size_t taken = 0;
        const uint32_t code = DecodeUtf8(utf8, taken);
        if (code == kNotACodePoint) wellFormed = false;
        AppendUnits(out, code == kNotACodePoint ? kReplacement : code);
        utf8.remove_prefix(taken);
    }
    return wellFormed;
}

}    // namespace

Bstr::Bstr(TextView text) {
    const HRESULT hr = BstrCopyTo(text, Put());
    if (FAILED(hr)) throw std::bad_alloc();
}

HRESULT BstrCopyTo(TextView text, BSTR *out) noexcept {
    if (out == nullptr) return E_POINTER;
    *out = nullptr;
    if (text.size() > std::numeric_limits<int32_t>::max()) return E_OUTOFMEMORY;
    *out = SysAllocStringLen(text.data(), static_cast<uint32_t>(text.size()));
    return *out != nullptr ? S_OK : E_OUTOFMEMORY;
}

int CompareNoCase(TextView a, TextView b) noexcept {
    const size_t common = std::min(a.size(), b.size());
    for (size_t i = 0; i < common; ++i) {
        const int difference = static_cast<int>(AsciiLower(a[i])) - static_cast<int>(AsciiLower(b[i]));
        if (difference != 0) return difference;
    }
    return a.size() == b.size() ? 0 : a.size() < b.size() ? -1 : 1;
}

bool EqualNoCase(TextView a, TextView b) noexcept { return a.size() == b.size() && CompareNoCase(a, b) == 0; }

bool StartsWithNoCase(TextView text, TextView prefix) noexcept { return EqualNoCase(text.substr(0, prefix.size()), prefix); }

Text TextFromUtf8(std::string_view utf8) {
    Text text;
    Utf8ToText(utf8, text);
    return text;
}

bool TextFromUtf8Strict(std::string_view utf8, Text &out) {
    if (Utf8ToText(utf8, out)) return true;
    out.clear();
    return false;
}

std::string Utf8FromText(TextView text) {
    std::string bytes;
    bytes.reserve(text.size());
    for (size_t i = 0; i < text.size(); ++i) {
        uint32_t code = text[i];
        if (IsHighSurrogate(code) && i + 1 < text.size() && IsLowSurrogate(text[i + 1])) {
            code = 0x10000 + ((code - 0xD800) << 10) + (text[++i] - 0xDC00U);
        } else if (IsHighSurrogate(code) || IsLowSurrogate(code)) {
            code = kReplacement;
        }
        AppendUtf8(bytes, code);
    }
    return bytes;
}

bool ParseInt64(TextView text, int64_t &value, size_t *used) noexcept {
    size_t at = 0;
    while (at < text.size() && (text[at] == ' ' || text[at] == '\t')) ++at;
    const bool negative = at < text.size() && text[at] == '-';
    if (negative || (at < text.size() && text[at] == '+')) ++at;
    const size_t firstDigit = at;
    // Summed below 0, where there is room for one value more than above.
    constexpr int64_t kLeast = std::numeric_limits<int64_t>::min();
    int64_t sum = 0;
    for (; at < text.size() && text[at] >= '0' && text[at] <= '9'; ++at) {
        const int64_t digit = text[at] - '0';
        sum = sum < (kLeast + digit) / 10 ? kLeast : sum * 10 - digit;
    }
    if (at == firstDigit) return false;
    value = negative ? sum : sum == kLeast ? std::numeric_limits<int64_t>::max() : -sum;
    if (used != nullptr) *used = at;
    return true;
}

bool ParseInt(TextView text, int32_t &value, size_t *used) noexcept {
    int64_t wide = 0;
    if (!ParseInt64(text, wide, used)) return false;
    using Limits = std::numeric_limits<int32_t>;
    value = static_cast<int32_t>(std::clamp<int64_t>(wide, Limits::min(), Limits::max()));
    return true;
}

Text TextFromInt(int64_t value) {
    char digits[24];
    const auto end = std::to_chars(digits, digits + sizeof(digits), value).ptr;
    return Text(digits, end);
}

Text TextFromHex(uint64_t value) {
    char digits[24];
    const auto end = std::to_chars(digits, digits + sizeof(digits), value, 16).ptr;
    Text text(digits, end);
    std::transform(text.begin(), text.end(), text.begin(), AsciiUpper);
    return text;
}

}    // namespace zck
