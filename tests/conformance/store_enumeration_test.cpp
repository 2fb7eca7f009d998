// Settings by index.
#include <gtest/gtest.h>

#include "tests/conformance/props_object.h"

namespace conformance {
namespace {

TEST(Props, Enumeration) {
    PropsObject o;
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
    PropsObject o;
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
    PropsObject plain;
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
    PropsObject empty;
    empty.Fill("<z a='1'><attributes_info/></z>");
    EXPECT_EQ(empty->PropsGetCount(nullptr, &count), S_OK);
    EXPECT_EQ(count, 2);
    // A node that bears the name.
    PropsObject node;
    node.Fill("<z><_info_ q='1'/></z>");
    EXPECT_EQ(ItemAt(node, "_info_", 0), (Item{S_OK, "q", "1", 0}));
}

}    // namespace
}    // namespace conformance
