#include "xml/parser.h"

#include <gtest/gtest.h>

#include "tests/xml/say.h"
#include "xml/limits.h"

namespace zck::XMLParse {
namespace {

HRESULT StatusOfText(std::string_view xml) { return ParseXML(*CoXMLNode::Create(In("before")), In(xml)); }

TEST(Parser, ElementsAndText) {
    EXPECT_EQ(Read("<a/>"), "<a/>");
    EXPECT_EQ(Read("<a></a>"), "<a/>");
    EXPECT_EQ(Read("<a>text</a>"), "<a>text</a>");
    EXPECT_EQ(Read("<a>1<b>2</b>3<c/>4</a>"), "<a>1<b>2</b>3<c/>4</a>");
    EXPECT_EQ(Read("<a x='1' y=\"2\"><b z=3 /></a>"), "<a x='1' y='2'><b z='3'/></a>");
}

TEST(Parser, ElementNamesBecomeLowerCaseAttributeNamesDoNot) {
    EXPECT_EQ(Read("<A x='1'/>"), "<a x='1'/>");
    EXPECT_EQ(Read("<Root Size='1'><KEY/></ROOT>"), "<root Size='1'><key/></root>");
    EXPECT_EQ(Read("<\u00C4\u0416>x</\u00E4\u0436>"), "<\u00E4\u0436>x</\u00E4\u0436>");
}

TEST(Parser, MissingClosingTagsEndAtTheEnd) {
    EXPECT_EQ(Read("<a><b>1</a>"), "<a><b>1</b></a>");
    EXPECT_EQ(Read("<a><b><c>1"), "<a><b><c>1</c></b></a>");
    EXPECT_EQ(Read("<a>"), "<a/>");
}

TEST(Parser, StrayClosingTagsAreSkipped) {
    EXPECT_EQ(Read("</x></y><a/>"), "<a/>");
    EXPECT_EQ(Read("<a>1</x>2</a>"), "<a>12</a>");
    // Blanks behind the "/" leave no name.
    EXPECT_EQ(Read("<a>1</ a>2</a>3"), "<a>12</a>");
    EXPECT_EQ(Read("<a>1</a x y>2"), "<a>1</a>");
}

TEST(Parser, TheTagEndIsThoughtBehindTheText) {
    EXPECT_EQ(Read("<a x=12"), "<a x='12'/>");
    EXPECT_EQ(Read("<br/"), "<br/>");
    EXPECT_EQ(Read("<a><b x='1'"), "<a><b x='1'/></a>");
    EXPECT_EQ(Read("<a>1</a"), "<a>1</a>");
    EXPECT_EQ(Read("<a x='1>2</a>"), "<a x='1>2</a>'/>");
}

TEST(Parser, WhatIsBehindTheRootIsLeft) {
    EXPECT_EQ(Read("head <a>1</a> tail <b/>"), "<a>1</a>");
    EXPECT_EQ(Read("<a/><b/>"), "<a/>");
}

TEST(Parser, NoTagIsTheOneError) {
    EXPECT_EQ(StatusOfText("text without tags"), E_INVALIDARG);
    EXPECT_EQ(StatusOfText(""), E_INVALIDARG);
    EXPECT_EQ(StatusOfText("</a>"), E_INVALIDARG);
    EXPECT_EQ(StatusOfText("<!-- <a/> -->"), E_INVALIDARG);
    EXPECT_EQ(StatusOfText("<?xml?>"), E_INVALIDARG);
    EXPECT_EQ(StatusOfText("<>"), E_INVALIDARG);
    EXPECT_EQ(StatusOfText("< >"), E_INVALIDARG);
    EXPECT_EQ(StatusOfText("<=1>"), E_INVALIDARG);
    EXPECT_EQ(StatusOfText("<"), E_INVALIDARG);
    EXPECT_EQ(StatusOfText("< a/>"), S_OK);
}

TEST(Parser, AChildWithoutANameIsDropped) {
    EXPECT_EQ(Read("<a>1<>2<=1>3</a>"), "<a>123</a>");
    EXPECT_EQ(Read("<a>1 < 2</a>"), "<a>1 <2/></a>");
}

TEST(Parser, FailureEmptiesTheNodeAndKeepsTheName) {
    const XMLNodePtr node = Tree("<a x='1'>t<b/></a>");
    const XMLNodePtr child = node->ChildFind(In("b"));
    EXPECT_EQ(ParseXML(*node, In("nothing")), E_INVALIDARG);
    EXPECT_EQ(Line(node), "<a/>");
    EXPECT_FALSE(child->ParentGet());
}

TEST(Parser, SuccessReplacesAll) {
    const XMLNodePtr node = Tree("<a x='1'>t<b/></a>");
    const XMLNodePtr child = node->ChildFind(In("b"));
    EXPECT_EQ(ParseXML(*node, In("<c y='2'><d/></c>")), S_OK);
    EXPECT_EQ(Line(node), "<c y='2'><d/></c>");
    EXPECT_FALSE(child->ParentGet());
    EXPECT_EQ(node->ChildFind(In("d"))->ParentGet(), node);
}

TEST(Parser, TheParentFindsAParsedNodeByItsNewName) {
    const XMLNodePtr root = CoXMLNode::Create(In("root"));
    const XMLNodePtr child = root->ChildAdd(In("old"));
    EXPECT_EQ(ParseXML(*child, In("<new/>")), S_OK);
    EXPECT_EQ(root->ChildFind(In("new")), child);
    EXPECT_FALSE(root->ChildFind(In("old")));
}

TEST(Parser, BrAndTabAreAlwaysEmpty) {
    EXPECT_EQ(Read("<br>text</br>"), "<br/>");
    EXPECT_EQ(Read("<a>1<br>2<BR x='1'>3<tab>4</a>"), "<a>1<br/>2<br/>3<tab/>4</a>");
    EXPECT_EQ(Read("<a><br></br></a>"), "<a><br/><br/></a>");
    EXPECT_EQ(Read("<a><brx>1</brx></a>"), "<a><brx>1</brx></a>");
    // Even a closing one counts as the first element.
    EXPECT_EQ(Read("</br><a/>"), "<br/>");
}

TEST(Parser, CommentsAndDeclarationsVanish) {
    EXPECT_EQ(Read("<?xml version='1.0'?><!-- c --><a>1<!--<b/>-->2<?pi?>3</a>"), "<a>123</a>");
    EXPECT_EQ(Tree("<a>1<!--c-->2</a>")->ChildCount(Children::All), 1U);
    EXPECT_EQ(Read("<a x='<!--c-->1'/>"), "<a x='1'/>");
    // Two strokes on either side, not one.
    EXPECT_EQ(Read("<a>1<!-- a->b -->2</a>"), "<a>12</a>");
    EXPECT_EQ(Read("<a>1<!-x->2</a>"), "<a>1<!-x->2</!-x-></a>");
    // The closing is looked for behind the opening.
    EXPECT_EQ(Read("<!--><a/>--><b/>"), "<b/>");
    EXPECT_EQ(Read("<?><a/>?><b/>"), "<b/>");
    // Comments first, then declarations.
    EXPECT_EQ(Read("<a>1<!-- ?>2<? -->3<?x?>4</a>"), "<a>134</a>");
}

TEST(Parser, AnUnclosedCommentEndsTheText) {
    EXPECT_EQ(Read("<a>1<!-- 2</a>"), "<a>1</a>");
    EXPECT_EQ(Read("<a>1<? 2</a>"), "<a>1</a>");
}

TEST(Parser, ACommentThatADeletionMadeIsPassedOver) {
    EXPECT_EQ(Read("<<?x?>!-- <b/> --><a/>"), "<a/>");
    // Without its closing there is no further tag, and the rest is text.
    EXPECT_EQ(Read("<a>1<<?x?>!-- <b/>"), "<a>1&lt;!-- &lt;b/&gt;</a>");
}

TEST(Parser, CData) {
    EXPECT_EQ(Read("<a><![CDATA[1 < 2 > <b/>]]></a>"), "<a>1 &lt; 2 &gt; &lt;b/&gt;</a>");
    EXPECT_EQ(Read("<a>1<![CDATA[2]]>3</a>"), "<a>123</a>");
    EXPECT_EQ(Read("<a><![CDATA[&lt;]]></a>"), "<a>&lt;</a>");
    EXPECT_EQ(Read("<a><![CDATA[   ]]></a>"), "<a/>");
    EXPECT_EQ(Read("<a><![CDATA[]]></a>"), "<a/>");
    EXPECT_EQ(Read("<a>1<![CDATA['\"]]>2</a>"), "<a>1'\"2</a>");
}

TEST(Parser, UnclosedCDataLosesThreeCharacters) {
    EXPECT_EQ(Read("<a><![CDATA[12345"), "<a>12</a>");
    EXPECT_EQ(Read("<a><![CDATA[12"), "<a/>");
    EXPECT_EQ(Read("<a><![CDATA[12345</a>"), "<a>12345&lt;</a>");
}

TEST(Parser, CDataAsRootIsAllThereIs) {
    const XMLNodePtr node = Tree("<![CDATA[text]]><a/>");
    EXPECT_EQ(Say(node->NameGet()), "![CDATA[");
    EXPECT_EQ(Say(node->TextGet()), "text");
    EXPECT_EQ(node->ChildCount(Children::All), 1U);
}

TEST(Parser, ADoctypeIsAnOpeningTag) { EXPECT_EQ(Read("<!DOCTYPE x><a/>"), "<!doctype><a/></!doctype>"); }

TEST(Parser, EntitiesInText) {
    EXPECT_EQ(Say(Tree("<a>&#65;</a>")->TextGet()), "A");
    EXPECT_EQ(Say(Tree("<a>&#x41;</a>")->TextGet()), "A");
    EXPECT_EQ(Say(Tree("<a>&lo;x</a>")->TextGet()), "<x");
    EXPECT_EQ(Say(Tree("<a x='&lt;'/>")->ChildFind(In("x")).get() == nullptr ? In("none") : In("some")), "none");
    EXPECT_EQ(Read("<a x='&lt;<'/>"), "<a x='&lt;<'/>");
}

TEST(Parser, BlankTextIsNone) {
    EXPECT_EQ(Read("<a> </a>"), "<a/>");
    EXPECT_EQ(Tree("<a>&nbsp;</a>")->TextGet(), In(" "));
    EXPECT_EQ(Read("<a>\r\n\t<b/>\r\n\t</a>"), "<a><b/></a>");
    EXPECT_EQ(Read("<a>\n  <b/>\n  </a>"), "<a><b/></a>");
}

TEST(Parser, TheTrimTakesNoBlanks) {
    EXPECT_EQ(Say(Tree("<a>\n  t\n</a>")->TextGet()), "  t");
    EXPECT_EQ(Say(Tree("<a>\r\n\tt u \t</a>")->TextGet()), "t u ");
    EXPECT_EQ(Say(Tree("<a>1\n2</a>")->TextGet()), "1 2");
}

TEST(Parser, RawTextIsNeitherTrimmedNorDropped) {
    const XMLNodePtr node = CoXMLNode::Create(In("n"));
    EXPECT_EQ(ParseXML(*node, In("<a>\n t&lt; <b>  </b></a>"), nullptr, false, true), S_OK);
    EXPECT_EQ(Line(node), "<a>  t&lt; <b>  </b></a>");
}

TEST(Parser, SlashAtTheEndOfATag) {
    EXPECT_EQ(Read("<a x=1/>"), "<a x='1'/>");
    EXPECT_EQ(Read("<a><b x=1 / >2</a>"), "<a><b x='1'/>2</a>");
    EXPECT_EQ(Read("<a/b>1</a>"), "<a>1</a>");
}

TEST(Parser, GreaterThanInQuotesEndsNoTag) { EXPECT_EQ(Read("<a x='1>2' y=\"'>\"><b/></a>"), "<a x='1>2' y=\"'>\"><b/></a>"); }

TEST(Parser, AttributesAreFlat) { EXPECT_EQ(Read("<a b::c='1' x x='2' X='3'/>"), "<a b::c='1' x='3'/>"); }

TEST(Parser, NoRootTagTakesTheTextAsContent) {
    const XMLNodePtr node = CoXMLNode::Create(In("Keep"));
    EXPECT_EQ(ParseXML(*node, In("1<a/>2"), nullptr, true), S_OK);
    EXPECT_EQ(Line(node), "<Keep>1<a/>2</Keep>");
    EXPECT_EQ(ParseXML(*node, In(""), nullptr, true), S_OK);
    EXPECT_EQ(Line(node), "<Keep/>");
    // The closing tag's name is lowered, the node's is not.
    EXPECT_EQ(ParseXML(*node, In("1</Keep>2"), nullptr, true), S_OK);
    EXPECT_EQ(Line(node), "<Keep>12</Keep>");
}

size_t EndOf(std::string_view xml, size_t end) {
    EXPECT_EQ(ParseXML(*CoXMLNode::Create(In("n")), In(xml), &end), S_OK);
    return end;
}

TEST(Parser, EndIsBehindTheElement) {
    EXPECT_EQ(EndOf("<a>1</a>2", 9), 8U);
    EXPECT_EQ(EndOf("<a/>2", 5), 4U);
    EXPECT_EQ(EndOf("<a>1", 4), 4U);
    EXPECT_EQ(EndOf("<![CDATA[x]]>y", 14), 13U);
    // Comments count, those behind the element do not.
    EXPECT_EQ(EndOf("<!--c--><a><?x?>1</a><!--d-->", 29), 21U);
    EXPECT_EQ(EndOf("<?dddd?><a><!--c--></a><b/>", 27), 23U);
    EXPECT_EQ(EndOf("<!--c--><a><?dddd?></a><b/>", 27), 23U);
    // And the text ends where it is told to.
    EXPECT_EQ(EndOf("<a>1</a>2", 5), 5U);
}

TEST(Parser, TooDeepElementsAreDropped) {
    std::string deep = "<r>";
    for (int i = 0; i < 3000; ++i) deep += "<n x='1'>";
    deep += "text";
    const XMLNodePtr root = Tree(deep);
    ASSERT_TRUE(root);
    size_t levels = 0;
    XMLNodePtr at = root;
    for (; at && !at->IsTextNode(); at = at->ChildAt(Children::All, 0)) ++levels;
    EXPECT_EQ(levels, kDepthMax);
    ASSERT_TRUE(at);
    EXPECT_EQ(Say(at->NameGet()), "text");
}

TEST(Parser, TooManyItemsAreRefused) {
    std::string many = "<a>";
    while (many.size() < 4 * (kItemsMax - 1)) many += "<b/>";
    EXPECT_EQ(StatusOfText(many), S_OK);
    many += "<b/><b/><b/>";
    const XMLNodePtr node = Tree("<a x='1'/>");
    EXPECT_EQ(ParseXML(*node, In(many)), kErrorTooLarge);
    EXPECT_EQ(Line(node), "<a/>");
}

TEST(Parser, TooLongATextIsRefused) {
    const Text text(kTextUnitsMax + 1, OLECHAR{'<'});
    EXPECT_EQ(ParseXML(*CoXMLNode::Create(In("n")), text), kErrorTooLarge);
}

TEST(Parser, ManyUnclosedThingsTakeNoLongTime) {
    // Each of these would take hours if every tag looked to the end of the text.
    for (const char *piece : {"<", "<a '", "<a \"", "</", "<![CDATA[", "<!--", "<?", "<a>", "&", "&#", "<!["}) {
        std::string text = "<r>";
        while (text.size() < 1000000) text += piece;
        StatusOfText(text);
    }
}

}    // namespace
}    // namespace zck::XMLParse
