#include "keying/plugin/borders.h"

#include <gtest/gtest.h>

#include <climits>

namespace zck {
namespace {

tagRECT RectOf(int32_t border, int32_t width, int32_t height) {
    Z_VID_PROPS props{};
    props.nWidth = width;
    props.nHeight = height;
    return BordersRect({border, border, border, border}, props);
}

TEST(Borders, TheRectangleStartsAndEndsOnABlockOfEight) {
    tagRECT rect = RectOf(16, 1920, -1080);
    EXPECT_EQ(rect.left, 16);
    EXPECT_EQ(rect.top, 16);
    EXPECT_EQ(rect.right, 1904);
    EXPECT_EQ(rect.bottom, 1064);
    rect = RectOf(10, 1920, 1080);
    EXPECT_EQ(rect.left, 16);
    EXPECT_EQ(rect.top, 10);
    EXPECT_EQ(rect.right, 1904);
    EXPECT_EQ(rect.bottom, 1070);
}

TEST(Borders, AbsurdBordersSaturate) {
    const tagRECT rect = RectOf(INT_MIN, INT_MAX, INT_MIN);
    EXPECT_EQ(rect.right, INT_MAX);
    EXPECT_EQ(rect.bottom, INT_MAX);
    EXPECT_EQ(rect.left, INT_MIN);
    EXPECT_EQ(RectOf(INT_MAX, 0, 0).left, INT_MAX);
}

}    // namespace
}    // namespace zck
