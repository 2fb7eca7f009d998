#include <gtest/gtest.h>

#include "tests/xml/say.h"
#include "xml/node.h"

namespace zck::XMLParse {
namespace {

/// What the search from a node finds, by the description's text.
std::string Help(const XMLNodePtr &node, std::string_view attribute) {
    const XMLNodePtr info = node->InfoFind(In(attribute));
    return info ? Say(CoXMLNode::InfoText(*info, eZIT_Help)) : "none";
}

std::string Info(const XMLNodePtr &node, std::string_view attribute, eZInfoType type) {
    const XMLNodePtr info = node->InfoFind(In(attribute));
    return info ? Say(CoXMLNode::InfoText(*info, type)) : "none";
}

constexpr const char *kTree =
    "<root>"
    "  <attributes_info><size>root size</size><level>root level</level>"
    "    <blur inherit='filter'><radius>blur radius</radius></blur>"
    "    <filter inherit='blur'><kind>filter kind</kind></filter>"
    "  </attributes_info>"
    "  <mid><attributes_info><size>mid size</size></attributes_info></mid>"
    "  <shut><attributes_info inherit='false'><size>shut size</size></attributes_info></shut>"
    "  <effects><blur.fast/><blur/><other/></effects>"
    "</root>";

TEST(AttributeInfo, OwnThenParent) {
    const XMLNodePtr root = Tree(kTree);
    EXPECT_EQ(Help(root, "size"), "root size");
    EXPECT_EQ(Help(root, "SIZE"), "root size");
    EXPECT_EQ(Help(root->NodeFind(In("mid")), "size"), "mid size");
    EXPECT_EQ(Help(root->NodeFind(In("mid")), "level"), "root level");
    EXPECT_EQ(Help(root, "mid::level"), "root level");
    EXPECT_EQ(Help(root, "missing::level"), "none");
    EXPECT_EQ(Help(root, "nothing"), "none");
}

TEST(AttributeInfo, InheritFalseEndsTheSearch) {
    const XMLNodePtr shut = Tree(kTree)->NodeFind(In("shut"));
    EXPECT_EQ(Help(shut, "size"), "shut size");
    EXPECT_EQ(Help(shut, "level"), "none");
}

TEST(AttributeInfo, ClassesFurtherUp) {
    const XMLNodePtr root = Tree(kTree);
    const XMLNodePtr blur = root->NodeFind(In("effects::blur"));
    EXPECT_EQ(Help(blur, "radius"), "blur radius");
    EXPECT_EQ(Help(blur, "kind"), "filter kind");
    // Not the whole name, but its part before the dot.
    EXPECT_EQ(Help(root->NodeFind(In("effects::blur.fast")), "radius"), "blur radius");
    EXPECT_EQ(Help(root->NodeFind(In("effects::other")), "radius"), "none");
    // The two classes continue in each other.
    EXPECT_EQ(Help(blur, "missing"), "none");
}

TEST(AttributeInfo, PlaceIsTheFirstThatDescribesAnything) {
    const XMLNodePtr root = Tree(kTree);
    EXPECT_EQ(root->InfoPlace()->ChildCount(Children::Elements), 4U);
    EXPECT_EQ(root->NodeFind(In("mid"))->InfoPlace()->ChildCount(Children::Elements), 1U);
    EXPECT_EQ(Say(root->NodeFind(In("effects::blur.fast"))->InfoPlace()->NameGet()), "blur");
    EXPECT_FALSE(root->NodeFind(In("effects::other"))->InfoPlace());
    EXPECT_FALSE(Tree("<a><attributes_info/></a>")->InfoPlace());
    EXPECT_FALSE(Tree("<r><attributes_info><x/></attributes_info><a><attributes_info inherit='no'/></a></r>")
                     ->NodeFind(In("a"))
                     ->InfoPlace());
}

TEST(AttributeInfo, Pieces) {
    const XMLNodePtr root =
        Tree("<r><attributes_info><n type='integer' default='4' min='1' max='9' values='1|2'>help</n></attributes_info></r>");
    EXPECT_EQ(Info(root, "n", eZIT_Help), "help");
    EXPECT_EQ(Info(root, "n", eZIT_Type), "integer");
    EXPECT_EQ(Info(root, "n", eZIT_Default), "4");
    EXPECT_EQ(Info(root, "n", eZIT_Values), "1|2");
    EXPECT_EQ(Info(root, "n", eZIT_Min), "1");
    EXPECT_EQ(Info(root, "n", eZIT_Max), "9");
    EXPECT_EQ(Info(root, "n", eZIT_Node), "");
}

TEST(AttributeInfo, ValuesFromOptionsOrFromElsewhere) {
    const XMLNodePtr root = Tree(
        "<r><lists><far values='f g'/></lists><attributes_info>"
        "<opts><one/>text<two/></opts>"
        "<near select_from='other'/><other values='x y'/>"
        "<away select_from='lists::far'/><lost select_from='nowhere'/>"
        "<both select_from='other'><three/></both>"
        "<cls><deep select_from='other'/></cls>"
        "</attributes_info><m><cls/></m></r>");
    EXPECT_EQ(Info(root, "opts", eZIT_Values), "one|two");
    EXPECT_EQ(Info(root, "near", eZIT_Values), "x y");
    EXPECT_EQ(Info(root, "away", eZIT_Values), "f g");
    EXPECT_EQ(Info(root, "lost", eZIT_Values), "");
    EXPECT_EQ(Info(root, "both", eZIT_Values), "three");
    EXPECT_EQ(Info(root->NodeFind(In("m::cls")), "deep", eZIT_Values), "x y");
}

}    // namespace
}    // namespace zck::XMLParse
