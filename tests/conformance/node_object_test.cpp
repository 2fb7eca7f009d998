// A node as an object: its interfaces, the order of its slots, missing arguments.
#include <gtest/gtest.h>

#include "tests/conformance/node_tools.h"

namespace conformance {
namespace {

TEST(NodeObject, QueriesAreSymmetric) {
    const ComPtr<IZNode> node = Tree("<a/>");
    const IID *const ids[] = {&IID_IUnknown, &IID_IZAttributes, &IID_IZNode};
    for (const IID *from : ids) {
        ComPtr<IUnknown> view;
        ASSERT_EQ(node->QueryInterface(*from, view.PutVoid()), S_OK);
        for (const IID *to : ids) {
            ComPtr<IUnknown> other, back, identity;
            ASSERT_EQ(view->QueryInterface(*to, other.PutVoid()), S_OK);
            ASSERT_EQ(other->QueryInterface(*from, back.PutVoid()), S_OK);
            EXPECT_EQ(back.get(), view.get());
        }
    }
    void *out = &out;
    EXPECT_EQ(node->QueryInterface(IID_IZProps, &out), E_NOINTERFACE);
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(node->QueryInterface(IID_IZNode, nullptr), E_POINTER);
    EXPECT_EQ(RefsOf(node.get()), 1U);
}

// The n-th slot of the table, called with the object itself.
template <class... Args>
HRESULT Slot(IZNode *node, size_t slot, Args... args) {
    using Method = HRESULT(Z_STDCALL *)(void *, Args...);
    void *const *const table = *reinterpret_cast<void *const *const *>(node);
    return reinterpret_cast<Method>(table[slot])(node, args...);
}

TEST(NodeObject, SlotsStandInTheirOrder) {
    const ComPtr<IZNode> node = Tree("<a x='1' y='2.5'>text<b/><c/></a>");
    int32_t count = -1, number = -1;
    double real = -1;
    EXPECT_EQ(Slot(node.get(), 3, &count), S_OK);    // AttributesGetCount
    EXPECT_EQ(count, 2);
    EXPECT_EQ(Slot(node.get(), 5, B("z").get()), kNotFound);                                    // AttributesRemove
    EXPECT_EQ(Slot(node.get(), 7, B("s").get(), B("v").get()), S_OK);                           // AttributesSetString
    EXPECT_EQ(Slot(node.get(), 8, B("t").get(), int32_t{5}), S_OK);                             // AttributesSetBool
    EXPECT_EQ(Slot(node.get(), 9, B("i").get(), int32_t{5}), S_OK);                             // AttributesSetInt
    EXPECT_EQ(Slot(node.get(), 10, B("d").get(), 0.5), S_OK);                                   // AttributesSetDouble
    EXPECT_TEXT(Slot(node.get(), 12, B("t").get(), static_cast<BSTR *>(out)), S_OK, "true");    // AttributesGetString
    EXPECT_EQ(Slot(node.get(), 13, B("x").get(), &number), S_OK);                               // AttributesGetInt
    EXPECT_EQ(number, 1);
    EXPECT_EQ(Slot(node.get(), 14, B("t").get(), &number), S_OK);    // AttributesGetBool
    EXPECT_EQ(number, 1);
    EXPECT_EQ(Slot(node.get(), 15, B("y").get(), &real), S_OK);    // AttributesGetDouble
    EXPECT_EQ(real, 2.5);
    EXPECT_EQ(Slot(node.get(), 16, B("l=1").get(), int32_t{1}), S_OK);    // AttributesSetList
    EXPECT_TEXT(Slot(node.get(), 17, static_cast<BSTR *>(out)), S_OK, "x='1' y='2.5' s='v' t='true' i='5' d='0.5' l='1'");
    EXPECT_EQ(Slot(node.get(), 20, &count), S_FALSE);    // AttributesInfoGetCount
    EXPECT_TEXT(Slot(node.get(), 21, int32_t{-1}, static_cast<BSTR *>(out)), E_INVALIDARG, "<null>");
    EXPECT_TEXT(Slot(node.get(), 24, static_cast<BSTR *>(out)), S_OK, "a");       // NodeNameGet
    EXPECT_TEXT(Slot(node.get(), 26, static_cast<BSTR *>(out)), S_OK, "text");    // NodeValueGet
    EXPECT_EQ(Slot(node.get(), 30), S_FALSE);                                     // NodeDetach
    EXPECT_EQ(Slot(node.get(), 31, &count), S_OK);                                // NodeChildGetCount
    EXPECT_EQ(count, 2);
    EXPECT_EQ(Slot(node.get(), 35, B("q").get()), S_FALSE);                       // NodeChildRemove
    EXPECT_EQ(Slot(node.get(), 36, int32_t{1}), S_OK);                            // NodeChildRemoveAll
    EXPECT_TEXT(Slot(node.get(), 38, static_cast<BSTR *>(out)), S_OK, "<a/>");    // NodeSaveXML
    EXPECT_EQ(Slot(node.get(), 40, static_cast<void *>(nullptr), int32_t{0}), E_NOTIMPL);
    EXPECT_EQ(Slot(node.get(), 41, B("").get(), static_cast<BSTR *>(nullptr)), E_POINTER);    // NodeAttributeInfoGet
}

TEST(NodeObject, NullOutputs) {
    const ComPtr<IZNode> node = Tree("<a x='1'><b/></a>");
    const std::string before = Dump(node);
    const Bstr x = B("x"), b = B("b");
    EXPECT_EQ(node->AttributesGetCount(nullptr), E_POINTER);
    EXPECT_EQ(node->AttributesGetString(x.get(), nullptr), E_POINTER);
    EXPECT_EQ(node->AttributesGetInt(x.get(), nullptr), E_POINTER);
    EXPECT_EQ(node->AttributesGetBool(x.get(), nullptr), E_POINTER);
    EXPECT_EQ(node->AttributesGetDouble(x.get(), nullptr), E_POINTER);
    EXPECT_EQ(node->AttributesGetList(nullptr), E_POINTER);
    EXPECT_EQ(node->AttributesClone(nullptr), E_POINTER);
    EXPECT_EQ(node->AttributesInfoGetCount(nullptr), E_POINTER);
    EXPECT_EQ(node->AttributesInfoGetName(0, nullptr), E_POINTER);
    EXPECT_EQ(node->AttributesInfoGet(x.get(), eZIT_Help, nullptr), E_POINTER);
    EXPECT_EQ(node->AttributesOptionInfoGet(x.get(), x.get(), nullptr, nullptr), E_POINTER);
    EXPECT_EQ(node->NodeNameGet(nullptr), E_POINTER);
    EXPECT_EQ(node->NodeValueGet(nullptr), E_POINTER);
    EXPECT_EQ(node->NodePathGet(nullptr, nullptr), E_POINTER);
    EXPECT_EQ(node->NodeParentGet(nullptr), E_POINTER);
    EXPECT_EQ(node->NodeChildGetCount(nullptr), E_POINTER);
    EXPECT_EQ(node->NodeChildAdd(b.get(), -1, nullptr), E_POINTER);
    EXPECT_EQ(node->NodeChildGet(b.get(), 0, nullptr), E_POINTER);
    EXPECT_EQ(node->NodeChildGet(B("new::one").get(), 1, nullptr), E_POINTER);
    EXPECT_EQ(node->NodeSaveXML(nullptr), E_POINTER);
    EXPECT_EQ(node->NodeClone(nullptr), E_POINTER);
    EXPECT_EQ(node->NodeAttributeInfoGet(nullptr, nullptr), E_POINTER);
    EXPECT_EQ(Dump(node), before);
}

TEST(NodeObject, EmptyNames) {
    const ComPtr<IZNode> node = Tree("<a x='1'><b/></a>");
    const std::string before = Dump(node);
    const Bstr empty = B(""), value = B("v");
    for (const BSTR name : {empty.get(), static_cast<BSTR>(nullptr)}) {
        int32_t number = 7;
        double real = 7;
        EXPECT_EQ(node->AttributesRemove(name), E_INVALIDARG);
        EXPECT_EQ(node->AttributesSetString(name, value.get()), E_INVALIDARG);
        EXPECT_EQ(node->AttributesSetBool(name, 1), E_INVALIDARG);
        EXPECT_EQ(node->AttributesSetInt(name, 1), E_INVALIDARG);
        EXPECT_EQ(node->AttributesSetDouble(name, 1), E_INVALIDARG);
        EXPECT_TEXT(node->AttributesGetString(name, out), E_INVALIDARG, "<null>");
        EXPECT_EQ(node->AttributesGetInt(name, &number), E_INVALIDARG);
        EXPECT_EQ(number, 0);
        number = 7;
        EXPECT_EQ(node->AttributesGetBool(name, &number), E_INVALIDARG);
        EXPECT_EQ(number, 0);
        EXPECT_EQ(node->AttributesGetDouble(name, &real), E_INVALIDARG);
        EXPECT_EQ(real, 0);
        number = 7;
        EXPECT_TEXT(node->AttributesGet(name, &number, out), E_INVALIDARG, "<null>");
        EXPECT_EQ(number, 0);
        EXPECT_TEXT(node->AttributesInfoGet(name, eZIT_Help, out), E_INVALIDARG, "<null>");
        EXPECT_EQ(node->NodeNameSet(name), E_INVALIDARG);
        ComPtr<IZNode> child;
        IZNode *out = node.get();
        EXPECT_EQ(node->NodeChildAdd(name, -1, &out), E_INVALIDARG);
        EXPECT_EQ(out, nullptr);
        for (const int32_t create : {0, 1}) {
            out = node.get();
            EXPECT_EQ(node->NodeChildGet(name, create, &out), E_INVALIDARG);
            EXPECT_EQ(out, nullptr);
        }
    }
    EXPECT_EQ(Dump(node), before);
}

}    // namespace
}    // namespace conformance
