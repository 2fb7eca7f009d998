// Settings through `IZProps`: classification, paths, hooks, enumeration, descriptions, options.
#include <gtest/gtest.h>

#include <map>
#include <thread>

#include "props/store/option_list.h"
#include "props/store/props_impl.h"
#include "props/store/value_kind.h"
#include "tests/conformance/answers.h"
#include "tests/conformance/xml_model.h"
#include "xml/parser.h"

namespace conformance {
namespace {

using namespace zck::XMLParse;
using zck::ComPtr;
using zck::ValueKind;

constexpr HRESULT kBadIndex = static_cast<HRESULT>(0x80070585);
constexpr HRESULT kNoFile = static_cast<HRESULT>(0x80070002);

// An object with settings, with hooks that a test may set.
class Object final : public zck::IZPropsImpl<Object> {
public:
    HRESULT Z_STDCALL QueryInterface(REFIID riid, void **ppv) override {
        *ppv = riid == IID_IZProps || riid == IID_IUnknown ? this : nullptr;
        if (*ppv == nullptr) return E_NOINTERFACE;
        AddRef();
        return S_OK;
    }
    ULONG Z_STDCALL AddRef() override { return ++m_refs; }
    ULONG Z_STDCALL Release() override { return --m_refs; }

    bool PropsForward(int32_t candidate, TextView name, ComPtr<IZProps> &other) {
        m_log += "f" + std::to_string(candidate) + "(" + Say(name) + ") ";
        if (candidate == m_forwardCandidate) other = m_forwardTo;
        return m_handled;
    }
    HRESULT PropsChanged(TextView name, TextView value) {
        m_log += "c(" + Say(name) + "," + Say(value) + ") ";
        return m_changedStatus;
    }

    zck::CPropsStore &Store() { return m_props; }
    IZProps *operator->() { return this; }
    std::string Tree() { return m_props.Root() ? Dump(*m_props.Root()) : "<none>"; }
    void Fill(std::string_view xml) {
        const XMLNodePtr root = CoXMLNode::Create(T("new"));
        EXPECT_EQ(ParseXML(*root, T(xml)), S_OK);
        m_props.RootSet(root);
    }

    HRESULT Set(std::string_view name, std::string_view value) { return PropsSet(B(name).get(), B(value).get()); }
    std::string Get(std::string_view name) {
        Out out;
        const HRESULT hr = PropsGet(B(name).get(), out);
        return Line(hr, out.Said());
    }

