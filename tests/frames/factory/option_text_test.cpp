#include "frames/factory/option_text.h"

#include <gtest/gtest.h>

namespace zck {
namespace {

std::string Find(const char *options, const char *name) {
    const Text text = TextFromUtf8(options);
    TextView value;
    return OptionFind(text, TextFromUtf8(name), value) ? Utf8FromText(value) : "-";
}

TEST(OptionText, PairsAndQuotes) {
    EXPECT_EQ("1", Find("a=1", "a"));
    EXPECT_EQ("2", Find("a=1 b=2", "b"));
    EXPECT_EQ("two words", Find("a=1\tb='two words' c=3", "b"));
    EXPECT_EQ("it's", Find("b=\"it's\"", "b"));
    EXPECT_EQ("3", Find("b='x'c=3", "c"));
    EXPECT_EQ("1,2;3", Find("a=1,2;3", "a"));
    EXPECT_EQ("1", Find("  a  =  1  ", "A"));
    EXPECT_EQ("", Find("a='' b=2", "a"));
    EXPECT_EQ("open end", Find("a='open end", "a"));
    EXPECT_EQ("2", Find("a=1 a=2", "a"));
    EXPECT_EQ("5", Find("bare a=5", "a"));
    EXPECT_EQ("-", Find("bare a=5", "bare"));
    EXPECT_EQ("-", Find("", "a"));
    EXPECT_EQ("-", Find("a", "a"));
    EXPECT_EQ("-", Find("a=", "a"));
    EXPECT_EQ("-", Find("a =  ", "a"));
    EXPECT_EQ("1", Find("=0 a=1", "a"));
}

TEST(OptionText, Numbers) {
    const Text text = TextFromUtf8("a=12 b=-3 c=x d=99999999999 e=7up");
    EXPECT_EQ(12, OptionInt(text, ZCK_TEXT("a"), 5));
    EXPECT_EQ(-3, OptionInt(text, ZCK_TEXT("b"), 5));
    EXPECT_EQ(5, OptionInt(text, ZCK_TEXT("c"), 5));
    EXPECT_EQ(INT32_MAX, OptionInt(text, ZCK_TEXT("d"), 5));
    EXPECT_EQ(7, OptionInt(text, ZCK_TEXT("e"), 5));
    EXPECT_EQ(5, OptionInt(text, ZCK_TEXT("f"), 5));
}

struct ColorCase {
    const char *text;
    uint32_t color;    // 0xAABBGGRR
};

TEST(OptionText, Colors) {
    constexpr uint32_t kDefault = 0x40302010;
    const ColorCase cases[] = {
        {"Red", 0xFF0000FF},      {"orange", 0xFF00A5FF},   {"BLUE", 0xFFFF0000},
        {"Transparent", 0},       {"Red(128)", 0x800000FF}, {"Red(0.5)", 0x000000FF},
        {"Red(999)", 0xFF0000FF}, {"default", kDefault},    {"default(255)", 0xFF302010},
        {"(16)", 0x10302010},     {"FF8000", 0xFF0080FF},   {"0xFF8000", 0xFF0080FF},
        {"80FF8040", 0x804080FF}, {"ABC", 0xFFCCBBAA},      {"abc", kDefault},
        {"#FF0000", kDefault},    {"", kDefault},           {"nothing", kDefault},
    };
    for (const ColorCase &c : cases) EXPECT_EQ(c.color, ColorFromText(TextFromUtf8(c.text), kDefault)) << c.text;
    const Text options = TextFromUtf8("solid_color='Red(128)'");
    EXPECT_EQ(0x800000FFU, OptionColor(options, ZCK_TEXT("solid_color"), 1));
    EXPECT_EQ(1U, OptionColor(options, ZCK_TEXT("color"), 1));
}

}    // namespace
}    // namespace zck
