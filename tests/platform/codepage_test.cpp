#include "platform/codepage.h"

#include <gtest/gtest.h>

namespace zck {
namespace {

TEST(CodePage, AsciiIsTheSameInAll) {
    EXPECT_EQ(CodePageFromText(ZCK_TEXT("<a x='1'/>")), "<a x='1'/>");
    EXPECT_EQ(TextFromCodePage("<a x='1'/>"), ZCK_TEXT("<a x='1'/>"));
    EXPECT_EQ(CodePageFromText({}), "");
    EXPECT_TRUE(TextFromCodePage({}).empty());
}

TEST(CodePage, BytesThatMeanNothingAreNotLost) {
    const Text text = TextFromCodePage("a\xFF\xFEz");
    EXPECT_GE(text.size(), 3U);
    EXPECT_EQ(text.front(), 'a');
    EXPECT_EQ(text.back(), 'z');
}

}    // namespace
}    // namespace zck
