// The options of an operation, read by name out of its text of name=value pairs.
#pragma once

#include <cstdint>
#include <optional>

#include "platform/text.h"
#include "xml/attribute_list.h"

namespace zck {

/// The values of a list, by name. A text that is too long to be read has none. All may throw `std::bad_alloc`.
class OptionList {
public:
    explicit OptionList(TextView text) : m_node(XMLParse::CoXMLNode::Create(ZCK_TEXT("props"))) {
        HRESULT hr = S_OK;
        ParseAttributes(*m_node, text, XMLParse::kListOverwrite, XMLParse::ListNames::Paths, XMLParse::BareNames::Drop, &hr);
        if (FAILED(hr)) m_node->AttributesClear();
    }

    /// Empty when there is no such option. The view lives until the next call.
    TextView Value(TextView name) {
        if (!m_node->AttributeText(name, m_text)) m_text.clear();
        return m_text;
    }
    template <size_t n>
    std::optional<int32_t> Keyword(TextView name, const TextView (&words)[n]) {
        const TextView value = Value(name);
        for (size_t i = 0; i < n; ++i)
            if (!value.empty() && EqualNoCase(value, words[i])) return static_cast<int32_t>(i);
        return std::nullopt;
    }
    int32_t Number(TextView name, int32_t otherwise) {
        ParseInt(Value(name), otherwise);
        return otherwise;
    }

private:
    XMLParse::XMLNodePtr m_node;
    Text m_text;
};

}    // namespace zck
