#include "hosts/zkey/job.h"

#include <algorithm>
#include <deque>
#include <exception>
#include <mutex>
#include <thread>

#include "hosts/zkey/channel.h"
#include "hosts/zkey/failure.h"
#include "hosts/zkey/media.h"
#include "hosts/zkey/obstacles.h"
#include "hosts/zkey/padding.h"
#include "hosts/zkey/plugin_door.h"
#include "hosts/zkey/progress.h"
#include "hosts/zkey/properties.h"
#include "hosts/zkey/screen_guess.h"
#include "hosts/zkey/screen_samples.h"
#include "hosts/zkey/stored_props.h"
#include "hosts/zkey/system.h"
#include "hosts/zkey/text.h"

namespace zkey {
namespace {

/// A frame on its way, with the time at which it is shown.
struct Passage {
    Ref<IZFrame> frame;
    int64_t time = 0;
    std::optional<Borders> borders = {};    ///< left unkeyed, counted from the edges of the frame
};

constexpr std::size_t kFramesBetween = 3;    // enough to even out a slow frame; a frame can have 33 MB

/// The smallest block that the library keys.
constexpr int32_t kLeastExactWidth = 8;

int32_t GivenInverse(const KeyOptions &key) {
    int32_t value = 0;
    for (const FieldSetting &f : key.fields) {
        if (SameWord(f.first, "nInverseKey")) value = f.second;
    }
    return value;
}

class Job {
public:
    explicit Job(const KeyCommand &command) : m_command(command), m_reader(OpenReader(command)) {
        m_info = m_reader->Info();
        RequireFits(command.input, m_info.width, m_info.height);
        RequireNothingOverwritten();
        if (IsStill(command.output, command.format)) m_limit = 1;
        if (command.frames > 0 && m_limit == 0) m_limit = command.frames;
        RequirePictureWithin(command.garbage.value_or(Borders{}));
        SetUpKeyer();
        SetUpShape({m_info.width, m_info.height});
    }

    ExitStatus Run() {
        std::optional<Passage> first = NextFrame();
        if (!first) {
            if (Interrupted()) return kExitInterrupted;
            Fail(m_command.input + (m_command.raw ? " is empty" : m_info.still ? " is damaged" : " holds no picture"));
        }
        SetUpKey(*first);
        if (!m_command.output.empty()) SetUpOutput();
        if (!m_assumed.empty() && !m_command.quiet) Note(m_assumed);
        if (m_command.output.empty()) return kExitDone;
        Work(std::move(*first));
        return Report();
    }

private:
    void RequireNothingOverwritten() const {
        const KeyCommand &c = m_command;
        const auto check = [](const char *what, const std::string &written, const char *of, const std::string &read) {
            if (WouldOverwrite(written, read)) FailUsage(std::string(what) + " would overwrite the " + of + " " + read);
        };
        check("the output", c.output, "input", c.input);
        check("the output", c.output, "background", c.over);
        check("the output", c.output, "key", c.keyFile);
        check("--save-key", c.saveKey, "input", c.input);
        check("--save-key", c.saveKey, "background", c.over);
        if (!c.saveKey.empty() && (c.saveKey == c.output || SameFile(c.saveKey, c.output))) {
            FailUsage("the output and the saved key cannot both be " + c.output);
        }
    }

    void RequirePictureWithin(const Borders &b) const {
        if (b.left + b.right < m_info.width && b.top + b.bottom < m_info.height) return;
        const auto text = [](int n) { return std::to_string(n); };
        FailUsage("--garbage " + text(b.left) + "," + text(b.top) + "," + text(b.right) + "," + text(b.bottom) +
                  " leaves nothing of the picture, which has " + text(m_info.width) + "x" + text(m_info.height) +
                  "; the order is left, top, right, bottom");
    }

