// Pictures of 480, 486, 576 and more lines share their lower lines.
#include "imaging/convert/line_up.h"

#include <gtest/gtest.h>

#include "frames/media/pixel_format.h"

namespace {

using namespace zck;

Z_VID_PROPS Picture(int32_t height, eZVideoFormat format = eZVF_Custom, eZFCC fcc = eZFCC_UYVY) {
    Z_VID_PROPS props = {};
    props.eVideoFormat = format;
    props.fccType = fcc;
    props.nWidth = 720;
    props.nHeight = height;
    props.nRowBytes = RowBytes(fcc, 720);
    return props;
}

bool Nothing(const LineUp &l) {
    return l.nSourceStart == 0 && l.nTargetStart == 0 && l.nTargetBlack == 0 && l.nTargetBlackRows == 0;
}

TEST(LineUp, ATallerTargetGetsBlackLinesAtItsTop) {
    Z_VID_PROPS source = Picture(480);
    Z_VID_PROPS target = Picture(486, eZVF_NTSC);
    const LineUp l = LineUpHeights(source, target, LineUpKind::kNtsc);
    EXPECT_EQ(target.nHeight, 480);
    EXPECT_EQ(source.nHeight, 480);
    EXPECT_EQ(l.nTargetBlack, 0);
    EXPECT_EQ(l.nTargetBlackRows, 6);
    EXPECT_EQ(l.nTargetStart, 6 * 1440);
    EXPECT_EQ(l.nSourceStart, 0);
}

TEST(LineUp, TheTopOfABottomUpTargetIsItsLastRows) {
    Z_VID_PROPS source = Picture(480, eZVF_NTSC);
    Z_VID_PROPS target = Picture(486, eZVF_NTSC, eZFCC_RGB32);
    const LineUp l = LineUpHeights(source, target, LineUpKind::kNtsc);
    EXPECT_EQ(target.nHeight, 480);
    EXPECT_EQ(l.nTargetBlack, 480 * 2880);
    EXPECT_EQ(l.nTargetBlackRows, 6);
    EXPECT_EQ(l.nTargetStart, 0);
}

TEST(LineUp, ATallerSourceLosesItsTop) {
    Z_VID_PROPS source = Picture(-486, eZVF_NTSC, eZFCC_RGB32);
    Z_VID_PROPS target = Picture(480);
    LineUp l = LineUpHeights(source, target, LineUpKind::kNtsc);
    EXPECT_EQ(source.nHeight, -480);
    EXPECT_EQ(l.nSourceStart, 6 * 2880);
    EXPECT_EQ(l.nTargetBlackRows, 0);

    source = Picture(486, eZVF_NTSC, eZFCC_RGB32);
    l = LineUpHeights(source, target, LineUpKind::kNtsc);
    EXPECT_EQ(source.nHeight, 480);
    EXPECT_EQ(l.nSourceStart, 0);
}

TEST(LineUp, TheRangesOfLines) {
    const auto lined = [](int32_t height, eZVideoFormat standard, int32_t lines, LineUpKind kind) {
        Z_VID_PROPS source = Picture(height);
        Z_VID_PROPS target = Picture(lines, standard);
        return !Nothing(LineUpHeights(source, target, kind)) && source.nHeight == target.nHeight;
    };
    EXPECT_FALSE(lined(479, eZVF_NTSC, 486, LineUpKind::kNtsc));
    EXPECT_TRUE(lined(525, eZVF_NTSC, 486, LineUpKind::kNtsc));
    EXPECT_FALSE(lined(526, eZVF_NTSC, 486, LineUpKind::kNtsc));
    EXPECT_FALSE(lined(486, eZVF_NTSC, 486, LineUpKind::kNtsc));
    EXPECT_FALSE(lined(480, eZVF_NTSC_16x9, 486, LineUpKind::kNtsc));
    EXPECT_FALSE(lined(608, eZVF_PAL, 576, LineUpKind::kNtsc));
    EXPECT_TRUE(lined(608, eZVF_PAL, 576, LineUpKind::kNtscAndPal));
    EXPECT_FALSE(lined(626, eZVF_PAL, 576, LineUpKind::kNtscAndPal));
    EXPECT_TRUE(lined(480, eZVF_NTSC, 486, LineUpKind::kNtscAndPal));
}

TEST(LineUp, ATallerPlanarPictureStays) {
    Z_VID_PROPS source = Picture(480);
    Z_VID_PROPS target = Picture(486, eZVF_NTSC, eZFCC_I420);
    EXPECT_TRUE(Nothing(LineUpHeights(source, target, LineUpKind::kNtsc)));
    EXPECT_EQ(target.nHeight, 486);
    source = Picture(480, eZVF_Custom, eZFCC_I420);
    target = Picture(486, eZVF_NTSC);
    EXPECT_EQ(LineUpHeights(source, target, LineUpKind::kNtsc).nTargetBlackRows, 6);
}

}    // namespace
