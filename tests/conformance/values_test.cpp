// Values and their texts, both ways, against tables and slow models.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>

#include "props/values/typed_value.h"
#include "tests/conformance/text_tools.h"
#include "tests/conformance/value_model.h"

namespace conformance {
namespace {

using zck::TypedValue;
using zck::ValueType;

constexpr TextView kNothing;    // a view of nothing
constexpr double kInfinite = std::numeric_limits<double>::infinity();

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

GUID IdOf(const std::array<uint8_t, 16> &bytes) {
    GUID id;
    std::memcpy(&id, bytes.data(), 16);
    return id;
}

TEST(Identifiers, PairsOfDigits) {
    const GUID want = {0x6B0F1D32, 0x8E54, 0x4C1B, {0x9A, 0x3E, 0x51, 0x07, 0xD2, 0xA4, 0x88, 0x03}};
    const GUID none = {};
    for (const char *s : {"{6B0F1D32-8E54-4C1B-9A3E-5107D2A48803}", "6b0f1d328e544c1b9a3e5107d2a48803",
                          "6B 0F,1D/32 8E5 544C1B9A3E5107D2A48803", "xx6B0F1D32-8E54-4C1B-9A3E-5107D2A48803 a"})
        EXPECT_TRUE(zck::IdentifierFromText(T(s)) == want) << s;
    EXPECT_TRUE(zck::IdentifierFromText(T("6-6B0F1D32-8-8E54-4C1B-9A3E-5107D2A48803-3")) == want);
    for (const char *s : {"", "{6B0F1D32-8E54-4C1B-9A3E-5107D2A488}", "{6B0F1D32-8E54-4C1B-9A3E-5107D2A4880301}",
                          "6 B 0 F 1 D 3 2 8 E 5 4 4 C 1 B 9 A 3 E 5 1 0 7 D 2 A 4 8 8 0 3", "no digits"})
        EXPECT_TRUE(zck::IdentifierFromText(T(s)) == none) << s;
    EXPECT_EQ(Say(zck::IdentifierToText(want)), "{6B0F1D32-8E54-4C1B-9A3E-5107D2A48803}");
    EXPECT_EQ(Say(zck::IdentifierToText(none)), "{00000000-0000-0000-0000-000000000000}");
}

TEST(Identifiers, AsTheModel) {
    std::mt19937 random(34);
    int found = 0;
    for (int i = 0; i < 20000; ++i) {
        std::string s;
        for (int pair = 0; pair < 15 + static_cast<int>(random() % 3); ++pair)
            s += AnyOf(random, "g-{ ", random() % 8 == 0 ? 2 : 0) + AnyOf(random, "0123456789abcdefABCDEF", 0) +
                 std::string(1, "0123456789abcdefABCDEF"[random() % 22]) +
                 std::string(1, "0123456789abcdefABCDEF"[random() % 22]);
        if (random() % 4 == 0) s.insert(random() % s.size(), 1, "0a-"[random() % 3]);
        const GUID want = IdOf(ModelIdentifier(s)), got = zck::IdentifierFromText(T(s));
        ASSERT_TRUE(got == want) << s;
        if (got != GUID{}) ++found;
        ASSERT_TRUE(zck::IdentifierFromText(zck::IdentifierToText(got)) == got);
    }
    EXPECT_GT(found, 5000);
}

constexpr eZFCC Format(uint32_t value) { return static_cast<eZFCC>(value); }

TEST(Formats, ToText) {
    const struct {
        uint32_t value;
        const char *text;
    } rows[] = {{0, "BI_RGB"},
                {1, "BI_RLE8"},
                {2, "BI_RLE4"},
                {3, "BI_BITFIELDS"},
                {4, "0x4"},
                {0xE436EB77, "0xE436EB77"},
                {0xE436EB78, "RGB1"},
                {0xE436EB79, "RGB4"},
                {0xE436EB7A, "RGB8"},
                {0xE436EB7B, "RGB565"},
                {0xE436EB7C, "RGB555"},
                {0xE436EB7D, "RGB24"},
                {0xE436EB7E, "RGB32"},
                {0xE436EB7F, "0xE436EB7F"},
                {0x297C55AF, "ARGB1555"},
                {0x6E6415E6, "ARGB4444"},
                {0x773C9AC0, "ARGB32"},
                {0x32595559, "YUY2"},
                {0x30313276, "v210"},
                {0x56555941, "AYUV"},
                {0x20202020, "    "},
                {0x7E7E7E7E, "~~~~"},
                {0x1F202020, "0x1F202020"},
                {0x7F414141, "0x7F414141"},
                {0x414141A0, "0x414141A0"},
                {0x1234, "0x1234"},
                {0x65FFAF79, "0x65FFAF79"}};
    for (const auto &row : rows) EXPECT_EQ(Say(zck::FormatToText(Format(row.value))), row.text) << std::hex << row.value;
}

TEST(Formats, FromText) {
    for (const char *s : {"YUY2", "YVYU", "UYVY", "YV12", "HDYC", "I420", "Y422", "NV12", "Y444", "v210", "r210"}) {
        uint32_t word = 0;
        for (size_t i = 4; i-- > 0;) word = word << 8 | static_cast<uint8_t>(s[i]);
        std::string other(s);
        for (char &c : other)
            c = static_cast<char>(std::isupper(static_cast<unsigned char>(c)) ? std::tolower(c) : std::toupper(c));
        EXPECT_EQ(zck::FormatFromText(T(s)), Format(word)) << s;
        EXPECT_EQ(zck::FormatFromText(T(other)), Format(word)) << other;
        EXPECT_EQ(Say(zck::FormatToText(Format(word))), s);
        for (const std::string &no : {std::string(" ") + s, s + std::string(" "), std::string(s, 3), s + std::string("2")})
            EXPECT_EQ(zck::FormatFromText(T(no)), Format(0)) << no;
    }
    EXPECT_EQ(zck::FormatFromText(T("ARGB32")), Format(0x773C9AC0));
    EXPECT_EQ(zck::FormatFromText(T("rgb32")), Format(0xE436EB7E));
    EXPECT_EQ(zck::FormatFromText(T("Rgb24")), Format(0xE436EB7D));
    for (const char *s :
         {"", "BI_RGB", "BI_RLE8", "RGB565", "RGB555", "RGB8", "RGB1", "ARGB1555", "0x1234", "AYUV", "YUYV", "BGR24"})
        EXPECT_EQ(zck::FormatFromText(T(s)), Format(0)) << s;
    EXPECT_EQ(zck::FormatFromText(kNothing), Format(0));
}

TEST(Colors, ToText) {
    const struct {
        uint32_t color;
        const char *text;
    } rows[] = {{0xFF0000FF, "Red"},      {0x800000FF, "Red(128)"}, {0xFF123456, "#563412"},      {0x80123456, "#563412(128)"},
                {0x00000000, "Black(0)"}, {0xFF000000, "Black"},    {0xFFFFFF00, "Aqua"},         {0xFF8A5406, "OV"},
                {0x018A5406, "OV(1)"},    {0xFFB29000, "OVL"},      {0xFE000001, "#010000(254)"}, {0xFF010000, "#000001"},
                {0x00FFFFFF, "White(0)"}};
    for (const auto &row : rows) {
        EXPECT_EQ(Say(zck::ColorToText(row.color)), row.text);
        OLECHAR buffer[64];
        EXPECT_EQ(zck::ColorToText(row.color, buffer), buffer);
        EXPECT_EQ(Say(TextView(buffer)), row.text);
    }
    EXPECT_EQ(zck::ColorToText(0xFF0000FF, nullptr), nullptr);
    std::mt19937 random(35);
    const uint32_t bytes[] = {0, 0x80, 0xFF, 0xC0, 0xA5, 0x45, 0x54, 0x06, 0x8A, 0x90, 0xB2, 0x13, 0x8B, 1};
    for (int i = 0; i < 20000; ++i) {
        uint32_t v = static_cast<uint32_t>(random());
        if (i % 2 != 0)
            v = OneOf(random, bytes) << 24 | OneOf(random, bytes) << 16 | OneOf(random, bytes) << 8 | OneOf(random, bytes);
        ASSERT_EQ(Say(zck::ColorToText(v)), ModelColorText(v));
    }
}

TEST(Colors, FromText) {
    constexpr uint32_t kElse = 0x11223344;
    const struct {
        const char *text;
        uint32_t color;
    } rows[] = {{"", kElse},
                {"Red", 0xFF0000FF},
                {"rED", 0xFF0000FF},
                {"Red(128)", 0x800000FF},
                {"Red(0.5)", 0x000000FF},
                {"Red(0)", 0x000000FF},
                {"Red(1)", 0x010000FF},
                {"Red(50%)", 0x320000FF},
                {"Red(", 0x000000FF},
                {"Red(x)", 0x000000FF},
                {"Red()", 0x000000FF},
                {"Red(300)", 0xFF0000FF},
                {"Red(-5)", 0x000000FF},
                {"Red( 77", 0x4D0000FF},
                {"Red(1e2)", 0x640000FF},
                {"Red ", kElse},
                {"Red (128)", kElse},
                {" Red", kElse},
                {"Red;Blue", 0xFF0000FF},
                {"Red.", 0xFF0000FF},
                {"Red|Blue(3)", 0xFF0000FF},
                {"Default", kElse},
                {"default", kElse},
                {"Default(7)", 0x07223344},
                {"(7)", 0x07223344},
                {"(", 0x00223344},
                {"(x", 0x00223344},
                {"#FF0000", kElse},
                {"#(7)", kElse},
                {"Transparent", 0},
                {"transparent(200)", 0},
                {"cyan", 0xFFFFFF00},
                {"Aqua(9)", 0x09FFFF00},
                {"OV", 0xFF8A5406},
                {"ov", 0xFF8A5406},
                {"orvane", 0xFF8A5406},
                {"orvane-light", 0xFF8A5406},
                {"orvane-light(5)", 0xFF8A5406},
                {"OVL", 0xFFB29000},
                {"ovlight", 0xFFB29000},
                {"ovLight(16)", 0x10B29000},
                {"abc", kElse},
                {"abc(3)", kElse},
                {"ABC", 0xFFCCBBAA},
                {"7", 0xFF770000},
                {"AB", 0xFFBBAA00},
                {"ABCD", 0xFFCDAB00},
                {"0FF0000", 0x000000FF},
                {"ff0000", kElse},
                {"FF0000", 0xFF0000FF},
                {"FF0000(64)", 0x400000FF},
                {"1f", 0xFF110000},
                {"0xF00", 0xFF0000FF},
                {"0xFF0000", 0xFF0000FF},
                {"0x80FF0000", 0x800000FF},
                {"80FF0000", 0x800000FF},
                {"80FF0000(3)", 0x800000FF},
                {"0x", 0xFF000000},
                {"0", 0xFF000000},
                {"G", kElse},
                {"G(5)", kElse},
                {"123456789AB", 0xFFFFFFFF},
                {"            5", 0x00050000},
                {"             5", kElse},
                {" 9999", 0xFFFF0077},
                {"  99", 0xFF336600},
                {"Fg", kElse}};
    for (const auto &row : rows) EXPECT_EQ(zck::ColorFromText(T(row.text), kElse), row.color) << "\"" << row.text << "\"";
    EXPECT_EQ(zck::ColorFromText(kNothing, kElse), kElse);
    EXPECT_EQ(zck::ColorFromText(TextView(T("")), 0xFF000000), 0xFF000000);
}

TEST(Colors, TheSignsThatEndATextAndNoOthers) {
    for (int c = 1; c < 127; ++c) {
        const std::string s = std::string("Red") + static_cast<char>(c) + "x";
        const bool ends = std::string("~!@#$%^&*-+=|\\/.,;`").find(static_cast<char>(c)) != std::string::npos;
        EXPECT_EQ(zck::ColorFromText(T(s), 5), ends ? 0xFF0000FF : c == '(' ? 0x000000FF : 5U) << c;
    }
}

TEST(Colors, SixtyThreeCharactersAreLookedAt) {
    EXPECT_EQ(zck::ColorFromText(T("Red(" + std::string(57, ' ') + "12)"), 5), 0x0C0000FF);
    EXPECT_EQ(zck::ColorFromText(T("Red(" + std::string(58, ' ') + "12)"), 5), 0x010000FF);
    EXPECT_EQ(zck::ColorFromText(T("Red(" + std::string(59, ' ') + "12)"), 5), 0x000000FF);
    EXPECT_EQ(zck::ColorFromText(T("Red" + std::string(60, '(') + "12)"), 5), 0x000000FF);
}

TEST(Colors, FromTextAsTheModel) {
    std::mt19937 random(36);
    const char *const words[] = {"Red",   "orangered", "OV",   "ovl",  "ovlight", "orvane",      "orvane-light",
                                 "cyan",  "Aqua",      "Grey", "Gray", "Default", "Transparent", "",
                                 "White", "silver",    "Pink", "0x",   "#",       " ",           "Teal"};
    const char *const tails[] = {"", "(", "(1)", "(0.5)", "(255)", "(256)", "(12e", "( 3)", "(1(2", " ", ";", "-x", "(1e1)"};
    for (int i = 0; i < 60000; ++i) {
        const char *signs = i % 3 == 0 ? "0123456789ABCDEF" : i % 3 == 1 ? "0123456789abcdefABCDEFx (" : "0 17AF(.-#g";
        const std::string middle = i % 4 == 0 ? "" : AnyOf(random, signs, 16);
        const std::string s = (i % 2 == 0 ? OneOf(random, words) : "") + middle + OneOf(random, tails);
        const auto fallback = static_cast<uint32_t>(random());
        ASSERT_EQ(zck::ColorFromText(T(s), fallback), ModelColor(s, fallback)) << "\"" << s << "\" " << std::hex << fallback;
    }
}

zck::TimeFields FieldsOf(const ModelTime &m) {
    zck::TimeFields t;
    for (int i = 0; i < 8; ++i) reinterpret_cast<uint16_t *>(&t)[i] = static_cast<uint16_t>(m.f[i]);
    return t;
}

std::string SayFields(const zck::TimeFields &t) {
    std::string s;
    for (const int v : {t.year, t.month, t.dayOfWeek, t.day, t.hour, t.minute, t.second, t.millisecond})
        s += std::to_string(v) + " ";
    return s;
}

TEST(Times, ToText) {
    const struct {
        zck::TimeFields time;
        const char *all;
        const char *timeOnly;
    } rows[] = {{{2015, 5, 4, 7, 11, 53, 49, 0}, "2015-05-07 11:53:49", "11:53:49"},
                {{2015, 5, 4, 7, 11, 53, 49, 7}, "2015-05-07 11:53:49.007", "11:53:49.007"},
                {{0, 5, 0, 7, 1, 2, 3, 0}, "01:02:03", "01:02:03"},
                {{0, 0, 0, 0, 0, 0, 0, 120}, "00:00:00.120", "00:00:00.120"},
                {{5, 0, 0, 0, 100, 0, 0, 1000}, "0005-00-00 100:00:00.1000", "100:00:00.1000"}};
    for (const auto &row : rows) {
        EXPECT_EQ(Say(zck::TimeToText(row.time, false)), row.all);
        EXPECT_EQ(Say(zck::TimeToText(row.time, true)), row.timeOnly);
        OLECHAR buffer[64];
        EXPECT_EQ(zck::TimeToText(row.time, buffer, false), buffer);
        EXPECT_EQ(Say(TextView(buffer)), row.all);
    }
    EXPECT_EQ(zck::TimeToText(zck::TimeFields{}, nullptr, true), nullptr);
}

TEST(Times, FromText) {
    const struct {
        const char *text;
        const char *fields;
    } rows[] = {{"", "0 0 0 0 0 0 0 0 "},
                {"1:30", "0 0 0 0 1 30 0 0 "},
                {"1:30:15", "0 0 0 0 1 30 15 0 "},
                {"90s", "0 0 0 0 1 30 0 0 "},
                {"45", "0 0 0 0 0 45 0 0 "},
                {"30m", "0 0 0 0 6 0 0 0 "},
                {"5h", "0 0 0 0 5 0 0 0 "},
                {"5H", "0 0 0 0 5 0 0 0 "},
                {"1h30m", "0 0 0 0 1 30 0 0 "},
                {"0.5", "0 0 0 0 0 0 0 500 "},
                {"11:53 ", "0 0 0 0 0 0 0 0 "},
                {"11:53:49.120", "0 0 0 0 11 53 49 120 "},
                {"11:53:49.9996", "0 0 0 0 11 53 49 1000 "},
                {"25:00", "0 0 0 0 1 0 0 0 "},
                {"2015-05-07 11:53:49", "2015 5 0 7 11 53 49 0 "},
                {"2015-05-07\t11:53:49", "2015 5 0 7 11 53 49 0 "},
                {"07.05.2015 11:53:49", "2015 5 0 7 11 53 49 0 "},
                {"07/05/2015 11:53", "2015 5 0 7 11 53 0 0 "},
                {"2015-05-07 11:53:49.25", "2015 5 0 7 11 53 49 250 "},
                {"2015-05-07T11:53:49", "0 0 0 0 7 53 49 0 "},
                {"87467x765970241M 1:00", "0 0 0 0 1 0 0 0 "},
                {"87467x765970241M", "0 0 0 0 0 59 44 0 "},
                {"2015-05-07", "0 0 0 0 9 47 0 0 "},
                {"2015-05 11:53", "0 0 0 0 11 53 0 0 "},
                {"on 2015-05-07 11:53", "0 0 0 0 11 53 0 0 "},
                {"2015-05-07x 11:53", "2015 5 0 7 11 53 0 0 "},
                {"70000-1-2 1:00", "4464 1 0 2 1 0 0 0 "}};
    for (const auto &row : rows) {
        EXPECT_EQ(SayFields(zck::TimeFromText(T(row.text), false)), row.fields) << row.text;
        zck::TimeFields only = zck::TimeFromText(T(row.text), false);
        only.year = only.month = only.day = 0;
        EXPECT_EQ(SayFields(zck::TimeFromText(T(row.text), true)), SayFields(only)) << row.text;
    }
    EXPECT_EQ(SayFields(zck::TimeFromText(kNothing, false)), "0 0 0 0 0 0 0 0 ");
}

TEST(Times, AsTheModel) {
    std::mt19937 random(37);
    const char *const dates[] = {"",     "",   "2015-05-07 ", "7/5/2015 ",    "07.05.2015\t",
                                 "1-2 ", "x ", "1.2.3.4 ",    "12-13-14-15 ", "1/2-3 "};
    int dated = 0;
    for (int i = 0; i < 60000; ++i) {
        std::string clock;
        const int parts = static_cast<int>(random() % 5);
        for (int p = 0; p <= parts; ++p)
            clock += AnyOf(random, "0123456789", 3) + AnyOf(random, i % 2 != 0 ? ":." : ":.HhMmSsx-T ", 1);
        const std::string s = OneOf(random, dates) + clock;
        if (!s.empty() && (s[0] == ' ' || s[0] == '\t')) continue;
        const bool timeOnly = random() % 4 == 0;
        const zck::TimeFields got = zck::TimeFromText(T(s), timeOnly);
        ASSERT_EQ(SayFields(got), SayFields(FieldsOf(ModelTimeOf(s, timeOnly)))) << "\"" << s << "\"";
        if (got.year != 0) ++dated;
    }
    EXPECT_GT(dated, 10000);
}

TEST(Times, WrittenTimesAreReadBack) {
    std::mt19937 random(38);
    for (int i = 0; i < 5000; ++i) {
        ModelTime m;
        const int ranges[] = {9999, 12, 1, 31, 24, 60, 60, 1000};
        for (int f = 0; f < 8; ++f) m.f[f] = static_cast<int>(random() % static_cast<unsigned>(ranges[f]));
        if (i % 3 == 0) m.f[0] = m.f[1] = m.f[3] = 0;
        if (i % 2 == 0) m.f[7] = 0;
        const zck::TimeFields t = FieldsOf(m);
        for (const bool timeOnly : {false, true}) {
            ASSERT_EQ(Say(zck::TimeToText(t, timeOnly)), ModelTimeText(m, timeOnly));
            ModelTime back = m;
            if (timeOnly || m.f[0] == 0) back.f[0] = back.f[1] = back.f[3] = 0;
            ASSERT_EQ(SayFields(zck::TimeFromText(zck::TimeToText(t, timeOnly), timeOnly)), SayFields(FieldsOf(back)));
        }
    }
}

TEST(TypedValues, TextFormOfEachType) {
    TypedValue v;
    EXPECT_EQ(v.Type(), ValueType::Text);
    EXPECT_EQ(Say(v.GetText()), "");
    v.SetBool(true);
    EXPECT_EQ(v.Type(), ValueType::Boolean);
    EXPECT_FALSE(v.TextValid());
    EXPECT_EQ(Say(v.GetText()), "true");
    EXPECT_TRUE(v.TextValid());
    v.SetBool(false);
    EXPECT_EQ(Say(v.GetText()), "false");
    v.SetInt(-12);
    EXPECT_EQ(Say(v.GetText()), "-12");
    v.SetInt(INT32_MIN);
    EXPECT_EQ(Say(v.GetText()), "-2147483648");
    v.SetHex32(0x2A);
    EXPECT_EQ(Say(v.GetText()), "0x0000002A");
    v.SetInt64(INT64_MIN);
    EXPECT_EQ(Say(v.GetText()), "-9223372036854775808");
    v.SetHex64(0xABCDEF);
    EXPECT_EQ(Say(v.GetText()), "0x0000000000ABCDEF");
    v.SetSize({12, zck::SizeUnit::Pixels});
    EXPECT_EQ(Say(v.GetText()), "12px");
    v.SetFloat(0.25);
    EXPECT_EQ(Say(v.GetText()), "0.25");
    v.SetFloat(-0.0);
    EXPECT_EQ(Say(v.GetText()), "-0.0");
    v.SetIdentifier({0x6B0F1D32, 0x8E54, 0x4C1B, {0x9A, 0x3E, 0x51, 0x07, 0xD2, 0xA4, 0x88, 0x03}});
    EXPECT_EQ(Say(v.GetText()), "{6B0F1D32-8E54-4C1B-9A3E-5107D2A48803}");
    v.SetFormat(eZFCC_v210);
    EXPECT_EQ(Say(v.GetText()), "v210");
    v.SetColor(0x800000FF);
    EXPECT_EQ(Say(v.GetText()), "Red(128)");
    v.SetTime({2015, 5, 0, 7, 11, 53, 49, 0});
    EXPECT_EQ(Say(v.GetText()), "2015-05-07 11:53:49");
}

TEST(TypedValues, AnotherTypeIsReadFromTheText) {
    TypedValue v(T("0012"));
    EXPECT_EQ(v.GetInt(), 12);
    EXPECT_EQ(v.Type(), ValueType::Integer);
    EXPECT_EQ(Say(v.GetText()), "0012");
    EXPECT_EQ(v.GetHex32(), 10U);
    EXPECT_EQ(v.Type(), ValueType::Hexadecimal);
    EXPECT_EQ(Say(v.GetText()), "0012");
    EXPECT_TRUE(v.GetBool());
    EXPECT_EQ(v.GetFloat(), 12.0);
    EXPECT_EQ(Say(v.TextForm()), "0012");

    v.SetBool(true);
    EXPECT_EQ(v.GetInt(), 0);    // "true" is no number
    EXPECT_EQ(Say(v.GetText()), "true");
    v.SetHex32(16);
    EXPECT_EQ(v.GetInt(), 0);    // "0x00000010" stops at the x
    v.SetHex32(16);
    EXPECT_EQ(v.GetInt64(), 16);
    v.SetFloat(0.5);
    EXPECT_FALSE(v.GetBool());
    v.SetFloat(1.5);
    EXPECT_TRUE(v.GetBool());
    v.SetFloat(0.1234567);
    EXPECT_EQ(v.GetFloat(), 0.1234567);
    EXPECT_EQ(v.GetInt(), 0);
    EXPECT_EQ(v.GetFloat(), 0.123457);    // out of the text by now
    v.SetText(T("nonsense"));
    EXPECT_EQ(v.Type(), ValueType::Text);
    EXPECT_EQ(v.GetColor(), 0U);
    EXPECT_EQ(v.GetFormat(), eZFCC_Default);
    EXPECT_EQ(v.GetSize().value, 0);
    EXPECT_TRUE(v.GetIdentifier() == GUID{});
    v.SetText(T("2015-05-07 11:53:49"));
    EXPECT_EQ(v.GetTime().year, 2015);    // the date is wanted
    v.SetText(T("50%"));
    EXPECT_EQ(v.GetFloat(), 0.5);
    EXPECT_EQ(v.GetSize().value, 50);
}

TEST(TypedValues, AnEmptyTextIsAllZero) {
    for (int32_t type = 1; type <= 11; ++type) {
        const zck::ValueData data = zck::ValueFromText(static_cast<ValueType>(type), T(""));
        const unsigned char none[16] = {};
        EXPECT_EQ(std::memcmp(&data, none, 16), 0) << type;
        TypedValue v(T(""));
        EXPECT_EQ(std::memcmp(&v.Convert(static_cast<ValueType>(type)), none, 16), 0) << type;
        EXPECT_EQ(v.Type(), static_cast<ValueType>(type));
        EXPECT_EQ(Say(v.GetText()), "");
    }
}

TEST(TypedValues, SharedReadingLeavesTheValueAlone) {
    TypedValue v;
    v.SetHex32(7);
    const TypedValue &shared = v;
    EXPECT_EQ(shared.Read(ValueType::Integer).integer, 0);
    EXPECT_EQ(shared.Read(ValueType::Hexadecimal).number32, 7U);
    EXPECT_EQ(Say(shared.TextForm()), "0x00000007");
    EXPECT_EQ(v.Type(), ValueType::Hexadecimal);
    EXPECT_FALSE(v.TextValid());
}

}    // namespace
}    // namespace conformance
