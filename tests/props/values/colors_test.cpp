#include "props/values/colors.h"

#include <gtest/gtest.h>

#include "tests/props/values/say.h"

namespace zck {
namespace {

constexpr uint32_t kDefault = 0x11223344;

uint32_t Color(const char *text) { return ColorFromText(In(text), kDefault); }

struct Named {
    const char *name;
    uint32_t value;
};

constexpr Named kBoth[] = {
    {"Black", 0x000000},  {"Maroon", 0x000080}, {"Red", 0x0000FF},     {"OrangeRed", 0x0045FF}, {"Green", 0x008000},
    {"Olive", 0x008080},  {"Orange", 0x00A5FF}, {"Lime", 0x00FF00},    {"Yellow", 0x00FFFF},    {"Brown", 0x13458B},
    {"Navy", 0x800000},   {"Purple", 0x800080}, {"Teal", 0x808000},    {"Grey", 0x808080},      {"Pink", 0x8080FF},
    {"Silver", 0xC0C0C0}, {"Blue", 0xFF0000},   {"Magenta", 0xFF00FF}, {"Aqua", 0xFFFF00},      {"White", 0xFFFFFF},
};

TEST(Color, NamesGoBothWays) {
    for (const Named &named : kBoth) {
        EXPECT_EQ(Say(ColorToText(named.value | 0xFF000000)), named.name);
        EXPECT_EQ(Color(named.name), named.value | 0xFF000000) << named.name;
    }
}

TEST(Color, SomeNamesGoOneWay) {
    EXPECT_EQ(Say(ColorToText(0xFF8A5406)), "OV");
    EXPECT_EQ(Say(ColorToText(0xFFB29000)), "OVL");
    EXPECT_EQ(Color("cyan"), 0xFFFFFF00U);
    EXPECT_EQ(Color("orvane"), 0xFF8A5406U);
    EXPECT_EQ(Color("ov"), 0xFF8A5406U);
    EXPECT_EQ(Color("ovl"), 0xFFB29000U);
    EXPECT_EQ(Color("OvLight"), 0xFFB29000U);
}

TEST(ColorToText, AlphaFollowsInBrackets) {
    EXPECT_EQ(Say(ColorToText(0xFF0000FF)), "Red");
    EXPECT_EQ(Say(ColorToText(0x800000FF)), "Red(128)");
    EXPECT_EQ(Say(ColorToText(0xFF123456)), "#563412");
    EXPECT_EQ(Say(ColorToText(0x80123456)), "#563412(128)");
    EXPECT_EQ(Say(ColorToText(0)), "Black(0)");
}

TEST(ColorToText, FillsABuffer) {
    OLECHAR buffer[64];
    EXPECT_EQ(ColorToText(0x80123456, buffer), buffer);
    EXPECT_EQ(Say(buffer), "#563412(128)");
}

TEST(ColorFromText, SignBeforeTheDigitsEndsTheText) {
    EXPECT_EQ(Color("#FF0000"), kDefault);
    EXPECT_EQ(Color("orvane-light"), 0xFF8A5406U);
    EXPECT_EQ(Color("Red+5"), 0xFF0000FFU);
    EXPECT_EQ(Color("-5"), kDefault);
}

TEST(ColorFromText, NothingGivesTheDefaultWhole) {
    EXPECT_EQ(ColorFromText(TextView(), kDefault), kDefault);
    for (const char *text : {"", "abc", "ff0000", "Redd", "Red ", "Red (128)", " Red", "xyz(128)"}) {
        EXPECT_EQ(Color(text), kDefault) << text;
    }
}

TEST(ColorFromText, AlphaBelowOneIsAPart) {
    EXPECT_EQ(Color("Red(128)"), 0x800000FFU);
    // The point ended the text, so the number is 0.
    EXPECT_EQ(Color("Red(0.5)"), 0x000000FFU);
    EXPECT_EQ(Color("Red(1)"), 0x010000FFU);
    EXPECT_EQ(Color("Red(50%)"), 0x320000FFU);
    EXPECT_EQ(Color("Red(300)"), 0xFF0000FFU);
    EXPECT_EQ(Color("Red(5e1)"), 0x320000FFU);
    EXPECT_EQ(Color("Red(5e9999)"), 0xFF0000FFU);
}

TEST(ColorFromText, AlphaWithoutANumberIsZero) {
    EXPECT_EQ(Color("Red("), 0x000000FFU);
    EXPECT_EQ(Color("Red(x)"), 0x000000FFU);
}

TEST(ColorFromText, DefaultByName) {
    EXPECT_EQ(Color("default"), kDefault);
    EXPECT_EQ(Color("Default(128)"), 0x80223344U);
    EXPECT_EQ(Color("(128)"), 0x80223344U);
    EXPECT_EQ(Color("("), 0x00223344U);
}

TEST(ColorFromText, TransparentHasNoAlpha) {
    EXPECT_EQ(Color("transparent"), 0U);
    EXPECT_EQ(Color("Transparent(128)"), 0U);
}

TEST(ColorFromText, NumbersReadRedFirst) {
    EXPECT_EQ(Color("FF0000"), 0xFF0000FFU);
    EXPECT_EQ(Color("0xFF0000"), 0xFF0000FFU);
    EXPECT_EQ(Color("123456"), 0xFF563412U);
    EXPECT_EQ(Color("FF0000(128)"), 0x800000FFU);
    EXPECT_EQ(Color("0xff0000"), 0xFF0000FFU);
    EXPECT_EQ(Color("80FF0000"), 0x800000FFU);
    EXPECT_EQ(Color("80FF0000(5)"), 0x800000FFU);
}

TEST(ColorFromText, FewCharactersAreThreeDigits) {
    EXPECT_EQ(Color("ABC"), 0xFFCCBBAAU);
    EXPECT_EQ(Color("7"), 0xFF770000U);
    EXPECT_EQ(Color("AB"), 0xFFBBAA00U);
    EXPECT_EQ(Color("1f"), 0xFF110000U);
    EXPECT_EQ(Color("0x123"), 0xFF332211U);
    EXPECT_EQ(Color("0x"), 0xFF000000U);
    // Octal 01234 is no number: the first two characters are digits. A blank in front makes it decimal.
    EXPECT_EQ(Color(" 17"), 0xFF111100U);
    // Above 0xFFF only the low three digits count: 5000 is 0x1388.
    EXPECT_EQ(Color(" 5000"), 0xFF888833U);
}

TEST(ColorFromText, PrefixCountsAsCharacters) {
    EXPECT_EQ(Color("ABCD"), 0xFFCDAB00U);
    EXPECT_EQ(Color("0FF0000"), 0x000000FFU);
}

TEST(ColorFromText, LeadingBlanksCountAsCharacters) {
    EXPECT_EQ(Color("   255"), 0xFFFF0000U);
    EXPECT_EQ(Color("      255"), 0x00FF0000U);
}

TEST(ColorFromText, LongNumbersSaturateAfterThirteenCharacters) {
    EXPECT_EQ(Color("123456789AB"), 0xFFFFFFFFU);
    EXPECT_EQ(Color("123456789ABCDEF"), 0xFFFFFFFFU);
    // The first digit that counts would be the fourteenth.
    EXPECT_EQ(Color("000000000001"), 0x00000000U);
    EXPECT_EQ(Color("00000000001"), 0x00010000U);
}

TEST(ColorFromText, LooksAtSixtyThreeCharacters) {
    EXPECT_EQ(ColorFromText(In("Red(" + std::string(58, '0') + "75)"), kDefault), 0x070000FFU);
    EXPECT_EQ(ColorFromText(Text(1 << 20, static_cast<OLECHAR>('R')), kDefault), kDefault);
}

}    // namespace
}    // namespace zck
