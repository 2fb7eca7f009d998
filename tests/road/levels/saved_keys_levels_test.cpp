// Frames of saved keys at every processor level. The library keeps the level to itself, so its door is linked in here.
#include <gtest/gtest.h>

#include "platform/processor.h"
#include "tests/road/saved_keys.h"

namespace zck {
namespace {

class SavedKeysAtLevel : public testing::TestWithParam<KernelLevel> {
protected:
    void SetUp() override { KernelLevelLimit(GetParam()); }
    void TearDown() override { KernelLevelLimit(kKernelLevelHighest); }
};

TEST_P(SavedKeysAtLevel, FramesAreThoseThatWereWrittenDown) {
    if (KernelLevelGet() != GetParam()) GTEST_SKIP() << "this processor does not have the level";
    for (const SavedKey &saved : SavedKeys())
        for (int thread = 0; thread < 3; ++thread) ExpectSavedFrame(saved, thread);
}

INSTANTIATE_TEST_SUITE_P(Levels, SavedKeysAtLevel, testing::Values(KernelLevel::Reference, KernelLevel::Avx2));

}    // namespace
}    // namespace zck
