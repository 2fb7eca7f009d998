// Text without comments and declarations.
#pragma once

#include <vector>

#include "platform/text.h"

namespace zck::XMLParse {

/// The text without what stands from "<!--" through "-->", and then without what stands from "<?" through "?>". An opening
/// without a closing ends the text. Refers to the given text where nothing was taken out.
class StrippedText {
public:
    explicit StrippedText(TextView text);
    StrippedText(const StrippedText &) = delete;
    StrippedText &operator=(const StrippedText &) = delete;

    TextView View() const noexcept { return m_view; }
    /// Where a position of the result is in the given text: in front of what was taken out there.
    size_t PositionBefore(size_t position) const noexcept;

private:
    struct Cut {
        size_t position;    ///< in the result of the pass
        size_t removed;     ///< by this cut and those in front of it
    };
    struct Pass {
        Text text;
        std::vector<Cut> cuts;
    };

    void Take(Pass &pass, TextView opening, TextView closing);
    static size_t MapBack(const Pass &pass, size_t position) noexcept;

    TextView m_view;
    Pass m_comments;
    Pass m_declarations;
};

}    // namespace zck::XMLParse
