// Attributes of a node, through its interface: values of all types, lists, copies.
#include <gtest/gtest.h>

#include "tests/conformance/node_tools.h"

namespace conformance {
namespace {

TEST(NodeAttributes, AreCountedWithThoseOfHiddenChildren) {
    const ComPtr<IZNode> node =
        Tree("<a x='1' Y='2'><attributes_info inherit='false' z='3'><x q='9'/></attributes_info><b k='4'/></a>");
    int32_t count = -1;
    EXPECT_EQ(node->AttributesGetCount(&count), S_OK);
    EXPECT_EQ(count, 4);
    const char *const want[][2] = {{"x", "1"}, {"Y", "2"}, {"attributes_info::inherit", "false"}, {"attributes_info::z", "3"}};
    for (int32_t i = 0; i < 4; ++i) {
        Out name, value;
        EXPECT_EQ(node->AttributesGetByIndex(i, name, value), S_OK);
        EXPECT_EQ(name.Said(), want[i][0]);
        EXPECT_EQ(value.Said(), want[i][1]);
    }
    for (const int32_t i : {4, -1, INT32_MAX, INT32_MIN}) {
        Out name, value;
        EXPECT_EQ(node->AttributesGetByIndex(i, name, value), kBadIndex) << i;
        EXPECT_EQ(name.Said(), "<null>");
        EXPECT_EQ(value.Said(), "<null>");
    }
    EXPECT_TEXT(node->AttributesGetList(out), S_OK, "x='1' Y='2' attributes_info::inherit='false' attributes_info::z='3'");
    const ComPtr<IZNode> bare = Tree("<a/>");
    EXPECT_EQ(bare->AttributesGetCount(&count), S_FALSE);
    EXPECT_EQ(count, 0);
    EXPECT_TEXT(bare->AttributesGetList(out), S_OK, "");
    const ComPtr<IZNode> onlyHidden = Tree("<a><attributes_info z='3'/></a>");
    EXPECT_EQ(onlyHidden->AttributesGetCount(&count), S_OK);
    EXPECT_EQ(count, 1);
    EXPECT_TEXT(onlyHidden->AttributesGetList(out), S_OK, "attributes_info::z='3'");
}

TEST(NodeAttributes, TypedSettersAndGetters) {
    const ComPtr<IZNode> node = Tree("<a text='12' zeros='0012' word='yes' part='50%' bare='' neg='-3'/>");
    int32_t number = -1;
    double real = -1;
    for (int round = 0; round < 3; ++round) {
        EXPECT_EQ(node->AttributesGetInt(B("text").get(), &number), S_OK);
        EXPECT_EQ(number, 12);
        EXPECT_EQ(node->AttributesGetInt(B("ZEROS").get(), &number), S_OK);
        EXPECT_EQ(number, 12);
        EXPECT_EQ(node->AttributesGetBool(B("word").get(), &number), S_OK);
        EXPECT_EQ(number, 1);
        EXPECT_EQ(node->AttributesGetBool(B("text").get(), &number), S_OK);
        EXPECT_EQ(number, 1);
        EXPECT_EQ(node->AttributesGetBool(B("neg").get(), &number), S_OK);
        EXPECT_EQ(number, 0);
        EXPECT_EQ(node->AttributesGetDouble(B("part").get(), &real), S_OK);
        EXPECT_EQ(real, 0.5);
        EXPECT_EQ(node->AttributesGetInt(B("bare").get(), &number), S_OK);
        EXPECT_EQ(number, 0);
        EXPECT_TEXT(node->AttributesGetString(B("zeros").get(), out), S_OK, "0012");
        EXPECT_TEXT(node->AttributesGetString(B("bare").get(), out), S_OK, "");
    }
    EXPECT_EQ(node->AttributesSetBool(B("b").get(), -7), S_OK);
    EXPECT_EQ(node->AttributesSetBool(B("c").get(), 0), S_OK);
    EXPECT_EQ(node->AttributesSetInt(B("i").get(), INT32_MIN), S_OK);
    EXPECT_EQ(node->AttributesSetDouble(B("d").get(), -0.05), S_OK);
    EXPECT_EQ(node->AttributesSetString(B("s").get(), nullptr), S_OK);
    EXPECT_EQ(node->AttributesSetDouble(B("TEXT").get(), 2), S_OK);    // place and spelling stay
    EXPECT_TEXT(
        node->AttributesGetList(out), S_OK,
        "text='2.0' zeros='0012' word='yes' part='50%' bare='' neg='-3' b='true' c='false' i='-2147483648' d='-0.05' s=''");
    number = 7;
    EXPECT_EQ(node->AttributesGetInt(B("none").get(), &number), kNotFound);
    EXPECT_EQ(number, 0);
    number = 7;
    EXPECT_EQ(node->AttributesGetBool(B("none").get(), &number), kNotFound);
    EXPECT_EQ(number, 0);
    EXPECT_EQ(node->AttributesGetDouble(B("no::ne").get(), &real), kNotFound);
    EXPECT_EQ(real, 0);
    EXPECT_TEXT(node->AttributesGetString(B("none").get(), out), kNotFound, "<null>");
    EXPECT_EQ(node->AttributesRemove(B("none").get()), kNotFound);
    EXPECT_EQ(node->AttributesRemove(B("no::ne").get()), kNotFound);
    EXPECT_EQ(node->AttributesRemove(B("TEXT").get()), S_OK);
    EXPECT_EQ(node->AttributesRemove(B("text").get()), kNotFound);
    EXPECT_EQ(node->AttributesRemoveAll(), S_OK);
    EXPECT_EQ(node->AttributesRemoveAll(), S_OK);
    EXPECT_EQ(Dump(node), "<a></>");
}

TEST(NodeAttributes, AbsentOnesGiveTheDescribedDefault) {
    const ComPtr<IZNode> node = Tree("<a x='1'><attributes_info><x default='7'/><y default='8'/><z/></attributes_info></a>");
    int32_t found = 7;
    EXPECT_TEXT(node->AttributesGet(B("x").get(), &found, out), S_OK, "1");
    EXPECT_EQ(found, 1);
    EXPECT_TEXT(node->AttributesGet(B("Y").get(), &found, out), S_FALSE, "8");
    EXPECT_EQ(found, 0);
    found = 7;
    EXPECT_TEXT(node->AttributesGet(B("z").get(), &found, out), S_FALSE, "<null>");
    EXPECT_EQ(found, 0);
    found = 7;
    EXPECT_TEXT(node->AttributesGet(B("q").get(), &found, out), S_FALSE, "<null>");
    EXPECT_EQ(found, 0);
    int32_t number = 7;
    EXPECT_EQ(node->AttributesGetInt(B("y").get(), &number), kNotFound);    // only this one getter knows defaults
    EXPECT_EQ(number, 0);
}

TEST(NodeAttributes, Lists) {
    const ComPtr<IZNode> node = Tree("<a x='1'/>");
    EXPECT_EQ(node->AttributesSetList(B("x=2 b::y='3 4' bare").get(), 0), S_OK);
    EXPECT_EQ(Dump(node), "<a x={1}><b y={3 4}></></>");
    EXPECT_EQ(node->AttributesSetList(B("x=2").get(), 1), S_OK);
    EXPECT_EQ(Dump(node), "<a x={2}><b y={3 4}></></>");
    EXPECT_EQ(node->AttributesSetList(B("z=2").get(), 2), S_OK);
    EXPECT_EQ(Dump(node), "<a z={2}><b y={3 4}></></>");
}

TEST(NodeAttributes, CloneAndCopy) {
    const ComPtr<IZNode> node = Tree("<a x='1' Y='2'>text<b k='3'/></a>");
    ComPtr<IZAttributes> clone;
    ASSERT_EQ(node->AttributesClone(clone.Put()), S_OK);
    const ComPtr<IZNode> cloneNode = QueryFor<IZNode>(clone.get());
    ASSERT_TRUE(cloneNode);
    EXPECT_EQ(Dump(cloneNode), "<m_attributes x={1} Y={2}></>");
    IZNode *parent = node.get();
    EXPECT_EQ(cloneNode->NodeParentGet(&parent), S_FALSE);
    EXPECT_EQ(parent, nullptr);
    EXPECT_EQ(clone->AttributesSetString(B("x").get(), B("9").get()), S_OK);
    EXPECT_EQ(Dump(node), "<a x={1} Y={2}>[text]<b k={3}></></>");

    const auto copied = [&](int32_t mode) {
        const ComPtr<IZNode> to = Tree("<t X='old' q='old'><b/></t>");
        EXPECT_EQ(to->AttributesCopyFrom(node.get(), mode), S_OK);
        return Dump(to);
    };
    EXPECT_EQ(copied(0), "<t X={old} q={old} Y={2}><b></></>");
    EXPECT_EQ(copied(1), "<t X={1} q={old} Y={2}><b></></>");
    EXPECT_EQ(copied(3), "<t X={1} q={old} Y={2}><b></></>");
    EXPECT_EQ(copied(2), "<t x={1} Y={2}><b></></>");
    EXPECT_TRUE(FAILED(node->AttributesCopyFrom(nullptr, 2)));
    for (const int32_t mode : {0, 1, 2}) EXPECT_EQ(node->AttributesCopyFrom(node.get(), mode), S_OK);
    EXPECT_EQ(Dump(node), "<a x={1} Y={2}>[text]<b k={3}></></>");
}

}    // namespace
}    // namespace conformance
