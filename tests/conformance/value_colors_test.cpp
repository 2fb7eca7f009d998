// Colours and their texts, against tables and slow models.
#include <gtest/gtest.h>

#include <random>

#include "props/values/typed_value.h"
#include "tests/conformance/text_tools.h"
#include "tests/conformance/value_model.h"

namespace conformance {
namespace {

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

}    // namespace
}    // namespace conformance
