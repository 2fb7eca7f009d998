#include "frames/factory/option_text.h"

#include <algorithm>

namespace zck {
namespace {

struct NamedColor {
    const char *name;
    uint32_t value;    // 0xBBGGRR
};

constexpr NamedColor kNamedColors[] = {
    {"black", 0x000000},  {"maroon", 0x000080}, {"red", 0x0000FF},     {"orangered", 0x0045FF}, {"green", 0x008000},
    {"olive", 0x008080},  {"orange", 0x00A5FF}, {"lime", 0x00FF00},    {"yellow", 0x00FFFF},    {"brown", 0x13458B},
    {"navy", 0x800000},   {"purple", 0x800080}, {"teal", 0x808000},    {"grey", 0x808080},      {"pink", 0x8080FF},
    {"silver", 0xC0C0C0}, {"blue", 0xFF0000},   {"magenta", 0xFF00FF}, {"aqua", 0xFFFF00},      {"cyan", 0xFFFF00},
    {"white", 0xFFFFFF},  {"orvane", 0x8A5406}, {"ov", 0x8A5406},      {"ovl", 0xB29000},       {"ovlight", 0xB29000},
};

bool EqualsLiteral(TextView text, const char *lower) {
    size_t i = 0;
    for (; i < text.size() && lower[i] != 0; ++i) {
        if (AsciiLower(text[i]) != static_cast<OLECHAR>(lower[i])) return false;
    }
    return i == text.size() && lower[i] == 0;
}

constexpr bool Space(OLECHAR c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }

void SkipSpaces(TextView &text) {
    while (!text.empty() && Space(text.front())) text.remove_prefix(1);
}

// Cuts the longest start without such characters off the text.
template <class Stop>
TextView Take(TextView &text, Stop stop) {
    size_t end = 0;
    while (end < text.size() && !stop(text[end])) ++end;
    const TextView taken = text.substr(0, end);
    text.remove_prefix(end);
    return taken;
}

// Cuts the next pair off the front of the text; bare names are passed over. A quote that is not closed takes the rest.
bool PairNext(TextView &text, TextView &name, TextView &value) {
    for (;;) {
        SkipSpaces(text);
        name = Take(text, [](OLECHAR c) { return c == '=' || Space(c); });
        SkipSpaces(text);
        if (text.empty()) return false;
        if (text.front() != '=') continue;
        text.remove_prefix(1);
        SkipSpaces(text);
        if (text.empty()) return false;
        const OLECHAR quote = text.front();
        if (quote != '"' && quote != '\'') {
            value = Take(text, Space);
            return true;
        }
        text.remove_prefix(1);
        value = Take(text, [quote](OLECHAR c) { return c == quote; });
        if (!text.empty()) text.remove_prefix(1);
        return true;
    }
}

int HexDigit(OLECHAR c, bool upperOnly) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return !upperOnly && c >= 'a' && c <= 'f' ? c - 'a' + 10 : -1;
}

constexpr uint32_t SwapRedBlue(uint32_t c) { return (c & 0xFF00FF00U) | (c & 0xFF) << 16 | (c >> 16 & 0xFF); }

// Digits that mean RRGGBB, or RGB when they are few. With two upper-case hexadecimal digits in front the whole is
// hexadecimal, else "0x" says so.
uint32_t ColorFromNumber(TextView text, uint32_t alpha, uint32_t fallback) {
    const bool bare = text.size() >= 2 && HexDigit(text[0], true) >= 0 && HexDigit(text[1], true) >= 0;
    const bool prefixed = !bare && text.size() >= 2 && text[0] == '0' && AsciiLower(text[1]) == 'x';
    const uint32_t base = bare || prefixed ? 16 : 10;
    // The "0x" counts as read whether it was written or not, and 13 characters are looked at.
    size_t read = base == 16 ? 2 : 0;
    if (prefixed) text.remove_prefix(2);
    text = text.substr(0, 13 - read);
    uint64_t value = 0;
    size_t digits = 0;
    for (; digits < text.size(); ++digits) {
        const int digit = HexDigit(text[digits], false);
        if (digit < 0 || static_cast<uint32_t>(digit) >= base) break;
        value = std::min<uint64_t>(value * base + static_cast<uint32_t>(digit), 0xFFFFFFFFU);
    }
    if (digits == 0) return fallback;
    read += digits;
    auto color = static_cast<uint32_t>(value);
    if (read < 6) color = (color & 0xF) * 17 | (color >> 4 & 0xF) * 17 << 8 | (color >> 8 & 0xF) * 17 << 16;
    color = SwapRedBlue(color);
    return read < 9 ? (color & 0xFFFFFF) | alpha << 24 : color;
}

}    // namespace

bool OptionFind(TextView options, TextView name, TextView &value) {
    bool found = false;
    TextView pairName;
    TextView pairValue;
    while (PairNext(options, pairName, pairValue)) {
        if (!EqualNoCase(pairName, name)) continue;
        value = pairValue;
        found = true;
    }
    return found;
}

int32_t OptionInt(TextView options, TextView name, int32_t fallback) {
    TextView value;
    int32_t number = fallback;
    if (OptionFind(options, name, value)) ParseInt(value, number);
    return number;
}

uint32_t OptionColor(TextView options, TextView name, uint32_t fallback) {
    TextView value;
    return OptionFind(options, name, value) ? ColorFromText(value, fallback) : fallback;
}

uint32_t ColorFromText(TextView text, uint32_t fallback) {
    // A leading "#" therefore leaves nothing, and the text is no colour.
    text = text.substr(0, 63);
    text = text.substr(0, text.find_first_of(ZCK_TEXT("~!@#$%^&*-+=|\\/.,;`")));
    uint32_t alpha = 255;
    const size_t bracket = text.find('(');
    const bool hasAlpha = bracket != TextView::npos;
    if (hasAlpha) {
        int32_t number = 0;
        ParseInt(text.substr(bracket + 1), number);
        alpha = static_cast<uint32_t>(std::clamp(number, 0, 255));
        text = text.substr(0, bracket);
    }
    if (EqualsLiteral(text, "default") || (text.empty() && hasAlpha)) {
        return hasAlpha ? (fallback & 0xFFFFFF) | alpha << 24 : fallback;
    }
    if (EqualsLiteral(text, "transparent")) return 0;
    for (const NamedColor &named : kNamedColors) {
        if (EqualsLiteral(text, named.name)) return named.value | alpha << 24;
    }
    return ColorFromNumber(text, alpha, fallback);
}

}    // namespace zck
