// The whole program on clips: threads, pipes, what stays of them after a failure.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "hosts/zkey/failure.h"
#include "tests/hosts/zkey/program.h"
#include "tests/hosts/zkey/scene_input.h"

namespace {

using namespace zkey;
using Bytes = std::vector<uint8_t>;

TEST(Run, TheOutputThreadGivesTheSameFramesInTheSameOrder) {
    const Scratch scratch;
    Bytes clip;
    for (int i = 0; i < 5; ++i) {
        const zck::ScenePicture picture = Scene(96, 54, 7 * i);
        clip.insert(clip.end(), picture.pixels.begin(), picture.pixels.end());
    }
    scratch.Write("in.raw", clip);
    const std::string command = "key " + scratch.Path("in.raw") + " --raw RGB32:96x54 -q -o ";
    ASSERT_EQ(RunProgram(scratch, command + scratch.Path("a.raw")).status, 0);
    ASSERT_EQ(RunProgram(scratch, command + scratch.Path("b.raw") + " --prop output.thread=true").status, 0);
    EXPECT_EQ(scratch.Read("a.raw").size(), clip.size());
    EXPECT_EQ(scratch.Read("a.raw"), scratch.Read("b.raw"));
    // A clip of one frame has its only result still to come when it ends.
    ASSERT_EQ(RunProgram(scratch, command + scratch.Path("c.raw") + " --prop output.thread=true --frames 1").status, 0);
    EXPECT_EQ(scratch.Read("c.raw").size(), clip.size() / 5);
}

TEST(Run, PipesCarryClipsThrough) {
    const Scratch scratch;
    Bytes clip;
    const std::string head = "YUV4MPEG2 W32 H16 F25:1 Ip C444\n";
    clip.insert(clip.end(), head.begin(), head.end());
    for (int i = 0; i < 3; ++i) {
        const std::string mark = "FRAME\n";
        clip.insert(clip.end(), mark.begin(), mark.end());
        clip.insert(clip.end(), 32 * 16, 120);
        clip.insert(clip.end(), 32 * 16, 90);
        clip.insert(clip.end(), 32 * 16, 80);
    }
    scratch.Write("in.y4m", clip);
    const Outcome raw = RunProgram(scratch, "key - -o - <" + scratch.Path("in.y4m"));
    EXPECT_EQ(raw.status, 0);
    EXPECT_EQ(raw.out.size(), 3U * 32 * 16 * 4);
    EXPECT_NE(raw.error.find("zkey: no colour given, assumed a green screen by a look at the border; the key is -c "),
              std::string::npos)
        << raw.error;
    // Nothing but that line: progress is for terminals.
    EXPECT_EQ(std::count(raw.error.begin(), raw.error.end(), '\n'), 1);

    const Outcome matte = RunProgram(scratch, "key - -q --matte -f y4m -o - <" + scratch.Path("in.y4m"));
    EXPECT_EQ(matte.status, 0);
    EXPECT_EQ(matte.out.substr(0, 10), "YUV4MPEG2 ");
    EXPECT_NE(matte.out.find("Cmono"), std::string::npos);
    EXPECT_TRUE(matte.error.empty()) << matte.error;
}

TEST(Run, PicturesBeforeAFailureStay) {
    const Scratch scratch;
    Bytes clip(16 * 16 * 4 * 2 + 7, 90);
    scratch.Write("in.raw", clip);
    const std::string options = " --raw RGB32:16x16 -c green -o " + scratch.Path("out.raw");
    const Outcome run = RunProgram(scratch, "key -" + options + " <" + scratch.Path("in.raw"));
    EXPECT_EQ(run.status, kExitFailed);
    EXPECT_NE(run.error.find("ends in the middle of frame 3"), std::string::npos) << run.error;
    // The frames that were on their way may be lost, but no frame is cut.
    EXPECT_EQ(scratch.Read("out.raw").size() % (16 * 16 * 4), 0U);
    // A file tells at once, and whole frames can be had.
    const std::string file = "key " + scratch.Path("in.raw") + options;
    EXPECT_NE(RunProgram(scratch, file).error.find("2 frames of 1024 bytes and 7 bytes over"), std::string::npos);
    EXPECT_EQ(RunProgram(scratch, file + " --frames 2").status, 0);
    EXPECT_EQ(scratch.Read("out.raw").size(), 2U * 16 * 16 * 4);
}

}    // namespace
