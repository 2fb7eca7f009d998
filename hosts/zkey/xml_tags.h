// The tags of an XML text one by one, as far as doubts about a saved key go: no entities, no tree.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace zkey {

inline constexpr std::string_view kXmlSpace = " \t\r\n";

/// Views into the text that it was read from.
struct XmlTag {
    std::string_view name;
    std::vector<std::pair<std::string_view, std::string_view>> attributes;
    bool closing = false;
    bool empty = false;

    std::optional<std::string_view> Value(std::string_view attribute) const;
};

/// One byte for each sign of UTF-8 or UTF-16, since all that is looked for is ASCII.
std::string NarrowXml(std::string_view bytes);
/// Moves `at` behind the comment, declaration or other passage that starts there with `opening`: false when none does; without
/// its closing `at` is behind the text.
bool PassOver(std::string_view text, std::size_t &at, std::string_view opening, std::string_view closing);
/// The ">" that is in no quotes, or `npos`.
std::size_t XmlTagEnd(std::string_view text, std::size_t at);
/// From what stands between "<" and ">".
XmlTag ReadXmlTag(std::string_view text);

}    // namespace zkey
