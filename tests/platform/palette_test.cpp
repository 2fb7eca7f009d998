#include "platform/palette.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <random>

namespace zck {
namespace {

uint32_t Shown(const PalettePicture &picture, size_t i) { return picture.colours[picture.indices[i]]; }

TEST(Palette, UpTo256ColoursStayExactly) {
    std::vector<uint32_t> pixels;
    for (uint32_t i = 0; i < 1024; ++i) pixels.push_back((i % 256) * 0x010101);
    const PalettePicture picture = PaletteMake(pixels);
    EXPECT_EQ(picture.colours.size(), 256u);
    ASSERT_EQ(picture.indices.size(), pixels.size());
    for (size_t i = 0; i < pixels.size(); ++i) EXPECT_EQ(Shown(picture, i), pixels[i]);
}

TEST(Palette, WhatStandsAboveTheColourDoesNotCount) {
    const PalettePicture picture = PaletteMake({0x01020304, 0xFF020304});
    EXPECT_EQ(picture.colours, (std::vector<uint32_t>{0x020304}));
}

TEST(Palette, MoreColoursAreGathered) {
    std::mt19937 random(1);
    std::vector<uint32_t> pixels;
    for (int i = 0; i < 20000; ++i) pixels.push_back(static_cast<uint32_t>(random()) & 0xFFFFFF);
    // Many pixels of one colour have a box of their own.
    pixels.insert(pixels.end(), 20000, 0x102030);
    const PalettePicture picture = PaletteMake(pixels);
    ASSERT_EQ(picture.colours.size(), 256u);
    ASSERT_EQ(picture.indices.size(), pixels.size());
    for (size_t i = 0; i < pixels.size(); ++i) {
        for (int shift = 0; shift < 24; shift += 8) {
            const int32_t shown = static_cast<int32_t>(Shown(picture, i) >> shift & 0xFF);
            const int32_t was = static_cast<int32_t>(pixels[i] >> shift & 0xFF);
            ASSERT_LE(std::abs(shown - was), 72) << i;
        }
    }
    for (int shift = 0; shift < 24; shift += 8)
        EXPECT_LE(std::abs(static_cast<int32_t>(Shown(picture, 30000) >> shift & 0xFF) - (0x102030 >> shift & 0xFF)), 8);
}

TEST(Palette, NoPixelsNeedNoColours) { EXPECT_TRUE(PaletteMake({}).indices.empty()); }

}    // namespace
}    // namespace zck
