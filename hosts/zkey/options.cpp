#include "hosts/zkey/options.h"

#include <array>

#include "hosts/zkey/colours.h"
#include "hosts/zkey/failure.h"
#include "hosts/zkey/properties.h"
#include "hosts/zkey/text.h"

namespace zkey {
namespace {

using Value = const std::string &;

struct Option {
    const char *name;
    const char *brief;    ///< one letter with its dash, or nothing
    bool takesValue;
    void (*apply)(KeyCommand &, Value);
};

void SetAlpha(KeyCommand &c, Value v) {
    if (SameWord(v, "straight")) {
        c.alpha = AlphaChoice::Straight;
    } else if (SameWord(v, "premultiplied")) {
        c.alpha = AlphaChoice::Premultiplied;
    } else {
        FailUsage("--alpha: \"" + v + "\" is neither straight nor premultiplied");
    }
}

void AddProp(KeyCommand &c, Value v) {
    const std::size_t equals = v.find('=');
    if (equals == std::string::npos || equals == 0) FailUsage("--prop " + v + ": give NAME=VALUE, as process.threads=4");
    CheckProperty("--prop", v.substr(0, equals), v.substr(equals + 1));
    c.props.emplace_back(v.substr(0, equals), v.substr(equals + 1));
}

Borders ParseBorders(const char *name, Value v) {
    std::array<int32_t, 4> n{};
    std::size_t at = 0;
    for (std::size_t i = 0; i < 4; ++i) {
        const std::size_t end = i < 3 ? v.find(',', at) : v.size();
        if (end == std::string::npos || !ParseWhole(std::string_view(v).substr(at, end - at), n[i]) || n[i] < 0 ||
            n[i] > 32768) {
            FailUsage(std::string(name) + ": \"" + v +
                      "\": give pixels at the left, top, right and bottom border, as 16,0,16,0");
        }
        at = end + 1;
    }
    return {n[0], n[1], n[2], n[3]};
}

void SetFrames(KeyCommand &c, Value v) {
    int32_t count = 0;
    if (!ParseWhole(v, count) || count < 1) FailUsage("--frames: \"" + v + "\" is no number of frames");
    c.frames = count;
}

constexpr std::array<Option, 30> kOptions = {{
    {"--output", "-o", true, [](KeyCommand &c, Value v) { c.output = v; }},
    {"--format", "-f", true, [](KeyCommand &c, Value v) { c.format = v; }},
    {"--codec", "", true, [](KeyCommand &c, Value v) { c.codec = v; }},
    {"--raw", "", true, [](KeyCommand &c, Value v) { c.raw = ParseRawSpec(v); }},
    {"--color", "-c", true, [](KeyCommand &c, Value v) { c.key.AddColour(v); }},
    {"--colour", "", true, [](KeyCommand &c, Value v) { c.key.AddColour(v); }},
    {"--tolerance", "-t", true, [](KeyCommand &c, Value v) { c.key.SetTolerance(v); }},
    {"--softness", "-s", true, [](KeyCommand &c, Value v) { c.key.SetSoftness(v); }},
    {"--reverse", "", false, [](KeyCommand &c, Value) { c.key.SetReverse(); }},
    {"--spill", "", true, [](KeyCommand &c, Value v) { c.key.SetSpill(v); }},
    {"--type", "", true, [](KeyCommand &c, Value v) { c.key.SetType(v); }},
    {"--set", "", true, [](KeyCommand &c, Value v) { c.key.SetField(v); }},
    {"--over", "", true, [](KeyCommand &c, Value v) { c.over = v; }},
    {"--key", "", true, [](KeyCommand &c, Value v) { c.keyFile = v; }},
    {"--save-key", "", true, [](KeyCommand &c, Value v) { c.saveKey = v; }},
    {"--garbage", "", true, [](KeyCommand &c, Value v) { c.garbage = ParseBorders("--garbage", v); }},
    {"--size", "", true, [](KeyCommand &c, Value v) { c.shape.size = ParseSize(v); }},
    {"--fit", "", true, [](KeyCommand &c, Value v) { c.shape.fit = ParseFit(v); }},
    {"--crop", "", true, [](KeyCommand &c, Value v) { c.shape.crop = ParseBorders("--crop", v); }},
    {"--rotate", "", true, [](KeyCommand &c, Value v) { c.shape.turn = Then(c.shape.turn, ParseRotation(v)); }},
    {"--mirror", "", true, [](KeyCommand &c, Value v) { c.shape.turn = Then(c.shape.turn, ParseMirror(v)); }},
    {"--scaling", "", true, [](KeyCommand &c, Value v) { c.shape.scaling = ParseScaling(v); }},
    {"--matte", "", false, [](KeyCommand &c, Value) { c.matte = true; }},
    {"--alpha", "", true, SetAlpha},
    {"--exact", "", false, [](KeyCommand &c, Value) { c.exact = true; }},
    {"--prop", "", true, AddProp},
    {"--quiet", "-q", false, [](KeyCommand &c, Value) { c.quiet = true; }},
    {"--no-audio", "", false, [](KeyCommand &c, Value) { c.audio = false; }},
    {"--frames", "", true, SetFrames},
    {"--help", "-h", false, [](KeyCommand &c, Value) { c.help = true; }},
}};

const Option *Find(const std::string &name) {
    for (const Option &o : kOptions) {
        if (name == o.name || (o.brief[0] != '\0' && name == o.brief)) return &o;
    }
    return nullptr;
}

void Check(const KeyCommand &c) {
    if (!c.keyFile.empty() && !c.key.IsUntouched()) {
        FailUsage("--key: the options of the key (-c, -t, -s, --reverse, --spill, --type, --set) do not go with a saved key");
    }
    const bool onlySave = c.output.empty() && !c.saveKey.empty();
    if (c.input.empty() && !(onlySave && (!c.keyFile.empty() || !c.key.NeedsScreen()))) {
        FailUsage("no input: zkey key INPUT -o OUTPUT");
    }
    if (c.output.empty() && !onlySave) FailUsage("no output: zkey key INPUT -o OUTPUT");
    if (!c.shape.fit.empty() && !c.shape.size.Given()) FailUsage("--fit needs --size");
    if (c.matte && !c.over.empty()) FailUsage("--matte and --over exclude each other");
    if (c.alpha != AlphaChoice::ByContainer && (c.matte || !c.over.empty())) {
        FailUsage("--alpha: with --matte or --over the output has no alpha");
    }
}

}    // namespace

const std::string *KeyCommand::Prop(std::string_view name) const {
    const std::string *found = nullptr;
    for (const auto &p : props) {
        if (SameWord(p.first, name)) found = &p.second;
    }
    return found;
}

KeyCommand ParseKeyCommand(const std::vector<std::string> &arguments) {
    KeyCommand command;
    bool onlyNames = false;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        std::string name = arguments[i];
        if (onlyNames || name == "-" || !name.starts_with('-')) {
            if (!command.input.empty()) FailUsage("one input only: \"" + command.input + "\" or \"" + name + "\"");
            command.input = name;
            continue;
        }
        if (name == "--") {
            onlyNames = true;
            continue;
        }
        // --name=value; the value itself may hold further signs.
        std::optional<std::string> value;
        if (const std::size_t equals = name.find('='); name.starts_with("--") && equals != std::string::npos) {
            value = name.substr(equals + 1);
            name.resize(equals);
        }
        const Option *option = Find(name);
        if (option == nullptr) FailUsage("unknown option " + name + "; zkey key --help lists them");
        if (!option->takesValue && value) FailUsage(name + " takes no value");
        if (option->takesValue && !value) {
            if (i + 1 == arguments.size()) FailUsage(name + " needs a value");
            value = arguments[++i];
        }
        option->apply(command, value.value_or(""));
        if (command.help) return command;
    }
    Check(command);
    return command;
}

}    // namespace zkey
