// UTF-7: text in bytes below 128, other characters as "+...-" in base 64.
#pragma once

#include <string_view>

#include "platform/text.h"

namespace zck::XMLParse {

/// "+-" is a "+". Bytes from 128 up become U+FFFD; what is left over at the end of a base 64 run is dropped.
Text TextFromUtf7(std::string_view bytes);

}    // namespace zck::XMLParse