    std::string m_log;
    int32_t m_forwardCandidate = 0;
    IZProps *m_forwardTo = nullptr;
    bool m_handled = false;
    HRESULT m_changedStatus = S_OK;

private:
    ULONG m_refs = 1;
};

std::string Good(const std::string &text) { return Line(S_OK, text); }
std::string None() { return Line(S_FALSE, "<null>"); }

// Only a pair of quotes hides what it holds.
ValueKind ModelKind(const std::string &s) {
    bool equals = false, less = false;
    for (size_t i = 0; i < s.size(); ++i) {
        const size_t partner = s[i] == '\'' || s[i] == '"' ? s.find(s[i], i + 1) : std::string::npos;
        if (partner != std::string::npos) i = partner;
        equals = equals || s[i] == '=';
        less = less || s[i] == '<';
    }
    return s.empty() ? ValueKind::Empty : !equals ? ValueKind::Plain : less ? ValueKind::Xml : ValueKind::AttributeList;
}

TEST(ValueKinds, QuotesAreHonoured) {
    const struct {
        const char *text;
        ValueKind kind;
    } rows[] = {{"", ValueKind::Empty},
                {" ", ValueKind::Plain},
                {"x", ValueKind::Plain},
                {"<n><b>1</b></n>", ValueKind::Plain},
                {"<z-props/>", ValueKind::Plain},
                {"'a=b'", ValueKind::Plain},
                {"\"a=b\" '<='", ValueKind::Plain},
                {"a=1", ValueKind::AttributeList},
                {"a='<'", ValueKind::AttributeList},
                {"it's a=b", ValueKind::AttributeList},
                {"it's a=b isn't", ValueKind::Plain},
                {"'\"' a=b \"", ValueKind::AttributeList},
                {"<n a='1'/>", ValueKind::Xml},
                {"a=1 <", ValueKind::Xml},
                {"\" <a x=1>", ValueKind::Xml}};
    for (const auto &row : rows) {
        EXPECT_EQ(zck::ValueKindOf(T(row.text)), row.kind) << row.text;
        EXPECT_EQ(ModelKind(row.text), row.kind) << row.text;
    }
    std::mt19937 random(61);
    for (int i = 0; i < 50000; ++i) {
        const std::string s = AnyOf(random, "a='\"< ", 12);
        ASSERT_EQ(zck::ValueKindOf(T(s)), ModelKind(s)) << s;
    }
}

TEST(OptionLists, AreSplit) {
    const auto split = [](std::string_view values) {
        std::string all;
        const Text text = T(values);
        for (const TextView item : zck::OptionItems(text)) all += "[" + Say(item) + "]";
        return all;
    };
    EXPECT_EQ(split("a|b c|d"), "[a][b c][d]");
    EXPECT_EQ(split("||a||b|"), "[a][b]");
    EXPECT_EQ(split("| |"), "[ ]");
    EXPECT_EQ(split("|"), "");
    EXPECT_EQ(split(" a b\t\r\nc;d,,e; "), "[a][b][c][d][e]");
    EXPECT_EQ(split("a|b,c;d e"), "[a][b,c;d e]");
    EXPECT_EQ(split(""), "");
    EXPECT_EQ(split(" ;,"), "");
    EXPECT_EQ(split("one"), "[one]");
}

TEST(Props, StartEmpty) {
    Object o;
    EXPECT_EQ(o.Get(""), Good("<z-props/>"));
    EXPECT_EQ(o.Get("a"), None());
    int32_t count = -1;
    EXPECT_EQ(o->PropsGetCount(nullptr, &count), S_OK);
    EXPECT_EQ(count, 0);
}

TEST(Props, MembersTurnAPropertyIntoANode) {
    Object o;
    EXPECT_EQ(o.Set("a::b", "1"), S_OK);
    EXPECT_EQ(o.Tree(), "<z-props><a b={1}></></>");
    EXPECT_EQ(o.Get("a"), Good("b='1'"));
    EXPECT_EQ(o.Get("A::B"), Good("1"));
    Object p;
    EXPECT_EQ(p.Set("a", "x"), S_OK);
    EXPECT_EQ(p.Set("A::b", "1"), S_OK);
    EXPECT_EQ(p.Tree(), "<z-props><A b={1}>[x]</></>");
    EXPECT_EQ(p.Get("a"), Good("x"));
    EXPECT_EQ(p.Set("a", "y"), S_OK);    // the node takes it now
    EXPECT_EQ(p.Tree(), "<z-props><A b={1}>[y]</></>");
    // Only the direct parent, and also when a node takes the value.
    Object q;
    q.Fill("<z a='old' x='keep'><x><a b='mid'><b/></a></x></z>");
    EXPECT_EQ(q.Set("x::a::b", "new"), S_OK);
    EXPECT_EQ(q.Tree(), "<z a={old} x={keep}><x><a b={mid}><b>[new]</></></></>");
    EXPECT_EQ(q.Set("x::k", "1"), S_OK);
    EXPECT_EQ(q.Tree(), "<z a={old}><x k={1}>[keep]<a b={mid}><b>[new]</></></></>");
    EXPECT_EQ(q.Get("x::a::b"), Good("mid"));    // reading sees the attribute, writing the node
    EXPECT_EQ(q.Set("x::a::b", "newer"), S_OK);
    EXPECT_EQ(q.Get("x::a::b"), Good("mid"));
}

TEST(Props, NamesAndValues) {
    Object o;
    EXPECT_EQ(o.Set("detect.max_keys", "1"), S_OK);
    EXPECT_EQ(o.Set("Effects(2)::Level", "<not parsed='1'/>"), S_OK);
    EXPECT_EQ(o.Set("at(3)", "x"), S_OK);
    EXPECT_EQ(o->PropsSet(B("null").get(), nullptr), S_OK);
    EXPECT_EQ(o.Tree(), "<z-props detect.max_keys={1} at(3)={x} null={}><Effects Level={<not parsed='1'/>}></></>");
    EXPECT_EQ(o.Get("DETECT.MAX_KEYS"), Good("1"));
    EXPECT_EQ(o.Get("null"), Good(""));
    EXPECT_EQ(o.Get("effects::level"), Good("<not parsed='1'/>"));
    EXPECT_EQ(o.Get("effects(1)::level"), None());
    for (const char *name : {"::a", "a::", "a::::b", "::"}) {
        EXPECT_EQ(o.Set(name, "1"), E_INVALIDARG) << name;
        EXPECT_EQ(o.Get(name), None()) << name;
        EXPECT_EQ(o->PropsRemove(B(name).get()), E_INVALIDARG) << name;
    }
    EXPECT_EQ(o.Tree(), "<z-props detect.max_keys={1} at(3)={x} null={}><Effects Level={<not parsed='1'/>}></></>");
    EXPECT_EQ(o->PropsGet(B("null").get(), nullptr), E_POINTER);
    EXPECT_EQ(o->PropsGet(nullptr, nullptr), E_POINTER);
}

TEST(Props, TheWholeTreeByAnEmptyName) {
    Object o;
    EXPECT_EQ(o.Set("", "a=1 b=2"), S_OK);
    EXPECT_EQ(o.Set("", "B=3 c::d='4 5' bare"), S_OK);
    EXPECT_EQ(o.Tree(), "<z-props a={1} b={3} bare={}><c d={4 5}></></>");
    EXPECT_EQ(o.Set("", "plain <text>"), S_OK);
    EXPECT_EQ(o.Tree(), "<z-props a={1} b={3} bare={}>[plain <text>]<c d={4 5}></></>");
    EXPECT_EQ(o.Get(""), Good("<z-props a='1' b='3' bare=''>\r\n\tplain &lt;text&gt;\r\n\t<c d='4 5'/>\r\n</z-props>"));
    EXPECT_EQ(o.Set("", "<n><b>1</b></n>"), S_OK);    // plain, for lack of a "="
    EXPECT_EQ(o.Tree(), "<z-props a={1} b={3} bare={}>[<n><b>1</b></n>]<c d={4 5}></></>");
    EXPECT_EQ(o.Set("", ""), S_OK);
    EXPECT_EQ(o.Tree(), "<z-props>[<n><b>1</b></n>]<c d={4 5}></></>");
    EXPECT_EQ(o->PropsSet(B("").get(), nullptr), E_INVALIDARG);
    EXPECT_EQ(o->PropsSet(nullptr, nullptr), E_INVALIDARG);
    EXPECT_EQ(o.Set("", "=1"), E_INVALIDARG);
    EXPECT_EQ(o.Tree(), "<z-props>[<n><b>1</b></n>]<c d={4 5}></></>");
    EXPECT_EQ(o.Set("", "<n a='1'/>"), S_OK);
    EXPECT_EQ(o.Tree(), "<n a={1}></>");
    EXPECT_EQ(o.Get(""), Good("<n a='1'/>"));
    EXPECT_EQ(o.Set("", "<!-- a=1 -->"), E_INVALIDARG);
    EXPECT_EQ(o.Tree(), "<n></>");    // cleared by then
}

TEST(Props, ANodeWithoutTextShowsItsAttributes) {
    Object o;
    o.Fill("<z><a x='1' Y=\"it's\"><b/></a><t x='1'>text</t><e/></z>");
    EXPECT_EQ(o.Get("a"), Good("x='1' Y=\"it's\""));
    EXPECT_EQ(o.Get("t"), Good("text"));
    EXPECT_EQ(o.Get("e"), Good(""));
    EXPECT_EQ(o.Get("a::b"), Good(""));
}

// The kind of each character: digits, letters by their case, all else as it is.
std::string Shape(std::string s) {
    for (char &c : s)
        c = std::isdigit(static_cast<unsigned char>(c)) ? '9' : c >= 'A' && c <= 'Z' ? 'A' : c >= 'a' && c <= 'z' ? 'a' : c;
    return s;
}

TEST(Props, ComputedNames) {
    Object o;
    const std::string before = o.Tree();
    for (const char *name : {"dll-version", "DLL-Version", "dll-file-version"}) {
        Out out;
        EXPECT_EQ(o->PropsGet(B(name).get(), out), S_OK);
        unsigned part[4] = {};
        int used = -1;
        EXPECT_EQ(std::sscanf(out.Said().c_str(), "%u.%u.%u.%u%n", &part[0], &part[1], &part[2], &part[3], &used), 4)
            << out.Said();
        EXPECT_EQ(used, static_cast<int>(out.Said().size()));
    }
    Out date, path;
    EXPECT_EQ(o->PropsGet(B("dll-date").get(), date), S_OK);
    EXPECT_TRUE(Shape(date.Said()) == "Aaa 99 9999 99:99:99" || Shape(date.Said()) == "Aaa  9 9999 99:99:99") << date.Said();
    EXPECT_EQ(o->PropsGet(B("Dll-Path").get(), path), S_OK);
    EXPECT_FALSE(path.Said().empty());
    EXPECT_LE(path.Said().size(), 1040U);
    EXPECT_EQ(o.Tree(), before);    // not stored
    EXPECT_EQ(o.Set("dll-path", "mine"), S_OK);
    EXPECT_EQ(o.Get("dll-path"), Good(path.Said()));    // before any look-up
    EXPECT_EQ(o.Tree(), "<z-props dll-path={mine}></>");
    EXPECT_EQ(o.Get("x::dll-path"), None());
}

TEST(Props, WithoutARoot) {
    Object o;
    o.Store().RootSet(XMLNodePtr());
    EXPECT_EQ(o.Set("a", "1"), E_FAIL);
    EXPECT_EQ(o.Set("", "1"), E_FAIL);
    EXPECT_EQ(o.Get("a"), Line(E_FAIL, "<null>"));
    EXPECT_EQ(o.Get(""), Line(E_FAIL, "<null>"));
    Out out;
    EXPECT_EQ(o->PropsGet(B("dll-date").get(), out), S_OK);
}

TEST(Props, Removal) {
    Object o;
    o.Fill("<z a='1' b='2'>t<a x='3'/><c/><c y='4'/></z>");
    EXPECT_EQ(o->PropsRemove(nullptr), E_INVALIDARG);
    EXPECT_EQ(o->PropsRemove(B("").get()), E_INVALIDARG);
    EXPECT_EQ(o->PropsRemove(B("none").get()), E_INVALIDARG);
    EXPECT_EQ(o->PropsRemove(B("A").get()), S_OK);
    EXPECT_EQ(o.Tree(), "<z b={2}>[t]<a x={3}></><c></><c y={4}></></>");
    EXPECT_EQ(o->PropsRemove(B("A").get()), S_OK);
    EXPECT_EQ(o->PropsRemove(B("c(1)::y").get()), S_OK);
    EXPECT_EQ(o->PropsRemove(B("c(1)").get()), S_OK);
    EXPECT_EQ(o.Tree(), "<z b={2}>[t]<c></></>");
    EXPECT_EQ(o->PropsRemove(B("_ALL_props_").get()), S_OK);
    EXPECT_EQ(o.Tree(), "<z>[t]<c></></>");
    EXPECT_EQ(o->PropsRemove(B("_all_nodes_").get()), S_OK);
    EXPECT_EQ(o.Tree(), "<z></>");
    EXPECT_EQ(o->PropsRemove(B("_all_nodes_").get()), S_OK);
    EXPECT_EQ(o->PropsRemove(B("_all_props_").get()), S_OK);
}

struct Item {
    HRESULT status;
    std::string name, value;
    int32_t isNode;
    bool operator==(const Item &) const = default;
};
std::ostream &operator<<(std::ostream &out, const Item &item) {
    return out << Line(item.status, item.name) << "=" << item.value << " " << item.isNode;
}

Item ItemAt(Object &o, std::string_view node, int32_t index) {
    Out name, value;
    Item item{S_OK, "", "", 77};
    item.status = o->PropsGetByIndex(B(node).get(), index, name, value, &item.isNode);
    item.name = name.Said();
    item.value = value.Said();
    return item;
}

TEST(Props, Enumeration) {
    Object o;
    o.Fill("<z a='1' B=''>t<c x='9'>text</c>u<D/></z>");
    int32_t count = -1;
    EXPECT_EQ(o->PropsGetCount(B("").get(), &count), S_OK);
    EXPECT_EQ(count, 4);
    EXPECT_EQ(o->PropsGetCount(B("C").get(), &count), S_OK);
    EXPECT_EQ(count, 1);
    EXPECT_EQ(o->PropsGetCount(B("none").get(), &count), E_INVALIDARG);
    EXPECT_EQ(o->PropsGetCount(B("a").get(), &count), E_INVALIDARG);    // no node
    EXPECT_EQ(o->PropsGetCount(B("_info_").get(), &count), E_INVALIDARG);
    EXPECT_EQ(o->PropsGetCount(B("").get(), nullptr), E_POINTER);
    EXPECT_EQ(ItemAt(o, "", 0), (Item{S_OK, "a", "1", 0}));
    EXPECT_EQ(ItemAt(o, "", 1), (Item{S_OK, "B", "", 0}));
    EXPECT_EQ(ItemAt(o, "", 2), (Item{S_OK, "c", "text", 1}));
    EXPECT_EQ(ItemAt(o, "", 3), (Item{S_OK, "d", "", 1}));
    EXPECT_EQ(ItemAt(o, "c", 0), (Item{S_OK, "x", "9", 0}));
    for (const int32_t i : {4, 5, -1, INT32_MIN, INT32_MAX})
        EXPECT_EQ(ItemAt(o, "", i), (Item{kBadIndex, "<null>", "<null>", 0})) << i;
    EXPECT_EQ(ItemAt(o, "none", 0), (Item{E_INVALIDARG, "<null>", "<null>", 0}));
    EXPECT_EQ(ItemAt(o, "none", -1), (Item{E_INVALIDARG, "<null>", "<null>", 0}));
    EXPECT_EQ(ItemAt(o, "_INFO_", 0), (Item{kBadIndex, "<null>", "<null>", 0}));
    EXPECT_EQ(o->PropsGetByIndex(nullptr, 0, nullptr, nullptr, nullptr), S_OK);
    EXPECT_EQ(o->PropsGetByIndex(nullptr, 2, nullptr, nullptr, nullptr), S_OK);
    EXPECT_EQ(o->PropsGetByIndex(nullptr, 4, nullptr, nullptr, nullptr), kBadIndex);
}

TEST(Props, EnumerationOfDescribedAttributes) {
    Object o;
    o.Fill("<z a='1' k='2'><attributes_info><A/><b/></attributes_info><c><m/></c></z>");
    int32_t count = -1;
    const auto countOf = [&](const char *node) {
        EXPECT_EQ(o->PropsGetCount(B(node).get(), &count), S_OK);
        return count;
    };
    EXPECT_EQ(countOf(""), 2);
    EXPECT_EQ(countOf("c"), 2);    // the parent describes them
    EXPECT_EQ(ItemAt(o, "", 0), (Item{S_OK, "a", "1", 0}));
    EXPECT_EQ(ItemAt(o, "", 1), (Item{S_OK, "b", "", 0}));
    EXPECT_EQ(ItemAt(o, "", 2), (Item{kBadIndex, "<null>", "<null>", 0}));
    EXPECT_EQ(ItemAt(o, "", -1), (Item{kBadIndex, "<null>", "<null>", 0}));
    EXPECT_EQ(ItemAt(o, "c", 0), (Item{S_OK, "a", "", 0}));
    EXPECT_EQ(ItemAt(o, "_info_", 1), (Item{S_OK, "b", "", 0}));
    o.m_log.clear();
    EXPECT_EQ(o.Set("_Info_Enum_", "no"), S_OK);
    EXPECT_EQ(o.m_log.find("c("), std::string::npos);    // no change of a property
    EXPECT_EQ(countOf(""), 4);
    EXPECT_EQ(ItemAt(o, "", 1), (Item{S_OK, "k", "2", 0}));
    EXPECT_EQ(ItemAt(o, "", 2), (Item{S_OK, "attributes_info", "", 1}));
    EXPECT_EQ(ItemAt(o, "", 3), (Item{S_OK, "c", "", 1}));
    EXPECT_EQ(ItemAt(o, "_info_", 0), (Item{S_OK, "a", "1", 0}));    // in every mode
    EXPECT_EQ(ItemAt(o, "_info_", 2), (Item{kBadIndex, "<null>", "<null>", 0}));
    EXPECT_EQ(ItemAt(o, "_info_", -1), (Item{kBadIndex, "<null>", "<null>", 0}));
    EXPECT_EQ(o.Set("_info_enum_", "YES"), S_OK);
    EXPECT_EQ(countOf(""), 2);
    EXPECT_EQ(o.Get("_info_enum_"), None());    // not stored
    EXPECT_EQ(o.Set("_info_enum_", ""), S_OK);
    Object plain;
    EXPECT_EQ(plain.Set("a", "1"), S_OK);
    EXPECT_EQ(plain->PropsGetCount(nullptr, &count), S_OK);
    EXPECT_EQ(count, 1);
    EXPECT_EQ(plain.Set("_info_enum_", "1"), S_OK);
    EXPECT_EQ(plain->PropsGetCount(nullptr, &count), S_OK);
    EXPECT_EQ(count, 0);
    EXPECT_EQ(ItemAt(plain, "", 0), (Item{kBadIndex, "<null>", "<null>", 0}));
    EXPECT_EQ(plain->PropsSet(B("_info_enum_").get(), nullptr), S_OK);
    EXPECT_EQ(plain->PropsGetCount(nullptr, &count), S_OK);
    EXPECT_EQ(count, 1);
    // An info node that describes nothing is none.
    Object empty;
    empty.Fill("<z a='1'><attributes_info/></z>");
    EXPECT_EQ(empty->PropsGetCount(nullptr, &count), S_OK);
    EXPECT_EQ(count, 2);
    // A node that bears the name.
    Object node;
    node.Fill("<z><_info_ q='1'/></z>");
    EXPECT_EQ(ItemAt(node, "_info_", 0), (Item{S_OK, "q", "1", 0}));
}

const char kWithOptions[] =
    "<z mode='b c' x='q' other='1'>"
    "<attributes_info>"
    "<mode type='word' default='a' values='a|b c|d'>help mode<a>help a</a></mode>"
    "<x values='q; q,r'><q>help q</q></x>"
    "<none/>"
    "<bychild><one>1</one><two/></bychild>"
    "<unset values='u'/>"
    "</attributes_info></z>";

TEST(Props, Descriptions) {
    Object o;
    o.Fill(kWithOptions);
    EXPECT_TEXT(o->PropsInfoGet(B("MODE").get(), eZIT_Help, out), S_OK, "help mode");
    EXPECT_TEXT(o->PropsInfoGet(B("mode").get(), eZIT_Type, out), S_OK, "word");
    EXPECT_TEXT(o->PropsInfoGet(B("mode").get(), eZIT_Default, out), S_OK, "a");
    EXPECT_TEXT(o->PropsInfoGet(B("bychild").get(), eZIT_Values, out), S_OK, "one|two");
    EXPECT_TEXT(o->PropsInfoGet(B("mode").get(), eZIT_Min, out), S_FALSE, "<null>");
    EXPECT_TEXT(o->PropsInfoGet(B("other").get(), eZIT_Help, out), S_FALSE, "<null>");
    EXPECT_TEXT(o->PropsInfoGet(B("").get(), eZIT_Help, out), E_INVALIDARG, "<null>");
    EXPECT_TEXT(o->PropsInfoGet(B("mode").get(), eZIT_Node, out), E_INVALIDARG, "<null>");
    EXPECT_TEXT(o->PropsInfoGet(B("mode").get(), static_cast<eZInfoType>(-1), out), E_INVALIDARG, "<null>");
    EXPECT_EQ(o->PropsInfoGet(B("").get(), eZIT_Help, nullptr), E_POINTER);
}

TEST(Props, Options) {
    Object o;
    o.Fill(kWithOptions);
    int32_t n = -5;
    EXPECT_EQ(o->PropsOptionGetCount(B("mode").get(), &n), S_OK);
    EXPECT_EQ(n, 3);
    EXPECT_EQ(o->PropsOptionGetCount(B("x").get(), &n), S_OK);
    EXPECT_EQ(n, 3);
    EXPECT_EQ(o->PropsOptionGetCount(B("bychild").get(), &n), S_OK);
    EXPECT_EQ(n, 2);
    for (const char *name : {"none", "unknown", "no::node"}) {
        n = -5;
        EXPECT_EQ(o->PropsOptionGetCount(B(name).get(), &n), S_OK);
        EXPECT_EQ(n, 0) << name;
    }
    EXPECT_EQ(o->PropsOptionGetCount(B("").get(), &n), E_INVALIDARG);
    EXPECT_EQ(o->PropsOptionGetCount(B("mode").get(), nullptr), E_POINTER);

    const auto option = [&](const char *name, int32_t i) {
        Out value, help;
        const HRESULT hr = o->PropsOptionGetByIndex(B(name).get(), i, value, help);
        return Line(hr, value.Said() + " " + help.Said());
    };
    EXPECT_EQ(option("mode", 0), Line(S_OK, "a help a"));
    EXPECT_EQ(option("bychild", 0), Line(S_OK, "one 1"));
    EXPECT_EQ(option("x", 1), Line(S_OK, "q help q"));
    {
        Out value;
        EXPECT_EQ(o->PropsOptionGetByIndex(B("mode").get(), 1, value, nullptr), S_OK);
        EXPECT_EQ(value.Said(), "b c");
    }
    for (const int32_t i : {-1, 3, INT32_MAX, INT32_MIN}) {
        EXPECT_EQ(option("mode", i), Line(kBadIndex, "<null> <null>"));
        EXPECT_EQ(o->PropsOptionSetByIndex(B("mode").get(), i), kBadIndex);
    }
    EXPECT_EQ(option("unknown", 0), Line(kBadIndex, "<null> <null>"));
    EXPECT_EQ(option("", 0), Line(E_INVALIDARG, "<null> <null>"));
    EXPECT_EQ(o->PropsOptionSetByIndex(B("").get(), 0), E_INVALIDARG);
    EXPECT_EQ(o->PropsOptionSetByIndex(B("unknown").get(), 0), kBadIndex);
    o.m_log.clear();
    EXPECT_EQ(o->PropsOptionSetByIndex(B("Mode").get(), 2), S_OK);
    EXPECT_EQ(o.Get("mode"), Good("d"));
    EXPECT_NE(o.m_log.find("c(Mode,d)"), std::string::npos);    // a `PropsSet` like any other
    o.m_changedStatus = E_UNEXPECTED;
    EXPECT_EQ(o->PropsOptionSetByIndex(B("mode").get(), 1), E_UNEXPECTED);
}

TEST(Props, TheCurrentOption) {
    Object o;
    o.Fill(kWithOptions);
    const auto current = [&](const char *name) {
        int32_t n = -5;
        Out value, help;
        const HRESULT hr = o->PropsOptionGet(B(name).get(), &n, value, help);
        return Line(hr, std::to_string(n) + " " + value.Said());
    };
    EXPECT_EQ(current("mode"), Line(S_OK, "1 b c"));
    EXPECT_EQ(current("x"), Line(S_OK, "0 q"));    // the first of equals
    EXPECT_EQ(current("other"), Line(S_OK, "-1 1"));
    EXPECT_EQ(current("unset"), Line(kNoFile, "-1 <null>"));
    EXPECT_EQ(current("unknown"), Line(kNoFile, "-1 <null>"));
    EXPECT_EQ(current(""), Line(E_INVALIDARG, "-1 <null>"));
    EXPECT_EQ(o.Set("mode", "B C"), S_OK);
    EXPECT_EQ(current("mode"), Line(S_OK, "-1 B C"));    // with case
    EXPECT_EQ(o.Set("mode", "a"), S_OK);
    Out help;
    EXPECT_EQ(o->PropsOptionGet(B("mode").get(), nullptr, nullptr, help), S_OK);
    EXPECT_EQ(help.Said(), "help a");
    int32_t n = -5;
    EXPECT_EQ(o->PropsOptionGet(B("mode").get(), &n, nullptr, nullptr), S_OK);
    EXPECT_EQ(n, 0);
    EXPECT_EQ(o->PropsOptionGet(B("unset").get(), nullptr, nullptr, nullptr), kNoFile);
}

TEST(Props, ForwardingHook) {
    Object o, other;
    o.m_forwardTo = &other;
    o.m_handled = true;
    EXPECT_EQ(o.Set("a", "1"), S_OK);
    EXPECT_EQ(other.Tree(), "<z-props a={1}></>");
    EXPECT_EQ(o.Tree(), "<z-props></>");
    EXPECT_EQ(o.Get("a"), Good("1"));
    o.m_handled = false;    // both take it
    EXPECT_EQ(o.Set("b", "2"), S_OK);
    EXPECT_EQ(other.Tree(), "<z-props a={1} b={2}></>");
    EXPECT_EQ(o.Tree(), "<z-props b={2}></>");
    EXPECT_EQ(o.Set("::", "2"), E_INVALIDARG);    // the other's failure
    other.m_changedStatus = E_UNEXPECTED;
    EXPECT_EQ(o.Set("c", "3"), E_UNEXPECTED);
    EXPECT_EQ(o.Tree(), "<z-props b={2}></>");
    other.m_changedStatus = S_OK;
    int32_t count = -1;
    EXPECT_EQ(o->PropsGetCount(nullptr, &count), S_OK);
    EXPECT_EQ(count, 3);
    EXPECT_EQ(ItemAt(o, "", 0), (Item{S_OK, "a", "1", 0}));
    EXPECT_EQ(o->PropsRemove(B("a").get()), S_OK);
    EXPECT_EQ(other.Tree(), "<z-props b={2} c={3}></>");
    o.m_forwardCandidate = 1;
    EXPECT_EQ(o.Get("c"), Good("3"));
    o.m_forwardCandidate = 2;
    o.m_log.clear();
    EXPECT_EQ(o.Get("c"), None());
    EXPECT_EQ(o.m_log, "f0(c) f1(c) ");
}

TEST(Props, ChangeHook) {
    Object o;
    EXPECT_EQ(o.Set("a", "1"), S_OK);
    EXPECT_EQ(o.Set("", "b=2"), S_OK);
    EXPECT_EQ(o.Set("::", "1"), E_INVALIDARG);
    EXPECT_EQ(o->PropsRemove(B("a").get()), S_OK);
    std::string changes;
    for (size_t at = 0; (at = o.m_log.find("c(", at)) != std::string::npos; ++at)
        changes += o.m_log.substr(at, o.m_log.find(' ', at) - at);
    EXPECT_EQ(changes, "c(a,1)c(,b=2)");
    for (const HRESULT status : {S_FALSE, E_FAIL}) {
        o.m_changedStatus = status;
        EXPECT_EQ(o.Set("a", "2"), status);
        EXPECT_EQ(o.Get("a"), Good("2"));
    }
}

TEST(Props, TypedReadsOfTheOwner) {
    Object o;
    o.Fill("<z t='yes' n='0x10' i='12px' f='50%' e=''><node>1</node></z>");
    const zck::CPropsStore &store = o.Store();
    EXPECT_TRUE(store.GetBool(T("T"), false));
    EXPECT_TRUE(store.GetBool(T("missing"), true));
    EXPECT_FALSE(store.GetBool(T("e"), true));
    EXPECT_EQ(store.GetInt(T("i"), 7), 12);
    EXPECT_EQ(store.GetInt(T("n"), 7), 0);
    EXPECT_EQ(store.GetInt(T("e"), 7), 0);
    EXPECT_EQ(store.GetInt(T("missing"), 7), 7);
    EXPECT_EQ(store.GetInt(T("node"), 7), 7);    // no attribute
    EXPECT_EQ(store.GetFloat(T("f"), 7), 0.5);
    EXPECT_EQ(store.GetFloat(T("e"), 7), 0);
    EXPECT_EQ(Say(store.GetText(T("e"), T("else"))), "");
    EXPECT_EQ(Say(store.GetText(T("missing"), T("else"))), "else");
}

// Writes, reads and removals by path, against a model.
class ModelStore {
public:
    ModelNode root{T("z-props"), false, {}, {}};

