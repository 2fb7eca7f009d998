// Values that change their type by way of their text.
#include <gtest/gtest.h>

#include <cstring>

#include "props/values/typed_value.h"
#include "tests/conformance/text_tools.h"

namespace conformance {
namespace {

using zck::TypedValue;
using zck::ValueType;

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
