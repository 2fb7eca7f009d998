#include "keyobject/key_adjust.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "keying/key/key.h"

namespace zck {
namespace {

TEST(KeyAdjust, RoundsHalvesAwayFromZero) {
    EXPECT_EQ(AdjustRounded(0.5), 1);
    EXPECT_EQ(AdjustRounded(0.49), 0);
    EXPECT_EQ(AdjustRounded(-0.5), -1);
    EXPECT_EQ(AdjustRounded(-2.4), -2);
    EXPECT_EQ(AdjustRounded(-0.0), 0);
}

TEST(KeyAdjust, RoundingEndsAtTheEndsOf32Bits) {
    const double infinity = std::numeric_limits<double>::infinity();
    EXPECT_EQ(AdjustRounded(2147483646.6), INT32_MAX);
    EXPECT_EQ(AdjustRounded(1e300), INT32_MAX);
    EXPECT_EQ(AdjustRounded(infinity), INT32_MAX);
    EXPECT_EQ(AdjustRounded(-1e300), INT32_MIN);
    EXPECT_EQ(AdjustRounded(-infinity), INT32_MIN);
    EXPECT_EQ(AdjustRounded(std::nan("")), 0);
}

TEST(KeyAdjust, SelectorsLeadToTheirFields) {
    CK_ADJUST adjust = {};
    auto *const reals = reinterpret_cast<double *>(&adjust);
    // Smoothness and colours stand the other way round in the record.
    const int fields[] = {-1, 0, 1, 3, 2, 4, 5, 6, 7, 13, 14, 15, 8, 9, 10, 11, 12};
    for (int i = 1; i <= 16; ++i) EXPECT_EQ(AdjustField(adjust, static_cast<eCK_Adjust>(i)), reals + fields[i]) << i;
    for (const int none : {0, 17, -1, INT32_MAX}) EXPECT_EQ(AdjustField(adjust, static_cast<eCK_Adjust>(none)), nullptr);
}

CHROMA_KEY_RAW OneKey(int32_t delta, int32_t reverse = 0) {
    CHROMA_KEY_RAW key = {};
    key.nKeysUsed = 1;
    key.arrKeys[0].nDelta = delta;
    key.arrKeys[0].nReverseKey = reverse;
    return key;
}

TEST(KeyAdjust, DefaultsGiveTheirIntegers) {
    CHROMA_KEY_RAW key = OneKey(0x01020304);
    key.nKeysUsed = 2;
    key.arrKeys[1].nReverseKey = 1;
    key.bColorCancel = 2;
    AdjustApply(key, AdjustDefaults());
    EXPECT_EQ(key.arrKeys[0].nSmoothRange, 26);
    EXPECT_EQ(key.arrKeys[1].nSmoothRange, 13);
    EXPECT_EQ(key.nEdgesSmooth, 3);
    EXPECT_EQ(key.nMinTransparent, 102);
    EXPECT_EQ(key.nMaxTransparent, 230);
    EXPECT_EQ(key.arrKeys[0].nDelta, 0x01020304);
    EXPECT_EQ(key.bColorCancel, 0);
}

TEST(KeyAdjust, FullPowerWidensThreeBytesBy42) {
    CHROMA_KEY_RAW key = OneKey(0x7F00F010);
    CK_ADJUST adjust = AdjustDefaults();
    adjust.dblPower = 1.0;
    AdjustApply(key, adjust);
    EXPECT_EQ(key.arrKeys[0].nDelta, 0x7F2AFF3A);
    AdjustRemove(key, adjust);
    // What was cut at 255 does not come back.
    EXPECT_EQ(key.arrKeys[0].nDelta, 0x7F00D510);
}

TEST(KeyAdjust, RangesActOnTheirBytesAndExcludeEntriesHaveTheirOwnPower) {
    CK_ADJUST adjust = {};
    adjust.dblPower = 1.0;
    adjust.dblExclPower = 0.5;
    adjust.rangeAdjust = {0.25, 0.5, 0.75};
    CHROMA_KEY_RAW key = OneKey(0);
    AdjustApply(key, adjust);
    EXPECT_EQ(key.arrKeys[0].nDelta, 0x00302010);
    key = OneKey(0, 1);
    AdjustApply(key, adjust);
    EXPECT_EQ(key.arrKeys[0].nDelta, 0x00181008);
    key = OneKey(0, -1);
    AdjustApply(key, adjust);
    EXPECT_EQ(key.arrKeys[0].nDelta, 0x00302010);
}

TEST(KeyAdjust, ProductsAreTakenFromTheLeft) {
    CK_ADJUST adjust = {};
    adjust.dblPower = 1e306;
    adjust.rangeAdjust = {1e-306, 0, -1e-306};
    CHROMA_KEY_RAW key = OneKey(0x00808080);
    AdjustApply(key, adjust);
    EXPECT_EQ(key.arrKeys[0].nDelta, 0x004080C0);
    // The first product passes the end of the reals, where the product of the other two would be 1.
    adjust.dblPower = 1e308;
    adjust.rangeAdjust = {1e-308, 0, -1e-308};
    key = OneKey(0x00808080);
    AdjustApply(key, adjust);
    // Infinity times 0 is no number, and counts as 0.
    EXPECT_EQ(key.arrKeys[0].nDelta, 0x000080FF);
    adjust.dblColors = 1e308;
    adjust.colAdjust.dblCancelRange = 1e-308;
    AdjustApply(key, adjust);
    EXPECT_EQ(key.arrKeys[0].nCancelRange, INT32_MAX);
}

TEST(KeyAdjust, SpillFieldsAreTheColoursTimesTheirParts) {
    CK_ADJUST adjust = AdjustDefaults();
    adjust.dblColors = 0.5;
    CHROMA_KEY_RAW key = OneKey(1, 1);
    key.arrKeys[0].nAlpha = 9;
    AdjustApply(key, adjust);
    EXPECT_EQ(key.bColorCancel, 1);
    EXPECT_EQ(key.arrKeys[0].nCancelRange, 128);
    EXPECT_EQ(key.arrKeys[0].nCancelPower, 38);
    EXPECT_EQ(key.arrKeys[0].nCancelChroma, -32);
    EXPECT_EQ(key.arrKeys[0].nCancelLuma, -6);
    EXPECT_EQ(key.arrKeys[0].nCancelAlpha, -6);
    EXPECT_EQ(key.arrKeys[0].nAlpha, 9);
    adjust.dblColors = 0;
    AdjustApply(key, adjust);
    EXPECT_EQ(key.bColorCancel, 0);
    EXPECT_EQ(key.arrKeys[0].nCancelRange, 0);
    EXPECT_EQ(key.arrKeys[0].nCancelPower, 0);
}

TEST(KeyAdjust, WithoutAnEntryTheSpillFlagStays) {
    CHROMA_KEY_RAW key = {};
    key.bColorCancel = 2;
    key.eType = eCKT_Auto;
    key.nInverseKey = 3;
    key.nInterlacedVideo = 1;
    AdjustApply(key, AdjustDefaults());
    EXPECT_EQ(key.bColorCancel, 2);
    EXPECT_EQ(key.nEdgesSmooth, 3);
    EXPECT_EQ(key.eType, eCKT_Auto);
    EXPECT_EQ(key.nInverseKey, 3);
    EXPECT_EQ(key.nInterlacedVideo, 1);
}

TEST(KeyAdjust, CountsOutside0To15Are16) {
    for (const int32_t count : {-1, 16, 17, INT32_MIN}) {
        CHROMA_KEY_RAW key = {};
        key.nKeysUsed = count;
        CK_ADJUST adjust = AdjustDefaults();
        adjust.dblPower = 1;
        AdjustApply(key, adjust);
        EXPECT_EQ(key.nKeysUsed, 16);
        EXPECT_EQ(key.arrKeys[15].nDelta, 0x002A2A2A);
        key.nKeysUsed = count;
        AdjustRemove(key, adjust);
        EXPECT_EQ(key.nKeysUsed, 16);
        EXPECT_EQ(key.arrKeys[15].nDelta, 0);
    }
    CHROMA_KEY_RAW key = {};
    key.nKeysUsed = 15;
    AdjustApply(key, AdjustDefaults());
    EXPECT_EQ(key.nKeysUsed, 15);
    EXPECT_EQ(key.arrKeys[15].nSmoothRange, 0);
}

}    // namespace
}    // namespace zck
