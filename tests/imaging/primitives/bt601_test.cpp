// The BT.601 pair over all of its arguments, at every level, against the formulas in thousandths.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <random>
#include <vector>

#include "imaging/primitives/row_kernels.h"
#include "tests/support/kernel_check.h"

namespace zck {
namespace {

// n / d to the nearest, halves up, into a byte; written with a remainder, unlike the kernels.
int32_t Nearest(int64_t n, int64_t d) {
    int64_t q = n / d;
    int64_t rest = n % d;
    if (rest < 0) {
        rest += d;
        --q;
    }
    if (2 * rest >= d) ++q;
    return static_cast<int32_t>(std::clamp<int64_t>(q, 0, 255));
}

std::vector<PrimitiveKernels> Levels() {
    return test::TablesOf<PrimitiveKernels>({PrimitiveKernelsInitRef, PrimitiveKernelsInitAvx2});
}

TEST(Bt601, EveryColourGoesDownExactly) {
    // A row holds all blues of one red and green, each twice, so that the chroma of the pair is that of the colour.
    std::vector<uint8_t> row(256 * 8, 9);
    std::vector<uint8_t> uyvy(256 * 4);
    std::vector<uint8_t> yuy2(256 * 4);
    for (const PrimitiveKernels &k : Levels())
        for (int32_t rg = 0; rg < 65536; ++rg) {
            const int32_t r = rg >> 8, g = rg & 255;
            for (size_t b = 0; b < 256; ++b)
                for (size_t i = 8 * b; i < 8 * b + 8; i += 4) {
                    row[i] = static_cast<uint8_t>(b);
                    row[i + 1] = static_cast<uint8_t>(g);
                    row[i + 2] = static_cast<uint8_t>(r);
                }
            k.bgra_to_uyvy(uyvy.data(), row.data(), 512);
            k.bgra_to_yuy2(yuy2.data(), row.data(), 512);
            int32_t wrong = 0;
            for (int32_t b = 0; b < 256; ++b) {
                const uint8_t *p = &uyvy[4 * static_cast<size_t>(b)];
                const uint8_t *q = &yuy2[4 * static_cast<size_t>(b)];
                const int32_t y = Nearest(257 * r + 504 * g + 98 * b + 16000, 1000);
                const int32_t cb = Nearest(-148 * r - 291 * g + 439 * b + 128000, 1000);
                const int32_t cr = Nearest(439 * r - 368 * g - 71 * b + 128000, 1000);
                wrong += p[0] != cb || p[1] != y || p[2] != cr || p[3] != y;
                wrong += q[0] != y || q[1] != cb || q[2] != y || q[3] != cr;
            }
            ASSERT_EQ(wrong, 0) << "red " << r << " green " << g;
        }
}

TEST(Bt601, EveryTripleGoesUpExactly) {
    std::vector<uint8_t> uyvy(256 * 2);
    std::vector<uint8_t> yuy2(256 * 2);
    std::vector<uint8_t> fromUyvy(256 * 4);
    std::vector<uint8_t> fromYuy2(256 * 4);
    std::vector<uint8_t> luma(256), cbs(128), crs(128), pairs(256);
    for (const PrimitiveKernels &k : Levels())
        for (int32_t cbcr = 0; cbcr < 65536; ++cbcr) {
            const int32_t cb = cbcr >> 8, cr = cbcr & 255;
            for (size_t x = 0; x < 256; ++x) {
                uyvy[2 * x] = yuy2[2 * x + 1] = static_cast<uint8_t>(x % 2 == 0 ? cb : cr);
                uyvy[2 * x + 1] = yuy2[2 * x] = luma[x] = static_cast<uint8_t>(x);
                cbs[x / 2] = static_cast<uint8_t>(cb);
                crs[x / 2] = static_cast<uint8_t>(cr);
                pairs[x] = static_cast<uint8_t>(x % 2 == 0 ? cb : cr);
            }
            k.uyvy_to_bgra(fromUyvy.data(), uyvy.data(), 256, 200);
            k.yuy2_to_bgra(fromYuy2.data(), yuy2.data(), 256, 200);
            ASSERT_EQ(fromUyvy, fromYuy2);
            k.planes_to_bgra(fromYuy2.data(), luma.data(), cbs.data(), crs.data(), 256, 200);
            ASSERT_EQ(fromUyvy, fromYuy2);
            k.nv12_to_bgra(fromYuy2.data(), luma.data(), pairs.data(), 256, 200);
            ASSERT_EQ(fromUyvy, fromYuy2);
            int32_t wrong = 0;
            for (int32_t y = 0; y < 256; ++y) {
                const uint8_t *p = &fromUyvy[4 * static_cast<size_t>(y)];
                const int64_t scaled = 1164 * (y - 16);
                wrong += p[0] != Nearest(scaled + 2017 * (cb - 128), 1000);
                wrong += p[1] != Nearest(scaled - 813 * (cr - 128) - 392 * (cb - 128), 1000);
                wrong += p[2] != Nearest(scaled + 1596 * (cr - 128), 1000);
                wrong += p[3] != 200;
            }
            ASSERT_EQ(wrong, 0) << "Cb " << cb << " Cr " << cr;
        }
}

TEST(Bt601, ChromaIsThatOfTheUnroundedMean) {
    std::mt19937 random(31);
    for (const PrimitiveKernels &k : Levels())
        for (int32_t round = 0; round < 20000; ++round) {
            uint8_t px[64];
            for (uint8_t &b : px) b = static_cast<uint8_t>(random() >> 8);
            uint8_t out[32];
            k.bgra_to_uyvy(out, px, 16);
            for (int32_t i = 0; i < 8; ++i) {
                const uint8_t *p = px + 8 * i;
                const int32_t b = p[0] + p[4], g = p[1] + p[5], r = p[2] + p[6];
                ASSERT_EQ(out[4 * i], Nearest(-148 * r - 291 * g + 439 * b + 256000, 2000));
                ASSERT_EQ(out[4 * i + 2], Nearest(439 * r - 368 * g - 71 * b + 256000, 2000));
            }
        }
    // Blue 0 and 1 beside each other: 128.2195 and not the mean of 128 and 128.439; a tie goes up.
    uint8_t tie[8] = {};
    int32_t ties = 0;
    for (int32_t n = 0; n < 256; ++n)
        for (int32_t m = 0; m < 256; ++m) {
            if ((-148 * (n + m) + 256000) % 2000 != 1000) continue;
            ++ties;
            tie[2] = static_cast<uint8_t>(n);
            tie[6] = static_cast<uint8_t>(m);
            for (const PrimitiveKernels &k : Levels()) {
                uint8_t out[4];
                k.bgra_to_uyvy(out, tie, 2);
                ASSERT_EQ(out[0], (-148 * (n + m) + 257000) / 2000);
            }
        }
    EXPECT_GT(ties, 0);
}

TEST(Bt601, ChromaOfFourIsThatOfTheUnroundedMean) {
    std::mt19937 random(32);
    int32_t otherwise = 0;
    for (const PrimitiveKernels &k : Levels())
        for (int32_t round = 0; round < 40000; ++round) {
            uint8_t px[128];
            for (uint8_t &b : px) b = static_cast<uint8_t>(random() >> 8);
            uint8_t y0[16], y1[16], cb[8], cr[8];
            k.bgra_to_420(y0, y1, cb, cr, px, px + 64, 16);
            uint8_t rows[2][32];
            for (int32_t row = 0; row < 2; ++row) k.bgra_to_uyvy(rows[row], px + 64 * row, 16);
            for (int32_t i = 0; i < 16; ++i) {
                ASSERT_EQ(y0[i], rows[0][2 * i + 1]);
                ASSERT_EQ(y1[i], rows[1][2 * i + 1]);
            }
            for (int32_t i = 0; i < 8; ++i) {
                const uint8_t *p = px + 8 * i;
                const uint8_t *q = p + 64;
                const int32_t b = p[0] + p[4] + q[0] + q[4], g = p[1] + p[5] + q[1] + q[5], r = p[2] + p[6] + q[2] + q[6];
                ASSERT_EQ(cb[i], Nearest(-148 * r - 291 * g + 439 * b + 512000, 4000));
                ASSERT_EQ(cr[i], Nearest(439 * r - 368 * g - 71 * b + 512000, 4000));
                otherwise += cb[i] != (rows[0][4 * i] + rows[1][4 * i] + 1) / 2;
            }
        }
    // The mean of two rounded rows would be another conversion.
    EXPECT_GT(otherwise, 0);
}

TEST(Bt601, ExtremesOfFour) {
    for (const PrimitiveKernels &k : Levels())
        for (int32_t colour = 0; colour < 8; ++colour) {
            uint8_t px[64];
            for (size_t i = 0; i < 64; ++i) px[i] = (colour >> (i % 4)) % 2 != 0 ? 255 : 0;
            uint8_t y0[16], y1[16], cb[8], cr[8], uyvy[32];
            k.bgra_to_420(y0, y1, cb, cr, px, px, 16);
            k.bgra_to_uyvy(uyvy, px, 16);
            for (int32_t i = 0; i < 8; ++i) {
                ASSERT_EQ(cb[i], uyvy[4 * i]);
                ASSERT_EQ(cr[i], uyvy[4 * i + 2]);
                ASSERT_EQ(y1[2 * i], uyvy[4 * i + 1]);
            }
        }
}

TEST(Bt601, OddWidths) {
    const uint8_t px[] = {10, 20, 30, 0, 40, 50, 60, 0, 200, 100, 50, 0};
    for (const PrimitiveKernels &k : Levels()) {
        uint8_t twice[4];
        const uint8_t last[] = {200, 100, 50, 0, 200, 100, 50, 0};
        k.bgra_to_uyvy(twice, last, 2);
        uint8_t uyvy[8] = {7, 7, 7, 7, 7, 7, 7, 7};
        k.bgra_to_uyvy(uyvy, px, 3);
        // Averaged with itself; the second luma byte stays.
        EXPECT_EQ(uyvy[4], twice[0]);
        EXPECT_EQ(uyvy[5], twice[1]);
        EXPECT_EQ(uyvy[6], twice[2]);
        EXPECT_EQ(uyvy[7], 7);
        uint8_t yuy2[8] = {7, 7, 7, 7, 7, 7, 7, 7};
        k.bgra_to_yuy2(yuy2, px, 3);
        EXPECT_EQ(yuy2[4], twice[1]);
        EXPECT_EQ(yuy2[5], twice[0]);
        EXPECT_EQ(yuy2[6], 7);
        EXPECT_EQ(yuy2[7], twice[2]);
        // Up: the chroma of its own group.
        uint8_t whole[16], odd[12];
        k.uyvy_to_bgra(whole, uyvy, 4, 255);
        k.uyvy_to_bgra(odd, uyvy, 3, 255);
        EXPECT_TRUE(std::equal(odd, odd + 12, whole));
        // An exchange leaves the same byte alone.
        uint8_t swapped[4] = {9, 9, 9, 9};
        k.uyvy_to_yuy2(swapped, uyvy, 1);
        EXPECT_EQ(swapped[2], 9);
        EXPECT_EQ(swapped[3], uyvy[2]);
        uint8_t back[4] = {9, 9, 9, 9};
        k.yuy2_to_uyvy(back, swapped, 1);
        EXPECT_EQ(back[3], 9);
        EXPECT_EQ(back[2], uyvy[2]);
        uint8_t yvyu[4] = {9, 9, 9, 9};
        k.swap_chroma(yvyu, swapped, 1);
        EXPECT_EQ(yvyu[1], swapped[3]);
        EXPECT_EQ(yvyu[2], 9);
        EXPECT_EQ(yvyu[3], swapped[1]);
    }
}

}    // namespace
}    // namespace zck
