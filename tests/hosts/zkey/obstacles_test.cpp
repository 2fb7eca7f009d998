// Files that stand in the way of one another.
#include "hosts/zkey/obstacles.h"

#include <gtest/gtest.h>

#include "hosts/zkey/failure.h"
#include "tests/hosts/zkey/program.h"

namespace {

using namespace zkey;
using Bytes = std::vector<uint8_t>;

TEST(Obstacles, PicturesOfASequenceAreKnown) {
    EXPECT_TRUE(WouldOverwrite("in_%04d.png", "in_%04d.png"));
    EXPECT_TRUE(WouldOverwrite("./in_%04d.png", "in_%04d.png"));
    EXPECT_TRUE(WouldOverwrite("in_%04d.png", "in_%d.png"));
    EXPECT_TRUE(WouldOverwrite("in_%04d.png", "in_0001.png"));
    EXPECT_TRUE(WouldOverwrite("in_0012.png", "in_%04d.png"));
    EXPECT_FALSE(WouldOverwrite("out_%04d.png", "in_%04d.png"));
    EXPECT_FALSE(WouldOverwrite("in_%04d.png", "in_.png"));
    EXPECT_FALSE(WouldOverwrite("in_%04d.png", "in_a1.png"));
    EXPECT_FALSE(WouldOverwrite("in_%04d.png", "in_0001.jpg"));
    EXPECT_FALSE(WouldOverwrite("there/in_%04d.png", "in_0001.png"));
    EXPECT_FALSE(WouldOverwrite("50%.png", "50%.mov"));
    EXPECT_FALSE(WouldOverwrite("-", "-"));
}

TEST(Obstacles, NothingThatIsReadIsWritten) {
    const Scratch scratch;
    const std::string in = scratch.Write("in.raw", Bytes(16 * 16 * 4, 60));
    const std::string other = scratch.Write("other.raw", Bytes(5, 1));
    const std::string key = scratch.Path("key.xml");
    ASSERT_EQ(RunProgram(scratch, "key -c green --save-key " + key).status, kExitDone);
    const std::string text = scratch.Text("key.xml");
    const std::string start = "key " + in + " --raw RGB32:16x16 ";
    const struct {
        std::string options;
        std::string says;
    } cases[] = {{"-c green -o " + in, "the output would overwrite the input " + in},
                 {"-c green -f raw -o " + other + " --over " + other, "the output would overwrite the background " + other},
                 {"-f raw -o " + key + " --key " + key, "the output would overwrite the key " + key},
                 {"-c green --save-key " + in, "--save-key would overwrite the input " + in},
                 {"-c green --over " + other + " -o " + scratch.Path("o.raw") + " --save-key " + other,
                  "--save-key would overwrite the background " + other},
                 {"-c green -o " + scratch.Path("both.raw") + " --save-key " + scratch.Path("both.raw"),
                  "cannot both be " + scratch.Path("both.raw")}};
    for (const auto &c : cases) {
        const Outcome run = RunProgram(scratch, start + c.options);
        EXPECT_EQ(run.status, kExitUsage) << c.options;
        EXPECT_NE(run.error.find(c.says), std::string::npos) << run.error;
    }
    EXPECT_EQ(scratch.Read("in.raw"), Bytes(16 * 16 * 4, 60));
    EXPECT_EQ(scratch.Read("other.raw"), Bytes(5, 1));
    EXPECT_EQ(scratch.Text("key.xml"), text);
}

TEST(Obstacles, AbsurdSizesCostNoMemory) {
    const Scratch scratch;
    const std::string head = "YUV4MPEG2 W32768 H32768 F25:1 C444\nFRAME\n";
    const std::string big = scratch.Write("big.y4m", {head.begin(), head.end()});
    const std::string out = " -c green -o " + scratch.Path("out.raw");
    const Outcome clip = RunProgram(scratch, "key - " + out + " <" + big);
    EXPECT_EQ(clip.status, kExitFailed);
    EXPECT_NE(clip.error.find("32768x32768 is too large"), std::string::npos) << clip.error;
    const Outcome raw = RunProgram(scratch, "key - --raw I420:32768x32768" + out + " <" + big);
    EXPECT_EQ(raw.status, kExitUsage);
    EXPECT_NE(raw.error.find("the size is too large"), std::string::npos) << raw.error;
}

}    // namespace
