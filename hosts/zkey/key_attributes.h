// The elements and attributes of a saved key, and what the library takes for a value of each.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace zkey {

/// A number as the library reads it where it does not read a colour: decimal only.
bool ParseWholeDecimal(std::string_view text, int32_t &value);
/// True when a saved key has elements of this name. Letters are compared without regard to case.
bool IsKeyElement(std::string_view element);
/// True when that element has such an attribute.
bool IsKeyAttribute(std::string_view element, std::string_view name);
/// What is wrong with its value, as the end of a sentence, or nothing.
std::string KeyValueFault(std::string_view element, std::string_view name, std::string_view value);

}    // namespace zkey
