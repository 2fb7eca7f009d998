#include "hosts/zkey/screen_guess.h"

#include <gtest/gtest.h>

#include <cstdlib>

#include "tests/scene/scene.h"

namespace {

using namespace zkey;

std::optional<ScreenGuess> GuessIn(const zck::SceneParams &params, eCK_Type type = eCKT_YUV) {
    const zck::ScenePicture picture = zck::RenderScene(params, 0);
    return GuessScreen({picture.pixels.data(), params.width * 4, params.width, params.height}, type);
}

int Distance(uint32_t a, uint32_t b) {
    int most = 0;
    for (int shift = 0; shift < 24; shift += 8) {
        most = std::max(most, std::abs(static_cast<int>((a >> shift) & 255) - static_cast<int>((b >> shift) & 255)));
    }
    return most;
}

TEST(ScreenGuess, FindsTheScreenOfTheScene) {
    for (const zck::SceneScreen screen : {zck::SceneScreen::Green, zck::SceneScreen::Blue}) {
        zck::SceneParams p;
        p.width = 320;
        p.height = 180;
        p.screen = screen;
        const auto guess = GuessIn(p);
        ASSERT_TRUE(guess);
        EXPECT_EQ(guess->name, screen == zck::SceneScreen::Green ? "green" : "blue");
        for (const ScreenKey &part : guess->parts) {
            EXPECT_LE(Distance(part.colour, zck::SceneScreenColour(screen)), 60);
            for (const int32_t t : part.tolerance) EXPECT_GT(t, 0);
        }
    }
}

TEST(ScreenGuess, UnevenLightIsTakenInParts) {
    zck::SceneParams p;
    p.width = 320;
    p.height = 180;
    p.unevenness = 0;
    EXPECT_EQ(GuessIn(p)->parts.size(), 1U);
    p.unevenness = 0.5;
    const auto guess = GuessIn(p);
    ASSERT_GT(guess->parts.size(), 1U);
    EXPECT_LT(guess->parts.front().colour & 0xFF00, guess->parts.back().colour & 0xFF00);
}

TEST(ScreenGuess, APictureWithoutScreenIsNotGuessed) {
    std::vector<uint8_t> grey(64 * 64 * 4, 120);
    EXPECT_FALSE(GuessScreen({grey.data(), 64 * 4, 64, 64}, eCKT_YUV));
    for (std::size_t i = 2; i < grey.size(); i += 4) grey[i] = 220;    // red
    EXPECT_FALSE(GuessScreen({grey.data(), 64 * 4, 64, 64}, eCKT_YUV));
}

TEST(ScreenGuess, ADullScreenGetsANarrowPassage) {
    std::vector<uint8_t> dull(64 * 64 * 4, 120);
    for (std::size_t i = 1; i < dull.size(); i += 4) dull[i] = 145;
    EXPECT_LT(GuessScreen({dull.data(), 64 * 4, 64, 64}, eCKT_YUV)->parts[0].softness, 20);
}

TEST(ScreenGuess, TheFigureIsNotTakenForScreen) {
    // A green screen around a block of another green, which does not reach the border.
    std::vector<uint8_t> picture(64 * 64 * 4, 40);
    for (std::size_t i = 0; i < picture.size(); i += 4) {
        const std::size_t x = i / 4 % 64;
        const std::size_t y = i / 256;
        picture[i + 1] = x > 20 && x < 44 && y > 20 && y < 44 ? 90 : 180;
    }
    const auto guess = GuessScreen({picture.data(), 64 * 4, 64, 64}, eCKT_RGB);
    ASSERT_EQ(guess->parts.size(), 1U);
    EXPECT_EQ(guess->parts[0].colour, 0x28B428U);
}

TEST(ScreenGuess, OnePixelIsAPicture) {
    const uint8_t green[4] = {60, 180, 50, 255};
    const auto guess = GuessScreen({green, 4, 1, 1}, eCKT_RGB);
    ASSERT_TRUE(guess);
    ASSERT_EQ(guess->parts.size(), 1U);
    EXPECT_EQ(guess->parts[0].colour, 0x32B43CU);
    EXPECT_EQ(ScreenOptions(*guess), "-c 32B43C -t 12,12,12 -s 60 --despill 30");
}

}    // namespace
