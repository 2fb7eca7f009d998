#include "platform/name_key.h"

#include <gtest/gtest.h>

namespace zck {
namespace {

Text In(std::string_view utf8) { return TextFromUtf8(utf8); }

TEST(NameKey, KnownNames) {
    EXPECT_EQ(NameKey(In("a")), 0xBB27B42661A3B565);
    EXPECT_EQ(NameKey(In("key")), 0x35D7399D6FAC81ED);
    EXPECT_EQ(NameKey(In("adjust")), 0x6E5048DE4D3C4FD0);
    EXPECT_EQ(NameKey(In("transparent")), 0x2155902AEE0CCF2F);
}

TEST(NameKey, FullWordsAndNoWord) {
    EXPECT_EQ(NameKey(In("abcdefgh")), 0x538D846062406DF0);
    EXPECT_EQ(NameKey(In("abcdefghijklmnopqrstuvwx")), 0x591744612FA1E72C);
    EXPECT_EQ(NameKey(In("")), 0xD5CE0FC12638C9AC);
}

TEST(NameKey, CaseIsFoldedOnAllBytes) {
    EXPECT_EQ(NameKey(In("KeY")), NameKey(In("key")));
    EXPECT_EQ(NameKey(In("@[")), NameKey(In("`{")));
    EXPECT_EQ(NameKey(In("_")), NameKey(In("\x7F")));
    EXPECT_NE(NameKey(In("a")), NameKey(In("b")));
}

TEST(NameKey, OnlyTheLowByteCounts) { EXPECT_EQ(NameKey(In("\u0161")), NameKey(In("a"))); }

TEST(NameKey, KnownWhenCompiled) {
    static_assert(NameKey(ZCK_TEXT("key")) == 0x35D7399D6FAC81ED);
    SUCCEED();
}

}    // namespace
}    // namespace zck
