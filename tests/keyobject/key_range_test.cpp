#include "keyobject/key_range.h"

#include <gtest/gtest.h>

namespace zck {
namespace {

KeyRange Grey(double centre, double delta, double weight = 0) {
    return {{centre, centre, centre, centre}, {delta, delta, delta, delta}, weight};
}

TEST(KeyRanges, ContainingIncludesTheEdges) {
    EXPECT_TRUE(RangeContains(Grey(0.5, 0.25), Grey(0.5, 0.25)));
    EXPECT_TRUE(RangeContains(Grey(0.5, 0.25), Grey(0.625, 0.125)));
    EXPECT_FALSE(RangeContains(Grey(0.5, 0.25), Grey(0.625, 0.126)));
    for (int i = 0; i < 4; ++i) {
        KeyRange b = Grey(0.5, 0.25);
        b.delta[i] = 0.251;
        EXPECT_FALSE(RangeContains(Grey(0.5, 0.25), b)) << i;
    }
}

TEST(KeyRanges, SizeWeighsTheFirstChannelUnderHls) {
    EXPECT_EQ(RangeSize({1, 2, 3, 4}, false), 30.0);
    EXPECT_EQ(RangeSize({1, 2, 3, 4}, true), 1 + 2 + 4.5);
}

TEST(KeyRanges, GrowthCostOfWhatIsCoveredIsNothing) {
    KeyRange a = Grey(0.5, 0.25);
    double own = 7;
    EXPECT_EQ(RangeGrowthCost(a, Grey(0.5, 0.125), &own, false), 0.0);
    EXPECT_EQ(own, 7);
}

TEST(KeyRanges, GrowthCostIsTheJointSizeLessTheOwn) {
    KeyRange a = Grey(0.25, 0.125);
    double own = 7;
    EXPECT_EQ(RangeGrowthCost(a, Grey(0.75, 0.0625), &own, false), 4 * 0.34375 * 0.34375 - 4 * 0.125 * 0.125);
    EXPECT_EQ(own, 4 * 0.0625 * 0.0625);
    EXPECT_EQ(a.centre[0], 0.25);
}

TEST(KeyRanges, ALargerRangeTakesThePlaceOfTheSmaller) {
    KeyRange a = Grey(0.5, 0.125, 3);
    double own = 7;
    EXPECT_EQ(RangeGrowthCost(a, Grey(0.5, 0.25, 50), &own, false), 0.0);
    EXPECT_EQ(own, 7);
    EXPECT_EQ(a.delta[2], 0.25);
    EXPECT_EQ(a.weight, 50);
}

TEST(KeyRanges, GrowthThatOnlyTheDroppedChannelNeedsCostsNothingUnderHls) {
    KeyRange a = Grey(0.5, 0.125);
    KeyRange b = Grey(0.5, 0.125);
    b.centre[3] = 1;
    EXPECT_EQ(RangeGrowthCost(a, b, nullptr, true), 0.0);
    EXPECT_GT(RangeGrowthCost(a, b, nullptr, false), 0.0);
}

TEST(KeyRanges, AMergeKeepsTheCentreAndTakesHalfTheSpan) {
    KeyRange a = Grey(0.25, 0.125);
    RangeMerge(a, Grey(0.75, 0.0625));
    EXPECT_EQ(a.centre[1], 0.25);
    EXPECT_EQ(a.delta[1], 0.34375);
    EXPECT_EQ(a.weight, 0);
    EXPECT_FALSE(RangeContains(a, Grey(0.75, 0.0625)));
}

TEST(KeyRanges, TheMergedCentreIsRoundedByTheWeights) {
    KeyRange a = Grey(0.1, 0.01, 2);
    RangeMerge(a, Grey(0.9, 0.01, 50));
    EXPECT_EQ(a.centre[0], (0.1 * 3.0 + 0.1 * 51.0) / 54.0);
}

TEST(KeyRangeSets, TheFirstRangeOpensTheSet) {
    KeyRangeSet set;
    EXPECT_EQ(RangeSetClassify(set, Grey(0.5, 0.1), 0.0, false), RangeResult::Added);
    EXPECT_EQ(set.count, 0);
    EXPECT_EQ(RangeSetAdd(set, Grey(0.5, 0.1), 0.0, false), RangeResult::Added);
    EXPECT_EQ(set.count, 1);
    EXPECT_EQ(set.changed, 1);
}

TEST(KeyRangeSets, OnlyTheFirstRangeCountsItsHits) {
    KeyRangeSet set;
    RangeSetAdd(set, Grey(0.25, 0.1), 0.0, false);
    RangeSetAdd(set, Grey(0.75, 0.1), 0.0, false);
    ASSERT_EQ(set.count, 2);
    EXPECT_EQ(RangeSetAdd(set, Grey(0.25, 0.05), 0.0, false), RangeResult::Covered);
    EXPECT_EQ(set.ranges[0].weight, 1);
    EXPECT_EQ(RangeSetAdd(set, Grey(0.75, 0.05), 0.0, false), RangeResult::Covered);
    EXPECT_EQ(set.ranges[1].weight, 0);
}

TEST(KeyRangeSets, AReplacedFirstRangeCountsOneHitMore) {
    KeyRangeSet set;
    RangeSetAdd(set, Grey(0.5, 0.03125), 0.0, false);
    EXPECT_EQ(RangeSetAdd(set, Grey(0.5, 0.0625, 50), 0.0, false), RangeResult::Covered);
    EXPECT_EQ(set.ranges[0].weight, 51);
    EXPECT_EQ(set.ranges[0].delta[0], 0.0625);
}

TEST(KeyRangeSets, ACostOfTheLimitIsRefused) {
    KeyRangeSet set;
    RangeSetAdd(set, Grey(0.25, 0.125), 0.0, false);
    KeyRange probe = Grey(0.25, 0.125);
    const KeyRange far = Grey(0.75, 0.0625);
    const double cost = RangeGrowthCost(probe, far, nullptr, false);
    EXPECT_EQ(RangeSetAdd(set, far, cost, false), RangeResult::Refused);
    EXPECT_EQ(RangeSetAdd(set, far, cost * 1.0001, false), RangeResult::Added);
}

// Wide by 7, 8 and, joined, 9 units: 8 * 8 is exactly twice 9 * 9 - 7 * 7.
TEST(KeyRangeSets, ASizeOfTwiceTheCostIsMerged) {
    constexpr double kUnit = 1.0 / 64;
    KeyRange wide = {{0.5, 0.5, 0.5, 0.5}, {7 * kUnit, 0, 0, 0}, 0};
    KeyRange wider = wide;
    wider.centre[0] += 3 * kUnit;
    wider.delta[0] = 8 * kUnit;
    KeyRangeSet set;
    RangeSetAdd(set, wide, 0.0, false);
    EXPECT_EQ(RangeSetAdd(set, wider, 0.0, false), RangeResult::Merged);
    wider.centre[0] += kUnit / 64;
    KeyRangeSet further;
    RangeSetAdd(further, wide, 0.0, false);
    EXPECT_EQ(RangeSetAdd(further, wider, 0.0, false), RangeResult::Added);
}

TEST(KeyRangeSets, AFullSetMergesIntoTheNearest) {
    KeyRangeSet set;
    RangeSetLimit(set, 2);
    RangeSetAdd(set, Grey(0.125, 0.0625), 0.0, false);
    RangeSetAdd(set, Grey(0.875, 0.0625), 0.0, false);
    EXPECT_EQ(RangeSetAdd(set, Grey(0.625, 0.0625), 0.0, false), RangeResult::Merged);
    EXPECT_EQ(set.count, 2);
    EXPECT_EQ(set.ranges[0].delta[0], 0.0625);
    EXPECT_EQ(set.ranges[1].delta[0], 0.1875);
}

TEST(KeyRangeSets, TheLowestIndexWinsATie) {
    KeyRangeSet set;
    RangeSetLimit(set, 2);
    RangeSetAdd(set, Grey(0.25, 0.0625), 0.0, false);
    RangeSetAdd(set, Grey(0.75, 0.0625), 0.0, false);
    ASSERT_EQ(set.count, 2);
    EXPECT_EQ(RangeSetAdd(set, Grey(0.5, 0.0625), 0.0, false), RangeResult::Merged);
    EXPECT_GT(set.ranges[0].delta[0], 0.0625);
    EXPECT_EQ(set.ranges[1].delta[0], 0.0625);
}

TEST(KeyRangeSets, TheHlsMeasureActsOnTheFirstRangeOnly) {
    KeyRangeSet set;
    RangeSetAdd(set, Grey(0.25, 0.0625), 0.0, true);
    RangeSetAdd(set, Grey(0.75, 0.0625), 0.0, true);
    ASSERT_EQ(set.count, 2);
    for (const double centre : {0.25, 0.75}) {
        KeyRange other = Grey(centre, 0.0625);
        other.centre[3] = 0.5;
        EXPECT_EQ(RangeSetClassify(set, other, 0.0, true), centre < 0.5 ? RangeResult::Covered : RangeResult::Added);
    }
}

TEST(KeyRangeSets, LimitsAreCutTo1And16) {
    KeyRangeSet set;
    for (const auto &[n, limit] : {std::pair(0, 1), {-5, 1}, {40, 16}, {16, 16}, {7, 7}, {INT32_MIN, 1}}) {
        RangeSetLimit(set, n);
        EXPECT_EQ(set.maxRanges, limit) << n;
    }
    EXPECT_EQ(set.changed, 0);
}

TEST(KeyRangeSets, ALowerLimitMergesTheLastIntoTheNearest) {
    KeyRangeSet set;
    for (const double centre : {0.125, 0.5, 0.9375}) RangeSetAdd(set, Grey(centre, 0.03125), 0.0, false);
    ASSERT_EQ(set.count, 3);
    set.changed = 0;
    RangeSetLimit(set, 2);
    EXPECT_EQ(set.count, 2);
    EXPECT_EQ(set.ranges[0].delta[0], 0.03125);
    EXPECT_EQ(set.ranges[1].centre[0], 0.5);
    EXPECT_EQ(set.ranges[1].delta[0], 0.25);
    EXPECT_EQ(set.changed, 1);
    // The slot keeps what it held.
    EXPECT_EQ(set.ranges[2].centre[0], 0.9375);
}

TEST(KeyRangeSets, TheLimitOf1MergesFromTheEndToTheFront) {
    KeyRangeSet set;
    for (const double centre : {0.125, 0.5, 0.875}) RangeSetAdd(set, Grey(centre, 0.03125), 0.0, false);
    RangeSetLimit(set, 1);
    EXPECT_EQ(set.count, 1);
    EXPECT_EQ(set.ranges[1].delta[0], 0.21875);
    // From 0.09375 to 0.5 + 0.21875.
    EXPECT_EQ(set.ranges[0].centre[0], 0.125);
    EXPECT_EQ(set.ranges[0].delta[0], 0.3125);
}

TEST(KeyRangeSets, ALargerLastRangeReplacesAndMergesWithItself) {
    KeyRangeSet set;
    RangeSetAdd(set, Grey(0.5, 0.01), 0.0, false);
    RangeSetAdd(set, Grey(0.9, 0.01), 0.0, false);
    set.ranges[2] = Grey(0.5, 0.25, 9);
    set.count = 3;
    RangeSetLimit(set, 2);
    EXPECT_EQ(set.count, 2);
    EXPECT_EQ(set.ranges[0].delta[0], 0.25);
    EXPECT_EQ(set.ranges[0].weight, 0);
    EXPECT_EQ(set.ranges[1].centre[0], 0.9);
}

}    // namespace
}    // namespace zck
