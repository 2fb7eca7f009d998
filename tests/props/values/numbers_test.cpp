#include "props/values/numbers.h"

#include <gtest/gtest.h>

#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>

#include "tests/props/values/say.h"

namespace zck {
namespace {

TEST(IntFromText, StopsAtTheFirstForeignCharacter) {
    EXPECT_EQ(IntFromText(In("12")), 12);
    EXPECT_EQ(IntFromText(In("12abc")), 12);
    EXPECT_EQ(IntFromText(In("-7.9")), -7);
    EXPECT_EQ(IntFromText(In("+5")), 5);
    EXPECT_EQ(IntFromText(In("0x10")), 0);
    EXPECT_EQ(IntFromText(In("0012")), 12);
    EXPECT_EQ(IntFromText(In("abc")), 0);
    EXPECT_EQ(IntFromText(In("")), 0);
    EXPECT_EQ(IntFromText(In("- 5")), 0);
    EXPECT_EQ(IntFromText(TextView()), 0);
}

TEST(IntFromText, SkipsLeadingSpaceOfEveryKind) { EXPECT_EQ(IntFromText(In(" \t\r\n\v\f-42")), -42); }

TEST(IntFromText, SaturatesAtBothLimits) {
    EXPECT_EQ(IntFromText(In("2147483647")), 2147483647);
    EXPECT_EQ(IntFromText(In("2147483648")), 2147483647);
    EXPECT_EQ(IntFromText(In("-2147483648")), std::numeric_limits<int32_t>::min());
    EXPECT_EQ(IntFromText(In("-2147483649")), std::numeric_limits<int32_t>::min());
    EXPECT_EQ(IntFromText(In("99999999999999999999999999")), 2147483647);
}

TEST(AutoBase, FollowsThePrefix) {
    EXPECT_EQ(Hex32FromText(In("0x1F")), 31U);
    EXPECT_EQ(Hex32FromText(In("0X1f")), 31U);
    EXPECT_EQ(Hex32FromText(In("017")), 15U);
    EXPECT_EQ(Hex32FromText(In("17")), 17U);
    EXPECT_EQ(Hex32FromText(In("0012")), 10U);
    EXPECT_EQ(Hex32FromText(In("08")), 0U);
    EXPECT_EQ(Hex32FromText(In("FF")), 0U);
    EXPECT_EQ(Hex32FromText(In("  0x10z")), 16U);
}

TEST(AutoBase, CountsWhatItRead) {
    EXPECT_EQ(AutoNumberFromText(In("  -0x1Fg")).used, 7U);
    EXPECT_EQ(AutoNumberFromText(In("x")).used, 0U);
    EXPECT_EQ(AutoNumberFromText(In(" -")).used, 0U);
    EXPECT_EQ(AutoNumberFromText(In("")).used, 0U);
}

TEST(AutoBase, PrefixWithoutADigitIsTheDigitZero) {
    EXPECT_EQ(AutoNumberFromText(In("0x")).used, 1U);
    EXPECT_EQ(AutoNumberFromText(In("0xg")).used, 1U);
    EXPECT_EQ(AutoNumberFromText(In("0xg")).magnitude, 0U);
}

TEST(AutoBase, LooksNoFurtherThanItsText) {
    const Text text = In("0xFF");
    EXPECT_EQ(AutoNumberFromText(TextView(text).substr(0, 2)).used, 1U);
    EXPECT_EQ(AutoNumberFromText(TextView(text).substr(0, 3)).magnitude, 15U);
}

TEST(AutoBase, ThirtyTwoBitsNegateAndSaturate) {
    EXPECT_EQ(Hex32FromText(In("-1")), 0xFFFFFFFFU);
    EXPECT_EQ(Hex32FromText(In("-0x10")), 0xFFFFFFF0U);
    EXPECT_EQ(Hex32FromText(In("-0xFFFFFFFF")), 1U);
    EXPECT_EQ(Hex32FromText(In("0xFFFFFFFF")), 0xFFFFFFFFU);
    EXPECT_EQ(Hex32FromText(In("0x100000000")), 0xFFFFFFFFU);
    EXPECT_EQ(Hex32FromText(In("-99999999999999999999999")), 0xFFFFFFFFU);
}

TEST(AutoBase, SixtyFourBitsNegateAndSaturate) {
    EXPECT_EQ(Hex64FromText(In("0x123456789ABCDEF0")), 0x123456789ABCDEF0U);
    EXPECT_EQ(Hex64FromText(In("-2")), 0xFFFFFFFFFFFFFFFEU);
    EXPECT_EQ(Hex64FromText(In("18446744073709551615")), 0xFFFFFFFFFFFFFFFFU);
    EXPECT_EQ(Hex64FromText(In("18446744073709551616")), 0xFFFFFFFFFFFFFFFFU);
    EXPECT_EQ(Hex64FromText(In("-18446744073709551615")), 1U);
    EXPECT_EQ(Hex64FromText(In("-0xFFFFFFFFFFFFFFFF")), 1U);
    EXPECT_EQ(Hex64FromText(In("-18446744073709551616")), 0xFFFFFFFFFFFFFFFFU);
    EXPECT_EQ(Hex64FromText(In("-0xFFFFFFFFFFFFFFFF00")), 0xFFFFFFFFFFFFFFFFU);
    EXPECT_EQ(Int64FromText(In("-9223372036854775807")), -std::numeric_limits<int64_t>::max());
    EXPECT_EQ(Int64FromText(In("-9223372036854775808")), std::numeric_limits<int64_t>::min());
    EXPECT_EQ(Int64FromText(In("-9223372036854775809")), std::numeric_limits<int64_t>::min());
    EXPECT_EQ(Int64FromText(In("9223372036854775807")), std::numeric_limits<int64_t>::max());
    EXPECT_EQ(Int64FromText(In("9223372036854775808")), std::numeric_limits<int64_t>::max());
    EXPECT_EQ(Int64FromText(In("-010")), -8);
}

TEST(BoolFromText, KnowsItsWords) {
    for (const char *yes : {"1", "true", "YES", "ON", "Only", "y", "Y", "TRUE"}) EXPECT_TRUE(BoolFromText(In(yes))) << yes;
    for (const char *no : {"0", "false", "FALSE", "", "no", "off", "n"}) EXPECT_FALSE(BoolFromText(In(no))) << no;
    EXPECT_FALSE(BoolFromText(TextView()));
}

TEST(BoolFromText, TakesOtherTextByItsNumber) {
    for (const char *yes : {"2", " 1", "1abc", "0x1", "010", "+3", "4294967296"}) EXPECT_TRUE(BoolFromText(In(yes))) << yes;
    for (const char *no : {"-1", "0.5", "08", "00", "-0x5", "x1"}) EXPECT_FALSE(BoolFromText(In(no))) << no;
}

TEST(BoolFromText, DoesNotTrimWords) {
    EXPECT_FALSE(BoolFromText(In("true ")));
    EXPECT_FALSE(BoolFromText(In(" yes")));
}

TEST(FloatFromText, ReadsDecimals) {
    EXPECT_EQ(FloatFromText(In("0.25")), 0.25);
    EXPECT_EQ(FloatFromText(In(" \t-1.5x")), -1.5);
    EXPECT_EQ(FloatFromText(In("+.5")), 0.5);
    EXPECT_EQ(FloatFromText(In("5.")), 5.0);
    EXPECT_EQ(FloatFromText(In("1e3")), 1000.0);
    EXPECT_EQ(FloatFromText(In("1E-3")), 0.001);
    EXPECT_EQ(FloatFromText(In("1.5.7")), 1.5);
    EXPECT_EQ(FloatFromText(In("1,5")), 1.0);
}

TEST(FloatFromText, IncompleteExponentIsNotPartOfTheNumber) {
    EXPECT_EQ(FloatFromText(In("2e")), 2.0);
    EXPECT_EQ(FloatFromText(In("2e+")), 2.0);
    EXPECT_EQ(FloatFromText(In("2e%")), 2.0);
    EXPECT_EQ(FloatFromText(In("2d5")), 2.0);
}

TEST(FloatFromText, IsZeroForEverythingElse) {
    for (const char *other : {"", ".", "-", "inf", "nan", "infinity", "e5", "%", "abc", "-.e1"}) {
        EXPECT_EQ(FloatFromText(In(other)), 0.0) << other;
    }
    EXPECT_EQ(FloatFromText(In("0x10")), 0.0);
}

TEST(FloatFromText, DividesAPercentage) {
    EXPECT_EQ(FloatFromText(In("50%")), 0.5);
    EXPECT_EQ(FloatFromText(In("50 %")), 50.0);
    EXPECT_EQ(FloatFromText(In("12.5%x")), 0.125);
    EXPECT_EQ(FloatFromText(In("5.%")), 0.05);
}

TEST(FloatFromText, RangeEndsInInfinityAndZero) {
    EXPECT_EQ(FloatFromText(In("1e309")), std::numeric_limits<double>::infinity());
    EXPECT_EQ(FloatFromText(In("-1e99999999999999999999")), -std::numeric_limits<double>::infinity());
    EXPECT_EQ(FloatFromText(In("1.7976931348623157e308")), std::numeric_limits<double>::max());
    EXPECT_EQ(FloatFromText(In("4.9406564584124654e-324")), std::numeric_limits<double>::denorm_min());
    EXPECT_EQ(FloatFromText(In("2e-324")), 0.0);
    EXPECT_EQ(FloatFromText(In("1e-99999999999999999999")), 0.0);
    EXPECT_EQ(FloatFromText(In("0e99999")), 0.0);
}

TEST(FloatFromText, KeepsTheSignOfZero) { EXPECT_TRUE(std::signbit(FloatFromText(In("-0")))); }

TEST(FloatFromText, ZerosInFrontOfTheDigitsDoNotCount) {
    const std::string zeros(5000, '0');
    const std::string nines(2000, '9');
    EXPECT_EQ(FloatFromText(In(zeros + "7")), 7.0);
    EXPECT_EQ(FloatFromText(In("0." + zeros.substr(0, 299) + "1e300")), 1.0);
    EXPECT_EQ(FloatFromText(In("1" + zeros.substr(0, 2000) + "e-2000")), 1.0);
    EXPECT_EQ(FloatFromText(In(nines + "e-2000")), 1.0);
}

TEST(FloatFromText, IsExactWhereOnlyAFarDigitDecides) {
    // Half way between 1 and the next real, and the same with one digit more behind 1000 zeros.
    const std::string half = "1.00000000000000011102230246251565404236316680908203125";
    EXPECT_EQ(FloatFromText(In(half)), 1.0);
    EXPECT_EQ(FloatFromText(In(half + std::string(1000, '0') + "1")), std::nextafter(1.0, 2.0));
}

TEST(FloatFromText, ReadsEveryShortestFormBack) {
    std::mt19937_64 random(20150507);
    for (int i = 0; i < 20000; ++i) {
        const uint64_t bits = random();
        double value = 0;
        std::memcpy(&value, &bits, sizeof(value));
        if (!std::isfinite(value)) continue;
        char text[64];
        const auto end = std::to_chars(text, text + sizeof(text), value, std::chars_format::scientific).ptr;
        ASSERT_EQ(FloatFromText(In(std::string(text, end))), value) << std::string(text, end);
    }
}

TEST(FloatFromText, TellsTheCharactersOfTheNumber) {
    const auto used = [](const char *text) {
        size_t count = 99;
        RealFromText(In(text), &count);
        return count;
    };
    EXPECT_EQ(used(" -1.5e2%"), 7U);
    EXPECT_EQ(used("1e"), 1U);
    EXPECT_EQ(used("5.x"), 2U);
    EXPECT_EQ(used(" -x"), 0U);
}

TEST(FloatFromText, LongTextCostsNoMemory) {
    const Text digits(4 << 20, static_cast<OLECHAR>('7'));
    EXPECT_EQ(FloatFromText(digits), std::numeric_limits<double>::infinity());
    EXPECT_EQ(AutoNumberFromText(digits).used, digits.size());
    EXPECT_EQ(IntFromText(digits), std::numeric_limits<int32_t>::max());
}

TEST(FloatToText, DropsZerosAtTheEnd) {
    EXPECT_EQ(Say(FloatToText(0.25, -1)), "0.25");
    EXPECT_EQ(Say(FloatToText(1.0, -1)), "1.0");
    EXPECT_EQ(Say(FloatToText(10.0, -1)), "10.0");
    EXPECT_EQ(Say(FloatToText(0.0, -1)), "0.0");
    EXPECT_EQ(Say(FloatToText(0.901961, -1)), "0.901961");
    EXPECT_EQ(Say(FloatToText(1.0 / 3, -1)), "0.333333");
    EXPECT_EQ(Say(FloatToText(100.0, -7)), "100.0");
    EXPECT_EQ(Say(FloatToText(-2.5, -1)), "-2.5");
}

TEST(FloatToText, MinusZeroKeepsItsSign) { EXPECT_EQ(Say(FloatToText(-0.0, -1)), "-0.0"); }

TEST(FloatToText, PrecisionDecidesDigitsAndTrimming) {
    EXPECT_EQ(Say(FloatToText(2.5, 0)), "2");
    EXPECT_EQ(Say(FloatToText(1000.0, 0)), "1000");
    EXPECT_EQ(Say(FloatToText(1.0, 1)), "1.0");
    EXPECT_EQ(Say(FloatToText(1.0, 2)), "1.00");
    EXPECT_EQ(Say(FloatToText(1.0, 3)), "1.0");
    EXPECT_EQ(Say(FloatToText(1.25, 3)), "1.25");
    EXPECT_EQ(Say(FloatToText(0.1, 20)), "0.10000000000000000555");
    EXPECT_EQ(Say(FloatToText(0.5, 2000000000)), "0.5");
}

TEST(FloatToText, TextWithoutAPointStaysWhole) {
    EXPECT_EQ(Say(FloatToText(std::numeric_limits<double>::infinity(), -1)), "inf");
    EXPECT_EQ(Say(FloatToText(-std::numeric_limits<double>::infinity(), -1)), "-inf");
    EXPECT_EQ(Say(FloatToText(std::numeric_limits<double>::quiet_NaN(), -1)), "nan");
}

TEST(FloatToText, ABufferTakesSixtyThreeCharacters) {
    OLECHAR buffer[66];
    std::fill(std::begin(buffer), std::end(buffer), static_cast<OLECHAR>('#'));
    EXPECT_EQ(FloatToText(1e300, buffer, -1), buffer);
    EXPECT_EQ(buffer[62], Text(FloatToText(1e300, -1))[62]);
    EXPECT_EQ(buffer[63], 0);
    EXPECT_EQ(buffer[64], '#');
    EXPECT_EQ(FloatToText(1e300, -1).size(), 303U);
    EXPECT_EQ(FloatToText(1.0, static_cast<OLECHAR *>(nullptr), -1), nullptr);
}

TEST(RoundToInt, RoundsHalfAwayFromZeroAndClamps) {
    EXPECT_EQ(RoundToInt(2.5), 3);
    EXPECT_EQ(RoundToInt(-2.5), -3);
    EXPECT_EQ(RoundToInt(1e20), 2147483647);
    EXPECT_EQ(RoundToInt(-1e20), std::numeric_limits<int32_t>::min());
    EXPECT_EQ(RoundToInt(std::numeric_limits<double>::quiet_NaN()), 0);
}

TEST(IntToText, FillsWithZeros) {
    EXPECT_EQ(Say(IntToText(7, 3)), "007");
    EXPECT_EQ(Say(IntToText(-7, 3)), "-07");
    EXPECT_EQ(Say(IntToText(12345, 4)), "12345");
    EXPECT_EQ(Say(IntToText(std::numeric_limits<int64_t>::min())), "-9223372036854775808");
    EXPECT_EQ(Say(HexToText(0xAB, 4)), "00AB");
}

}    // namespace
}    // namespace zck
