// Reals, sizes and their texts, against tables and slow models.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstring>
#include <limits>
#include <random>

#include "props/values/typed_value.h"
#include "tests/conformance/text_tools.h"
#include "tests/conformance/value_model.h"

namespace conformance {
namespace {

using zck::TypedValue;

constexpr double kInfinite = std::numeric_limits<double>::infinity();

TEST(Floats, ToText) {
    const struct {
        double value;
        int32_t precision;
        const char *text;
    } rows[] = {{0.25, -1, "0.25"},
                {1.0, -1, "1.0"},
                {10.0, -1, "10.0"},
                {0.0, -1, "0.0"},
                {-0.0, -1, "-0.0"},
                {100.0, -1, "100.0"},
                {-0.25, -1, "-0.25"},
                {0.1234567, -1, "0.123457"},
                {0.0000001, -1, "0.0"},
                {-0.0000001, -1, "-0.0"},
                {1e20, -1, "100000000000000000000.0"},
                {kInfinite, -1, "inf"},
                {-kInfinite, -1, "-inf"},
                {1.0, 0, "1"},
                {100.0, 0, "100"},
                {1000.0, 0, "1000"},
                {100000.0, 0, "100000"},
                {2.5, 0, "2"},
                {1.0, 1, "1.0"},
                {10.0, 1, "10.0"},
                {1.0, 2, "1.00"},
                {1.5, 2, "1.50"},
                {1.0, 3, "1.0"},
                {1.5, 3, "1.5"},
                {1.25, 4, "1.25"},
                {0.1, 20, "0.10000000000000000555"},
                {1000.0, 10, "1000.0"},
                {-kInfinite, 5, "-inf"}};
    for (const auto &row : rows) {
        EXPECT_EQ(Say(zck::FloatToText(row.value, row.precision)), row.text) << row.value << " " << row.precision;
        OLECHAR buffer[64];
        EXPECT_EQ(zck::FloatToText(row.value, buffer, row.precision), buffer);
        EXPECT_EQ(Say(TextView(buffer)), row.text);
    }
    EXPECT_EQ(Say(zck::FloatToText(std::numeric_limits<double>::quiet_NaN(), -1)), "nan");
    EXPECT_EQ(zck::FloatToText(1.0, nullptr, -1), nullptr);
}

TEST(Floats, ABufferTakesSixtyThreeCharacters) {
    OLECHAR buffer[66];
    std::memset(buffer, 0x5A, sizeof buffer);
    const std::string full = ModelFloatText(1e300, -1);
    zck::FloatToText(1e300, buffer, -1);
    EXPECT_EQ(buffer[63], 0);
    EXPECT_EQ(buffer[64], 0x5A5A);
    EXPECT_EQ(Say(TextView(buffer)), full.substr(0, 63));
    TypedValue value;
    value.SetFloat(1e300);
    EXPECT_EQ(Say(value.GetText()), full);
}

TEST(Floats, ToTextAsTheModel) {
    std::mt19937_64 random(32);
    for (int i = 0; i < 20000; ++i) {
        double v = static_cast<double>(static_cast<int64_t>(random())) / std::pow(10.0, static_cast<double>(random() % 24));
        if (i % 4 == 0) v = std::round(v * 8) / 8;
        if (i % 64 == 0) {
            const uint64_t bits = random() & 0x7FEFFFFFFFFFFFFF;
            std::memcpy(&v, &bits, sizeof v);
        }
        for (const int32_t p : {-1, 0, 1, 2, 3, 6, 9, 17})
            ASSERT_EQ(Say(zck::FloatToText(v, p)), ModelFloatText(v, p)) << v << " " << p;
    }
}

TEST(Floats, FromText) {
    const struct {
        const char *text;
        double value;
    } rows[] = {{"", 0},
                {"0.25", 0.25},
                {"50%", 0.5},
                {" 50%", 0.5},
                {"50 %", 50},
                {"-50%%", -0.5},
                {"5e1%", 0.5},
                {"%", 0},
                {".%", 0},
                {".5", 0.5},
                {"5.", 5},
                {"5.%", 0.05},
                {".", 0},
                {"-", 0},
                {"-.5", -0.5},
                {"+.5", 0.5},
                {"1e", 1},
                {"1e+", 1},
                {"1e%", 1},
                {"1E2", 100},
                {"1e-2x", 0.01},
                {"1d5", 1},
                {"1,5", 1},
                {"0x10", 0},
                {"inf", 0},
                {"-infinity", 0},
                {"nan", 0},
                {"1e999", kInfinite},
                {"-1e999", -kInfinite},
                {"1e-999", 0},
                {"1e99999999999999999999", kInfinite},
                {"1e-99999999999999999999", 0},
                {"0e99999999999999999999", 0},
                {"4.9406564584124654e-324", 4.9406564584124654e-324},
                {"2.2250738585072011e-308", 2.2250738585072011e-308},
                {"9007199254740993", 9007199254740992.0},
                {"- 5", 0},
                {"1 2", 1}};
    for (const auto &row : rows) EXPECT_EQ(zck::FloatFromText(T(row.text)), row.value) << row.text;
    EXPECT_EQ(zck::FloatFromText(kNothing), 0);
    EXPECT_TRUE(std::signbit(zck::FloatFromText(T("-0.0"))));
    std::mt19937 random(33);
    for (int i = 0; i < 40000; ++i) {
        const std::string s = AnyOf(random, i % 2 != 0 ? "0123456789.." : "0123456789.eE+-% xn", 20);
        ASSERT_EQ(zck::FloatFromText(T(s)), ModelFloat(s)) << s;
        size_t used = 99, want = 98;
        ASSERT_EQ(zck::RealFromText(T(s), &used), ModelReal(s, want)) << s;
        ASSERT_EQ(used, want) << s;
    }
}

TEST(Floats, LongTextsAreExact) {
    const std::string zeros(1000, '0'), halfway = "9007199254740993." + std::string(900, '0');
    for (const std::string &s :
         {"1" + zeros + "e-1000", "0." + zeros + "1e1001", zeros + "5", zeros + "." + zeros + "5e1001", halfway, halfway + "1",
          halfway + "1e300", "9007199254740993" + zeros + "1e-1001", "2" + std::string(308, '9'),
          "0." + std::string(320, '0') + "49" + zeros + "1", zeros, "." + zeros})
        EXPECT_EQ(zck::FloatFromText(T(s)), ModelFloat(s)) << s;
    std::mt19937 random(39);
    for (int i = 0; i < 2000; ++i) {
        std::string s(1 + random() % 1200, '0');
        for (char &c : s) c = "0123456789"[random() % 10];
        s.insert(random() % s.size(), ".");
        s += "e" + std::to_string(static_cast<int>(random() % 2400) - 1200);
        ASSERT_EQ(zck::FloatFromText(T(s)), ModelFloat(s)) << s;
    }
}

TEST(Floats, ATextBetweenTwoRealsIsDecidedByItsLastDigit) {
    const std::string half = "1.00000000000000011102230246251565404236316680908203125";    // 1 + 2 to the power of -53
    const double next = std::nextafter(1.0, 2.0);
    EXPECT_EQ(zck::FloatFromText(T(half)), 1.0);
    EXPECT_EQ(zck::FloatFromText(T(half + std::string(600, '0'))), 1.0);
    EXPECT_EQ(zck::FloatFromText(T(half + std::string(600, '0') + "1")), next);
    EXPECT_EQ(zck::FloatFromText(T(half + std::string(2000, '0') + "1")), next);
    // Half of the smallest real has 751 digits.
    char exact[1200];
    std::snprintf(exact, sizeof exact, "%.1074f", std::numeric_limits<double>::denorm_min());
    std::string smallest(exact);
    int rest = 0;
    smallest += "0";
    for (char &c : smallest) {
        if (c == '.') continue;
        const int v = rest * 10 + (c - '0');
        c = static_cast<char>('0' + v / 2);
        rest = v % 2;
    }
    EXPECT_EQ(zck::FloatFromText(T(smallest)), 0.0);
    EXPECT_EQ(zck::FloatFromText(T(smallest + "1")), std::numeric_limits<double>::denorm_min());
    EXPECT_EQ(zck::FloatFromText(T(smallest + "1")), ModelFloat(smallest + "1"));
}

TEST(Sizes, FromText) {
    using zck::SizeUnit;
    const struct {
        const char *text;
        double value;
        SizeUnit unit;
    } rows[] = {{"", 0, SizeUnit::None},          {"12", 12, SizeUnit::None},
                {"12px", 12, SizeUnit::Pixels},   {"12pxy", 12, SizeUnit::Pixels},
                {"12 px", 12, SizeUnit::None},    {"12PX", 12, SizeUnit::None},
                {"12Pt", 12, SizeUnit::None},     {"12p", 12, SizeUnit::None},
                {"12pt", 12, SizeUnit::Points},   {"-1.5pt;", -1.5, SizeUnit::Points},
                {"50%", 50, SizeUnit::Percent},   {"0.5%px", 0.5, SizeUnit::Percent},
                {" 1e1px", 10, SizeUnit::Pixels}, {"x", 0, SizeUnit::None}};
    for (const auto &row : rows) {
        const zck::SizeValue size = zck::SizeFromText(T(row.text));
        EXPECT_EQ(size.value, row.value) << row.text;
        EXPECT_EQ(size.unit, row.unit) << row.text;
    }
}

TEST(Sizes, ToText) {
    const struct {
        double value;
        int32_t unit;
        const char *text;
    } rows[] = {{12, 0, "12.00"}, {12.345, 0, "12.35"}, {-0.5, 0, "-0.50"}, {50, 1, "50.000%"}, {0.12345, 1, "0.123%"},
                {12, 2, "12px"},  {2.5, 2, "3px"},      {-2.5, 2, "-3px"},  {2.4, 2, "2px"},    {0.49999999999999994, 2, "0px"},
                {3.5, 3, "4pt"},  {-0.4, 3, "0pt"},     {7, 4, "7.00"},     {7, -1, "7.00"},    {1.5, 99, "1.50"}};
    for (const auto &row : rows)
        EXPECT_EQ(Say(zck::SizeToText({row.value, static_cast<zck::SizeUnit>(row.unit)})), row.text)
            << row.value << " " << row.unit;
    for (const char *s : {"12px", "7pt", "50.000%", "12.50"}) EXPECT_EQ(Say(zck::SizeToText(zck::SizeFromText(T(s)))), s);
}

}    // namespace
}    // namespace conformance
