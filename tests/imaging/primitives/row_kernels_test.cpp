// Each vector row against its reference.
#include "imaging/primitives/row_kernels.h"

#include "tests/support/kernel_check.h"

namespace zck {
namespace {

using test::CheckKernel;
using test::KernelShape;
using test::Times;
using K = PrimitiveKernels;

class Rows : public testing::Test {
protected:
    void SetUp() override {
        if (!CpuHasAvx2()) GTEST_SKIP() << "this processor has no AVX2";
        ref = kFamily.Make(KernelLevel::Reference);
        vec = kFamily.Make(KernelLevel::Avx2);
    }

    static constexpr KernelFamily<K> kFamily = {PrimitiveKernelsInitRef, PrimitiveKernelsInitAvx2};
    K ref = {};
    K vec = {};
};

// Whole groups of 4:2:2, as rows are stored.
int64_t Groups(int32_t width) { return (int64_t{width} + 1) / 2 * 4; }

TEST_F(Rows, EveryEntryHasTwoDifferentFunctions) { test::ExpectAllEntriesDiffer(ref, vec); }

// Before anything else: a limit at the first call must not stay.
const K &FirstTable() {
    KernelLevelLimit(KernelLevel::Reference);
    const K &table = PrimitiveKernelsGet();
    KernelLevelLimit(kKernelLevelHighest);
    return table;
}
const K &kFirstTable = FirstTable();

TEST_F(Rows, TheTableFollowsTheLevel) {
    EXPECT_EQ(kFirstTable.mirror3, ref.mirror3);
    EXPECT_EQ(PrimitiveKernelsGet().mirror3, vec.mirror3);
    KernelLevelLimit(KernelLevel::Reference);
    EXPECT_EQ(PrimitiveKernelsGet().mirror3, ref.mirror3);
    KernelLevelLimit(kKernelLevelHighest);
    EXPECT_EQ(PrimitiveKernelsGet().mirror3, vec.mirror3);
}

TEST_F(Rows, Copies) {
    CheckKernel("drop_alpha", ref, vec, {Times(4), Times(3), 36},
                [](const K &k, uint8_t *d, const uint8_t *s, int32_t n) { k.drop_alpha(d, s, n); });
    CheckKernel("add_alpha", ref, vec, {Times(3), Times(4), 36},
                [](const K &k, uint8_t *d, const uint8_t *s, int32_t n) { k.add_alpha(d, s, n); });
    // The row ends at the channel of the last pixel, as it does for the fourth one.
    CheckKernel("get_channel", ref, vec, {[](int32_t n) { return int64_t{4} * n - 3; }, Times(1), 132},
                [](const K &k, uint8_t *d, const uint8_t *s, int32_t n) { k.get_channel(d, s, n); });
    CheckKernel("put_channel", ref, vec, {Times(1), [](int32_t n) { return int64_t{4} * n - 3; }, 36},
                [](const K &k, uint8_t *d, const uint8_t *s, int32_t n) { k.put_channel(d, s, n); });
}

TEST_F(Rows, Fills) {
    CheckKernel("set_channel", ref, vec, {Times(1), [](int32_t n) { return int64_t{4} * n - 3; }, 36},
                [](const K &k, uint8_t *d, const uint8_t *, int32_t n) { k.set_channel(d, 77, n); });
    const uint8_t value[] = {1, 2, 3, 4};
    CheckKernel("set3", ref, vec, {Times(1), Times(3), 132},
                [&](const K &k, uint8_t *d, const uint8_t *, int32_t n) { k.set3(d, value, n); });
    CheckKernel("set4", ref, vec, {Times(1), Times(4), 36},
                [&](const K &k, uint8_t *d, const uint8_t *, int32_t n) { k.set4(d, value, n); });
}

TEST_F(Rows, Arithmetic) {
    for (const int32_t scale : {-1, 0, 1, 7, 8, 9, 16, 40}) {
        SCOPED_TRACE(scale);
        CheckKernel("mul_const", ref, vec, {Times(1), Times(1), 132, true},
                    [=](const K &k, uint8_t *d, const uint8_t *s, int32_t n) { k.mul_const(d, s, 201, n, scale); });
        CheckKernel("mul", ref, vec, {Times(2), Times(1), 132},
                    [=](const K &k, uint8_t *d, const uint8_t *s, int32_t n) { k.mul(d, s, s + std::max(n, 0), n, scale); });
        CheckKernel("add", ref, vec, {Times(2), Times(1), 132},
                    [=](const K &k, uint8_t *d, const uint8_t *s, int32_t n) { k.add(d, s, s + std::max(n, 0), n, scale); });
    }
    const uint8_t value[] = {1, 2, 3, 255, 128, 0, 7, 8, 9, 10, 11, 12};
    for (const int32_t scale : {0, 1})
        CheckKernel("add_const", ref, vec, {Times(1), Times(1), 387, true},
                    [&](const K &k, uint8_t *d, const uint8_t *s, int32_t n) { k.add_const(d, s, value, n, scale); });
    CheckKernel("alpha_over", ref, vec, {Times(8), Times(4), 36},
                [](const K &k, uint8_t *d, const uint8_t *s, int32_t n) { k.alpha_over(d, s, s + 4 * std::max(n, 0), n); });
}

TEST_F(Rows, Mirrors) {
    CheckKernel("mirror1", ref, vec, {Times(1), Times(1), 132},
                [](const K &k, uint8_t *d, const uint8_t *s, int32_t n) { k.mirror1(d, s, n); });
    CheckKernel("mirror2", ref, vec, {Times(2), Times(2), 68},
                [](const K &k, uint8_t *d, const uint8_t *s, int32_t n) { k.mirror2(d, s, n); });
    CheckKernel("mirror3", ref, vec, {Times(3), Times(3), 36},
                [](const K &k, uint8_t *d, const uint8_t *s, int32_t n) { k.mirror3(d, s, n); });
    CheckKernel("mirror4", ref, vec, {Times(4), Times(4), 36},
                [](const K &k, uint8_t *d, const uint8_t *s, int32_t n) { k.mirror4(d, s, n); });
    const uint8_t order[] = {3, 0, 2, 2};
    CheckKernel("swap4", ref, vec, {Times(4), Times(4), 36, true},
                [&](const K &k, uint8_t *d, const uint8_t *s, int32_t n) { k.swap4(d, s, order, n); });
}

TEST_F(Rows, Conversions) {
    CheckKernel("bgra_to_uyvy", ref, vec, {Times(4), Groups, 68},
                [](const K &k, uint8_t *d, const uint8_t *s, int32_t n) { k.bgra_to_uyvy(d, s, n); });
    CheckKernel("bgra_to_yuy2", ref, vec, {Times(4), Groups, 68},
                [](const K &k, uint8_t *d, const uint8_t *s, int32_t n) { k.bgra_to_yuy2(d, s, n); });
    CheckKernel("uyvy_to_bgra", ref, vec, {Groups, Times(4), 68},
                [](const K &k, uint8_t *d, const uint8_t *s, int32_t n) { k.uyvy_to_bgra(d, s, n, 99); });
    CheckKernel("yuy2_to_bgra", ref, vec, {Groups, Times(4), 68},
                [](const K &k, uint8_t *d, const uint8_t *s, int32_t n) { k.yuy2_to_bgra(d, s, n, 255); });
    CheckKernel("uyvy_to_yuy2", ref, vec, {Groups, Groups, 68, true},
                [](const K &k, uint8_t *d, const uint8_t *s, int32_t n) { k.uyvy_to_yuy2(d, s, n); });
    CheckKernel("yuy2_to_uyvy", ref, vec, {Groups, Groups, 68, true},
                [](const K &k, uint8_t *d, const uint8_t *s, int32_t n) { k.yuy2_to_uyvy(d, s, n); });
    CheckKernel("swap_chroma", ref, vec, {Groups, Groups, 68, true},
                [](const K &k, uint8_t *d, const uint8_t *s, int32_t n) { k.swap_chroma(d, s, n); });
}

int64_t Half(int32_t width) { return (int64_t{width} + 1) / 2; }
// A row of luma and two of chroma, one behind the other.
int64_t Planes(int32_t width) { return width + 2 * Half(width); }
// An input of a count below 1 has no address to count from.
int32_t Past(int32_t n) { return std::max(n, 0); }

TEST_F(Rows, Planes) {
    CheckKernel("split_uyvy", ref, vec, {Groups, Planes, 132},
                [](const K &k, uint8_t *d, const uint8_t *s, int32_t n) { k.split_uyvy(d, d + n, d + n + Half(n), s, n); });
    CheckKernel("split_yuy2", ref, vec, {Groups, Planes, 132},
                [](const K &k, uint8_t *d, const uint8_t *s, int32_t n) { k.split_yuy2(d, d + n, d + n + Half(n), s, n); });
    CheckKernel("join_uyvy", ref, vec, {Planes, Groups, 132}, [](const K &k, uint8_t *d, const uint8_t *s, int32_t n) {
        k.join_uyvy(d, s, s + Past(n), s + Past(n) + Half(Past(n)), n);
    });
    CheckKernel("join_yuy2", ref, vec, {Planes, Groups, 132}, [](const K &k, uint8_t *d, const uint8_t *s, int32_t n) {
        k.join_yuy2(d, s, s + Past(n), s + Past(n) + Half(Past(n)), n);
    });
    CheckKernel("split_pairs", ref, vec, {Times(2), Times(2), 68},
                [](const K &k, uint8_t *d, const uint8_t *s, int32_t n) { k.split_pairs(d, d + n, s, n); });
    CheckKernel("join_pairs", ref, vec, {Times(2), Times(2), 68},
                [](const K &k, uint8_t *d, const uint8_t *s, int32_t n) { k.join_pairs(d, s, s + Past(n), n); });
    CheckKernel("mean", ref, vec, {Times(2), Times(1), 132},
                [](const K &k, uint8_t *d, const uint8_t *s, int32_t n) { k.mean(d, s, s + Past(n), n); });
    CheckKernel("mean of its target", ref, vec, {Times(1), Times(1), 132},
                [](const K &k, uint8_t *d, const uint8_t *s, int32_t n) { k.mean(d, d, s, n); });
}

TEST_F(Rows, ColoursOfPlanes) {
    CheckKernel("planes_to_bgra", ref, vec, {Planes, Times(4), 68}, [](const K &k, uint8_t *d, const uint8_t *s, int32_t n) {
        k.planes_to_bgra(d, s, s + Past(n), s + Past(n) + Half(Past(n)), n, 99);
    });
    CheckKernel("nv12_to_bgra", ref, vec, {Planes, Times(4), 68},
                [](const K &k, uint8_t *d, const uint8_t *s, int32_t n) { k.nv12_to_bgra(d, s, s + Past(n), n, 255); });
    CheckKernel("bgra_to_420", ref, vec, {Times(8), [](int32_t n) { return n + Planes(n); }, 68},
                [](const K &k, uint8_t *d, const uint8_t *s, int32_t n) {
                    k.bgra_to_420(d, d + n, d + 2 * n, d + 2 * n + Half(n), s, s + 4 * Past(n), n);
                });
    CheckKernel(
        "bgra_to_420, one row", ref, vec, {Times(4), Planes, 68},
        [](const K &k, uint8_t *d, const uint8_t *s, int32_t n) { k.bgra_to_420(d, d, d + n, d + n + Half(n), s, s, n); });
}

}    // namespace
}    // namespace zck
