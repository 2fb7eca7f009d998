#include "props/store/option_list.h"

#include <gtest/gtest.h>

#include "tests/props/values/say.h"

namespace zck {
namespace {

std::vector<std::string> Items(std::string_view values) {
    const Text text = In(values);
    std::vector<std::string> items;
    for (const TextView item : OptionItems(text)) items.push_back(Say(item));
    return items;
}

using Strings = std::vector<std::string>;

TEST(OptionListTest, StrokeIsTheOnlySeparatorWhereThereIsOne) {
    EXPECT_EQ(Items("a|b c|d"), (Strings{"a", "b c", "d"}));
    EXPECT_EQ(Items("a, b|c"), (Strings{"a, b", "c"}));
}

TEST(OptionListTest, OtherwiseBlanksAndPunctuationSeparate) {
    EXPECT_EQ(Items("a b\tc\rd\ne;f,g"), (Strings{"a", "b", "c", "d", "e", "f", "g"}));
}

TEST(OptionListTest, RunsGiveNoEmptyItems) {
    EXPECT_EQ(Items("||a||b|"), (Strings{"a", "b"}));
    EXPECT_EQ(Items(" ;a ,, b; "), (Strings{"a", "b"}));
    EXPECT_EQ(Items("|"), Strings());
    EXPECT_EQ(Items(" "), Strings());
    EXPECT_EQ(Items(""), Strings());
    EXPECT_EQ(Items("a"), Strings{"a"});
}

}    // namespace
}    // namespace zck