    static std::vector<Text> Elements(const Text &path) {
        std::vector<Text> parts;
        size_t from = 0, at = 0;
        while ((at = path.find(T("::"), from)) != Text::npos) {
            parts.push_back(path.substr(from, at - from));
            from = at + 2;
        }
        parts.push_back(path.substr(from));
        return parts;
    }
    ModelNode *Find(const std::vector<Text> &elements, size_t count, bool create = false) {
        ModelNode *node = &root;
        for (size_t i = 0; i < count && node != nullptr; ++i) {
            const size_t bracket = elements[i].find(OLECHAR{'('});
            const Text name = elements[i].substr(0, bracket);
            ModelNode *child = node->Child(name, bracket == Text::npos ? 0 : elements[i][bracket + 1] - '0');
            if (child == nullptr && create) child = &node->children.emplace_back(ModelNode{name, false, {}, {}});
            node = child;
        }
        return node;
    }
    HRESULT Set(const Text &path, const Text &value) {
        const std::vector<Text> e = Elements(path);
        for (const Text &element : e)
            if (element.empty()) return E_INVALIDARG;
        if (ModelNode *node = Find(e, e.size())) {
            node->TextSet(value);
        } else {
            Find(e, e.size() - 1, true)->Set(e.back(), value);
        }
        if (e.size() < 2) return S_OK;
        // A child that was made for an index is not found by that index yet; then nothing is moved.
        ModelNode *above = Find(e, e.size() - 2);
        if (above == nullptr || Find(e, e.size() - 1) == nullptr) return S_OK;
        if (const Text *held = above->Attribute(e[e.size() - 2])) {
            const Text moved = *held;
            Drop(*above, e[e.size() - 2]);
            Find(e, e.size() - 1)->TextSet(moved);
        }
        return S_OK;
    }
    std::string Get(const Text &path) {
        const std::vector<Text> e = Elements(path);
        for (const Text &element : e)
            if (element.empty()) return None();
        ModelNode *owner = Find(e, e.size() - 1);
        if (const Text *held = owner != nullptr ? owner->Attribute(e.back()) : nullptr) return Good(Say(TextView(*held)));
        ModelNode *node = Find(e, e.size());
        if (node == nullptr) return None();
        const Text *text = node->TextChild();
        if (text != nullptr && !text->empty()) return Good(Say(TextView(*text)));
        std::string list;
        for (const auto &[name, value] : node->attributes)
            list += (list.empty() ? "" : " ") + Say(TextView(name)) + "=" + Say(ModelQuote(value));
        return Good(list);
    }
    HRESULT Remove(const Text &path) {
        const std::vector<Text> e = Elements(path);
        for (const Text &element : e)
            if (element.empty()) return E_INVALIDARG;
        ModelNode *owner = Find(e, e.size() - 1);
        if (owner != nullptr && owner->Attribute(e.back()) != nullptr) return Drop(*owner, e.back()), S_OK;
        const ModelNode *node = Find(e, e.size());
        if (node == nullptr) return E_INVALIDARG;
        for (size_t i = 0; i < owner->children.size(); ++i)
            if (&owner->children[i] == node)
                return owner->children.erase(owner->children.begin() + static_cast<std::ptrdiff_t>(i)), S_OK;
        return E_UNEXPECTED;
    }
    static void Drop(ModelNode &node, const Text &name) {
        std::erase_if(node.attributes, [&](const auto &a) { return ModelKey(a.first) == ModelKey(name); });
    }
};

TEST(Props, AsTheModel) {
    std::mt19937 random(62);
    const char *const names[] = {"a", "A", "b", "c", "c(1)", "c(0)", "d.e", "f"};
    const char *const values[] = {"1", "", "x y", "it's", "<v>", "a=1", "\"'"};
    for (int tree = 0; tree < 400; ++tree) {
        Object o;
        ModelStore model;
        for (int step = 0; step < 60; ++step) {
            std::string path = OneOf(random, names);
            for (size_t k = random() % 3; k-- > 0;) path += std::string("::") + OneOf(random, names);
            if (random() % 50 == 0) path += "::";
            switch (random() % 5) {
                case 0:
                case 1: {
                    const char *value = OneOf(random, values);
                    ASSERT_EQ(o.Set(path, value), model.Set(T(path), T(value))) << path;
                    break;
                }
                case 2:
                    if (random() % 2 == 0) break;
                    ASSERT_EQ(o->PropsRemove(B(path).get()), model.Remove(T(path))) << path;
                    break;
                default:
                    ASSERT_EQ(o.Get(path), model.Get(T(path))) << path << " in " << o.Tree();
            }
            ASSERT_EQ(o.Tree(), Dump(model.root)) << path;
        }
        // The same tree, walked by index.
        const auto walk = [&](auto &self, const std::string &path, const ModelNode &node) -> void {
            int32_t count = -1, index = 0;
            ASSERT_EQ(o->PropsGetCount(B(path).get(), &count), S_OK);
            for (const auto &[name, value] : node.attributes)
                ASSERT_EQ(ItemAt(o, path, index++), (Item{S_OK, Say(TextView(name)), Say(TextView(value)), 0}));
            std::map<uint64_t, int> seen;
            for (const ModelNode &child : node.children) {
                if (child.isText) continue;
                ModelNode copy = child;
                const Text *text = copy.TextChild();
                ASSERT_EQ(ItemAt(o, path, index++),
                          (Item{S_OK, Say(TextView(child.name)), text != nullptr ? Say(TextView(*text)) : "", 1}));
                self(self,
                     (path.empty() ? "" : path + "::") + Say(TextView(child.name)) + "(" +
                         std::to_string(seen[ModelKey(child.name)]++) + ")",
                     child);
            }
            ASSERT_EQ(count, index);
            ASSERT_EQ(ItemAt(o, path, index).status, kBadIndex);
        };
        walk(walk, "", model.root);
    }
}

TEST(Props, ManyThreads) {
    Object o;
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([&o, t] {
            for (int i = 0; i < 300; ++i) {
                const std::string name = "n" + std::to_string(i % 7) + "::a" + std::to_string(t);
                Out out;
                const Bstr key = B(name), value = B(std::to_string(i));
                EXPECT_EQ(o.Store().GetInt(T("n0::q"), 5), 5);
                bool changed = false;
                EXPECT_EQ(o.Store().Set(key.view(), value.get(), changed), S_OK);
                EXPECT_EQ(o.Store().Get(key.view(), out), S_OK);
                EXPECT_EQ(out.Said(), std::to_string(i));
            }
        });
    for (std::thread &thread : threads) thread.join();
    int32_t count = -1;
    EXPECT_EQ(o->PropsGetCount(nullptr, &count), S_OK);
    EXPECT_EQ(count, 7);
}

}    // namespace
}    // namespace conformance
