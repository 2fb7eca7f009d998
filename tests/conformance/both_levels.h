// Checks that are made with the reference rows and with the vector rows.
#pragma once

#include <gtest/gtest.h>

#include <functional>

#include "platform/processor.h"

namespace conformance {

// Runs it once with each. A failure says with which.
inline void BothLevels(const std::function<void()> &run) {
    for (const zck::KernelLevel level : {zck::KernelLevel::Reference, zck::KernelLevel::Avx2}) {
        zck::KernelLevelLimit(level);
        run();
        ASSERT_FALSE(testing::Test::HasFailure()) << (level == zck::KernelLevel::Avx2 ? "vector" : "reference") << " rows";
    }
}

}    // namespace conformance
