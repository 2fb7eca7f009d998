#include "frames/data/data_name.h"

#include <gtest/gtest.h>

namespace zck {
namespace {

constexpr uint32_t Byte(char c) { return static_cast<uint8_t>(c); }

constexpr int32_t Code(char a, char b, char c, char d) {
    return static_cast<int32_t>(Byte(a) | Byte(b) << 8 | Byte(c) << 16 | Byte(d) << 24);
}

struct NameCase {
    int32_t code;
    const char *name;
};

TEST(DataName, CodesBecomeNamesAndComeBack) {
    const NameCase cases[] = {
        {Code('C', '6', '0', '8'), "C608"},
        {Code('N', 'S', 'S', '2'), "NSS2"},
        {Code(' ', '~', 'a', 'Z'), " ~aZ"},
        {0x00000001, "0x00000001"},
        {Code('a', 'b', 'c', '\x1F'), "0x1F636261"},
        {Code('\x7F', 'b', 'c', 'd'), "0x6463627F"},
        {static_cast<int32_t>(0xFFFFFFFF), "0xFFFFFFFF"},
    };
    for (const NameCase &c : cases) {
        EXPECT_EQ(TextFromUtf8(c.name), NameFromCode(c.code)) << c.name;
        EXPECT_EQ(c.code, CodeFromName(TextFromUtf8(c.name))) << c.name;
    }
}

TEST(DataName, NamesThatAreNoCodesKeepFourCharacters) {
    EXPECT_EQ(0, CodeFromName(TextView()));
    EXPECT_EQ('a', CodeFromName(ZCK_TEXT("a")));
    EXPECT_EQ(Code('l', 'o', 'n', 'g'), CodeFromName(ZCK_TEXT("longer name")));
    EXPECT_EQ(Code('0', 'x', '1', '2'), CodeFromName(ZCK_TEXT("0x12")));
    EXPECT_EQ(0x123, CodeFromName(ZCK_TEXT("0x123")));
    EXPECT_EQ(Code('#', '1', '2', '3'), CodeFromName(ZCK_TEXT("#123")));
    EXPECT_EQ(0x1234, CodeFromName(ZCK_TEXT("#1234")));
    EXPECT_EQ(Code('a', '?', 'b', 'c'), CodeFromName(ZCK_TEXT("a\u20ACbc")));
    EXPECT_EQ(Code('a', '\xE9', 'b', 'c'), CodeFromName(ZCK_TEXT("a\u00E9bc")));
}

TEST(DataName, NumbersOfMoreThanEightDigitsSaturate) {
    const auto highest = static_cast<int32_t>(0xFFFFFFFF);
    EXPECT_EQ(highest, CodeFromName(ZCK_TEXT("0x100000000")));
    EXPECT_EQ(highest, CodeFromName(ZCK_TEXT("#123456789ABCDEF01")));
    EXPECT_EQ(highest, CodeFromName(ZCK_TEXT("{1C87CEAAF-75BE}")));
    EXPECT_EQ(highest - 1, CodeFromName(ZCK_TEXT("0x0000FFFFFFFE")));
    EXPECT_EQ(0x12345678, CodeFromName(ZCK_TEXT("0x00012345678")));
}

TEST(DataName, IdentifiersInBraces) {
    const GUID id = {0xC87CEAAF, 0x75BE, 0x0BC4, {0x84, 0xEB, 0xAC, 0x27, 0x98, 0x50, 0x76, 0x02}};
    const Text name = NameFromIdentifier(id);
    EXPECT_EQ("{C87CEAAF-75BE-0BC4-84EB-AC2798507602}", Utf8FromText(name));
    EXPECT_EQ(static_cast<int32_t>(0xC87CEAAF), CodeFromName(name));
}

TEST(DataName, NumbersAboveThirtyTwoBitsSaturate) {
    const NameCase cases[] = {
        {-1, "0xFFFFFFFF"},
        {-1, "0x100000000"},
        {-1, "0x123456789ABCDEF0123456789"},
        {-1, "{FFFFFFFFF-0000}"},
        {0x12, "0x00000000000000000000000012"},
        {0x12, "0x12 and more"},
        {0, "0xyz!"},
        {0, "#zz.."},
        {0x1A, "{1a-2b}"},
    };
    for (const NameCase &c : cases) EXPECT_EQ(c.code, CodeFromName(TextFromUtf8(c.name))) << c.name;
    // Only the small letter makes a number.
    EXPECT_EQ(Code('0', 'X', '1', '2'), CodeFromName(ZCK_TEXT("0X1234")));
}

// The lowest byte of a code comes first, so that a literal of the language reads backwards.
TEST(DataName, TheLowestByteComesFirst) {
    EXPECT_EQ("806C", Utf8FromText(NameFromCode(0x43363038)));
    EXPECT_EQ("C608", Utf8FromText(NameFromCode(0x38303643)));
}

}    // namespace
}    // namespace zck
