#include <algorithm>

#include "hosts/zkey/arguments.h"
#include "hosts/zkey/edit_command.h"
#include "hosts/zkey/edit_steps.h"
#include "hosts/zkey/help.h"
#include "hosts/zkey/key_editor.h"
#include "hosts/zkey/key_words.h"
#include "hosts/zkey/obstacles.h"
#include "hosts/zkey/pipe.h"
#include "hosts/zkey/still.h"
#include "hosts/zkey/text.h"

namespace zkey {
namespace {

struct DetectCommand {
    StillChoice still;
    std::string options;
    std::string saveKey;
    std::string preview;
    std::string blocksPicture;
    bool help = false;
};

/// The library's name of an option that it reads itself.
std::string LibraryName(const std::string &option, const std::string &value) {
    int32_t whole = 0;
    double real = 0;
    if (option == "--type") {
        if (!SameWord(value, "RGB") && !SameWord(value, "HLS") && !SameWord(value, "YUV")) {
            FailUsage("--type: \"" + value + "\" is none of RGB, HLS, YUV");
        }
        return "type";
    }
    if (option == "--key-diff") {
        if (!ParseReal(value, real)) FailUsage("--key-diff: \"" + value + "\" is no number of 0 or more");
        return "key_diff";
    }
    const bool known = option == "--blocks" || option == "--threshold" || option == "--max-keys";
    if (!known) return {};
    if (!ParseWhole(value, whole) || whole < (option == "--threshold" ? 0 : 1)) {
        FailUsage(option + ": \"" + value + "\" is no such number");
    }
    return option == "--max-keys" ? "max_keys" : option.substr(2);
}

DetectCommand Parse(const std::vector<std::string> &arguments) {
    DetectCommand c;
    ArgumentWalk walk(arguments);
    while (walk.Next()) {
        const std::string name = walk.Word();
        if (!walk.IsOption()) {
            if (!c.still.input.empty()) FailUsage("one input only: \"" + c.still.input + "\" or \"" + name + "\"");
            c.still.input = name;
        } else if (name == "--help" || name == "-h") {
            c.help = true;
            return c;
        } else {
            constexpr const char *kNames[] = {"--at",       "--frame",     "--raw",           "--type",
                                              "--blocks",   "--threshold", "--max-keys",      "--key-diff",
                                              "--save-key", "--preview",   "--blocks-picture"};
            if (std::find(std::begin(kNames), std::end(kNames), name) == std::end(kNames)) {
                FailUsage("unknown option " + name + "; zkey detect --help lists them");
            }
            const std::string value = walk.Value();
            if (TakeStillOption(name, value, c.still)) continue;
            if (name == "--save-key") c.saveKey = value;
            if (name == "--preview") c.preview = value;
            if (name == "--blocks-picture") c.blocksPicture = value;
            const std::string library = LibraryName(name, value);
            if (!library.empty()) c.options += OptionPair(library, value) + " ";
        }
    }
    if (c.still.input.empty()) FailUsage("no input: zkey detect INPUT");
    for (const std::string &written : {c.saveKey, c.preview, c.blocksPicture}) {
        if (!written.empty() && WouldOverwrite(written, c.still.input)) FailUsage(written + " would overwrite the input");
    }
    return c;
}

void Require(const EditResult &result, const std::string &what) {
    if (FAILED(result.status)) Fail(what + ": " + StatusText(result.status));
}

}    // namespace

ExitStatus RunDetectCommand(const std::vector<std::string> &arguments) {
    const DetectCommand c = Parse(arguments);
    if (c.help) {
        PrintOut(DetectHelp());
        return kExitDone;
    }
    Keyer keyer;
    const Still still = ReadStill(keyer, c.still);
    KeyEditor editor(keyer, still.frame.get());
    if (!c.blocksPicture.empty()) {
        const EditResult blocks = editor.Detect(c.options + "show_blocks=true");
        Require(blocks, "cannot detect");
        const Image picture = Keyer::Opaque(blocks.picture.get(), still.info.width, still.info.height);
        WriteStill(keyer, c.blocksPicture, picture.View(), Finish::Straight, "", still.info);
    }
    const EditResult found = editor.Detect(c.options + "show_blocks=false");
    const CHROMA_KEY_RAW key = editor.Key();
    // Without a colour found there is nothing to smooth, and a picture too small for it is no failure.
    if (key.nKeysUsed == 0)
        Fail(c.still.input + ": no green or blue area found that is flat enough; try --threshold or --blocks");
    PrintOut(RawKeyText(key) + "\n");
    if (!c.preview.empty()) {
        Require(found, "cannot show the key");
        const Ref<IZFrame> frame = Keyer::FrameOf(found.picture.get());
        WriteStill(keyer, c.preview, Keyer::View(frame.get(), still.info.width, still.info.height), Finish::Straight, "",
                   still.info);
    }
    if (!c.saveKey.empty()) {
        keyer.TakeKey(editor.Object());
        keyer.SaveKey(c.saveKey);
    }
    return kExitDone;
}

}    // namespace zkey
