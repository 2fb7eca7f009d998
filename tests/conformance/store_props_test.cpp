// Settings through `IZProps`: names, values, nodes, removal, the names that are worked out, threads.
#include <gtest/gtest.h>

#include <cctype>
#include <cstdio>
#include <thread>
#include <vector>

#include "tests/conformance/props_object.h"

namespace conformance {
namespace {

TEST(Props, StartEmpty) {
    PropsObject o;
    EXPECT_EQ(o.Get(""), Good("<z-props/>"));
    EXPECT_EQ(o.Get("a"), None());
    int32_t count = -1;
    EXPECT_EQ(o->PropsGetCount(nullptr, &count), S_OK);
    EXPECT_EQ(count, 0);
}

TEST(Props, MembersTurnAPropertyIntoANode) {
    PropsObject o;
    EXPECT_EQ(o.Set("a::b", "1"), S_OK);
    EXPECT_EQ(o.Tree(), "<z-props><a b={1}></></>");
    EXPECT_EQ(o.Get("a"), Good("b='1'"));
    EXPECT_EQ(o.Get("A::B"), Good("1"));
    PropsObject p;
    EXPECT_EQ(p.Set("a", "x"), S_OK);
    EXPECT_EQ(p.Set("A::b", "1"), S_OK);
    EXPECT_EQ(p.Tree(), "<z-props><A b={1}>[x]</></>");
    EXPECT_EQ(p.Get("a"), Good("x"));
    EXPECT_EQ(p.Set("a", "y"), S_OK);    // the node takes it now
    EXPECT_EQ(p.Tree(), "<z-props><A b={1}>[y]</></>");
    // Only the direct parent, and also when a node takes the value.
    PropsObject q;
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
    PropsObject o;
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
    PropsObject o;
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
    PropsObject o;
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
    PropsObject o;
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
    PropsObject o;
    o.Store().RootSet(zck::XMLParse::XMLNodePtr());
    EXPECT_EQ(o.Set("a", "1"), E_FAIL);
    EXPECT_EQ(o.Set("", "1"), E_FAIL);
    EXPECT_EQ(o.Get("a"), Line(E_FAIL, "<null>"));
    EXPECT_EQ(o.Get(""), Line(E_FAIL, "<null>"));
    Out out;
    EXPECT_EQ(o->PropsGet(B("dll-date").get(), out), S_OK);
}

TEST(Props, Removal) {
    PropsObject o;
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

TEST(Props, TypedReadsOfTheOwner) {
    PropsObject o;
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

TEST(Props, ManyThreads) {
    PropsObject o;
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
