#include "xml/node.h"

#include <gtest/gtest.h>

#include "tests/xml/say.h"

namespace zck::XMLParse {
namespace {

TEST(Node, ChildrenOfOneNameAreReachedByIndex) {
    const XMLNodePtr root = CoXMLNode::Create(In("root"));
    const XMLNodePtr first = root->ChildAdd(In("key"));
    root->ChildAdd(In("other"));
    const XMLNodePtr second = root->ChildAdd(In("KEY"));
    EXPECT_EQ(root->NodeFind(In("key")), first);
    EXPECT_EQ(root->NodeFind(In("key(0)")), first);
    EXPECT_EQ(root->NodeFind(In("Key(1)")), second);
    EXPECT_FALSE(root->NodeFind(In("key(2)")));
    EXPECT_FALSE(root->NodeFind(In("key(-1)")));
}

}    // namespace
}    // namespace zck::XMLParse
