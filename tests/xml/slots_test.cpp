// The table of a node is a contract with other modules: the order of its slots must not move.
#include <gtest/gtest.h>

#include "tests/support/slot.h"
#include "xml/node_views.h"

namespace {

using zck::test::Slot;

TEST(NodeSlots, Attributes) {
    EXPECT_EQ(3U, Slot(&IZAttributes::AttributesGetCount));
    EXPECT_EQ(4U, Slot(&IZAttributes::AttributesGetByIndex));
    EXPECT_EQ(5U, Slot(&IZAttributes::AttributesRemove));
    EXPECT_EQ(6U, Slot(&IZAttributes::AttributesRemoveAll));
    EXPECT_EQ(7U, Slot(&IZAttributes::AttributesSetString));
    EXPECT_EQ(8U, Slot(&IZAttributes::AttributesSetBool));
    EXPECT_EQ(9U, Slot(&IZAttributes::AttributesSetInt));
    EXPECT_EQ(10U, Slot(&IZAttributes::AttributesSetDouble));
    EXPECT_EQ(11U, Slot(&IZAttributes::AttributesGet));
    EXPECT_EQ(12U, Slot(&IZAttributes::AttributesGetString));
    EXPECT_EQ(13U, Slot(&IZAttributes::AttributesGetInt));
    EXPECT_EQ(14U, Slot(&IZAttributes::AttributesGetBool));
    EXPECT_EQ(15U, Slot(&IZAttributes::AttributesGetDouble));
    EXPECT_EQ(16U, Slot(&IZAttributes::AttributesSetList));
    EXPECT_EQ(17U, Slot(&IZAttributes::AttributesGetList));
    EXPECT_EQ(18U, Slot(&IZAttributes::AttributesClone));
    EXPECT_EQ(19U, Slot(&IZAttributes::AttributesCopyFrom));
    EXPECT_EQ(20U, Slot(&IZAttributes::AttributesInfoGetCount));
    EXPECT_EQ(21U, Slot(&IZAttributes::AttributesInfoGetName));
    EXPECT_EQ(22U, Slot(&IZAttributes::AttributesInfoGet));
    EXPECT_EQ(23U, Slot(&IZAttributes::AttributesOptionInfoGet));
}

TEST(NodeSlots, NodeContinuesThem) {
    EXPECT_EQ(3U, Slot(&IZNode::AttributesGetCount));
    EXPECT_EQ(24U, Slot(&IZNode::NodeNameGet));
    EXPECT_EQ(25U, Slot(&IZNode::NodeNameSet));
    EXPECT_EQ(26U, Slot(&IZNode::NodeValueGet));
    EXPECT_EQ(27U, Slot(&IZNode::NodeValueSet));
    EXPECT_EQ(28U, Slot(&IZNode::NodePathGet));
    EXPECT_EQ(29U, Slot(&IZNode::NodeParentGet));
    EXPECT_EQ(30U, Slot(&IZNode::NodeDetach));
    EXPECT_EQ(31U, Slot(&IZNode::NodeChildGetCount));
    EXPECT_EQ(32U, Slot(&IZNode::NodeChildGetByIndex));
    EXPECT_EQ(33U, Slot(&IZNode::NodeChildAdd));
    EXPECT_EQ(34U, Slot(&IZNode::NodeChildGet));
    EXPECT_EQ(35U, Slot(&IZNode::NodeChildRemove));
    EXPECT_EQ(36U, Slot(&IZNode::NodeChildRemoveAll));
    EXPECT_EQ(37U, Slot(&IZNode::NodeLoadXML));
    EXPECT_EQ(38U, Slot(&IZNode::NodeSaveXML));
    EXPECT_EQ(39U, Slot(&IZNode::NodeClone));
    EXPECT_EQ(40U, Slot(&IZNode::NodeReserved));
    EXPECT_EQ(41U, Slot(&IZNode::NodeAttributeInfoGet));
}

}    // namespace
