#include "imaging/colour/normalize_rects.h"

#include <gtest/gtest.h>

namespace zck {
namespace {

constexpr ImgDesc kRgb = {eZFCC_RGB32, 100, -80, 0};
constexpr ImgDesc kSmallRgb = {eZFCC_RGB24, 60, 90, 0};
constexpr ImgDesc kUyvy = {eZFCC_UYVY, 101, 80, 0};

struct Found {
    HRESULT hr;
    tagRECT src, dst;
};

Found Rects(const ImgDesc &sd, const ImgDesc &dd, bool proportional, const tagRECT *src = nullptr,
            const tagRECT *dst = nullptr) {
    Found f = {E_FAIL, {9, 9, 9, 9}, {9, 9, 9, 9}};
    f.hr = NormalizeRects(&sd, &dd, &f.src, &f.dst, proportional, src, dst);
    return f;
}

void Expect(const Found &f, const tagRECT &src, const tagRECT &dst, HRESULT hr = S_OK) {
    EXPECT_EQ(f.hr, hr);
    const auto text = [](const tagRECT &r) {
        return std::to_string(r.left) + "," + std::to_string(r.top) + "," + std::to_string(r.right) + "," +
               std::to_string(r.bottom);
    };
    EXPECT_EQ(text(f.src), text(src));
    EXPECT_EQ(text(f.dst), text(dst));
}

TEST(NormalizeRects, MissingArguments) {
    tagRECT rc = {};
    EXPECT_EQ(NormalizeRects(nullptr, &kRgb, &rc, &rc, false, nullptr, nullptr), E_INVALIDARG);
    EXPECT_EQ(NormalizeRects(&kRgb, nullptr, &rc, &rc, false, nullptr, nullptr), E_INVALIDARG);
    EXPECT_EQ(NormalizeRects(&kRgb, &kRgb, nullptr, &rc, false, nullptr, nullptr), E_INVALIDARG);
    EXPECT_EQ(NormalizeRects(&kRgb, &kRgb, &rc, nullptr, false, nullptr, nullptr), E_INVALIDARG);
}

TEST(NormalizeRects, TurnedOrEmptyWishesAreRefused) {
    const tagRECT good = {0, 0, 10, 10};
    for (const tagRECT bad : {tagRECT{10, 0, 10, 10}, {11, 0, 10, 10}, {0, 10, 10, 10}, {0, 11, 10, 10}}) {
        EXPECT_EQ(Rects(kRgb, kRgb, false, &bad, &good).hr, E_INVALIDARG);
        EXPECT_EQ(Rects(kRgb, kRgb, true, &good, &bad).hr, E_INVALIDARG);
    }
}

TEST(NormalizeRects, WholeImagesAreCutToTheSmallerSize) {
    Expect(Rects(kRgb, kSmallRgb, false), {0, 0, 60, 80}, {0, 0, 60, 80});
    Expect(Rects(kRgb, kSmallRgb, true), {0, 0, 100, 80}, {0, 0, 60, 90});
}

TEST(NormalizeRects, LeftAndTopStay) {
    const tagRECT src = {10, 20, 50, 60};
    const tagRECT dst = {3, 5, 33, 75};
    Expect(Rects(kRgb, kSmallRgb, false, &src, &dst), {10, 20, 40, 60}, {3, 5, 33, 45});
}

TEST(NormalizeRects, ColumnsAreEvenUnlessBothAreRgb) {
    const tagRECT odd = {3, 1, 21, 20};
    Expect(Rects(kUyvy, kRgb, false, &odd, &odd), {4, 1, 20, 20}, {4, 1, 20, 20});
    Expect(Rects(kRgb, kUyvy, false, &odd, &odd), {4, 1, 20, 20}, {4, 1, 20, 20});
    Expect(Rects(kRgb, kRgb, false, &odd, &odd), {3, 1, 21, 20}, {3, 1, 21, 20});
    // The odd last column goes.
    Expect(Rects(kUyvy, kUyvy, false), {0, 0, 100, 80}, {0, 0, 100, 80});
}

TEST(NormalizeRects, OneColumnIsNothing) {
    const tagRECT column = {4, 0, 5, 10};
    EXPECT_EQ(Rects(kUyvy, kUyvy, true, &column, nullptr).hr, S_FALSE);
    EXPECT_EQ(Rects(kUyvy, kUyvy, true, nullptr, &column).hr, S_FALSE);
    EXPECT_EQ(Rects(kRgb, kRgb, false, &column, &column).hr, S_OK);
}

TEST(NormalizeRects, EdgesAreClippedOnBothSides) {
    const tagRECT src = {-10, -6, 90, 74};
    Expect(Rects(kRgb, kRgb, false, &src, nullptr), {0, 0, 90, 74}, {10, 6, 100, 80});
    const tagRECT dst = {-8, -4, 92, 76};
    Expect(Rects(kRgb, kRgb, false, nullptr, &dst), {8, 4, 100, 80}, {0, 0, 92, 76});
    const tagRECT over = {20, 30, 120, 110};
    Expect(Rects(kRgb, kRgb, false, &over, nullptr), {20, 30, 100, 80}, {0, 0, 80, 50});
    Expect(Rects(kRgb, kRgb, false, nullptr, &over), {0, 0, 80, 50}, {20, 30, 100, 80});
}

// x scale 2, y scale 1/2.
TEST(NormalizeRects, AxesCrossAtTopAndLeft) {
    const ImgDesc wide = {eZFCC_RGB32, 200, -40, 0};
    const tagRECT src = {-10, -6, 90, 74};
    // Top 6 x 2, left 10 / 2; right and bottom are inside.
    Expect(Rects(kRgb, wide, true, &src, nullptr), {0, 0, 90, 74}, {5, 12, 200, 40});
    const tagRECT dst = {-10, -6, 190, 34};
    // Top 6 / 2, left 10 x 2.
    Expect(Rects(kRgb, wide, true, nullptr, &dst), {20, 3, 100, 80}, {0, 0, 190, 34});
}

TEST(NormalizeRects, EachAxisByItselfAtRightAndBottom) {
    const ImgDesc wide = {eZFCC_RGB32, 200, -40, 0};
    const tagRECT src = {10, 10, 110, 90};
    Expect(Rects(kRgb, wide, true, &src, nullptr), {10, 10, 100, 80}, {0, 0, 180, 35});
    const tagRECT dst = {20, 10, 220, 50};
    Expect(Rects(kRgb, wide, true, nullptr, &dst), {0, 0, 90, 60}, {20, 10, 200, 40});
}

TEST(NormalizeRects, HalvesGoAwayFromZero) {
    // Scales 1/2.
    const ImgDesc half = {eZFCC_RGB32, 50, -40, 0};
    const tagRECT src = {-5, -3, 95, 77};
    Expect(Rects(kRgb, half, true, &src, nullptr), {0, 0, 95, 77}, {3, 2, 50, 40});
}

TEST(NormalizeRects, OutsideIsNothing) {
    for (const tagRECT out : {tagRECT{-50, 0, -10, 40}, {100, 0, 140, 40}, {0, -50, 40, -10}, {0, 80, 40, 120}}) {
        EXPECT_EQ(Rects(kRgb, kRgb, false, &out, nullptr).hr, S_FALSE) << out.left << "," << out.top;
        EXPECT_EQ(Rects(kRgb, kRgb, false, nullptr, &out).hr, S_FALSE) << out.left << "," << out.top;
    }
}

TEST(NormalizeRects, HugeWishesStayInside) {
    const tagRECT huge = {INT32_MIN, INT32_MIN, INT32_MAX, INT32_MAX};
    for (const bool proportional : {false, true}) {
        const Found f = Rects(kRgb, kRgb, proportional, &huge, nullptr);
        EXPECT_TRUE(f.hr == S_OK || f.hr == S_FALSE);
        if (f.hr != S_OK) continue;
        EXPECT_GE(f.src.left, 0);
        EXPECT_LE(f.src.right, 100);
        EXPECT_GE(f.dst.top, 0);
        EXPECT_LE(f.dst.bottom, 80);
    }
}

}    // namespace
}    // namespace zck
