// Ancillary data is stored by name; the public view speaks of four-character codes.
#pragma once

#include <cstdint>

#include "platform/text.h"

namespace zck {

/// Four printable characters (the lowest byte first), or the code as "0x" and eight hexadecimal digits.
Text NameFromCode(int32_t code);

/// The way back: "0x..." (small letter) as a hexadecimal number, "#..." and "{..." by their first hexadecimal group, any other
/// name by its first four characters in Latin-1, "?" for one that is not there. A number above 32 bits is 0xFFFFFFFF. 0 for
/// an empty name.
int32_t CodeFromName(TextView name);

/// An identifier in braces, upper case: the name of a sample buffer property.
Text NameFromIdentifier(const GUID &id);

}    // namespace zck
