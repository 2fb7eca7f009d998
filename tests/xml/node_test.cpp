#include "xml/node.h"

#include <gtest/gtest.h>

#include "platform/object.h"
#include "tests/xml/say.h"

namespace zck::XMLParse {
namespace {

XMLNodePtr Root() { return CoXMLNode::Create(In("root")); }

TEST(Node, ChildrenOfOneNameAreReachedByIndex) {
    const XMLNodePtr root = Root();
    const XMLNodePtr first = root->ChildAdd(In("key"));
    root->ChildAdd(In("other"));
    const XMLNodePtr second = root->ChildAdd(In("KEY"));
    EXPECT_EQ(root->NodeFind(In("key")), first);
    EXPECT_EQ(root->NodeFind(In("key(0)")), first);
    EXPECT_EQ(root->NodeFind(In("Key(1)")), second);
    EXPECT_EQ(root->NodeFind(In("key(1x)")), second);
    EXPECT_EQ(root->NodeFind(In("key(x)")), first);
    EXPECT_FALSE(root->NodeFind(In("key(2)")));
    EXPECT_FALSE(root->NodeFind(In("key(-1)")));
    EXPECT_FALSE(root->NodeFind(In("(0)")));
}

TEST(Node, EmptyElementsFindAndMakeNothing) {
    const XMLNodePtr root = Root();
    for (const char *path : {"", "::", "::a", "a::", "a::::b", "(1)::b", "a::(1)::"}) {
        EXPECT_FALSE(root->NodeFind(In(path))) << path;
        EXPECT_FALSE(root->NodeFindOrCreate(In(path))) << path;
        EXPECT_FALSE(root->AttributeSet(In(path), In("1"))) << path;
    }
    EXPECT_EQ(root->ChildCount(Children::All), 0U);
}

TEST(Node, PathsAreMadeElementByElement) {
    const XMLNodePtr root = Root();
    const XMLNodePtr leaf = root->NodeFindOrCreate(In("a::b::c"));
    EXPECT_EQ(Line(root), "<root><a><b><c/></b></a></root>");
    EXPECT_EQ(root->NodeFindOrCreate(In("A::B::C")), leaf);
    // Whatever the index, one child is appended.
    const XMLNodePtr more = root->NodeFindOrCreate(In("a(7)::d"));
    EXPECT_EQ(Line(root), "<root><a><b><c/></b></a><a><d/></a></root>");
    EXPECT_EQ(Say(more->PathGet()), "a::d");
    root->NodeFindOrCreate(In("first"), 0);
    EXPECT_EQ(Line(root), "<root><first/><a><b><c/></b></a><a><d/></a></root>");
}

TEST(Node, PositionOutOfRangeAppends) {
    const XMLNodePtr root = Root();
    root->ChildAdd(In("a"));
    root->ChildAdd(In("b"), 0);
    root->ChildAdd(In("c"), 99);
    root->ChildAdd(In("d"), -5);
    EXPECT_EQ(Line(root), "<root><b/><a/><c/><d/></root>");
    EXPECT_EQ(Say(root->NodeFind(In("a"))->PathGet()), "a");
}

TEST(Node, TextIsTheFirstTextChild) {
    const XMLNodePtr root = Root();
    EXPECT_EQ(Say(root->TextGet()), "");
    root->ChildAdd(In("a"));
    root->TextSet(In("one"));
    root->TextSet(In("two"));
    EXPECT_EQ(root->ChildCount(Children::All), 2U);
    EXPECT_EQ(root->ChildCount(Children::Elements), 1U);
    EXPECT_TRUE(root->ChildAt(Children::All, 0)->IsTextNode());
    EXPECT_EQ(Say(root->TextGet()), "two");
    root->TextAppend(In("three"));
    root->TextAppend(In("four"));
    EXPECT_EQ(Line(root), "<root>two<a/>threefour</root>");
    EXPECT_EQ(Say(root->TextGet()), "two");
    root->TextSet(In(""));
    EXPECT_EQ(root->ChildCount(Children::All), 3U);
}

TEST(Node, NoNameFindsAText) {
    const XMLNodePtr root = Root();
    root->TextSet(In("a"));
    EXPECT_FALSE(root->NodeFind(In("a")));
    EXPECT_FALSE(root->ChildFind(In("")));
}

TEST(Node, RenamedChildKeepsItsPlace) {
    const XMLNodePtr root = Root();
    const XMLNodePtr a = root->ChildAdd(In("a"));
    const XMLNodePtr b = root->ChildAdd(In("b"));
    a->NameSet(In("b"));
    EXPECT_EQ(Line(root), "<root><b/><b/></root>");
    EXPECT_EQ(root->NodeFind(In("b(0)")), a);
    EXPECT_EQ(root->NodeFind(In("b(1)")), b);
    EXPECT_FALSE(root->NodeFind(In("a")));
}

TEST(Node, DetachedChildLivesOn) {
    const XMLNodePtr root = Root();
    const XMLNodePtr a = root->ChildAdd(In("a"));
    a->AttributeSet(In("x"), In("1"));
    EXPECT_EQ(a->ParentGet(), root);
    EXPECT_TRUE(root->NodeRemove(In("a")));
    EXPECT_FALSE(root->NodeRemove(In("a")));
    EXPECT_FALSE(a->ParentGet());
    EXPECT_FALSE(a->Detach());
    EXPECT_EQ(Line(root), "<root/>");
    EXPECT_EQ(Line(a), "<a x='1'/>");
}

TEST(Node, ChildOfADeadParentHasNone) {
    XMLNodePtr root = Root();
    const XMLNodePtr a = root->ChildAdd(In("a"));
    root.Reset();
    EXPECT_FALSE(a->ParentGet());
    EXPECT_EQ(Say(a->PathGet()), "");
}

TEST(Node, PathEndsAtTheStop) {
    const XMLNodePtr root = Root();
    const XMLNodePtr leaf = root->NodeFindOrCreate(In("a::b::c"));
    EXPECT_EQ(Say(leaf->PathGet()), "a::b::c");
    EXPECT_EQ(Say(leaf->PathGet(root->NodeFind(In("a")).get())), "b::c");
    EXPECT_EQ(Say(leaf->PathGet(leaf.get())), "");
    EXPECT_EQ(Say(root->PathGet()), "");
}

TEST(Node, CopyIsDeepAndFree) {
    const XMLNodePtr tree = Tree("<n a='1'>t<b c='2'><d/></b>u<attributes_info x='3'/></n>");
    tree->IntGet(In("a"));
    tree->ChildFind(In("b"))->CompactOutputSet(true);
    const XMLNodePtr copy = tree->ChildFind(In("b"))->CopyTree(In("copy"));
    EXPECT_FALSE(copy->ParentGet());
    EXPECT_TRUE(copy->CompactOutput());
    EXPECT_EQ(Line(copy), "<copy c='2'><d/></copy>");
    const XMLNodePtr whole = tree->CopyTree(In("whole"));
    tree->ChildrenClear();
    EXPECT_EQ(Line(whole), "<whole a='1'>t<b c='2'><d/></b>u<attributes_info x='3'/></whole>");
    EXPECT_EQ(whole->ChildFind(In("b"))->ParentGet(), whole);
}

TEST(Node, ADeepTreeDiesWithoutADeepStack) {
    const int32_t before = ModuleCount::Get();
    {
        const XMLNodePtr root = Root();
        XMLNodePtr at = root;
        for (int i = 0; i < 50000; ++i) at = at->ChildAdd(In("n"));
        EXPECT_EQ(Line(root).size(), 50000U * 7 + 13 - 3);
        EXPECT_EQ(root->CopyTree(In("copy"))->ChildCount(Children::All), 1U);
    }
    EXPECT_EQ(ModuleCount::Get(), before);
}

TEST(Node, HoldsForeignObjectsByName) {
    const XMLNodePtr root = Root();
    const XMLNodePtr object = CoXMLNode::Create(In("object"));
    root->ObjectAttach(In("Name"), object.get());
    EXPECT_EQ(root->ObjectFind(In("name")).get(), static_cast<IZNode *>(object.get()));
    root->ObjectAttach(In("name"), root->ObjectFind(In("name")).get());
    EXPECT_FALSE(root->ObjectFind(In("other")).get());
    root->ObjectAttach(In("name"), nullptr);
    root->ObjectAttach(In("never"), nullptr);
    EXPECT_FALSE(root->ObjectFind(In("name")).get());
}

TEST(Attributes, KeepTheFirstSpellingAndPlace) {
    const XMLNodePtr node = Root();
    node->AttributeSet(In("Size"), In("1"));
    node->AttributeSet(In("b"), In("2"));
    node->AttributeSet(In("SIZE"), In("3"));
    EXPECT_EQ(Line(node), "<root Size='3' b='2'/>");
    EXPECT_EQ(node->AttributeCount(), 2U);
    EXPECT_FALSE(node->AttributeSetOwn(In("b"), TypedValue(In("9")), Existing::Keep));
    EXPECT_TRUE(node->AttributeRemove(In("size")));
    EXPECT_FALSE(node->AttributeRemove(In("size")));
    EXPECT_EQ(Line(node), "<root b='2'/>");
}

TEST(Attributes, LastElementOfAPathIsTheName) {
    const XMLNodePtr node = Root();
    EXPECT_TRUE(node->AttributeSet(In("a::b(2)::c(1)"), In("5")));
    EXPECT_EQ(Line(node), "<root><a><b c(1)='5'/></a></root>");
    Text value;
    EXPECT_TRUE(node->AttributeText(In("a::b::C(1)"), value));
    EXPECT_EQ(Say(value), "5");
    EXPECT_TRUE(node->AttributeExists(In("a::b::c(1)")));
    EXPECT_FALSE(node->AttributeExists(In("a::b(2)::c(1)")));
    EXPECT_FALSE(node->AttributeExists(In("x::c")));
    EXPECT_FALSE(node->AttributeText(In(""), value));
    EXPECT_EQ(Say(value), "5");
    EXPECT_TRUE(node->AttributeRemove(In("a::b::c(1)")));
}

TEST(Attributes, ADotBelongsToTheName) {
    const XMLNodePtr node = Root();
    node->AttributeSet(In("detect.max_keys"), In("4"));
    EXPECT_EQ(Line(node), "<root detect.max_keys='4'/>");
    EXPECT_EQ(node->IntGet(In("detect.max_keys")), 4);
}

TEST(Attributes, TypedReadingKeepsTheText) {
    const XMLNodePtr node = Root();
    node->AttributeSet(In("n"), In("0012"));
    EXPECT_EQ(node->IntGet(In("n")), 12);
    EXPECT_EQ(node->Hex32Get(In("n")), 10U);
    EXPECT_EQ(node->FloatGet(In("n")), 12.0);
    EXPECT_TRUE(node->BoolGet(In("n")));
    EXPECT_EQ(Line(node), "<root n='0012'/>");
    node->IntSet(In("n"), 5);
    EXPECT_EQ(Line(node), "<root n='5'/>");
}

TEST(Attributes, DefaultIsForAMissingAttributeOnly) {
    const XMLNodePtr node = Root();
    EXPECT_EQ(node->IntGet(In("n"), 7), 7);
    EXPECT_EQ(node->FloatGet(In("a::n"), 0.5), 0.5);
    EXPECT_EQ(node->Hex32Get(In(""), 3), 3U);
    EXPECT_TRUE(node->BoolGet(In("n"), true));
    node->AttributeSet(In("n"), In(""));
    EXPECT_EQ(node->IntGet(In("n"), 7), 0);
    EXPECT_FALSE(node->BoolGet(In("n"), true));
}

TEST(Attributes, TypedValuesAreWrittenInTheirForm) {
    const XMLNodePtr node = Root();
    EXPECT_TRUE(node->BoolSet(In("b"), true));
    EXPECT_TRUE(node->Hex32Set(In("h"), 0xFF00FF));
    EXPECT_TRUE(node->FloatSet(In("f"), 0.25));
    EXPECT_TRUE(node->IntSet(In("c::i"), -3));
    EXPECT_FALSE(node->IntSet(In("c::"), -3));
    EXPECT_EQ(Line(node), "<root b='true' h='0x00FF00FF' f='0.25'><c i='-3'/></root>");
}

TEST(Attributes, AreFoundAmongMany) {
    const XMLNodePtr node = Root();
    for (int32_t i = 0; i < 300; ++i) node->IntSet(Text(In("name")).append(TextFromInt(i)), i);
    for (int32_t i = 0; i < 300; ++i) EXPECT_EQ(node->IntGet(Text(In("NAME")).append(TextFromInt(i)), -1), i);
    EXPECT_EQ(node->IntGet(In("name300"), -1), -1);
}

}    // namespace
}    // namespace zck::XMLParse
