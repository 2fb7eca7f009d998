// `zkey detect` and `zkey edit`, as a user and as a program runs them.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

#include "hosts/zkey/edit_steps.h"
#include "hosts/zkey/failure.h"
#include "hosts/zkey/key_options.h"
#include "hosts/zkey/key_words.h"
#include "hosts/zkey/options.h"
#include "tests/hosts/zkey/program.h"
#include "tests/scene/scene.h"

namespace {

using namespace zkey;
using Bytes = std::vector<uint8_t>;

constexpr int kWidth = 192;
constexpr int kHeight = 108;

class EditCommandTest : public testing::Test {
protected:
    void SetUp() override {
        zck::SceneParams p;
        p.width = kWidth;
        p.height = kHeight;
        p.noise = 0.5;
        Bytes clip = zck::RenderScene(p, 0).pixels;
        m_scratch.Write("in.raw", clip);
        const Bytes other(clip.size(), 0x80);
        clip.insert(clip.end(), other.begin(), other.end());
        m_scratch.Write("two.raw", clip);
        m_scratch.Write("grey.raw", other);
    }
    Outcome Run(const std::string &command, const std::string &rest, const char *input = "in.raw") {
        return RunProgram(m_scratch, command + " " + m_scratch.Path(input) + " --raw RGB32:192x108 " + rest);
    }
    Outcome Edit(const std::string &rest) { return Run("edit", rest); }
    Bytes Matte(const std::string &name) {
        const Bytes bgra = m_scratch.Read(name);
        Bytes alpha;
        for (size_t i = 0; i < bgra.size(); i += 4) alpha.push_back(bgra[i]);
        return alpha;
    }
    static size_t Lines(const std::string &text) { return static_cast<size_t>(std::count(text.begin(), text.end(), '\n')); }
    std::string Path(const std::string &name) { return m_scratch.Path(name); }

