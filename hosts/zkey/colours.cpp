#include "hosts/zkey/colours.h"

#include <array>
#include <charconv>

#include "hosts/zkey/text.h"

namespace zkey {
namespace {

struct Named {
    const char *name;
    uint32_t colour;
};

// Green and blue are the paints and cloths of studios; the pure colours of the screen have names of their own.
constexpr std::array<Named, 15> kNames = {{{"green", 0x00B140},
                                           {"blue", 0x0047BB},
                                           {"red", 0xFF0000},
                                           {"lime", 0x00FF00},
                                           {"pureblue", 0x0000FF},
                                           {"cyan", 0x00FFFF},
                                           {"magenta", 0xFF00FF},
                                           {"yellow", 0xFFFF00},
                                           {"orange", 0xFF8000},
                                           {"purple", 0x800080},
                                           {"brown", 0x80461B},
                                           {"black", 0x000000},
                                           {"grey", 0x808080},
                                           {"gray", 0x808080},
                                           {"white", 0xFFFFFF}}};

}    // namespace

std::optional<uint32_t> ParseColour(std::string_view text) {
    for (const Named &n : kNames) {
        if (SameWord(n.name, text)) return n.colour;
    }
    if (text.starts_with('#')) {
        text.remove_prefix(1);
    } else if (text.starts_with("0x") || text.starts_with("0X")) {
        text.remove_prefix(2);
    }
    uint32_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value, 16);
    if (text.size() != 6 || error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return value;
}

std::string ColourText(uint32_t colour) {
    constexpr char kDigits[] = "0123456789ABCDEF";
    std::string out;
    for (int shift = 20; shift >= 0; shift -= 4) out.push_back(kDigits[(colour >> shift) & 15]);
    return out;
}

std::string ColourNames() {
    std::string out;
    for (const Named &n : kNames) out += (out.empty() ? "" : ", ") + std::string(n.name);
    return out;
}

}    // namespace zkey
