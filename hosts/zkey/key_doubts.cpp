#include "hosts/zkey/key_doubts.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>
#include <utility>

#include "hosts/zkey/text.h"

namespace zkey {
namespace {

constexpr std::string_view kSpace = " \t\r\n";
constexpr int32_t kMostKeys = 16;

/// How the library reads a value: only colours may be hexadecimal.
enum class Kind { Whole, Byte, Colour, Truth, Real };

struct Known {
    std::string_view element;
    std::string_view name;
    Kind kind;
};

constexpr std::array<Known, 33> kKnown = {{
    {"m_config", "type", Kind::Whole},
    {"m_config", "keys", Kind::Whole},
    {"m_config", "transparent.min", Kind::Byte},
    {"m_config", "transparent.max", Kind::Byte},
    {"m_config", "edges_smooth", Kind::Whole},
    {"m_config", "color_cancel", Kind::Truth},
    {"m_config", "interlaced", Kind::Whole},
    {"m_config", "inverse", Kind::Whole},
    {"key", "value", Kind::Colour},
    {"key", "delta", Kind::Colour},
    {"key", "smooth", Kind::Byte},
    {"key", "alpha", Kind::Byte},
    {"key", "cancel.range", Kind::Whole},
    {"key", "cancel.power", Kind::Whole},
    {"key", "cancel.chroma", Kind::Whole},
    {"key", "cancel.luma", Kind::Whole},
    {"key", "cancel.alpha", Kind::Whole},
    {"key", "reverse_key", Kind::Whole},
    {"adjust", "power", Kind::Real},
    {"adjust", "transparent", Kind::Real},
    {"adjust", "colors", Kind::Real},
    {"adjust", "smooth", Kind::Real},
    {"adjust", "min_trans", Kind::Real},
    {"adjust", "max_trans", Kind::Real},
    {"adjust", "exc_power", Kind::Real},
    {"color", "range", Kind::Real},
    {"color", "power", Kind::Real},
    {"color", "chroma", Kind::Real},
    {"color", "luma", Kind::Real},
    {"color", "alpha", Kind::Real},
    {"range", "rhy", Kind::Real},
    {"range", "glu", Kind::Real},
    {"range", "bsv", Kind::Real},
}};

struct Tag {
    std::string_view name;
    std::vector<std::pair<std::string_view, std::string_view>> attributes;
    bool closing = false;
    bool empty = false;

