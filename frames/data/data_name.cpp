#include "frames/data/data_name.h"

namespace zck {
namespace {

constexpr bool Printable(uint32_t c) { return c >= 0x20 && c <= 0x7E; }

int DigitOf(OLECHAR c) {
    if (c >= '0' && c <= '9') return c - '0';
    const OLECHAR lower = AsciiLower(c);
    return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

// Hexadecimal digits from the start of the text; a number above 32 bits is the largest of them.
int32_t HexValue(TextView text) {
    constexpr uint32_t kLargest = 0xFFFFFFFF;
    uint32_t value = 0;
    for (const OLECHAR c : text) {
        const int digit = DigitOf(c);
        if (digit < 0) break;
        value = value <= kLargest >> 4 ? value << 4 | static_cast<uint32_t>(digit) : kLargest;
    }
    return static_cast<int32_t>(value);
}

void HexAppend(Text &text, uint32_t value, int digits) {
    for (int shift = 4 * (digits - 1); shift >= 0; shift -= 4) {
        const uint32_t digit = value >> shift & 0xF;
        text += static_cast<OLECHAR>(digit < 10 ? '0' + digit : 'A' + digit - 10);
    }
}

}    // namespace

Text NameFromCode(int32_t code) {
    const auto bits = static_cast<uint32_t>(code);
    Text name;
    for (int shift = 0; shift < 32 && Printable(bits >> shift & 0xFF); shift += 8) {
        name += static_cast<OLECHAR>(bits >> shift & 0xFF);
    }
    if (name.size() == 4) return name;
    name = ZCK_TEXT("0x");
    HexAppend(name, bits, 8);
    return name;
}

int32_t CodeFromName(TextView name) {
    if (name.size() > 4 && name.substr(0, 2) == ZCK_TEXT("0x")) return HexValue(name.substr(2));
    if (name.size() > 4 && (name[0] == '#' || name[0] == '{')) return HexValue(name.substr(1));
    uint32_t code = 0;
    for (size_t i = 0; i < 4 && i < name.size(); ++i) {
        const uint32_t byte = name[i] <= 0xFF ? name[i] : '?';
        code |= byte << (8 * i);
    }
    return static_cast<int32_t>(code);
}

Text NameFromIdentifier(const GUID &id) {
    Text name(1, '{');
    HexAppend(name, static_cast<uint32_t>(id.Data1), 8);
    name += '-';
    HexAppend(name, id.Data2, 4);
    name += '-';
    HexAppend(name, id.Data3, 4);
    for (int i = 0; i < 8; ++i) {
        if (i == 0 || i == 2) name += '-';
        HexAppend(name, id.Data4[i], 2);
    }
    name += '}';
    return name;
}

}    // namespace zck
