// Settings whose owner forwards them or is told of changes.
#include <gtest/gtest.h>

#include "tests/conformance/props_object.h"

namespace conformance {
namespace {

TEST(Props, ForwardingHook) {
    PropsObject o, other;
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
    PropsObject o;
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

}    // namespace
}    // namespace conformance
