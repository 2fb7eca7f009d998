// The writer of trees: its layout, and what it writes is read back.
#include <gtest/gtest.h>

#include <random>

#include "tests/conformance/xml_model.h"
#include "xml/parser.h"
#include "xml/writer.h"

namespace conformance {
namespace {

using namespace zck::XMLParse;

TEST(Writer, Layout) {
    const XMLNodePtr node = CoXMLNode::Create(T("Root"));
    EXPECT_EQ(Say(XMLText(*node)), "<Root/>");
    node->AttributeSet(T("a"), TextView(T("it's")));
    EXPECT_EQ(Say(XMLText(*node)), "<Root a=\"it's\"/>");
    node->TextSet(T("x<&>'\""));
    EXPECT_EQ(Say(XMLText(*node)), "<Root a=\"it's\">x&lt;&amp;&gt;'\"</Root>");
    const XMLNodePtr child = node->ChildAdd(T("c"));
    child->ChildAdd(T("d"))->AttributeSet(T("v"), TextView(T("<>")));
    EXPECT_EQ(Say(XMLText(*node)), "<Root a=\"it's\">\r\n\tx&lt;&amp;&gt;'\"\r\n\t<c>\r\n\t\t<d v='<>'/>\r\n\t</c>\r\n</Root>");
    EXPECT_EQ(
        Say(XMLText(*node, 2)),
        "\t\t<Root a=\"it's\">\r\n\t\t\tx&lt;&amp;&gt;'\"\r\n\t\t\t<c>\r\n\t\t\t\t<d v='<>'/>\r\n\t\t\t</c>\r\n\t\t</Root>");
    EXPECT_EQ(Say(XMLText(*node, -1)), "<Root a=\"it's\">x&lt;&amp;&gt;'\"<c><d v='<>'/></c></Root>");
    EXPECT_EQ(Say(XMLText(*node, -7)), "<Root a=\"it's\">x&lt;&amp;&gt;'\"<c><d v='<>'/></c></Root>");
    child->CompactOutputSet(true);
    EXPECT_EQ(Say(XMLText(*node)), "<Root a=\"it's\">\r\n\tx&lt;&amp;&gt;'\"<c><d v='<>'/></c>\r\n</Root>");
    node->CompactOutputSet(true);
    EXPECT_EQ(Say(XMLText(*node)), "<Root a=\"it's\">\r\n\tx&lt;&amp;&gt;'\"<c><d v='<>'/></c></Root>");
    BSTR out = nullptr;
    EXPECT_EQ(WriteXML(*node, &out), S_OK);
    EXPECT_EQ(Say(out), Say(XMLText(*node)));
    SysFreeString(out);
    EXPECT_EQ(WriteXML(*node, nullptr), E_POINTER);
}

TEST(Writer, AnEmptyTextChildGivesTwoTags) {
    const XMLNodePtr node = CoXMLNode::Create(T("a"));
    node->TextSet(TextView());
    EXPECT_EQ(Say(XMLText(*node)), "<a></a>");
}

TEST(Writer, TabsAreLimited) {
    const XMLNodePtr root = CoXMLNode::Create(T("r"));
    XMLNodePtr node = root;
    for (int i = 0; i < 80; ++i) node = node->ChildAdd(T("n"));
    const std::string text = Say(XMLText(*root));
    EXPECT_NE(text.find("\r\n" + std::string(64, '\t') + "<n>"), std::string::npos);
    EXPECT_EQ(text.find(std::string(65, '\t')), std::string::npos);
    EXPECT_NE(text.find(std::string(64, '\t') + "<n/>\r\n" + std::string(64, '\t') + "</n>"), std::string::npos);
}

TEST(Writer, TextsOfDeepNodesHaveAllTheirTabs) {
    const XMLNodePtr root = CoXMLNode::Create(T("r"));
    XMLNodePtr node = root;
    for (int i = 0; i < 80; ++i) node = node->ChildAdd(T("n"));
    node->TextSet(T("t"));
    node->ChildAdd(T("m"));
    EXPECT_NE(Say(XMLText(*root)).find("\r\n" + std::string(81, '\t') + "t\r\n" + std::string(64, '\t') + "<m/>"),
              std::string::npos);
}

TEST(Writer, WhatIsWrittenIsReadBack) {
    std::mt19937 random(45);
    for (int i = 0; i < 5000; ++i) {
        // Names in lower case, texts without blanks at their ends and never two in a row.
        const auto build = [&](auto &self, const XMLNodePtr &node, int depth) -> void {
            for (size_t k = random() % 4; k-- > 0;)
                node->AttributeSetOwn(T("k" + std::to_string(random() % 5)), zck::TypedValue(T(AnyOf(random, "a <>&'=/", 6))));
            for (size_t k = random() % 4; k-- > 0;) {
                if (random() % 3 == 0) {
                    node->TextAppend(T("t" + AnyOf(random, "<>&'\" x", 6) + "t"));
                } else if (depth < 4) {
                    self(self, node->ChildAdd(T("n" + std::to_string(random() % 3))), depth + 1);
                }
            }
        };
        const XMLNodePtr node = CoXMLNode::Create(T("root"));
        build(build, node, 0);
        const XMLNodePtr back = CoXMLNode::Create(T("x"));
        // The blanks that the layout brings are tabs and line ends, which go again.
        ASSERT_EQ(ParseXML(*back, XMLText(*node)), S_OK);
        ASSERT_EQ(Dump(*back), Dump(*node)) << Say(XMLText(*node));
        ASSERT_EQ(ParseXML(*back, XMLText(*node, -1)), S_OK);
        ASSERT_EQ(Dump(*back), Dump(*node));
    }
}

}    // namespace
}    // namespace conformance
