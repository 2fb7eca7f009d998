// The whole program: what it says of slips, and its help.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "hosts/zkey/failure.h"
#include "tests/hosts/zkey/program.h"

namespace {

using namespace zkey;
using Bytes = std::vector<uint8_t>;

TEST(Run, EndsWithOneLineAndAStatus) {
    const Scratch scratch;
    const std::string green = scratch.Write("green.raw", [] {
        Bytes b;
        for (int i = 0; i < 16 * 16; ++i) b.insert(b.end(), {40, 190, 30, 0});
        return b;
    }());
    const std::string grey = scratch.Write("grey.raw", Bytes(16 * 16 * 4, 128));
    const std::string out = " -o " + scratch.Path("out.raw");
    const std::string raw = " --raw RGB32:16x16";
    const struct {
        std::string arguments;
        int status;
        const char *says;
    } cases[] = {
        {"", kExitUsage, "zkey key INPUT"},
        {"kay", kExitUsage, "unknown command"},
        {green + " -o x.mov", kExitUsage, "the command is missing: zkey key"},
        {"key " + green + " --raw FOO:16x16" + out, kExitUsage, "is none of RGB24, RGB32"},
        {"key " + green + " --raw RGB32" + out, kExitUsage, "the size is missing"},
        {"key " + green + raw + out + " --prop process.thread=2", kExitUsage,
         "no property \"process.thread\"; it has background"},
        {"key " + green + raw + out + " --prop output.thread=perhaps", kExitUsage, "true or false"},
        {"key " + green + raw + out + " --prop keying.borders=1,2,x", kExitUsage, "left top right bottom"},
        {"key " + green + raw + out + " --prop dll-path=x", kExitUsage, "can only be read"},
        {"key " + green + raw + out + " --set nMinTransparent=256", kExitUsage, "give 0 to 255"},
        {"key " + green + raw + out + " --garbage 1,2,3", kExitUsage, "left, top, right and bottom"},
        {"key " + green + raw + out + " --key k.xml -t 3", kExitUsage, "do not go with a saved key"},
        {"key " + green + raw + out + " --key " + scratch.Path("none.xml"), kExitFailed, "cannot open"},
        {"key --save-key " + scratch.Path("k.xml"), kExitUsage, "no input"},
        {"key " + green + raw, kExitUsage, "no output"},
        {"key " + green + raw + out + " --color gren", kExitUsage, "unknown colour \"gren\""},
        {"key " + green + raw + out + " --tolernce 4", kExitUsage, "unknown option --tolernce"},
        {"key " + green + " --raw RGB32:0x16" + out, kExitUsage, "too small"},
        {"key " + green + raw + " -o " + green, kExitUsage, "overwrite"},
        {"key " + green + raw + " --matte --over checker" + out, kExitUsage, "exclude"},
        {"key " + green + raw + out + " --prop process.threads=0", kExitUsage, "process.threads"},
        {"key " + green + raw + " -o " + scratch.Path("x.y4m"), kExitUsage, "no alpha"},
        {"key " + scratch.Path("missing.raw") + raw + out, kExitFailed, "cannot open"},
        {"key " + scratch.Path("missing.y4m") + out, kExitFailed, "cannot open"},
        {"key " + green + " --raw RGB32:16x17" + out, kExitFailed, "0 frames of 1088 bytes and 1024 bytes over"},
        {"key " + green + " --raw RGB32:4x4 --exact" + out, kExitFailed, "too small"},
        {"key " + grey + raw + out, kExitFailed, "no green or blue screen"},
        {"key " + green + raw + " -o " + scratch.Path("no/folder/out.raw"), kExitFailed, "there is no folder"},
        {"key " + scratch.Write("empty.raw", {}) + raw + out, kExitFailed, "is empty"},
        {"key -" + raw + out + " <" + scratch.Path("empty.raw"), kExitFailed, "- is empty"},
        {"key " + scratch.Write("text.y4m", {'h', 'i', '\n'}) + out, kExitFailed, "no YUV4MPEG2"},
    };
    for (const auto &c : cases) {
        const Outcome run = RunProgram(scratch, c.arguments);
        EXPECT_EQ(run.status, c.status) << c.arguments;
        EXPECT_NE(run.error.find(c.says), std::string::npos) << c.arguments << "\n" << run.error;
        if (c.arguments.empty()) continue;
        EXPECT_EQ(std::count(run.error.begin(), run.error.end(), '\n'), 1) << run.error;
        EXPECT_EQ(run.error.substr(0, 6), "zkey: ");
    }
}

TEST(Run, HelpsOnRequest) {
    const Scratch scratch;
    EXPECT_NE(RunProgram(scratch, "--help").out.find("zkey key INPUT"), std::string::npos);
    const Outcome help = RunProgram(scratch, "key --help");
    EXPECT_EQ(help.status, 0);
    for (const char *word :
         {"--color", "--tolerance", "--softness", "--reverse", "--spill",    "--type",   "--set",      "--over",
          "--matte", "--alpha",     "--exact",    "--prop",    "--raw",      "--quiet",  "--no-audio", "--frames",
          "--codec", "--format",    "v210",       "--key",     "--save-key", "--garbage"}) {
        EXPECT_NE(help.out.find(word), std::string::npos) << word;
    }
    EXPECT_EQ(RunProgram(scratch, "--version").out.substr(0, 5), "zkey ");
}

}    // namespace
