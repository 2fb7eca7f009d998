#include "xml/tag_reader.h"

#include <algorithm>

#include "xml/chars.h"

namespace zck::XMLParse {
namespace {

constexpr TextView kCDataEnd = ZCK_TEXT("]]>");

/// Moves `at` behind what starts there with `opening`. False when it does not; without a closing `at` becomes `npos`.
bool PassOver(TextView text, size_t &at, TextView opening, TextView closing) noexcept {
    if (text.substr(at, opening.size()) != opening) return false;
    const size_t found = text.find(closing, at + opening.size());
    at = found == TextView::npos ? found : found + closing.size();
    return true;
}

/// The next "<" that starts a tag, or `npos`.
size_t FindTagStart(TextView text, size_t at) noexcept {
    while ((at = text.find(OLECHAR{'<'}, at)) != TextView::npos) {
        const bool passed =
            PassOver(text, at, ZCK_TEXT("<?"), ZCK_TEXT("?>")) || PassOver(text, at, ZCK_TEXT("<!--"), ZCK_TEXT("-->"));
        if (!passed || at == TextView::npos) break;
    }
    return at;
}

/// The ">" that is in no quotes, or the end of the text.
size_t FindTagEnd(TextView text, size_t at) noexcept {
    OLECHAR quote = 0;
    for (; at < text.size(); ++at) {
        const OLECHAR c = text[at];
        if (quote != 0) {
            if (c == quote) quote = 0;
        } else if (c == '\'' || c == '"') {
            quote = c;
        } else if (c == '>') {
            break;
        }
    }
    return at;
}

/// The name of a CDATA ends behind its second "[", even where more name characters follow.
TextView NameAt(TextView text) noexcept {
    const auto end = std::find_if_not(text.begin(), text.end(), IsNameChar);
    const TextView name = text.substr(0, static_cast<size_t>(end - text.begin()));
    if (!name.starts_with(ZCK_TEXT("!["))) return name;
    const size_t second = name.find(OLECHAR{'['}, 2);
    return second == TextView::npos ? name : name.substr(0, second + 1);
}

void ReadCData(TextView text, size_t from, Tag &tag) noexcept {
    size_t close = text.find(kCDataEnd, from);
    tag.end = close == TextView::npos ? text.size() : close + kCDataEnd.size();
    // A section that is not closed gives up its last three characters as if they were the closing.
    if (close == TextView::npos) close = std::max(from, text.size() - std::min(text.size(), kCDataEnd.size()));
    tag.rest = text.substr(from, close - from);
    tag.kind = TagKind::CData;
}

bool IsAlwaysEmpty(TextView name) noexcept { return EqualNoCase(name, ZCK_TEXT("br")) || EqualNoCase(name, ZCK_TEXT("tab")); }

}    // namespace

bool ReadTag(TextView text, size_t position, Tag &tag) noexcept {
    tag = Tag();
    tag.start = FindTagStart(text, position);
    if (tag.start == TextView::npos) return false;
    const size_t close = FindTagEnd(text, tag.start + 1);
    tag.end = std::min(close + 1, text.size());
    size_t at = tag.start + 1;
    while (at < close && IsSpace(text[at])) ++at;
    const bool closing = at < close && text[at] == '/';
    if (closing) ++at;
    tag.name = NameAt(text.substr(at, close - at));
    at += tag.name.size();
    if (tag.name.starts_with(ZCK_TEXT("!["))) {
        ReadCData(text, at, tag);
        return true;
    }
    if (IsAlwaysEmpty(tag.name)) return true;    // also a closing one
    tag.kind = closing ? TagKind::Closing : TagKind::Opening;
    if (closing) return true;
    tag.rest = Trim(text.substr(at, close - at), IsSpace);
    if (!tag.rest.empty() && tag.rest.back() == '/') {
        tag.kind = TagKind::Empty;
        tag.rest.remove_suffix(1);
    }
    return true;
}

}    // namespace zck::XMLParse
