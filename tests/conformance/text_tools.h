// Text for tests, and what a failed comparison says.
#pragma once

#include <cstdint>
#include <random>
#include <string>

#include "platform/text.h"

namespace conformance {

using zck::Bstr;
using zck::Text;
using zck::TextView;

inline constexpr TextView kNothing;    // a view of nothing

inline Text T(std::string_view utf8) { return zck::TextFromUtf8(utf8); }
inline Bstr B(std::string_view utf8) { return Bstr(T(utf8)); }
inline std::string Say(TextView text) { return zck::Utf8FromText(text); }
inline std::string Say(BSTR text) { return text != nullptr ? zck::Utf8FromText(zck::ViewOf(text)) : "<null>"; }

// A text of these characters only, at most so long.
inline std::string AnyOf(std::mt19937 &random, std::string_view signs, size_t most) {
    std::string s(random() % (most + 1), ' ');
    for (char &c : s) c = signs[random() % signs.size()];
    return s;
}

// One of a list.
template <class List>
auto &OneOf(std::mt19937 &random, List &list) {
    return list[random() % std::size(list)];
}

}    // namespace conformance
