#include "keyobject/key_step.h"

#include <gtest/gtest.h>

#include "tests/keyobject/key_fixture.h"

namespace zck {
namespace {

KeyStep Numbered(int32_t n) {
    KeyStep step;
    step.key.nInverseKey = n;
    return step;
}

TEST(KeySteps, BytesGoToChannelsByTheType) {
    for (const eCK_Type type : {eCKT_RGB, eCKT_HLS, eCKT_YUV, eCKT_Alpha}) {
        KeyStep step;
        step.key.eType = type;
        step.key.nKeysUsed = 1;
        step.key.arrKeys[0].nValue = 0x04030201;
        step.key.arrKeys[0].nDelta = 0x40302010;
        StepLoadRanges(step);
        const bool rgb = type == eCKT_RGB;
        const double expected[4] = {(rgb ? 1 : 3) / 255.0, 2 / 255.0, (rgb ? 3 : 1) / 255.0, 4 / 255.0};
        for (int i = 0; i < 4; ++i) EXPECT_EQ(step.addRanges.ranges[0].centre[i], expected[i]) << type << i;
        EXPECT_EQ(step.addRanges.ranges[0].delta[3], 0x40 / 255.0);
        StepRebuild(step);
        EXPECT_EQ(step.key.arrKeys[0].nValue, 0x04030201);
        EXPECT_EQ(step.key.eType, type);
    }
}

TEST(KeySteps, EveryEntryTakesASlotInBothSets) {
    KeyStep step;
    step.key.nKeysUsed = 3;
    for (int i = 0; i < 3; ++i) step.key.arrKeys[i].nValue = i + 1;
    step.key.arrKeys[2].nReverseKey = 1;
    step.addRanges.ranges[2].centre[0] = 1;
    step.addRanges.ranges[0].weight = 5;
    StepLoadRanges(step);
    EXPECT_EQ(step.addRanges.count, 3);
    EXPECT_EQ(step.excludeRanges.count, 3);
    EXPECT_EQ(step.addRanges.ranges[2].centre[0], 1);
    EXPECT_EQ(step.addRanges.ranges[0].weight, 5);
    EXPECT_EQ(step.excludeRanges.ranges[2].centre[2], 3 / 255.0);
    StepRebuild(step);
    EXPECT_EQ(step.key.nKeysUsed, 6);
    EXPECT_EQ(step.key.arrKeys[2].nValue, 0xFF0000);
    EXPECT_EQ(step.key.arrKeys[3].nReverseKey, 1);
    EXPECT_EQ(step.key.arrKeys[5].nValue, 3);
}

TEST(KeySteps, CountsOutside0To16AreCut) {
    for (const auto &[count, slots] : {std::pair(20, 16), {-3, 0}, {16, 16}}) {
        KeyStep step;
        step.key.nKeysUsed = count;
        StepLoadRanges(step);
        EXPECT_EQ(step.addRanges.count, slots);
        EXPECT_EQ(step.excludeRanges.count, slots);
        StepRebuild(step);
        EXPECT_EQ(step.key.nKeysUsed, slots);
    }
}

TEST(KeySteps, ExcludeRangesFallOffTheEnd) {
    KeyStep step;
    step.addRanges.count = 9;
    step.excludeRanges.count = 9;
    StepRebuild(step);
    EXPECT_EQ(step.key.nKeysUsed, 16);
    for (int i = 0; i < 16; ++i) EXPECT_EQ(step.key.arrKeys[i].nReverseKey, i < 9 ? 0 : 1) << i;
}

TEST(KeySteps, HalfWidthsPast255StartAgain) {
    KeyStep step;
    step.addRanges.count = 1;
    step.addRanges.ranges[0].delta[1] = 265 / 255.0;
    step.key.eType = eCKT_RGB;
    StepRebuild(step);
    EXPECT_EQ(step.key.arrKeys[0].nDelta, 9 << 8);
}

TEST(KeySteps, TheSpaceSetsTheType) {
    KeyStep step;
    StepRebuild(step, KeySpace::Hls);
    EXPECT_EQ(step.key.eType, eCKT_HLS);
    StepRebuild(step, KeySpace::Yuv);
    EXPECT_EQ(step.key.eType, eCKT_YUV);
    StepRebuild(step, KeySpace::Rgb);
    EXPECT_EQ(step.key.eType, eCKT_RGB);
}

TEST(KeySteps, ARebuildNarrowsBeforeItWidens) {
    KeyStep step;
    step.adjust.dblPower = 1;
    step.addRanges.count = 2;
    for (double &delta : step.addRanges.ranges[0].delta) delta = 10 / 255.0;
    for (double &delta : step.addRanges.ranges[1].delta) delta = 100 / 255.0;
    StepRebuild(step);
    EXPECT_EQ(step.key.arrKeys[0].nDelta, 0x0A2A2A2A);
    EXPECT_EQ(step.key.arrKeys[1].nDelta, 0x64646464);
}

TEST(KeySteps, FieldsThatNoRangeTellsStayWithTheirIndex) {
    KeyStep step;
    step.key.arrKeys[1].nAlpha = 7;
    step.key.arrKeys[2].nCancelPower = 9;
    step.addRanges.count = 1;
    step.excludeRanges.count = 1;
    StepRebuild(step);
    EXPECT_EQ(step.key.arrKeys[1].nAlpha, 7);
    EXPECT_EQ(step.key.arrKeys[1].nReverseKey, 1);
    EXPECT_EQ(step.key.arrKeys[2].nCancelPower, 9);
}

TEST(History, EmptyHasNothingToGive) {
    KeyHistory history;
    EXPECT_EQ(history.Back(), nullptr);
    EXPECT_EQ(history.Forward(), nullptr);
    // And the position is still at the head.
    history.Save(Numbered(1));
    EXPECT_EQ(history.Forward(), nullptr);
}

TEST(History, TheFirstStepBackLandsOnTheNewestButOne) {
    KeyHistory history;
    for (int32_t n = 1; n <= 3; ++n) history.Save(Numbered(n));
    EXPECT_EQ(history.Back()->key.nInverseKey, 2);
    EXPECT_EQ(history.Back()->key.nInverseKey, 1);
    EXPECT_EQ(history.Back()->key.nInverseKey, 1);
    EXPECT_EQ(history.Forward()->key.nInverseKey, 2);
    EXPECT_EQ(history.Forward()->key.nInverseKey, 3);
    EXPECT_EQ(history.Forward()->key.nInverseKey, 3);
    EXPECT_EQ(history.Back()->key.nInverseKey, 2);
}

TEST(History, ASingleStepIsWhereTheFirstStepBackLands) {
    KeyHistory history;
    history.Save(Numbered(1));
    EXPECT_EQ(history.Back()->key.nInverseKey, 1);
    EXPECT_EQ(history.Back()->key.nInverseKey, 1);
}

TEST(History, AnEditEndsTheWalk) {
    KeyHistory history;
    for (int32_t n = 1; n <= 4; ++n) history.Save(Numbered(n));
    history.Back();
    EXPECT_EQ(history.Back()->key.nInverseKey, 2);
    history.Save(Numbered(2));
    EXPECT_EQ(history.Forward(), nullptr);
    history.Save(Numbered(5));
    // 1, 2, 5.
    EXPECT_EQ(history.Back()->key.nInverseKey, 2);
    EXPECT_EQ(history.Back()->key.nInverseKey, 1);
}

TEST(History, Holds512Steps) {
    KeyHistory history;
    for (int32_t n = 1; n <= 513; ++n) history.Save(Numbered(n));
    int32_t last = 0;
    for (int i = 0; i < 600; ++i) last = history.Back()->key.nInverseKey;
    EXPECT_EQ(last, 2);
    for (int i = 0; i < 510; ++i) last = history.Forward()->key.nInverseKey;
    EXPECT_EQ(last, 512);
    EXPECT_EQ(history.Forward()->key.nInverseKey, 513);
    EXPECT_EQ(history.Forward()->key.nInverseKey, 513);
}

}    // namespace
}    // namespace zck
