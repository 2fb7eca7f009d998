#include "props/store/value_kind.h"

#include <gtest/gtest.h>

#include "tests/props/values/say.h"

namespace zck {
namespace {

ValueKind Kind(std::string_view text) { return ValueKindOf(In(text)); }

TEST(ValueKindTest, SignsDecide) {
    EXPECT_EQ(Kind(""), ValueKind::Empty);
    EXPECT_EQ(ValueKindOf(TextView()), ValueKind::Empty);
    EXPECT_EQ(Kind("abc"), ValueKind::Plain);
    EXPECT_EQ(Kind(" "), ValueKind::Plain);
    EXPECT_EQ(Kind("a=1 b=2"), ValueKind::AttributeList);
    EXPECT_EQ(Kind("<n a='1'/>"), ValueKind::Xml);
    EXPECT_EQ(Kind("=<"), ValueKind::Xml);
}

TEST(ValueKindTest, XmlWithoutAnEqualsSignIsPlain) {
    EXPECT_EQ(Kind("<n><b>1</b></n>"), ValueKind::Plain);
    EXPECT_EQ(Kind("<z-props/>"), ValueKind::Plain);
}

TEST(ValueKindTest, QuotedSignsDoNotCount) {
    EXPECT_EQ(Kind("'a=b'"), ValueKind::Plain);
    EXPECT_EQ(Kind("\"a=b\" c"), ValueKind::Plain);
    EXPECT_EQ(Kind("a='<'"), ValueKind::AttributeList);
    EXPECT_EQ(Kind("'\"' = '\"<'"), ValueKind::AttributeList);
    EXPECT_EQ(Kind("<n a='1'"), ValueKind::Xml);
}

TEST(ValueKindTest, QuoteWithoutPartnerIsACharacter) {
    EXPECT_EQ(Kind("it's a=b"), ValueKind::AttributeList);
    EXPECT_EQ(Kind("\"a=b"), ValueKind::AttributeList);
    EXPECT_EQ(Kind("'a='b=c"), ValueKind::AttributeList);
    EXPECT_EQ(Kind("'a='b"), ValueKind::Plain);
}

TEST(ValueKindTest, ManyQuotesTakeLinearTime) {
    std::string text;
    for (int i = 0; i < (1 << 20); ++i) text += i % 2 == 0 ? "'" : "\"";
    EXPECT_EQ(Kind(text), ValueKind::Plain);
}

}    // namespace
}    // namespace zck