    Scratch m_scratch;
};

/// What the printed options give when `zkey key` reads them.
CHROMA_KEY_RAW FromWords(const std::string &text) {
    std::vector<std::string> arguments{"in", "-o", "out.raw"};
    for (const std::string &word : WordsOf(text.substr(0, text.find('\n')))) arguments.push_back(word);
    return BuildKey(ParseKeyCommand(arguments).key, {});
}

TEST_F(EditCommandTest, DetectionPrintsTheKeyInTheWordsOfKey) {
    const Outcome found = Run("detect", "--max-keys 3 --preview " + Path("p.raw") + " --save-key " + Path("k.xml"));
    ASSERT_EQ(found.status, kExitDone) << found.error;
    EXPECT_EQ(found.error, "");
    EXPECT_EQ(Lines(found.out), 1u);
    const CHROMA_KEY_RAW key = FromWords(found.out);
    EXPECT_EQ(key.eType, eCKT_HLS);
    EXPECT_GE(key.nKeysUsed, 1);
    EXPECT_EQ(key.nMinTransparent, 102);
    // The preview is keyed: the corner of the screen is gone, and the size is the picture's.
    const Bytes preview = m_scratch.Read("p.raw");
    ASSERT_EQ(preview.size(), size_t{4} * kWidth * kHeight);
    // The saved key is the same key.
    const Outcome again =
        RunProgram(m_scratch, "edit " + Path("in.raw") + " --raw RGB32:192x108 --key " + Path("k.xml") + " key");
    EXPECT_EQ(again.status, kExitDone) << again.error;
    EXPECT_EQ(again.out, found.out);
    // An empty place for each colour, which is told.
    EXPECT_NE(again.error.find("empty place"), std::string::npos) << again.error;
}

TEST_F(EditCommandTest, OptionsOfTheDetectionReachTheLibrary) {
    EXPECT_NE(Run("detect", "--type RGB").out.find("--type RGB"), std::string::npos);
    EXPECT_NE(Run("detect", "--type yuv --blocks 24").out.find("--type YUV"), std::string::npos);
    const Outcome none = Run("detect", "--threshold 0");
    EXPECT_EQ(none.status, kExitFailed);
    EXPECT_NE(none.error.find("flat enough"), std::string::npos) << none.error;
    EXPECT_EQ(none.out, "");
}

TEST_F(EditCommandTest, TheBlockPictureShowsWhatWasFound) {
    const Outcome found = Run("detect", "--blocks-picture " + Path("b.raw"));
    ASSERT_EQ(found.status, kExitDone) << found.error;
    const Bytes picture = m_scratch.Read("b.raw");
    ASSERT_EQ(picture.size(), size_t{4} * kWidth * kHeight);
    size_t painted = 0;
    for (size_t i = 0; i < picture.size(); i += 4) {
        EXPECT_EQ(picture[i + 3], 255);
        painted += picture[i] == 0x30 && picture[i + 1] == 0x50 && picture[i + 2] == 0x40 ? 1 : 0;
    }
    EXPECT_GT(painted, size_t{kWidth} * kHeight / 10);
}

TEST_F(EditCommandTest, PicturesAreChosenByTimeAndNumber) {
    EXPECT_EQ(Run("detect", "--frame 0", "two.raw").status, kExitDone);
    EXPECT_EQ(Run("detect", "--frame 1", "two.raw").status, kExitFailed);    // grey
    EXPECT_EQ(Run("detect", "--at 0.02", "two.raw").status, kExitDone);
    EXPECT_EQ(Run("detect", "--at 0.04", "two.raw").status, kExitFailed);
    EXPECT_NE(Run("detect", "--frame 2", "two.raw").error.find("has no picture number 2"), std::string::npos);
    EXPECT_EQ(Run("detect", "--at 1:x").status, kExitUsage);
    EXPECT_EQ(Run("detect", "--at 1 --frame 1").status, kExitUsage);
}

TEST_F(EditCommandTest, StepsOfOneCommandLineWorkOnOneKey) {
    const Outcome run = Edit(
        "detect set Power=0.2 exclude 96,54 max_keys=4 back forward reset add 2,2 type=RGB "
        "rect 1,1,9,9 key");
    ASSERT_EQ(run.status, kExitDone) << run.error;
    EXPECT_EQ(Lines(run.out), 9u);
    EXPECT_NE(run.out.find("detect: 1 colour near 32AC46; history 2\n"), std::string::npos) << run.out;
    EXPECT_NE(run.out.find("set: 1 colour, 0.2; history 3\n"), std::string::npos) << run.out;
    EXPECT_NE(run.out.find("exclude: 2 colours; history 4\n"), std::string::npos) << run.out;
    // The first step back lands on the newest saved state but one.
    EXPECT_NE(run.out.find("back: 1 colour; history 4, at 3\n"), std::string::npos) << run.out;
    EXPECT_NE(run.out.find("forward: 1 colour; history 4, at 4\n"), std::string::npos) << run.out;
    EXPECT_NE(run.out.find("reset: 0 colours; history 4\n"), std::string::npos) << run.out;
    EXPECT_NE(run.out.find("add: 1 colour; history 5\n"), std::string::npos) << run.out;
    EXPECT_NE(run.out.find("--type RGB"), std::string::npos) << run.out;
    // Nothing doubled on the way.
    EXPECT_EQ(FromWords(run.out.substr(run.out.find("--type"))).nKeysUsed, 1);
}

TEST_F(EditCommandTest, PreviewsMattesAndKeysAreWritten) {
    const Outcome run = Edit("--background red detect set Power=0.5 preview " + Path("p.raw") + " matte " + Path("m.raw") +
                             " save " + Path("k.xml"));
    ASSERT_EQ(run.status, kExitDone) << run.error;
    const Bytes matte = Matte("m.raw");
    const Bytes preview = m_scratch.Read("p.raw");
    ASSERT_EQ(matte.size(), size_t{kWidth} * kHeight);
    ASSERT_EQ(preview.size(), matte.size() * 4);
    EXPECT_EQ(matte[0], 0);
    // Screen that is gone shows the background.
    EXPECT_EQ(preview[0], 0);
    EXPECT_EQ(preview[1], 0);
    EXPECT_EQ(preview[2], 255);
    const Outcome keyed = RunProgram(m_scratch, "key " + Path("in.raw") + " --raw RGB32:192x108 -q --matte --key " +
                                                    Path("k.xml") + " -o " + Path("keyed.raw"));
    ASSERT_EQ(keyed.status, kExitDone) << keyed.error;
    EXPECT_EQ(Matte("keyed.raw")[0], 0);
}

TEST_F(EditCommandTest, ScriptsAndStandardInputBringSteps) {
    const std::string script = "# a key\ndetect max_keys=2\n\n  set 'Power'=0.25 set Smooth=0\nkey\n";
    const std::string path = m_scratch.Write("s.txt", {script.begin(), script.end()});
    const Outcome byFile = Edit("--script " + path);
    ASSERT_EQ(byFile.status, kExitDone) << byFile.error;
    EXPECT_EQ(Lines(byFile.out), 4u) << byFile.out;
    EXPECT_EQ(Edit("< " + path).out, byFile.out);
    const std::string bad = m_scratch.Write("bad.txt", {'d', 'e', 't', 'e', 'c', 't', '\n', 'f', 'l', 'y', '\n'});
    const Outcome whole = Edit("--script " + bad);
    EXPECT_EQ(whole.status, kExitUsage);
    EXPECT_EQ(whole.out, "");
    // A program goes on after a line that makes no sense.
    const Outcome line = Edit("--json < " + bad);
    EXPECT_EQ(line.status, kExitFailed);
    EXPECT_EQ(Lines(line.out), 2u);
    EXPECT_NE(line.out.find("{\"op\":\"fly\",\"ok\":false,\"error\":\"unknown step"), std::string::npos) << line.out;
}

TEST_F(EditCommandTest, JsonTellsEachStep) {
    const Outcome run = Edit("--json detect set Power=0.5 add 2,2 back");
    ASSERT_EQ(run.status, kExitDone) << run.error;
    EXPECT_EQ(Lines(run.out), 4u);
    EXPECT_EQ(run.out.find("{\"op\":\"detect\",\"status\":\"0x00000000\",\"ok\":true,\"history\":{\"size\":2,\"position\":-1},"
                           "\"entries\":1,\"key\":\"--type HLS "),
              0u)
        << run.out;
    EXPECT_NE(run.out.find("\"ms\":"), std::string::npos);
    EXPECT_NE(run.out.find("\"op\":\"back\",\"status\":\"0x00000000\",\"ok\":true,\"history\":{\"size\":4,\"position\":2}"),
              std::string::npos)
        << run.out;
}

TEST_F(EditCommandTest, MistakesAreTold) {
    const std::pair<const char *, const char *> mistakes[] = {
        {"fly", "unknown step \"fly\""},
        {"add", "add needs more"},
        {"add 5", "give a place"},
        {"rect 1,2,3", "left, top, right and bottom"},
        {"set Foo=1", "there is no adjustment \"Foo\""},
        {"set Power=x", "give NAME=NUMBER"},
        {"detect foo=1", "there is no option \"foo\""},
        {"--wrong", "unknown option --wrong"},
        {"--script s.txt detect", "exclude each other"},
    };
    for (const auto &[words, line] : mistakes) {
        const Outcome run = Edit(words);
        EXPECT_EQ(run.status, kExitUsage) << words;
        EXPECT_NE(run.error.find(line), std::string::npos) << words << ": " << run.error;
    }
    EXPECT_EQ(RunProgram(m_scratch, "edit").status, kExitUsage);
    EXPECT_EQ(RunProgram(m_scratch, "detect").status, kExitUsage);
    EXPECT_EQ(Run("detect", "--blocks 0").status, kExitUsage);
    const Outcome outside = Edit("add 500,2");
    EXPECT_EQ(outside.status, kExitFailed);
    EXPECT_NE(outside.error.find("outside of the picture, which has 192x108"), std::string::npos) << outside.error;
    EXPECT_NE(Edit("detect preview " + Path("in.raw")).error.find("would overwrite"), std::string::npos);
    EXPECT_EQ(Edit("forward").status, kExitFailed);
}

TEST_F(EditCommandTest, HelpListsTheSteps) {
    const Outcome edit = RunProgram(m_scratch, "edit --help");
    EXPECT_EQ(edit.status, kExitDone);
    for (const char *word : {"detect", "exclude", "rect", "forward", "matte", "Colors_Chroma", "--script"}) {
        EXPECT_NE(edit.out.find(word), std::string::npos) << word;
    }
    EXPECT_NE(RunProgram(m_scratch, "detect --help").out.find("--blocks-picture"), std::string::npos);
}

TEST(KeyWords, GiveTheSameKey) {
    for (const eCK_Type type : {eCKT_RGB, eCKT_HLS, eCKT_YUV}) {
        CHROMA_KEY_RAW key{};
        key.eType = type;
        key.nKeysUsed = 3;
        key.nMinTransparent = 102;
        key.nMaxTransparent = 230;
        key.nEdgesSmooth = 3;
        key.bColorCancel = 1;
        key.arrKeys[0] = {0x3FA51C, 0x0A0B0C, 26, 0, 77, 23, -19, -4, -4, 0};
        key.arrKeys[1] = {0x807060, 0x010203, 13, 5, 0, 0, 0, 0, 0, 1};
        const CHROMA_KEY_RAW back = FromWords(RawKeyText(key));
        ASSERT_EQ(back.nKeysUsed, 2) << RawKeyText(key);
        EXPECT_EQ(back.eType, type);
        EXPECT_EQ(back.nEdgesSmooth, 3);
        EXPECT_EQ(back.bColorCancel, 1);
        for (int i = 0; i < 2; ++i)
            EXPECT_EQ(std::memcmp(&back.arrKeys[i], &key.arrKeys[i], sizeof(SINGLE_KEY)), 0) << type << i;
    }
    EXPECT_EQ(RawKeyText({}), "--type Alpha");
}

}    // namespace
