#include "hosts/zkey/screen_guess.h"

#include <gtest/gtest.h>

#include <cstdlib>

#include "hosts/zkey/screen_samples.h"
#include "tests/scene/scene.h"

namespace {

using namespace zkey;
using Bytes = std::vector<uint8_t>;

std::optional<ScreenGuess> GuessIn(const zck::SceneParams &params, eCK_Type type = eCKT_YUV) {
    const zck::ScenePicture picture = zck::RenderScene(params, 0);
    return GuessScreen({{picture.pixels.data(), params.width * 4, params.width, params.height}}, type);
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
    EXPECT_FALSE(GuessScreen({{grey.data(), 64 * 4, 64, 64}}, eCKT_YUV));
    for (std::size_t i = 2; i < grey.size(); i += 4) grey[i] = 220;    // red
    EXPECT_FALSE(GuessScreen({{grey.data(), 64 * 4, 64, 64}}, eCKT_YUV));
}

TEST(ScreenGuess, ADullScreenGetsANarrowPassage) {
    std::vector<uint8_t> dull(64 * 64 * 4, 120);
    for (std::size_t i = 1; i < dull.size(); i += 4) dull[i] = 145;
    EXPECT_LT(GuessScreen({{dull.data(), 64 * 4, 64, 64}}, eCKT_YUV)->parts[0].softness, 20);
}

TEST(ScreenGuess, TheFigureIsNotTakenForScreen) {
    // A green screen around a block of another green, which does not reach the border.
    std::vector<uint8_t> picture(64 * 64 * 4, 40);
    for (std::size_t i = 0; i < picture.size(); i += 4) {
        const std::size_t x = i / 4 % 64;
        const std::size_t y = i / 256;
        picture[i + 1] = x > 20 && x < 44 && y > 20 && y < 44 ? 90 : 180;
    }
    const auto guess = GuessScreen({{picture.data(), 64 * 4, 64, 64}}, eCKT_RGB);
    ASSERT_EQ(guess->parts.size(), 1U);
    EXPECT_EQ(guess->parts[0].colour, 0x28B428U);
}

/// A figure of one colour on a screen of another, which surrounds it.
Bytes Card(uint32_t screen, uint32_t figure) {
    Bytes picture;
    for (int i = 0; i < 64 * 64; ++i) {
        const int x = i % 64;
        const int y = i / 64;
        const uint32_t c = x > 16 && x < 48 && y > 16 && y < 48 ? figure : screen;
        for (const int shift : {0, 8, 16, 24}) picture.push_back(static_cast<uint8_t>(c >> shift));
    }
    return picture;
}

TEST(ScreenGuess, AFigureNearTheScreenNarrowsThePassage) {
    const auto softness = [](uint32_t figure) {
        const Bytes card = Card(0xBABF11, figure);
        const auto guess = GuessScreen({{card.data(), 64 * 4, 64, 64}}, eCKT_YUV);
        return guess ? guess->parts.at(0).softness : -1;
    };
    EXPECT_EQ(softness(0x202020), 60);
    EXPECT_LT(softness(0xAA9840), 50);
    // A figure of nearly the screen's colour leaves a passage all the same.
    EXPECT_EQ(softness(0xBA9F11), 24);
}

TEST(ScreenGuess, LitHairAtTheBorderIsNoScreen) {
    // The right third is screen, what stands before it is brown, and lit by the screen where they meet.
    Bytes picture;
    for (int i = 0; i < 64 * 64; ++i) {
        const int x = i % 64;
        const uint32_t c = x > 44 ? 0x2D8917 : x > 28 ? 0x71923AU - static_cast<uint32_t>(x % 2) * 0x020202 : 0x6A4020;
        for (const int shift : {0, 8, 16, 24}) picture.push_back(static_cast<uint8_t>(c >> shift));
    }
    const auto guess = GuessScreen({{picture.data(), 64 * 4, 64, 64}}, eCKT_YUV);
    ASSERT_TRUE(guess);
    ASSERT_EQ(guess->parts.size(), 1U);
    EXPECT_EQ(guess->parts[0].colour, 0x2D8917U);
    EXPECT_LE(guess->parts[0].tolerance[1], 16);
}

TEST(ScreenGuess, DoubtsWhatDoesNotLookLikeAScreen) {
    const auto doubt = [](uint32_t screen, uint32_t figure, int step, int columns) {
        Bytes picture;
        for (int i = 0; i < 64 * 64; ++i) {
            uint32_t c = i % 64 < columns ? screen : figure;
            if (c == screen && i % 2 == 0) c += static_cast<uint32_t>(step) * 0x010101;
            for (const int shift : {0, 8, 16, 24}) picture.push_back(static_cast<uint8_t>(c >> shift));
        }
        const auto guess = GuessScreen({{picture.data(), 64 * 4, 64, 64}}, eCKT_YUV);
        return guess ? guess->doubt : "nothing found";
    };
    EXPECT_EQ(doubt(0x20C040, 0x404040, 0, 40), "");    // strong
    EXPECT_EQ(doubt(0x506C50, 0x404040, 0, 64), "");    // dull, but everywhere
    EXPECT_EQ(doubt(0x506C50, 0x404040, 0, 28).substr(0, 4), "only");
    EXPECT_EQ(doubt(0x20C040, 0x404040, 30, 64), "it is not smooth");
}

TEST(ScreenGuess, LightThatChangesFromPictureToPictureIsTakenInParts) {
    const Bytes bright = Card(0x20D040, 0x202020);
    const Bytes dark = Card(0x106820, 0x202020);
    const ImageView first{bright.data(), 64 * 4, 64, 64};
    EXPECT_EQ(GuessScreen({first}, eCKT_YUV)->parts.size(), 1U);
    const auto guess = GuessScreen({first, {dark.data(), 64 * 4, 64, 64}}, eCKT_YUV);
    ASSERT_EQ(guess->parts.size(), 2U);
    EXPECT_EQ(guess->parts[0].colour, 0x106820U);
    EXPECT_EQ(guess->parts[1].colour, 0x20D040U);
}

TEST(ScreenPictures, LieAllOverTheClip) {
    using Numbers = std::vector<int64_t>;
    EXPECT_EQ(SpreadPictures(0), Numbers{});
    EXPECT_EQ(SpreadPictures(1), Numbers{});
    EXPECT_EQ(SpreadPictures(3), (Numbers{1, 2}));
    EXPECT_EQ(SpreadPictures(6), (Numbers{1, 2, 3, 4, 5}));
    EXPECT_EQ(SpreadPictures(1001), (Numbers{200, 400, 600, 800, 980}));
}

TEST(ScreenGuess, OnePixelIsAPicture) {
    const uint8_t green[4] = {60, 180, 50, 255};
    const auto guess = GuessScreen({{green, 4, 1, 1}}, eCKT_RGB);
    ASSERT_TRUE(guess);
    ASSERT_EQ(guess->parts.size(), 1U);
    EXPECT_EQ(guess->parts[0].colour, 0x32B43CU);
    KeyOptions rgb;
    rgb.SetType("RGB");
    EXPECT_EQ(KeyText(rgb, guess->parts), "--type RGB -c 32B43C -t 12,12,12 -s 60 --spill 25");
}

}    // namespace