    /// Frames are as large as `padded`; what comes out has the size in the shape.
    void SetUpShape(PictureSize padded) {
        const std::optional<Turn> display = TurnOfDisplay(m_info.displayMatrix);
        m_shape =
            PlanShape(m_command.shape, {m_info.width, m_info.height}, padded, m_info.pixelAspect, display.value_or(Turn{}));
        RequireFits("the result", m_shape.width, m_shape.height);
    }

    /// The source as the writer sees it. What is no turn by quarters stays with the players.
    SourceInfo Result() const {
        SourceInfo info = m_info;
        info.width = m_shape.width;
        info.height = m_shape.height;
        info.pixelAspect = m_shape.pixelAspect;
        if (TurnOfDisplay(info.displayMatrix)) info.displayMatrix.clear();
        return info;
    }

    void NoteStored() {
        auto kept = m_keyer.Props();
        // This one is set in any case.
        std::erase_if(kept,
                      [&](const auto &p) { return SameWord(p.first, "output.thread") || m_command.Prop(p.first) != nullptr; });
        if (const std::string line = StoredInForce(kept); !line.empty()) Note(line);
    }

    void SetUpKeyer() {
        if (!m_command.quiet) NoteStored();
        if (!m_command.keyFile.empty()) m_loaded = m_keyer.LoadKey(m_command.keyFile, m_command.quiet);
        // This program overlaps reading, keying and writing by itself, and wants each frame's own status.
        m_keyer.SetProp("output.thread", "false");
        int32_t threads = 2;
        if (!m_command.exact) {
            threads = std::clamp(static_cast<int32_t>(std::thread::hardware_concurrency()), 2, 16);
            // With several threads the engine inverts the matte twice, with one it does so once.
            const int32_t inverse = m_loaded ? m_loaded->nInverseKey : GivenInverse(m_command.key);
            if ((inverse & 1) != 0) threads = 1;
            if (threads == 1 || !StoredProperty("process.threads")) {
                m_keyer.SetProp("process.threads", std::to_string(threads));
            }
        }
        for (const auto &p : m_command.props) m_keyer.SetProp(p.first, p.second);
        if (const auto set = m_keyer.Prop("process.threads")) ParseWhole(*set, threads);
        if (threads < 1) FailUsage("--prop process.threads: give 1 to 16");
        m_threads = std::min(threads, 16);
        if (!m_command.exact) m_borders = BordersFromText(m_keyer.Prop("keying.borders").value_or(""));
        if (m_command.exact && (m_info.width < kLeastExactWidth || m_info.height < m_threads)) {
            Fail("--exact: the size " + std::to_string(m_info.width) + "x" + std::to_string(m_info.height) +
                 " is too small, the engine keys blocks of " + std::to_string(kLeastExactWidth) + " pixels and at least " +
                 std::to_string(m_threads) + " rows");
        }
    }

    std::optional<Passage> NextFrame() {
        if (!m_ahead.empty()) {
            Passage next = std::move(m_ahead.front());
            m_ahead.pop_front();
            return next;
        }
        if (m_limit > 0 && m_read == m_limit) return std::nullopt;
        ++m_read;
        return Fetch(*m_reader);
    }

    std::optional<Passage> Fetch(MediaReader &reader) {
        Arrival arrival;
        if (Interrupted() || !reader.Next(arrival)) return std::nullopt;
        if (m_fetched++ == 0) m_info.scan = arrival.scan;
        PictureSize size{m_info.width, m_info.height};
        if (!m_command.exact)
            size = PaddedSize(m_info.width, m_info.height, m_threads, IsInterlaced(arrival.scan), arrival.fcc);
        std::optional<Borders> borders;
        if (m_borders)
            borders = PaddedBorders(*m_borders, {m_info.width, m_info.height}, m_threads, IsInterlaced(arrival.scan), size);
        const Z_VID_PROPS props = DescribeFrame(arrival.fcc, size.width, size.height, arrival.scan, m_info.rate.Value());
        uint8_t *pixels = nullptr;
        Passage passage{m_keyer.NewFrame(props, pixels), arrival.time, borders};
        reader.Store(pixels, props);
        RepeatEdges(pixels, props, m_info.width, m_info.height);
        Sound sound;
        reader.TakeSound(sound);
        GiveSound(passage.frame.get(), sound);
        return passage;
    }

