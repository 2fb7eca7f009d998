#include "platform/status.h"
#include "tests/props/store/props_object.h"

namespace zck {
namespace {

using PropsSetTest = PropsTest;

TEST_F(PropsSetTest, PlainNamesAreAttributes) {
    EXPECT_EQ(Set("detect.max_keys", "3"), S_OK);
    EXPECT_EQ(Get("detect.max_keys"), "3");
    EXPECT_EQ(Get("DETECT.Max_Keys"), "3");
    EXPECT_EQ(Get("detect"), kAbsent);
    EXPECT_EQ(Set("Detect.Max_Keys", "4"), S_OK);
    EXPECT_EQ(Get("detect.max_keys"), "4");
    EXPECT_EQ(At("", 0), "detect.max_keys=4");
}

TEST_F(PropsSetTest, PathMakesItsNodes) {
    EXPECT_EQ(Set("a::b", "1"), S_OK);
    EXPECT_EQ(Get("a::b"), "1");
    // No text: the attributes as a list.
    EXPECT_EQ(Get("a"), "b='1'");
    EXPECT_EQ(Set("a::c", "it's"), S_OK);
    EXPECT_EQ(Get("a"), "b='1' c=\"it's\"");
    EXPECT_EQ(Set("x::y::z", "2"), S_OK);
    EXPECT_EQ(Get("X::Y::Z"), "2");
    EXPECT_EQ(Get("x"), "");
}

TEST_F(PropsSetTest, AttributeBecomesTheTextOfItsNode) {
    EXPECT_EQ(Set("a", "x"), S_OK);
    EXPECT_EQ(Count(""), "1");
    EXPECT_EQ(Set("a::b", "1"), S_OK);
    EXPECT_EQ(Get("a"), "x");
    EXPECT_EQ(Get("a::b"), "1");
    EXPECT_EQ(Get(""), "<z-props>\r\n\t<a b='1'>x</a>\r\n</z-props>");
}

TEST_F(PropsSetTest, OnlyTheDirectParentMoves) {
    EXPECT_EQ(Set("a", "x"), S_OK);
    EXPECT_EQ(Set("a::b::c", "1"), S_OK);
    // The attribute stands in front of the node of the same name.
    EXPECT_EQ(Get("a"), "x");
    EXPECT_EQ(At("", 0), "a=x");
    EXPECT_EQ(At("", 1), "a=/");
}

TEST_F(PropsSetTest, NodeTakesTheValueAsText) {
    EXPECT_EQ(Set("a::b", "1"), S_OK);
    EXPECT_EQ(Set("a", "text"), S_OK);
    EXPECT_EQ(Get("a"), "text");
    EXPECT_EQ(At("", 0), "a=text/");
    EXPECT_EQ(Set("a", "again"), S_OK);
    EXPECT_EQ(Get(""), "<z-props>\r\n\t<a b='1'>again</a>\r\n</z-props>");
}

TEST_F(PropsSetTest, WritesTheNodeAndReadsTheAttributeOfOneName) {
    EXPECT_EQ(Set("", "<n a='1'><a b='2'/></n>"), S_OK);
    EXPECT_EQ(Set("a", "x"), S_OK);
    EXPECT_EQ(Get("a"), "1");
    EXPECT_EQ(At("", 1), "a=x/");
}

TEST_F(PropsSetTest, NamedValueIsTakenAsItStands) {
    EXPECT_EQ(Set("a", "b=1 c=2"), S_OK);
    EXPECT_EQ(Get("a"), "b=1 c=2");
    EXPECT_EQ(Set("d", "<n x='1'/>"), S_OK);
    EXPECT_EQ(Get("d"), "<n x='1'/>");
}

TEST_F(PropsSetTest, NullValueIsAnEmptyText) {
    EXPECT_EQ(m_props->PropsSet(Of("a").get(), nullptr), S_OK);
    EXPECT_EQ(Get("a"), "");
    EXPECT_EQ(Count(""), "1");
}

TEST_F(PropsSetTest, IndexOfAPathCountsFromZero) {
    EXPECT_EQ(Set("", "<n q='1'><e level='5'/><e level='6'/><e level='7'/></n>"), S_OK);
    EXPECT_EQ(Get("e::level"), "5");
    EXPECT_EQ(Get("e(0)::level"), "5");
    EXPECT_EQ(Get("e(2)::level"), "7");
    EXPECT_EQ(Get("E( 1x)::level"), "6");
    EXPECT_EQ(Get("e(3)::level"), kAbsent);
    EXPECT_EQ(Set("e(1)::level", "9"), S_OK);
    EXPECT_EQ(Get("e(1)::level"), "9");
    // One child of the bare name, whatever the index.
    EXPECT_EQ(Set("new(4)::level", "3"), S_OK);
    EXPECT_EQ(Get("new(0)::level"), "3");
    EXPECT_EQ(Get("new(4)::level"), kAbsent);
}

TEST_F(PropsSetTest, BracketBelongsToAnAttributesName) {
    EXPECT_EQ(Set("a(2)", "1"), S_OK);
    EXPECT_EQ(Get("a(2)"), "1");
    EXPECT_EQ(Get("a"), kAbsent);
}

TEST_F(PropsSetTest, EmptyElementsAreNeitherFoundNorMade) {
    for (const char *name : {"::a", "a::", "a::::b", "::"}) {
        EXPECT_EQ(Set(name, "1"), E_INVALIDARG) << name;
        EXPECT_EQ(Get(name), kAbsent) << name;
    }
}

TEST_F(PropsSetTest, ListMergesIntoTheRoot) {
    EXPECT_EQ(Set("a", "0"), S_OK);
    EXPECT_EQ(Set("c", "3"), S_OK);
    EXPECT_EQ(Set("", "a=1 b=2"), S_OK);
    EXPECT_EQ(Get(""), "<z-props a='1' c='3' b='2'/>");
}

TEST_F(PropsSetTest, ListKeepsBareNamesAndTakesPaths) {
    EXPECT_EQ(Set("", "bare a::b=1 last"), S_OK);
    EXPECT_EQ(Get("bare"), "");
    EXPECT_EQ(Get("last"), "");
    EXPECT_EQ(Get("a::b"), "1");
    EXPECT_EQ(At("", 2), "a=/");
}

TEST_F(PropsSetTest, XmlReplacesTheTree) {
    EXPECT_EQ(Set("old", "1"), S_OK);
    EXPECT_EQ(Set("", "<n a='1'/>"), S_OK);
    EXPECT_EQ(Get("a"), "1");
    EXPECT_EQ(Get("old"), kAbsent);
    EXPECT_EQ(Get(""), "<n a='1'/>");
}

TEST_F(PropsSetTest, PlainTextIsTheRootsText) {
    EXPECT_EQ(Set("a", "1"), S_OK);
    EXPECT_EQ(Set("", "hello"), S_OK);
    EXPECT_EQ(Get(""), "<z-props a='1'>hello</z-props>");
    EXPECT_EQ(Set("", "<n><b>1</b></n>"), S_OK);
    EXPECT_EQ(Get(""), "<z-props a='1'>&lt;n&gt;&lt;b&gt;1&lt;/b&gt;&lt;/n&gt;</z-props>");
}

TEST_F(PropsSetTest, EmptyValueRemovesTheRootsAttributesOnly) {
    EXPECT_EQ(Set("a::b", "1"), S_OK);
    EXPECT_EQ(Set("c", "2"), S_OK);
    EXPECT_EQ(Set("", "text"), S_OK);
    EXPECT_EQ(Set("", ""), S_OK);
    EXPECT_EQ(Get("c"), kAbsent);
    EXPECT_EQ(Get("a::b"), "1");
    EXPECT_NE(Get("").find("text"), std::string::npos);
    EXPECT_EQ(m_props->PropsSet(nullptr, nullptr), E_INVALIDARG);
    EXPECT_EQ(m_props->PropsSet(Of("").get(), nullptr), E_INVALIDARG);
}

TEST_F(PropsSetTest, WholeValueThatGivesNothingIsRefused) {
    EXPECT_EQ(Set("", "=1"), E_INVALIDARG);
    EXPECT_EQ(Set("a", "1"), S_OK);
    EXPECT_EQ(Set("", "<!-- a=1 -->"), E_INVALIDARG);
    EXPECT_EQ(Get("a"), kAbsent);
}

TEST_F(PropsSetTest, TreeComesBackFromItsXml) {
    EXPECT_EQ(Set("", "<n x='1'>t<e a='2'>u<f g='3'/></e><e/></n>"), S_OK);
    const std::string xml = Get("");
    EXPECT_EQ(Set("", xml), S_OK);
    EXPECT_EQ(Get(""), xml);
    EXPECT_EQ(Get("e::f::g"), "3");
}

TEST_F(PropsSetTest, RemovesAttributesAndNodes) {
    EXPECT_EQ(Set("a", "1"), S_OK);
    EXPECT_EQ(Set("n::b", "2"), S_OK);
    EXPECT_EQ(Set("n::m::c", "3"), S_OK);
    EXPECT_EQ(Remove("A"), S_OK);
    EXPECT_EQ(Remove("a"), E_INVALIDARG);
    EXPECT_EQ(Remove("n::b"), S_OK);
    EXPECT_EQ(Get("n::m::c"), "3");
    EXPECT_EQ(Remove("n::m"), S_OK);
    EXPECT_EQ(Get("n::m::c"), kAbsent);
    EXPECT_EQ(Remove("n"), S_OK);
    EXPECT_EQ(Count(""), "0");
    EXPECT_EQ(Remove(""), E_INVALIDARG);
    EXPECT_EQ(m_props->PropsRemove(nullptr), E_INVALIDARG);
}

TEST_F(PropsSetTest, RemovesTheAttributeBeforeTheNode) {
    EXPECT_EQ(Set("", "<n a='1'><a b='2'/></n>"), S_OK);
    EXPECT_EQ(Remove("a"), S_OK);
    EXPECT_EQ(Get("a"), "b='2'");
    EXPECT_EQ(Remove("a"), S_OK);
    EXPECT_EQ(Get("a"), kAbsent);
}

TEST_F(PropsSetTest, RemovesAllOfOneKind) {
    EXPECT_EQ(Set("", "<n a='1' b='2'>text<c d='3'/></n>"), S_OK);
    EXPECT_EQ(Remove("_All_Props_"), S_OK);
    EXPECT_EQ(Get("a"), kAbsent);
    EXPECT_EQ(Get("c::d"), "3");
    EXPECT_EQ(Set("e", "1"), S_OK);
    EXPECT_EQ(Remove("_all_nodes_"), S_OK);
    // The root's text is one of its children.
    EXPECT_EQ(Get(""), "<n e='1'/>");
}

TEST_F(PropsSetTest, EveryStoreStartsEmptyUnderItsName) { EXPECT_EQ(Get(""), "<z-props/>"); }

TEST_F(PropsSetTest, ComputedNamesComeBeforeStoredOnes) {
    EXPECT_EQ(Set("dll-version", "mine"), S_OK);
    EXPECT_NE(Get("DLL-Version"), "mine");
    EXPECT_NE(Get("dll-path"), "");
    EXPECT_NE(Get("dll-date"), kAbsent);
    EXPECT_NE(Get("dll-file-version"), kAbsent);
    EXPECT_EQ(At("", 0), "dll-version=mine");
}

TEST_F(PropsSetTest, NullOutputIsRefused) { EXPECT_EQ(m_props->PropsGet(Of("a").get(), nullptr), E_POINTER); }

TEST_F(PropsSetTest, WithoutARootThereIsNothing) {
    m_object->Store().RootSet(XMLParse::XMLNodePtr());
    EXPECT_EQ(Set("a", "1"), E_FAIL);
    EXPECT_EQ(Set("_info_enum_", "1"), E_FAIL);
    EXPECT_EQ(Get("a"), "<80004005>");
    EXPECT_EQ(Get(""), "<80004005>");
    EXPECT_NE(Get("dll-version"), "<80004005>");
    EXPECT_EQ(Remove("a"), E_FAIL);
    EXPECT_EQ(Count(""), "<80004005>");
    EXPECT_EQ(At("", 0), "<80004005>");
}

TEST_F(PropsSetTest, HookRunsAfterAChange) {
    EXPECT_EQ(Set("a", "1"), S_OK);
    EXPECT_EQ(Set("", "b=2"), S_OK);
    EXPECT_EQ(Set("_info_enum_", "1"), S_OK);
    EXPECT_EQ(Set("", "=2"), E_INVALIDARG);
    EXPECT_EQ(m_object->m_changed, "a=1;=b=2;");
    m_object->m_changedStatus = S_FALSE;
    EXPECT_EQ(Set("a", "2"), S_FALSE);
}

TEST_F(PropsSetTest, AnotherObjectMayAnswer) {
    ComPtr<IZProps> other;
    ASSERT_EQ(CreateObject<CPropsObject>(nullptr, IID_IZProps, reinterpret_cast<void **>(other.Put())), S_OK);
    m_object->m_other = other;
    EXPECT_EQ(Set("other.a", "1"), S_OK);
    EXPECT_EQ(m_object->m_asked, "01");
    EXPECT_EQ(Count(""), "0");
    EXPECT_EQ(Get("other.a"), "1");
    Bstr value;
    EXPECT_EQ(other->PropsGet(Of("other.a").get(), value.Put()), S_OK);
    EXPECT_EQ(Remove("other.a"), S_OK);
    EXPECT_EQ(other->PropsGet(Of("other.a").get(), value.Put()), S_FALSE);
    // Not handled: both take it.
    m_object->m_handled = false;
    m_object->m_candidate = 0;
    EXPECT_EQ(Set("other.b", "1"), S_OK);
    EXPECT_EQ(Count(""), "1");
    EXPECT_EQ(other->PropsGet(Of("other.b").get(), value.Put()), S_OK);
    m_object->m_other.Reset();
}

TEST_F(PropsSetTest, TypedReadsOfTheOwner) {
    const CPropsStore &store = m_object->Store();
    EXPECT_EQ(Set("", "t=true n=12 f=50% e='' p::n=7"), S_OK);
    EXPECT_TRUE(store.GetBool(In("t"), false));
    EXPECT_EQ(store.GetInt(In("n"), 5), 12);
    EXPECT_EQ(store.GetInt(In("p::n"), 5), 7);
    EXPECT_EQ(store.GetFloat(In("f"), 5), 0.5);
    EXPECT_EQ(Say(store.GetText(In("n"), In("x"))), "12");
    // The fallback is for what is missing, not for what is empty.
    EXPECT_EQ(store.GetInt(In("e"), 5), 0);
    EXPECT_FALSE(store.GetBool(In("e"), true));
    EXPECT_EQ(Say(store.GetText(In("e"), In("x"))), "");
    EXPECT_EQ(store.GetInt(In("missing"), 5), 5);
    EXPECT_TRUE(store.GetBool(In("missing"), true));
    EXPECT_EQ(store.GetFloat(In("missing"), 0.25), 0.25);
    EXPECT_EQ(Say(store.GetText(In("missing"), In("x"))), "x");
    EXPECT_EQ(Say(store.GetText(In("missing::deep"), In("x"))), "x");
}

TEST_F(PropsSetTest, ReadsByHashedNames) {
    constexpr PropName kNumber(ZCK_TEXT("Number.Of"));
    constexpr PropName kMissing(ZCK_TEXT("missing"));
    const CPropsStore &store = m_object->Store();
    ASSERT_EQ(Set("", "number.of=0012 t=yes"), S_OK);
    const auto shown = [&](PropName name) {
        std::string text = "none";
        store.VisitText(name, [&](TextView view) { text = Say(view); });
        return text;
    };
    EXPECT_EQ(store.GetInt(kNumber, 5), 12);
    EXPECT_TRUE(store.GetBool(PropName(ZCK_TEXT("t")), false));
    EXPECT_EQ(shown(kNumber), "0012");
    store.Root()->IntSet(In("number.of"), 7);
    EXPECT_EQ(shown(kNumber), "7");
    EXPECT_EQ(store.GetInt(kMissing, 5), 5);
    EXPECT_TRUE(store.GetBool(kMissing, true));
    EXPECT_EQ(shown(kMissing), "none");
    m_object->Store().RootSet(nullptr);
    EXPECT_EQ(store.GetInt(kNumber, 5), 5);
    EXPECT_EQ(shown(kNumber), "none");
}

TEST_F(PropsSetTest, TypedReadKeepsTheText) {
    EXPECT_EQ(Set("n", "0012"), S_OK);
    EXPECT_EQ(m_object->Store().GetInt(In("n"), 0), 12);
    EXPECT_EQ(Get("n"), "0012");
    EXPECT_EQ(Get(""), "<z-props n='0012'/>");
}

}    // namespace
}    // namespace zck
