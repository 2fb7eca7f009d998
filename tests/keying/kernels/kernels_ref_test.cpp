// What the reference rows do at the ends of a row, and their worked numbers.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <climits>
#include <cmath>
#include <numeric>
#include <vector>

#include "tests/keying/kernels/tables.h"

namespace zck {
namespace {

using Bytes = std::vector<uint8_t>;
const KeyingKernels kRef = test::RefTable();

Bytes Counted(size_t n, uint8_t first = 0) {
    Bytes v(n);
    std::iota(v.begin(), v.end(), first);
    return v;
}

TEST(DistanceKernel, WritesNothingRightOfTheLastBlock) {
    const DistanceKey key = DistanceKeySetup(0x00646464, 0x00282828, 20);
    const Bytes src(4 * 24, 100);
    Bytes dst(24, 77);
    kRef.distance(dst.data(), src.data(), 2, &key);
    EXPECT_EQ(dst[15], 0);
    for (size_t x = 16; x < dst.size(); ++x) EXPECT_EQ(dst[x], 77);
    kRef.distance(dst.data(), src.data(), 0, &key);
    kRef.distance(dst.data(), src.data(), -1, &key);
}

// In full-screen terms: of a source row of 1924 pixels the last 4 have no alpha of their own.
TEST(DistanceKernel, RowOf1924PixelsHas1920Alphas) {
    const DistanceKey key = DistanceKeySetup(0x00646464, 0x00282828, 20);
    const Bytes src(4 * 1924, 100);
    Bytes dst(1924, 77);
    kRef.distance(dst.data(), src.data(), DistanceBlocks(1924, 1924), &key);
    EXPECT_EQ(std::count(dst.begin(), dst.end(), 0), 1920);
    EXPECT_EQ(std::count(dst.begin() + 1920, dst.end(), 77), 4);
}

// A key made by hand so that alpha is the root of V: halves go to the even neighbour.
TEST(DistanceKernel, RoundsTiesToEvenAndClamps) {
    DistanceKey key = {{100, 100, 100}, {0, 0, 0}, 0, 2.0F};
    const Bytes src(32, 100);
    Bytes dst(8);
    const auto alpha = [&](int32_t v) {
        key.off = -v;
        kRef.distance(dst.data(), src.data(), 1, &key);
        return int{dst[0]};
    };
    EXPECT_EQ(alpha(-1), 0);
    EXPECT_EQ(alpha(0), 0);
    EXPECT_EQ(alpha(1), 0);    // 0.5
    EXPECT_EQ(alpha(4), 1);
    EXPECT_EQ(alpha(9), 2);              // 1.5
    EXPECT_EQ(alpha(25), 2);             // 2.5
    EXPECT_EQ(alpha(49), 4);             // 3.5
    EXPECT_EQ(alpha(509 * 509), 254);    // 254.5
    EXPECT_EQ(alpha(510 * 510), 255);
    EXPECT_EQ(alpha(511 * 511), 255);
    EXPECT_EQ(alpha(INT_MAX), 255);
}

TEST(Join, TakesTheMinimumWithTheSaturatedSum) {
    Bytes dst(16, 200);
    Bytes src = Counted(16, 240);
    kRef.join(dst.data(), src.data(), 16, 0);
    EXPECT_EQ(dst, Bytes(16, 200));
    src.assign(16, 100);
    kRef.join(dst.data(), src.data(), 16, 50);
    EXPECT_EQ(dst, Bytes(16, 150));
    src.assign(16, 120);
    kRef.join(dst.data(), src.data(), 16, 200);    // saturates instead of wrapping to 64
    EXPECT_EQ(dst, Bytes(16, 150));
    kRef.join(dst.data(), src.data(), 16, 256 + 3);    // modulo 256
    EXPECT_EQ(dst, Bytes(16, 123));
}

TEST(Join, LeavesTheColumnsRightOfTheLastBlockAlone) {
    const Bytes src(40, 1);
    for (const int32_t width : {-3, 0, 1, 15, 16, 31, 32, 39}) {
        Bytes dst(40, 9);
        kRef.join(dst.data(), src.data(), width, 0);
        for (int32_t x = 0; x < 40; ++x) EXPECT_EQ(dst[static_cast<size_t>(x)], x < width / 16 * 16 ? 1 : 9);
    }
}

TEST(Invert, TailStartsOneByteLateAndEndsOneByteLate) {
    for (int32_t width = -2; width <= 50; ++width) {
        for (const bool slip : {true, false}) {
            Bytes row(64, 10);
            kRef.invert(row.data(), width, slip);
            const int32_t tail = std::max(width, 0) / 16 * 16;
            for (int32_t x = 0; x < 64; ++x) {
                const bool late = x > tail && width > tail && (x < width || (x == width && slip));
                EXPECT_EQ(row[static_cast<size_t>(x)], x < tail || late ? 245 : 10) << width << ' ' << x;
            }
        }
    }
}

TEST(Invert, WholeBlocksTouchNothingBeyond) {
    Bytes row(33, 255);
    kRef.invert(row.data(), 32, true);
    EXPECT_EQ(row[31], 0);
    EXPECT_EQ(row[32], 255);
}

TEST(Merge, WritesAlphaOverTheFourthByteAndKeepsTheGap) {
    for (int32_t width = -1; width <= 50; ++width) {
        const Bytes src = Counted(4 * 64);
        const Bytes alpha = Counted(64, 100);
        Bytes dst(4 * 64, 7);
        kRef.merge(dst.data(), src.data(), alpha.data(), width);
        for (int32_t x = 0; x < 64; ++x) {
            const bool gap = x >= width / 16 * 16 && x < width / 8 * 8;
            const auto i = static_cast<size_t>(x);
            const bool written = x < width && !gap;
            for (size_t j = 0; j < 3; ++j) EXPECT_EQ(dst[4 * i + j], written ? src[4 * i + j] : 7) << width << ' ' << x;
            EXPECT_EQ(dst[4 * i + 3], written ? alpha[i] : 7) << width << ' ' << x;
        }
    }
}

TEST(Premultiply, EndsAndMiddle) {
    Bytes row = {255, 128, 1, 255, 255, 128, 1, 0, 255, 128, 1, 128};
    kRef.premultiply(row.data(), 3);
    EXPECT_EQ(row, (Bytes{255, 128, 1, 255, 0, 0, 0, 0, 128, 64, 0, 128}));
}

TEST(Premultiply, StaysWithinAStepOfTheExactProduct) {
    for (int c = 0; c < 256; ++c) {
        for (int a = 0; a < 256; ++a) {
            const auto byte = static_cast<uint8_t>(c);
            Bytes pixel = {byte, byte, byte, static_cast<uint8_t>(a)};
            kRef.premultiply(pixel.data(), 1);
            const int t = c * a;
            EXPECT_EQ(pixel[0], (t + (t >> 8) + 1) >> 8);
            EXPECT_LE(std::abs(pixel[0] - t / 255.0), 1.0);
            EXPECT_EQ(pixel[2], pixel[0]);
            EXPECT_EQ(pixel[3], a);
        }
    }
}

TEST(MergePremultiply, IsMergeThenPremultiplyWithTheOldAlphaInTheGap) {
    for (int32_t width = 0; width <= 50; ++width) {
        const Bytes alpha = Counted(64, 100);
        Bytes one = Counted(4 * 64);
        Bytes two = one;
        Bytes three(4 * 64, 0x77);
        Bytes four = three;
        kRef.merge_premultiply(three.data(), one.data(), alpha.data(), width);
        kRef.merge_premultiply(one.data(), one.data(), alpha.data(), width);
        kRef.merge(two.data(), two.data(), alpha.data(), width);
        kRef.premultiply(two.data(), width);
        EXPECT_EQ(one, two);
        std::copy_n(two.begin(), 4 * width, four.begin());
        EXPECT_EQ(three, four) << "from another row: the whole width and no more";
    }
}

std::array<int, 3> Converted(void (*row)(uint8_t *, const uint8_t *, int32_t), uint8_t b0, uint8_t b1, uint8_t b2) {
    const uint8_t src[4] = {b0, b1, b2, 9};
    uint8_t dst[4] = {1, 2, 3, 44};
    row(dst, src, 1);
    EXPECT_EQ(dst[3], 44);    // the fourth byte is the destination's own
    return {dst[0], dst[1], dst[2]};
}

using Triple = std::array<int, 3>;

TEST(ToHls, PrimariesAndGreys) {
    const auto hls = [](uint8_t b, uint8_t g, uint8_t r) { return Converted(kRef.to_hls, b, g, r); };
    EXPECT_EQ(hls(0, 0, 0), (Triple{0, 0, 0}));
    EXPECT_EQ(hls(255, 255, 255), (Triple{0, 255, 0}));
    EXPECT_EQ(hls(128, 128, 128), (Triple{0, 128, 0}));
    EXPECT_EQ(hls(0, 0, 255), (Triple{0, 128, 255}));        // red
    EXPECT_EQ(hls(0, 255, 0), (Triple{85, 128, 255}));       // green, 120 degrees
    EXPECT_EQ(hls(255, 0, 0), (Triple{170, 128, 255}));      // blue, 240 degrees
    EXPECT_EQ(hls(0, 255, 255), (Triple{43, 128, 255}));     // yellow, 60 degrees = 42.5
    EXPECT_EQ(hls(255, 255, 0), (Triple{128, 128, 255}));    // cyan, 180 degrees = 127.5
    EXPECT_EQ(hls(255, 0, 255), (Triple{213, 128, 255}));    // magenta, negative hue brought to 300 degrees = 212.5
    EXPECT_EQ(hls(0, 128, 0)[2], 255);
    EXPECT_EQ(hls(200, 255, 200)[2], 255);
}

// A half plus 0.499999 falls short of the next whole number, but from 32 on a 32-bit float cannot hold the gap.
TEST(ToHls, HalvesGoDownBelow32AndUpFromThere) {
    const auto lightness = [](uint8_t r) { return Converted(kRef.to_hls, 0, 0, r)[1]; };
    EXPECT_EQ(lightness(1), 0);
    EXPECT_EQ(lightness(33), 16);
    EXPECT_EQ(lightness(63), 31);
    EXPECT_EQ(lightness(65), 33);
    EXPECT_EQ(lightness(67), 34);
}

TEST(ToHls, HueJustBelowTheFullCircle) { EXPECT_EQ(Converted(kRef.to_hls, 1, 0, 255)[0], 255); }

TEST(ToYuv, ReadsTheFirstByteAsRed) {
    const auto yuv = [](uint8_t x0, uint8_t x1, uint8_t x2) { return Converted(kRef.to_yuv, x0, x1, x2); };
    EXPECT_EQ(yuv(0, 0, 0), (Triple{0, 128, 128}));
    EXPECT_EQ(yuv(255, 255, 255), (Triple{255, 128, 128}));
    EXPECT_EQ(yuv(100, 100, 100), (Triple{100, 128, 128}));
    // First byte only: luma 19595 * 255 / 65536, and V beyond 255 is clipped.
    EXPECT_EQ(yuv(255, 0, 0), (Triple{76, 90, 255}));
    EXPECT_EQ(yuv(0, 255, 0), (Triple{149, 54, 0}));
    EXPECT_EQ(yuv(0, 0, 255), (Triple{29, 239, 102}));
}

TEST(FromYuv, GivesTheBytesInTheirOrder) {
    const auto back = [](uint8_t y, uint8_t u, uint8_t v) { return Converted(kRef.from_yuv, y, u, v); };
    EXPECT_EQ(back(0, 128, 128), (Triple{0, 0, 0}));
    EXPECT_EQ(back(100, 128, 128), (Triple{100, 100, 100}));
    // 74711 * 127 / 65536 is 144.8, and 38076 * 127 / 65536 73.8, both downwards.
    EXPECT_EQ(back(100, 128, 255), (Triple{244, 26, 100}));
    EXPECT_EQ(back(100, 255, 128), (Triple{100, 49, 255}));
    EXPECT_EQ(back(10, 0, 0), (Triple{0, 134, 0}));
}

// Each pixel is held against four others: its own limit passes, one more does not.
TEST(Flat, TheLimitItselfPasses) {
    const uint8_t first[4] = {10, 20, 30, 0};
    const auto flat = [&](Bytes row, Bytes above, int32_t limit) {
        return kRef.flat(row.data() + 4, above.data() + 4, 1, first, limit);
    };
    const Bytes plain = {10, 20, 30, 0, 10, 20, 30, 255};
    EXPECT_TRUE(flat(plain, plain, 0));
    // 1 + 4 + 9 to the left, above, above to the left.
    EXPECT_TRUE(flat({11, 22, 33, 0, 10, 20, 30, 0}, plain, 14));
    EXPECT_FALSE(flat({11, 22, 33, 0, 10, 20, 30, 0}, plain, 13));
    EXPECT_TRUE(flat(plain, {10, 20, 30, 0, 9, 18, 27, 0}, 14));
    EXPECT_FALSE(flat(plain, {10, 20, 30, 0, 9, 18, 27, 0}, 13));
    EXPECT_TRUE(flat(plain, {9, 18, 27, 0, 10, 20, 30, 0}, 14));
    EXPECT_FALSE(flat(plain, {9, 18, 27, 0, 10, 20, 30, 0}, 13));
    // Four times as far from the first.
    const Bytes other = {12, 24, 36, 0, 12, 24, 36, 0};
    EXPECT_TRUE(flat(other, other, 14));
    EXPECT_FALSE(flat(other, other, 13));
}

TEST(AddConst, SaturatesOverTheWholeWidth) {
    Bytes row = {0, 100, 250, 255, 9};
    kRef.add_const(row.data(), 4, 10);
    EXPECT_EQ(row, (Bytes{10, 110, 255, 255, 9}));
    kRef.add_const(row.data(), 5, -1);    // 255
    EXPECT_EQ(row, Bytes(5, 255));
    row = {1, 2};
    kRef.add_const(row.data(), 2, 256);
    EXPECT_EQ(row, (Bytes{1, 2}));
}

TEST(AddPlane, SaturatesOverTheWholeWidth) {
    Bytes dst = {0, 200, 255, 7};
    const Bytes src = {5, 56, 1, 1};
    kRef.add_plane(dst.data(), src.data(), 3);
    EXPECT_EQ(dst, (Bytes{5, 255, 255, 7}));
}

TEST(Threshold, CutsBelowTheLowAndAboveTheHigh) {
    Bytes row = {0, 99, 100, 101, 199, 200, 201, 255};
    kRef.threshold(row.data(), 8, 100, 200);
    EXPECT_EQ(row, (Bytes{0, 0, 100, 101, 199, 200, 255, 255}));
}

TEST(Threshold, NeutralBoundsChangeNothing) {
    const Bytes all = Counted(256);
    for (const int32_t low : {0, -1, INT_MIN}) {
        for (const int32_t high : {255, 256, INT_MAX}) {
            Bytes row = all;
            kRef.threshold(row.data(), 256, low, high);
            EXPECT_EQ(row, all);
        }
    }
}

TEST(Threshold, MiddleValueEndsAtTheTopWhenTheBoundsCross) {
    Bytes row = {10, 50, 51, 100, 149, 150, 255};
    kRef.threshold(row.data(), 7, 150, 50);
    EXPECT_EQ(row, (Bytes{0, 0, 255, 255, 255, 255, 255}));
}

TEST(Threshold, BoundsOutsideTheByteRangeCompareAsIntegers) {
    Bytes row = {0, 255};
    kRef.threshold(row.data(), 2, 300, 255);
    EXPECT_EQ(row, (Bytes{0, 0}));
    row = {0, 255};
    kRef.threshold(row.data(), 2, 0, -5);
    EXPECT_EQ(row, (Bytes{255, 255}));
}

// A zeroed record: every alpha but 0 becomes 255.
TEST(Threshold, ZeroedBoundsMakeAHardKey) {
    Bytes row = {0, 1, 128, 255};
    kRef.threshold(row.data(), 4, 0, 0);
    EXPECT_EQ(row, (Bytes{0, 255, 255, 255}));
}

struct Neighbourhood {
    uint8_t above[3], middle[3], below[3];
};

int Filtered(KeyingKernels::Filter3x3 filter, const Neighbourhood &n) {
    uint8_t dst = 0;
    filter(&dst, n.above + 1, n.middle + 1, n.below + 1, 1);
    return dst;
}

TEST(Filters, SmallWorkedNeighbourhood) {
    const Neighbourhood n = {{1, 2, 3}, {4, 50, 6}, {7, 8, 90}};
    EXPECT_EQ(Filtered(kRef.erode, n), 1);
    EXPECT_EQ(Filtered(kRef.dilate, n), 90);
    EXPECT_EQ(Filtered(kRef.box, n), (171 + 5) * 455 >> 12);
    EXPECT_EQ(Filtered(kRef.gauss, n), 21);    // (1 + 3 + 7 + 90 + 2 * (2 + 4 + 6 + 8) + 4 * 50) / 16 = 21.3
}

TEST(Filters, FlatNeighbourhoodsStay) {
    for (int v = 0; v < 256; ++v) {
        const auto b = static_cast<uint8_t>(v);
        const Neighbourhood n = {{b, b, b}, {b, b, b}, {b, b, b}};
        for (const auto filter : {kRef.erode, kRef.dilate, kRef.box, kRef.gauss}) EXPECT_EQ(Filtered(filter, n), v);
    }
}

TEST(Filters, GaussRoundsToNearestWithTiesToEven) {
    for (int s = 0; s <= 4080; ++s) {
        // The sum s, given out to the cells from the heaviest weight down.
        int rest = s;
        Neighbourhood n = {};
        uint8_t *cells[9] = {&n.middle[1], &n.above[1], &n.middle[0], &n.middle[2], &n.below[1],
                             &n.above[0],  &n.above[2], &n.below[0],  &n.below[2]};
        const int weights[9] = {4, 2, 2, 2, 2, 1, 1, 1, 1};
        for (int i = 0; i < 9; ++i) {
            const int v = std::min(rest / weights[i], 255);
            *cells[i] = static_cast<uint8_t>(v);
            rest -= v * weights[i];
        }
        ASSERT_EQ(rest, 0);
        EXPECT_EQ(Filtered(kRef.gauss, n), static_cast<int>(std::nearbyint(s / 16.0))) << s;
    }
}

}    // namespace
}    // namespace zck
