#include "hosts/zkey/options.h"

#include <gtest/gtest.h>

#include "hosts/zkey/failure.h"

namespace {

using namespace zkey;
using Words = std::vector<std::string>;

TEST(Options, AFullCommandLine) {
    const KeyCommand c = ParseKeyCommand({"in.mp4",
                                          "-o",
                                          "out.mov",
                                          "-c",
                                          "green",
                                          "-t",
                                          "20",
                                          "--softness=30",
                                          "--over",
                                          "checker",
                                          "--prop",
                                          "process.threads=4",
                                          "--prop=keying.borders=1 2",
                                          "--exact",
                                          "-q",
                                          "--frames",
                                          "12",
                                          "--codec",
                                          "png",
                                          "--no-audio",
                                          "--raw",
                                          "UYVY:16x16@50"});
    EXPECT_EQ(c.input, "in.mp4");
    EXPECT_EQ(c.output, "out.mov");
    EXPECT_EQ(c.over, "checker");
    EXPECT_TRUE(c.exact && c.quiet && !c.audio && !c.matte);
    EXPECT_EQ(c.frames, 12);
    EXPECT_EQ(c.codec, "png");
    ASSERT_TRUE(c.raw);
    EXPECT_EQ(c.raw->rate.num, 50);
    ASSERT_EQ(c.props.size(), 2U);
    EXPECT_EQ(c.props[1].first, "keying.borders");
    EXPECT_EQ(c.props[1].second, "1 2");
    EXPECT_EQ(*c.Prop("PROCESS.threads"), "4");
    EXPECT_EQ(c.Prop("output.thread"), nullptr);
}

TEST(Options, StandardStreamsAndNamesWithDashes) {
    EXPECT_EQ(ParseKeyCommand({"-", "-o", "-"}).input, "-");
    EXPECT_EQ(ParseKeyCommand({"-o", "x.mov", "--", "-odd.mp4"}).input, "-odd.mp4");
}

TEST(Options, AlphaKinds) {
    EXPECT_EQ(ParseKeyCommand({"a", "-o", "b"}).alpha, AlphaChoice::ByContainer);
    EXPECT_EQ(ParseKeyCommand({"a", "-o", "b", "--alpha", "Straight"}).alpha, AlphaChoice::Straight);
    EXPECT_EQ(ParseKeyCommand({"a", "-o", "b", "--alpha=premultiplied"}).alpha, AlphaChoice::Premultiplied);
}

TEST(Options, HelpEndsTheReading) { EXPECT_TRUE(ParseKeyCommand({"--help", "--nonsense"}).help); }

TEST(Options, NonsenseIsAUsageError) {
    const Words cases[] = {{},
                           {"a"},
                           {"-o", "b"},
                           {"a", "b", "-o", "c"},
                           {"a", "-o"},
                           {"a", "-o", "b", "--colr", "green"},
                           {"a", "-o", "b", "--exact=yes"},
                           {"a", "-o", "b", "--matte", "--over", "checker"},
                           {"a", "-o", "b", "--matte", "--alpha", "straight"},
                           {"a", "-o", "b", "--alpha", "none"},
                           {"a", "-o", "b", "--prop", "process.threads"},
                           {"a", "-o", "b", "--prop", "=4"},
                           {"a", "-o", "b", "--frames", "0"},
                           {"a", "-o", "b", "--frames", "x"}};
    for (const Words &words : cases) {
        try {
            ParseKeyCommand(words);
            ADD_FAILURE() << (words.empty() ? "" : words.back());
        } catch (const Failure &f) {
            EXPECT_EQ(f.Status(), kExitUsage);
            EXPECT_EQ(std::string(f.what()).find('\n'), std::string::npos);
        }
    }
}

}    // namespace
