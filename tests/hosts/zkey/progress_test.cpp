#include "hosts/zkey/progress.h"

#include <gtest/gtest.h>

namespace {

TEST(Progress, TellsSpeedAndTimeLeft) {
    EXPECT_EQ(zkey::ProgressText(10, 0, 25), "frame 10, 25.0 frames a second");
    EXPECT_EQ(zkey::ProgressText(50, 1550, 20), "frame 50 of 1550, 20.0 frames a second, 1:15 left");
    EXPECT_EQ(zkey::ProgressText(5, 5, 20), "frame 5 of 5, 20.0 frames a second");
    EXPECT_EQ(zkey::ProgressText(0, 5, 0), "frame 0 of 5, 0.0 frames a second");
}

}    // namespace
