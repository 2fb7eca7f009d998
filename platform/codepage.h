// Text in bytes of the system's code page: the user's on Windows, UTF-8 elsewhere.
#pragma once

#include <string>
#include <string_view>

#include "platform/text.h"

namespace zck {

/// Bytes that mean nothing become a replacement character.
Text TextFromCodePage(std::string_view bytes);
/// Characters that the code page does not have become its replacement character.
std::string CodePageFromText(TextView text);

}    // namespace zck
