#include "hosts/zkey/edit_command.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <optional>

#include "hosts/zkey/arguments.h"
#include "hosts/zkey/edit_steps.h"
#include "hosts/zkey/help.h"
#include "hosts/zkey/key_editor.h"
#include "hosts/zkey/key_words.h"
#include "hosts/zkey/obstacles.h"
#include "hosts/zkey/pipe.h"
#include "hosts/zkey/progress.h"
#include "hosts/zkey/still.h"
#include "hosts/zkey/system.h"
#include "hosts/zkey/text.h"

namespace zkey {
namespace {

constexpr std::size_t kLongestLine = 4096;
constexpr int32_t kMostEntries = 16;

struct EditCommand {
    StillChoice still;
    std::string keyFile;
    std::string background;
    std::string script;    ///< a file, or empty
    std::vector<std::string> words;
    bool json = false;
    bool help = false;
};

EditCommand Parse(const std::vector<std::string> &arguments) {
    EditCommand c;
    ArgumentWalk walk(arguments);
    while (walk.Next()) {
        const std::string name = walk.Word();
        if (!walk.IsOption()) {
            if (c.still.input.empty()) {
                c.still.input = name;
            } else {
                c.words.push_back(name);
            }
        } else if (name == "--help" || name == "-h") {
            c.help = true;
            return c;
        } else if (name == "--json") {
            walk.NoValue();
            c.json = true;
        } else if (name == "--key") {
            c.keyFile = walk.Value();
        } else if (name == "--background") {
            c.background = walk.Value();
        } else if (name == "--script") {
            c.script = walk.Value();
        } else if (name == "--at" || name == "--frame" || name == "--raw") {
            TakeStillOption(name, walk.Value(), c.still);
        } else {
            FailUsage("unknown option " + name + "; zkey edit --help lists them");
        }
    }
    if (c.still.input.empty()) FailUsage("no input: zkey edit INPUT STEP...");
    if (!c.script.empty() && !c.words.empty()) FailUsage("--script and steps on the command line exclude each other");
    if (c.still.input == "-" && (c.script == "-" || (c.script.empty() && c.words.empty()))) {
        FailUsage("standard input cannot bring both the picture and the steps");
    }
    return c;
}

std::string Number(const char *format, double value) {
    char text[64];
    std::snprintf(text, sizeof text, format, value);
    return text;
}

std::string Plural(int32_t count, const char *word) { return std::to_string(count) + " " + word + (count == 1 ? "" : "s"); }

class Session {
public:
    explicit Session(const EditCommand &command) : m_command(command) {
        std::optional<CHROMA_KEY_RAW> loaded;
        if (!command.keyFile.empty()) loaded = m_keyer.LoadKey(command.keyFile, false);
        m_still = ReadStill(m_keyer, command.still);
        m_editor.emplace(m_keyer, m_still.frame.get());
        if (loaded) {
            TellLoaded(*loaded);
            RestoreSoftness(*loaded);
        }
        m_empty = EmptyEntries(m_editor->Key());
        if (m_empty > 0) Note(EmptyText(m_empty));
    }

    ExitStatus Run() {
        if (!m_command.words.empty()) return RunAll(ParseSteps(m_command.words));
        if (m_command.script.empty() || m_command.script == "-") return RunInput();
        PipeReader script(m_command.script);
        std::vector<EditStep> steps;
        for (std::string line; script.Line(line, kLongestLine);) {
            for (EditStep &step : ParseSteps(WordsOf(line))) steps.push_back(std::move(step));
        }
        return RunAll(steps);
    }

private:
    /// Stops with the first step that is refused.
    ExitStatus RunAll(const std::vector<EditStep> &steps) {
        for (const EditStep &step : steps) {
            if (FAILED(RunStep(step))) return kExitFailed;
        }
        return kExitDone;
    }

