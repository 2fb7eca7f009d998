// The model of mixing against numbers that were worked out by hand.
#include "tests/conformance/mix_model.h"

#include <gtest/gtest.h>

#include <limits>

#include "tests/conformance/media_model.h"
#include "tests/conformance/mix_rows_model.h"

namespace conformance {
namespace {

Bytes Repeated(std::initializer_list<uint8_t> pattern, size_t times) {
    Bytes bytes;
    for (size_t i = 0; i < times; ++i) bytes.insert(bytes.end(), pattern);
    return bytes;
}

TEST(MixModel, OpacitiesAreRoundedAwayFromZeroAndLimited) {
    EXPECT_EQ(Opacity128Model(0.5), 64);
    EXPECT_EQ(Opacity128Model(0.00390625), 1);    // 0.5
    EXPECT_EQ(Opacity128Model(0.003906), 0);
    EXPECT_EQ(Opacity128Model(0.99609375), 128);    // 127.5
    EXPECT_EQ(Opacity256Model(0.001953125), 1);
    EXPECT_EQ(Opacity256Model(1.0), 256);
    EXPECT_EQ(Opacity256Model(7.0), 256);
    EXPECT_EQ(Opacity256Model(-1.0), 0);
    EXPECT_EQ(Opacity128Model(std::numeric_limits<double>::quiet_NaN()), 0);
    EXPECT_EQ(Opacity128Model(std::numeric_limits<double>::infinity()), 128);
    EXPECT_EQ(Opacity256Model(-std::numeric_limits<double>::infinity()), 0);
}

TEST(MixModel, ProductsAreRoundedToTheEvenNeighbour) {
    EXPECT_EQ(TimesModel(1, 64, 7), 0);    // 0.5
    EXPECT_EQ(TimesModel(3, 64, 7), 2);    // 1.5
    EXPECT_EQ(TimesModel(5, 64, 7), 2);    // 2.5
    EXPECT_EQ(TimesModel(255, 64, 7), 128);
    EXPECT_EQ(TimesModel(255, 256, 8), 255);
}

TEST(MixModel, HalfOfBothSides) {
    Bytes d = {1, 3, 255, 255, 0, 10}, s = {1, 3, 255, 1, 255, 21};
    ConstantRowModel(d.data(), s.data(), 6, 64);
    EXPECT_EQ(d, (Bytes{0, 4, 255, 128, 128, 15}));    // 10.5 of the overlay becomes 10
}

TEST(MixModel, OverTakesTheRestOfTheAlpha) {
    Bytes d = {100, 200, 255, 255, 9, 8, 7, 6}, s = {10, 20, 200, 128, 1, 2, 3, 0};
    OverRowModel(d.data(), s.data(), 2, 128, 7);
    // 100 * 127 / 255 is 49.8, and 127 more before the division round it.
    EXPECT_EQ(d, (Bytes{60, 120, 255, 255, 10, 10, 10, 6}));
    d = {127, 128, 0, 0};
    s = {0, 0, 0, 254};
    OverRowModel(d.data(), s.data(), 1, 256, 8);
    EXPECT_EQ(d, (Bytes{0, 1, 0, 254}));
}

TEST(MixModel, TransparentBlackLeavesMultiplied422) {
    const Bytes before = Repeated({90, 200, 30, 17}, 6);    // 12 pixels: a block and a rest
    Bytes d = before;
    const Bytes s = Repeated({128, 16}, 12), k(12, 0);
    Premultiplied422RowModel(d.data(), s.data(), k.data(), 12, 256, Order422::LumaSecond);
    EXPECT_EQ(d, before);
}

TEST(MixModel, SolidMultiplied422IsTheOverlay) {
    Bytes d = Repeated({1, 2, 3, 4}, 6);
    const Bytes s = Repeated({16, 240, 90, 235}, 6), k(12, 255);
    Premultiplied422RowModel(d.data(), s.data(), k.data(), 12, 256, Order422::LumaSecond);
    EXPECT_EQ(d, s);
}

TEST(MixModel, HalfMultiplied422DiffersBetweenBlockAndRest) {
    // Brightness 100 under 60, colour 200 under 100, mask 128, half opacity.
    Bytes d = Repeated({200, 100}, 10);
    const Bytes s = Repeated({100, 60}, 10), k(10, 128);
    Premultiplied422RowModel(d.data(), s.data(), k.data(), 10, 128, Order422::LumaSecond);
    // Block: q 64, weight 64, rest 96. (84 * 96 + 44 * 64 + 127) >> 7 is 85; (72 * 96 - 28 * 64 + 127) >> 7 is 40.
    // Rest: 84 * (256 - 64) + 128 * 44 over 256 is 85; 72 * 192 - 128 * 28 over 256 is 40.
    EXPECT_EQ(d, Repeated({168, 101}, 10));
    // A mask of 3 weighs 1 in both.
    d = Repeated({200, 100}, 14);
    const Bytes thin(14, 3), clear = Repeated({128, 16}, 14);
    Premultiplied422RowModel(d.data(), clear.data(), thin.data(), 14, 128, Order422::LumaSecond);
    // Block: weight 1, rest (254 + 1) / 2 = 127: (84 * 127 + 127) >> 7 is 84. Rest: 84 * 255 >> 8 is 83.
    EXPECT_EQ(d[1], 100);
    EXPECT_EQ(d[17], 99);
    EXPECT_EQ(d[0], 200);     // (72 * 127 + 127) >> 7 is 72
    EXPECT_EQ(d[16], 199);    // 72 * 255 >> 8 is 71
    // A transparent pixel of the least opacity is brighter by its colour: (84 * 128 + 1 + 127) >> 7.
    d = Repeated({200, 100}, 8);
    const Bytes bright = Repeated({128, 17}, 8), none(8, 0);
    Premultiplied422RowModel(d.data(), bright.data(), none.data(), 8, 2, Order422::LumaSecond);
    EXPECT_EQ(d, Repeated({200, 101}, 8));
}

TEST(MixModel, ColourTakesTheMeanOfThePair) {
    Bytes d = Repeated({0, 0}, 8);
    const Bytes s = Repeated({255, 255}, 8), k = Repeated({255, 0}, 4);
    Masked422RowModel(d.data(), s.data(), k.data(), 8, 256, Order422::LumaSecond);
    EXPECT_EQ(d, Repeated({127, 255, 127, 0}, 4));    // (255 * 127 + 255) >> 8
    d = Repeated({0, 0}, 8);
    Masked422RowModel(d.data(), s.data(), k.data(), 8, 256, Order422::LumaFirst);
    EXPECT_EQ(d, Repeated({255, 127, 0, 127}, 4));
    // In the rest every byte follows its own pixel.
    d = Repeated({0, 0}, 2);
    Masked422RowModel(d.data(), s.data(), k.data(), 2, 256, Order422::LumaSecond);
    EXPECT_EQ(d, (Bytes{255, 255, 0, 0}));
}

TEST(MixModel, AlmostSolidMasksDifferBetweenBlockAndRest) {
    const Bytes s(26, 200), k(13, 255);
    Bytes d(26, 0), solid(26, 0);
    Masked422RowModel(d.data(), s.data(), k.data(), 13, 255, Order422::LumaSecond);
    EXPECT_EQ(d[15], 200);    // (200 * 255 + 255) >> 8
    EXPECT_EQ(d[16], 199);    // (200 * 254 + 255) >> 8
    Masked422RowModel(solid.data(), s.data(), k.data(), 13, 256, Order422::LumaSecond);
    EXPECT_EQ(solid, s);
}

TEST(MixModel, MaskedPixelsLoseByTheMaskAtAnyOpacity) {
    Bytes d = {200, 200, 200, 200};
    const Bytes s = {100, 50, 0, 255}, k = {128};
    Masked4RowModel(d.data(), s.data(), k.data(), 1, 256);
    EXPECT_EQ(d, (Bytes{200, 150, 100, 255}));    // (25600 + 25400 + 255) >> 8
    d = {200, 200, 200, 200};
    Masked4RowModel(d.data(), s.data(), k.data(), 1, 0);
    EXPECT_EQ(d, (Bytes{100, 100, 100, 100}));
}

TEST(MixModel, HalfOfARowWithoutMask) {
    Bytes d(12, 100);
    const Bytes s(12, 200);
    Plain4RowModel(d.data(), s.data(), 3, 128);
    EXPECT_EQ(d, (Bytes{150, 150, 150, 150, 150, 150, 100, 100, 100, 100, 100, 100}));
}

TEST(MixModel, UnmultipliedAlpha) {
    Bytes d = {100, 100, 100, 100, 100, 100}, s = {200, 0, 1, 200, 0, 1};
    const Bytes alpha = {255, 127};
    AlphaPairRowModel(d.data(), s.data(), alpha.data(), 2, 128);
    EXPECT_EQ(d, (Bytes{200, 0, 1, 150, 50, 50}));
}

// A picture of 4:2:2 in which the brightness says the column and the row.
Still Numbered(int32_t width, int32_t height, uint8_t base) {
    Still still = {Picture(eZFCC_UYVY, width, height), {}};
    for (int32_t y = 0; y < height; ++y)
        for (int32_t x = 0; x < still.props.nRowBytes; ++x)
            still.memory.push_back(static_cast<uint8_t>(x % 2 == 0 ? 128 : base + 16 * y + x / 2));
    return still;
}

TEST(MixModel, OddPlacesOf422MoveRight) {
    const Still target = Numbered(40, 1, 0), over = Numbered(6, 1, 100);
    const Laid at21 = FrameOverlayModel(target, over, 21, 0, 1.0), at22 = FrameOverlayModel(target, over, 22, 0, 1.0);
    ASSERT_EQ(at21.hr, S_OK);
    EXPECT_EQ(at21.target[2 * 21 + 1], 21);
    EXPECT_EQ(at21.target[2 * 22 + 1], 100);
    EXPECT_EQ(at21.target[2 * 25 + 1], 103);
    EXPECT_EQ(at21.target[2 * 26 + 1], 26);    // a pair is lost on the right
    EXPECT_EQ(at22.target[2 * 26 + 1], 104);
}

TEST(MixModel, OddPlacesOutsideOnTheLeft) {
    const Still target = Numbered(40, 1, 0), over = Numbered(20, 1, 100);
    const Laid yuv = FrameOverlayModel(target, over, -11, 0, 1.0);
    ASSERT_EQ(yuv.hr, S_OK);
    EXPECT_EQ(yuv.target[1], 112);
    Still argb = {Picture(eZFCC_ARGB32, 20, -1), Bytes(80, 255)};
    for (size_t x = 0; x < 20; ++x) argb.memory[x * 4 + 3] = x >= 11 && x < 13 ? uint8_t{255} : uint8_t{0};
    const Laid over255 = FrameOverlayModel(target, argb, -11, 0, 1.0);
    ASSERT_EQ(over255.hr, S_OK);
    EXPECT_EQ(over255.target[1], 235);
    EXPECT_EQ(over255.target[3], 235);
}

TEST(MixModel, RowsOfBothOrdersBelongTogether) {
    Still target = {Picture(eZFCC_RGB32, 1, 4), Bytes(16, 0)}, over = {Picture(eZFCC_RGB32, 1, -3), {}};
    over.memory = Repeated({1, 1, 1, 1}, 1);
    for (const uint8_t v : {uint8_t{2}, uint8_t{3}}) over.memory.insert(over.memory.end(), 4, v);
    // Memory from the bottom row on. The part reaches the bottom.
    EXPECT_EQ(FrameOverlayModel(target, over, 0, 1, 1.0).target, Bytes({3, 3, 3, 3, 2, 2, 2, 2, 1, 1, 1, 1, 0, 0, 0, 0}));
    // It ends above the bottom, where a picture with its last row first has it one line lower.
    EXPECT_EQ(FrameOverlayModel(target, over, 0, 0, 1.0).target, Bytes({3, 3, 3, 3, 2, 2, 2, 2, 1, 1, 1, 1, 0, 0, 0, 0}));
    // What hangs over at the bottom is not shown.
    EXPECT_EQ(FrameOverlayModel(target, over, 0, 2, 1.0).target, Bytes({2, 2, 2, 2, 1, 1, 1, 1, 0, 0, 0, 0, 0, 0, 0, 0}));
    EXPECT_EQ(FrameOverlayModel(target, over, 0, 4, 1.0).hr, S_FALSE);
}

}    // namespace
}    // namespace conformance
