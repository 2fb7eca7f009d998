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
        EXPECT_LE(Distance(guess->key.colour, zck::SceneScreenColour(screen)), 45);
        for (const int32_t t : guess->key.tolerance) EXPECT_GT(t, 0);
    }
}

TEST(ScreenGuess, UnevenLightWidensTheTolerance) {
    zck::SceneParams p;
    p.width = 320;
    p.height = 180;
    p.unevenness = 0;
    const int32_t even = GuessIn(p)->key.tolerance[0];
    p.unevenness = 0.5;
    EXPECT_GT(GuessIn(p)->key.tolerance[0], even);
}

TEST(ScreenGuess, APictureWithoutScreenIsNotGuessed) {
    std::vector<uint8_t> grey(64 * 64 * 4, 120);
    EXPECT_FALSE(GuessScreen({grey.data(), 64 * 4, 64, 64}, eCKT_YUV));
    for (std::size_t i = 2; i < grey.size(); i += 4) grey[i] = 220;    // red
    EXPECT_FALSE(GuessScreen({grey.data(), 64 * 4, 64, 64}, eCKT_YUV));
}

TEST(ScreenGuess, OnePixelIsAPicture) {
    const uint8_t green[4] = {60, 180, 50, 255};
    const auto guess = GuessScreen({green, 4, 1, 1}, eCKT_RGB);
    ASSERT_TRUE(guess);
    EXPECT_EQ(guess->key.colour, 0x32B43CU);
}

}    // namespace
