#include "frames/factory/option_text.h"

#include <gtest/gtest.h>

namespace zck {
namespace {

XMLParse::XMLNodePtr Options(const char *text) {
    XMLParse::XMLNodePtr options;
    EXPECT_EQ(OptionsFromText(TextFromUtf8(text), options), S_OK) << text;
    return options;
}

std::string Find(const char *text, const char *name) {
    Text value;
    return Options(text)->AttributeText(TextFromUtf8(name), value) ? Utf8FromText(value) : "-";
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
    EXPECT_EQ("1", Find("a::b=1", "a::b"));
}

TEST(OptionText, TheNodeIsNamedProps) { EXPECT_EQ("props", Utf8FromText(Options("a=1")->NameGet())); }

TEST(OptionText, Numbers) {
    const XMLParse::XMLNodePtr options = Options("a=12 b=-3 c=x d=99999999999 e=7up");
    EXPECT_EQ(12, options->IntGet(ZCK_TEXT("a")));
    EXPECT_EQ(-3, options->IntGet(ZCK_TEXT("b")));
    EXPECT_EQ(0, options->IntGet(ZCK_TEXT("c")));
    EXPECT_EQ(INT32_MAX, options->IntGet(ZCK_TEXT("d")));
    EXPECT_EQ(7, options->IntGet(ZCK_TEXT("e")));
    EXPECT_EQ(0, options->IntGet(ZCK_TEXT("f")));
}

TEST(OptionText, Colors) {
    const auto color = [](const char *text) { return OptionColor(*Options(text), ZCK_TEXT("solid_color")); };
    EXPECT_EQ(color("Solid_Color='Red(128)'"), 0x800000FFU);
    EXPECT_EQ(color("solid_color=Red(0.5)"), 0x000000FFU);
    EXPECT_EQ(color("solid_color=FF8000"), 0xFF0080FFU);
    EXPECT_EQ(color("solid_color=010"), 0xFF001100U);
    EXPECT_EQ(color("solid_color=7"), 0xFF770000U);
    EXPECT_EQ(color("solid_color=#FF0000"), 0U);
    EXPECT_EQ(color("solid_color=nothing"), 0U);
    EXPECT_EQ(color("color=Red"), 0U);
}

}    // namespace
}    // namespace zck
