#include "props/values/insets.h"

#include <gtest/gtest.h>

#include <string>

namespace zck {
namespace {

std::string Parsed(const char *text) {
    const auto insets = InsetsFromText(TextFromUtf8(text));
    if (!insets) return "none";
    return std::to_string(insets->left) + " " + std::to_string(insets->top) + " " + std::to_string(insets->right) + " " +
           std::to_string(insets->bottom);
}

TEST(Insets, OneToFourValuesAndAnyRunOfSeparators) {
    EXPECT_EQ(Parsed("16"), "16 16 16 16");
    EXPECT_EQ(Parsed("1 2"), "1 2 1 2");
    EXPECT_EQ(Parsed("1,2;3"), "1 2 1 3");
    EXPECT_EQ(Parsed(" 1,;\t2\r\n3  4 "), "1 2 3 4");
    EXPECT_EQ(Parsed("1 2 3 4 5 6"), "1 2 3 4");
}

TEST(Insets, ANumberStopsAtTheFirstForeignCharacter) {
    EXPECT_EQ(Parsed("8px 4%"), "8 4 8 4");
    EXPECT_EQ(Parsed("-8 x"), "-8 0 -8 0");
    EXPECT_EQ(Parsed("99999999999"), "2147483647 2147483647 2147483647 2147483647");
}

TEST(Insets, ATextWithoutItemsGivesNothing) {
    EXPECT_EQ(Parsed(""), "none");
    EXPECT_EQ(Parsed(" ,; \t"), "none");
}

}    // namespace
}    // namespace zck
