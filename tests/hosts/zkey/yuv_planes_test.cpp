#include "hosts/zkey/yuv_planes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

namespace {

using namespace zkey;

struct Rgb {
    double r, g, b;
};

Rgb Exact(const YuvMeaning &m, double y, double cb, double cr) {
    const double ys = m.fullRange ? y : (y - 16) * 255 / 219;
    const double u = (cb - 128) / (m.fullRange ? 255.0 : 224.0) * 255;
    const double v = (cr - 128) / (m.fullRange ? 255.0 : 224.0) * 255;
    const double kg = 1 - m.kr - m.kb;
    return {ys + 2 * (1 - m.kr) * v, ys - (2 * (1 - m.kb) * m.kb * u + 2 * (1 - m.kr) * m.kr * v) / kg,
            ys + 2 * (1 - m.kb) * u};
}

TEST(YuvPlanes, EveryMatrixAndRangeComesOutRight) {
    const YuvMeaning meanings[] = {kBt601, kBt709, {0.299, 0.114, true}, {0.2126, 0.0722, true}, {0.2627, 0.0593, false}};
    std::mt19937 random(5);
    for (const YuvMeaning &m : meanings) {
        for (int i = 0; i < 2000; ++i) {
            const auto y = static_cast<uint8_t>(random());
            const auto cb = static_cast<uint8_t>(random());
            const auto cr = static_cast<uint8_t>(random());
            YuvPlanes p{&y, &cb, &cr, 1, 1};
            uint8_t out[4];
            PlanesToRgb32(p, m, 1, 1, out, 4);
            const Rgb e = Exact(m, y, cb, cr);
            EXPECT_NEAR(out[2], std::clamp(e.r, 0.0, 255.0), 0.51);
            EXPECT_NEAR(out[1], std::clamp(e.g, 0.0, 255.0), 0.51);
            EXPECT_NEAR(out[0], std::clamp(e.b, 0.0, 255.0), 0.51);
            EXPECT_EQ(out[3], 255);
        }
    }
}

TEST(YuvPlanes, TheSizeTellsTheMatrixOfASilentClip) {
    EXPECT_TRUE(MeaningBySize(1920, 1080).IsBt709());
    EXPECT_TRUE(MeaningBySize(1080, 1920).IsBt709());
    EXPECT_TRUE(MeaningBySize(1280, 544).IsBt709());
    EXPECT_TRUE(MeaningBySize(720, 576).IsBt601());
    EXPECT_TRUE(MeaningBySize(320, 192).IsBt601());
}

/// Grey luma and a chroma plane; gives the blue bytes, which follow the chroma.
std::vector<int> Blues(YuvPlanes p, const std::vector<uint8_t> &cb, int chromaWidth, int width, int height) {
    const std::vector<uint8_t> luma(static_cast<std::size_t>(width * height), 100);
    const std::vector<uint8_t> cr(cb.size(), 128);
    p.y = luma.data();
    p.cb = cb.data();
    p.cr = cr.data();
    p.lumaRow = width;
    p.chromaRow = chromaWidth;
    std::vector<uint8_t> out(static_cast<std::size_t>(width * height * 4));
    PlanesToRgb32(p, {0.299, 0.114, true}, width, height, out.data(), width * 4);
    std::vector<int> blues;
    for (std::size_t i = 0; i < out.size(); i += 4) blues.push_back(out[i]);
    return blues;
}

int BlueOf(double cb) { return static_cast<int>(std::lround(100 + 1.772 * (cb - 128))); }

TEST(YuvPlanes, ChromaIsInterpolatedFromItsPlace) {
    YuvPlanes p{};
    p.shiftY = 0;
    p.leftSited = true;
    EXPECT_EQ(Blues(p, {120, 140}, 2, 4, 1), (std::vector<int>{BlueOf(120), BlueOf(130), BlueOf(140), BlueOf(140)}));
    p.leftSited = false;
    EXPECT_EQ(Blues(p, {120, 140}, 2, 4, 1), (std::vector<int>{BlueOf(120), BlueOf(125), BlueOf(135), BlueOf(140)}));
    p.shiftX = 0;
    p.shiftY = 1;
    EXPECT_EQ(Blues(p, {120, 140}, 1, 1, 4), (std::vector<int>{BlueOf(120), BlueOf(125), BlueOf(135), BlueOf(140)}));
}

TEST(YuvPlanes, FieldsDoNotMix) {
    YuvPlanes p{};
    p.shiftX = 0;
    p.interlaced = true;
    // Chroma rows 0 and 2 belong to the first field, 1 and 3 to the second.
    const std::vector<int> blues = Blues(p, {120, 200, 120, 200}, 1, 1, 8);
    for (int y = 0; y < 8; ++y) EXPECT_EQ(blues[static_cast<std::size_t>(y)], BlueOf(y % 2 == 0 ? 120 : 200)) << y;
}

TEST(YuvPlanes, OddSizesStayInside) {
    for (int width = 1; width < 6; ++width) {
        for (int height = 1; height < 6; ++height) {
            YuvPlanes p{};
            const int cw = (width + 1) / 2;
            const int ch = (height + 1) / 2;
            const std::vector<uint8_t> cb(static_cast<std::size_t>(cw * ch), 150);
            for (const int blue : Blues(p, cb, cw, width, height)) EXPECT_EQ(blue, BlueOf(150));
            p.interlaced = true;
            for (const int blue : Blues(p, cb, cw, width, height)) EXPECT_EQ(blue, BlueOf(150));
        }
    }
}

TEST(YuvPlanes, PackedPairsKeepEverySample) {
    const uint8_t y[] = {1, 2, 3, 4, 5};
    const uint8_t cb[] = {10, 11, 12};
    const uint8_t cr[] = {20, 21, 22};
    YuvPlanes p{y, cb, cr, 5, 3};
    p.shiftY = 0;
    uint8_t out[12];
    PlanesToPacked(p, PairOrder::ChromaFirst, 5, 1, out, 12);
    EXPECT_EQ(std::vector<uint8_t>(out, out + 12), (std::vector<uint8_t>{10, 1, 20, 2, 11, 3, 21, 4, 12, 5, 22, 5}));
    // From packed memory: the same samples with larger steps.
    const uint8_t yuyv[] = {1, 10, 2, 20, 3, 11, 4, 21};
    YuvPlanes q{yuyv, yuyv + 1, yuyv + 3, 8, 8, 2, 4};
    q.shiftY = 0;
    PlanesToPacked(q, PairOrder::ChromaFirst, 4, 1, out, 8);
    EXPECT_EQ(std::vector<uint8_t>(out, out + 8), (std::vector<uint8_t>{10, 1, 20, 2, 11, 3, 21, 4}));
    PlanesToPacked(p, PairOrder::LumaFirst, 5, 1, out, 12);
    EXPECT_EQ(std::vector<uint8_t>(out, out + 12), (std::vector<uint8_t>{1, 10, 2, 20, 3, 11, 4, 21, 5, 12, 5, 22}));
}

}    // namespace
