#include "keying/plugin/borders.h"

#include <gtest/gtest.h>

#include <climits>

#include "platform/text.h"

namespace zck {
namespace {

std::string Parsed(const char *text) {
    const auto borders = BordersFromText(TextFromUtf8(text));
    if (!borders) return "none";
    return std::to_string(borders->left) + " " + std::to_string(borders->top) + " " + std::to_string(borders->right) + " " +
           std::to_string(borders->bottom);
}

TEST(Borders, OneToFourValuesAndAnyRunOfSeparators) {
    EXPECT_EQ(Parsed("16"), "16 16 16 16");
    EXPECT_EQ(Parsed("1 2"), "1 2 1 2");
    EXPECT_EQ(Parsed("1,2;3"), "1 2 1 3");
    EXPECT_EQ(Parsed(" 1,;\t2\r\n3  4 "), "1 2 3 4");
    EXPECT_EQ(Parsed("1 2 3 4 5 6"), "1 2 3 4");
}

TEST(Borders, ANumberStopsAtTheFirstForeignCharacter) {
    EXPECT_EQ(Parsed("8px 4%"), "8 4 8 4");
    EXPECT_EQ(Parsed("-8 x"), "-8 0 -8 0");
    EXPECT_EQ(Parsed("99999999999"), "2147483647 2147483647 2147483647 2147483647");
}

TEST(Borders, ATextWithoutItemsGivesNothing) {
    EXPECT_EQ(Parsed(""), "none");
    EXPECT_EQ(Parsed(" ,; \t"), "none");
}

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
