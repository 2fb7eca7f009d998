#include "frames/media/record_view.h"

#include <gtest/gtest.h>

#include <cstring>

#include "frames/media/video_props.h"

namespace zck {
namespace {

Z_VID_PROPS Picture(eZFCC fcc, int32_t width, int32_t height, eZInterlace interlace = eZI_Progressive) {
    Z_VID_PROPS props = {};
    props.fccType = fcc;
    props.nWidth = width;
    props.nHeight = height;
    props.eInterlace = interlace;
    VideoPropsUpdate(&props, false);
    return props;
}

tagRECT Rect(int32_t left, int32_t top, int32_t right, int32_t bottom) {
    tagRECT rect = {};
    rect.left = left;
    rect.top = top;
    rect.right = right;
    rect.bottom = bottom;
    return rect;
}

TEST(FieldView, TakesEverySecondRow) {
    Z_VID_PROPS props = Picture(eZFCC_UYVY, 720, 576, eZI_Field1First);
    const int32_t row = props.nRowBytes;
    EXPECT_EQ(0, FieldView(props, 0));
    EXPECT_EQ(row * 2, props.nRowBytes);
    EXPECT_EQ(288, props.nHeight);
    EXPECT_EQ(720, props.nWidth);
    EXPECT_EQ(eZI_Progressive, props.eInterlace);
    EXPECT_EQ(eZVF_Custom, props.eVideoFormat);
}

struct FieldCase {
    const char *name;
    eZFCC fcc;
    int32_t height;
    eZInterlace interlace;
    int32_t index;
    int32_t rows;    // rows that the start moves
};

TEST(FieldView, StartsWithTheRowOfTheField) {
    const FieldCase cases[] = {
        {"upper first, field 1", eZFCC_UYVY, 576, eZI_Field1First, 0, 0},
        {"upper first, field 2", eZFCC_UYVY, 576, eZI_Field1First, 1, 1},
        {"lower first, field 1", eZFCC_UYVY, 486, eZI_Field2First, 0, 1},
        {"lower first, field 2", eZFCC_UYVY, 486, eZI_Field2First, 1, 0},
        {"progressive, field 2", eZFCC_UYVY, 480, eZI_Progressive, 1, 1},
        {"bottom-up, field 1", eZFCC_ARGB32, 480, eZI_Field1First, 0, 1},
        {"bottom-up, lower first, field 1", eZFCC_ARGB32, 480, eZI_Field2First, 0, 0},
        {"top-down, lower first, field 1", eZFCC_ARGB32, -480, eZI_Field2First, 0, 1},
        {"a third field moves one row and is not flipped", eZFCC_UYVY, 486, eZI_Field2First, 2, 1},
        {"a fifth field likewise", eZFCC_UYVY, 486, eZI_Field1First, 4, 1},
    };
    for (const FieldCase &c : cases) {
        Z_VID_PROPS props = Picture(c.fcc, 720, c.height, c.interlace);
        const int32_t row = props.nRowBytes;
        EXPECT_EQ(c.rows * row, FieldView(props, c.index)) << c.name;
    }
}

TEST(FieldView, HugeRowsAreClamped) {
    Z_VID_PROPS props = Picture(eZFCC_UYVY, 720, 576);
    props.nRowBytes = INT32_MAX;
    EXPECT_EQ(INT32_MAX, FieldView(props, 1));
    EXPECT_EQ(INT32_MAX, props.nRowBytes);
}

struct RectCase {
    const char *name;
    eZFCC fcc;
    int32_t height;
    eZInterlace interlace;
    tagRECT rect;
    int32_t width, lines;    // expected, of a picture 720 wide
    int32_t row, column;     // expected start
};

TEST(SubRectView, NarrowsToTheRectangle) {
    const RectCase cases[] = {
        {"top-down", eZFCC_ARGB32, -480, eZI_Progressive, Rect(11, 20, 101, 61), 90, -41, 20, 11},
        {"4:2:2 rounds inwards to even columns", eZFCC_UYVY, 480, eZI_Progressive, Rect(11, 20, 101, 61), 88, 41, 20, 12},
        {"interlaced rounds inwards to even rows", eZFCC_UYVY, 480, eZI_Field1First, Rect(10, 21, 100, 61), 90, 38, 22, 10},
        {"also for the RGB family", eZFCC_ARGB32, -480, eZI_Field2First, Rect(11, 21, 101, 61), 90, -38, 22, 11},
        {"bottom-up starts one row lower than exact", eZFCC_ARGB32, 480, eZI_Progressive, Rect(0, 10, 720, 100), 720, 90, 379,
         0},
        {"bottom-up to the last row", eZFCC_ARGB32, 480, eZI_Progressive, Rect(0, 10, 720, 480), 720, 470, 0, 0},
        {"clamped to the picture", eZFCC_ARGB32, -480, eZI_Progressive, Rect(-5, -7, 9999, 9999), 720, -480, 0, 0},
        {"right of the picture: nothing", eZFCC_ARGB32, -480, eZI_Progressive, Rect(800, 0, 900, 480), 0, -480, 0, 720},
        {"one odd column of 4:2:2: nothing", eZFCC_UYVY, 480, eZI_Progressive, Rect(11, 0, 12, 480), 0, 480, 0, 12},
        {"whole, 4:2:2", eZFCC_UYVY, 480, eZI_Progressive, Rect(0, 0, 720, 480), 720, 480, 0, 0},
    };
    for (const RectCase &c : cases) {
        Z_VID_PROPS props = Picture(c.fcc, 720, c.height, c.interlace);
        const Z_VID_PROPS whole = props;
        const int64_t offset = SubRectView(props, c.rect);
        const int32_t pixel = c.fcc == eZFCC_ARGB32 ? 4 : 2;
        EXPECT_EQ(static_cast<int64_t>(c.row) * whole.nRowBytes + c.column * pixel, offset) << c.name;
        EXPECT_EQ(c.width, props.nWidth) << c.name;
        EXPECT_EQ(c.lines, props.nHeight) << c.name;
        EXPECT_EQ(whole.nRowBytes, props.nRowBytes) << c.name;
        EXPECT_EQ(eZVF_Custom, props.eVideoFormat) << c.name;
    }
}

// One field of a rectangle: even edges, those of the lower field one row further down, half the rows.
TEST(SubRectView, OneFieldOfARectangle) {
    struct FieldCase {
        const char *name;
        eZFCC fcc;
        int32_t height;
        eZInterlace interlace;
        int32_t field;
        tagRECT rect;
        int32_t lines, row;    // expected
    };
    const FieldCase cases[] = {
        {"first", eZFCC_UYVY, 480, eZI_Field1First, 1, Rect(0, 21, 720, 61), 19, 22},
        {"second", eZFCC_UYVY, 480, eZI_Field1First, 2, Rect(0, 21, 720, 61), 19, 23},
        {"first in time, below", eZFCC_UYVY, 480, eZI_Field2First, 1, Rect(0, 20, 720, 60), 20, 21},
        {"second in time, above", eZFCC_UYVY, 480, eZI_Field2First, 2, Rect(0, 20, 720, 60), 20, 20},
        {"progressive, first", eZFCC_ARGB32, -480, eZI_Progressive, 1, Rect(0, 21, 720, 61), -19, 22},
        {"progressive, second", eZFCC_ARGB32, -480, eZI_Progressive, 2, Rect(0, 20, 720, 480), -230, 21},
        {"bottom-up, first", eZFCC_ARGB32, 480, eZI_Progressive, 1, Rect(0, 20, 720, 60), 20, 419},
        {"bottom-up, second", eZFCC_ARGB32, 480, eZI_Progressive, 2, Rect(0, 20, 720, 60), 20, 418},
        {"bottom-up to the last row, first", eZFCC_ARGB32, 480, eZI_Progressive, 1, Rect(0, 0, 720, 480), 240, 0},
        {"bottom-up to the last row, second", eZFCC_ARGB32, 480, eZI_Progressive, 2, Rect(0, 0, 720, 480), 240, 0},
        {"an odd height", eZFCC_ARGB32, -7, eZI_Progressive, 2, Rect(0, 0, 720, 7), -3, 1},
    };
    for (const FieldCase &c : cases) {
        Z_VID_PROPS props = Picture(c.fcc, 720, c.height, c.interlace);
        const Z_VID_PROPS whole = props;
        EXPECT_EQ(int64_t{c.row} * whole.nRowBytes, SubRectView(props, c.rect, c.field)) << c.name;
        EXPECT_EQ(c.lines, props.nHeight) << c.name;
        EXPECT_EQ(2 * whole.nRowBytes, props.nRowBytes) << c.name;
    }
}

// The last column of an odd width has no even place to end at.
TEST(SubRectView, OddWidthLeftAtTheEdgeGivesNoWidth) {
    Z_VID_PROPS props = Picture(eZFCC_UYVY, 721, 480);
    SubRectView(props, Rect(721, 0, 800, 480));
    EXPECT_EQ(0, props.nWidth);
    EXPECT_EQ(0, props.nAspectX);
    EXPECT_EQ(0, props.nAspectY);
}

TEST(SubRectView, FullRectangleOfAnOddWidthLosesThePixel) {
    Z_VID_PROPS props = Picture(eZFCC_UYVY, 721, 480);
    SubRectView(props, Rect(0, 0, 721, 480));
    EXPECT_EQ(720, props.nWidth);
}

TEST(SubRectView, PlanarAndInvalidRecordsStayWhole) {
    Z_VID_PROPS planar = Picture(eZFCC_I420, 720, 576);
    planar.nRowBytes = 720;
    const Z_VID_PROPS before = planar;
    EXPECT_EQ(0, SubRectView(planar, Rect(10, 10, 20, 20)));
    EXPECT_EQ(0, std::memcmp(&before, &planar, sizeof(planar)));

    Z_VID_PROPS invalid = {};
    invalid.nWidth = 50;
    invalid.nHeight = 50;
    EXPECT_EQ(0, SubRectView(invalid, Rect(10, 10, 20, 20)));
    EXPECT_EQ(50, invalid.nWidth);
}

TEST(SubRectView, PixelsKeepTheirShape) {
    // 16:9 on 1920x1080 has square pixels.
    Z_VID_PROPS props = VideoPropsFromFormat(eZVF_HD1080_25p, eZFCC_ARGB32);
    SubRectView(props, Rect(0, 0, 960, 540));
    EXPECT_EQ(16, props.nAspectX);
    EXPECT_EQ(9, props.nAspectY);
    // 4:3 on 720x576: 4/3 * 576 / 720 = 1.0667 wide pixels, 360 of them are 384, beside 288 lines.
    props = VideoPropsFromFormat(eZVF_PAL, eZFCC_ARGB32);
    SubRectView(props, Rect(0, 0, 360, 288));
    EXPECT_EQ(4, props.nAspectX);
    EXPECT_EQ(3, props.nAspectY);
}

TEST(SubRectView, LargeAspectsAreHalvedUntilTheyFit) {
    Z_VID_PROPS props = Picture(eZFCC_ARGB32, 40001, -7);
    props.nAspectX = 0;
    props.nAspectY = 0;
    // Without an aspect a top-down picture counts as 16:9.
    SubRectView(props, Rect(0, 0, 40001, 7));
    EXPECT_GT(props.nAspectX, 0);
    EXPECT_GT(props.nAspectY, 0);
    props = Picture(eZFCC_UYVY, 70000, 3);
    props.nAspectX = 0;
    props.nAspectY = 0;
    SubRectView(props, Rect(0, 0, 69998, 3));
    EXPECT_EQ(69998 / 2 / 2, props.nAspectX);
    EXPECT_EQ(1, props.nAspectY);
}

TEST(SubRectView, AbsurdRecordsDoNotOverflow) {
    Z_VID_PROPS props = {};
    props.fccType = eZFCC_ARGB32;
    props.nWidth = INT32_MAX;
    props.nHeight = INT32_MIN;
    props.nRowBytes = INT32_MAX;
    EXPECT_EQ(int64_t{INT32_MAX} * (INT32_MAX - 1) + 40, SubRectView(props, Rect(10, INT32_MAX - 1, 20, INT32_MAX)));
    EXPECT_EQ(10, props.nWidth);
    EXPECT_EQ(-1, props.nHeight);
    // A standard format makes a record valid whatever its width is.
    props.eVideoFormat = eZVF_PAL;
    props.nWidth = -5;
    EXPECT_EQ(0, SubRectView(props, Rect(INT32_MIN, INT32_MIN, INT32_MAX, INT32_MAX)));
    EXPECT_EQ(0, props.nWidth);
}

}    // namespace
}    // namespace zck
