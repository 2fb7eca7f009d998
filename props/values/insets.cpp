#include "props/values/insets.h"

namespace zck {
namespace {

bool IsSeparator(OLECHAR unit) {
    return unit == ' ' || unit == '\n' || unit == '\r' || unit == '\t' || unit == ';' || unit == ',';
}

}    // namespace

std::optional<Insets> InsetsFromText(TextView text) {
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
            return Insets{a, a, a, a};
        case 2:
            return Insets{a, b, a, b};
        case 3:
            return Insets{a, b, a, c};
        default:
            return Insets{a, b, c, d};
    }
}

}    // namespace zck
