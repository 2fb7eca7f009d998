#include "hosts/zkey/audio_command.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <optional>

#include "hosts/zkey/arguments.h"
#include "hosts/zkey/help.h"
#include "hosts/zkey/obstacles.h"
#include "hosts/zkey/pipe.h"
#include "hosts/zkey/sound_file.h"
#include "hosts/zkey/sound_levels.h"
#include "hosts/zkey/system.h"
#include "hosts/zkey/text.h"

namespace zkey {
namespace {

constexpr std::size_t kMostChannels = 128;
constexpr double kMostDecibels = 200;

struct AudioCommand {
    std::string input;
    std::string output;
    std::string map;
    double gainStart = 0;
    double gainEnd = 0;
    bool json = false;
    bool help = false;
};

double ParseDecibels(const std::string &text, const std::string &whole) {
    if (text == "-inf") return -std::numeric_limits<double>::infinity();
    const std::string_view digits = std::string_view(text).substr(text.starts_with('+') ? 1 : 0);
    double value = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value, std::chars_format::fixed);
    if (error != std::errc() || end != digits.data() + digits.size() || !(value >= -kMostDecibels && value <= kMostDecibels)) {
        FailUsage("--gain: \"" + whole + "\" is no gain: give decibels from -200 to 200 or -inf, as -6, or -6:0 for a ramp");
    }
    return value;
}

void TakeGain(AudioCommand &command, const std::string &value) {
    const std::size_t colon = value.find(':');
    command.gainStart = ParseDecibels(value.substr(0, colon), value);
    command.gainEnd = colon == std::string::npos ? command.gainStart : ParseDecibels(value.substr(colon + 1), value);
}

void TakeMap(AudioCommand &command, const std::string &value) {
    std::size_t count = 0;
    for (std::size_t from = 0; from <= value.size(); ++count) {
        const std::size_t end = std::min(value.find(',', from), value.size());
        int32_t channel = 0;
        if (!ParseWhole(value.substr(from, end - from), channel) || channel < 0 || count == kMostChannels) {
            FailUsage("--map: \"" + value + "\" is no list of channels: give up to 128 numbers from 0 on, as 1,0");
        }
        from = end + 1;
    }
    command.map = value;
}

void TakeOption(AudioCommand &command, ArgumentWalk &walk) {
    const std::string name = walk.Word();
    if (name == "--gain") {
        TakeGain(command, walk.Value());
    } else if (name == "--map") {
        TakeMap(command, walk.Value());
    } else if (name == "-o" || name == "--output") {
        command.output = walk.Value();
    } else if (name == "--json") {
        walk.NoValue();
        command.json = true;
    } else if (name == "-h" || name == "--help") {
        command.help = true;
    } else {
        FailUsage("unknown option " + name + "; zkey audio --help lists them");
    }
}

AudioCommand Parse(const std::vector<std::string> &arguments) {
    AudioCommand command;
    ArgumentWalk walk(arguments);
    while (walk.Next()) {
        if (walk.IsOption()) {
            TakeOption(command, walk);
        } else if (command.input.empty()) {
            command.input = walk.Word();
        } else {
            FailUsage("two inputs: " + command.input + " and " + walk.Word());
        }
    }
    if (command.help) return command;
    if (command.input.empty()) FailUsage("no input: zkey audio INPUT");
    if (!command.output.empty()) {
        if (ExtensionOf(command.output) != ".wav") FailUsage("the output is a WAV file, so its name ends in .wav");
        if (WouldOverwrite(command.output, command.input)) {
            FailUsage("the output would overwrite the input " + command.input);
        }
    }
    return command;
}

void Require(HRESULT status, const std::string &what) {
    if (FAILED(status)) Fail(what + ": " + StatusText(status));
}

/// Samples of up to 8 bits can be stored and written as they are, and no more.
void RequireChangeable(IZFrame *frame, const AudioCommand &command) {
    Z_AV_PROPS props{};
    Require(frame->FrameAVPropsGet(&props), "cannot read the sound of " + command.input);
    const int32_t bits = props.audProps.nBitsPerSample;
    const bool changes = !command.map.empty() || command.gainStart != 0 || command.gainEnd != 0;
    if (changes && bits >= 0 && bits < kShortestSample) {
        Fail(command.input + " has samples of " + std::to_string(bits) + " bits, which the library does not change");
    }
}

Ref<IZFrame> Mapped(Ref<IZFrame> frame, const std::string &map) {
    if (map.empty()) return frame;
    Ref<IZFrame> mapped = EmptyFrame();
    Require(WideView<IZFFrame>(frame.get())->ZFAudioCopyTo(Counted(map).get(), WideView<IZFFrame>(mapped.get()).get()),
            "--map " + map);
    return mapped;
}

void Save(IZFrame *frame, const std::string &path) {
    RequireWritable(path);
    const HRESULT status = WideView<IZFFrame>(frame)->ZFAudioSaveToFile(Counted(path).get(), 0);
    if (SUCCEEDED(status)) return;
    if (IsFile(path)) RemoveFile(path);
    Fail("cannot write " + path + ": " + StatusText(status));
}

}    // namespace

ExitStatus RunAudioCommand(const std::vector<std::string> &arguments) {
    const AudioCommand command = Parse(arguments);
    if (command.help) {
        PrintOut(AudioHelp());
        return kExitDone;
    }
    Ref<IZFrame> frame = ReadSoundFile(command.input);
    RequireChangeable(frame.get(), command);
    frame = Mapped(std::move(frame), command.map);
    if (command.gainStart != 0 || command.gainEnd != 0) {
        Require(WideView<IZFFrame>(frame.get())->ZFAudioGain(nullptr, command.gainStart, command.gainEnd), "--gain");
    }
    if (!command.output.empty()) Save(frame.get(), command.output);
    const SoundLevels levels = LevelsOf(frame.get());
    PrintOut(command.json ? LevelsJson(command.input, levels) : LevelsTable(command.input, levels));
    return kExitDone;
}

}    // namespace zkey
