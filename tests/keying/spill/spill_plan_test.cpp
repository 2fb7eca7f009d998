#include "keying/spill/spill_plan.h"

#include <gtest/gtest.h>

#include <climits>

namespace zck {
namespace {

constexpr int32_t kGreen = 0x0000FF00;

CHROMA_KEY_RAW GreenKey() {
    CHROMA_KEY_RAW key = {};
    key.eType = eCKT_RGB;
    key.nKeysUsed = 1;
    key.bColorCancel = 1;
    key.arrKeys[0].nValue = kGreen;
    key.arrKeys[0].nDelta = 0x00282828;
    key.arrKeys[0].nCancelPower = 76;
    return key;
}

bool Same(const DistanceKey &a, const DistanceKey &b) {
    for (int j = 0; j < 3; ++j) {
        if (a.k[j] != b.k[j] || a.w[j] != b.w[j]) return false;
    }
    return a.off == b.off && a.div == b.div;
}

TEST(SpillPlan, OffWithoutColourCancelOrSpillKey) {
    CHROMA_KEY_RAW key = GreenKey();
    EXPECT_EQ(SpillPlanMake(key).count, 1);
    key.bColorCancel = 0;
    EXPECT_EQ(SpillPlanMake(key).count, 0);
    key = GreenKey();
    key.arrKeys[0].nCancelPower = 0;
    EXPECT_EQ(SpillPlanMake(key).count, 0);
    key.bColorCancel = 2;
    EXPECT_EQ(SpillPlanMake(key).count, 0) << "the per-pixel path needs one spill key as well";
    key = GreenKey();
    key.nKeysUsed = 0;
    EXPECT_EQ(SpillPlanMake(key).count, 0);
}

TEST(SpillPlan, AnyOfTheFourStrengthsSelectsAnEntry) {
    for (int i = 0; i < 4; ++i) {
        CHROMA_KEY_RAW key = GreenKey();
        key.arrKeys[0].nCancelPower = 0;
        SINGLE_KEY &e = key.arrKeys[0];
        (i == 0 ? e.nCancelPower : i == 1 ? e.nCancelChroma : i == 2 ? e.nCancelLuma : e.nCancelAlpha) = -1;
        EXPECT_EQ(SpillPlanMake(key).count, 1) << i;
    }
}

TEST(SpillPlan, AnEntryThatCutsNothingOutStillCancels) {
    CHROMA_KEY_RAW key = GreenKey();
    key.arrKeys[0].nAlpha = 255;
    EXPECT_EQ(SpillPlanMake(key).count, 1);
}

TEST(SpillPlan, ThePerPixelPathForcesEntriesWithoutStrength) {
    CHROMA_KEY_RAW key = GreenKey();
    key.nKeysUsed = 4;
    key.arrKeys[1] = key.arrKeys[2] = key.arrKeys[3] = key.arrKeys[0];
    key.arrKeys[1].nCancelPower = 0;
    key.arrKeys[2].nReverseKey = 1;
    key.arrKeys[3].nDelta = 0;
    EXPECT_EQ(SpillPlanMake(key).count, 1);
    key.bColorCancel = 2;
    EXPECT_EQ(SpillPlanMake(key).count, 2);
    EXPECT_TRUE(SpillPlanMake(key).perPixel);
    for (const int32_t other : {1, 3, -1, INT_MIN}) {
        key.bColorCancel = other;
        EXPECT_FALSE(SpillPlanMake(key).perPixel) << other;
        EXPECT_EQ(SpillPlanMake(key).count, 1) << other;
    }
}

TEST(SpillPlan, TheCountOfKeysIsClamped) {
    CHROMA_KEY_RAW key = GreenKey();
    for (SINGLE_KEY &entry : key.arrKeys) entry = key.arrKeys[0];
    key.nKeysUsed = 20;
    EXPECT_EQ(SpillPlanMake(key).count, 16);
    key.nKeysUsed = -3;
    EXPECT_EQ(SpillPlanMake(key).count, 0);
}

TEST(SpillPlan, TheColourIsThatOfTheFirstEntryForAll) {
    CHROMA_KEY_RAW key = GreenKey();
    key.nKeysUsed = 2;
    key.arrKeys[1] = key.arrKeys[0];
    key.arrKeys[1].nValue = 0x00FF0000;
    key.arrKeys[0].nDelta = 0;
    const SpillPlan plan = SpillPlanMake(key);
    ASSERT_EQ(plan.count, 1);
    EXPECT_EQ(plan.colour.u, 54);
    EXPECT_EQ(plan.entries[0].distance.k[0], 254) << "measured round its own colour, in pixel order";
}

TEST(SpillPlan, DeltaIsWidenedByteByByteAndInPixelOrder) {
    CHROMA_KEY_RAW key = GreenKey();
    key.arrKeys[0].nValue = 0x00102030;
    key.arrKeys[0].nDelta = 0x00F00532;
    key.arrKeys[0].nCancelRange = 20;
    EXPECT_TRUE(Same(SpillPlanMake(key).entries[0].distance, DistanceKeySetup(0x00302010, 0x004619FF, 10)));
    key.arrKeys[0].nCancelRange = -50;
    EXPECT_TRUE(Same(SpillPlanMake(key).entries[0].distance, DistanceKeySetup(0x00302010, 0x000000BE, 10)));
    key.arrKeys[0].nCancelRange = INT_MIN;
    EXPECT_TRUE(Same(SpillPlanMake(key).entries[0].distance, DistanceKeySetup(0x00302010, 0, 10)));
    key.arrKeys[0].nCancelRange = INT_MAX;
    EXPECT_TRUE(Same(SpillPlanMake(key).entries[0].distance, DistanceKeySetup(0x00302010, -1, 10)));
    key.eType = eCKT_HLS;
    key.arrKeys[0].nCancelRange = 20;
    EXPECT_TRUE(Same(SpillPlanMake(key).entries[0].distance, DistanceKeySetup(0x00102030, 0x00FF1946, 10)));
}

TEST(SpillPlan, TheSecondBitOfTheInverseKeyLeavesTheMask) {
    CHROMA_KEY_RAW key = GreenKey();
    EXPECT_TRUE(SpillPlanMake(key).invert);
    key.nInverseKey = 1;
    EXPECT_TRUE(SpillPlanMake(key).invert);
    key.nInverseKey = 2;
    EXPECT_FALSE(SpillPlanMake(key).invert);
}

TEST(SpillPlan, ModeIsGreenOnlyWhereGreenIsAboveBlue) {
    for (const auto &[value, mode] : {std::pair{0x0000FF00, 1}, {0x00FF0000, 0}, {0x00808000, 0}, {0x007F8000, 1}}) {
        CHROMA_KEY_RAW key = GreenKey();
        key.arrKeys[0].nValue = value;
        const SpillPlan plan = SpillPlanMake(key);
        EXPECT_EQ(SpillPixelKeyOf(plan, plan.entries[0], true).mode, mode) << value;
    }
}

TEST(SpillPlan, BlockStrengthsSaturateAndPowerIsCutTowardsZero) {
    CHROMA_KEY_RAW key = GreenKey();
    key.arrKeys[0].nCancelPower = 7;
    key.arrKeys[0].nCancelChroma = -20000;
    key.arrKeys[0].nCancelLuma = 40000;
    SpillPlan plan = SpillPlanMake(key);
    const SpillBlockKey first = SpillBlockKeyOf(plan, plan.entries[0], true);
    EXPECT_EQ(first.move[0], -1);
    EXPECT_EQ(first.move[1], 7);
    EXPECT_EQ(first.gain[0], 32767);
    EXPECT_EQ(first.gain[3], -32768);
    EXPECT_EQ(first.key[0], 145);
    EXPECT_EQ(first.key[1], 54 - 128);
    EXPECT_EQ(first.key[2], 145);
    EXPECT_EQ(first.key[3], 34 - 128);
    EXPECT_EQ(first.zero[2], 0);
    EXPECT_EQ(first.zero[3], 128);
    const SpillBlockKey second = SpillBlockKeyOf(plan, plan.entries[0], false);
    EXPECT_EQ(second.move[1], -1);
    EXPECT_EQ(second.key[0], 54 - 128);
    EXPECT_EQ(second.key[2], 34 - 128);
    EXPECT_EQ(second.key[3], 145);
    key.arrKeys[0].nCancelPower = INT_MIN;
    key.arrKeys[0].nCancelChroma = INT_MIN;
    plan = SpillPlanMake(key);
    EXPECT_EQ(SpillBlockKeyOf(plan, plan.entries[0], true).move[0], 32767);
    EXPECT_EQ(SpillBlockKeyOf(plan, plan.entries[0], true).move[1], -32768);
    EXPECT_EQ(SpillBlockKeyOf(plan, plan.entries[0], true).gain[1], -32768);
}

}    // namespace
}    // namespace zck
