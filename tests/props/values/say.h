// Texts of the tests as plain characters.
#pragma once

#include <string>
#include <string_view>

#include "platform/text.h"

/// UTF-8 to text and back, so that a failed comparison prints what was read.
inline zck::Text In(std::string_view utf8) { return zck::TextFromUtf8(utf8); }
inline std::string Say(zck::TextView text) { return zck::Utf8FromText(text); }
