#include "xml/comments.h"

#include <algorithm>

namespace zck::XMLParse {

StrippedText::StrippedText(TextView text) : m_view(text) {
    Take(m_comments, ZCK_TEXT("<!--"), ZCK_TEXT("-->"));
    Take(m_declarations, ZCK_TEXT("<?"), ZCK_TEXT("?>"));
}

void StrippedText::Take(Pass &pass, TextView opening, TextView closing) {
    const TextView from = m_view;
    size_t at = from.find(opening);
    if (at == TextView::npos) return;
    size_t kept = 0;    // what stands before this is copied or taken out
    while (at != TextView::npos) {
        pass.text.append(from.substr(kept, at - kept));
        const size_t close = from.find(closing, at + opening.size());
        kept = close == TextView::npos ? from.size() : close + closing.size();
        pass.cuts.push_back({pass.text.size(), kept - pass.text.size()});
        at = from.find(opening, kept);
    }
    pass.text.append(from.substr(kept));
    m_view = pass.text;
}

size_t StrippedText::MapBack(const Pass &pass, size_t position) noexcept {
    const auto behind = std::lower_bound(pass.cuts.begin(), pass.cuts.end(), position,
                                         [](const Cut &cut, size_t at) { return cut.position < at; });
    return behind == pass.cuts.begin() ? position : position + (behind - 1)->removed;
}

size_t StrippedText::PositionBefore(size_t position) const noexcept {
    return MapBack(m_comments, MapBack(m_declarations, position));
}

}    // namespace zck::XMLParse
