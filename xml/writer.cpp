#include "xml/writer.h"

#include <algorithm>

#include "platform/status.h"
#include "xml/attribute_list.h"

namespace zck::XMLParse {
namespace {

constexpr int32_t kNoLayout = -1;
/// Deeper tags are not moved in any further.
constexpr int32_t kTabsMax = 64;

/// Writes without recursion: trees made by hand may be of any depth.
class Writer {
public:
    Text Write(CoXMLNode &node, int32_t depth) {
        Begin(XMLNodePtr(&node), depth);
        while (!m_open.empty()) Step();
        return std::move(m_out);
    }

private:
    /// An element whose opening tag is written.
    struct Open {
        XMLNodePtr node;
        Text name;
        std::vector<XMLNodePtr> children;
        size_t next;
        int32_t depth;
        bool onlyText;
    };

    void Begin(const XMLNodePtr &node, int32_t depth) {
        if (node->IsTextNode()) {
            AppendEscaped(m_out, node->NameGet());
            return;
        }
        Text name = node->NameGet();
        Tabs(depth);
        m_out.push_back('<');
        m_out.append(name);
        AppendAttributes(m_out, *node);
        std::vector<XMLNodePtr> children = node->ChildrenGet();
        if (children.empty()) {
            m_out.append(ZCK_TEXT("/>"));
            return;
        }
        m_out.push_back('>');
        const bool onlyText =
            std::all_of(children.begin(), children.end(), [](const XMLNodePtr &child) { return child->IsTextNode(); });
        m_open.push_back({node, std::move(name), std::move(children), 0, depth, onlyText});
    }

    void Step() {
        Open &open = m_open.back();
        if (open.next == open.children.size()) {
            End();
            return;
        }
        const XMLNodePtr child = std::move(open.children[open.next++]);
        const bool laidOut = open.depth >= 0 && !open.onlyText && !child->CompactOutput();
        const int32_t depth = laidOut ? open.depth + 1 : kNoLayout;
        if (laidOut) LineBreak();
        // Texts have all their tabs, tags only so many.
        if (laidOut && child->IsTextNode()) m_out.append(static_cast<size_t>(depth), OLECHAR{'\t'});
        Begin(child, depth);    // may move `open`
    }

    void End() {
        const Open &open = m_open.back();
        if (open.depth >= 0 && !open.onlyText && !open.node->CompactOutput()) {
            LineBreak();
            Tabs(open.depth);
        }
        m_out.append(ZCK_TEXT("</"));
        m_out.append(open.name);
        m_out.push_back('>');
        m_open.pop_back();
    }

    void Tabs(int32_t depth) {
        if (depth > 0) m_out.append(static_cast<size_t>(std::min(depth, kTabsMax)), OLECHAR{'\t'});
    }
    void LineBreak() { m_out.append(ZCK_TEXT("\r\n")); }

    Text m_out;
    std::vector<Open> m_open;
};

}    // namespace

void AppendEscaped(Text &out, TextView text) {
    for (const OLECHAR c : text) {
        switch (c) {
            case '<':
                out.append(ZCK_TEXT("&lt;"));
                break;
            case '>':
                out.append(ZCK_TEXT("&gt;"));
                break;
            case '&':
                out.append(ZCK_TEXT("&amp;"));
                break;
            default:
                out.push_back(c);
        }
    }
}

Text XMLText(CoXMLNode &node, int32_t depth) { return Writer().Write(node, depth); }

HRESULT WriteXML(CoXMLNode &node, BSTR *out) noexcept {
    if (out == nullptr) return E_POINTER;
    *out = nullptr;
    return Guarded([&] { return BstrCopyTo(XMLText(node), out); });
}

Text InnerXML(CoXMLNode &node) {
    Text out;
    for (const XMLNodePtr &child : node.ChildrenGet()) out.append(XMLText(*child, kNoLayout));
    return out;
}

}    // namespace zck::XMLParse
