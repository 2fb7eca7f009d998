// Whole numbers, booleans and their texts, against tables and slow models.
#include <gtest/gtest.h>

#include <random>

#include "props/values/typed_value.h"
#include "tests/conformance/text_tools.h"
#include "tests/conformance/value_model.h"

namespace conformance {
namespace {

TEST(Numbers, DecimalStopsAtTheFirstForeignCharacter) {
    const struct {
        const char *text;
        int32_t value;
    } rows[] = {{"", 0},
                {"12", 12},
                {"  12", 12},
                {"\t\r\n-12x9", -12},
                {"+7", 7},
                {"0012", 12},
                {"0x10", 0},
                {"12.9", 12},
                {"- 5", 0},
                {"--5", 0},
                {"+-5", 0},
                {"abc", 0},
                {"1e3", 1},
                {"2147483647", INT32_MAX},
                {"2147483648", INT32_MAX},
                {"99999999999999999999999", INT32_MAX},
                {"-2147483648", INT32_MIN},
                {"-2147483649", INT32_MIN},
                {"-99999999999999999999999", INT32_MIN}};
    for (const auto &row : rows) EXPECT_EQ(zck::IntFromText(T(row.text)), row.value) << row.text;
    EXPECT_EQ(zck::IntFromText(kNothing), 0);
}

TEST(Numbers, AutomaticBase) {
    const struct {
        const char *text;
        uint32_t hex32;
        uint64_t hex64;
        int64_t int64;
    } rows[] = {{"", 0, 0, 0},
                {"0", 0, 0, 0},
                {"0x", 0, 0, 0},
                {"0xG", 0, 0, 0},
                {"0x1F", 31, 31, 31},
                {"0X1f", 31, 31, 31},
                {"010", 8, 8, 8},
                {"08", 0, 0, 0},
                {"0179", 15, 15, 15},
                {"10", 10, 10, 10},
                {"  0x10", 16, 16, 16},
                {"16711935", 0xFF00FF, 0xFF00FF, 0xFF00FF},
                {"0x00FF00FF", 0xFF00FF, 0xFF00FF, 0xFF00FF},
                {"-1", 0xFFFFFFFF, UINT64_MAX, -1},
                {"-0x10", 0xFFFFFFF0, 0xFFFFFFFFFFFFFFF0, -16},
                {"4294967295", 0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF},
                {"4294967296", 0xFFFFFFFF, 0x100000000, 0x100000000},
                {"0x7FFFFFFFFFFFFFFF", 0xFFFFFFFF, 0x7FFFFFFFFFFFFFFF, INT64_MAX},
                {"0x8000000000000000", 0xFFFFFFFF, 0x8000000000000000, INT64_MAX},
                {"0xFFFFFFFFFFFFFFFF", 0xFFFFFFFF, UINT64_MAX, INT64_MAX},
                {"0x10000000000000000", 0xFFFFFFFF, UINT64_MAX, INT64_MAX},
                {"-9223372036854775808", 0xFFFFFFFF, 0x8000000000000000, INT64_MIN},
                {"-9223372036854775809", 0xFFFFFFFF, 0x7FFFFFFFFFFFFFFF, INT64_MIN}};
    for (const auto &row : rows) {
        EXPECT_EQ(zck::Hex32FromText(T(row.text)), row.hex32) << row.text;
        EXPECT_EQ(zck::Hex64FromText(T(row.text)), row.hex64) << row.text;
        EXPECT_EQ(zck::Int64FromText(T(row.text)), row.int64) << row.text;
    }
    EXPECT_EQ(zck::AutoNumberFromText(T("0xZ")).used, 1U);
    EXPECT_EQ(zck::AutoNumberFromText(T(" +0x")).used, 3U);
    EXPECT_EQ(zck::AutoNumberFromText(T("x")).used, 0U);
    EXPECT_EQ(zck::AutoNumberFromText(T(" -")).used, 0U);
}

TEST(Numbers, AsTheModelOverGeneratedTexts) {
    std::mt19937 random(31);
    const char *const starts[] = {"", "", " ", "\t\v ", "-", "+", "0x", "0X", "-0x", "0", " -0", "00x", "--", " +"};
    for (int i = 0; i < 40000; ++i) {
        const std::string s = OneOf(random, starts) + AnyOf(random, i % 2 != 0 ? "0123456789" : "0178aAfFgx .%-", 22);
        const Text text = T(s);
        ASSERT_EQ(zck::IntFromText(text), ModelInt(s)) << s;
        ASSERT_EQ(zck::Hex32FromText(text), ModelHex32(s)) << s;
        ASSERT_EQ(zck::Hex64FromText(text), ModelHex64(s)) << s;
        ASSERT_EQ(zck::Int64FromText(text), ModelInt64(s)) << s;
        ASSERT_EQ(zck::BoolFromText(text), ModelBool(s)) << s;
        const zck::AutoNumber n = zck::AutoNumberFromText(text);
        const ModelNumber m = NumberInBase(s, 0);
        ASSERT_EQ(n.magnitude, m.magnitude) << s;
        ASSERT_EQ(n.used, m.used) << s;
        ASSERT_TRUE(m.used == 0 || n.negative == m.negative) << s;
    }
}

TEST(Booleans, WordsAndNumbers) {
    for (const char *s : {"1", "true", "TRUE", "yes", "YES",  "Yes", "only", "Only", "on",  "ON",
                          "y", "Y",    "2",    " 1",  "1abc", "+1",  "0x1",  "0x0F", "010", "99999999999999999999"})
        EXPECT_TRUE(zck::BoolFromText(T(s))) << s;
    for (const char *s : {"",     "0",   "false", "FALSE", "False", "-1", "true ", " yes", " on",
                          "no",   "off", "n",     "t",     "0.5",   "0x", "08",    "00",   "-99999999999999999999",
                          "yes1", "oN!"})
        EXPECT_FALSE(zck::BoolFromText(T(s))) << s;
    EXPECT_FALSE(zck::BoolFromText(kNothing));
}

}    // namespace
}    // namespace conformance
