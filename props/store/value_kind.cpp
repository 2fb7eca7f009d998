#include "props/store/value_kind.h"

namespace zck {

ValueKind ValueKindOf(TextView value) noexcept {
    if (value.empty()) return ValueKind::Empty;
    bool equals = false;
    bool bracket = false;
    for (size_t at = 0; at < value.size(); ++at) {
        const OLECHAR c = value[at];
        equals = equals || c == '=';
        bracket = bracket || c == '<';
        if (c != '\'' && c != '"') continue;
        // Fails at most once for each kind of quote, so the text is walked three times at most.
        const size_t partner = value.find(c, at + 1);
        if (partner != TextView::npos) at = partner;
    }
    if (!equals) return ValueKind::Plain;
    return bracket ? ValueKind::Xml : ValueKind::AttributeList;
}

}    // namespace zck
