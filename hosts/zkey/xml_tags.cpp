#include "hosts/zkey/xml_tags.h"

#include <algorithm>

#include "hosts/zkey/text.h"

namespace zkey {
namespace {

std::string_view Take(std::string_view &text, std::string_view until) {
    const std::string_view part = text.substr(0, text.find_first_of(until));
    text.remove_prefix(part.size());
    return part;
}

void SkipSpace(std::string_view &text) { text.remove_prefix(std::min(text.find_first_not_of(kXmlSpace), text.size())); }

std::string_view TakeValue(std::string_view &text) {
    if (text.empty() || (text[0] != '\'' && text[0] != '"')) return Take(text, kXmlSpace);
    const char quote[2] = {text[0], '\0'};
    text.remove_prefix(1);
    const std::string_view value = Take(text, quote);
    if (!text.empty()) text.remove_prefix(1);
    return value;
}

}    // namespace

std::optional<std::string_view> XmlTag::Value(std::string_view attribute) const {
    for (const auto &[name_, value] : attributes) {
        if (SameWord(name_, attribute)) return value;
    }
    return std::nullopt;
}

std::string NarrowXml(std::string_view bytes) {
    const auto at = [&](std::size_t i) { return i < bytes.size() ? static_cast<unsigned char>(bytes[i]) : 1U; };
    const bool little = (at(0) == 0xFF && at(1) == 0xFE) || at(1) == 0;
    const bool big = (at(0) == 0xFE && at(1) == 0xFF) || at(0) == 0;
    if (!little && !big) return std::string(bytes);
    std::string out;
    for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
        const char low = bytes[i + (little ? 0 : 1)];
        const char high = bytes[i + (little ? 1 : 0)];
        out.push_back(high == 0 ? low : '?');
    }
    return out;
}

bool PassOver(std::string_view text, std::size_t &at, std::string_view opening, std::string_view closing) {
    if (!text.substr(at).starts_with(opening)) return false;
    const std::size_t found = text.find(closing, at + opening.size());
    at = found == std::string_view::npos ? text.size() + 1 : found + closing.size();
    return true;
}

std::size_t XmlTagEnd(std::string_view text, std::size_t at) {
    char quote = 0;
    for (; at < text.size(); ++at) {
        const char c = text[at];
        if (quote != 0) {
            if (c == quote) quote = 0;
        } else if (c == '\'' || c == '"') {
            quote = c;
        } else if (c == '>') {
            return at;
        }
    }
    return std::string_view::npos;
}

XmlTag ReadXmlTag(std::string_view text) {
    XmlTag tag;
    tag.closing = text.starts_with('/');
    if (tag.closing) text.remove_prefix(1);
    tag.empty = text.ends_with('/');
    if (tag.empty) text.remove_suffix(1);
    tag.name = Take(text, kXmlSpace);
    for (SkipSpace(text); !text.empty(); SkipSpace(text)) {
        const std::string_view name = Take(text, " \t\r\n=");
        SkipSpace(text);
        if (text.starts_with('=')) text.remove_prefix(1);
        SkipSpace(text);
        tag.attributes.emplace_back(name, TakeValue(text));
    }
    return tag;
}

}    // namespace zkey