    void SetUpKey(const Passage &first) {
        std::vector<ScreenKey> screen;
        if (!m_loaded && m_command.key.NeedsScreen()) screen = FindScreen(first);
        m_keyer.SetKey(m_loaded ? *m_loaded : BuildKey(m_command.key, screen));
        if (!m_command.saveKey.empty()) m_keyer.SaveKey(m_command.saveKey);
    }

    /// The first picture and others, brought to 4 bytes a pixel.
    std::vector<Ref<IZFrame>> ScreenPictures(const Passage &first) {
        std::vector<Ref<IZFrame>> out{m_keyer.Convert(first.frame.get())};
        const int64_t count = m_limit > 0 && (m_info.frames == 0 || m_limit < m_info.frames) ? m_limit : m_info.frames;
        if (count > 0 && CanBeReopened(m_command)) {
            const std::unique_ptr<MediaReader> aside = OpenReader(m_command);
            for (const int64_t at : SpreadPictures(count)) {
                const auto picture = FetchAside(*aside, at);
                if (!picture) break;
                out.push_back(m_keyer.Convert(picture->frame.get()));
            }
            return out;
        }
        while (static_cast<int64_t>(out.size()) < kFirstPictures) {
            auto next = m_limit == 0 || m_read < m_limit ? Fetch(*m_reader) : std::nullopt;
            if (!next) break;
            ++m_read;
            out.push_back(m_keyer.Convert(next->frame.get()));
            m_ahead.push_back(std::move(*next));
        }
        return out;
    }

    /// What cannot be read here is told when its turn comes.
    std::optional<Passage> FetchAside(MediaReader &reader, int64_t picture) {
        try {
            return reader.JumpTo(picture) ? Fetch(reader) : std::nullopt;
        } catch (const Failure &) {
            return std::nullopt;
        }
    }

    std::vector<ScreenKey> FindScreen(const Passage &first) {
        const std::vector<Ref<IZFrame>> pictures = ScreenPictures(first);
        std::vector<ImageView> views;
        for (const Ref<IZFrame> &p : pictures) {
            const ImageView whole = Keyer::View(p.get(), m_info.width, m_info.height);
            views.push_back(Inside(whole, m_command.garbage.value_or(Borders{})));
        }
        const eCK_Type type = m_command.key.type.value_or(kDefaultKeyType);
        const auto guess = GuessScreen(views, type);
        if (!guess) {
            Fail(
                "no key given, and no green or blue screen found at the border of the pictures; name its colour with "
                "--color, or see what zkey detect finds in the whole picture");
        }
        if (!guess->doubt.empty()) {
            Fail("no key given, and the border of the pictures does not look like a " + guess->name +
                 " screen: " + guess->doubt + "; if it is one, name its colour with --color, for instance " +
                 KeyText(m_command.key, guess->parts));
        }
        m_assumed = "no colour given, assumed a " + guess->name + " screen by a look at the border; the key is " +
                    KeyText(m_command.key, guess->parts);
        return guess->parts;
    }

    Finish WantedFinish() const {
        if (m_command.matte) return Finish::Matte;
        if (!m_command.over.empty()) return Finish::Over;
        switch (m_command.alpha) {
            case AlphaChoice::Straight:
                return Finish::Straight;
            case AlphaChoice::Premultiplied:
                return Finish::Premultiplied;
            default:
                return NaturalAlpha(m_command.output, m_command.format);
        }
    }

