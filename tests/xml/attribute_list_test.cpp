#include "xml/attribute_list.h"

#include <gtest/gtest.h>

#include "tests/xml/say.h"
#include "xml/limits.h"

namespace zck::XMLParse {
namespace {

struct Parsed {
    XMLNodePtr node = CoXMLNode::Create(In("n"));
    bool any = false;

    Parsed &Add(std::string_view text, int32_t mode = kListOverwrite, ListNames names = ListNames::Flat,
                BareNames bare = BareNames::Drop) {
        any = ParseAttributes(*node, In(text), mode, names, bare);
        return *this;
    }
    std::string List() const { return Say(WriteAttributes(*node, false)); }
};

std::string ListOf(std::string_view text) { return Parsed().Add(text).List(); }

TEST(AttributeList, QuotedAndUnquotedValues) {
    EXPECT_EQ(ListOf("a=1 b='2 3' c=\"4 5\""), "a='1' b='2 3' c='4 5'");
    EXPECT_EQ(ListOf("  a =\r\n 1\tb = '2'"), "a='1' b='2'");
    EXPECT_EQ(ListOf("a='1'b=2"), "a='1' b='2'");
    EXPECT_EQ(ListOf("a=1,2;3"), "a='1,2;3'");
    EXPECT_EQ(ListOf("a=b=c"), "a='b=c'");
    EXPECT_EQ(ListOf("a='' b=1"), "a='' b='1'");
}

TEST(AttributeList, UnclosedQuoteRunsToTheEnd) { EXPECT_EQ(ListOf("a='1 b=2"), "a='1 b=2'"); }

TEST(AttributeList, NothingInAValueIsDecoded) { EXPECT_EQ(ListOf("a='&lt;<x>&amp;'"), "a='&lt;<x>&amp;'"); }

TEST(AttributeList, UnitsFromFdefUpAreSpaces) { EXPECT_EQ(ListOf("a=1\uFEFFb=2"), "a='1' b='2'"); }

TEST(AttributeList, StopsAtAnEqualsSignAtTheEnd) {
    EXPECT_EQ(ListOf("a=1 b="), "a='1'");
    EXPECT_EQ(ListOf("a=1 b=  "), "a='1'");
    EXPECT_FALSE(Parsed().Add("b=").any);
}

TEST(AttributeList, PairsWithoutANameAreDropped) {
    EXPECT_EQ(ListOf("=1 a=2"), "a='2'");
    EXPECT_FALSE(Parsed().Add("=1").any);
}

TEST(AttributeList, BareNamesOnlyWhereAskedFor) {
    EXPECT_EQ(ListOf("x a=1 y"), "a='1'");
    EXPECT_FALSE(Parsed().Add("x y").any);
    Parsed stored;
    stored.Add("x a=1 y", kListOverwrite, ListNames::Flat, BareNames::Store);
    EXPECT_EQ(stored.List(), "x='' a='1' y=''");
    EXPECT_TRUE(Parsed().Add("x", kListOverwrite, ListNames::Flat, BareNames::Store).any);
}

TEST(AttributeList, Modes) {
    EXPECT_EQ(Parsed().Add("a=1 b=2").Add("a=9 c=3", kListKeep).List(), "a='1' b='2' c='3'");
    EXPECT_EQ(Parsed().Add("a=1 b=2").Add("a=9 c=3", kListOverwrite).List(), "a='9' b='2' c='3'");
    EXPECT_EQ(Parsed().Add("a=1 b=2").Add("c=3 c=4", kListReplaceAll).List(), "c='4'");
    EXPECT_EQ(Parsed().Add("a=1").Add("a=9", 3).List(), "a='9'");
    EXPECT_EQ(Parsed().Add("a=1").Add("", kListReplaceAll).List(), "");
    // What mode 0 keeps out was read all the same.
    EXPECT_TRUE(Parsed().Add("a=1").Add("a=2", kListKeep).any);
    // Within one text too.
    EXPECT_EQ(Parsed().Add("a=1 a=2", kListKeep).List(), "a='1'");
}

TEST(AttributeList, PathsMakeNodes) {
    Parsed paths;
    paths.Add("a::b=1 c=2 ::d=3 e::=4", kListOverwrite, ListNames::Paths);
    EXPECT_EQ(Line(paths.node), "<n c='2'><a b='1'/></n>");
    paths.Add("a::b=9", kListKeep, ListNames::Paths);
    EXPECT_EQ(Line(paths.node), "<n c='2'><a b='1'/></n>");
    EXPECT_EQ(ListOf("a::b=1"), "a::b='1'");
    EXPECT_FALSE(Parsed().Add("::d=1", kListOverwrite, ListNames::Paths).any);
}

TEST(AttributeList, QuotesFollowTheValue) {
    const XMLNodePtr node = CoXMLNode::Create(In("n"));
    node->AttributeSet(In("a"), In("plain \"x\""));
    node->AttributeSet(In("b"), In("it's"));
    node->AttributeSet(In("c"), In("it's \"x\""));
    EXPECT_EQ(Say(WriteAttributes(*node, false)), "a='plain \"x\"' b=\"it's\" c=\"it's 'x'\"");
}

TEST(AttributeList, TextAndPrefix) {
    const XMLNodePtr node = Tree("<n a='1' b='2'>some text</n>");
    EXPECT_EQ(Say(WriteAttributes(*node, true)), "_node_value='some text' a='1' b='2'");
    EXPECT_EQ(Say(WriteAttributes(*node, false, In("p::"))), "p::a='1' p::b='2'");
    EXPECT_EQ(Say(WriteAttributes(*Tree("<n/>"), true)), "");
    // Read back it is an attribute like any other.
    EXPECT_EQ(ListOf("_node_value='some text'"), "_node_value='some text'");
}

HRESULT StatusOfList(CoXMLNode &node, std::string_view list, ListNames names) {
    HRESULT status = E_FAIL;
    ParseAttributes(node, In(list), kListOverwrite, names, BareNames::Drop, &status);
    return status;
}

TEST(AttributeList, TooManyPairsAreRefused) {
    std::string list;
    while (list.size() < 4 * kItemsMax) list += "a=1 ";
    const XMLNodePtr node = CoXMLNode::Create(In("n"));
    EXPECT_EQ(StatusOfList(*node, list, ListNames::Flat), S_OK);
    EXPECT_EQ(StatusOfList(*node, list + "b=1", ListNames::Flat), kErrorTooLarge);
    EXPECT_EQ(Line(node), "<n a='1'/>");
}

TEST(AttributeList, TooManyElementsOfPathsAreRefused) {
    // Each element is a node that would have to be made.
    std::string path = "a=1 ";
    for (size_t i = 0; i < kItemsMax; ++i) path += "a::";
    const XMLNodePtr node = CoXMLNode::Create(In("n"));
    EXPECT_EQ(StatusOfList(*node, path + "b=1", ListNames::Paths), kErrorTooLarge);
    EXPECT_EQ(Line(node), "<n a='1'/>");
    EXPECT_EQ(StatusOfList(*node, path + "b=1", ListNames::Flat), S_OK);
}

}    // namespace
}    // namespace zck::XMLParse
