#include "frames/data/name_map.h"

#include <gtest/gtest.h>

namespace zck {
namespace {

TEST(NameMap, KeepsTheOrderOfFirstInsertion) {
    NameMap<int> map;
    map.Set(ZCK_TEXT("b"), 1);
    map.Set(ZCK_TEXT("a"), 2);
    map.Set(ZCK_TEXT("c"), 3);
    EXPECT_EQ(2, map.Set(ZCK_TEXT("A"), 4));
    ASSERT_EQ(3U, map.Count());
    EXPECT_EQ(Text(ZCK_TEXT("a")), map.Name(1));
    EXPECT_EQ(4, map.At(1));
    int removed = 0;
    EXPECT_TRUE(map.Remove(ZCK_TEXT("B"), removed));
    EXPECT_EQ(1, removed);
    EXPECT_FALSE(map.Remove(ZCK_TEXT("B"), removed));
    ASSERT_EQ(2U, map.Count());
    EXPECT_EQ(Text(ZCK_TEXT("a")), map.Name(0));
    EXPECT_EQ(3, *map.Find(ZCK_TEXT("C")));
    EXPECT_EQ(nullptr, map.Find(ZCK_TEXT("d")));
}

// Only the low byte of each character counts, with one bit set.
TEST(NameMap, NamesMeetByTheirKeys) {
    NameMap<int> map;
    map.Set(ZCK_TEXT("_"), 1);
    EXPECT_EQ(1, map.Set(ZCK_TEXT("\x7F"), 2));
    map.Set(ZCK_TEXT("a"), 3);
    EXPECT_EQ(3, map.Set(ZCK_TEXT("\u0141"), 4));
    EXPECT_EQ(4, map.Set(ZCK_TEXT("A"), 5));
    ASSERT_EQ(2U, map.Count());
    EXPECT_EQ(Text(ZCK_TEXT("_")), map.Name(0));
    EXPECT_EQ(nullptr, map.Find(ZCK_TEXT("a ")));
    map.Set(TextView(), 6);
    EXPECT_EQ(6, *map.Find(TextView()));
}

// What a map of any size is held against: pairs in a row.
class Walked {
public:
    int Set(const Text &name, int value) {
        for (auto &[held, old] : m_pairs) {
            if (NameKey(held) == NameKey(name)) return std::exchange(old, value);
        }
        m_pairs.emplace_back(name, value);
        return 0;
    }
    bool Remove(const Text &name) {
        return std::erase_if(m_pairs, [&](const auto &pair) { return NameKey(pair.first) == NameKey(name); }) != 0;
    }
    std::vector<std::pair<Text, int>> m_pairs;
};

void ExpectSame(const NameMap<int> &map, const Walked &walked) {
    ASSERT_EQ(walked.m_pairs.size(), map.Count());
    for (size_t i = 0; i < map.Count(); ++i) {
        ASSERT_EQ(walked.m_pairs[i].first, map.Name(i));
        ASSERT_EQ(walked.m_pairs[i].second, map.At(i));
        ASSERT_EQ(&map.At(i), map.Find(map.Name(i)));
    }
}

TEST(NameMap, FindsAllOfManyThroughChanges) {
    NameMap<int> map;
    Walked walked;
    uint32_t state = 5;
    for (int step = 1; step < 3000; ++step) {
        state = state * 1664525 + 1013904223;
        // The range of names grows and shrinks, so that the index comes and goes.
        const uint32_t range = 4 + static_cast<uint32_t>(step / 300 % 3) * 30;
        const Text name = Text(ZCK_TEXT("n")) + TextFromInt((state >> 8) % range);
        int removed = 0;
        if ((state >> 24) % 3 == 0) {
            ASSERT_EQ(walked.Remove(name), map.Remove(name, removed));
        } else {
            ASSERT_EQ(walked.Set(name, step), map.Set(name, step));
        }
        ASSERT_NO_FATAL_FAILURE(ExpectSame(map, walked)) << step;
    }
    NameMap<int> copy = map;
    NameMap<int> other;
    other.Swap(copy);
    ExpectSame(other, walked);
    EXPECT_EQ(0U, copy.Count());
}

}    // namespace
}    // namespace zck
