#include "hosts/zkey/key_doubts.h"

#include <algorithm>
#include <cstdint>

#include "hosts/zkey/key_attributes.h"
#include "hosts/zkey/text.h"
#include "hosts/zkey/xml_tags.h"

namespace zkey {
namespace {

constexpr int32_t kMostKeys = 16;

class Search {
public:
    explicit Search(std::string_view text) : m_text(text) {}

    KeyDoubts Run() {
        for (std::size_t from = 0, at = 0; (at = m_text.find('<', from)) != m_text.npos; from = at) {
            // Text among the elements takes the place of one.
            if (m_open.size() == 1 && m_text.substr(from, at - from).find_first_not_of(kXmlSpace) != m_text.npos)
                m_others = true;
            if (PassOver(m_text, at, "<?", "?>") || PassOver(m_text, at, "<!--", "-->")) {
                if (at > m_text.size()) break;
                continue;
            }
            const std::size_t end = XmlTagEnd(m_text, at);
            const XmlTag tag = ReadXmlTag(m_text.substr(at + 1, end == m_text.npos ? end : end - at - 1));
            if (!m_root && !tag.name.starts_with('!') && !SameWord(tag.name, "m_config")) return Refused(NoKey());
            if (end == m_text.npos) return Refused(kCut);
            at = end + 1;
            if (tag.name.starts_with('!')) continue;
            if (tag.closing) {
                Close(tag.name);
            } else {
                Open(tag);
            }
        }
        if (!m_open.empty()) return Refused(kCut);
        if (m_root) CheckCount();
        return m_found;
    }

private:
    static constexpr const char *kCut = ": the text ends before its closing </m_config>; the file is cut";

    std::string NoKey() const {
        const std::size_t first = m_text.find_first_not_of(" \t\r\n\xEF\xBB\xBF?");
        return std::string(" is no saved key: ") + (first != m_text.npos && m_text[first] == '<' ? kNoConfig : kNoXml);
    }

    KeyDoubts Refused(const std::string &why) const { return {m_found.warnings, why}; }
    void Warn(const std::string &line) { m_found.warnings.push_back(line); }

    void Open(const XmlTag &tag) {
        const bool isKey = SameWord(tag.name, "key");
        if (m_open.size() == 1) {
            m_others = m_others || !isKey;
            if (isKey) ++(m_others ? m_late : m_keys);
        }
        if (!m_root) {
            m_root = true;
            CheckRoot(tag);
        }
        CheckNames(tag, isKey ? "key " + std::to_string(m_keys + m_late) : std::string(tag.name));
        if (!tag.empty) m_open.push_back(tag.name);
    }

    /// What was left open inside ends with it.
    void Close(std::string_view name) {
        const auto same = [&](std::string_view open) { return SameWord(open, name); };
        const auto found = std::find_if(m_open.rbegin(), m_open.rend(), same);
        if (found != m_open.rend()) m_open.erase(found.base() - 1, m_open.end());
    }

    void CheckRoot(const XmlTag &tag) {
        int32_t low = 0;
        int32_t high = 0;
        if (!ParseWholeDecimal(tag.Value("keys").value_or("0"), m_said)) m_said = 0;
        if (ParseWholeDecimal(tag.Value("transparent.min").value_or(""), low) &&
            ParseWholeDecimal(tag.Value("transparent.max").value_or(""), high) && low > high) {
            Warn("transparent.min=\"" + std::to_string(low) + "\" is above transparent.max=\"" + std::to_string(high) + "\"");
        }
    }

    void CheckNames(const XmlTag &tag, const std::string &label) {
        if (!IsKeyElement(tag.name)) return Warn("unknown element \"" + label + "\"");
        for (const auto &[name, value] : tag.attributes) {
            if (!IsKeyAttribute(tag.name, name)) {
                Warn(label + ": unknown attribute \"" + std::string(name) + "\"");
                continue;
            }
            const std::string fault = KeyValueFault(tag.name, name, value);
            if (!fault.empty()) Warn(label + ": " + std::string(name) + "=\"" + std::string(value) + "\" " + fault);
        }
        if (!SameWord(tag.name, "key")) return;
        for (const char *must : {"value", "delta"}) {
            if (!tag.Value(must)) Warn(label + " has no \"" + must + "\"");
        }
    }

    void CheckCount() {
        const std::string said = "m_config says keys=\"" + std::to_string(m_said) + "\", but ";
        if (m_said > kMostKeys) Warn(said + "a key has 16 colours at most");
        if (m_said < 1) return;    // the library's refusal
        if (std::min(m_said, kMostKeys) > m_keys) {
            m_found.refusal = ": " + said + "has " + std::to_string(m_keys) + " key elements" +
                              (m_late > 0 ? " before other elements or text; the key elements come first" : "");
        } else if (m_said < m_keys + m_late) {
            Warn(said + "has " + std::to_string(m_keys + m_late) + " key elements; the rest is left out");
        }
    }

    std::string_view m_text;
    KeyDoubts m_found;
    std::vector<std::string_view> m_open;
    bool m_root = false;
    bool m_others = false;    ///< an element that is no key was there
    int32_t m_said = 0;
    int32_t m_keys = 0;    ///< before any other element: the library takes the first children
    int32_t m_late = 0;
};

}    // namespace

KeyDoubts FindKeyDoubts(std::string_view bytes) { return Search(NarrowXml(bytes)).Run(); }

}    // namespace zkey
