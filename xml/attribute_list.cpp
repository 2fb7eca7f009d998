#include "xml/attribute_list.h"

#include <algorithm>

#include "xml/chars.h"
#include "xml/limits.h"
#include "xml/path.h"

namespace zck::XMLParse {
namespace {

struct Pair {
    TextView name;
    TextView value;
    bool hasValue = false;
};

/// Takes one entry off the front of the list; false at the end, also when the text ends behind a "=".
class ListReader {
public:
    explicit ListReader(TextView text) noexcept : m_text(text) {}

    bool Next(Pair &pair) noexcept {
        SkipSpaces();
        if (m_text.empty()) return false;
        pair.name = TakeWhile([](OLECHAR c) { return !IsSpace(c) && c != '='; });
        SkipSpaces();
        pair.hasValue = !m_text.empty() && m_text.front() == '=';
        pair.value = {};
        if (!pair.hasValue) return true;
        m_text.remove_prefix(1);
        SkipSpaces();
        if (m_text.empty()) return false;
        pair.value = TakeValue();
        return true;
    }

private:
    TextView TakeValue() noexcept {
        const OLECHAR quote = m_text.front();
        if (quote != '\'' && quote != '"') return TakeWhile([](OLECHAR c) { return !IsSpace(c); });
        m_text.remove_prefix(1);
        const TextView value = TakeWhile([quote](OLECHAR c) { return c != quote; });
        if (!m_text.empty()) m_text.remove_prefix(1);
        return value;
    }

    template <class Belongs>
    TextView TakeWhile(Belongs belongs) noexcept {
        const auto end = std::find_if_not(m_text.begin(), m_text.end(), belongs);
        const TextView taken = m_text.substr(0, static_cast<size_t>(end - m_text.begin()));
        m_text.remove_prefix(taken.size());
        return taken;
    }

    void SkipSpaces() noexcept { TakeWhile(IsSpace); }

    TextView m_text;
};

/// The attribute, and the nodes that its path may have to make.
size_t ItemsOf(TextView name, ListNames names) noexcept {
    size_t items = 1;
    if (names == ListNames::Flat) return items;
    for (size_t at = FindSeparator(name); at != TextView::npos; at = FindSeparator(name, at + kPathSeparatorUnits)) ++items;
    return items;
}

}    // namespace

bool ParseAttributesCounted(XMLNodeImpl &node, TextView text, int32_t mode, ListNames names, BareNames bare, size_t &itemsLeft,
                            bool &anyPair) {
    anyPair = false;
    if (mode == kListReplaceAll) node.AttributesClear();
    const Existing existing = mode == kListKeep ? Existing::Keep : Existing::Overwrite;
    ListReader reader(text);
    for (Pair pair; reader.Next(pair);) {
        if (pair.name.empty() || (!pair.hasValue && bare == BareNames::Drop)) continue;
        const size_t items = ItemsOf(pair.name, names);
        if (itemsLeft < items) return false;
        itemsLeft -= items;
        if (names == ListNames::Flat) {
            node.AttributeSetOwn(pair.name, TypedValue(pair.value), existing);
        } else if (!node.AttributeSet(pair.name, TypedValue(pair.value), existing)) {
            continue;
        }
        anyPair = true;
    }
    return true;
}

bool ParseAttributes(XMLNodeImpl &node, TextView text, int32_t mode, ListNames names, BareNames bare, HRESULT *status) {
    size_t itemsLeft = kItemsMax;
    bool anyPair = false;
    const bool whole = ParseAttributesCounted(node, text, mode, names, bare, itemsLeft, anyPair);
    if (status != nullptr) *status = whole ? S_OK : kErrorTooLarge;
    return anyPair;
}

void AppendQuoted(Text &out, TextView value) {
    const bool single = value.find(OLECHAR{'\''}) != TextView::npos;
    const OLECHAR quote = single ? '"' : '\'';
    out.push_back(quote);
    const size_t from = out.size();
    out.append(value);
    if (single) std::replace(out.begin() + static_cast<std::ptrdiff_t>(from), out.end(), OLECHAR{'"'}, OLECHAR{'\''});
    out.push_back(quote);
}

void AppendAttributes(Text &out, const XMLNodeImpl &node, TextView prefix) {
    Text name;
    Text value;
    for (size_t i = 0; node.AttributeAt(i, name, value); ++i) {
        out.push_back(' ');
        out.append(prefix);
        out.append(name);
        out.push_back('=');
        AppendQuoted(out, value);
    }
}

Text WriteAttributes(const XMLNodeImpl &node, bool withValue, TextView prefix) {
    Text out;
    const Text text = withValue ? node.TextGet() : Text();
    if (!text.empty()) {
        out.append(ZCK_TEXT(" _node_value="));
        AppendQuoted(out, text);
    }
    AppendAttributes(out, node, prefix);
    // The list leaves as a text of its own.
    if (!out.empty()) out.erase(0, 1);
    return out;
}

}    // namespace zck::XMLParse