    void SetUpOutput() {
        m_finish = WantedFinish();
        if (m_finish == Finish::Over) m_background = OpenBackground(m_command.over, m_shape.width, m_shape.height, m_keyer);
        if (m_limit == 1 && IsStill(m_command.output, m_command.format) && !m_info.still && m_command.frames != 1 &&
            !m_command.quiet) {
            Note(m_command.output +
                 " is one picture, so only the first frame is keyed; a name with %04d in it makes a sequence");
        }
        const bool isNew = !Exists(m_command.output);
        try {
            m_writer = OpenWriter({m_command.output, m_command.format, m_command.codec, m_finish, m_command.quiet, Result()});
        } catch (const Failure &) {
            if (isNew && IsFile(m_command.output)) RemoveFile(m_command.output);
            throw;
        }
    }

    /// Three threads in a row. The first failure stops all of them and is thrown at the end.
    void Work(Passage first) {
        const bool show = !m_command.quiet && ErrorIsTerminal();
        m_progress.emplace(show, m_limit > 0 ? m_limit : m_info.frames);
        std::thread reading([&] { Guarded([&] { ReadAll(std::move(first)); }); });
        std::thread writing([&] { Guarded([&] { WriteAll(); }); });
        Guarded([&] { KeyAll(); });
        m_keyed.Close();
        reading.join();
        writing.join();
        if (m_failure) {
            KeepOrRemove();
            std::rethrow_exception(m_failure);
        }
        try {
            m_writer->Close();
        } catch (const Failure &) {
            RemoveOutput();
            throw;
        }
    }

    /// Pictures that were keyed before the input failed are worth keeping; what could not be written is of no use.
    void KeepOrRemove() {
        if (m_writeFailed || m_progress->Frames() == 0) return RemoveOutput();
        try {
            m_writer->Close();
            Note(m_command.output + " holds the " + std::to_string(m_progress->Frames()) + " frames before the failure");
        } catch (const Failure &) {
            RemoveOutput();
        }
    }

    void RemoveOutput() {
        const std::string unfinished = m_writer->Unfinished();
        m_writer.reset();
        if (!IsFile(unfinished)) return;
        RemoveFile(unfinished);
        Note(unfinished + " could not be completed and is removed" +
             (unfinished == m_command.output ? "" : "; the pictures before it stay"));
    }

    template <class Body>
    void Guarded(Body body) {
        try {
            body();
        } catch (...) {
            const std::lock_guard lock(m_failureLock);
            if (!m_failure) m_failure = std::current_exception();
            m_arrived.Cancel();
            m_keyed.Cancel();
        }
    }

    void ReadAll(Passage first) {
        std::optional<Passage> next(std::move(first));
        while (next && m_arrived.Push(std::move(*next))) next = NextFrame();
        m_arrived.Close();
    }

    void KeyAll() {
        std::deque<int64_t> times;
        const auto deliver = [&](Ref<IZFrame> keyed) {
            const int64_t time = times.front();
            times.pop_front();
            return m_keyed.Push({std::move(keyed), time, {}});
        };
        while (std::optional<Passage> next = m_arrived.Pop()) {
            times.push_back(next->time);
            if (const auto &b = next->borders) {
                m_keyer.SetProp("keying.borders", std::to_string(b->left) + " " + std::to_string(b->top) + " " +
                                                      std::to_string(b->right) + " " + std::to_string(b->bottom));
            }
            Ref<IZFrame> keyed = m_keyer.Key(next->frame.get());
            if (keyed && !deliver(std::move(keyed))) return;
        }
        Ref<IZFrame> last = m_keyer.Drain();
        if (last && !times.empty()) deliver(std::move(last));
    }

