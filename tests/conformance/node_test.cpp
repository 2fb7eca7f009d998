// Nodes and their attributes, through their interfaces: statuses, outputs, paths, descriptions.
#include <gtest/gtest.h>

#include "tests/conformance/answers.h"
#include "tests/conformance/xml_model.h"
#include "xml/parser.h"
#include "xml/writer.h"

namespace conformance {
namespace {

using namespace zck::XMLParse;
using zck::ComPtr;
using zck::QueryFor;

constexpr HRESULT kNotFound = static_cast<HRESULT>(0x80070490);
constexpr HRESULT kBadIndex = static_cast<HRESULT>(0x80070585);

ComPtr<IZNode> Tree(std::string_view xml) {
    const XMLNodePtr node = CoXMLNode::Create(T("new"));
    EXPECT_EQ(ParseXML(*node, T(xml)), S_OK);
    return QueryFor<IZNode>(node.get());
}

std::string Dump(const ComPtr<IZNode> &node) { return conformance::Dump(*CoXMLNode::From(node.get())); }

ComPtr<IZNode> At(const ComPtr<IZNode> &node, std::string_view path) {
    ComPtr<IZNode> found;
    EXPECT_EQ(node->NodeChildGet(B(path).get(), 0, found.Put()), S_OK) << path;
    return found;
}

uint32_t RefsOf(IUnknown *object) {
    object->AddRef();
    return object->Release();
}

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

// Paths, against a model that walks the tree by hand.
std::vector<Text> Elements(const Text &path) {
    std::vector<Text> parts(1);
    for (size_t i = 0; i < path.size(); ++i) {
        if (path.compare(i, 2, T("::")) == 0) {
            parts.emplace_back();
            ++i;
        } else {
            parts.back() += path[i];
        }
    }
    return parts;
}

ModelNode *Step(ModelNode *node, const Text &element, bool create) {
    const size_t bracket = element.find(OLECHAR{'('});
    const Text name = element.substr(0, bracket);
    const int32_t nth = bracket == Text::npos ? 0 : element[bracket + 1] - '0';
    ModelNode *child = node->Child(name, nth);
    if (child != nullptr || !create) return child;
    node->children.push_back({name, false, {}, {}});
    return &node->children.back();
}

ModelNode *Walk(ModelNode *node, const std::vector<Text> &elements, size_t count, bool create) {
    for (const Text &e : elements)
        if (e.empty()) return nullptr;
    for (size_t i = 0; i < count && node != nullptr; ++i) node = Step(node, elements[i], create);
    return node;
}

bool Erase(ModelNode &from, const ModelNode *child) {
    for (size_t i = 0; i < from.children.size(); ++i) {
        if (&from.children[i] == child)
            return from.children.erase(from.children.begin() + static_cast<std::ptrdiff_t>(i)), true;
        if (Erase(from.children[i], child)) return true;
    }
    return false;
}

TEST(NodeTree, PathsAsTheModel) {
    std::mt19937 random(51);
    const char *const names[] = {"a", "B", "b", "c", "c(1)", "C(0)", "c(2)", "dot.name", "e:f", "g"};
    for (int tree = 0; tree < 300; ++tree) {
        const ComPtr<IZNode> node = Tree("<r/>");
        ModelNode model{T("r"), false, {}, {}};
        for (int step = 0; step < 60; ++step) {
            std::string path = OneOf(random, names);
            for (size_t k = random() % 3; k-- > 0;) path += std::string("::") + OneOf(random, names);
            if (random() % 40 == 0) path.insert(0, "::");
            if (random() % 40 == 0) path += "::";
            const std::vector<Text> e = Elements(T(path));
            const std::string value = std::to_string(random() % 1000);
            const bool wellFormed = Walk(&model, e, 0, false) != nullptr;
            switch (random() % 7) {
                case 0:
                case 1: {
                    ASSERT_EQ(node->AttributesSetString(B(path).get(), B(value).get()), wellFormed ? S_OK : E_INVALIDARG)
                        << path;
                    if (ModelNode *owner = wellFormed ? Walk(&model, e, e.size() - 1, true) : nullptr)
                        owner->Set(e.back(), T(value));
                    break;
                }
                case 2: {
                    ModelNode *owner = Walk(&model, e, e.size() - 1, false);
                    const Text *held = owner != nullptr ? owner->Attribute(e.back()) : nullptr;
                    Out out;
                    ASSERT_EQ(node->AttributesGetString(B(path).get(), out), held != nullptr ? S_OK : kNotFound) << path;
                    ASSERT_EQ(out.Said(), held != nullptr ? Say(TextView(*held)) : "<null>");
                    break;
                }
                case 3: {
                    ModelNode *owner = Walk(&model, e, e.size() - 1, false);
                    const Text *held = owner != nullptr ? owner->Attribute(e.back()) : nullptr;
                    ASSERT_EQ(node->AttributesRemove(B(path).get()), held != nullptr ? S_OK : kNotFound) << path;
                    if (held != nullptr)
                        std::erase_if(owner->attributes,
                                      [&](const auto &a) { return ModelKey(a.first) == ModelKey(e.back()); });
                    break;
                }
                case 4: {
                    const bool create = random() % 2 == 0;
                    ModelNode *found = Walk(&model, e, e.size(), create);
                    ComPtr<IZNode> child;
                    const HRESULT hr = node->NodeChildGet(B(path).get(), create, child.Put());
                    ASSERT_EQ(SUCCEEDED(hr), found != nullptr) << path;
                    if (found == nullptr) break;
                    ASSERT_EQ(Dump(child), conformance::Dump(*found));
                    const size_t most = found->children.size() + 2;
                    const auto position = static_cast<int32_t>(random() % most) - 1;
                    ComPtr<IZNode> added;
                    ASSERT_EQ(child->NodeChildAdd(B("c").get(), position, added.Put()), S_OK);
                    found->children.insert(position < 0 ? found->children.end() : found->children.begin() + position,
                                           {T("c"), false, {}, {}});
                    break;
                }
                case 5: {
                    const ModelNode *found = Walk(&model, e, e.size(), false);
                    ASSERT_EQ(node->NodeChildRemove(B(path).get()), found != nullptr ? S_OK : S_FALSE) << path;
                    if (found != nullptr) Erase(model, found);
                    break;
                }
                default: {
                    ModelNode *found = Walk(&model, e, e.size(), false);
                    if (found == nullptr) break;
                    ASSERT_EQ(At(node, path)->NodeValueSet(B(value).get()), S_OK);
                    found->TextSet(T(value));
                    const char *name = OneOf(random, names);
                    ASSERT_EQ(At(node, path)->NodeNameSet(B(std::string_view(name).substr(0, 1)).get()), S_OK);
                    found->name = T(std::string_view(name).substr(0, 1));
                }
            }
            ASSERT_EQ(Dump(node), conformance::Dump(model)) << path;
        }
    }
}

const char kDescribed[] =
    "<root>"
    "<attributes_info>"
    "<x type='int' default='5' min='0' max='9' values='a|b c|d'>help x<a>help a<z/></a><d note='N'/></x>"
    "<y select_from='x'/>"
    "<w select_from='elsewhere::list'/>"
    "<v><one/><two>2</two>text</v>"
    "<u select_from='x'><one/></u>"
    "<t select_from='missing'/>"
    "<bare/>"
    "<cls><k type='t'>K</k></cls>"
    "<sub inherit='cls'><m>M</m></sub>"
    "<dotted><q>Q</q></dotted>"
    "</attributes_info>"
    "<elsewhere><list values='far;away'/></elsewhere>"
    "<child/>"
    "<sub><deep/></sub>"
    "<dotted.one.two/>"
    "<own><attributes_info><p>P</p></attributes_info><sub/></own>"
    "<alone><attributes_info inherit='false'><p>P</p></attributes_info></alone>"
    "<closed><attributes_info inherit='false'/></closed>"
    "<open><attributes_info/></open>"
    "</root>";

TEST(NodeInfo, PiecesOfADescription) {
    const ComPtr<IZNode> root = Tree(kDescribed);
    const struct {
        const char *name;
        int32_t type;
        const char *text;
    } rows[] = {{"x", eZIT_Help, "help x"},
                {"X", eZIT_Type, "int"},
                {"x", eZIT_Default, "5"},
                {"x", eZIT_Values, "a|b c|d"},
                {"x", eZIT_Min, "0"},
                {"x", eZIT_Max, "9"},
                {"y", eZIT_Values, "a|b c|d"},
                {"w", eZIT_Values, "far;away"},
                {"v", eZIT_Values, "one|two"},
                {"v", eZIT_Help, "text"},
                {"u", eZIT_Values, "one"},    // it has children, so it selects from nowhere
                {"child::x", eZIT_Help, "help x"},
                {"sub::m", eZIT_Help, "M"},
                {"sub::k", eZIT_Help, "K"},
                {"sub::K", eZIT_Type, "t"},
                {"sub::x", eZIT_Min, "0"},
                {"dotted.one.two::q", eZIT_Help, "Q"},
                {"own::p", eZIT_Help, "P"},
                {"own::x", eZIT_Help, "help x"},
                {"alone::p", eZIT_Help, "P"},
                {"open::x", eZIT_Help, "help x"}};
    for (const auto &row : rows)
        EXPECT_TEXT(root->AttributesInfoGet(B(row.name).get(), static_cast<eZInfoType>(row.type), out), S_OK, row.text)
            << row.name << " " << row.type;
    const struct {
        const char *name;
        int32_t type;
    } none[] = {{"bare", eZIT_Help},      {"bare", eZIT_Values}, {"t", eZIT_Values},          {"y", eZIT_Type},
                {"nothing", eZIT_Help},   {"sub::q", eZIT_Help}, {"sub::deep::x", eZIT_Help}, {"alone::x", eZIT_Help},
                {"closed::x", eZIT_Help}, {"no::x", eZIT_Help},  {"own::sub::x", eZIT_Help}};
    for (const auto &row : none)
        EXPECT_TEXT(root->AttributesInfoGet(B(row.name).get(), static_cast<eZInfoType>(row.type), out), S_FALSE, "<null>")
            << row.name;
    for (const int32_t type : {-1, 6, 7, INT32_MAX, INT32_MIN})
        EXPECT_TEXT(root->AttributesInfoGet(B("x").get(), static_cast<eZInfoType>(type), out), E_INVALIDARG, "<null>") << type;
}

TEST(NodeInfo, Options) {
    const ComPtr<IZNode> root = Tree(kDescribed);
    EXPECT_TEXT(root->AttributesOptionInfoGet(B("x").get(), B("A").get(), nullptr, out), S_OK, "help a");
    EXPECT_TEXT(root->AttributesOptionInfoGet(B("x").get(), B("d").get(), B("NOTE").get(), out), S_OK, "N");
    EXPECT_TEXT(root->AttributesOptionInfoGet(B("x").get(), B("d").get(), nullptr, out), S_OK, "");
    EXPECT_TEXT(root->AttributesOptionInfoGet(B("x").get(), B("b c").get(), nullptr, out), kNotFound, "<null>");
    EXPECT_TEXT(root->AttributesOptionInfoGet(B("nothing").get(), B("a").get(), nullptr, out), kNotFound, "<null>");
    EXPECT_TEXT(root->AttributesOptionInfoGet(B("x").get(), B("d").get(), B("other").get(), out), kNotFound, "<null>");
    EXPECT_TEXT(root->AttributesOptionInfoGet(B("v").get(), B("two").get(), nullptr, out), S_OK, "2");
}

TEST(NodeInfo, DescribedAttributesAreListed) {
    const ComPtr<IZNode> root = Tree(kDescribed);
    const auto listed = [](const ComPtr<IZNode> &node) {
        int32_t count = -1;
        const HRESULT hr = node->AttributesInfoGetCount(&count);
        EXPECT_EQ(hr, count != 0 ? S_OK : S_FALSE);
        std::string all;
        for (int32_t i = 0; i < count; ++i) {
            Out name;
            EXPECT_EQ(node->AttributesInfoGetName(i, name), S_OK);
            all += name.Said() + " ";
        }
        EXPECT_TEXT(node->AttributesInfoGetName(count, out), kBadIndex, "<null>");
        EXPECT_TEXT(node->AttributesInfoGetName(-1, out), E_INVALIDARG, "<null>");
        return all;
    };
    const std::string rootList = "x y w v u t bare cls sub dotted ";
    EXPECT_EQ(listed(root), rootList);
    EXPECT_EQ(listed(At(root, "child")), rootList);
    EXPECT_EQ(listed(At(root, "own")), "p ");
    EXPECT_EQ(listed(At(root, "own::sub")), "p ");
    EXPECT_EQ(listed(At(root, "alone")), "p ");
    EXPECT_EQ(listed(At(root, "closed")), "");
    EXPECT_EQ(listed(At(root, "open")), rootList);
    EXPECT_EQ(listed(At(root, "sub::deep")), "");
    EXPECT_EQ(listed(Tree("<r><attributes_info>text only</attributes_info></r>")), "");
    // Two levels below, by the class of its name.
    EXPECT_EQ(listed(At(Tree("<r><attributes_info><c><m/><n/></c></attributes_info><g><c/></g></r>"), "g::c")), "m n ");
}

}    // namespace
}    // namespace conformance
