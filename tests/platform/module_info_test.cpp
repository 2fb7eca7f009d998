#include "platform/module_info.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <regex>

namespace zck {
namespace {

TEST(ModuleInfoTest, PathIsThisProgram) {
    const std::filesystem::path path(Utf8FromText(ModulePath()));
    EXPECT_EQ(path.stem().string(), "test_platform");
    EXPECT_TRUE(std::filesystem::exists(path)) << path;
    EXPECT_TRUE(path.is_absolute());
}

TEST(ModuleInfoTest, VersionsHaveFourNumbers) {
    const std::regex four("[0-9]+\\.[0-9]+\\.[0-9]+\\.[0-9]+");
    EXPECT_TRUE(std::regex_match(Utf8FromText(ModuleProductVersion()), four)) << Utf8FromText(ModuleProductVersion());
    EXPECT_TRUE(std::regex_match(Utf8FromText(ModuleFileVersion()), four));
    EXPECT_NE(Utf8FromText(ModuleProductVersion()), "0.0.0.0");
}

}    // namespace
}    // namespace zck
