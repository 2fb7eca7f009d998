#include "platform/processor.h"

#include <gtest/gtest.h>

namespace zck {
namespace {

TEST(ProcessorTest, LevelIsOneOfTheLadder) {
    const int level = CpuFeatureLevel();
    // Every 64-bit processor has SSE2.
    EXPECT_GE(level, 65);
    EXPECT_LE(level, 69);
    EXPECT_TRUE(level == 69 || !CpuHasAvx2());
}

TEST(ProcessorTest, SpeedIsDescribedOrMeasured) {
    for (const bool measure : {false, true}) {
        uint32_t mhz = 0;
        EXPECT_TRUE(CpuSpeedMHz(&mhz, measure));
        EXPECT_GT(mhz, 100U);
        EXPECT_LT(mhz, 10000U);
    }
    EXPECT_FALSE(CpuSpeedMHz(nullptr, false));
    EXPECT_FALSE(CpuSpeedMHz(nullptr, true));
}

TEST(ProcessorTest, KernelLevelWalksDownAndBack) {
    const KernelLevel best = CpuHasAvx2() ? KernelLevel::Avx2 : KernelLevel::Reference;
    EXPECT_EQ(KernelLevelGet(), best);
    KernelLevelLimit(KernelLevel::Reference);
    EXPECT_EQ(KernelLevelGet(), KernelLevel::Reference);
    KernelLevelLimit(kKernelLevelHighest);
    EXPECT_EQ(KernelLevelGet(), best);
}

}    // namespace
}    // namespace zck
