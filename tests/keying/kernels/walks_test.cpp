// Where a row rounds, noise does not find a wrong last bit: here each argument is walked over its whole range.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <vector>

#include "tests/keying/kernels/tables.h"

namespace zck {
namespace {

using Bytes = std::vector<uint8_t>;

class Walks : public testing::Test {
protected:
    void SetUp() override {
        if (!CpuHasAvx2()) GTEST_SKIP() << "this processor has no AVX2: nothing to compare";
    }
    const KeyingKernels m_ref = test::RefTable();
    const KeyingKernels m_avx2 = test::Avx2Table();
};

// Pixels whose half squared differences from a centre of 1, with weights of 1, add up to 0, 2, 4, ... in order.
constexpr int32_t kSteps = 16384;

Bytes StairPixels() {
    const auto quarter = [](int32_t e) { return e * e / 4; };
    Bytes pixels(4 * kSteps);
    std::vector<bool> found(kSteps);
    for (int32_t a = 0; a <= 254; ++a) {
        for (int32_t b = 0; b <= a; ++b) {
            for (int32_t c = 0; c <= b; ++c) {
                const int32_t n = quarter(a) + quarter(b) + quarter(c);
                if (n >= kSteps) break;
                const auto i = static_cast<size_t>(n);
                if (found[i]) continue;
                found[i] = true;
                pixels[4 * i] = static_cast<uint8_t>(a + 1);
                pixels[4 * i + 1] = static_cast<uint8_t>(b + 1);
                pixels[4 * i + 2] = static_cast<uint8_t>(c + 1);
            }
        }
    }
    EXPECT_TRUE(std::all_of(found.begin(), found.end(), [](bool f) { return f; }));
    return pixels;
}

// Every V from a little below 0 to a little above the top of the ramp.
TEST_F(Walks, DistanceOverEveryValueOfTheRamp) {
    struct {
        int32_t delta, smooth;
    } const keys[] = {{0x00282828, 20}, {0x00282828, 1},  {0x00010101, 3}, {0x000A141E, 26}, {0x00050505, 60},
                      {0x00FFFFFF, 1},  {0x00171D25, 10}, {0x00404040, 0}, {0x00282828, 30}, {0x000A0B0C, 10}};
    const Bytes pixels = StairPixels();
    Bytes one(kSteps);
    Bytes two(kSteps);
    for (const auto &k : keys) {
        DistanceKey key = DistanceKeySetup(0x00010101, k.delta, k.smooth);
        const double top = 256.6 * key.div;
        const auto end = static_cast<int64_t>(top * top) + 1000;
        ASSERT_LT(end, INT32_MAX - 2 * kSteps);
        std::printf("divisor %.9g: %.0f values\n", static_cast<double>(key.div), static_cast<double>(end));
        key = {{1, 1, 1}, {1, 1, 1}, 0, key.div};
        bool zero = false;
        bool full = false;
        for (int64_t base = -1000; base < end; base += 2 * kSteps) {
            for (int32_t odd = 0; odd < 2; ++odd) {
                key.off = -static_cast<int32_t>(base + odd);
                m_ref.distance(one.data(), pixels.data(), kSteps / 8, &key);
                m_avx2.distance(two.data(), pixels.data(), kSteps / 8, &key);
                ASSERT_EQ(one, two) << "from V = " << base + odd;
                zero = zero || one.front() == 0;
                full = full || one.back() == 255;
            }
        }
        EXPECT_TRUE(zero && full);
    }
}

void WalkColours(void (*ref)(uint8_t *, const uint8_t *, int32_t), void (*vector)(uint8_t *, const uint8_t *, int32_t)) {
    constexpr int32_t kRow = 256 * 64;
    Bytes src(4 * kRow);
    Bytes one(4 * kRow, 0x5A);
    Bytes two(4 * kRow, 0x5A);
    for (uint32_t colour = 0; colour < 1U << 24;) {
        for (size_t i = 0; i < kRow; ++i, ++colour) {
            src[4 * i] = static_cast<uint8_t>(colour);
            src[4 * i + 1] = static_cast<uint8_t>(colour >> 8);
            src[4 * i + 2] = static_cast<uint8_t>(colour >> 16);
        }
        ref(one.data(), src.data(), kRow);
        vector(two.data(), src.data(), kRow);
        ASSERT_EQ(one, two) << "colours up to " << colour;
    }
}

TEST_F(Walks, HlsOverEveryColour) { WalkColours(m_ref.to_hls, m_avx2.to_hls); }
TEST_F(Walks, YuvOverEveryColour) { WalkColours(m_ref.to_yuv, m_avx2.to_yuv); }
TEST_F(Walks, YuvBackOverEveryColour) { WalkColours(m_ref.from_yuv, m_avx2.from_yuv); }

TEST_F(Walks, PremultiplyOverEveryPair) {
    Bytes one;
    for (int a = 0; a < 256; ++a) {
        for (int c = 0; c < 256; ++c) {
            // Three different bytes, so that each position sees each pair.
            for (const int byte : {c, (c + 85) % 256, (c + 170) % 256, a}) one.push_back(static_cast<uint8_t>(byte));
        }
    }
    Bytes two = one;
    m_ref.premultiply(one.data(), 65536);
    m_avx2.premultiply(two.data(), 65536);
    EXPECT_EQ(one, two);
}

TEST_F(Walks, ThresholdOverEveryByteAndBound) {
    Bytes all(256);
    for (size_t i = 0; i < 256; ++i) all[i] = static_cast<uint8_t>(i);
    for (int32_t low = -2; low <= 257; ++low) {
        for (int32_t high = -2; high <= 257; ++high) {
            Bytes one = all;
            Bytes two = all;
            m_ref.threshold(one.data(), 256, low, high);
            m_avx2.threshold(two.data(), 256, low, high);
            ASSERT_EQ(one, two) << low << ' ' << high;
        }
    }
}

TEST_F(Walks, JoinAndAdditionOverEveryPair) {
    Bytes columns(65536);
    Bytes rows(65536);
    for (size_t i = 0; i < 65536; ++i) {
        columns[i] = static_cast<uint8_t>(i);
        rows[i] = static_cast<uint8_t>(i >> 8);
    }
    Bytes one = columns;
    Bytes two = columns;
    m_ref.add_plane(one.data(), rows.data(), 65536);
    m_avx2.add_plane(two.data(), rows.data(), 65536);
    EXPECT_EQ(one, two);
    for (int32_t c = 0; c < 256; ++c) {
        one = two = columns;
        m_ref.join(one.data(), rows.data(), 65536, c);
        m_avx2.join(two.data(), rows.data(), 65536, c);
        ASSERT_EQ(one, two) << c;
        one = two = columns;
        m_ref.add_const(one.data(), 65536, c);
        m_avx2.add_const(two.data(), 65536, c);
        ASSERT_EQ(one, two) << c;
    }
}

// Rows in which every third neighbourhood has the sum s, for every s.
void WalkSums(KeyingKernels::Filter3x3 ref, KeyingKernels::Filter3x3 vector, const int32_t *weights, int32_t total) {
    for (int32_t s = 0; s <= total * 255; ++s) {
        // Given out from the heaviest cell down; the three columns repeat.
        int32_t rest = s;
        int32_t cells[9] = {};
        for (const int32_t weight : {4, 2, 1}) {
            for (int i = 0; i < 9; ++i) {
                if (weights[i] != weight) continue;
                cells[i] = std::min(rest / weight, 255);
                rest -= cells[i] * weight;
            }
        }
        ASSERT_EQ(rest, 0);
        constexpr int32_t kWidth = 64;
        uint8_t rows[3][kWidth + 2];
        for (int y = 0; y < 3; ++y)
            for (int x = 0; x < kWidth + 2; ++x) rows[y][x] = static_cast<uint8_t>(cells[3 * y + x % 3]);
        Bytes one(kWidth);
        Bytes two(kWidth);
        ref(one.data(), rows[0] + 1, rows[1] + 1, rows[2] + 1, kWidth);
        vector(two.data(), rows[0] + 1, rows[1] + 1, rows[2] + 1, kWidth);
        ASSERT_EQ(one, two) << s;
    }
}

TEST_F(Walks, BoxOverEverySum) {
    const int32_t weights[9] = {1, 1, 1, 1, 1, 1, 1, 1, 1};
    WalkSums(m_ref.box, m_avx2.box, weights, 9);
}

TEST_F(Walks, GaussOverEverySum) {
    const int32_t weights[9] = {1, 2, 1, 2, 4, 2, 1, 2, 1};
    WalkSums(m_ref.gauss, m_avx2.gauss, weights, 16);
}

}    // namespace
}    // namespace zck
