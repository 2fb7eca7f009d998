// zkey frame: a keyed frame stored, shown, and loaded by another process.
#include "hosts/zkey/frame_command.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "hosts/zkey/failure.h"
#include "hosts/zkey/stored_frame.h"
#include "tests/hosts/zkey/program.h"
#include "tests/hosts/zkey/scene_input.h"
#include "tests/support/child_process.h"

namespace {

using namespace zkey;

std::string Input(const Scratch &scratch) {
    scratch.Write("in.raw", Scene(96, 54, 0).pixels);
    return scratch.Path("in.raw") + " --raw RGB32:96x54 ";
}

TEST(FrameCommand, StoresAndShows) {
    const Scratch scratch;
    const Outcome saved = RunProgram(
        scratch, "frame save " + Input(scratch) + "-o " + scratch.Path("f.zf") + " --data C608=words --data long-name=more");
    EXPECT_EQ(saved.status, 0) << saved.error;
    const std::string bytes = scratch.Text("f.zf");
    EXPECT_EQ(bytes.substr(0, 4), "ZFRM");
    const Outcome shown = RunProgram(scratch, "frame show " + scratch.Path("f.zf"));
    EXPECT_EQ(shown.status, 0) << shown.error;
    EXPECT_EQ(shown.out,
              "picture: gone with the program that stored it\ntime: 0 s to 0.04 s\nsound: none\n"
              "data: C608, 5 bytes\ndata: long-name, 4 bytes\n");
    const Outcome loaded = RunProgram(scratch, "frame load " + scratch.Path("f.zf") + " -o " + scratch.Path("x.raw"));
    EXPECT_EQ(loaded.status, kExitFailed);
    EXPECT_NE(loaded.error.find("went with the program that stored it"), std::string::npos) << loaded.error;
}

// The process that holds the pixels is this test's child, the one that loads them another.
int HoldFrame(const std::vector<std::string> &args) { return RunFrameCommand(args); }
const zck::test::ChildRole kHoldFrame("hold-frame", HoldFrame);

TEST(FrameCommand, AnotherProgramLoadsWhatIsHeld) {
    const Scratch scratch;
    Input(scratch);
    const std::string file = scratch.Path("f.zf");
    zck::test::ChildProcess holder;
    ASSERT_TRUE(holder.Start("hold-frame",
                             {"save", scratch.Path("in.raw"), "--raw", "RGB32:96x54", "-o", file, "--hold", "--data", "n=1"}));
    EXPECT_EQ(holder.ReadLine(), file + " can be loaded until this program's input ends");
    const Outcome shown = RunProgram(scratch, "frame show " + file);
    EXPECT_EQ(shown.out.substr(0, 30), "picture: 96x54, 20736 bytes\nti") << shown.error;
    const Outcome loaded = RunProgram(scratch, "frame load " + file + " -o " + scratch.Path("loaded.raw"));
    EXPECT_EQ(loaded.status, 0) << loaded.error;
    EXPECT_EQ(holder.Wait(), 0);
    // The same picture by the other command.
    const Outcome keyed =
        RunProgram(scratch, "key " + Input(scratch) + "-q --prop process.threads=1 -o " + scratch.Path("keyed.raw"));
    EXPECT_EQ(keyed.status, 0) << keyed.error;
    EXPECT_EQ(scratch.Read("loaded.raw"), scratch.Read("keyed.raw"));
    EXPECT_FALSE(scratch.Read("loaded.raw").empty());
}

TEST(FrameCommand, FilesThatAreNoFrames) {
    const Scratch scratch;
    scratch.Put("text", "no frame at all");
    const Outcome none = RunProgram(scratch, "frame show " + scratch.Path("text"));
    EXPECT_EQ(none.status, kExitFailed);
    EXPECT_NE(none.error.find("is no stored frame"), std::string::npos) << none.error;
    scratch.Put("cut", std::string("ZFRM\1\0\0\0", 8));
    const Outcome cut = RunProgram(scratch, "frame show " + scratch.Path("cut"));
    EXPECT_EQ(cut.status, kExitFailed);
    EXPECT_NE(cut.error.find("is cut off"), std::string::npos) << cut.error;
    EXPECT_EQ(RunProgram(scratch, "frame show " + scratch.Path("missing")).status, kExitFailed);
}

TEST(FrameCommand, UsageIsTold) {
    const Scratch scratch;
    EXPECT_EQ(RunProgram(scratch, "frame --help").status, 0);
    EXPECT_NE(RunProgram(scratch, "frame save --help").out.find("zkey frame save"), std::string::npos);
    for (const char *words : {"frame turn x", "frame show", "frame show a b", "frame load a", "frame load a b c",
                              "frame save in -o out --matte", "frame save in -o out --data x", "frame save in --data"}) {
        EXPECT_EQ(RunProgram(scratch, words).status, kExitUsage) << words;
    }
    scratch.Put("same", "ZFRM");
    EXPECT_EQ(RunProgram(scratch, "frame load " + scratch.Path("same") + " -o " + scratch.Path("same")).status, kExitUsage);
}

}    // namespace
