// Lists of attributes, both ways, against tables and a slow model.
#include <gtest/gtest.h>

#include <random>

#include "tests/conformance/xml_model.h"
#include "xml/attribute_list.h"

namespace conformance {
namespace {

using namespace zck::XMLParse;

TEST(Lists, Table) {
    const struct {
        const char *text;
        bool any;
        const char *dump;
    } rows[] = {{"", false, "<n></>"},
                {"a=1", true, "<n a={1}></>"},
                {"a=1 b=2", true, "<n a={1} b={2}></>"},
                {"  a \r\n=\t 1  ", true, "<n a={1}></>"},
                {"a='x y' b=\"'q'\"", true, "<n a={x y} b={'q'}></>"},
                {"a='x\"y'b=2", true, "<n a={x\"y} b={2}></>"},
                {"a='open b=2", true, "<n a={open b=2}></>"},
                {"a=x'y z' b=1", true, "<n a={x'y} b={1}></>"},
                {"a=", false, "<n></>"},
                {"a=1 b=", true, "<n a={1}></>"},
                {"a= b=2", true, "<n a={b=2}></>"},
                {"a=''", true, "<n a={}></>"},
                {"=1", false, "<n></>"},
                {"=1 b=2", true, "<n b={2}></>"},
                {"bare", false, "<n></>"},
                {"bare a=1 too", true, "<n a={1}></>"},
                {"bare = 1", true, "<n bare={1}></>"},
                {"a=&lt;&#65;", true, "<n a={&lt;&#65;}></>"},
                {"a=1 A=2", true, "<n a={2}></>"},
                {"a;b=1,2;3", true, "<n a;b={1,2;3}></>"},
                {"a=<b>", true, "<n a={<b>}></>"},
                {"x::y=1", true, "<n x::y={1}></>"},
                {"a=1\xEF\xBB\xBF"
                 "b=2",
                 true, "<n a={1} b={2}></>"}};
    for (const auto &row : rows) {
        const XMLNodePtr node = CoXMLNode::Create(T("n"));
        EXPECT_EQ(ParseAttributes(*node, T(row.text), 1, ListNames::Flat), row.any) << row.text;
        EXPECT_EQ(Dump(*node), row.dump) << row.text;
    }
}

TEST(Lists, Modes) {
    const auto after = [](int32_t mode, ListNames names, std::string_view text, BareNames bare = BareNames::Drop) {
        const XMLNodePtr node = CoXMLNode::Create(T("n"));
        ParseAttributes(*node, T("Old=1 a=2"), 1, ListNames::Flat);
        const bool any = ParseAttributes(*node, T(text), mode, names, bare);
        return (any ? "" : "none ") + Dump(*node);
    };
    EXPECT_EQ(after(0, ListNames::Flat, "old=9 A=9 b=9"), "<n Old={1} a={2} b={9}></>");
    EXPECT_EQ(after(0, ListNames::Flat, "old=9"), "<n Old={1} a={2}></>");
    EXPECT_EQ(after(1, ListNames::Flat, "old=9 b=9"), "<n Old={9} a={2} b={9}></>");
    EXPECT_EQ(after(5, ListNames::Flat, "old=9"), "<n Old={9} a={2}></>");
    EXPECT_EQ(after(2, ListNames::Flat, "b=9"), "<n b={9}></>");
    EXPECT_EQ(after(2, ListNames::Flat, ""), "none <n></>");
    EXPECT_EQ(after(1, ListNames::Paths, "x::y=3 x(1)::z=4 a=5"), "<n Old={1} a={5}><x y={3}></><x z={4}></></>");
    EXPECT_EQ(after(0, ListNames::Paths, "x::y=3 x::Y=4 a=5"), "<n Old={1} a={2}><x y={3}></></>");
    EXPECT_EQ(after(1, ListNames::Flat, "bare", BareNames::Store), "<n Old={1} a={2} bare={}></>");
    EXPECT_EQ(after(1, ListNames::Flat, "bare"), "none <n Old={1} a={2}></>");
    EXPECT_EQ(after(0, ListNames::Flat, "a", BareNames::Store), "<n Old={1} a={2}></>");
    EXPECT_EQ(after(1, ListNames::Paths, "::y=3 b=1"), "<n Old={1} a={2} b={1}></>");
}

TEST(Lists, AsTheModel) {
    std::mt19937 random(43);
    const char *const parts[] = {"a", "B",  "bb",   "=", " = ", "'",    "\"",    "1",       "x y",
                                 " ", "\t", "\r\n", ";", "<",   "a=1 ", "b='2'", "C=\"3\" "};
    for (int i = 0; i < 40000; ++i) {
        const XMLNodePtr node = CoXMLNode::Create(T("n"));
        ModelNode model{T("n"), false, {}, {}};
        std::string s;
        for (int round = 0; round < 2; ++round) {
            s.clear();
            for (size_t k = random() % 9; k-- > 0;) s += OneOf(random, parts);
            const int mode = static_cast<int>(random() % 3);
            const bool bare = random() % 2 == 0;
            ASSERT_EQ(ParseAttributes(*node, T(s), mode, ListNames::Flat, bare ? BareNames::Store : BareNames::Drop),
                      ModelList(model, T(s), mode, bare))
                << s;
            ASSERT_EQ(Dump(*node), Dump(model)) << s;
        }
        const Text list = WriteAttributes(*node, false);
        Text want;
        for (const auto &[name, value] : model.attributes) want += T(" ") + name + T("=") + ModelQuote(value);
        ASSERT_EQ(Say(list), Say(want).substr(want.empty() ? 0 : 1));
    }
}

TEST(Lists, Written) {
    const XMLNodePtr node = CoXMLNode::Create(T("n"));
    EXPECT_EQ(Say(WriteAttributes(*node, true)), "");
    node->AttributeSet(T("a"), TextView(T("1")));
    node->AttributeSet(T("B"), TextView(T("it's \"so\"")));
    node->AttributeSet(T("c"), TextView(T("<&>\"")));
    EXPECT_EQ(Say(WriteAttributes(*node, true)), "a='1' B=\"it's 'so'\" c='<&>\"'");
    EXPECT_EQ(Say(WriteAttributes(*node, false, T("p::"))), "p::a='1' p::B=\"it's 'so'\" p::c='<&>\"'");
    node->TextSet(T("it's"));
    EXPECT_EQ(Say(WriteAttributes(*node, true)), "_node_value=\"it's\" a='1' B=\"it's 'so'\" c='<&>\"'");
    EXPECT_EQ(Say(WriteAttributes(*node, false)), "a='1' B=\"it's 'so'\" c='<&>\"'");
}

}    // namespace
}    // namespace conformance
