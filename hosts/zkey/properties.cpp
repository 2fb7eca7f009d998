#include "hosts/zkey/properties.h"

#include <algorithm>

#include "hosts/zkey/failure.h"
#include "hosts/zkey/padding.h"
#include "hosts/zkey/text.h"

namespace zkey {
namespace {

bool IsWholeIn(std::string_view text, int32_t least, int32_t most) {
    int32_t value = 0;
    return ParseWhole(text, value) && value >= least && value <= most;
}

bool IsBoolean(const std::string &text) {
    for (const char *word : {"true", "false", "yes", "no", "1", "0"}) {
        if (SameWord(text, word)) return true;
    }
    return false;
}

bool IsReal(const std::string &text) {
    double value = 0;
    return ParseReal(text, value);
}

/// Nothing, or one to four numbers of pixels.
/// Nothing, or one to four numbers of pixels.
bool IsBorders(const std::string &text, int32_t least, int32_t most) {
    const std::vector<std::string_view> words = BorderWords(text);
    return words.size() <= 4 &&
           std::all_of(words.begin(), words.end(), [&](std::string_view w) { return IsWholeIn(w, least, most); });
}

bool Accepts(const ZPropertyInfo &p, const std::string &value) {
    switch (p.eKind) {
        case eZPK_Boolean:
            return IsBoolean(value);
        case eZPK_Integer:
            return IsWholeIn(value, p.nMin, p.nMax);
        case eZPK_Real:
            return IsReal(value);
        case eZPK_Borders:
            return IsBorders(value, p.nMin, p.nMax);
        default:
            return p.eKind == eZPK_Text;
    }
}

/// What zkey does with a property of its own accord.
struct Remark {
    const char *name;
    const char *text;
};
constexpr Remark kRemarks[] = {
    {"output.thread", "; zkey key has threads of its own and sets false"},
    {"process.threads", "; zkey key takes the processors unless it is stored"},
    {"keying.borders", "; zkey key --garbage makes them transparent"},
};

std::string SettableNames() {
    std::string out;
    for (const ZPropertyInfo &p : kZProperties) {
        if (!IsReadOnly(p)) out += (out.empty() ? "" : ", ") + std::string(p.pszName);
    }
    return out;
}

}    // namespace

const ZPropertyInfo *FindProperty(std::string_view name) {
    for (const ZPropertyInfo &p : kZProperties) {
        if (SameWord(p.pszName, name)) return &p;
    }
    return nullptr;
}

bool IsReadOnly(const ZPropertyInfo &property) { return property.eKind == eZPK_Computed; }

std::string KindOf(const ZPropertyInfo &property) {
    switch (property.eKind) {
        case eZPK_Boolean:
            return "boolean";
        case eZPK_Integer:
            return std::to_string(property.nMin) + " to " + std::to_string(property.nMax);
        case eZPK_Real:
            return "number";
        case eZPK_Borders:
            return "left top right bottom";
        default:
            return "text";
    }
}

std::string MeaningOf(const ZPropertyInfo &property) {
    std::string out = property.pszMeaning;
    for (const Remark &remark : kRemarks) {
        if (SameWord(remark.name, property.pszName)) out += remark.text;
    }
    return out;
}

std::string StoredInForce(const std::vector<std::pair<std::string, std::string>> &kept) {
    std::string out;
    for (const auto &[name, value] : kept) {
        const ZPropertyInfo *p = FindProperty(name);
        if (p != nullptr && SameWord(p->pszDefault, value)) continue;
        out += (out.empty() ? "" : ", ") + name + "=" + value;
        if (p == nullptr) {
            out += " (unknown)";
        } else if (!IsReadOnly(*p) && !Accepts(*p, value)) {
            out += " (does not suit it)";
        }
    }
    return out.empty() ? out : "stored properties in force: " + out + " (zkey props NAME --forget takes them back)";
}

void CheckProperty(const std::string &option, const std::string &name, const std::string &value) {
    const ZPropertyInfo *property = FindProperty(name);
    if (property == nullptr) FailUsage(option + ": the keyer has no property \"" + name + "\"; it has " + SettableNames());
    if (IsReadOnly(*property)) FailUsage(option + ": " + property->pszName + " can only be read");
    if (!Accepts(*property, value)) {
        FailUsage(option + ": \"" + value + "\" does not suit " + property->pszName + "; give " +
                  (property->eKind == eZPK_Boolean ? "true or false" : KindOf(*property)));
    }
}

}    // namespace zkey
