// Descriptions and options of settings.
#include <gtest/gtest.h>

#include "tests/conformance/props_object.h"

namespace conformance {
namespace {

constexpr HRESULT kNoFile = static_cast<HRESULT>(0x80070002);

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
    PropsObject o;
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
    PropsObject o;
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
    PropsObject o;
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

}    // namespace
}    // namespace conformance
