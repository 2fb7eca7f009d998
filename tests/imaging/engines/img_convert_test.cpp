#include "imaging/engines/img_convert.h"

#include <gtest/gtest.h>

#include <random>

#include "frames/media/pixel_format.h"
#include "platform/status.h"

namespace zck {
namespace {

using Bytes = std::vector<uint8_t>;

struct Picture {
    ImageView view;
    Bytes memory;

    Picture(eZFCC fcc, int32_t width, int32_t height, int32_t value) : view{{fcc, width, height, 0}, RowBytes(fcc, width), 0} {
        const bool planar = IsPlanarFormat(fcc);
        memory.assign(static_cast<size_t>(view.rowBytes * std::abs(height) * (planar ? 3 : 2) / 2),
                      static_cast<uint8_t>(value));
        view.bytes = static_cast<int64_t>(memory.size());
    }
};

constexpr ImgConvertJob kJob = {false, kResizeCubic, 0, 0};

HRESULT Converted(const Picture &a, Picture &b, const ImgConvertJob &job = kJob, const tagRECT *from = nullptr,
                  const tagRECT *to = nullptr) {
    ImgScaleState state;
    return Img_Convert(&state, a.memory.data(), b.memory.data(), a.view, b.view, from, to, job);
}

TEST(ImgConvertStage, Statuses) {
    const Picture a(eZFCC_UYVY, 8, 8, 100);
    Picture b(eZFCC_UYVY, 12, 8, 9);
    ImgScaleState state;
    EXPECT_EQ(Img_Convert(nullptr, a.memory.data(), b.memory.data(), a.view, b.view, nullptr, nullptr, kJob), E_INVALIDARG);
    EXPECT_EQ(Img_Convert(&state, nullptr, b.memory.data(), a.view, b.view, nullptr, nullptr, kJob), E_INVALIDARG);
    EXPECT_EQ(Img_Convert(&state, a.memory.data(), nullptr, a.view, b.view, nullptr, nullptr, kJob), E_INVALIDARG);
    const tagRECT empty = {4, 0, 4, 8}, outside = {20, 0, 28, 8}, part = {0, 0, 6, 6};
    EXPECT_EQ(Converted(a, b, kJob, &empty, nullptr), E_INVALIDARG);
    EXPECT_EQ(Converted(a, b, kJob, &outside, &part), S_FALSE) << "nothing is visible";
    Picture r210(eZFCC_r210, 12, 8, 9), plain(eZFCC_RGB8, 12, 8, 9), same(eZFCC_r210, 8, 8, 9);
    EXPECT_EQ(Converted(a, r210), kVfwEInvalidSubtype);
    EXPECT_EQ(Converted(a, plain), kVfwEInvalidSubtype);
    EXPECT_EQ(Converted(a, same), S_OK) << "what does not change its size is left alone with success";
    EXPECT_EQ(same.memory, Bytes(same.memory.size(), 9));
    Picture cut = b;
    cut.view.bytes = 24 * 8 - 1;
    EXPECT_EQ(Converted(a, cut), kVfwEInvalidMediaType);
    cut = b;
    cut.view.rowBytes = 23;
    EXPECT_EQ(Converted(a, cut), E_INVALIDARG);
    Picture grown(eZFCC_UYVY, 8, 12, 9);
    EXPECT_EQ(Converted(a, grown, {false, 3, 0, 0}), S_OK) << "rows alone need no code";
    EXPECT_TRUE(FAILED(Converted(a, b, {false, 3, 0, 0})));
}

TEST(ImgConvertStage, FactorsOfTheQualities) {
    constexpr struct {
        int32_t quality;
        double factor;
    } kTable[] = {{1, -1.0}, {2, 0.5}, {4, 0.75}, {5, 0.8}, {6, 0.85}, {7, 0.9}, {8, 1.0}, {16, 1.0}, {3, 1.0}};
    for (const auto &[quality, factor] : kTable) EXPECT_EQ(ScaleFactorOf(quality), factor);
}

// Super-sampling does not enlarge along the rows: the blurring cubic takes its place.
TEST(ImgConvertStage, SuperSamplingThatWidensBecomesTheBSpline) {
    Picture a(eZFCC_ARGB32, 8, -8, 0);
    std::mt19937 random(1);
    for (uint8_t &b : a.memory) b = static_cast<uint8_t>(random() >> 8);
    Picture super(eZFCC_ARGB32, 12, -8, 9), spline(eZFCC_ARGB32, 12, -8, 9);
    // Rows of one height are copied, so that the factor, which stays that of super-sampling, does not show.
    ASSERT_EQ(Converted(a, super, {true, kResizeSuper, 0, 0}), S_OK);
    ASSERT_EQ(Converted(a, spline, {true, kResizeBSpline, 0, 0}), S_OK);
    EXPECT_EQ(super.memory, spline.memory);
}

// 4:2:2 of one width keeps its bytes in place: no pair is taken apart.
TEST(ImgConvertStage, RowsOf422AreScaledAsTheyLie) {
    Picture a(eZFCC_UYVY, 8, 8, 0);
    for (size_t i = 0; i < a.memory.size(); ++i) a.memory[i] = static_cast<uint8_t>(i % 4 * 50);
    for (const eZFCC to : {eZFCC_UYVY, eZFCC_HDYC, eZFCC_YUY2, eZFCC_YVYU}) {
        Picture b(to, 8, 20, 9);
        ASSERT_EQ(Converted(a, b), S_OK);
        const int32_t order[4] = {to == eZFCC_UYVY || to == eZFCC_HDYC ? 0 : 1,
                                  to == eZFCC_UYVY || to == eZFCC_HDYC ? 1
                                  : to == eZFCC_YUY2                   ? 0
                                                                       : 2,
                                  to == eZFCC_UYVY || to == eZFCC_HDYC ? 2 : 3,
                                  to == eZFCC_UYVY || to == eZFCC_HDYC ? 3
                                  : to == eZFCC_YUY2                   ? 2
                                                                       : 0};
        for (size_t i = 0; i < 4 && i < static_cast<size_t>(b.view.rowBytes); ++i)
            EXPECT_NEAR(b.memory[10 * 16 + i], order[i] * 50, 1) << i;
    }
}

TEST(ImgConvertStage, Sharpening) {
    Picture a(eZFCC_ARGB32, 16, -16, 100), sharp(eZFCC_ARGB32, 16, -16, 9);
    for (size_t y = 0; y < 16; ++y)
        for (size_t x = 32; x < 64; ++x) a.memory[64 * y + x] = 150;
    ASSERT_EQ(Converted(a, sharp, {false, kResizeCubic, 50, 0}), S_OK);
    EXPECT_LT(sharp.memory[64 * 8 + 28], 100) << "the edge overshoots";
    EXPECT_GT(sharp.memory[64 * 8 + 32], 150);
    EXPECT_EQ(sharp.memory[64 * 8], 9) << "the first column stays";
}

}    // namespace
}    // namespace zck
