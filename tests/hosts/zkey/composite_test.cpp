#include "hosts/zkey/composite.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>

namespace {

using namespace zkey;

TEST(Composite, StraightColourIsTheNearestThatGivesThePremultiplied) {
    for (int a = 0; a < 256; ++a) {
        for (int c = 0; c <= a; ++c) {
            const uint8_t in[4] = {static_cast<uint8_t>(c), 0, static_cast<uint8_t>(c), static_cast<uint8_t>(a)};
            uint8_t out[4];
            StraightRow(out, in, 1);
            const int expected = a == 0 ? 0 : (2 * 255 * c + a) / (2 * a);
            ASSERT_EQ(out[0], expected) << c << " / " << a;
            ASSERT_EQ(out[1], 0);
            ASSERT_EQ(out[2], expected);
            ASSERT_EQ(out[3], a);
        }
    }
}

TEST(Composite, ColourAboveAlphaSaturates) {
    const uint8_t in[4] = {200, 100, 50, 100};
    uint8_t out[4];
    StraightRow(out, in, 1);
    EXPECT_EQ(out[0], 255);
    EXPECT_EQ(out[1], 255);
    EXPECT_EQ(out[2], 128);
}

TEST(Composite, MatteIsGreyAndOpaque) {
    const uint8_t in[8] = {1, 2, 3, 77, 9, 9, 9, 0};
    uint8_t out[8];
    MatteRow(out, in, 2);
    EXPECT_EQ(std::to_array(out), (std::array<uint8_t, 8>{77, 77, 77, 255, 0, 0, 0, 255}));
}

TEST(Composite, OverAddsWhatTheFigureLetsThrough) {
    const uint8_t background[4] = {255, 100, 0, 0};
    uint8_t out[4];
    const uint8_t clear[4] = {0, 0, 0, 0};
    OverRow(out, clear, background, 1);
    EXPECT_EQ(std::to_array(out), (std::array<uint8_t, 4>{255, 100, 0, 255}));
    const uint8_t solid[4] = {1, 2, 3, 255};
    OverRow(out, solid, background, 1);
    EXPECT_EQ(std::to_array(out), (std::array<uint8_t, 4>{1, 2, 3, 255}));
    const uint8_t half[4] = {10, 20, 128, 128};
    OverRow(out, half, background, 1);
    EXPECT_EQ(std::to_array(out), (std::array<uint8_t, 4>{10 + 127, 20 + 49, 128, 255}));
    const uint8_t bright[4] = {200, 0, 0, 128};
    OverRow(out, bright, background, 1);
    EXPECT_EQ(out[0], 255);
}

TEST(Composite, FinishWorksOnCroppedViews) {
    // Two pixels of a row of three, stored bottom row first.
    const std::array<uint8_t, 24> bytes = {1, 1, 1, 10, 2, 2, 2, 20, 0, 0, 0, 99, 3, 3, 3, 30, 4, 4, 4, 40, 0, 0, 0, 99};
    const ImageView view{bytes.data() + 12, -12, 2, 2};
    Image out;
    FinishPicture(Finish::Matte, view, {}, out);
    ASSERT_EQ(out.bytes.size(), 16U);
    EXPECT_EQ(out.bytes[0], 30);
    EXPECT_EQ(out.bytes[4], 40);
    EXPECT_EQ(out.bytes[8], 10);
    EXPECT_EQ(out.bytes[12], 20);
    FinishPicture(Finish::Premultiplied, view, {}, out);
    EXPECT_EQ(out.bytes[4], 4);
    EXPECT_EQ(out.bytes[15], 20);
}

}    // namespace
