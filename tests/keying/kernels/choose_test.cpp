#include <gtest/gtest.h>

#include <cstring>

#include "platform/processor.h"
#include "tests/keying/kernels/tables.h"

namespace zck {
namespace {

bool Same(const KeyingKernels &a, const KeyingKernels &b) { return std::memcmp(&a, &b, sizeof a) == 0; }

TEST(KeyingKernelsGet, FollowsTheProcessorAndTheLimit) {
    KernelLevelLimit(KernelLevel::Reference);
    EXPECT_TRUE(Same(KeyingKernelsGet(), test::RefTable()));
    KernelLevelLimit(kKernelLevelHighest);
    EXPECT_TRUE(Same(KeyingKernelsGet(), CpuHasAvx2() ? test::Avx2Table() : test::RefTable()));
}

TEST(KeyingKernelsGet, GivesTheSameTableEachTime) { EXPECT_EQ(&KeyingKernelsGet(), &KeyingKernelsGet()); }

}    // namespace
}    // namespace zck
