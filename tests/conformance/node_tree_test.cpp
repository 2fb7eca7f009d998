// Nodes in their tree: names, texts, parents, children.
#include <gtest/gtest.h>

#include "tests/conformance/node_tools.h"
#include "xml/writer.h"

namespace conformance {
namespace {

TEST(NodeTree, NamesAndTheParentsIndex) {
    const ComPtr<IZNode> root = Tree("<r><a n='0'/><a n='1'/>t<b/></r>");
    EXPECT_TEXT(root->NodeNameGet(out), S_OK, "r");
    const ComPtr<IZNode> second = At(root, "a(1)");
    EXPECT_EQ(second->NodeNameSet(B("B").get()), S_OK);
    EXPECT_EQ(Dump(root), "<r><a n={0}></><B n={1}></>[t]<b></></>");
    EXPECT_EQ(At(root, "b").get(), second.get());    // in the order of the children now
    EXPECT_NE(At(root, "b(1)").get(), second.get());
    ComPtr<IZNode> none;
    EXPECT_EQ(root->NodeChildGet(B("a(1)").get(), 0, none.Put()), kNotFound);
    EXPECT_EQ(second->NodeNameSet(B("A").get()), S_OK);
    EXPECT_EQ(At(root, "a(1)").get(), second.get());
    EXPECT_EQ(root->NodeNameSet(B("Root").get()), S_OK);
    EXPECT_TEXT(root->NodeNameGet(out), S_OK, "Root");
}

TEST(NodeTree, SameNamesAndSpelling) {
    const ComPtr<IZNode> root = Tree("<r><key v='0'/><KEY v='1'/>x<Key v='2'/></r>");
    for (const auto &row : {std::pair{"key", "0"},
                            {"KEY(0)", "0"},
                            {"key(1)", "1"},
                            {"kEy(2)", "2"},
                            {"key(2x)", "2"},
                            {"key( 1)", "1"},
                            {"key()", "0"},
                            {"key(x)", "0"},
                            {"key(1)(0)", "1"}})
        EXPECT_TEXT(At(root, row.first)->AttributesGetString(B("V").get(), out), S_OK, row.second) << row.first;
    ComPtr<IZNode> none;
    EXPECT_EQ(root->NodeChildGet(B("key(3)").get(), 0, none.Put()), kNotFound);
    EXPECT_TEXT(root->AttributesGetString(B("key(2)::v").get(), out), S_OK, "2");
}

TEST(NodeTree, Texts) {
    const ComPtr<IZNode> node = Tree("<a><b/>1<c/>2</a>");
    EXPECT_TEXT(node->NodeValueGet(out), S_OK, "1");
    EXPECT_EQ(node->NodeValueSet(B("x").get()), S_OK);
    EXPECT_EQ(Dump(node), "<a><b></>[x]<c></>[2]</>");    // the first text child, where it stands
    const ComPtr<IZNode> none = Tree("<a><b/></a>");
    EXPECT_TEXT(none->NodeValueGet(out), S_OK, "");
    for (const char *text : {"y", "z"}) EXPECT_EQ(none->NodeValueSet(B(text).get()), S_OK);
    EXPECT_EQ(Dump(none), "<a>[z]<b></></>");
    int32_t count = -1;
    EXPECT_EQ(none->NodeChildGetCount(&count), S_OK);
    EXPECT_EQ(count, 1);
    EXPECT_EQ(none->NodeValueSet(nullptr), S_OK);
    EXPECT_EQ(Dump(none), "<a>[]<b></></>");
    const ComPtr<IZNode> fresh = Tree("<a/>");
    EXPECT_EQ(fresh->NodeValueSet(B("").get()), S_OK);
    EXPECT_TEXT(fresh->NodeSaveXML(out), S_OK, "<a></a>");
}

TEST(NodeTree, HiddenNodes) {
    const ComPtr<IZNode> root = Tree("<r><attributes_info><x t='1'>help</x></attributes_info><b/></r>");
    int32_t count = -1;
    EXPECT_EQ(root->NodeChildGetCount(&count), S_OK);
    EXPECT_EQ(count, 1);
    Out name;
    ComPtr<IZNode> child;
    EXPECT_EQ(root->NodeChildGetByIndex(0, name, child.Put()), S_OK);
    EXPECT_EQ(name.Said(), "b");
    EXPECT_TEXT(root->NodeChildGetByIndex(1, out, child.Put()), kBadIndex, "<null>");
    const ComPtr<IZNode> hidden = At(root, "Attributes_Info");
    EXPECT_EQ(hidden->NodeChildGetCount(&count), S_OK);
    EXPECT_EQ(count, 0);
    EXPECT_TEXT(hidden->NodeChildGetByIndex(0, out, child.Put()), kBadIndex, "<null>");
    EXPECT_TEXT(hidden->NodeValueGet(out), S_OK, "<x t='1'>help</x>");
    EXPECT_EQ(hidden->NodeValueSet(B("<y/>text<Z a=1>&lt;</Z>").get()), S_OK);
    EXPECT_TEXT(hidden->NodeValueGet(out), S_OK, "<y/>text<z a='1'>&lt;</z>");
    EXPECT_EQ(Dump(root), "<r><attributes_info><y></>[text]<z a={1}>[<]</></><b></></>");
    EXPECT_EQ(hidden->NodeValueSet(B("").get()), S_OK);
    EXPECT_TEXT(hidden->NodeValueGet(out), S_OK, "");
    EXPECT_TEXT(root->NodeSaveXML(out), S_OK, "<r>\r\n\t<attributes_info/>\r\n\t<b/>\r\n</r>");
}

TEST(NodeTree, PathsAndParents) {
    const ComPtr<IZNode> root = Tree("<r><a><b/><b><c/></b></a></r>");
    const ComPtr<IZNode> a = At(root, "a"), c = At(root, "a::b(1)::c");
    EXPECT_TEXT(c->NodePathGet(out, nullptr), S_OK, "a::b::c");
    EXPECT_TEXT(c->NodePathGet(out, root.get()), S_OK, "a::b::c");
    EXPECT_TEXT(c->NodePathGet(out, a.get()), S_OK, "b::c");
    EXPECT_TEXT(root->NodePathGet(out, nullptr), S_OK, "");
    EXPECT_TEXT(a->NodePathGet(out, c.get()), S_OK, "a");    // a stop that is not on the way
    ComPtr<IZNode> parent;
    EXPECT_EQ(a->NodeParentGet(parent.Put()), S_OK);
    EXPECT_EQ(parent.get(), root.get());
    IZNode *raw = root.get();
    EXPECT_EQ(root->NodeParentGet(&raw), S_FALSE);
    EXPECT_EQ(raw, nullptr);
    EXPECT_EQ(root->NodeDetach(), S_FALSE);
    EXPECT_EQ(a->NodeDetach(), S_OK);
    EXPECT_EQ(a->NodeDetach(), S_FALSE);
    EXPECT_EQ(Dump(root), "<r></>");
    EXPECT_TEXT(c->NodePathGet(out, nullptr), S_OK, "b::c");
}

TEST(NodeTree, NodesOutliveTheirParents) {
    ComPtr<IZNode> root = Tree("<r><a><b x='1'/></a></r>");
    const ComPtr<IZNode> b = At(root, "a::b");
    root.Reset();
    IZNode *raw = b.get();
    EXPECT_EQ(b->NodeParentGet(&raw), S_FALSE);    // a child does not own its parent
    EXPECT_EQ(raw, nullptr);
    EXPECT_TEXT(b->AttributesGetString(B("x").get(), out), S_OK, "1");
    EXPECT_EQ(RefsOf(b.get()), 1U);
    EXPECT_EQ(b->NodeDetach(), S_FALSE);
}

TEST(NodeTree, ChildrenAreAddedAndRemoved) {
    const ComPtr<IZNode> root = Tree("<r>t<a/></r>");
    ComPtr<IZNode> child;
    EXPECT_EQ(root->NodeChildAdd(B("end").get(), -1, child.Put()), S_OK);
    EXPECT_EQ(RefsOf(child.get()), 2U);
    EXPECT_EQ(root->NodeChildAdd(B("first").get(), 0, child.Put()), S_OK);
    EXPECT_EQ(root->NodeChildAdd(B("third").get(), 2, child.Put()), S_OK);    // texts count
    EXPECT_EQ(root->NodeChildAdd(B("far").get(), 99, child.Put()), S_OK);
    EXPECT_EQ(root->NodeChildAdd(B("neg").get(), -5, child.Put()), S_OK);
    EXPECT_EQ(root->NodeChildAdd(B("A").get(), 0, child.Put()), S_OK);
    EXPECT_EQ(Dump(root), "<r><A></><first></>[t]<third></><a></><end></><far></><neg></></>");
    EXPECT_EQ(At(root, "a").get(), child.get());
    const char *const names[] = {"A", "first", "third", "a", "end", "far", "neg"};
    for (int32_t i = 0; i < 7; ++i) {
        Out name;
        ComPtr<IZNode> at;
        EXPECT_EQ(root->NodeChildGetByIndex(i, name, at.Put()), S_OK);
        EXPECT_EQ(name.Said(), names[i]);
        EXPECT_TEXT(at->NodeNameGet(out), S_OK, names[i]);
    }
    for (const int32_t i : {7, -1, INT32_MIN}) {
        Out name;
        IZNode *raw = root.get();
        EXPECT_EQ(root->NodeChildGetByIndex(i, name, &raw), kBadIndex);
        EXPECT_EQ(name.Said(), "<null>");
        EXPECT_EQ(raw, nullptr);
    }
    EXPECT_EQ(root->NodeChildRemove(B("A(1)").get()), S_OK);
    EXPECT_EQ(root->NodeChildRemove(B("a").get()), S_OK);
    EXPECT_EQ(root->NodeChildRemove(B("a").get()), S_FALSE);
    EXPECT_EQ(root->NodeChildRemove(B("no::where").get()), S_FALSE);
    IZNode *raw = root.get();
    EXPECT_EQ(child->NodeParentGet(&raw), S_FALSE);
    EXPECT_EQ(root->AttributesSetString(B("x").get(), B("1").get()), S_OK);
    EXPECT_EQ(root->NodeChildRemoveAll(0), S_OK);
    EXPECT_EQ(Dump(root), "<r x={1}></>");
    EXPECT_EQ(root->NodeChildRemoveAll(7), S_OK);
    EXPECT_EQ(Dump(root), "<r></>");
}

TEST(NodeTree, ChildrenAreFoundOrMade) {
    const ComPtr<IZNode> root = Tree("<r/>");
    IZNode *raw = root.get();
    EXPECT_EQ(root->NodeChildGet(B("A::b").get(), 0, &raw), kNotFound);
    EXPECT_EQ(raw, nullptr);
    EXPECT_EQ(Dump(root), "<r></>");
    ComPtr<IZNode> child;
    EXPECT_EQ(root->NodeChildGet(B("A::b(5)").get(), 5, child.Put()), S_OK);
    EXPECT_EQ(Dump(root), "<r><A><b></></></>");
    EXPECT_EQ(root->NodeChildGet(B("a::B").get(), 1, child.Put()), S_OK);
    EXPECT_EQ(Dump(root), "<r><A><b></></></>");
    EXPECT_EQ(root->NodeChildGet(B("a::B(1)").get(), 1, child.Put()), S_OK);
    EXPECT_EQ(Dump(root), "<r><A><b></><B></></></>");
    for (const char *path : {"::a", "a::", "::", "a::::b", "a::b::"})
        for (const int32_t create : {0, 1}) {
            raw = root.get();
            EXPECT_TRUE(FAILED(root->NodeChildGet(B(path).get(), create, &raw))) << path;
            EXPECT_EQ(raw, nullptr);
            EXPECT_EQ(root->AttributesSetString(B(path).get(), B("v").get()), E_INVALIDARG) << path;
        }
    EXPECT_EQ(Dump(root), "<r><A><b></><B></></></>");
}

TEST(NodeTree, XMLInAndOut) {
    const ComPtr<IZNode> node = Tree("<a x='1'>t</a>");
    EXPECT_EQ(node->NodeLoadXML(B("<q y=2><b/></q>").get(), 0), S_OK);
    EXPECT_EQ(Dump(node), "<a y={2}><b></></>");
    EXPECT_EQ(node->NodeLoadXML(B("<Q y=2>&amp;</q>").get(), 1), S_OK);
    EXPECT_EQ(Dump(node), "<q y={2}>[&]</>");
    EXPECT_TEXT(node->NodeSaveXML(out), S_OK, "<q y='2'>&amp;</q>");
    for (const int32_t takeName : {0, 1}) {
        EXPECT_EQ(node->NodeLoadXML(B("<q y=2/>").get(), 1), S_OK);
        EXPECT_EQ(node->NodeLoadXML(B("no tag").get(), takeName), E_INVALIDARG);
        EXPECT_EQ(Dump(node), "<q></>");
    }
    EXPECT_EQ(node->NodeLoadXML(nullptr, 1), E_INVALIDARG);
    const ComPtr<IZNode> root = Tree("<r><a/></r>");
    EXPECT_EQ(At(root, "a")->NodeLoadXML(B("<z/>").get(), 1), S_OK);
    EXPECT_TEXT(At(root, "z")->NodeNameGet(out), S_OK, "z");    // the parent's index is in step
}

TEST(NodeTree, Clones) {
    const ComPtr<IZNode> node = Tree("<a x='1'>t<b y='2'>u<c/></b><attributes_info><q/></attributes_info></a>");
    ComPtr<IZNode> clone;
    ASSERT_EQ(node->NodeClone(clone.Put()), S_OK);
    EXPECT_EQ(Dump(clone), "<clone x={1}>[t]<b y={2}>[u]<c></></><attributes_info><q></></></>");
    EXPECT_EQ(RefsOf(clone.get()), 1U);
    EXPECT_EQ(At(clone, "b")->AttributesSetString(B("y").get(), B("9").get()), S_OK);
    EXPECT_EQ(Dump(node), "<a x={1}>[t]<b y={2}>[u]<c></></><attributes_info><q></></></>");
    ComPtr<IZNode> inner;
    ASSERT_EQ(At(node, "b")->NodeClone(inner.Put()), S_OK);
    IZNode *raw = node.get();
    EXPECT_EQ(inner->NodeParentGet(&raw), S_FALSE);
    EXPECT_EQ(node->NodeReserved(&raw, 1), E_NOTIMPL);
}

}    // namespace
}    // namespace conformance