    /// Goes on after a step that is refused: whoever types the steps sees it.
    ExitStatus RunInput() {
        const bool prompt = !m_command.json && InputIsTerminal();
        PipeReader input("-");
        ExitStatus status = kExitDone;
        for (;;) {
            if (prompt) PrintOut("zkey> ");
            std::string line;
            if (!input.Line(line, kLongestLine)) return status;
            const std::vector<std::string> words = WordsOf(line);
            if (words.size() == 1 && (words[0] == "quit" || words[0] == "exit")) return status;
            if (words.size() == 1 && words[0] == "help") {
                PrintOut(StepsHelp());
                continue;
            }
            if (!RunLine(words) && !prompt) status = kExitFailed;
        }
    }

    bool RunLine(const std::vector<std::string> &words) {
        try {
            for (const EditStep &step : ParseSteps(words)) {
                if (FAILED(RunStep(step))) return false;
            }
            return true;
        } catch (const Failure &failure) {
            TellFailure(words.empty() ? "" : words[0], failure.what());
            return false;
        }
    }

    HRESULT RunStep(const EditStep &step) {
        const auto start = std::chrono::steady_clock::now();
        const int32_t before = ExcludeEntries(m_editor->Key());
        const EditResult result = Do(step);
        const std::chrono::duration<double, std::milli> time = std::chrono::steady_clock::now() - start;
        Tell(step, result.status, time.count());
        const CHROMA_KEY_RAW key = m_editor->Key();
        const bool full = step.op == EditOp::Exclude && result.status == S_OK && key.nKeysUsed == kMostEntries;
        if (full && ExcludeEntries(key) == before) Note("the key has 16 entries: an excluded colour fell off its end");
        if (const int32_t empty = EmptyEntries(key); empty != m_empty) {
            if (empty > m_empty) Note(EmptyText(empty));
            m_empty = empty;
        }
        return result.status;
    }

    EditResult Do(const EditStep &step) {
        const auto &p = step.place;
        switch (step.op) {
            case EditOp::Detect:
                return m_editor->Detect(step.options + "show_blocks=false");
            case EditOp::Add:
                RequireInside(step);
                return m_editor->Add(p[0], p[1], step.options);
            case EditOp::Exclude:
                RequireInside(step);
                return m_editor->Exclude(p[0], p[1], step.options);
            case EditOp::Rect:
                return m_editor->AddRect(p[0], p[1], p[2], p[3]);
            case EditOp::Set:
                return m_editor->Adjust(step.adjust, step.value);
            case EditOp::Back:
                return m_editor->Back();
            case EditOp::Forward:
                return m_editor->Forward();
            case EditOp::Reset:
                return m_editor->Reset();
            case EditOp::Preview:
                return Show(step.file, m_command.background.empty() ? Finish::Straight : Finish::Over);
            case EditOp::Matte:
                return Show(step.file, Finish::Matte);
            case EditOp::Save:
                RequireOther(step.file);
                m_keyer.TakeKey(m_editor->Object());
                m_keyer.SaveKey(step.file);
                return {};
            default:
                return {};
        }
    }

    EditResult Show(const std::string &file, Finish finish) {
        RequireOther(file);
        EditResult result = m_editor->Preview();
        if (!result.picture) Fail("there is no preview: the picture is too small to be smoothed; set Smooth=0");
        const Ref<IZFrame> frame = Keyer::FrameOf(result.picture.get());
        WriteStill(m_keyer, file, Keyer::View(frame.get(), m_still.info.width, m_still.info.height), finish,
                   m_command.background, m_still.info);
        return result;
    }

    void RequireInside(const EditStep &step) const {
        const SourceInfo &info = m_still.info;
        if (step.place[0] >= 0 && step.place[1] >= 0 && step.place[0] < info.width && step.place[1] < info.height) return;
        Fail(step.name + " " + std::to_string(step.place[0]) + "," + std::to_string(step.place[1]) +
             " lies outside of the picture, which has " + std::to_string(info.width) + "x" + std::to_string(info.height));
    }

    void RequireOther(const std::string &written) const {
        for (const std::string &read : {m_command.still.input, m_command.background}) {
            if (!read.empty() && WouldOverwrite(written, read)) Fail(written + " would overwrite " + read);
        }
    }

