#include "tests/conformance/xml_model.h"

#include <algorithm>
#include <cmath>

#include "tests/conformance/value_model.h"

namespace conformance {
namespace {

bool Space(OLECHAR c) { return c == ' ' || c == '\n' || c == '\r' || c == '\t' || c >= 0xFDEF; }
bool SpaceNoBlank(OLECHAR c) { return c != ' ' && Space(c); }
bool NameSign(OLECHAR c) { return c != 0 && !Space(c) && T(";,<>/\\=").find(c) == Text::npos; }

Text Lowered(Text s) {
    for (OLECHAR &c : s)
        if (c >= 'A' && c <= 'Z') c = static_cast<OLECHAR>(c + 32);
    return s;
}

template <class In>
Text Trimmed(Text s, In in) {
    while (!s.empty() && in(s.back())) s.pop_back();
    size_t i = 0;
    while (i < s.size() && in(s[i])) ++i;
    return s.substr(i);
}

struct Tag {
    size_t start = 0, end = 0;
    Text name, rest;
    int kind = 0;
};

bool Read(TextView text, size_t position, Tag &tag) {
    const Text s(text);
    size_t p = s.find(OLECHAR{'<'}, position);
    for (;; p = s.find(OLECHAR{'<'}, p)) {
        if (p == Text::npos) return false;
        const bool comment = s.compare(p, 4, T("<!--")) == 0, declaration = s.compare(p, 2, T("<?")) == 0;
        if (!comment && !declaration) break;
        const size_t close = comment ? s.find(T("-->"), p + 4) : s.find(T("?>"), p + 2);
        if (close == Text::npos) return false;
        p = close + (comment ? 3 : 2);
    }
    tag = {};
    tag.start = p;
    size_t close = p + 1;
    for (OLECHAR quote = 0; close < s.size(); ++close) {
        const OLECHAR c = s[close];
        if (quote != 0) {
            if (c == quote) quote = 0;
        } else if (c == '\'' || c == '"') {
            quote = c;
        } else if (c == '>') {
            break;
        }
    }
    tag.end = std::min(close + 1, s.size());
    const Text inside = s.substr(p + 1, close - p - 1);
    size_t i = 0;
    while (i < inside.size() && Space(inside[i])) ++i;
    if (i < inside.size() && inside[i] == '/') {
        tag.kind = -1;
        ++i;
    } else {
        tag.kind = 1;
    }
    const size_t name = i;
    for (int brackets = 0; i < inside.size() && NameSign(inside[i]); ++i) {
        if (inside[i] == '[' && ++brackets == 2 && inside.compare(name, 2, T("![")) == 0) {
            ++i;
            break;
        }
    }
    tag.name = inside.substr(name, i - name);
    if (tag.name.compare(0, 2, T("![")) == 0) {
        const size_t from = p + 1 + i, found = s.find(T("]]>"), from);
        const size_t to = found != Text::npos ? found : s.size() >= 3 + from ? s.size() - 3 : from;
        tag.rest = s.substr(from, to - from);
        tag.end = found != Text::npos ? found + 3 : s.size();
        tag.kind = 2;
        return true;
    }
    tag.name = Lowered(tag.name);
    if (tag.name == T("br") || tag.name == T("tab")) {
        tag.kind = 0;
        return true;
    }
    if (tag.kind == -1) return true;
    tag.rest = Trimmed(inside.substr(i), Space);
    if (!tag.rest.empty() && tag.rest.back() == '/') {
        tag.kind = 0;
        tag.rest.pop_back();
    }
    return true;
}

bool Parse(ModelNode &node, TextView s, size_t p, size_t &end, bool noRootTag, bool rawText, int level) {
    if (level > 1024) return false;
    Tag tag;
    if (!noRootTag) {
        do {
            if (!Read(s, p, tag)) return false;
            p = tag.end;
        } while (tag.kind < 0);
        if (tag.name.empty()) return false;
        node.name = tag.name;
        if (tag.kind == 2) node.Append(ModelDecode(tag.rest, rawText));
        if (tag.kind == 1 || tag.kind == 0) ModelList(node, tag.rest, 1);
        if (tag.kind != 1) {
            end = p;
            return true;
        }
    }
    while (p < s.size()) {
        const bool any = Read(s, p, tag);
        const size_t to = any ? tag.start : s.size();
        if (to > p) {
            Text between(s.substr(p, to - p));
            if (!rawText) between = Trimmed(between, SpaceNoBlank);
            node.Append(ModelDecode(between, rawText));
        }
        if (!any) break;
        if (tag.kind == -1) {
            p = tag.end;
            if (tag.name != node.name) continue;
            end = p;
            return true;
        }
        if (tag.kind == 2) {
            node.Append(ModelDecode(tag.rest, rawText));
            p = tag.end;
            continue;
        }
        node.children.emplace_back();
        size_t childEnd = 0;
        if (Parse(node.children.back(), s, tag.start, childEnd, false, rawText, level + 1)) {
            p = childEnd;
        } else {
            node.children.pop_back();
            p = tag.end;
        }
    }
    end = s.size();
    return true;
}

Text Escaped(TextView text) {
    Text out;
    for (const OLECHAR c : text) out += c == '<' ? T("&lt;") : c == '>' ? T("&gt;") : c == '&' ? T("&amp;") : Text(1, c);
    return out;
}

template <class Node>
std::string DumpParts(const std::string &name, const Node &attributes) {
    std::string s = "<" + name;
    for (const auto &[key, value] : attributes) s += " " + Say(key) + "={" + Say(value) + "}";
    return s + ">";
}

}    // namespace

uint64_t ModelKey(TextView name) {
    uint64_t lane[3] = {0xA518C95D1B2E3917, 0x9E3779B9A6C517EB, 0x6A81C43A71D2E082};
    uint64_t &a = lane[0], &b = lane[1], &c = lane[2];
    const auto mix = [&] {
        a -= b, a -= c, a ^= c >> 43;
        b -= c, b -= a, b ^= a << 9;
        c -= a, c -= b, c ^= b >> 8;
        a -= b, a -= c, a ^= c >> 38;
        b -= c, b -= a, b ^= a << 23;
        c -= a, c -= b, c ^= b >> 5;
        a -= b, a -= c, a ^= c >> 35;
        b -= c, b -= a, b ^= a << 49;
        c -= a, c -= b, c ^= b >> 11;
        a -= b, a -= c, a ^= c >> 12;
        b -= c, b -= a, b ^= a << 18;
        c -= a, c -= b, c ^= b >> 22;
    };
    std::vector<uint64_t> words(name.size() / 8 + 1, 0);    // the last one is partial, maybe of no byte
    for (size_t i = 0; i < name.size(); ++i) words[i / 8] |= static_cast<uint64_t>((name[i] & 0xFF) | 0x20) << (i % 8 * 8);
    for (size_t w = 0; w < words.size(); ++w) {
        lane[w % 3] += words[w];
        if (w + 1 == words.size() || w % 3 == 2) mix();
    }
    return c;
}

Text *ModelNode::Attribute(TextView key) {
    for (auto &[name_, value] : attributes)
        if (ModelKey(name_) == ModelKey(key)) return &value;
    return nullptr;
}

void ModelNode::Set(TextView key, TextView value, bool overwrite) {
    Text *held = Attribute(key);
    if (held == nullptr) {
        attributes.emplace_back(key, value);
    } else if (overwrite) {
        *held = value;
    }
}

ModelNode *ModelNode::Child(TextView key, int32_t nth) {
    for (ModelNode &child : children)
        if (!child.isText && ModelKey(child.name) == ModelKey(key) && nth-- == 0) return &child;
    return nullptr;
}

Text *ModelNode::TextChild() {
    for (ModelNode &child : children)
        if (child.isText) return &child.name;
    return nullptr;
}

void ModelNode::TextSet(TextView text) {
    if (Text *held = TextChild()) {
        *held = text;
    } else {
        children.insert(children.begin(), ModelNode{Text(text), true, {}, {}});
    }
}

void ModelNode::Append(TextView text) {
    if (text.empty()) return;
    if (!children.empty() && children.back().isText) {
        children.back().name += text;
    } else {
        children.push_back({Text(text), true, {}, {}});
    }
}

std::string Dump(const ModelNode &node) {
    if (node.isText) return "[" + Say(node.name) + "]";
    std::string s = DumpParts(Say(node.name), node.attributes);
    for (const ModelNode &child : node.children) s += Dump(child);
    return s + "</>";
}

std::string Dump(const zck::XMLParse::XMLNodeImpl &node) {
    if (node.IsTextNode()) return "[" + Say(node.NameGet()) + "]";
    std::vector<std::pair<Text, Text>> attributes;
    Text name, value;
    for (size_t i = 0; node.AttributeAt(i, name, value); ++i) attributes.emplace_back(name, value);
    std::string s = DumpParts(Say(node.NameGet()), attributes);
    for (const auto &child : node.ChildrenGet()) s += Dump(*child);
    return s + "</>";
}

Text ModelDecode(TextView text, bool keepBlank) {
    Text s(text), out;
    for (OLECHAR &c : s)
        if (c == '\r' || c == '\n' || c == '\t') c = ' ';
    bool kept = keepBlank;
    for (size_t i = 0; i < s.size();) {
        if (s[i] != '&') {
            out += s[i++];
            continue;
        }
        const auto unit = [&](size_t k) -> int { return i + k < s.size() ? s[i + k] : 0; };
        const auto low = [&](size_t k) { return unit(k) & 0xFF; };
        size_t used = 0;
        int c = 0;
        if (unit(1) == 'l') {
            c = '<', used = 4;
        } else if (unit(1) == 'g') {
            c = '>', used = 4;
        } else if (unit(1) == 'a' && low(2) == 'm') {
            c = '&', used = 5;
        } else if (unit(1) == 'a' && unit(2) == 'p') {
            c = '\'', used = 6;
        } else if (unit(1) == 'n' && unit(2) == 'b') {
            c = ' ', used = 6, kept = true;
        } else if (unit(1) == 'c' && unit(2) == 'o') {
            c = 0xA9, used = 6;
        } else if (unit(1) == 'r' && low(2) == 'e') {
            c = 0xAE, used = 5;
        } else if (unit(1) == 'q' && unit(2) == 'u') {
            c = '"', used = 6;
        }
        if (used == 0 && unit(1) == '#') {
            std::string digits;
            const bool hex = unit(2) == 'x';
            for (size_t k = hex ? 3 : 2; unit(k) != 0 && unit(k) < 128; ++k) digits += static_cast<char>(unit(k));
            const bool digit = !digits.empty() && (hex ? std::isxdigit(static_cast<unsigned char>(digits[0])) != 0
                                                       : std::isdigit(static_cast<unsigned char>(digits[0])) != 0);
            if (digit) {
                const ModelNumber n = NumberInBase(digits, hex ? 16 : 0);
                c = static_cast<int>(std::min<uint64_t>(n.magnitude, 0xFFFFFFFF) & 0xFFFF);
                used = (hex ? 3 : 2) + n.used + 1;
            }
        }
        if (used == 0) used = 2;    // any other
        if (c != 0) out += static_cast<OLECHAR>(c);
        i += used;
    }
    const bool blank = out.find_first_not_of(OLECHAR{' '}) == Text::npos;
    return blank && !kept ? Text() : out;
}

bool ModelList(ModelNode &node, TextView text, int mode, bool storeBare) {
    if (mode == 2) node.attributes.clear();
    bool any = false;
    size_t p = 0;
    const auto skip = [&] {
        while (p < text.size() && Space(text[p])) ++p;
    };
    while (p < text.size()) {
        skip();
        Text name, value;
        while (p < text.size() && !Space(text[p]) && text[p] != '=') name += text[p++];
        skip();
        const bool pair = p < text.size() && text[p] == '=';
        if (pair) {
            ++p;
            skip();
            if (p >= text.size()) break;
            const OLECHAR quote = text[p];
            if (quote == '\'' || quote == '"') {
                for (++p; p < text.size() && text[p] != quote; ++p) value += text[p];
                ++p;
            } else {
                while (p < text.size() && !Space(text[p])) value += text[p++];
            }
        }
        if (name.empty() || (!pair && !storeBare)) continue;
        node.Set(name, value, mode != 0);
        any = true;
    }
    return any;
}

Text ModelStrip(TextView text) {
    Text s(text);
    const auto cut = [&](const char *opening, const char *closing) {
        const Text open = T(opening), close = T(closing);
        Text out;
        size_t p = 0;
        for (;;) {
            const size_t at = s.find(open, p);
            out += s.substr(p, at == Text::npos ? at : at - p);
            if (at == Text::npos) break;
            const size_t to = s.find(close, at + open.size());
            if (to == Text::npos) break;
            p = to + close.size();
        }
        s = out;
    };
    cut("<!--", "-->");
    cut("<?", "?>");
    return s;
}

bool ModelParse(ModelNode &node, TextView stripped, size_t &end, bool noRootTag, bool rawText) {
    const Text name = node.name;
    node.attributes.clear();
    node.children.clear();
    if (Parse(node, stripped, 0, end, noRootTag, rawText, 1)) return true;
    node = {};
    node.name = name;
    return false;
}

Text ModelQuote(TextView value) {
    Text v(value);
    if (v.find(OLECHAR{'\''}) == Text::npos) return T("'") + v + T("'");
    std::replace(v.begin(), v.end(), OLECHAR{'"'}, OLECHAR{'\''});
    return T("\"") + v + T("\"");
}

Text ModelWrite(const ModelNode &node, int depth) {
    const bool layout = depth >= 0;
    Text out;
    if (layout) out += Text(static_cast<size_t>(std::min(depth, 64)), OLECHAR{'\t'});
    out += T("<") + node.name;
    for (const auto &[key, value] : node.attributes) out += T(" ") + key + T("=") + ModelQuote(value);
    if (node.children.empty()) return out + T("/>");
    out += T(">");
    const bool onlyText = std::all_of(node.children.begin(), node.children.end(), [](const ModelNode &c) { return c.isText; });
    for (const ModelNode &child : node.children) {
        if (onlyText) {
            out += Escaped(child.name);
            continue;
        }
        if (layout) out += T("\r\n");
        if (child.isText) {
            if (layout) out += Text(static_cast<size_t>(depth + 1), OLECHAR{'\t'});
            out += Escaped(child.name);
        } else {
            out += ModelWrite(child, layout ? depth + 1 : -1);
        }
    }
    if (!onlyText && layout) out += T("\r\n") + Text(static_cast<size_t>(std::min(depth, 64)), OLECHAR{'\t'});
    return out + T("</") + node.name + T(">");
}

int ModelUtf16Test(const std::string &b, double ratio) {
    const auto n = static_cast<int64_t>(b.size());
    if (n > 1 && b.compare(0, 2, "\xFF\xFE") == 0) return 2;
    if (n > 1 && b.compare(0, 2, "\xFE\xFF") == 0) return -2;
    const int64_t m = std::min<int64_t>(std::llround(ratio * static_cast<double>(n)) - 1, n - 1) / 2;
    for (int64_t i = 0; i < m; ++i) {
        if (b[static_cast<size_t>(2 * i)] == 0) return -1;
        if (b[static_cast<size_t>(2 * i + 1)] == 0) return 1;
    }
    return 0;
}

}    // namespace conformance
