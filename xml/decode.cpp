#include "xml/decode.h"

#include <algorithm>
#include <cmath>

#include "platform/codepage.h"
#include "xml/utf7.h"

namespace zck::XMLParse {
namespace {

using namespace std::string_view_literals;

constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF"sv;
/// A declaration is looked for in so many bytes.
constexpr size_t kDeclarationBytes = 4096;
/// Fewer bytes are not tried as 16-bit text.
constexpr size_t kUtf16BytesMin = 3;
constexpr double kUtf16Ratio = 0.9;

char LowerByte(char c) noexcept { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c; }

bool ContainsNoCase(std::string_view bytes, std::string_view word) noexcept {
    return std::search(bytes.begin(), bytes.end(), word.begin(), word.end(),
                       [](char a, char b) { return LowerByte(a) == b; }) != bytes.end();
}

/// "utf-7" counts as well: such texts are UTF-8 in truth.
bool DeclaresUtf8(std::string_view bytes) noexcept {
    bytes = bytes.substr(0, kDeclarationBytes);
    const size_t close = bytes.find("?>"sv);
    if (close == std::string_view::npos) return false;
    bytes = bytes.substr(0, close);
    return ContainsNoCase(bytes, "utf-8"sv) || ContainsNoCase(bytes, "utf-7"sv);
}

Text StrictUtf8(std::string_view bytes) {
    if (bytes.starts_with(kUtf8Mark)) bytes.remove_prefix(kUtf8Mark.size());
    Text text;
    TextFromUtf8Strict(bytes, text);
    return text;
}

Text FromUnits(std::string_view bytes, bool highFirst) {
    Text text(bytes.size() / 2, OLECHAR{0});
    for (size_t i = 0; i < text.size(); ++i) {
        const auto low = static_cast<unsigned char>(bytes[2 * i + (highFirst ? 1 : 0)]);
        const auto high = static_cast<unsigned char>(bytes[2 * i + (highFirst ? 0 : 1)]);
        text[i] = static_cast<OLECHAR>(low | high << 8);
    }
    return text;
}

/// The encoding that the bytes declare; empty when they declare none, or one that they do not have.
Text DecodeBySigns(std::string_view bytes) {
    if (bytes.starts_with(kUtf8Mark) || DeclaresUtf8(bytes)) return StrictUtf8(bytes);
    if (bytes.starts_with("+/v"sv)) return TextFromUtf7(bytes);
    const int sign = bytes.size() >= kUtf16BytesMin ? Utf16Test(bytes, kUtf16Ratio) : 0;
    if (sign == 0) return Text();
    return FromUnits(bytes.substr(std::abs(sign) == 2 ? 2 : 0), sign < 0);
}

}    // namespace

int Utf16Test(std::string_view bytes, double ratio) noexcept {
    if (bytes.size() < 2) return 0;
    if (bytes.starts_with("\xFF\xFE"sv)) return 2;
    if (bytes.starts_with("\xFE\xFF"sv)) return -2;
    const double looked = std::round(ratio * static_cast<double>(bytes.size())) - 1;
    const size_t pairs = static_cast<size_t>(std::clamp(looked, 0.0, static_cast<double>(bytes.size() - 1))) / 2;
    for (size_t i = 0; i < pairs; ++i) {
        if (bytes[2 * i] == 0) return -1;
        if (bytes[2 * i + 1] == 0) return 1;
    }
    return 0;
}

Text DecodeBytes(std::string_view bytes) {
    Text text = DecodeBySigns(bytes);
    if (text.empty()) text = StrictUtf8(bytes);
    if (text.empty()) text = TextFromCodePage(bytes);
    if (text.empty()) text = TextFromUtf7(bytes);
    return text;
}

}    // namespace zck::XMLParse
