#include "hosts/zkey/text.h"

#include <gtest/gtest.h>

namespace {

using namespace zkey;

TEST(Text, CountedStringsCarryUtf8BothWays) {
    for (const char *text : {"", "plain", "gr\xC3\xBCn", "\xE2\x82\xAC", "\xF0\x9F\x8E\xAC film"}) {
        EXPECT_EQ(Counted(text).Utf8(), text);
    }
    EXPECT_EQ(SysStringLen(Counted("\xF0\x9F\x8E\xAC").get()), 2U);
}

TEST(Text, WholeNumbersAreTakenWholeOrNotAtAll) {
    int32_t v = 7;
    EXPECT_TRUE(ParseWhole("12", v) && v == 12);
    EXPECT_TRUE(ParseWhole("-3", v) && v == -3);
    EXPECT_TRUE(ParseWhole("0x00FF10", v) && v == 0xFF10);
    EXPECT_TRUE(ParseWhole("0xFFFFFFFF", v) && v == -1);
    EXPECT_TRUE(ParseWhole("2147483647", v) && v == INT32_MAX);
    for (const char *bad : {"", "-", "1x", " 1", "2147483648", "0x", "--3", "1.5", "0x100000000"}) {
        v = 7;
        EXPECT_FALSE(ParseWhole(bad, v)) << bad;
        EXPECT_EQ(v, 7) << bad;
    }
}

TEST(Text, ExtensionsAreOfTheLastName) {
    EXPECT_EQ(ExtensionOf("a/b.c/film.MOV"), ".mov");
    EXPECT_EQ(ExtensionOf("a.b/film"), "");
    EXPECT_EQ(ExtensionOf("-"), "");
}

TEST(Text, WordsCompareWithoutCase) {
    EXPECT_TRUE(SameWord("nEdgesSmooth", "NEDGESSMOOTH"));
    EXPECT_FALSE(SameWord("a", "ab"));
}

}    // namespace
