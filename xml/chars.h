// Character classes of the syntax.
#pragma once

#include "platform/text.h"

namespace zck::XMLParse {

/// LF, CR, TAB, and all units from 0xFDEF up, the byte order mark among them.
constexpr bool IsSpaceNoBlank(OLECHAR c) noexcept { return c == '\n' || c == '\r' || c == '\t' || c >= 0xFDEF; }
constexpr bool IsSpace(OLECHAR c) noexcept { return c == ' ' || IsSpaceNoBlank(c); }
constexpr bool IsNameChar(OLECHAR c) noexcept {
    return c != 0 && !IsSpace(c) && c != ';' && c != ',' && c != '<' && c != '>' && c != '/' && c != '\\' && c != '=';
}
/// Between the items of a list.
constexpr bool IsItemSeparator(OLECHAR c) noexcept {
    return c == ' ' || c == '\n' || c == '\r' || c == '\t' || c == ';' || c == ',';
}

/// The text without the characters of a class at both ends.
template <class InClass>
constexpr TextView Trim(TextView text, InClass inClass) noexcept {
    while (!text.empty() && inClass(text.front())) text.remove_prefix(1);
    while (!text.empty() && inClass(text.back())) text.remove_suffix(1);
    return text;
}

}    // namespace zck::XMLParse
