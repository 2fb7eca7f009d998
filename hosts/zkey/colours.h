// Colours as a user gives them.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace zkey {

/// 0x00RRGGBB from a name or from six hexadecimal digits, with or without "#" or "0x" in front.
std::optional<uint32_t> ParseColour(std::string_view text);
/// Six hexadecimal digits.
std::string ColourText(uint32_t colour);
/// All names, separated by commas.
std::string ColourNames();

}    // namespace zkey
