// The reference rows against numbers worked by hand.
#include <gtest/gtest.h>

#include <array>
#include <vector>

#include "keying/spill/spill_plan.h"

namespace zck {
namespace {

SpillKernels Ref() {
    SpillKernels table = {};
    SpillKernelsInitRef(&table);
    return table;
}

std::vector<int> Scaled(const std::vector<uint8_t> &row) {
    std::vector<uint8_t> mask(row.size() / 2);
    Ref().scale(mask.data(), row.data(), static_cast<int32_t>(row.size()));
    return {mask.begin(), mask.end()};
}

SpillPlan PlanOf(int32_t value, int32_t power, int32_t chroma, int32_t luma, int32_t cancel = 1) {
    CHROMA_KEY_RAW key = {};
    key.eType = eCKT_RGB;
    key.nKeysUsed = 1;
    key.bColorCancel = cancel;
    key.arrKeys[0] = {value, 0x00282828, 0, 0, 0, power, chroma, luma, 1, 0};
    return SpillPlanMake(key);
}

using Macro = std::array<int, 4>;

// The first macro pixel of a block whose other seven have another mask.
Macro Blocked(const SpillPlan &plan, bool lumaFirst, const std::array<uint8_t, 4> &pixel, uint8_t m) {
    std::array<uint8_t, 32> pixels = {};
    std::array<uint8_t, 8> mask = {m};
    for (size_t j = 0; j < 4; ++j) pixels[j] = pixel[j];
    const SpillBlockKey key = SpillBlockKeyOf(plan, plan.entries[0], lumaFirst);
    Ref().block(pixels.data(), mask.data(), 1, &key);
    return {pixels[0], pixels[1], pixels[2], pixels[3]};
}

Macro ByPixel(const SpillPlan &plan, bool lumaFirst, std::array<uint8_t, 4> pixel, uint8_t m) {
    const SpillPixelKey key = SpillPixelKeyOf(plan, plan.entries[0], lumaFirst);
    Ref().pixel(pixel.data(), &m, 1, &key);
    return {pixel[0], pixel[1], pixel[2], pixel[3]};
}

TEST(SpillScale, AnEvenWidthGivesMeansOfPairsTiesUp) {
    EXPECT_EQ(Scaled({0, 1, 10, 20, 255, 254, 0, 255}), (std::vector<int>{1, 15, 255, 128}));
}

TEST(SpillScale, AnOddWidthGoesCentreToCentre) {
    EXPECT_EQ(Scaled({9, 50, 7}), (std::vector<int>{50}));
    // Samples at 3/4 and 13/4: 75, and (3 * 10 + 50) / 4.
    EXPECT_EQ(Scaled({0, 100, 0, 10, 50}), (std::vector<int>{75, 20}));
    // At 3/4: (1 + 3 * 0) / 4 and (2 + 0) / 4, the tie going up.
    EXPECT_EQ(Scaled({1, 0, 0, 0, 2}), (std::vector<int>{0, 1}));
}

TEST(SpillScale, WidthsBelowTwoDoNothing) {
    uint8_t mask = 7;
    const uint8_t row[2] = {1, 2};
    for (const int32_t width : {1, 0, -1}) Ref().scale(&mask, row, width);
    EXPECT_EQ(mask, 7);
}

TEST(SpillBlock, OutsideTheMaskAHairOfContrastIsLost) {
    const SpillPlan plan = PlanOf(0x0000FF00, 76, -64, -13);
    EXPECT_EQ(Blocked(plan, true, {200, 200, 16, 50}, 0), (Macro{198, 199, 15, 50}));
    EXPECT_EQ(Blocked(plan, false, {200, 200, 50, 16}, 0), (Macro{199, 198, 50, 15}));
}

TEST(SpillBlock, OnlyTheAlphaStrengthSetIsNeutralAndNoIdentity) {
    const SpillPlan plan = PlanOf(0x0000FF00, 0, 0, 0);
    ASSERT_EQ(plan.count, 1);
    EXPECT_EQ(Blocked(plan, true, {200, 200, 16, 50}, 255), (Macro{198, 199, 15, 50}));
}

TEST(SpillBlock, InsideColourMovesAwayFromTheKeyAndLumaTowardsIt) {
    // Luma: A(-19) = -38, -38 * 145 >> 7 = -44, 244 * 127 >> 7 = 242. Chroma: A(76) = 151, 151 * -74 >> 7 = -88, gain
    // 127 + A(-32) = 63, 60 * 63 >> 7 = 29. The other: 151 * -94 >> 7 = -111, 83 * 63 >> 7 = 40.
    const SpillPlan plan = PlanOf(0x0000FF00, 76, -16, 0);
    EXPECT_EQ(Blocked(plan, true, {200, 100, 200, 100}, 255), (Macro{242, 157, 242, 168}));
    EXPECT_EQ(Blocked(plan, false, {100, 200, 100, 200}, 255), (Macro{157, 242, 168, 242}));
}

TEST(SpillBlock, TheGainDoesNotGoBelowZero) {
    const SpillPlan plan = PlanOf(0x0000FF00, 76, -64, -64);
    EXPECT_EQ(Blocked(plan, true, {200, 100, 3, 240}, 255), (Macro{0, 128, 0, 128}));
}

TEST(SpillBlock, StrengthsBeyondSixteenBitsSaturate) {
    // A(1000) = 32767 >> 7 = 255; 255 * 112 >> 7 = 223; (-28 - 223) * 127 >> 7 = -250.
    const SpillPlan plan = PlanOf(0x00FF0000, 1000, 0, 0);
    EXPECT_EQ(Blocked(plan, true, {0, 100, 0, 255}, 255)[1], 0);
    // Luma: A(-250) = -256 after the cut of -63750; -256 * 41 >> 7 = -82; (100 + 82) * 127 >> 7 = 180.
    EXPECT_EQ(Blocked(plan, true, {100, 100, 0, 255}, 255)[0], 180);
}

TEST(SpillPixel, GreenInsideTheMaskOnlyTheFirstStepShows) {
    const SpillPlan plan = PlanOf(0x0000FF00, 64, -32, -16, 2);
    EXPECT_EQ(ByPixel(plan, true, {90, 100, 91, 100}, 255), (Macro{90, 101, 91, 100}));
}

TEST(SpillPixel, GreenOutsideTheMaskTakesAllSteps) {
    const SpillPlan plan = PlanOf(0x0000FF00, 64, -32, -16, 2);
    EXPECT_EQ(ByPixel(plan, true, {100, 100, 70, 100}, 0), (Macro{36, 191, 6, 157}));
    EXPECT_EQ(ByPixel(plan, false, {100, 100, 100, 70}, 0), (Macro{191, 36, 157, 6}));
    const SpillPlan all = PlanOf(0x0000FF00, 64, -128, 16, 2);
    EXPECT_EQ(ByPixel(all, true, {100, 100, 200, 100}, 0), (Macro{163, 128, 255, 128}));
}

TEST(SpillPixel, BlueHalfWay) {
    // Chroma 1 (key 240): 200 -> 100 -> 82 -> 93. Chroma 2 (key 110): 200 -> 100; (-18 * 39 + 255) >> 8 = -2, t = -26;
    // (-26 * 195 + 255) >> 8 = -19. Luma: gain 235, 100 -> 92, 200 -> 184.
    const SpillPlan plan = PlanOf(0x00FF0000, 20, -30, -10, 2);
    EXPECT_EQ(ByPixel(plan, true, {100, 200, 200, 200}, 128), (Macro{92, 93, 184, 109}));
}

TEST(SpillPixel, ZeroChromaCountsAsPositive) {
    // Mask 0 makes chroma 2 neutral; a gain of chroma then pushes it up.
    const SpillPlan plan = PlanOf(0x0000FF00, 0, 32, 0, 2);
    EXPECT_EQ(ByPixel(plan, true, {0, 0, 0, 0}, 0), (Macro{0, 255, 0, 128 + 63}));
}

}    // namespace
}    // namespace zck
