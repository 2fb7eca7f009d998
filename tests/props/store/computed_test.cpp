#include "props/store/computed.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "tests/props/values/say.h"

namespace zck {
namespace {

std::string Computed(const char *name) {
    Text value;
    return ComputedProperty(In(name), value) ? Say(value) : "none";
}

/// Every digit as 9 and every letter as a, so that only the form is left.
std::string Form(std::string text) {
    for (char &c : text) {
        const bool letter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
        c = letter ? 'a' : c >= '0' && c <= '9' ? '9' : c;
    }
    return text;
}

TEST(ComputedTest, VersionsAreFourNumbers) {
    EXPECT_EQ(Form(Computed("dll-version")), "9.9.9.9");
    EXPECT_EQ(Form(Computed("DLL-File-Version")), "9.9.9.9");
}

TEST(ComputedTest, PathIsTheModule) { EXPECT_TRUE(std::filesystem::exists(Computed("dll-path"))) << Computed("dll-path"); }

TEST(ComputedTest, DateIsThatOfTheBuild) {
    std::string date = Form(Computed("dll-date"));
    // The day has a blank in place of a first 0.
    ASSERT_GT(date.size(), 4U);
    if (date[4] == ' ') date[4] = '9';
    EXPECT_EQ(date, "aaa 99 9999 99:99:99");
}

TEST(ComputedTest, OtherNamesAreNot) {
    for (const char *name : {"", "dll-", "dll", "dll-versions", "version"}) EXPECT_EQ(Computed(name), "none");
}

}    // namespace
}    // namespace zck
