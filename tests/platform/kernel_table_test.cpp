#include "platform/kernel_table.h"

#include <gtest/gtest.h>

#include <vector>

namespace zck {
namespace {

struct Kernels {
    int (*first)();
    int (*second)();
    int (*third)();
};

template <int n>
int Number() {
    return n;
}

void FillRef(Kernels *table) { *table = {Number<1>, Number<2>, Number<3>}; }
void FillAvx2(Kernels *table) { table->second = table->third = Number<20>; }
void FillAvx512(Kernels *table) { table->third = Number<300>; }

constexpr KernelFamily<Kernels> kFamily = {FillRef, FillAvx2, FillAvx512};

std::vector<int> Answers(const Kernels &table) { return {table.first(), table.second(), table.third()}; }

TEST(KernelTable, EachLevelOverwritesWhatItHas) {
    EXPECT_EQ(Answers(kFamily.Make(KernelLevel::Reference)), (std::vector{1, 2, 3}));
    EXPECT_EQ(Answers(kFamily.Make(KernelLevel::Avx2)), (std::vector{1, 20, 20}));
    EXPECT_EQ(Answers(kFamily.Make(KernelLevel::Avx512)), (std::vector{1, 20, 300}));
}

TEST(KernelTable, ALevelWithoutVersionsHasThoseBelow) {
    const KernelFamily<Kernels> family = {FillRef, FillAvx2};
    EXPECT_EQ(Answers(family.Make(KernelLevel::Avx512)), (std::vector{1, 20, 20}));
}

TEST(KernelTable, FollowsTheLimitAndStaysInPlace) {
    KernelLevelLimit(KernelLevel::Reference);
    const Kernels &ref = KernelTableGet<kFamily>();
    EXPECT_EQ(Answers(ref), (std::vector{1, 2, 3}));
    KernelLevelLimit(kKernelLevelHighest);
    EXPECT_EQ(Answers(KernelTableGet<kFamily>()), Answers(kFamily.Make(KernelLevelGet())));
    EXPECT_EQ(&KernelTableGet<kFamily>(), &KernelTableGet<kFamily>());
    EXPECT_EQ(Answers(ref), (std::vector{1, 2, 3}));
}

}    // namespace
}    // namespace zck
