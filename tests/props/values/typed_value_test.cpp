#include "props/values/typed_value.h"

#include <gtest/gtest.h>

#include <cstring>

#include "tests/props/values/say.h"

namespace zck {
namespace {

constexpr ValueType kTypes[] = {
    ValueType::Boolean,         ValueType::Integer, ValueType::Hexadecimal, ValueType::LongInteger,
    ValueType::LongHexadecimal, ValueType::Size,    ValueType::Float,       ValueType::Identifier,
    ValueType::PixelFormat,     ValueType::Colour,  ValueType::DateTime,
};

template <class Set>
std::string Written(Set set) {
    TypedValue value(In("before"));
    set(value);
    EXPECT_FALSE(value.TextValid());
    EXPECT_EQ(Say(value.TextForm()), Say(value.GetText()));
    EXPECT_TRUE(value.TextValid());
    return Say(value.GetText());
}

TEST(TypedValue, EveryTypeHasItsText) {
    EXPECT_EQ(Written([](TypedValue &v) { v.SetBool(true); }), "true");
    EXPECT_EQ(Written([](TypedValue &v) { v.SetBool(false); }), "false");
    EXPECT_EQ(Written([](TypedValue &v) { v.SetInt(-12); }), "-12");
    EXPECT_EQ(Written([](TypedValue &v) { v.SetHex32(0x1F); }), "0x0000001F");
    EXPECT_EQ(Written([](TypedValue &v) { v.SetInt64(-5000000000); }), "-5000000000");
    EXPECT_EQ(Written([](TypedValue &v) { v.SetHex64(0xABCDEF0123); }), "0x000000ABCDEF0123");
    EXPECT_EQ(Written([](TypedValue &v) { v.SetSize({12, SizeUnit::Pixels}); }), "12px");
    EXPECT_EQ(Written([](TypedValue &v) { v.SetFloat(0.25); }), "0.25");
    EXPECT_EQ(Written([](TypedValue &v) { v.SetIdentifier(IID_IUnknown); }), "{00000000-0000-0000-C000-000000000046}");
    EXPECT_EQ(Written([](TypedValue &v) { v.SetFormat(eZFCC_NV12); }), "NV12");
    EXPECT_EQ(Written([](TypedValue &v) { v.SetColor(0x800000FF); }), "Red(128)");
    EXPECT_EQ(Written([](TypedValue &v) { v.SetTime({2015, 5, 4, 7, 11, 53, 49, 0}); }), "2015-05-07 11:53:49");
}

TEST(TypedValue, EveryTypeReadsItsText) {
    EXPECT_TRUE(TypedValue(In("yes")).GetBool());
    EXPECT_EQ(TypedValue(In("12x")).GetInt(), 12);
    EXPECT_EQ(TypedValue(In("0x0000001F")).GetHex32(), 0x1FU);
    EXPECT_EQ(TypedValue(In("-5000000000")).GetInt64(), -5000000000);
    EXPECT_EQ(TypedValue(In("0x000000ABCDEF0123")).GetHex64(), 0xABCDEF0123U);
    EXPECT_EQ(TypedValue(In("12px")).GetSize().unit, SizeUnit::Pixels);
    EXPECT_EQ(TypedValue(In("50%")).GetFloat(), 0.5);
    EXPECT_TRUE(TypedValue(In("{00000000-0000-0000-C000-000000000046}")).GetIdentifier() == IID_IUnknown);
    EXPECT_EQ(TypedValue(In("nv12")).GetFormat(), eZFCC_NV12);
    EXPECT_EQ(TypedValue(In("Red(128)")).GetColor(), 0x800000FFU);
    EXPECT_EQ(TypedValue(In("no colour")).GetColor(), 0U);
    EXPECT_EQ(TypedValue(In("2015-05-07 11:53:49")).GetTime().year, 2015);
}

TEST(TypedValue, EmptyTextIsAllZero) {
    for (const ValueType type : kTypes) {
        const ValueData data = TypedValue().Read(type);
        const ValueData filled = ValueFromText(type, In("1"));
        switch (type) {
            case ValueType::Boolean:
                EXPECT_FALSE(data.boolean);
                EXPECT_TRUE(filled.boolean);
                break;
            case ValueType::Identifier:
                EXPECT_TRUE(data.identifier == GUID{});
                break;
            case ValueType::PixelFormat:
                EXPECT_EQ(data.format, eZFCC_Default);
                break;
            case ValueType::DateTime:
                EXPECT_EQ(data.time.minute, 0);
                EXPECT_EQ(filled.time.minute, 1);
                break;
            case ValueType::Size:
                EXPECT_EQ(data.size.value, 0.0);
                EXPECT_EQ(filled.size.value, 1.0);
                break;
            case ValueType::Float:
                EXPECT_EQ(data.real, 0.0);
                EXPECT_EQ(filled.real, 1.0);
                break;
            case ValueType::Integer:
                EXPECT_EQ(data.integer, 0);
                EXPECT_EQ(filled.integer, 1);
                break;
            case ValueType::LongInteger:
            case ValueType::LongHexadecimal:
                EXPECT_EQ(data.number64, 0U);
                EXPECT_EQ(filled.number64, 1U);
                break;
            default:
                EXPECT_EQ(data.number32, 0U);
                EXPECT_NE(filled.number32, 0U);
        }
    }
}

TEST(TypedValue, KeepsTheTypeItWasAskedFor) {
    TypedValue value(In("12"));
    EXPECT_EQ(value.Type(), ValueType::Text);
    EXPECT_EQ(value.GetInt(), 12);
    EXPECT_EQ(value.Type(), ValueType::Integer);
    EXPECT_EQ(value.GetFloat(), 12.0);
    EXPECT_EQ(value.Type(), ValueType::Float);
}

TEST(TypedValue, ReadingDoesNotRewriteTheText) {
    TypedValue value(In("0012"));
    EXPECT_EQ(value.GetInt(), 12);
    EXPECT_EQ(Say(value.GetText()), "0012");
    EXPECT_EQ(value.GetHex32(), 10U);
    EXPECT_EQ(Say(value.GetText()), "0012");
}

TEST(TypedValue, StoredValueReplacesTheText) {
    TypedValue value(In("0012"));
    value.SetInt(7);
    EXPECT_EQ(Say(value.GetText()), "7");
}

TEST(TypedValue, ConvertsThroughTheText) {
    TypedValue value;
    value.SetHex32(0x10);
    EXPECT_EQ(value.GetInt(), 0);    // "0x00000010" stops at the "x"
    EXPECT_EQ(value.GetHex32(), 0x10U);
    value.SetFloat(1.0 / 3);
    EXPECT_EQ(value.GetFloat(), 1.0 / 3);
    EXPECT_EQ(Say(value.GetText()), "0.333333");
    EXPECT_EQ(value.GetFloat(), 1.0 / 3);    // still typed
    EXPECT_EQ(value.GetInt(), 0);
    EXPECT_EQ(value.GetFloat(), 0.333333);    // read back from the text
}

TEST(TypedValue, SharedReadersChangeNothing) {
    TypedValue value(In("0x20"));
    const TypedValue &shared = value;
    EXPECT_EQ(shared.Read(ValueType::Hexadecimal).number32, 0x20U);
    EXPECT_EQ(shared.Type(), ValueType::Text);
    value.SetColor(0xFF0000FF);
    EXPECT_EQ(shared.Read(ValueType::Colour).number32, 0xFF0000FFU);
    EXPECT_EQ(Say(shared.TextForm()), "Red");
    EXPECT_FALSE(shared.TextValid());
    EXPECT_EQ(shared.Read(ValueType::Integer).integer, 0);
    EXPECT_FALSE(shared.TextValid());
}

TEST(TypedValue, TextMakesItUntyped) {
    TypedValue value;
    value.SetInt(7);
    value.SetText(In("8"));
    EXPECT_EQ(value.Type(), ValueType::Text);
    EXPECT_EQ(value.GetInt(), 8);
}

TEST(TypedValue, WrittenTextReadsBack) {
    for (const char *text : {"true", "-12", "0.25", "12px", "{00000000-0000-0000-C000-000000000046}", "NV12", "Red(128)",
                             "2015-05-07 11:53:49.120"}) {
        bool came = false;
        for (const ValueType type : kTypes) came |= Say(ValueToText(type, ValueFromText(type, In(text)))) == text;
        EXPECT_TRUE(came) << text;
    }
}

TEST(TypedValue, LongRealKeepsItsFullText) {
    TypedValue value;
    value.SetFloat(1e300);
    EXPECT_EQ(value.GetText().size(), 303U);
}

}    // namespace
}    // namespace zck
