#include "keying/plugin/borders.h"

#include <algorithm>
#include <cstdlib>

namespace zck {

namespace {

bool IsSeparator(OLECHAR unit) {
    return unit == ' ' || unit == '\n' || unit == '\r' || unit == '\t' || unit == ';' || unit == ',';
}

int32_t Saturated(int64_t value) { return static_cast<int32_t>(std::clamp<int64_t>(value, INT32_MIN, INT32_MAX)); }

}    // namespace

std::optional<Borders> BordersFromText(TextView text) {
    int32_t items[4] = {};
    int count = 0;
    for (std::size_t at = 0; at < text.size() && count < 4;) {
        if (IsSeparator(text[at])) {
            ++at;
            continue;
        }
        std::size_t end = at;
        while (end < text.size() && !IsSeparator(text[end])) ++end;
        ParseInt(text.substr(at, end - at), items[count++]);
        at = end;
    }
    const auto [a, b, c, d] = items;
    switch (count) {
        case 0:
            return std::nullopt;
        case 1:
            return Borders{a, a, a, a};
        case 2:
            return Borders{a, b, a, b};
        case 3:
            return Borders{a, b, a, c};
        default:
            return Borders{a, b, c, d};
    }
}

tagRECT BordersRect(const Borders &borders, const Z_VID_PROPS &props) {
    const int64_t height = std::abs(static_cast<int64_t>(props.nHeight));
    tagRECT rect;
    rect.left = Saturated((static_cast<int64_t>(borders.left) + 7) & ~int64_t{7});
    rect.top = borders.top;
    rect.right = Saturated((static_cast<int64_t>(props.nWidth) - borders.right) & ~int64_t{7});
    rect.bottom = Saturated(height - borders.bottom);
    return rect;
}

}    // namespace zck
