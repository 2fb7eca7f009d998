#include "hosts/zkey/properties.h"

#include <algorithm>
#include <array>

#include "hosts/zkey/failure.h"
#include "hosts/zkey/padding.h"
#include "hosts/zkey/text.h"

namespace zkey {
namespace {

using Accepts = bool (*)(const std::string &);

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
bool IsBorders(const std::string &text) {
    const std::vector<std::string_view> words = BorderWords(text);
    return words.size() <= 4 &&
           std::all_of(words.begin(), words.end(), [](std::string_view w) { return IsWholeIn(w, 0, 32768); });
}

struct Known {
    Property property;
    Accepts accepts;
};

constexpr std::array<Known, 13> kProperties = {{
    {{"background", "text", "checker", "behind previews of a key: \"checker\", the name of a colour, or a picture's file",
      false},
     [](const std::string &) { return true; }},
    {{"detect.blocks", "1 to 32768", "48", "how finely a picture is divided when a key is looked for in it", false},
     [](const std::string &v) { return IsWholeIn(v, 1, 32768); }},
    {{"detect.threshold", "0 to 255", "16", "how much the colours of one block may differ", false},
     [](const std::string &v) { return IsWholeIn(v, 0, 255); }},
    {{"detect.key_diff", "number", "1.0", "how far the colours of a key lie apart", false}, IsReal},
    {{"detect.max_keys", "1 to 16", "1", "how many colours a key gets", false},
     [](const std::string &v) { return IsWholeIn(v, 1, 16); }},
    {{"output.thread", "boolean", "true",
      "results come one call late, from a thread of the keyer; zkey key has threads of its own and sets false", false},
     IsBoolean},
    {{"process.threads", "1 to 16", "2", "threads that key one picture; zkey key takes the processors unless it is stored",
      false},
     [](const std::string &v) { return IsWholeIn(v, 1, 16); }},
    {{"keying.borders", "left top right bottom", "",
      "pixels at the borders that are not keyed and stay opaque; zkey key --garbage makes them transparent", false},
     IsBorders},
    {{"dll-version", "text", "", "version of the library", true}, nullptr},
    {{"dll-file-version", "text", "", "version of its file", true}, nullptr},
    {{"dll-path", "text", "", "where it lies", true}, nullptr},
    {{"dll-date", "text", "", "when it was built", true}, nullptr},
    {{nullptr, nullptr, nullptr, nullptr, false}, nullptr},
}};

/// The table as people see it.
constexpr auto kTable = [] {
    std::array<Property, kProperties.size()> table{};
    for (std::size_t i = 0; i < table.size(); ++i) table[i] = kProperties[i].property;
    return table;
}();

std::string SettableNames() {
    std::string out;
    for (const Property &p : kTable) {
        if (p.name != nullptr && !p.readOnly) out += (out.empty() ? "" : ", ") + std::string(p.name);
    }
    return out;
}

}    // namespace

const Property *PropertyTable() { return kTable.data(); }

const Property *FindProperty(std::string_view name) {
    for (const Property &p : kTable) {
        if (p.name != nullptr && SameWord(p.name, name)) return &p;
    }
    return nullptr;
}

std::string StoredInForce(const std::vector<std::pair<std::string, std::string>> &kept) {
    std::string out;
    for (const auto &[name, value] : kept) {
        const Property *p = FindProperty(name);
        if (p != nullptr && SameWord(p->byDefault, value)) continue;
        out += (out.empty() ? "" : ", ") + name + "=" + value;
        if (p == nullptr) {
            out += " (unknown)";
        } else if (!p->readOnly && !kProperties[static_cast<std::size_t>(p - kTable.data())].accepts(value)) {
            out += " (does not suit it)";
        }
    }
    return out.empty() ? out : "stored properties in force: " + out + " (zkey props NAME --forget takes them back)";
}

void CheckProperty(const std::string &option, const std::string &name, const std::string &value) {
    const Property *property = FindProperty(name);
    if (property == nullptr) FailUsage(option + ": the keyer has no property \"" + name + "\"; it has " + SettableNames());
    if (property->readOnly) FailUsage(option + ": " + property->name + " can only be read");
    const Known &known = kProperties[static_cast<std::size_t>(property - kTable.data())];
    if (!known.accepts(value)) {
        FailUsage(option + ": \"" + value + "\" does not suit " + property->name + "; give " +
                  (SameWord(property->type, "boolean") ? "true or false" : property->type));
    }
}

}    // namespace zkey
