#include "hosts/zkey/edit_steps.h"

#include <algorithm>
#include <cstdlib>

#include "hosts/zkey/failure.h"
#include "hosts/zkey/text.h"

namespace zkey {
namespace {

enum class Takes { Nothing, Options, Point, Rect, Setting, File };

struct StepWord {
    const char *name;
    EditOp op;
    Takes takes;
    const char *help;
};

constexpr StepWord kSteps[] = {
    {"detect", EditOp::Detect, Takes::Options,
     "[NAME=VALUE ...]         finds the screen; type, blocks, threshold, max_keys, key_diff"},
    {"add", EditOp::Add, Takes::Point,
     "X,Y [NAME=VALUE ...]        takes the colour there out; type, max_keys, force_point=true"},
    {"exclude", EditOp::Exclude, Takes::Point, "X,Y [NAME=VALUE ...]    protects the colour there"},
    {"rect", EditOp::Rect, Takes::Rect, "L,T,R,B                    asks for a rectangle, which the library does not edit"},
    {"set", EditOp::Set, Takes::Setting, "NAME=VALUE                  an adjustment; the names are below"},
    {"back", EditOp::Back, Takes::Nothing, "                           one state of the history back"},
    {"forward", EditOp::Forward, Takes::Nothing, "                        one state forward"},
    {"reset", EditOp::Reset, Takes::Nothing, "                          an empty key with the adjustments' defaults"},
    {"preview", EditOp::Preview, Takes::File, "FILE                    writes the keyed picture"},
    {"matte", EditOp::Matte, Takes::File, "FILE                      writes the matte: white figure, black screen"},
    {"save", EditOp::Save, Takes::File, "FILE.xml                   saves the key"},
    {"key", EditOp::Key, Takes::Nothing, "                            prints the key as options of zkey key"},
};

struct Adjustment {
    const char *name;
    eCK_Adjust adjust;
};

constexpr Adjustment kAdjustments[] = {
    {"Power", eCKA_Power},
    {"Transparent", eCKA_Transparent},
    {"Smooth", eCKA_Smooth},
    {"Colors", eCKA_Colors},
    {"MinTransparent", eCKA_MinTransparent},
    {"MaxTransparent", eCKA_MaxTransparent},
    {"ExcludePower", eCKA_ExcludePower},
    {"ExcludeTransparent", eCKA_ExcludeTransparent},
    {"Power_R_H_Y", eCKA_Power_R_H_Y},
    {"Power_G_L_U", eCKA_Power_G_L_U},
    {"Power_B_S_V", eCKA_Power_B_S_V},
    {"Colors_Range", eCKA_Colors_Range},
    {"Colors_Power", eCKA_Colors_Power},
    {"Colors_Chroma", eCKA_Colors_Chroma},
    {"Colors_Luma", eCKA_Colors_Luma},
    {"Colors_Alpha", eCKA_Colors_Alpha},
};

/// What the library reads from the options of a step.
constexpr const char *kOptionNames[] = {"type", "blocks", "threshold", "max_keys", "key_diff", "force_point"};

const StepWord *Find(const std::string &word) {
    for (const StepWord &step : kSteps) {
        if (SameWord(step.name, word)) return &step;
    }
    return nullptr;
}

std::string AdjustmentNames() {
    std::string out;
    for (const Adjustment &a : kAdjustments) out += (out.empty() ? "" : ", ") + std::string(a.name);
    return out;
}

void ParsePlace(const std::string &step, const std::string &text, std::size_t count, std::array<int32_t, 4> &place) {
    std::size_t at = 0;
    for (std::size_t i = 0; i < count; ++i) {
        const std::size_t end = i + 1 < count ? text.find(',', at) : text.size();
        if (end == std::string::npos || !ParseWhole(text.substr(at, end - at), place[i])) {
            FailUsage(step + " " + text + ": give " +
                      (count == 2 ? "a place, as 120,80" : "left, top, right and bottom, as 10,10,50,40"));
        }
        at = end + 1;
    }
}

void ParseSetting(const std::string &text, EditStep &step) {
    const std::size_t equals = text.find('=');
    const std::string name = text.substr(0, equals);
    const auto *found = std::find_if(std::begin(kAdjustments), std::end(kAdjustments),
                                     [&](const Adjustment &a) { return SameWord(a.name, name); });
    if (found == std::end(kAdjustments)) {
        FailUsage("set " + text + ": there is no adjustment \"" + name + "\"; there are " + AdjustmentNames());
    }
    const bool negative = equals != std::string::npos && text.substr(equals + 1).starts_with('-');
    if (equals == std::string::npos || !ParseReal(text.substr(equals + (negative ? 2 : 1)), step.value)) {
        FailUsage("set " + text + ": give NAME=NUMBER, as Power=0.2");
    }
    if (negative) step.value = -step.value;
    step.adjust = found->adjust;
}

bool IsOption(const std::string &word) {
    const std::size_t equals = word.find('=');
    return equals != std::string::npos && equals > 0 && Find(word) == nullptr;
}

std::string ParseOption(const std::string &step, const std::string &word) {
    const std::size_t equals = word.find('=');
    const std::string name = word.substr(0, equals);
    if (std::none_of(std::begin(kOptionNames), std::end(kOptionNames), [&](const char *n) { return SameWord(n, name); })) {
        std::string names;
        for (const char *n : kOptionNames) names += (names.empty() ? "" : ", ") + std::string(n);
        FailUsage(step + ": there is no option \"" + name + "\"; there are " + names);
    }
    return OptionPair(name, word.substr(equals + 1)) + " ";
}

}    // namespace

std::string OptionPair(const std::string &name, const std::string &value) {
    if (value.find('\'') != std::string::npos) FailUsage(name + ": a value holds no '");
    return name + "='" + value + "'";
}

std::vector<std::string> WordsOf(const std::string &line) {
    std::vector<std::string> words;
    std::string word;
    bool open = false;
    char quote = 0;
    for (const char c : line) {
        if (quote != 0) {
            if (c == quote) {
                quote = 0;
            } else {
                word += c;
            }
        } else if (c == '"' || c == '\'') {
            quote = c;
            open = true;
        } else if (c == ' ' || c == '\t' || c == '\r') {
            if (open) words.push_back(word);
            word.clear();
            open = false;
        } else if (c == '#' && !open) {
            return words;
        } else {
            word += c;
            open = true;
        }
    }
    if (open) words.push_back(word);
    return words;
}

std::vector<EditStep> ParseSteps(const std::vector<std::string> &words) {
    std::vector<EditStep> steps;
    for (std::size_t i = 0; i < words.size();) {
        const StepWord *word = Find(words[i]);
        if (word == nullptr) FailUsage("unknown step \"" + words[i] + "\"; zkey edit --help lists them");
        ++i;
        EditStep step;
        step.op = word->op;
        step.name = word->name;
        if (word->takes != Takes::Nothing && word->takes != Takes::Options) {
            if (i == words.size()) FailUsage(step.name + " needs more: zkey edit --help lists the steps");
            const std::string &text = words[i++];
            if (word->takes == Takes::Point) ParsePlace(step.name, text, 2, step.place);
            if (word->takes == Takes::Rect) ParsePlace(step.name, text, 4, step.place);
            if (word->takes == Takes::Setting) ParseSetting(text, step);
            if (word->takes == Takes::File) step.file = text;
        }
        if (word->takes == Takes::Options || word->takes == Takes::Point) {
            while (i < words.size() && IsOption(words[i])) step.options += ParseOption(step.name, words[i++]);
        }
        steps.push_back(step);
    }
    return steps;
}

std::string StepsHelp() {
    std::string out;
    for (const StepWord &step : kSteps) out += std::string("  ") + step.name + " " + step.help + "\n";
    return out + "\nAdjustments: " + AdjustmentNames() + ".\n";
}

}    // namespace zkey
