#include "xml/parser.h"

#include <algorithm>

#include "platform/letter_case.h"
#include "platform/status.h"
#include "xml/attribute_list.h"
#include "xml/chars.h"
#include "xml/comments.h"
#include "xml/entities.h"
#include "xml/limits.h"
#include "xml/tag_reader.h"

namespace zck::XMLParse {
namespace {

Text LowerName(TextView name) {
    Text lower(name);
    bool ascii = true;
    for (OLECHAR &c : lower) {
        ascii = ascii && c < 0x80;
        c = AsciiLower(c);
    }
    if (!ascii) LowerInPlace(lower);
    return lower;
}

/// Builds the tree below a fresh node. Open elements stand in a list, so that the depth of the text costs no stack.
class Parser {
public:
    Parser(TextView text, bool rawText) noexcept : m_text(text), m_rawText(rawText) {}

    /// `name` comes in as the root's name and goes out as the one it shall take.
    HRESULT Run(const XMLNodePtr &root, Text &name, bool noRootTag) {
        bool hasContent = true;
        if (!noRootTag) {
            const HRESULT hr = ReadRoot(*root, name, hasContent);
            if (FAILED(hr)) return hr;
        }
        if (!hasContent) return S_OK;
        m_open.push_back({root, name});
        while (!m_open.empty() && m_position < m_text.size()) {
            if (!Step()) return kErrorTooLarge;
        }
        return S_OK;
    }

    size_t Position() const noexcept { return m_position; }

private:
    struct Open {
        XMLNodePtr node;
        Text name;
    };

    HRESULT ReadRoot(CoXMLNode &root, Text &name, bool &hasContent) {
        Tag tag;
        do {
            if (!ReadTag(m_text, m_position, tag)) return E_INVALIDARG;
            m_position = tag.end;
        } while (tag.kind == TagKind::Closing);
        if (tag.name.empty()) return E_INVALIDARG;
        hasContent = tag.kind == TagKind::Opening;
        if (tag.kind == TagKind::CData) {
            name = tag.name;
            AppendText(root, tag.rest);
            return S_OK;
        }
        name = LowerName(tag.name);
        return TakeAttributes(root, tag) ? S_OK : kErrorTooLarge;
    }

    /// One tag and the text in front of it. False past the bounds.
    bool Step() {
        Tag tag;
        const bool any = ReadTag(m_text, m_position, tag);
        const size_t textEnd = any ? tag.start : m_text.size();
        TextView text = m_text.substr(m_position, textEnd - m_position);
        if (!m_rawText) text = Trim(text, IsSpaceNoBlank);
        CoXMLNode &node = *m_open.back().node;
        if (!text.empty() && !AppendText(node, text)) return false;
        m_position = any ? tag.end : m_text.size();
        if (!any) return true;
        switch (tag.kind) {
            case TagKind::Closing:
                // A closing tag of another name is passed over.
                if (LowerName(tag.name) == m_open.back().name) m_open.pop_back();
                return true;
            case TagKind::CData:
                return AppendText(node, tag.rest);
            case TagKind::Empty:
            case TagKind::Opening:
                return AppendChild(node, tag);
        }
        return true;
    }

    bool AppendChild(CoXMLNode &node, const Tag &tag) {
        // Only the tag is dropped; what follows falls to this element.
        if (tag.name.empty() || m_open.size() >= kDepthMax) return true;
        if (!CountItem()) return false;
        Text name = LowerName(tag.name);
        XMLNodePtr child = node.ChildAdd(name);
        if (!TakeAttributes(*child, tag)) return false;
        if (tag.kind == TagKind::Opening) m_open.push_back({std::move(child), std::move(name)});
        return true;
    }

    bool TakeAttributes(CoXMLNode &node, const Tag &tag) {
        bool anyPair = false;
        return tag.rest.empty() ||
               ParseAttributesCounted(node, tag.rest, kListOverwrite, ListNames::Flat, BareNames::Drop, m_itemsLeft, anyPair);
    }

    bool AppendText(CoXMLNode &node, TextView text) {
        const Text decoded = DecodeText(text, m_rawText);
        if (decoded.empty()) return true;
        if (!CountItem()) return false;
        node.TextAppend(decoded);
        return true;
    }

    bool CountItem() noexcept { return m_itemsLeft != 0 && m_itemsLeft-- != 0; }

    const TextView m_text;
    const bool m_rawText;
    size_t m_position = 0;
    size_t m_itemsLeft = kItemsMax;
    std::vector<Open> m_open;
};

HRESULT ParseInto(CoXMLNode &node, TextView text, size_t *end, bool noRootTag, bool rawText) {
    text = text.substr(0, end != nullptr ? *end : text.size());
    if (text.size() > kTextUnitsMax) return kErrorTooLarge;
    const StrippedText stripped(text);
    const XMLNodePtr fresh = CoXMLNode::Create({});
    Text name = node.NameGet();
    Parser parser(stripped.View(), rawText);
    const HRESULT hr = parser.Run(fresh, name, noRootTag);
    if (FAILED(hr)) return hr;
    node.ContentTake(*fresh);
    if (!noRootTag) node.NameSet(name);
    if (end != nullptr) *end = stripped.PositionBefore(parser.Position());
    return hr;
}

}    // namespace

HRESULT ParseXML(CoXMLNode &node, TextView text, size_t *end, bool noRootTag, bool rawText) noexcept {
    const HRESULT hr = Guarded([&] { return ParseInto(node, text, end, noRootTag, rawText); });
    if (FAILED(hr)) {
        node.AttributesClear();
        node.ChildrenClear();
    }
    return hr;
}

}    // namespace zck::XMLParse
