#include "xml/writer.h"

#include <gtest/gtest.h>

#include "tests/xml/say.h"

namespace zck::XMLParse {
namespace {

std::string Written(const XMLNodePtr &node, int32_t depth = 0) { return Say(XMLText(*node, depth)); }

TEST(Writer, LaysOutWithTabsAndLineEnds) {
    EXPECT_EQ(Written(Tree("<a/>")), "<a/>");
    EXPECT_EQ(Written(Tree("<a x='1'>text</a>")), "<a x='1'>text</a>");
    EXPECT_EQ(Written(Tree("<a><b/><c><d/></c></a>")), "<a>\r\n\t<b/>\r\n\t<c>\r\n\t\t<d/>\r\n\t</c>\r\n</a>");
    EXPECT_EQ(Written(Tree("<a>1<b/>2</a>")), "<a>\r\n\t1\r\n\t<b/>\r\n\t2\r\n</a>");
}

TEST(Writer, DepthIsInFront) {
    EXPECT_EQ(Written(Tree("<a><b/></a>"), 2), "\t\t<a>\r\n\t\t\t<b/>\r\n\t\t</a>");
    EXPECT_EQ(Written(Tree("<a><b><c/></b>t</a>"), -1), "<a><b><c/></b>t</a>");
    EXPECT_EQ(Written(Tree("<a><b><c/></b>t</a>"), -7), "<a><b><c/></b>t</a>");
}

TEST(Writer, AtMost64Tabs) {
    const std::string tabs(64, '\t');
    EXPECT_EQ(Written(Tree("<a/>"), 64), tabs + "<a/>");
    EXPECT_EQ(Written(Tree("<a/>"), 65), tabs + "<a/>");
    EXPECT_EQ(Written(Tree("<a><b/></a>"), 600), tabs + "<a>\r\n" + tabs + "<b/>\r\n" + tabs + "</a>");
}

TEST(Writer, EscapesTextAndNotValues) {
    const XMLNodePtr node = CoXMLNode::Create(In("a"));
    node->AttributeSet(In("x"), In("<&>"));
    node->TextSet(In("<&>'\""));
    EXPECT_EQ(Written(node), "<a x='<&>'>&lt;&amp;&gt;'\"</a>");
}

TEST(Writer, AnEmptyTextIsStillAChild) {
    const XMLNodePtr node = CoXMLNode::Create(In("a"));
    node->TextSet(In(""));
    EXPECT_EQ(Written(node), "<a></a>");
}

TEST(Writer, SeveralTextsInARowStandInline) {
    const XMLNodePtr node = CoXMLNode::Create(In("a"));
    node->ChildAdd(In("b"));
    node->TextSet(In("1"));
    node->TextAppend(In("2"));
    node->NodeRemove(In("b"));
    EXPECT_EQ(node->ChildCount(Children::All), 2U);
    EXPECT_EQ(Written(node), "<a>12</a>");
}

TEST(Writer, ACompactChildStaysInTheLine) {
    const XMLNodePtr node = Tree("<a><b><c/></b><d/></a>");
    node->ChildFind(In("b"))->CompactOutputSet(true);
    EXPECT_EQ(Written(node), "<a><b><c/></b>\r\n\t<d/>\r\n</a>");
}

TEST(Writer, ACompactNodeEndsInTheLine) {
    const XMLNodePtr node = Tree("<a><b/></a>");
    node->CompactOutputSet(true);
    EXPECT_EQ(Written(node), "<a>\r\n\t<b/></a>");
}

TEST(Writer, HiddenChildrenAreWrittenLikeAny) {
    EXPECT_EQ(Read("<a><attributes_info x='1'/></a>"), "<a><attributes_info x='1'/></a>");
}

TEST(Writer, NamesStandAsTheyAreHeld) {
    const XMLNodePtr node = CoXMLNode::Create(In("root"));
    node->AttributeSet(In("N::m"), In("1"));
    EXPECT_EQ(Line(node), "<root><N m='1'/></root>");
}

TEST(Writer, WhatWasWrittenIsReadBack) {
    const std::string xml =
        "<a x='1' y=\"it's\">\r\n\ttext &lt; &amp;\r\n\t<b>\r\n\t\t<c z=''/>\r\n\t</b>\r\n\t<c>inline</c>\r\n</a>";
    EXPECT_EQ(Written(Tree(xml)), xml);
}

TEST(Writer, CountedString) {
    Bstr text;
    EXPECT_EQ(WriteXML(*Tree("<a/>"), nullptr), E_POINTER);
    EXPECT_EQ(WriteXML(*Tree("<a/>"), text.Put()), S_OK);
    EXPECT_EQ(Say(text.view()), "<a/>");
}

TEST(Writer, InnerTextOfANode) {
    EXPECT_EQ(Say(InnerXML(*Tree("<a>1<b x='1'/>&lt;</a>"))), "1<b x='1'/>&lt;");
    EXPECT_EQ(Say(InnerXML(*Tree("<a/>"))), "");
}

}    // namespace
}    // namespace zck::XMLParse
