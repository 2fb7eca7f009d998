#include "imaging/scale/resize_sharp.h"

#include <gtest/gtest.h>

#include <cstring>
#include <random>

#include "frames/media/pixel_format.h"
#include "imaging/scale/filter.h"
#include "platform/status.h"

namespace zck {
namespace {

using Bytes = std::vector<uint8_t>;

struct Picture {
    ImageView view;
    int32_t pixel;
    Bytes memory;

    Picture(eZFCC fcc, int32_t width, int32_t height, uint32_t seed)
        : view{{fcc, width, height, 0}, RowBytes(fcc, width), 0}, pixel(PixelBits(fcc) / 8) {
        memory.resize(static_cast<size_t>(view.rowBytes * std::abs(height)));
        view.bytes = static_cast<int64_t>(memory.size());
        std::mt19937 random(seed);
        for (uint8_t &b : memory) b = static_cast<uint8_t>(random() >> 8);
    }
    Picture(eZFCC fcc, int32_t width, int32_t height, int32_t value) : Picture(fcc, width, height, 1U) {
        std::fill(memory.begin(), memory.end(), static_cast<uint8_t>(value));
    }
    uint8_t &At(int32_t x, int32_t y) { return memory[static_cast<size_t>(y * view.rowBytes + x * pixel)]; }
};

HRESULT Scaled(Picture &a, Picture &b, bool interlaced, ScaleOptions o) {
    PlaneResizer worker;
    return SEH_Resize_n_Sharp(&worker, a.memory.data(), b.memory.data(), &a.view, &b.view, interlaced, &o);
}

constexpr ScaleOptions kCubic = {kResizeCubic, 0.75, 0, 0};

TEST(ResizeSharp, Statuses) {
    Picture a(eZFCC_RGB8, 8, 6, 1U), b(eZFCC_RGB8, 8, 6, 2U), c(eZFCC_ARGB32, 8, 6, 3U), d(eZFCC_UYVY, 8, 6, 3U);
    PlaneResizer w;
    EXPECT_EQ(SEH_Resize_n_Sharp(nullptr, a.memory.data(), b.memory.data(), &a.view, &b.view, false, &kCubic), E_POINTER);
    EXPECT_EQ(SEH_Resize_n_Sharp(&w, nullptr, b.memory.data(), &a.view, &b.view, false, &kCubic), E_POINTER);
    EXPECT_EQ(SEH_Resize_n_Sharp(&w, a.memory.data(), nullptr, &a.view, &b.view, false, &kCubic), E_POINTER);
    EXPECT_EQ(SEH_Resize_n_Sharp(&w, a.memory.data(), b.memory.data(), nullptr, &b.view, false, &kCubic), E_POINTER);
    EXPECT_EQ(SEH_Resize_n_Sharp(&w, a.memory.data(), b.memory.data(), &a.view, nullptr, false, &kCubic), E_POINTER);
    EXPECT_EQ(SEH_Resize_n_Sharp(&w, a.memory.data(), b.memory.data(), &a.view, &b.view, false, nullptr), E_POINTER);
    EXPECT_EQ(Scaled(a, c, false, kCubic), E_INVALIDARG);
    EXPECT_EQ(Scaled(d, d, false, kCubic), E_INVALIDARG);
    Picture e(static_cast<eZFCC>(kFccRgb565), 8, 6, 1U);
    EXPECT_EQ(Scaled(e, e, false, kCubic), E_INVALIDARG);
    a.view.bytes -= 1;
    EXPECT_EQ(Scaled(a, b, false, kCubic), kVfwEInvalidMediaType);
    EXPECT_EQ(Scaled(b, a, false, kCubic), kVfwEInvalidMediaType);
    // Super-sampling does not enlarge.
    Picture wide(eZFCC_RGB8, 12, 6, 1U);
    EXPECT_EQ(Scaled(b, wide, false, {kResizeSuper, 1.0, 0, 0}), StatusOf(0xFFFFFFFB));
    EXPECT_EQ(Scaled(b, wide, false, {3, 1.0, 0, 0}), StatusOf(0xFFFFFFFB));
    // A field of one row has no rows.
    Picture low(eZFCC_RGB8, 8, 1, 1U), lowWide(eZFCC_RGB8, 12, 1, 1U);
    EXPECT_EQ(Scaled(low, lowWide, true, {kResizeLanczos, 1.0, 0, 0}), StatusOf(0xFFFFFFFA));
    // A region without pixels.
    Picture thin(eZFCC_RGB8, 2, 6, 1U), thinner(eZFCC_RGB8, 2, 6, 1U);
    EXPECT_EQ(Scaled(thin, thinner, false, {kResizeCubic, 1.0, 0, 10}), StatusOf(0xFFFFFFFA));
}

TEST(ResizeSharp, NothingToDoIsACopy) {
    Picture a(eZFCC_RGB24, 7, 6, 1U), b(eZFCC_RGB24, 7, 6, 2U);
    ASSERT_EQ(Scaled(a, b, true, kCubic), S_OK);
    for (int32_t y = 0; y < 6; ++y) EXPECT_EQ(std::memcmp(&a.At(0, y), &b.At(0, y), 21), 0);
}

// A progressive picture always goes through the vertical stage, which repeats the last but one row of an even height.
TEST(ResizeSharp, ProgressiveOfOneSizeRepeatsARow) {
    Picture a(eZFCC_ARGB32, 7, -6, 1U), b(eZFCC_ARGB32, 7, -6, 2U);
    ASSERT_EQ(Scaled(a, b, false, kCubic), S_OK);
    for (int32_t y = 0; y < 6; ++y) EXPECT_EQ(std::memcmp(&a.At(0, std::min(y, 4)), &b.At(0, y), 28), 0) << y;
}

TEST(ResizeSharp, OppositeRowOrdersAreTurned) {
    Picture a(eZFCC_ARGB32, 7, 5, 1U), b(eZFCC_ARGB32, 7, -5, 2U);
    ASSERT_EQ(Scaled(a, b, true, kCubic), S_OK);
    for (int32_t y = 0; y < 5; ++y) EXPECT_EQ(std::memcmp(&a.At(0, 4 - y), &b.At(0, y), 28), 0) << y;
    Picture c(eZFCC_RGB8, 7, 5, 1U), d(eZFCC_RGB8, 7, -5, 2U);
    ASSERT_EQ(Scaled(c, d, true, kCubic), S_OK);
    for (int32_t y = 0; y < 5; ++y) EXPECT_EQ(std::memcmp(&c.At(0, y), &d.At(0, y), 7), 0) << "RGB8 has no row order";
}

// Rows first, then columns.
TEST(ResizeSharp, BothStages) {
    for (const eZFCC fcc : {eZFCC_RGB8, eZFCC_RGB24, eZFCC_ARGB32})
        for (const int32_t q : {1, 2, 4, 5, 6, 7, 8, 16})
            for (const bool interlaced : {false, true}) {
                SCOPED_TRACE(testing::Message()
                             << std::hex << fcc << std::dec << " code " << q << " interlaced " << interlaced);
                Picture a(fcc, 40, -24, 1U), b(fcc, 30, -14, 2U), tall(fcc, 40, -14, 3U);
                const ScaleOptions o = {q, 0.8, 0, 0};
                ASSERT_EQ(Scaled(a, b, interlaced, o), S_OK);
                ASSERT_EQ(Scaled(a, tall, interlaced, o), S_OK);
                const bool fields = interlaced && q >= 5 && q != 6;
                for (int32_t c = 0; c < b.pixel; ++c) {
                    Bytes plane, made(30 * 14);
                    for (int32_t y = 0; y < 14; ++y)
                        for (int32_t x = 0; x < 40; ++x) plane.push_back((&tall.At(x, y))[c]);
                    Resizer r;
                    for (int32_t f = 0; f < (fields ? 2 : 1); ++f)
                        ASSERT_EQ(ResizeImage(&r, {{40, fields ? 7 : 14}, {30, fields ? 7 : 14}, 1, q}, plane.data() + 40 * f,
                                              fields ? 80 : 40, made.data() + 30 * f, fields ? 60 : 30),
                                  0);
                    for (int32_t y = 0; y < 14; ++y)
                        for (int32_t x = 0; x < 30; ++x) ASSERT_EQ((&b.At(x, y))[c], made[static_cast<size_t>(30 * y + x)]);
                }
            }
}

TEST(ResizeSharp, HalvesAreFields) {
    Picture a(eZFCC_RGB8, 40, 7, 1U), b(eZFCC_RGB8, 20, 7, 9);
    PlaneResizer w;
    w.bHalvesInParallel = true;
    const ScaleOptions o = {kResizeLinear, 0.8, 0, 0};
    ASSERT_EQ(SEH_Resize_n_Sharp(&w, a.memory.data(), b.memory.data(), &a.view, &b.view, true, &o), S_OK);
    for (int32_t x = 0; x < 20; ++x) EXPECT_EQ(b.At(x, 6), 9) << "the odd last row is in no field";
    EXPECT_NE(std::memcmp(&b.At(0, 5), &b.At(0, 6), 20), 0);
}

TEST(ResizeSharp, TheFilterOfAFlatPictureChangesNothing) {
    for (const int32_t sharpen : {-99, -50, -20, -1, 1, 30, 50, 99}) {
        Picture a(eZFCC_RGB24, 10, -10, 77), b(eZFCC_RGB24, 10, -10, 77);
        ASSERT_EQ(Scaled(a, b, true, {kResizeCubic, 1.0, 0, sharpen}), S_OK);
        for (const uint8_t v : b.memory) ASSERT_EQ(v, 77);
    }
}

// Interlaced and of one size: no stage before the filter, and the fields go apart.
TEST(ResizeSharp, TheKernelsByField) {
    Picture a(eZFCC_RGB8, 8, 8, 100), b(eZFCC_RGB8, 8, 8, 9);
    a.At(3, 4) = 102;
    ASSERT_EQ(Scaled(a, b, true, {kResizeCubic, 1.0, 0, 50}), S_OK);
    EXPECT_EQ(b.At(3, 4), (10 * 102 - 8 * 100) / 2) << "centre 10, divisor 2";
    EXPECT_EQ(b.At(4, 4), (200 - 2) / 2);
    EXPECT_EQ(b.At(3, 2), (200 - 2) / 2) << "the row above in its field";
    EXPECT_EQ(b.At(3, 3), 100);
    for (int32_t i = 0; i < 8; ++i)
        for (const int32_t edge : {0, 1, 6, 7}) EXPECT_EQ(b.At(i, edge), 9) << "rows at the edge of a field stay";
    for (int32_t y = 0; y < 8; ++y) EXPECT_EQ(b.At(0, y) + b.At(7, y), 18);
    ASSERT_EQ(Scaled(a, b, true, {kResizeCubic, 1.0, 0, -50}), S_OK);
    EXPECT_EQ(b.At(3, 4), (2 * 102 + 12 * 100) / 14) << "centre 2, divisor 14";
}

// Behind a vertical stage the kernel has one row; the last row and both edge columns stay.
TEST(ResizeSharp, TheKernelOfOneRow) {
    Picture a(eZFCC_RGB8, 8, 5, 100), b(eZFCC_RGB8, 8, 5, 9);
    for (int32_t y = 0; y < 5; ++y) a.At(3, y) = 110;
    ASSERT_EQ(Scaled(a, b, false, {kResizeCubic, 1.0, 0, 50}), S_OK);
    for (int32_t y = 0; y < 4; ++y) {
        EXPECT_EQ(b.At(3, y), (10 * 110 - 200) / 8) << y;
        EXPECT_EQ(b.At(2, y), (1000 - 210) / 8) << "toward zero";
        EXPECT_EQ(b.At(0, y), 9);
        EXPECT_EQ(b.At(7, y), 9);
    }
    for (int32_t x = 0; x < 8; ++x) EXPECT_EQ(b.At(x, 4), 9);
    ASSERT_EQ(Scaled(a, b, false, {kResizeCubic, 1.0, 0, -50}), S_OK);
    EXPECT_EQ(b.At(3, 1), (2 * 110 + 400) / 6);
}

TEST(Filter, SaturatesAndDividesTowardZero) {
    const FilterKernel kernel = {{-1, 3, -1}, {3, 1}, {1, 0}, 2};
    const Bytes src = {200, 100, 200, 0, 250, 0};
    Bytes dst(6, 9);
    ASSERT_EQ(Filter_8u(src.data() + 1, 6, dst.data() + 1, 6, {4, 1}, 1, kernel), 0);
    EXPECT_EQ(dst, Bytes({9, 0, 250, 0, 255, 9})) << "-50, 500 / 2, -450 / 2, 375";
    EXPECT_EQ(Filter_8u(src.data(), 6, dst.data(), 6, {0, 1}, 1, kernel), kPrimitiveBadSize);
}

}    // namespace
}    // namespace zck
