// The nodes through their interfaces, as another module has them.
#include <gtest/gtest.h>

#include "platform/object.h"
#include "platform/status.h"
#include "tests/xml/say.h"
#include "xml/node.h"

namespace zck::XMLParse {
namespace {

ComPtr<IZNode> View(std::string_view xml) { return QueryFor<IZNode>(Tree(xml).get()); }
std::string Shown(const ComPtr<IZNode> &node) { return Line(CoXMLNode::From(node.get())); }

/// The text of an output, or the status where it is no success.
template <class Call>
std::string TextOr(Call call) {
    Bstr text;
    const HRESULT hr = call(text.Put());
    EXPECT_TRUE(hr == S_OK || !text);
    return hr == S_OK ? Say(text.view()) : hr == S_FALSE ? "false" : hr == kErrorNotFound ? "absent" : "failed";
}

std::string Get(const ComPtr<IZNode> &node, std::string_view name) {
    return TextOr([&](BSTR *out) { return node->AttributesGetString(Arg(name).get(), out); });
}

std::string ByIndex(const ComPtr<IZNode> &node, int32_t index) {
    Bstr name;
    Bstr value;
    const HRESULT hr = node->AttributesGetByIndex(index, name.Put(), value.Put());
    return hr == S_OK ? Say(name.view()) + "=" + Say(value.view()) : hr == kErrorInvalidIndex ? "index" : "failed";
}

TEST(NodeView, OneIdentityFromEveryInterface) {
    const ComPtr<IZNode> node = View("<a/>");
    const ComPtr<IZAttributes> attributes = QueryFor<IZAttributes>(node.get());
    const ComPtr<IUnknown> a = QueryFor<IUnknown>(node.get());
    const ComPtr<IUnknown> b = QueryFor<IUnknown>(attributes.get());
    EXPECT_EQ(a, b);
    EXPECT_TRUE(QueryFor<IZNode>(attributes.get()));
    EXPECT_FALSE(QueryFor<IZProps>(node.get()));
    void *out = &out;
    EXPECT_EQ(node->QueryInterface(IID_IZProps, &out), E_NOINTERFACE);
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(node->QueryInterface(IID_IZNode, nullptr), E_POINTER);
}

TEST(NodeView, TheLastReferenceEndsIt) {
    const int32_t before = ModuleCount::Get();
    XMLNodePtr node = CoXMLNode::Create(In("a"));
    node->ChildAdd(In("b"));
    EXPECT_EQ(ModuleCount::Get(), before + 2);
    EXPECT_EQ(node->AddRef(), 2U);
    EXPECT_EQ(node->Release(), 1U);
    EXPECT_EQ(node.Detach()->Release(), 0U);
    EXPECT_EQ(ModuleCount::Get(), before);
}

TEST(NodeView, NullOutputs) {
    const ComPtr<IZNode> node = View("<a x='1'><b/></a>");
    const Bstr name = Arg("x");
    Bstr text;
    int32_t number = 0;
    ComPtr<IZNode> child;
    EXPECT_EQ(node->AttributesGetCount(nullptr), E_POINTER);
    EXPECT_EQ(node->AttributesGetByIndex(0, nullptr, text.Put()), E_POINTER);
    EXPECT_EQ(node->AttributesGetByIndex(0, text.Put(), nullptr), E_POINTER);
    EXPECT_EQ(node->AttributesGet(name.get(), nullptr, text.Put()), E_POINTER);
    EXPECT_EQ(node->AttributesGet(name.get(), &number, nullptr), E_POINTER);
    EXPECT_EQ(node->AttributesGetString(name.get(), nullptr), E_POINTER);
    EXPECT_EQ(node->AttributesGetInt(name.get(), nullptr), E_POINTER);
    EXPECT_EQ(node->AttributesGetBool(name.get(), nullptr), E_POINTER);
    EXPECT_EQ(node->AttributesGetDouble(name.get(), nullptr), E_POINTER);
    EXPECT_EQ(node->AttributesGetList(nullptr), E_POINTER);
    EXPECT_EQ(node->AttributesClone(nullptr), E_POINTER);
    EXPECT_EQ(node->AttributesCopyFrom(nullptr, 1), E_POINTER);
    EXPECT_EQ(node->AttributesInfoGetCount(nullptr), E_POINTER);
    EXPECT_EQ(node->AttributesInfoGetName(0, nullptr), E_POINTER);
    EXPECT_EQ(node->AttributesInfoGet(nullptr, eZIT_Node, nullptr), E_POINTER);
    EXPECT_EQ(node->AttributesOptionInfoGet(name.get(), name.get(), nullptr, nullptr), E_POINTER);
    EXPECT_EQ(node->NodeNameGet(nullptr), E_POINTER);
    EXPECT_EQ(node->NodeValueGet(nullptr), E_POINTER);
    EXPECT_EQ(node->NodePathGet(nullptr, nullptr), E_POINTER);
    EXPECT_EQ(node->NodeParentGet(nullptr), E_POINTER);
    EXPECT_EQ(node->NodeChildGetCount(nullptr), E_POINTER);
    EXPECT_EQ(node->NodeChildGetByIndex(0, nullptr, child.Put()), E_POINTER);
    EXPECT_EQ(node->NodeChildGetByIndex(0, text.Put(), nullptr), E_POINTER);
    EXPECT_EQ(node->NodeChildAdd(name.get(), -1, nullptr), E_POINTER);
    EXPECT_EQ(node->NodeChildGet(name.get(), 1, nullptr), E_POINTER);
    EXPECT_EQ(node->NodeSaveXML(nullptr), E_POINTER);
    EXPECT_EQ(node->NodeClone(nullptr), E_POINTER);
    EXPECT_EQ(node->NodeAttributeInfoGet(nullptr, nullptr), E_POINTER);
    EXPECT_EQ(node->NodeReserved(nullptr, 0), E_NOTIMPL);
    EXPECT_EQ(Shown(node), "<a x='1'><b/></a>");
}

TEST(NodeView, EmptyNames) {
    const ComPtr<IZNode> node = View("<a/>");
    const Bstr none = Arg("");
    Bstr text;
    int32_t number = 0;
    double real = 0;
    ComPtr<IZNode> child;
    for (BSTR name : {BSTR(nullptr), none.get()}) {
        EXPECT_EQ(node->AttributesRemove(name), E_INVALIDARG);
        EXPECT_EQ(node->AttributesSetString(name, none.get()), E_INVALIDARG);
        EXPECT_EQ(node->AttributesSetBool(name, 1), E_INVALIDARG);
        EXPECT_EQ(node->AttributesSetInt(name, 1), E_INVALIDARG);
        EXPECT_EQ(node->AttributesSetDouble(name, 1), E_INVALIDARG);
        EXPECT_EQ(node->AttributesGet(name, &number, text.Put()), E_INVALIDARG);
        EXPECT_EQ(node->AttributesGetString(name, text.Put()), E_INVALIDARG);
        EXPECT_EQ(node->AttributesGetInt(name, &number), E_INVALIDARG);
        EXPECT_EQ(node->AttributesGetBool(name, &number), E_INVALIDARG);
        EXPECT_EQ(node->AttributesGetDouble(name, &real), E_INVALIDARG);
        EXPECT_EQ(node->AttributesInfoGet(name, eZIT_Help, text.Put()), E_INVALIDARG);
        EXPECT_EQ(node->AttributesOptionInfoGet(name, none.get(), nullptr, text.Put()), E_INVALIDARG);
        EXPECT_EQ(node->NodeNameSet(name), E_INVALIDARG);
        EXPECT_EQ(node->NodeChildAdd(name, -1, child.Put()), E_INVALIDARG);
        EXPECT_EQ(node->NodeChildGet(name, 1, child.Put()), E_INVALIDARG);
        EXPECT_EQ(node->NodeChildRemove(name), E_INVALIDARG);
    }
}

TEST(NodeView, AttributesAreSetAndRead) {
    const ComPtr<IZNode> node = View("<a/>");
    EXPECT_EQ(node->AttributesSetString(Arg("s").get(), Arg("text").get()), S_OK);
    EXPECT_EQ(node->AttributesSetString(Arg("null").get(), nullptr), S_OK);
    EXPECT_EQ(node->AttributesSetBool(Arg("b").get(), -1), S_OK);
    EXPECT_EQ(node->AttributesSetInt(Arg("i").get(), -7), S_OK);
    EXPECT_EQ(node->AttributesSetDouble(Arg("c::d").get(), 1.5), S_OK);
    EXPECT_EQ(node->AttributesSetInt(Arg("c::").get(), 1), E_INVALIDARG);
    EXPECT_EQ(Shown(node), "<a s='text' null='' b='true' i='-7'><c d='1.5'/></a>");
    EXPECT_EQ(Get(node, "S"), "text");
    EXPECT_EQ(Get(node, "c::d"), "1.5");
    EXPECT_EQ(Get(node, "missing"), "absent");
}

TEST(NodeView, TypedReading) {
    const ComPtr<IZNode> node = View("<a i='12' t='yes' f='50%'/>");
    int32_t number = 99;
    double real = 99;
    EXPECT_EQ(node->AttributesGetInt(Arg("i").get(), &number), S_OK);
    EXPECT_EQ(number, 12);
    EXPECT_EQ(node->AttributesGetBool(Arg("t").get(), &number), S_OK);
    EXPECT_EQ(number, 1);
    EXPECT_EQ(node->AttributesGetDouble(Arg("f").get(), &real), S_OK);
    EXPECT_EQ(real, 0.5);
    EXPECT_EQ(Shown(node), "<a i='12' t='yes' f='50%'/>");
    EXPECT_EQ(node->AttributesGetInt(Arg("x").get(), &number), kErrorNotFound);
    EXPECT_EQ(number, 0);
    number = 99;
    EXPECT_EQ(node->AttributesGetBool(Arg("x").get(), &number), kErrorNotFound);
    EXPECT_EQ(number, 0);
    EXPECT_EQ(node->AttributesGetDouble(Arg("x").get(), &real), kErrorNotFound);
    EXPECT_EQ(real, 0);
}

TEST(NodeView, AttributesOfHiddenChildrenCount) {
    const ComPtr<IZNode> node = View("<a x='1' y='2'><attributes_info p='3'/><b q='4'/><Attributes_Info r='5' s='6'/></a>");
    int32_t count = 0;
    EXPECT_EQ(node->AttributesGetCount(&count), S_OK);
    EXPECT_EQ(count, 5);
    EXPECT_EQ(ByIndex(node, 0), "x=1");
    EXPECT_EQ(ByIndex(node, 1), "y=2");
    EXPECT_EQ(ByIndex(node, 2), "attributes_info::p=3");
    EXPECT_EQ(ByIndex(node, 4), "attributes_info::s=6");
    EXPECT_EQ(ByIndex(node, 5), "index");
    EXPECT_EQ(ByIndex(node, -1), "index");
    EXPECT_EQ(TextOr([&](BSTR *out) { return node->AttributesGetList(out); }),
              "x='1' y='2' attributes_info::p='3' attributes_info::r='5' attributes_info::s='6'");
    CoXMLNode::From(node.get())->HideListActiveSet(false);
    EXPECT_EQ(node->AttributesGetCount(&count), S_OK);
    EXPECT_EQ(count, 2);
}

TEST(NodeView, NoAttributes) {
    const ComPtr<IZNode> node = View("<a/>");
    int32_t count = 9;
    EXPECT_EQ(node->AttributesGetCount(&count), S_FALSE);
    EXPECT_EQ(count, 0);
    EXPECT_EQ(TextOr([&](BSTR *out) { return node->AttributesGetList(out); }), "");
}

TEST(NodeView, AttributesAreRemoved) {
    const ComPtr<IZNode> node = View("<a x='1' y='2' z='3'><b w='4'/></a>");
    EXPECT_EQ(node->AttributesRemove(Arg("X").get()), S_OK);
    EXPECT_EQ(node->AttributesRemove(Arg("x").get()), kErrorNotFound);
    EXPECT_EQ(node->AttributesRemove(Arg("b::w").get()), S_OK);
    EXPECT_EQ(node->AttributesRemoveAll(), S_OK);
    EXPECT_EQ(Shown(node), "<a><b/></a>");
}

TEST(NodeView, AnAbsentAttributeGivesItsDefault) {
    const ComPtr<IZNode> node = View("<a x='1'><attributes_info><x default='5'/><y default='6'/><z/></attributes_info></a>");
    int32_t found = 9;
    Bstr value;
    EXPECT_EQ(node->AttributesGet(Arg("x").get(), &found, value.Put()), S_OK);
    EXPECT_EQ(found, 1);
    EXPECT_EQ(Say(value.view()), "1");
    EXPECT_EQ(node->AttributesGet(Arg("y").get(), &found, value.Put()), S_FALSE);
    EXPECT_EQ(found, 0);
    EXPECT_EQ(Say(value.view()), "6");
    EXPECT_EQ(node->AttributesGet(Arg("z").get(), &found, value.Put()), S_FALSE);
    EXPECT_FALSE(value);
    EXPECT_EQ(node->AttributesGet(Arg("none").get(), &found, value.Put()), S_FALSE);
    EXPECT_FALSE(value);
}

TEST(NodeView, ListsAreMergedByMode) {
    const ComPtr<IZNode> node = View("<a x='1'/>");
    EXPECT_EQ(node->AttributesSetList(Arg("x=2 y=3 c::d=4 bare").get(), 0), S_OK);
    EXPECT_EQ(Shown(node), "<a x='1' y='3'><c d='4'/></a>");
    EXPECT_EQ(node->AttributesSetList(Arg("x=2").get(), 1), S_OK);
    EXPECT_EQ(node->AttributesSetList(Arg("bare").get(), 1), S_FALSE);
    EXPECT_EQ(Shown(node), "<a x='2' y='3'><c d='4'/></a>");
    EXPECT_EQ(node->AttributesSetList(nullptr, 2), S_FALSE);
    EXPECT_EQ(Shown(node), "<a><c d='4'/></a>");
}

TEST(NodeView, AttributesAreCloned) {
    const ComPtr<IZNode> node = View("<a x='1' b::c='2'><d/></a>");
    ComPtr<IZAttributes> clone;
    EXPECT_EQ(node->AttributesClone(clone.Put()), S_OK);
    EXPECT_EQ(Shown(QueryFor<IZNode>(clone.get())), "<m_attributes x='1' b::c='2'/>");
}

TEST(NodeView, AttributesAreCopiedByMode) {
    const ComPtr<IZNode> source = View("<s x='9' b::c='8'><attributes_info d='7'/></s>");
    const ComPtr<IZNode> node = View("<a x='1' y='2'/>");
    EXPECT_EQ(node->AttributesCopyFrom(source.get(), 0), S_OK);
    EXPECT_EQ(Shown(node), "<a x='1' y='2' b::c='8'><attributes_info d='7'/></a>");
    EXPECT_EQ(node->AttributesCopyFrom(source.get(), 1), S_OK);
    EXPECT_EQ(Get(node, "x"), "9");
    EXPECT_EQ(Get(node, "y"), "2");
    EXPECT_EQ(node->AttributesCopyFrom(source.get(), 2), S_OK);
    EXPECT_EQ(Get(node, "y"), "absent");
    // From itself nothing is lost.
    EXPECT_EQ(node->AttributesCopyFrom(node.get(), 2), S_OK);
    EXPECT_EQ(Get(node, "x"), "9");
}

TEST(NodeView, DescribedAttributes) {
    const ComPtr<IZNode> node =
        View("<a><attributes_info><x type='integer'>help of x<low hint='h'>help of low</low></x><y/></attributes_info></a>");
    int32_t count = 0;
    EXPECT_EQ(node->AttributesInfoGetCount(&count), S_OK);
    EXPECT_EQ(count, 2);
    const auto name = [&](int32_t i) { return TextOr([&](BSTR *out) { return node->AttributesInfoGetName(i, out); }); };
    EXPECT_EQ(name(0), "x");
    EXPECT_EQ(name(1), "y");
    Bstr text;
    EXPECT_EQ(node->AttributesInfoGetName(2, text.Put()), kErrorInvalidIndex);
    EXPECT_EQ(node->AttributesInfoGetName(-1, text.Put()), E_INVALIDARG);
    EXPECT_EQ(View("<a/>")->AttributesInfoGetCount(&count), S_FALSE);
    EXPECT_EQ(count, 0);

    const auto info = [&](const char *of, int32_t type) {
        return TextOr([&](BSTR *out) { return node->AttributesInfoGet(Arg(of).get(), static_cast<eZInfoType>(type), out); });
    };
    EXPECT_EQ(info("x", eZIT_Help), "help of x");
    EXPECT_EQ(info("x", eZIT_Type), "integer");
    EXPECT_EQ(info("x", eZIT_Values), "low");
    EXPECT_EQ(info("x", eZIT_Min), "false");
    EXPECT_EQ(info("z", eZIT_Help), "false");
    EXPECT_EQ(info("x", eZIT_Node), "failed");
    EXPECT_EQ(info("x", -1), "failed");

    const auto option = [&](const char *of, const char *attribute) {
        return TextOr([&](BSTR *out) {
            return node->AttributesOptionInfoGet(Arg("x").get(), Arg(of).get(), attribute ? Arg(attribute).get() : nullptr,
                                                 out);
        });
    };
    EXPECT_EQ(option("low", nullptr), "help of low");
    EXPECT_EQ(option("low", ""), "help of low");
    EXPECT_EQ(option("low", "hint"), "h");
    EXPECT_EQ(option("low", "other"), "absent");
    EXPECT_EQ(option("high", nullptr), "absent");
}

TEST(NodeView, NameAndRename) {
    const ComPtr<IZNode> root = View("<a><b/></a>");
    ComPtr<IZNode> child;
    EXPECT_EQ(root->NodeChildGet(Arg("b").get(), 0, child.Put()), S_OK);
    EXPECT_EQ(child->NodeNameSet(Arg("New").get()), S_OK);
    EXPECT_EQ(TextOr([&](BSTR *out) { return child->NodeNameGet(out); }), "New");
    ComPtr<IZNode> again;
    EXPECT_EQ(root->NodeChildGet(Arg("new").get(), 0, again.Put()), S_OK);
    EXPECT_EQ(again, child);
    EXPECT_EQ(root->NodeChildGet(Arg("b").get(), 0, again.Put()), kErrorNotFound);
}

TEST(NodeView, ValueIsTheText) {
    const ComPtr<IZNode> node = View("<a>one<b/></a>");
    const auto value = [&] { return TextOr([&](BSTR *out) { return node->NodeValueGet(out); }); };
    EXPECT_EQ(value(), "one");
    EXPECT_EQ(node->NodeValueSet(Arg("two").get()), S_OK);
    EXPECT_EQ(node->NodeValueSet(Arg("<three/>").get()), S_OK);
    EXPECT_EQ(value(), "<three/>");
    EXPECT_EQ(Shown(node), "<a>&lt;three/&gt;<b/></a>");
    EXPECT_EQ(node->NodeValueSet(nullptr), S_OK);
    EXPECT_EQ(value(), "");
}

TEST(NodeView, ValueOfAHiddenNodeIsItsXml) {
    const ComPtr<IZNode> root = View("<a><attributes_info><x>1</x></attributes_info></a>");
    ComPtr<IZNode> node;
    EXPECT_EQ(root->NodeChildGet(Arg("attributes_info").get(), 0, node.Put()), S_OK);
    const auto value = [&] { return TextOr([&](BSTR *out) { return node->NodeValueGet(out); }); };
    EXPECT_EQ(value(), "<x>1</x>");
    EXPECT_EQ(node->NodeValueSet(Arg("<y/>text<z q='1'/>").get()), S_OK);
    EXPECT_EQ(value(), "<y/>text<z q='1'/>");
    EXPECT_EQ(Shown(root), "<a><attributes_info><y/>text<z q='1'/></attributes_info></a>");
    EXPECT_EQ(node->NodeValueSet(nullptr), S_OK);
    EXPECT_EQ(value(), "");
    int32_t count = 9;
    EXPECT_EQ(node->NodeChildGetCount(&count), S_OK);
    EXPECT_EQ(count, 0);
}

TEST(NodeView, ChildrenAreNeitherTextNorHidden) {
    const ComPtr<IZNode> root = View("<a>text<b/><attributes_info><x/></attributes_info><c/></a>");
    int32_t count = 0;
    EXPECT_EQ(root->NodeChildGetCount(&count), S_OK);
    EXPECT_EQ(count, 2);
    Bstr name;
    ComPtr<IZNode> child;
    EXPECT_EQ(root->NodeChildGetByIndex(1, name.Put(), child.Put()), S_OK);
    EXPECT_EQ(Say(name.view()), "c");
    EXPECT_EQ(root->NodeChildGetByIndex(2, name.Put(), child.Put()), kErrorInvalidIndex);
    EXPECT_FALSE(name);
    EXPECT_FALSE(child);
    EXPECT_EQ(root->NodeChildGetByIndex(-1, name.Put(), child.Put()), kErrorInvalidIndex);
    EXPECT_EQ(root->NodeChildGet(Arg("attributes_info").get(), 0, child.Put()), S_OK);
    EXPECT_EQ(child->NodeChildGetByIndex(0, name.Put(), child.Put()), kErrorInvalidIndex);
}

TEST(NodeView, ChildrenAreAddedFoundAndRemoved) {
    const ComPtr<IZNode> root = View("<a/>");
    ComPtr<IZNode> child;
    EXPECT_EQ(root->NodeChildAdd(Arg("b").get(), -1, child.Put()), S_OK);
    EXPECT_EQ(root->NodeChildAdd(Arg("c").get(), 0, child.Put()), S_OK);
    EXPECT_EQ(root->NodeChildAdd(Arg("d::e").get(), 50, child.Put()), S_OK);
    EXPECT_EQ(Shown(root), "<a><c/><b/><d::e/></a>");
    EXPECT_EQ(root->NodeChildGet(Arg("b::x::y").get(), 0, child.Put()), kErrorNotFound);
    EXPECT_FALSE(child);
    EXPECT_EQ(root->NodeChildGet(Arg("b::x::y").get(), 1, child.Put()), S_OK);
    EXPECT_EQ(root->NodeChildGet(Arg("b::::y").get(), 1, child.Put()), E_INVALIDARG);
    EXPECT_EQ(Shown(root), "<a><c/><b><x><y/></x></b><d::e/></a>");
    EXPECT_EQ(root->NodeChildRemove(Arg("b::x").get()), S_OK);
    EXPECT_EQ(root->NodeChildRemove(Arg("b::x").get()), S_FALSE);
    EXPECT_EQ(Shown(root), "<a><c/><b/><d::e/></a>");
}

TEST(NodeView, RemoveAllWithAndWithoutAttributes) {
    const ComPtr<IZNode> root = View("<a x='1'>text<b/><attributes_info/></a>");
    EXPECT_EQ(root->NodeChildRemoveAll(0), S_OK);
    EXPECT_EQ(Shown(root), "<a x='1'/>");
    EXPECT_EQ(root->NodeChildRemoveAll(1), S_OK);
    EXPECT_EQ(Shown(root), "<a/>");
}

TEST(NodeView, ParentPathAndDetach) {
    const ComPtr<IZNode> root = View("<a><b><c/></b></a>");
    ComPtr<IZNode> b;
    ComPtr<IZNode> c;
    ComPtr<IZNode> parent;
    EXPECT_EQ(root->NodeChildGet(Arg("b").get(), 0, b.Put()), S_OK);
    EXPECT_EQ(root->NodeChildGet(Arg("b::c").get(), 0, c.Put()), S_OK);
    EXPECT_EQ(TextOr([&](BSTR *out) { return c->NodePathGet(out, nullptr); }), "b::c");
    EXPECT_EQ(TextOr([&](BSTR *out) { return c->NodePathGet(out, b.get()); }), "c");
    EXPECT_EQ(TextOr([&](BSTR *out) { return root->NodePathGet(out, nullptr); }), "");
    EXPECT_EQ(c->NodeParentGet(parent.Put()), S_OK);
    EXPECT_EQ(parent, b);
    EXPECT_EQ(b->NodeDetach(), S_OK);
    EXPECT_EQ(b->NodeDetach(), S_FALSE);
    EXPECT_EQ(b->NodeParentGet(parent.Put()), S_FALSE);
    EXPECT_FALSE(parent);
    EXPECT_EQ(Shown(root), "<a/>");
    EXPECT_EQ(Shown(b), "<b><c/></b>");
}

TEST(NodeView, XmlIsLoadedUnderTheFormerName) {
    const ComPtr<IZNode> node = View("<a x='1'/>");
    EXPECT_EQ(node->NodeLoadXML(Arg("<b y='2'>t</b>").get(), 0), S_OK);
    EXPECT_EQ(Shown(node), "<a y='2'>t</a>");
    EXPECT_EQ(node->NodeLoadXML(Arg("<c/>").get(), 1), S_OK);
    EXPECT_EQ(Shown(node), "<c/>");
    EXPECT_EQ(node->NodeLoadXML(Arg("<d z='1'/>").get(), 0), S_OK);
    EXPECT_EQ(node->NodeLoadXML(Arg("no tag").get(), 1), E_INVALIDARG);
    EXPECT_EQ(Shown(node), "<c/>");
    EXPECT_EQ(node->NodeLoadXML(nullptr, 0), E_INVALIDARG);
    EXPECT_EQ(TextOr([&](BSTR *out) { return View("<a><b/></a>")->NodeSaveXML(out); }), "<a>\r\n\t<b/>\r\n</a>");
}

TEST(NodeView, CloneIsDeep) {
    const ComPtr<IZNode> node = View("<a x='1'>t<b y='2'/></a>");
    ComPtr<IZNode> clone;
    EXPECT_EQ(node->NodeClone(clone.Put()), S_OK);
    EXPECT_EQ(Shown(clone), "<clone x='1'>t<b y='2'/></clone>");
}

TEST(NodeView, InfoOfTheNodeItself) {
    const ComPtr<IZNode> root = View("<a><attributes_info><b unit='px'>about b</b></attributes_info><b/><c/></a>");
    const auto info = [&](const char *node, const char *name) {
        ComPtr<IZNode> child;
        EXPECT_EQ(root->NodeChildGet(Arg(node).get(), 0, child.Put()), S_OK);
        return TextOr([&](BSTR *out) { return child->NodeAttributeInfoGet(name ? Arg(name).get() : nullptr, out); });
    };
    EXPECT_EQ(info("b", nullptr), "about b");
    EXPECT_EQ(info("b", ""), "about b");
    EXPECT_EQ(info("b", "unit"), "px");
    EXPECT_EQ(info("b", "other"), "absent");
    EXPECT_EQ(info("c", nullptr), "absent");
}

}    // namespace
}    // namespace zck::XMLParse
