// What a call that gives nothing leaves in its outputs: never what stood there before. And searches that go far.
#include <gtest/gtest.h>

#include "platform/status.h"
#include "tests/xml/say.h"
#include "xml/node.h"

namespace zck::XMLParse {
namespace {

class NodeOutputs : public testing::Test {
protected:
    template <class Call>
    HRESULT Cleared(Call call) {
        BSTR text = reinterpret_cast<BSTR>(this);
        const HRESULT hr = call(&text);
        EXPECT_EQ(text, nullptr);
        return hr;
    }
    template <class Call>
    HRESULT ClearedNode(Call call) {
        IZNode *child = m_node.get();
        const HRESULT hr = call(&child);
        EXPECT_EQ(child, nullptr);
        return hr;
    }

    const XMLNodePtr m_node = Tree("<a x='1'/>");
};

TEST_F(NodeOutputs, OfAttributes) {
    int32_t found = 7;
    EXPECT_EQ(Cleared([&](BSTR *out) { return m_node->AttributesGet(Arg("").get(), &found, out); }), E_INVALIDARG);
    EXPECT_EQ(found, 0);
    found = 7;
    EXPECT_EQ(Cleared([&](BSTR *out) { return m_node->AttributesGet(Arg("y").get(), &found, out); }), S_FALSE);
    EXPECT_EQ(found, 0);
    EXPECT_EQ(Cleared([&](BSTR *out) { return m_node->AttributesGetString(Arg("y").get(), out); }), kErrorNotFound);
    EXPECT_EQ(Cleared([&](BSTR *out) { return m_node->AttributesGetString(nullptr, out); }), E_INVALIDARG);
    EXPECT_EQ(Cleared([&](BSTR *out) { return m_node->AttributesInfoGetName(-1, out); }), E_INVALIDARG);
    EXPECT_EQ(Cleared([&](BSTR *out) { return m_node->AttributesInfoGetName(0, out); }), kErrorInvalidIndex);
    EXPECT_EQ(Cleared([&](BSTR *out) { return m_node->AttributesInfoGet(nullptr, eZIT_Help, out); }), E_INVALIDARG);
    EXPECT_EQ(Cleared([&](BSTR *out) { return m_node->AttributesInfoGet(Arg("x").get(), eZIT_Node, out); }), E_INVALIDARG);
    EXPECT_EQ(Cleared([&](BSTR *out) { return m_node->AttributesInfoGet(Arg("x").get(), eZIT_Help, out); }), S_FALSE);
    EXPECT_EQ(Cleared([&](BSTR *out) { return m_node->AttributesOptionInfoGet(nullptr, nullptr, nullptr, out); }),
              E_INVALIDARG);
    EXPECT_EQ(Cleared([&](BSTR *out) { return m_node->AttributesOptionInfoGet(Arg("x").get(), Arg("o").get(), nullptr, out); }),
              kErrorNotFound);
    EXPECT_EQ(Cleared([&](BSTR *out) { return m_node->NodeAttributeInfoGet(nullptr, out); }), kErrorNotFound);
    BSTR other = reinterpret_cast<BSTR>(this);
    EXPECT_EQ(Cleared([&](BSTR *out) { return m_node->AttributesGetByIndex(1, out, &other); }), kErrorInvalidIndex);
    EXPECT_EQ(other, nullptr);
}

TEST_F(NodeOutputs, OfChildren) {
    EXPECT_EQ(ClearedNode([&](IZNode **out) { return m_node->NodeParentGet(out); }), S_FALSE);
    EXPECT_EQ(ClearedNode([&](IZNode **out) { return m_node->NodeChildAdd(Arg("").get(), -1, out); }), E_INVALIDARG);
    EXPECT_EQ(ClearedNode([&](IZNode **out) { return m_node->NodeChildGet(Arg("").get(), 1, out); }), E_INVALIDARG);
    EXPECT_EQ(ClearedNode([&](IZNode **out) { return m_node->NodeChildGet(Arg("b").get(), 0, out); }), kErrorNotFound);
    EXPECT_EQ(ClearedNode(
                  [&](IZNode **out) { return Cleared([&](BSTR *name) { return m_node->NodeChildGetByIndex(0, name, out); }); }),
              kErrorInvalidIndex);
    EXPECT_EQ(m_node->NodeChildRemoveAll(2), S_OK);    // any number but 0 takes the attributes too
    EXPECT_EQ(Line(m_node), "<a/>");
}

TEST(NodeTrees, OnlyTheLastElementGoesToThePosition) {
    const XMLNodePtr node = Tree("<a><b/></a>");
    EXPECT_TRUE(node->NodeFindOrCreate(In("p::q"), 0));
    EXPECT_TRUE(node->NodeFindOrCreate(In("p::r"), 0));
    EXPECT_EQ(Line(node), "<a><b/><p><r/><q/></p></a>");
}

TEST(NodeTrees, ValuesAreCopiedAsText) {
    const XMLNodePtr node = CoXMLNode::Create(In("a"));
    node->FloatSet(In("f"), 0.123456789);
    EXPECT_EQ(node->FloatGet(In("f")), 0.123456789);
    EXPECT_EQ(node->CopyTree(In("c"))->FloatGet(In("f")), 0.123457);
}

std::string TypeOf(const XMLNodePtr &root, std::string_view node, std::string_view name) {
    const XMLNodePtr info = root->NodeFind(In(node))->InfoFind(In(name));
    return info ? Say(CoXMLNode::InfoText(*info, eZIT_Type)) : "none";
}

TEST(NodeTrees, ClassesInheritOverManyStepsAndEndAtTheFirstDot) {
    const XMLNodePtr root = Tree(
        "<r><attributes_info><a inherit='b'/><b inherit='c'/><c inherit='d'/><d inherit='e'/>"
        "<e><x type='far'/></e></attributes_info><m><a/><a.b.c/></m></r>");
    EXPECT_EQ(TypeOf(root, "m::a", "x"), "far");
    EXPECT_EQ(TypeOf(root, "m::a.b.c", "x"), "far");
}

TEST(NodeTrees, APlaceThatDescribesNothingIsNone) {
    const XMLNodePtr root = Tree("<r><attributes_info x='1'/><n/></r>");
    int32_t count = 7;
    EXPECT_EQ(root->ChildFind(In("n"))->AttributesInfoGetCount(&count), S_FALSE);
    EXPECT_EQ(count, 0);
}

TEST(NodeTrees, ValuesAreSelectedFromDescriptionsOrFromTheRoot) {
    const XMLNodePtr root =
        Tree("<r><m><attributes_info><a select_from='b'/></attributes_info><b values='wrong'/></m><b values='right'/></r>");
    const XMLNodePtr info = root->NodeFind(In("m"))->InfoFind(In("a"));
    ASSERT_TRUE(info);
    EXPECT_EQ(Say(CoXMLNode::InfoText(*info, eZIT_Values)), "right");
}

}    // namespace
}    // namespace zck::XMLParse
