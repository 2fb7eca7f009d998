#include "platform/module_info.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>

namespace zck {
namespace {

TEST(ModuleInfoTest, PathIsThisProgram) {
    const std::filesystem::path path(Utf8FromText(ModulePath()));
    EXPECT_EQ(path.stem().string(), "test_platform");
    EXPECT_TRUE(std::filesystem::exists(path)) << path;
    EXPECT_TRUE(path.is_absolute());
}

bool IsFourNumbers(const Text &version) {
    int part[4] = {};
    char behind = 0;
    return std::sscanf(Utf8FromText(version).c_str(), "%d.%d.%d.%d%c", &part[0], &part[1], &part[2], &part[3], &behind) == 4;
}

TEST(ModuleInfoTest, VersionsHaveFourNumbers) {
    EXPECT_TRUE(IsFourNumbers(ModuleProductVersion())) << Utf8FromText(ModuleProductVersion());
    EXPECT_TRUE(IsFourNumbers(ModuleFileVersion()));
    EXPECT_NE(Utf8FromText(ModuleProductVersion()), "0.0.0.0");
}

}    // namespace
}    // namespace zck
