#include "xml/decode.h"

#include <gtest/gtest.h>

#include "platform/codepage.h"
#include "tests/xml/say.h"
#include "xml/utf7.h"

namespace zck::XMLParse {
namespace {

using namespace std::string_literals;

std::string Utf16(std::string_view utf8, bool highFirst) {
    std::string bytes;
    for (const OLECHAR unit : In(utf8)) {
        const char low = static_cast<char>(unit & 0xFF);
        const char high = static_cast<char>(unit >> 8);
        bytes.push_back(highFirst ? high : low);
        bytes.push_back(highFirst ? low : high);
    }
    return bytes;
}

std::string Decoded(std::string_view bytes) { return Say(DecodeBytes(bytes)); }

TEST(Decode, Utf8) {
    EXPECT_EQ(Decoded(""), "");
    EXPECT_EQ(Decoded("<a>\xC3\xA4</a>"), "<a>\u00E4</a>");
    EXPECT_EQ(Decoded("\xEF\xBB\xBF<a/>"), "<a/>");
    EXPECT_EQ(Decoded("\xEF\xBB\xBF\xC3\xA4"), "\u00E4");
}

TEST(Decode, MarkedSixteenBitText) {
    EXPECT_EQ(Decoded("\xFF\xFE" + Utf16("<a>\u4E2D</a>", false)), "<a>\u4E2D</a>");
    EXPECT_EQ(Decoded("\xFE\xFF" + Utf16("<a>\u4E2D</a>", true)), "<a>\u4E2D</a>");
    EXPECT_EQ(Decoded("\xFF\xFE" + Utf16("\u4E2D", false)), "\u4E2D");
}

TEST(Decode, UnmarkedSixteenBitText) {
    EXPECT_EQ(Decoded(Utf16("<a x='1'/>", false)), "<a x='1'/>");
    EXPECT_EQ(Decoded(Utf16("<a x='1'/>", true)), "<a x='1'/>");
    EXPECT_EQ(Decoded(Utf16("\u4E2D\u4E2D\u4E2D\u4E2D<a/>", false)), "\u4E2D\u4E2D\u4E2D\u4E2D<a/>");
}

TEST(Decode, AnOddLastByteIsDropped) {
    EXPECT_EQ(Decoded(Utf16("<a/>", false) + "x"), "<a/>");
    EXPECT_EQ(Decoded("\xFF\xFE" + Utf16("<a/>", false) + "x"), "<a/>");
}

TEST(Decode, TheTestOf16BitTextLooksAtAFirstPart) {
    EXPECT_EQ(Utf16Test("\xFF\xFE", 0.9), 2);
    EXPECT_EQ(Utf16Test("\xFE\xFF", 0.9), -2);
    EXPECT_EQ(Utf16Test("\xFF", 0.9), 0);
    EXPECT_EQ(Utf16Test("", 0.9), 0);
    EXPECT_EQ(Utf16Test("a\0b\0"s, 0.9), 1);
    EXPECT_EQ(Utf16Test("\0a\0b"s, 0.9), -1);
    // Of ten bytes four pairs: round(9) - 1 = 8.
    EXPECT_EQ(Utf16Test("abcdefg\0ij"s, 0.9), 1);
    EXPECT_EQ(Utf16Test("abcdefgh\0j"s, 0.9), 0);
    EXPECT_EQ(Utf16Test("abcdefgh\0j"s, 1.5), 0);
    EXPECT_EQ(Utf16Test("abcdefgh\0jk"s, 1.5), -1);
    EXPECT_EQ(Utf16Test("\0\0\0"s, 0.0), 0);
    // The even byte is looked at first.
    EXPECT_EQ(Utf16Test("\0\0\0\0"s, 0.9), -1);
}

TEST(Decode, TwoBytesAreNo16BitText) {
    EXPECT_EQ(DecodeBytes("a\0"s), Text({'a', 0}));
    EXPECT_EQ(DecodeBytes("\xFF\xFE"s), TextFromCodePage("\xFF\xFE"));
    EXPECT_EQ(Decoded("a\0b"s), "a");    // three are
    EXPECT_EQ(Decoded("\0ab"s), "a");
}

// The signs of UTF-8 come before those of UTF-7, and both before a zero byte that would tell of 16-bit text.
TEST(Decode, TheFirstSignDecides) {
    EXPECT_EQ(DecodeBytes("\xEF\xBB\xBF"
                          "a\0bcdefg"s),
              Text({'a', 0, 'b', 'c', 'd', 'e', 'f', 'g'}));
    for (const std::string word : {"utf-8", "UTF-8", "utf-7", "uTf-7"}) {
        EXPECT_EQ(Decoded("+/v8-" + word + "?>"), "+/v8-" + word + "?>");
        EXPECT_EQ(DecodeBytes("\0"s + word + "?>"), Text(1, 0).append(In(word + "?>")));
    }
    EXPECT_EQ(Decoded("+/v9-<a/>"), "\uFEFF<a/>");
    EXPECT_EQ(DecodeBytes("+/v9-\0x"s), Text({0xFEFF, 0, 'x'}));
}

TEST(Decode, Utf7) {
    EXPECT_EQ(Decoded("+/v8-<a>+AOQ-</a>"), "\uFEFF<a>\u00E4</a>");
    EXPECT_EQ(Say(TextFromUtf7("1 +- 2 +ACY-x+AOQ y")), "1 + 2 &x\u00E4 y");
    EXPECT_EQ(Say(TextFromUtf7("+2D3eAA-")), "\U0001F600");
    EXPECT_EQ(Say(TextFromUtf7("a\x80z")), "a\uFFFDz");
    EXPECT_EQ(Say(TextFromUtf7("+")), "");
    EXPECT_EQ(Say(TextFromUtf7("+A")), "");
}

TEST(Decode, ADeclarationOfUtf8) {
    EXPECT_EQ(Decoded("<?xml encoding='UTF-8'?><a>\xC3\xA4</a>"), "<?xml encoding='UTF-8'?><a>\u00E4</a>");
    // With the declaration, zero bytes are characters.
    EXPECT_EQ(DecodeBytes("<?utf-8?>\0\0\0"s).size(), 12U);
    EXPECT_EQ(DecodeBytes("<?utf-9?>\0\0\0"s).size(), 6U);
}

TEST(Decode, ADeclarationOfUtf7IsTakenForUtf8) {
    EXPECT_EQ(Decoded("<?xml encoding='Utf-7'?>+AOQ-\xC3\xA4"), "<?xml encoding='Utf-7'?>+AOQ-\u00E4");
}

TEST(Decode, ZeroBytesCountInTheFirstNineTenths) {
    EXPECT_EQ(DecodeBytes("abcdefghijklmnop\0qrs"s).size(), 20U);
    EXPECT_EQ(DecodeBytes("abcdefghijklmno\0pqrs"s).size(), 10U);
}

TEST(Decode, ADeclarationIsLookedForInFrontOfItsEndIn4096Bytes) {
    // Zero bytes behind tell which way was gone: declared text keeps them, other text is taken for 16-bit units.
    const std::string zeros(6000, '\0');
    EXPECT_EQ(DecodeBytes("<?x?>utf-8" + zeros).size(), 3005U);
    const std::string room(4096 - 9, ' ');
    EXPECT_EQ(DecodeBytes("<?utf-8" + room + "?>" + zeros).size(), 4096U + 6000U);
    EXPECT_EQ(DecodeBytes("<?utf-8" + room + " ?>" + zeros + "x").size(), (4097U + 6001U) / 2);
}

TEST(Decode, WhatIsNoUtf8IsOfTheCodePage) {
    EXPECT_EQ(DecodeBytes("<a>\xE4</a>"), TextFromCodePage("<a>\xE4</a>"));
    EXPECT_EQ(DecodeBytes("\xEF\xBB\xBF\xFF"), TextFromCodePage("\xEF\xBB\xBF\xFF"));
    EXPECT_EQ(DecodeBytes("<?utf-8?>\xFF"), TextFromCodePage("<?utf-8?>\xFF"));
    EXPECT_FALSE(DecodeBytes("<a>\xE4</a>").empty());
}

}    // namespace
}    // namespace zck::XMLParse
