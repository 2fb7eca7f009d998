#include "xml/entities.h"

#include <gtest/gtest.h>

#include "tests/xml/say.h"

namespace zck::XMLParse {
namespace {

std::string Decoded(std::string_view text, bool keepBlank = false) { return Say(DecodeText(In(text), keepBlank)); }

TEST(Entities, Names) {
    EXPECT_EQ(Decoded("&lt;&gt;&amp;&apos;&quot;"), "<>&'\"");
    EXPECT_EQ(Decoded("a&nbsp;b&copy;c&reg;d"), "a b\u00A9c\u00AEd");
}

TEST(Entities, AreKnownByTheirFirstLetters) {
    EXPECT_EQ(Decoded("&lo;x"), "<x");
    EXPECT_EQ(Decoded("&cost;"), "\u00A9");
    EXPECT_EQ(Decoded("&ge.x"), ">x");
    EXPECT_EQ(Decoded("&amX;x"), "&x");
    EXPECT_EQ(Decoded("&ap123x"), "'x");
    EXPECT_EQ(Decoded("&quick!"), "\"!");
    EXPECT_EQ(Decoded("&rest"), "\u00AE");
    EXPECT_EQ(Decoded("&rust"), "ust");
    EXPECT_EQ(Decoded("&LT;"), "T;");
}

TEST(Entities, OfTheThirdUnitOnlyTheLowByteCounts) {
    EXPECT_EQ(Decoded("&a\u016D;;x"), "&x");
    EXPECT_EQ(Decoded("&r\u0165;;x"), "\u00AEx");
    EXPECT_EQ(Decoded("&a\u0170;;;x"), "\u0170;;;x");
    // Of the others all of it.
    for (const char *text : {"&n\u0162", "&c\u016F", "&q\u0175"}) EXPECT_EQ(Decoded(text), std::string(text).substr(2));
}

TEST(Entities, EndWithTheText) {
    EXPECT_EQ(Decoded("x&l"), "x<");
    EXPECT_EQ(Decoded("x&q"), "x");
    EXPECT_EQ(Decoded("x&qu"), "x\"");
    EXPECT_EQ(Decoded("x&"), "x");
    EXPECT_EQ(Decoded("x&#65"), "xA");
    EXPECT_EQ(Decoded("x&#"), "x");
    EXPECT_EQ(Decoded("x&#x"), "xx");
}

TEST(Entities, AnyOtherTakesACharacterAlong) {
    EXPECT_EQ(Decoded("R&D"), "R");
    EXPECT_EQ(Decoded("a & b"), "a b");
    EXPECT_EQ(Decoded("&&lt;"), "lt;");
}

TEST(Entities, Numbers) {
    EXPECT_EQ(Decoded("&#65;&#x41;&#x4a;&#x4A;"), "AAJJ");
    EXPECT_EQ(Decoded("&#0101;"), "A");
    EXPECT_EQ(Decoded("&#0x41;"), "A");
    EXPECT_EQ(Decoded("&#65!x"), "Ax");
    EXPECT_EQ(Decoded("&#x20AC;"), "\u20AC");
    EXPECT_EQ(Decoded("&#13;x"), "\rx");
}

TEST(Entities, NumbersWithoutADigit) {
    EXPECT_EQ(Decoded("&#;x"), ";x");
    EXPECT_EQ(Decoded("&#X41;"), "X41;");
    EXPECT_EQ(Decoded("&#-5;"), "-5;");
    EXPECT_EQ(Decoded("&# 5;"), " 5;");
    EXPECT_EQ(Decoded("&#xZ;"), "xZ;");
}

TEST(Entities, NumbersOutOfRange) {
    EXPECT_EQ(Decoded("a&#0;b"), "ab");
    EXPECT_EQ(Decoded("a&#65536;b"), "ab");
    EXPECT_EQ(Decoded("&#65601;"), "A");
    EXPECT_EQ(DecodeText(In("&#99999999999999999999999;"), false), Text(1, OLECHAR{0xFFFF}));
    EXPECT_EQ(DecodeText(In("&#4294967361;"), false), Text(1, OLECHAR{0xFFFF}));
    EXPECT_EQ(DecodeText(In("&#x1000000041;"), false), Text(1, OLECHAR{0xFFFF}));
    EXPECT_EQ(DecodeText(In("&#xFFFFFFFFFFFFFFFFFFFF1;"), false), Text(1, OLECHAR{0xFFFF}));
}

TEST(Entities, LineEndsAndTabsAreBlanks) { EXPECT_EQ(Decoded("a\r\n\tb"), "a   b"); }

TEST(Entities, BlanksAloneAreNoText) {
    EXPECT_EQ(Decoded("   "), "");
    EXPECT_EQ(Decoded("\r\n"), "");
    EXPECT_EQ(Decoded("&#32;"), "");
    EXPECT_EQ(Decoded("  ", true), "  ");
    EXPECT_EQ(Decoded("&nbsp;"), " ");
    EXPECT_EQ(Decoded(" &nbsp; "), "   ");
    EXPECT_EQ(Decoded(" a "), " a ");
}

}    // namespace
}    // namespace zck::XMLParse
