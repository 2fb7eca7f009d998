// One tree in the hands of several threads.
#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

#include "tests/xml/say.h"
#include "xml/node.h"

namespace zck::XMLParse {
namespace {

constexpr int kRounds = 2000;

template <class... Bodies>
void RunTogether(Bodies... bodies) {
    std::vector<std::thread> threads;
    (threads.emplace_back(bodies), ...);
    for (std::thread &thread : threads) thread.join();
}

TEST(Threads, AMissingChildIsMadeOnce) {
    for (int round = 0; round < 200; ++round) {
        const XMLNodePtr root = CoXMLNode::Create(In("root"));
        const auto make = [&] { root->NodeFindOrCreate(In("a::b")); };
        RunTogether(make, make, make);
        EXPECT_EQ(Line(root), "<root><a><b/></a></root>");
    }
}

TEST(Threads, ReadersOfOneValueInTwoTypes) {
    const XMLNodePtr root = Tree("<a n='12'/>");
    std::atomic<int> wrong{0};
    const auto ints = [&] {
        for (int i = 0; i < kRounds; ++i) wrong += root->IntGet(In("n")) != 12;
    };
    const auto texts = [&] {
        for (int i = 0; i < kRounds; ++i) {
            Text text;
            wrong += !root->AttributeText(In("n"), text) || text != In("12");
            wrong += root->FloatGet(In("n")) != 12.0;
        }
    };
    RunTogether(ints, texts, ints);
    EXPECT_EQ(wrong, 0);
}

TEST(Threads, ChangesAndReadsOfOneTree) {
    const XMLNodePtr root = Tree("<a><b/></a>");
    std::atomic<bool> end{false};
    const auto change = [&] {
        for (int i = 0; i < kRounds; ++i) {
            root->IntSet(In("b::c::n"), i);
            root->TextSet(In("text"));
            const XMLNodePtr b = root->NodeFind(In("b"));
            if (b) b->NameSet(In(i % 2 != 0 ? "b" : "other"));
            if (i % 8 == 0) root->NodeRemove(In("b"));
            if (i % 32 == 0) ParseXML(*root, In("<a x='1'><b/>text</a>"));
        }
        end = true;
    };
    const auto read = [&] {
        while (!end) {
            root->IntGet(In("b::c::n"));
            Line(root);
            if (const XMLNodePtr c = root->NodeFind(In("b::c"))) {
                c->PathGet();
                c->ParentGet();
            }
            root->CopyTree(In("copy"));
        }
    };
    RunTogether(change, read, read);
    EXPECT_TRUE(root->ChildCount(Children::All) > 0);
}

TEST(Threads, AChildAsksForAParentThatDies) {
    for (int i = 0; i < kRounds; ++i) {
        XMLNodePtr root = CoXMLNode::Create(In("root"));
        const XMLNodePtr child = root->ChildAdd(In("child"));
        std::thread asker([&child] {
            const XMLNodePtr parent = child->ParentGet();
            if (parent) {
                EXPECT_EQ(Say(parent->NameGet()), "root");
            }
        });
        root.Reset();
        asker.join();
        EXPECT_FALSE(child->ParentGet());
    }
}

}    // namespace
}    // namespace zck::XMLParse