    void Tell(const EditStep &step, HRESULT status, double ms) {
        const CHROMA_KEY_RAW key = m_editor->Key();
        const int32_t live = std::clamp(key.nKeysUsed, 0, kMostEntries) - EmptyEntries(key);
        char code[16];
        std::snprintf(code, sizeof code, "0x%08X", static_cast<unsigned>(status));
        if (m_command.json) {
            PrintOut("{\"op\":" + JsonText(step.name) + ",\"status\":\"" + code + "\",\"ok\":" +
                     (FAILED(status) ? "false" : "true") + ",\"history\":{\"size\":" + std::to_string(m_editor->HistorySize()) +
                     ",\"position\":" + std::to_string(m_editor->HistoryPosition()) + "},\"entries\":" + std::to_string(live) +
                     ",\"key\":" + JsonText(RawKeyText(key)) + ",\"ms\":" + Number("%.3f", ms) + "}\n");
        } else if (FAILED(status)) {
            Note(step.name + ": " + StatusText(status));
        } else if (step.op == EditOp::Key) {
            PrintOut(RawKeyText(key) + "\n");
        } else {
            PrintOut(Line(step, status, live, KeyColours(key)));
        }
    }

    std::string Line(const EditStep &step, HRESULT status, int32_t live, const std::string &colours) const {
        if (!step.file.empty()) return step.name + ": " + step.file + "\n";
        std::string out = step.name + ": " + Plural(live, "colour");
        if (step.op == EditOp::Detect && live > 0) out += " near " + colours;
        if (status == S_FALSE) out += ", already covered";
        if (step.op == EditOp::Set) out += ", " + Number("%g", m_editor->Adjustment(step.adjust));
        out += "; history " + std::to_string(m_editor->HistorySize());
        if (m_editor->HistoryPosition() >= 0) out += ", at " + std::to_string(m_editor->HistoryPosition() + 1);
        return out + "\n";
    }

    void TellFailure(const std::string &op, const std::string &line) const {
        if (m_command.json) {
            PrintOut("{\"op\":" + JsonText(op) + ",\"ok\":false,\"error\":" + JsonText(line) + "}\n");
        } else {
            Note(line);
        }
    }

    void TellLoaded(const CHROMA_KEY_RAW &key) {
        const int32_t room = kMostEntries - key.nKeysUsed;
        int32_t lost = 0;
        for (int32_t i = std::max(room, 0); i < std::min(key.nKeysUsed, kMostEntries); ++i) {
            if (key.arrKeys[i].nReverseKey > 0) ++lost;
        }
        if (lost > 0) {
            Note(m_command.keyFile + " has " + std::to_string(key.nKeysUsed) +
                 " entries, which become twice as many in an edit: " + Plural(lost, "protected colour") +
                 " at the end of the key fall off");
        }
    }

    /// A saved key has the softness in its colours, but in its adjustment that of the protected ones stands in both places.
    void RestoreSoftness(const CHROMA_KEY_RAW &key) {
        const int32_t used = std::clamp(key.nKeysUsed, 0, kMostEntries);
        const auto *first = std::find_if(key.arrKeys, key.arrKeys + used,
                                         [](const SINGLE_KEY &k) { return k.nDelta != 0 && k.nReverseKey <= 0; });
        if (first != key.arrKeys + used) m_editor->Adjust(eCKA_Transparent, first->nSmoothRange / 255.0);
    }

    static std::string EmptyText(int32_t count) {
        return Plural(count, "empty place") +
               " in the key: nothing is keyed by it, until Power or ExcludePower above 0 makes a colour of it";
    }

    const EditCommand &m_command;
    Keyer m_keyer;
    Still m_still;
    std::optional<KeyEditor> m_editor;
    int32_t m_empty = 0;
};

}    // namespace

ExitStatus RunEditCommand(const std::vector<std::string> &arguments) {
    const EditCommand command = Parse(arguments);
    if (command.help) {
        PrintOut(EditHelp());
        return kExitDone;
    }
    return Session(command).Run();
}

}    // namespace zkey
