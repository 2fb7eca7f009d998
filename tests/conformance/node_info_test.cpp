// What a tree describes of its attributes.
#include <gtest/gtest.h>

#include "tests/conformance/node_tools.h"

namespace conformance {
namespace {

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
