#include "props/values/colors.h"

#include <algorithm>

#include "props/values/numbers.h"

namespace zck {
namespace {

enum class Known : uint8_t { Both, ToText, FromText };

struct NamedColor {
    TextView name;
    uint32_t value;    ///< 0xBBGGRR
    Known known;
};

constexpr NamedColor kColors[] = {
    {ZCK_TEXT("Black"), 0x000000, Known::Both},
    {ZCK_TEXT("Maroon"), 0x000080, Known::Both},
    {ZCK_TEXT("Red"), 0x0000FF, Known::Both},
    {ZCK_TEXT("OrangeRed"), 0x0045FF, Known::Both},
    {ZCK_TEXT("Green"), 0x008000, Known::Both},
    {ZCK_TEXT("Olive"), 0x008080, Known::Both},
    {ZCK_TEXT("Orange"), 0x00A5FF, Known::Both},
    {ZCK_TEXT("Lime"), 0x00FF00, Known::Both},
    {ZCK_TEXT("Yellow"), 0x00FFFF, Known::Both},
    {ZCK_TEXT("Brown"), 0x13458B, Known::Both},
    {ZCK_TEXT("Navy"), 0x800000, Known::Both},
    {ZCK_TEXT("Purple"), 0x800080, Known::Both},
    {ZCK_TEXT("Teal"), 0x808000, Known::Both},
    {ZCK_TEXT("Grey"), 0x808080, Known::Both},
    {ZCK_TEXT("Pink"), 0x8080FF, Known::Both},
    {ZCK_TEXT("OV"), 0x8A5406, Known::ToText},
    {ZCK_TEXT("OVL"), 0xB29000, Known::ToText},
    {ZCK_TEXT("Silver"), 0xC0C0C0, Known::Both},
    {ZCK_TEXT("Blue"), 0xFF0000, Known::Both},
    {ZCK_TEXT("Magenta"), 0xFF00FF, Known::Both},
    {ZCK_TEXT("Aqua"), 0xFFFF00, Known::Both},
    {ZCK_TEXT("cyan"), 0xFFFF00, Known::FromText},
    {ZCK_TEXT("White"), 0xFFFFFF, Known::Both},
    {ZCK_TEXT("orvane"), 0x8A5406, Known::FromText},
    {ZCK_TEXT("ov"), 0x8A5406, Known::FromText},
    // Never seen by the reader, which cuts the text at the "-".
    {ZCK_TEXT("orvane-light"), 0xB29000, Known::FromText},
    {ZCK_TEXT("ovl"), 0xB29000, Known::FromText},
    {ZCK_TEXT("ovlight"), 0xB29000, Known::FromText},
};

constexpr size_t kMostColorText = 63;
constexpr size_t kMostNumberText = 13;

constexpr uint32_t SwapRedBlue(uint32_t color) { return (color & 0xFF00FF00) | (color >> 16 & 0xFF) | (color & 0xFF) << 16; }

/// The alpha in front of a ")": below 1.0 a part of 255.
uint32_t AlphaFromText(TextView text) noexcept {
    double alpha = FloatFromText(text);
    if (alpha < 1.0) alpha *= 255.0;
    return static_cast<uint32_t>(std::clamp(RoundToInt(alpha), 0, 255));
}

constexpr bool IsUpperHexDigit(OLECHAR c) { return IsDigit(c) || (c >= 'A' && c <= 'F'); }

uint32_t NumberColor(TextView word, uint32_t alpha, uint32_t fallback) {
    Text number;
    if (word.size() >= 2 && IsUpperHexDigit(word[0]) && IsUpperHexDigit(word[1])) number = ZCK_TEXT("0x");
    number.append(word);
    const AutoNumber parsed = AutoNumberFromText(TextView(number).substr(0, kMostNumberText));
    if (parsed.used == 0) return fallback;
    uint32_t color = static_cast<uint32_t>(std::min<uint64_t>(parsed.magnitude, 0xFFFFFFFF));
    // Three digits, the low one first; a prefix counts as characters.
    if (parsed.used < 6) color = (color & 0xF) * 0x11 | (color >> 4 & 0xF) * 0x1100 | (color >> 8 & 0xF) * 0x110000;
    color = SwapRedBlue(color);
    return parsed.used < 9 ? (color & 0xFFFFFF) | alpha << 24 : color;
}

}    // namespace

Text ColorToText(uint32_t color) {
    const uint32_t plain = color & 0xFFFFFF;
    const auto *named = std::find_if(std::begin(kColors), std::end(kColors), [&](const NamedColor &entry) {
        return entry.value == plain && entry.known != Known::FromText;
    });
    Text text = named != std::end(kColors) ? Text(named->name) : Text(ZCK_TEXT("#")).append(HexToText(SwapRedBlue(plain), 6));
    if (color >> 24 != 255) text.append(ZCK_TEXT("(")).append(IntToText(color >> 24)).append(ZCK_TEXT(")"));
    return text;
}

OLECHAR *ColorToText(uint32_t color, OLECHAR *buffer) { return CopyToBuffer(ColorToText(color), buffer); }

uint32_t ColorFromText(TextView text, uint32_t fallback) {
    if (text.data() == nullptr) return fallback;
    TextView word = text.substr(0, kMostColorText);
    word = word.substr(0, word.find_first_of(ZCK_TEXT("~!@#$%^&*-+=|\\/.,;`")));
    uint32_t alpha = 255;
    const size_t bracket = word.find(static_cast<OLECHAR>('('));
    const bool hasAlpha = bracket != TextView::npos;
    if (hasAlpha) {
        alpha = AlphaFromText(word.substr(bracket + 1));
        word = word.substr(0, bracket);
    }
    if (EqualNoCase(word, ZCK_TEXT("Default")) || (word.empty() && hasAlpha)) {
        return hasAlpha ? (fallback & 0xFFFFFF) | alpha << 24 : fallback;
    }
    if (EqualNoCase(word, ZCK_TEXT("Transparent"))) return 0;
    for (const NamedColor &entry : kColors) {
        if (entry.known != Known::ToText && EqualNoCase(word, entry.name)) return entry.value | alpha << 24;
    }
    return NumberColor(word, alpha, fallback);
}

}    // namespace zck
