// The rooms of the tree include downward only, as tools/layers.txt draws it.
#include "tests/house/layers.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

namespace house {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

Layers TreeLayers() {
    std::ifstream stream(ZCK_SOURCE_DIR "/tools/layers.txt");
    return LayersFromText(std::string{std::istreambuf_iterator<char>(stream), {}});
}

const Layers kSmall = LayersFromText(
    "include:\nplatform: include\nlow: include platform\nlow/deep: include low\nhigh: low   # and all below it\n");

std::vector<std::string> FindingsFor(const char *path, const char *text) {
    return LayerFindings(kSmall, {SourceFromText(path, text)});
}

TEST(Layers, TheTreeFollowsTheTable) {
    const std::vector<SourceFile> files = ReadTree(ZCK_SOURCE_DIR);
    EXPECT_GT(files.size(), 30u);
    EXPECT_THAT(LayerFindings(TreeLayers(), files), IsEmpty());
}

TEST(Layers, TheTableHoldsNoCircleAndNoUnknownRoom) {
    const Layers layers = TreeLayers();
    EXPECT_GT(layers.size(), 30u);
    EXPECT_THAT(Circles(layers), IsEmpty());
    for (const auto &[room, allowed] : layers) {
        EXPECT_NE(room, "?") << "a line without a colon";
        for (const std::string &name : allowed) {
            bool known = false;
            for (const auto &[other, unused] : layers) known = known || other == name || other.starts_with(name + "/");
            EXPECT_TRUE(known) << room << ": " << name;
        }
    }
}

TEST(Layers, UpwardAndSidewardIncludesAreFound) {
    EXPECT_THAT(FindingsFor("low/a.h", "\n#include \"high/b.h\"\n"), ElementsAre("low/a.h:2: low may not include high"));
    EXPECT_THAT(FindingsFor("low/a.h", "#  include <high/b.h>"), ElementsAre("low/a.h:1: low may not include high"));
    EXPECT_THAT(FindingsFor("low/a.h", "#include \"low/deep/b.h\""), ElementsAre("low/a.h:1: low may not include low/deep"));
    EXPECT_THAT(FindingsFor("high/a.h", "#include \"zchromakey/com.h\""),
                ElementsAre("high/a.h:1: high may not include include"));
}

TEST(Layers, DownwardIncludesAndForeignHeadersPass) {
    EXPECT_THAT(FindingsFor("high/a.h", "#include \"low/b.h\"\n#include \"low/deep/b.h\"\n#include \"high/c.h\""), IsEmpty());
    EXPECT_THAT(FindingsFor("low/a.h", "#include <vector>\n#include <gtest/gtest.h>\n// #include \"high/b.h\"\n"), IsEmpty());
    EXPECT_THAT(FindingsFor("low/deep/a.h", "#include \"zchromakey/com.h\"\n#include \"low/b.h\""), IsEmpty());
}

TEST(Layers, ABackEndIsItsRoomsOwn) {
    EXPECT_THAT(FindingsFor("low/a.h", "#include \"platform/posix/b.h\""), ElementsAre("low/a.h:1: back-end of platform"));
    EXPECT_THAT(FindingsFor("platform/a.cpp", "#include \"platform/posix/b.h\""), IsEmpty());
}

TEST(Layers, AFileNeedsARoomAndAnIncludeAPath) {
    EXPECT_THAT(FindingsFor("attic/a.h", ""), ElementsAre("attic/a.h: in no room of the table"));
    EXPECT_THAT(FindingsFor("low/a.h", "#include \"b.h\""),
                ElementsAre("low/a.h:1: \"b.h\" is not written from the top of the tree"));
}

TEST(Layers, CirclesAreFound) {
    EXPECT_THAT(Circles(LayersFromText("a: b\nb: c\nc: a\nd: a\n")), ElementsAre("a", "b", "c"));
    EXPECT_THAT(Circles(kSmall), IsEmpty());
}

}    // namespace
}    // namespace house
