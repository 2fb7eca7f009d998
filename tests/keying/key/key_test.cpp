#include "keying/key/key.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstring>

namespace zck {
namespace {

void ExpectColour(const CK_COLOR_ADJUST &c, double range, double power, double chroma, double luma, double alpha) {
    EXPECT_EQ(c.dblCancelRange, range);
    EXPECT_EQ(c.dblCancelPower, power);
    EXPECT_EQ(c.dblCancelChroma, chroma);
    EXPECT_EQ(c.dblCancelLuma, luma);
    EXPECT_EQ(c.dblCancelAlpha, alpha);
}

void ExpectRange(const CK_RANGE_ADJUST &range, double value) {
    EXPECT_EQ(range.dblRangeR_H_Y, value);
    EXPECT_EQ(range.dblRangeG_L_U, value);
    EXPECT_EQ(range.dblRangeB_S_V, value);
}

SINGLE_KEY Entry() {
    SINGLE_KEY key = {};
    key.nDelta = 0x00202020;
    return key;
}

TEST(AdjustDefaults, AreThoseOfAFreshKey) {
    const CK_ADJUST a = AdjustDefaults();
    EXPECT_EQ(a.dblPower, 0.0);
    EXPECT_EQ(a.dblTransparent, 0.1);
    EXPECT_EQ(a.dblColors, 0.0);
    EXPECT_EQ(a.dblSmooth, 0.25);
    EXPECT_EQ(a.dblMinTransparent, 0.4);
    EXPECT_EQ(a.dblMaxTransparent, 0.9);
    EXPECT_EQ(a.dblExclPower, 0.0);
    EXPECT_EQ(a.dblExclTransparent, 0.05);
    ExpectColour(a.colAdjust, 1.0, 0.3, -0.25, -0.05, -0.05);
    ExpectRange(a.rangeAdjust, 0.66);
}

TEST(AdjustFromRaw, WithoutCancelRangeTakesTheDefaultColours) {
    for (const int32_t range : {0, -1, -255}) {
        CHROMA_KEY_RAW raw = {};
        raw.arrKeys[0].nCancelRange = range;
        raw.arrKeys[0].nCancelPower = 200;
        const CK_ADJUST a = AdjustFromRaw(raw, -1);
        EXPECT_EQ(a.dblColors, 0.0);
        ExpectColour(a.colAdjust, 1.0, 0.3, -0.25, -0.05, -0.05);
    }
}

TEST(AdjustFromRaw, WithCancelRangeDividesByItAndBy255) {
    CHROMA_KEY_RAW raw = {};
    raw.arrKeys[0].nCancelRange = 51;
    raw.arrKeys[0].nCancelPower = 102;
    raw.arrKeys[0].nCancelChroma = -51;
    raw.arrKeys[0].nCancelLuma = -7;
    raw.arrKeys[0].nCancelAlpha = 3;
    const CK_ADJUST a = AdjustFromRaw(raw, 0);
    const double r = 51 / 255.0;
    EXPECT_EQ(a.dblColors, r);
    ExpectColour(a.colAdjust, 1.0, 102 / 255.0 / r, -51 / 255.0 / r, -7 / 255.0 / r, 3 / 255.0 / r);
}

TEST(AdjustFromRaw, ScalesSmoothingAndThresholds) {
    CHROMA_KEY_RAW raw = {};
    raw.nEdgesSmooth = 3;
    raw.nMinTransparent = 102;
    raw.nMaxTransparent = 230;
    raw.arrKeys[0].nSmoothRange = 26;
    const CK_ADJUST a = AdjustFromRaw(raw, 0);
    EXPECT_EQ(a.dblTransparent, 26 / 255.0);
    EXPECT_EQ(a.dblSmooth, 0.3);
    EXPECT_EQ(a.dblMinTransparent, 102 / 255.0);
    EXPECT_EQ(a.dblMaxTransparent, 230 / 255.0);
}

TEST(AdjustFromRaw, LeavesWhatTheRawKeyDoesNotHoldAtZero) {
    const CK_ADJUST a = AdjustFromRaw(CHROMA_KEY_RAW{}, -1);
    EXPECT_EQ(a.dblPower, 0.0);
    EXPECT_EQ(a.dblExclPower, 0.0);
    EXPECT_EQ(a.dblExclTransparent, 0.0);
    ExpectRange(a.rangeAdjust, 0.0);
}

TEST(AdjustFromRaw, TakesTheEntryOfTheIndexAndStaysInTheTable) {
    CHROMA_KEY_RAW raw = {};
    for (int32_t i = 0; i < 16; ++i) raw.arrKeys[i].nSmoothRange = i + 1;
    EXPECT_EQ(AdjustFromRaw(raw, INT_MIN).dblTransparent, 1 / 255.0);
    EXPECT_EQ(AdjustFromRaw(raw, 0).dblTransparent, 1 / 255.0);
    EXPECT_EQ(AdjustFromRaw(raw, 1).dblTransparent, 2 / 255.0);
    EXPECT_EQ(AdjustFromRaw(raw, 15).dblTransparent, 16 / 255.0);
    EXPECT_EQ(AdjustFromRaw(raw, 16).dblTransparent, 16 / 255.0);
    EXPECT_EQ(AdjustFromRaw(raw, INT_MAX).dblTransparent, 16 / 255.0);
}

TEST(KeyPredicates, PlainEntryCutsAndDoesNotProtectOrCancel) {
    EXPECT_TRUE(IsAlphaKey(Entry()));
    EXPECT_FALSE(IsReverseKey(Entry()));
    EXPECT_FALSE(IsSpillKey(Entry()));
}

TEST(KeyPredicates, ReverseEntryProtectsAndNeitherCutsNorCancels) {
    SINGLE_KEY key = Entry();
    key.nReverseKey = 1;
    key.nCancelPower = 10;
    EXPECT_FALSE(IsAlphaKey(key));
    EXPECT_TRUE(IsReverseKey(key));
    EXPECT_FALSE(IsSpillKey(key));
    key.nReverseKey = -1;
    EXPECT_TRUE(IsAlphaKey(key));
    EXPECT_FALSE(IsReverseKey(key));
    EXPECT_TRUE(IsSpillKey(key));
}

TEST(KeyPredicates, ZeroDeltaSwitchesTheEntryOffWhateverElseItSays) {
    SINGLE_KEY key;
    std::memset(&key, 1, sizeof key);
    for (const int32_t reverse : {-1, 0, 1}) {
        key.nDelta = 0;
        key.nReverseKey = reverse;
        EXPECT_FALSE(IsAlphaKey(key));
        EXPECT_FALSE(IsReverseKey(key));
        EXPECT_FALSE(IsSpillKey(key));
    }
}

TEST(KeyPredicates, DeltaCountsAsAWhole) {
    SINGLE_KEY key = {};
    key.nDelta = INT_MIN;    // only the top byte, which takes no part in the distance
    EXPECT_TRUE(IsAlphaKey(key));
}

TEST(KeyPredicates, FullFloorCutsNothingYetCancelsSpill) {
    SINGLE_KEY key = Entry();
    key.nAlpha = 255;
    key.nCancelPower = 1;
    EXPECT_FALSE(IsAlphaKey(key));
    EXPECT_TRUE(IsSpillKey(key));
    key.nReverseKey = 1;
    EXPECT_FALSE(IsReverseKey(key));
    key.nAlpha = 256;    // only 255 is the switch
    EXPECT_TRUE(IsReverseKey(key));
}

TEST(KeyPredicates, EachCancelFieldAloneMakesASpillKey) {
    for (int32_t SINGLE_KEY::*field :
         {&SINGLE_KEY::nCancelPower, &SINGLE_KEY::nCancelChroma, &SINGLE_KEY::nCancelLuma, &SINGLE_KEY::nCancelAlpha}) {
        SINGLE_KEY key = Entry();
        key.*field = -1;
        EXPECT_TRUE(IsSpillKey(key));
    }
    SINGLE_KEY key = Entry();
    key.nCancelRange = 40;    // the range alone does not
    EXPECT_FALSE(IsSpillKey(key));
}

TEST(KeysUsed, IsClampedAndLeavesTheRecordAlone) {
    CHROMA_KEY_RAW raw = {};
    const auto used = [&raw](int32_t count) {
        raw.nKeysUsed = count;
        return KeysUsed(raw);
    };
    EXPECT_EQ(used(0), 0);
    EXPECT_EQ(used(-1), 0);
    EXPECT_EQ(used(INT_MIN), 0);
    EXPECT_EQ(used(1), 1);
    EXPECT_EQ(used(16), 16);
    EXPECT_EQ(used(20), 16);
    EXPECT_EQ(raw.nKeysUsed, 20);
}

}    // namespace
}    // namespace zck
