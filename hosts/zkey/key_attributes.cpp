#include "hosts/zkey/key_attributes.h"

#include <algorithm>
#include <array>
#include <cstdint>

#include "hosts/zkey/text.h"

namespace zkey {
namespace {

/// How the library reads a value: only colours may be hexadecimal.
enum class Kind { Whole, Byte, Colour, Truth, Real };

struct Known {
    std::string_view element;
    std::string_view name;
    Kind kind;
};

constexpr std::array<Known, 33> kKnown = {{
    {"m_config", "type", Kind::Whole},
    {"m_config", "keys", Kind::Whole},
    {"m_config", "transparent.min", Kind::Byte},
    {"m_config", "transparent.max", Kind::Byte},
    {"m_config", "edges_smooth", Kind::Whole},
    {"m_config", "color_cancel", Kind::Truth},
    {"m_config", "interlaced", Kind::Whole},
    {"m_config", "inverse", Kind::Whole},
    {"key", "value", Kind::Colour},
    {"key", "delta", Kind::Colour},
    {"key", "smooth", Kind::Byte},
    {"key", "alpha", Kind::Byte},
    {"key", "cancel.range", Kind::Whole},
    {"key", "cancel.power", Kind::Whole},
    {"key", "cancel.chroma", Kind::Whole},
    {"key", "cancel.luma", Kind::Whole},
    {"key", "cancel.alpha", Kind::Whole},
    {"key", "reverse_key", Kind::Whole},
    {"adjust", "power", Kind::Real},
    {"adjust", "transparent", Kind::Real},
    {"adjust", "colors", Kind::Real},
    {"adjust", "smooth", Kind::Real},
    {"adjust", "min_trans", Kind::Real},
    {"adjust", "max_trans", Kind::Real},
    {"adjust", "exc_power", Kind::Real},
    {"color", "range", Kind::Real},
    {"color", "power", Kind::Real},
    {"color", "chroma", Kind::Real},
    {"color", "luma", Kind::Real},
    {"color", "alpha", Kind::Real},
    {"range", "rhy", Kind::Real},
    {"range", "glu", Kind::Real},
    {"range", "bsv", Kind::Real},
}};

bool IsColour(std::string_view text) {
    int32_t value = 0;
    // A leading 0 alone makes the number an octal one.
    const bool octal = text.size() > 1 && text[0] == '0' && text[1] != 'x' && text[1] != 'X';
    return !octal && ParseWhole(text, value);
}

bool IsTruth(std::string_view text) {
    int32_t value = 0;
    for (const char *word : {"true", "false", "yes", "only", "on", "y"}) {
        if (SameWord(text, word)) return true;
    }
    return ParseWhole(text, value);
}

bool IsReal(std::string_view text) {
    double value = 0;
    if (text.starts_with('-')) text.remove_prefix(1);
    if (text.ends_with('%')) text.remove_suffix(1);
    return ParseReal(text, value);
}

/// What is wrong with a value, or nothing.
std::string Fault(Kind kind, std::string_view text) {
    int32_t value = 0;
    switch (kind) {
        case Kind::Colour:
            return IsColour(text) ? "" : "is no number as 0x0040B100";
        case Kind::Truth:
            return IsTruth(text) ? "" : "is neither true nor false";
        case Kind::Real:
            return IsReal(text) ? "" : "is no number";
        default:
            break;
    }
    if (!ParseWholeDecimal(text, value)) return "is no whole decimal number";
    return kind == Kind::Byte && (value < 0 || value > 255) ? "is not 0 to 255" : "";
}

const Known *Find(std::string_view element, std::string_view name) {
    const auto found = std::find_if(kKnown.begin(), kKnown.end(),
                                    [&](const Known &k) { return SameWord(k.element, element) && SameWord(k.name, name); });
    return found == kKnown.end() ? nullptr : &*found;
}

}    // namespace

bool ParseWholeDecimal(std::string_view text, int32_t &value) {
    return text.find_first_of("xX") == text.npos && ParseWhole(text, value);
}

bool IsKeyElement(std::string_view element) {
    return std::any_of(kKnown.begin(), kKnown.end(), [&](const Known &k) { return SameWord(k.element, element); });
}

bool IsKeyAttribute(std::string_view element, std::string_view name) { return Find(element, name) != nullptr; }

std::string KeyValueFault(std::string_view element, std::string_view name, std::string_view value) {
    const Known *known = Find(element, name);
    // What an entity stands for is not looked up.
    return known == nullptr || value.find('&') != value.npos ? "" : Fault(known->kind, value);
}

}    // namespace zkey