    std::optional<std::string_view> Value(std::string_view attribute) const {
        for (const auto &[name_, value] : attributes) {
            if (SameWord(name_, attribute)) return value;
        }
        return std::nullopt;
    }
};

/// One byte for each sign, since all that is looked for is ASCII.
std::string Narrow(std::string_view bytes) {
    const auto at = [&](std::size_t i) { return i < bytes.size() ? static_cast<unsigned char>(bytes[i]) : 1U; };
    const bool little = (at(0) == 0xFF && at(1) == 0xFE) || at(1) == 0;
    const bool big = (at(0) == 0xFE && at(1) == 0xFF) || at(0) == 0;
    if (!little && !big) return std::string(bytes);
    std::string out;
    for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
        const char low = bytes[i + (little ? 0 : 1)];
        const char high = bytes[i + (little ? 1 : 0)];
        out.push_back(high == 0 ? low : '?');
    }
    return out;
}

/// Behind what starts here with `opening`: false when it does not; without a closing `at` is behind the text.
bool PassOver(std::string_view text, std::size_t &at, std::string_view opening, std::string_view closing) {
    if (!text.substr(at).starts_with(opening)) return false;
    const std::size_t found = text.find(closing, at + opening.size());
    at = found == std::string_view::npos ? text.size() + 1 : found + closing.size();
    return true;
}

/// The ">" that is in no quotes, or `npos`.
std::size_t TagEnd(std::string_view text, std::size_t at) {
    char quote = 0;
    for (; at < text.size(); ++at) {
        const char c = text[at];
        if (quote != 0) {
            if (c == quote) quote = 0;
        } else if (c == '\'' || c == '"') {
            quote = c;
        } else if (c == '>') {
            return at;
        }
    }
    return std::string_view::npos;
}

std::string_view Take(std::string_view &text, std::string_view until) {
    const std::string_view part = text.substr(0, text.find_first_of(until));
    text.remove_prefix(part.size());
    return part;
}

void SkipSpace(std::string_view &text) { text.remove_prefix(std::min(text.find_first_not_of(kSpace), text.size())); }

std::string_view TakeValue(std::string_view &text) {
    if (text.empty() || (text[0] != '\'' && text[0] != '"')) return Take(text, kSpace);
    const char quote[2] = {text[0], '\0'};
    text.remove_prefix(1);
    const std::string_view value = Take(text, quote);
    if (!text.empty()) text.remove_prefix(1);
    return value;
}

/// From what stands between "<" and ">".
Tag ReadTag(std::string_view text) {
    Tag tag;
    tag.closing = text.starts_with('/');
    if (tag.closing) text.remove_prefix(1);
    tag.empty = text.ends_with('/');
    if (tag.empty) text.remove_suffix(1);
    tag.name = Take(text, kSpace);
    for (SkipSpace(text); !text.empty(); SkipSpace(text)) {
        const std::string_view name = Take(text, " \t\r\n=");
        SkipSpace(text);
        if (text.starts_with('=')) text.remove_prefix(1);
        SkipSpace(text);
        tag.attributes.emplace_back(name, TakeValue(text));
    }
    return tag;
}

bool IsWhole(std::string_view text, int32_t &value) { return text.find_first_of("xX") == text.npos && ParseWhole(text, value); }

bool IsColour(std::string_view text) {
    int32_t value = 0;
    // A leading 0 alone makes the number an octal one.
    const bool octal = text.size() > 1 && text[0] == '0' && text[1] != 'x' && text[1] != 'X';
    return !octal && ParseWhole(text, value);
}

bool IsTruth(std::string_view text) {
    int32_t value = 0;
    for (const char *word : {"true", "false", "yes", "only", "on", "y"}) {
        if (SameWord(text, word)) return true;
    }
    return ParseWhole(text, value);
}

bool IsReal(std::string_view text) {
    double value = 0;
    if (text.starts_with('-')) text.remove_prefix(1);
    if (text.ends_with('%')) text.remove_suffix(1);
    return ParseReal(text, value);
}

/// What is wrong with a value, or nothing.
std::string Fault(Kind kind, std::string_view text) {
    int32_t value = 0;
    switch (kind) {
        case Kind::Colour:
            return IsColour(text) ? "" : "is no number as 0x0040B100";
        case Kind::Truth:
            return IsTruth(text) ? "" : "is neither true nor false";
        case Kind::Real:
            return IsReal(text) ? "" : "is no number";
        default:
            break;
    }
    if (!IsWhole(text, value)) return "is no whole decimal number";
    return kind == Kind::Byte && (value < 0 || value > 255) ? "is not 0 to 255" : "";
}

class Search {
public:
    explicit Search(std::string_view text) : m_text(text) {}

    KeyDoubts Run() {
        for (std::size_t from = 0, at = 0; (at = m_text.find('<', from)) != m_text.npos; from = at) {
            // Text among the elements takes the place of one.
            if (m_open.size() == 1 && m_text.substr(from, at - from).find_first_not_of(kSpace) != m_text.npos) m_others = true;
            if (PassOver(m_text, at, "<?", "?>") || PassOver(m_text, at, "<!--", "-->")) {
                if (at > m_text.size()) break;
                continue;
            }
            const std::size_t end = TagEnd(m_text, at);
            const Tag tag = ReadTag(m_text.substr(at + 1, end == m_text.npos ? end : end - at - 1));
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

    void Open(const Tag &tag) {
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

    void CheckRoot(const Tag &tag) {
        int32_t low = 0;
        int32_t high = 0;
        if (!IsWhole(tag.Value("keys").value_or("0"), m_said)) m_said = 0;
        if (IsWhole(tag.Value("transparent.min").value_or(""), low) &&
            IsWhole(tag.Value("transparent.max").value_or(""), high) && low > high) {
            Warn("transparent.min=\"" + std::to_string(low) + "\" is above transparent.max=\"" + std::to_string(high) + "\"");
        }
    }

    void CheckNames(const Tag &tag, const std::string &label) {
        const auto ofThis = [&](const Known &k) { return SameWord(k.element, tag.name); };
        if (std::none_of(kKnown.begin(), kKnown.end(), ofThis)) return Warn("unknown element \"" + label + "\"");
        for (const auto &[name, value] : tag.attributes) {
            const auto same = [&, n = name](const Known &k) { return ofThis(k) && SameWord(k.name, n); };
            const auto known = std::find_if(kKnown.begin(), kKnown.end(), same);
            if (known == kKnown.end()) {
                Warn(label + ": unknown attribute \"" + std::string(name) + "\"");
                continue;
            }
            // What an entity stands for is not looked up.
            const std::string fault = value.find('&') == value.npos ? Fault(known->kind, value) : "";
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

KeyDoubts FindKeyDoubts(std::string_view bytes) { return Search(Narrow(bytes)).Run(); }

}    // namespace zkey
