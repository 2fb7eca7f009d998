#include <gtest/gtest.h>

#include <climits>

#include "tests/keying/kernels/tables.h"

namespace zck {
namespace {

constexpr int32_t Grey(int32_t v) { return v | v << 8 | v << 16; }

void ExpectWeights(const DistanceKey &key, int32_t w) {
    for (const int32_t weight : key.w) EXPECT_EQ(weight, w);
}

uint8_t AlphaOf(const DistanceKey &key, uint8_t b0, uint8_t b1, uint8_t b2) {
    uint8_t src[32];
    for (int i = 0; i < 32; i += 4) {
        src[i] = b0;
        src[i + 1] = b1;
        src[i + 2] = b2;
        src[i + 3] = static_cast<uint8_t>(i * 37);    // takes no part
    }
    uint8_t dst[8];
    test::RefTable().distance(dst, src, 1, &key);
    for (const uint8_t alpha : dst) EXPECT_EQ(alpha, dst[0]);
    return dst[0];
}

TEST(DistanceKeySetup, WorkedCase) {
    const DistanceKey key = DistanceKeySetup(Grey(100), Grey(40), 20);
    for (const int32_t k : key.k) EXPECT_EQ(k, 100);
    ExpectWeights(key, 16382);
    EXPECT_EQ(key.off, 13105600);
    EXPECT_EQ(key.div, 15.810423F);
}

TEST(DistanceKernel, WorkedCase) {
    const DistanceKey key = DistanceKeySetup(Grey(100), Grey(40), 20);
    EXPECT_EQ(AlphaOf(key, 100, 139, 100), 0);
    EXPECT_EQ(AlphaOf(key, 100, 141, 100), 51);
    EXPECT_EQ(AlphaOf(key, 100, 150, 100), 172);
    EXPECT_EQ(AlphaOf(key, 100, 160, 100), 255);
}

// Weights before rounding: 16382, 6634.03, 4749.81.
TEST(DistanceKeySetup, UnequalHalfWidthsRoundTheirWeightsToNearest) {
    const DistanceKey key = DistanceKeySetup(Grey(100), 7 | 11 << 8 | 13 << 16, 5);
    EXPECT_EQ(key.w[0], 16382);
    EXPECT_EQ(key.w[1], 6634);
    EXPECT_EQ(key.w[2], 4750);
    EXPECT_EQ(key.off, 401359);
    EXPECT_EQ(key.div, 2.8474379F);
}

TEST(DistanceKeySetup, WidestKeyIsScaledByItsWeights) {
    const DistanceKey key = DistanceKeySetup(Grey(128), Grey(255), 0);
    ExpectWeights(key, 16382);
    EXPECT_EQ(key.off, 1065239550 >> 1);
    EXPECT_EQ(key.div, 0.001F);
}

TEST(DistanceKeySetup, NarrowestKeyTakesTheLeastScale) {
    const DistanceKey key = DistanceKeySetup(Grey(128), Grey(1), 0);
    ExpectWeights(key, 1000);
    EXPECT_EQ(key.off, 500);
}

TEST(DistanceKeySetup, ZeroBytesOfTheDeltaCountAsOne) {
    const DistanceKey needle = DistanceKeySetup(Grey(100), 0x000000FF, 0);
    const DistanceKey same = DistanceKeySetup(Grey(100), 0x000101FF, 0);
    for (int j = 0; j < 3; ++j) EXPECT_EQ(needle.w[j], same.w[j]);
    EXPECT_EQ(needle.off, same.off);
    // Long in channel 0, one step thick in the others.
    EXPECT_EQ(AlphaOf(needle, 200, 100, 100), 0);
    EXPECT_EQ(AlphaOf(needle, 100, 102, 100), 255);
    EXPECT_EQ(AlphaOf(needle, 100, 100, 102), 255);
}

TEST(DistanceKeySetup, TopBytesTakeNoPart) {
    const DistanceKey key = DistanceKeySetup(Grey(100), Grey(40), 20);
    const DistanceKey top = DistanceKeySetup(Grey(100) | INT_MIN, Grey(40) | 0x7F000000, 20);
    for (int j = 0; j < 3; ++j) {
        EXPECT_EQ(top.k[j], key.k[j]);
        EXPECT_EQ(top.w[j], key.w[j]);
    }
    EXPECT_EQ(top.off, key.off);
    EXPECT_EQ(top.div, key.div);
}

TEST(DistanceKeySetup, CentreKeepsAStepFromTheEndsOfTheRange) {
    const DistanceKey key = DistanceKeySetup(0x00FF0080, Grey(40), 20);
    EXPECT_EQ(key.k[0], 0x80);
    EXPECT_EQ(key.k[1], 1);
    EXPECT_EQ(key.k[2], 254);
}

TEST(DistanceKeySetup, ChannelsComeLowByteFirst) {
    const DistanceKey key = DistanceKeySetup(0x00302010, 0x00040201, 5);
    EXPECT_EQ(key.k[0], 0x10);
    EXPECT_EQ(key.k[1], 0x20);
    EXPECT_EQ(key.k[2], 0x30);
    EXPECT_GT(key.w[0], key.w[1]);    // the narrow channel weighs most
    EXPECT_GT(key.w[1], key.w[2]);
}

TEST(DistanceKeySetup, HardKeyWhenNothingIsAddedToTheHalfWidths) {
    for (const int32_t d : {1, 7, 40, 128}) {
        const DistanceKey key = DistanceKeySetup(Grey(100), Grey(d), 0);
        const auto beyond = static_cast<uint8_t>(100 + d + 1);
        EXPECT_EQ(AlphaOf(key, beyond, 100, 100), 255) << d;
        EXPECT_EQ(AlphaOf(key, 100, beyond, 100), 255) << d;
        EXPECT_EQ(AlphaOf(key, 100, 100, beyond), 255) << d;
        EXPECT_EQ(AlphaOf(key, static_cast<uint8_t>(100 + d - 1), 100, 100), 0) << d;
    }
}

TEST(DistanceKeySetup, NegativeSmoothRangeIsAHardKey) { EXPECT_EQ(DistanceKeySetup(Grey(100), Grey(40), -10).div, 0.001F); }

// (4 + s) squared is taken in 32 bits: 65536 squared is 0 there, and 46341 squared is negative, which the unsigned division
// then turns into a huge outer surface.
TEST(DistanceKeySetup, SquareOfTheOuterHalfWidthWrapsIn32Bits) {
    EXPECT_EQ(DistanceKeySetup(Grey(100), Grey(4), 65532).div, 0.001F);
    EXPECT_NEAR(DistanceKeySetup(Grey(100), Grey(4), 46337).div, 6.8493e6, 1e3);
    EXPECT_GT(DistanceKeySetup(Grey(100), Grey(4), INT_MAX).div, 0.0F);
    EXPECT_GT(DistanceKeySetup(Grey(100), Grey(4), INT_MIN).div, 0.0F);
}

TEST(DistanceKernel, PixelOfTheKeyColourIsTransparentForAllKeys) {
    for (const int32_t d : {1, 2, 40, 255}) {
        for (const int32_t s : {0, 10, 255}) {
            for (const int32_t k : {1, 77, 254}) {
                const auto b = static_cast<uint8_t>(k);
                EXPECT_EQ(AlphaOf(DistanceKeySetup(Grey(k), Grey(d), s), b, b, b), 0) << d << ' ' << s << ' ' << k;
            }
        }
    }
}

TEST(DistanceKernel, AlphaReachesItsTopAtTheSmoothRange) {
    for (const int32_t s : {5, 10, 60}) {
        const DistanceKey key = DistanceKeySetup(Grey(100), Grey(20), s);
        const auto edge = static_cast<uint8_t>(100 + 20 + s);
        EXPECT_EQ(AlphaOf(key, 100, 100, edge), 255);
        EXPECT_LT(AlphaOf(key, 100, 100, static_cast<uint8_t>(edge - 1)), 255);
    }
}

TEST(DistanceBlocks, WidthGoesUpToFourButNotOverTheStride) {
    EXPECT_EQ(DistanceBlocks(8, 8), 1);
    EXPECT_EQ(DistanceBlocks(7, 8), 1);
    EXPECT_EQ(DistanceBlocks(7, 7), 0);
    EXPECT_EQ(DistanceBlocks(5, 100), 1);
    EXPECT_EQ(DistanceBlocks(4, 100), 0);
    EXPECT_EQ(DistanceBlocks(1924, 1924), 240);
    EXPECT_EQ(DistanceBlocks(1925, 1928), 241);
    EXPECT_EQ(DistanceBlocks(100, 16), 2);
    EXPECT_EQ(DistanceBlocks(0, 100), 0);
    EXPECT_EQ(DistanceBlocks(-5, 100), 0);
    EXPECT_EQ(DistanceBlocks(100, -5), 0);
    EXPECT_EQ(DistanceBlocks(INT_MAX, INT_MAX), INT_MAX / 8);
}

}    // namespace
}    // namespace zck
