#include "platform/status.h"
#include "tests/props/store/props_object.h"

namespace zck {
namespace {

using PropsEnumTest = PropsTest;

TEST_F(PropsEnumTest, AttributesComeBeforeNodes) {
    ASSERT_EQ(Set("", "<n a='1' b='2'>text<c d='3'/>more<e>f</e></n>"), S_OK);
    EXPECT_EQ(Count(""), "4");
    EXPECT_EQ(At("", 0), "a=1");
    EXPECT_EQ(At("", 1), "b=2");
    EXPECT_EQ(At("", 2), "c=/");
    EXPECT_EQ(At("", 3), "e=f/");
    EXPECT_EQ(At("", 4), kBadIndex);
    EXPECT_EQ(At("", -1), kBadIndex);
    EXPECT_EQ(Count("c"), "1");
    EXPECT_EQ(At("c", 0), "d=3");
    EXPECT_EQ(At("e", 0), kBadIndex);
}

TEST_F(PropsEnumTest, MissingNodeIsRefused) {
    EXPECT_EQ(Count("x"), kBadArgument);
    EXPECT_EQ(At("x", 0), kBadArgument);
    EXPECT_EQ(m_props->PropsGetCount(nullptr, nullptr), E_POINTER);
}

TEST_F(PropsEnumTest, OutputsMayBeMissing) {
    ASSERT_EQ(Set("a", "1"), S_OK);
    EXPECT_EQ(m_props->PropsGetByIndex(nullptr, 0, nullptr, nullptr, nullptr), S_OK);
    int32_t isNode = 5;
    EXPECT_EQ(m_props->PropsGetByIndex(nullptr, 9, nullptr, nullptr, &isNode), kErrorInvalidIndex);
    EXPECT_EQ(isNode, 0);
}

constexpr const char *kDescribed =
    "<n a='1' x='9'>"
    "<attributes_info><a type='int' default='5' min='0' max='10' values='1|2 3|4'>Help of a<2>x</2></a>"
    "<b type='bool' default='true'>Help of b</b></attributes_info>"
    "<c d='1'/></n>";

TEST_F(PropsEnumTest, DescribedAttributesAreEnumeratedByThemselves) {
    ASSERT_EQ(Set("", kDescribed), S_OK);
    EXPECT_EQ(Count(""), "2");
    EXPECT_EQ(At("", 0), "a=1");
    // Described and not set.
    EXPECT_EQ(At("", 1), "b=");
    EXPECT_EQ(At("", 2), kBadIndex);
    EXPECT_EQ(At("", -1), kBadIndex);
}

TEST_F(PropsEnumTest, ModeSaysWhatIsEnumerated) {
    ASSERT_EQ(Set("", kDescribed), S_OK);
    EXPECT_EQ(Set("_INFO_ENUM_", "no"), S_OK);
    EXPECT_EQ(Count(""), "4");
    EXPECT_EQ(At("", 1), "x=9");
    EXPECT_EQ(At("", 2), "attributes_info=/");
    EXPECT_EQ(Set("_info_enum_", ""), S_OK);
    EXPECT_EQ(Count(""), "2");
    EXPECT_EQ(Set("_info_enum_", "yes"), S_OK);
    EXPECT_EQ(Count(""), "2");
    ASSERT_EQ(Set("", "<n a='1'/>"), S_OK);
    EXPECT_EQ(Count(""), "0");
    EXPECT_EQ(At("", 0), kBadIndex);
    EXPECT_EQ(Get("_info_enum_"), kAbsent);
}

TEST_F(PropsEnumTest, InfoNameWalksTheRootsDescriptions) {
    ASSERT_EQ(Set("", kDescribed), S_OK);
    ASSERT_EQ(Set("_info_enum_", "0"), S_OK);
    EXPECT_EQ(At("_Info_", 0), "a=1");
    EXPECT_EQ(At("_info_", 1), "b=");
    EXPECT_EQ(At("_info_", 2), kBadIndex);
    EXPECT_EQ(At("_info_", -1), kBadIndex);
    EXPECT_EQ(Count("_info_"), kBadArgument);
}

TEST_F(PropsEnumTest, InfoByType) {
    ASSERT_EQ(Set("", kDescribed), S_OK);
    EXPECT_EQ(Info("a", eZIT_Help), "Help of a");
    EXPECT_EQ(Info("A", eZIT_Type), "int");
    EXPECT_EQ(Info("a", eZIT_Default), "5");
    EXPECT_EQ(Info("a", eZIT_Values), "1|2 3|4");
    EXPECT_EQ(Info("a", eZIT_Min), "0");
    EXPECT_EQ(Info("a", eZIT_Max), "10");
    EXPECT_EQ(Info("b", eZIT_Min), kAbsent);
    EXPECT_EQ(Info("x", eZIT_Help), kAbsent);
}

TEST_F(PropsEnumTest, InfoRefusesBadArguments) {
    EXPECT_EQ(m_props->PropsInfoGet(nullptr, eZIT_Node, nullptr), E_POINTER);
    EXPECT_EQ(Info("", eZIT_Help), kBadArgument);
    EXPECT_EQ(Info("a", eZIT_Node), kBadArgument);
    EXPECT_EQ(Info("a", static_cast<eZInfoType>(7)), kBadArgument);
    EXPECT_EQ(Info("a", static_cast<eZInfoType>(-1)), kBadArgument);
}

TEST_F(PropsEnumTest, ParentDescribesItsChildren) {
    ASSERT_EQ(Set("", "<n q='1'><attributes_info><size type='int'/></attributes_info><font size='12'/></n>"), S_OK);
    EXPECT_EQ(Info("font::size", eZIT_Type), "int");
}

TEST_F(PropsEnumTest, InheritFalseStopsAtItsLevel) {
    ASSERT_EQ(Set("",
                  "<n q='1'><attributes_info><size type='int'/></attributes_info>"
                  "<font size='12'><attributes_info inherit='false'><w type='real'/></attributes_info></font></n>"),
              S_OK);
    EXPECT_EQ(Info("font::w", eZIT_Type), "real");
    EXPECT_EQ(Info("font::size", eZIT_Type), kAbsent);
}

TEST_F(PropsEnumTest, ClassNodesDescribeByNodeName) {
    ASSERT_EQ(Set("",
                  "<n q='1'><attributes_info>"
                  "<font inherit='base'><size type='int'/></font><base><color type='color'/></base>"
                  "</attributes_info><m><font size='12'/><font.small size='1'/></m></n>"),
              S_OK);
    EXPECT_EQ(Info("m::font::size", eZIT_Type), "int");
    // The class goes on in another.
    EXPECT_EQ(Info("m::font::color", eZIT_Type), "color");
    // The part before the first dot serves when there is no class of the whole name.
    EXPECT_EQ(Info("m::font.small::size", eZIT_Type), "int");
    EXPECT_EQ(Info("m::font::other", eZIT_Type), kAbsent);
}

TEST_F(PropsEnumTest, ClassesThatInheritInACircleEnd) {
    ASSERT_EQ(Set("",
                  "<n q='1'><attributes_info><font inherit='base'/><base inherit='font'/></attributes_info>"
                  "<m><font size='12'/></m></n>"),
              S_OK);
    EXPECT_EQ(Info("m::font::size", eZIT_Type), kAbsent);
}

TEST_F(PropsEnumTest, ValuesComeFromElsewhere) {
    ASSERT_EQ(Set("",
                  "<n q='1'><attributes_info><a select_from='list'/><b select_from='pool::names'/>"
                  "<c><one x='1'/><two>help</two></c><d select_from='list'><only/></d><list values='u|v'/></attributes_info>"
                  "<pool><names values='w x'/></pool></n>"),
              S_OK);
    EXPECT_EQ(Info("a", eZIT_Values), "u|v");
    EXPECT_EQ(Info("b", eZIT_Values), "w x");
    // Without any: the names of the children.
    EXPECT_EQ(Info("c", eZIT_Values), "one|two");
    EXPECT_EQ(Info("d", eZIT_Values), "only");
}

TEST_F(PropsEnumTest, OptionsByIndex) {
    ASSERT_EQ(Set("", kDescribed), S_OK);
    int32_t count = -7;
    EXPECT_EQ(m_props->PropsOptionGetCount(Of("a").get(), &count), S_OK);
    EXPECT_EQ(count, 3);
    Bstr value;
    Bstr help;
    EXPECT_EQ(m_props->PropsOptionGetByIndex(Of("a").get(), 1, value.Put(), help.Put()), S_OK);
    EXPECT_EQ(Say(value.view()), "2 3");
    EXPECT_EQ(m_props->PropsOptionGetByIndex(Of("a").get(), 3, value.Put(), help.Put()), kErrorInvalidIndex);
    EXPECT_EQ(m_props->PropsOptionGetByIndex(Of("a").get(), -1, value.Put(), nullptr), kErrorInvalidIndex);
    EXPECT_EQ(m_props->PropsOptionGetCount(Of("unknown").get(), &count), S_OK);
    EXPECT_EQ(count, 0);
    EXPECT_EQ(m_props->PropsOptionGetCount(Of("").get(), &count), E_INVALIDARG);
    EXPECT_EQ(m_props->PropsOptionGetCount(Of("a").get(), nullptr), E_POINTER);
}

TEST_F(PropsEnumTest, OptionHelpIsTheTextOfTheOptionsNode) {
    ASSERT_EQ(Set("", "<n m='two'><attributes_info><m values='one|two'><two>the second</two></m></attributes_info></n>"), S_OK);
    Bstr value;
    Bstr help;
    EXPECT_EQ(m_props->PropsOptionGetByIndex(Of("m").get(), 1, value.Put(), help.Put()), S_OK);
    EXPECT_EQ(Say(help.view()), "the second");
    EXPECT_EQ(m_props->PropsOptionGetByIndex(Of("m").get(), 0, value.Put(), help.Put()), S_OK);
    EXPECT_EQ(Say(help.view()), "");
    int32_t index = -7;
    EXPECT_EQ(m_props->PropsOptionGet(Of("m").get(), &index, value.Put(), help.Put()), S_OK);
    EXPECT_EQ(index, 1);
    EXPECT_EQ(Say(value.view()), "two");
    EXPECT_EQ(Say(help.view()), "the second");
}

TEST_F(PropsEnumTest, OptionIsSetByItsIndex) {
    ASSERT_EQ(Set("", kDescribed), S_OK);
    EXPECT_EQ(m_props->PropsOptionSetByIndex(Of("a").get(), 1), S_OK);
    EXPECT_EQ(Get("a"), "2 3");
    EXPECT_EQ(m_object->m_changed.substr(m_object->m_changed.size() - 6), "a=2 3;");
    EXPECT_EQ(m_props->PropsOptionSetByIndex(Of("a").get(), 3), kErrorInvalidIndex);
    EXPECT_EQ(m_props->PropsOptionSetByIndex(Of("a").get(), -1), kErrorInvalidIndex);
    EXPECT_EQ(m_props->PropsOptionSetByIndex(Of("").get(), 0), E_INVALIDARG);
}

TEST_F(PropsEnumTest, CurrentOption) {
    ASSERT_EQ(Set("", "<n a='Two'><attributes_info><a values='one|two'/><b values='one'/></attributes_info></n>"), S_OK);
    int32_t index = 5;
    Bstr value;
    // Compared with case, so it is none of them.
    EXPECT_EQ(m_props->PropsOptionGet(Of("a").get(), &index, value.Put(), nullptr), S_OK);
    EXPECT_EQ(index, -1);
    EXPECT_EQ(Say(value.view()), "Two");
    index = 5;
    EXPECT_EQ(m_props->PropsOptionGet(Of("b").get(), &index, value.Put(), nullptr), kErrorFileNotFound);
    EXPECT_EQ(index, -1);
    EXPECT_EQ(m_props->PropsOptionGet(Of("").get(), &index, value.Put(), nullptr), E_INVALIDARG);
    EXPECT_EQ(m_props->PropsOptionGet(Of("a").get(), nullptr, nullptr, nullptr), S_OK);
}

}    // namespace
}    // namespace zck
