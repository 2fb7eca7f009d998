#include "imaging/engines/fit_rects.h"

#include <gtest/gtest.h>

#include <array>

namespace zck {
namespace {

using Rect = std::array<int32_t, 4>;

struct Case {
    int32_t width;
    int32_t height;
    eZScaleType type = eZST_Default;
    int16_t aspectX = 0;
    int16_t aspectY = 0;
};

Z_VID_PROPS Record(const Case &c) {
    Z_VID_PROPS p = {};
    p.fccType = eZFCC_UYVY;
    p.nWidth = c.width;
    p.nHeight = c.height;
    p.eScaleType = c.type;
    p.nAspectX = c.aspectX;
    p.nAspectY = c.aspectY;
    return p;
}

Rect Of(const tagRECT &r) {
    return {static_cast<int32_t>(r.left), static_cast<int32_t>(r.top), static_cast<int32_t>(r.right),
            static_cast<int32_t>(r.bottom)};
}

void Expect(const Case &source, const Case &target, const Rect &from, const Rect &to) {
    const FittedRects f = FitRects(Record(source), Record(target));
    EXPECT_EQ(Of(f.source), from) << source.width << " x " << source.height << " to " << target.width << " x " << target.height;
    EXPECT_EQ(Of(f.target), to) << source.width << " x " << source.height << " to " << target.width << " x " << target.height;
}

TEST(FitRects, ANarrowerSourceIsCropped) {
    // 5 : 4 into 16 : 9: 576 * (1 - 0.703125) / 2 is 85.5, up to 86.
    Expect({720, 576}, {1920, 1080}, {0, 86, 720, 490}, {0, 0, 1920, 1080});
    Expect({720, 576}, {640, 360}, {0, 0, 720, 576}, {96, 0, 544, 360});    // 576 is more than 360 and 60: letter-box
}

TEST(FitRects, AWiderSourceIsLetterBoxed) { Expect({1920, 1080}, {720, 576}, {0, 0, 1920, 1080}, {0, 86, 720, 490}); }

TEST(FitRects, TheTypeOfTheSourceWins) {
    Expect({720, 576, eZST_None}, {1920, 1080, eZST_Crop}, {0, 0, 720, 576}, {0, 0, 1920, 1080});
    Expect({720, 576}, {1920, 1080, eZST_LetterBox}, {0, 0, 720, 576}, {286, 0, 1634, 1080});    // 285, up to 286
    Expect({720, 576, eZST_LetterBox}, {1920, 1080, eZST_Crop}, {0, 0, 720, 576}, {286, 0, 1634, 1080});
    Expect({720, 576, static_cast<eZScaleType>(9)}, {1920, 1080}, {0, 0, 720, 576}, {0, 0, 1920, 1080});
}

TEST(FitRects, AspectFieldsWinOverTheSize) {
    Expect({720, 576, eZST_Default, 16, 9}, {1920, 1080}, {0, 0, 720, 576}, {0, 0, 1920, 1080});
}

TEST(FitRects, NeighboursAreNotScaled) {
    Expect({1920, 1088}, {1920, 1080}, {0, 4, 1920, 1084}, {0, 0, 1920, 1080});
    Expect({1920, 540}, {1920, 1080}, {0, 0, 1920, 540}, {0, 0, 1920, 1080});    // one field becomes a frame
    Expect({1280, 720}, {1920, 1080}, {0, 0, 1280, 720}, {0, 0, 1920, 1080});    // too far apart, but of one aspect
}

// Half of the excess is rounded up to even, a whole even half too.
TEST(FitRects, AnExcessOfTwoCostsFourMore) {
    Expect({1922, 1080}, {1920, 1080}, {2, 0, 1920, 1080}, {0, 0, 1920, 1080});
    Expect({1924, 1080}, {1920, 1080}, {2, 0, 1922, 1080}, {0, 0, 1920, 1080});
    Expect({1926, 1080}, {1920, 1080}, {4, 0, 1922, 1080}, {0, 0, 1920, 1080});
}

TEST(FitRects, ARectangleKeepsTwoColumnsAndRows) {
    Expect({6, 600, eZST_LetterBox}, {6, 6}, {0, 0, 6, 600}, {2, 0, 4, 6});
    Expect({3, 600, eZST_LetterBox}, {3, 3}, {0, 0, 3, 600}, {0, 0, 3, 3});
    Expect({600, 6, eZST_LetterBox}, {6, 6}, {0, 0, 600, 6}, {0, 2, 6, 4});
    Expect({100, 100, eZST_NoScale}, {4, 3}, {48, 48, 52, 52}, {0, 0, 4, 3});
}

TEST(FitRects, AspectsThatAreNoNumbersCutNothing) {
    Expect({8, 8, eZST_Crop, -1, 1}, {8, 8, eZST_Default, 1, -1}, {0, 0, 8, 8}, {0, 0, 8, 8});
}

TEST(FitRects, SaysWhetherAnythingDiffers) {
    const auto differs = [](const Case &a, const Case &b) { return FitRects(Record(a), Record(b)).bDiffers; };
    EXPECT_FALSE(differs({640, 480}, {640, 480}));
    EXPECT_FALSE(differs({640, 480}, {640, -480, eZST_None}));
    EXPECT_TRUE(differs({640, 480}, {641, 480, eZST_None}));
    EXPECT_TRUE(differs({1928, 1080}, {1920, 1080}));
}

}    // namespace
}    // namespace zck
