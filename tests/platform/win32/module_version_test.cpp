#include <gtest/gtest.h>

#include "platform/module_info.h"

namespace zck {
namespace {

TEST(ModuleVersionTest, IsThatOfTheResource) {
    EXPECT_EQ(Utf8FromText(ModuleProductVersion()), "7.8.9.10");
    EXPECT_EQ(Utf8FromText(ModuleFileVersion()), "1.2.30000.65535");
}

}    // namespace
}    // namespace zck
