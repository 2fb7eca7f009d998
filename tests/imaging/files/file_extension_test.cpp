#include "imaging/files/file_extension.h"

#include <gtest/gtest.h>

namespace zck {
namespace {

TEST(FileExtension, IsWhatFollowsTheLastDotOfTheLastPart) {
    EXPECT_EQ(FileExtension(ZCK_TEXT("a.png")), ZCK_TEXT(".png"));
    EXPECT_EQ(FileExtension(ZCK_TEXT("a.b.PNG")), ZCK_TEXT(".PNG"));
    EXPECT_EQ(FileExtension(ZCK_TEXT("a.")), ZCK_TEXT("."));
    EXPECT_EQ(FileExtension(ZCK_TEXT(".png")), ZCK_TEXT(".png"));
    EXPECT_EQ(FileExtension(ZCK_TEXT("folder.png/a")), TextView());
    EXPECT_EQ(FileExtension(ZCK_TEXT("folder.png\\a")), TextView());
    EXPECT_EQ(FileExtension(ZCK_TEXT("c.d:a")), TextView());
    EXPECT_EQ(FileExtension(ZCK_TEXT("/x/y.tif")), ZCK_TEXT(".tif"));
    EXPECT_EQ(FileExtension(ZCK_TEXT("")), TextView());
    EXPECT_EQ(FileExtension(TextView()), ZCK_TEXT("!ERR"));
}

}    // namespace
}    // namespace zck