    void WriteAll() {
        Image finished;
        m_writeFailed = true;
        while (std::optional<Passage> next = m_keyed.Pop()) {
            m_writer->PutSound(SoundOf(next->frame.get()));
            if (m_command.garbage) {
                Keyer::ClearBorders(next->frame.get(), m_info.width, m_info.height, *m_command.garbage);
            }
            const double seconds = static_cast<double>(next->time) * m_info.timeBase.Value();
            next->frame = Shaped(std::move(next->frame));
            const ImageView keyed = Keyer::View(next->frame.get(), m_shape.width, m_shape.height);
            if (m_finish == Finish::Premultiplied) {
                m_writer->Write(keyed, next->time);
            } else {
                FinishPicture(m_finish, keyed, m_background ? m_background->At(seconds) : ImageView{}, finished);
                m_writer->Write(finished.View(), next->time);
            }
            m_progress->Frame();
        }
        m_writeFailed = false;
    }

    Ref<IZFrame> Shaped(Ref<IZFrame> keyed) {
        if (!m_shape.changes) return keyed;
        Z_AV_PROPS props{};
        if (FAILED(keyed->FrameAVPropsGet(&props))) Fail("cannot read the keyed frame");
        SetUpShape({props.vidProps.nWidth, std::abs(props.vidProps.nHeight)});
        return Keyer::Reshape(std::move(keyed), m_shape);
    }

    ExitStatus Report() {
        m_progress->Done(m_command.output);
        if (!Interrupted()) {
            NoteDamage();
            return kExitDone;
        }
        if (!m_command.quiet) {
            Note("stopped after " + std::to_string(m_progress->Frames()) + " frames; " + m_command.output +
                 " is complete up to there");
        }
        return kExitInterrupted;
    }

    /// Many kinds of clips that are cut off just end early. What a clip says of itself need not be exact.
    void NoteDamage() const {
        const int64_t lost = m_reader->Lost();
        if (lost > 0) {
            Note(m_command.input + ": " + std::to_string(lost) +
                 (lost == 1 ? " picture is damaged and left out" : " pictures are damaged and left out"));
        }
        const bool steady = int64_t{m_info.timeBase.num} * m_info.rate.num == int64_t{m_info.timeBase.den} * m_info.rate.den;
        const int64_t said = m_info.frames;
        const int64_t came = m_progress->Frames() + lost;
        if (m_limit > 0 || !steady || said - came <= std::max<int64_t>(2, said / 20)) return;
        Note(m_command.input + " says that it has about " + std::to_string(said) + " frames, but " +
             std::to_string(came - lost) + " came; it may be cut off");
    }

    const KeyCommand &m_command;
    std::unique_ptr<MediaReader> m_reader;
    SourceInfo m_info;
    Keyer m_keyer;
    std::optional<CHROMA_KEY_RAW> m_loaded;    ///< a saved key
    Shape m_shape;                             ///< of the result
    std::optional<Borders> m_borders;          ///< keying.borders as the user has it
    int32_t m_threads = 2;
    int64_t m_limit = 0;
    int64_t m_read = 0;
    int64_t m_fetched = 0;
    std::deque<Passage> m_ahead;    ///< read to look for the screen, still to be keyed
    std::string m_assumed;          ///< what the user is told about a key that was not given
    Finish m_finish = Finish::Straight;
    std::unique_ptr<Background> m_background;
    std::unique_ptr<MediaWriter> m_writer;
    std::optional<Progress> m_progress;
    Channel<Passage> m_arrived{kFramesBetween};
    Channel<Passage> m_keyed{kFramesBetween};
    std::mutex m_failureLock;
    std::exception_ptr m_failure;
    bool m_writeFailed = false;    ///< while pictures are written, and for good when that failed
};

}    // namespace

ExitStatus RunKeyCommand(const KeyCommand &command) {
    if (!command.input.empty()) return Job(command).Run();
    // Nothing but a key to be saved.
    Keyer keyer;
    keyer.SetKey(command.keyFile.empty() ? BuildKey(command.key, {}) : keyer.LoadKey(command.keyFile, command.quiet));
    keyer.SaveKey(command.saveKey);
    return kExitDone;
}

}    // namespace zkey
