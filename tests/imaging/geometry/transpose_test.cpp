#include "imaging/geometry/transpose.h"

#include <gtest/gtest.h>

#include <cstring>

#include "imaging/geometry/turn_kernels.h"
#include "tests/imaging/geometry/picture.h"
#include "tests/support/kernel_check.h"

namespace zck {
namespace {

using test::Bytes;

std::vector<TurnKernels> Levels() { return test::TablesOf<TurnKernels>({TurnKernelsInitRef, TurnKernelsInitAvx2}); }

Bytes Noise(size_t n, uint32_t seed) {
    std::mt19937 random(seed);
    Bytes bytes(n);
    for (uint8_t &b : bytes) b = static_cast<uint8_t>(random() >> 8);
    return bytes;
}

TEST(TurnKernels, VectorsGiveTheBytesOfTheReference) {
    const std::vector<TurnKernels> tables = Levels();
    if (tables.size() < 2) GTEST_SKIP() << "this processor has no AVX2";
    test::ExpectAllEntriesDiffer(tables[0], tables[1]);
    const Bytes src = Noise(8 * 48, 1);
    for (int64_t shift = 0; shift < 8; ++shift)
        for (const int64_t srcStep : {32, 37, -40})
            for (const int64_t dstStep : {32, 45, -33}) {
                Bytes expected(8 * 48 + 64, 0x5A);
                Bytes found = expected;
                const uint8_t *const from = src.data() + (srcStep < 0 ? -7 * srcStep : shift);
                const auto run = [&](const TurnKernels &k, Bytes &out) {
                    k.transpose4(out.data() + 16 + shift + (dstStep < 0 ? -7 * dstStep : 0), dstStep, from, srcStep);
                };
                run(tables[0], expected);
                run(tables[1], found);
                ASSERT_EQ(expected, found);
            }
}

TEST(TurnKernels, TheTableFollowsTheLevel) {
    const std::vector<TurnKernels> tables = Levels();
    KernelLevelLimit(KernelLevel::Reference);
    EXPECT_EQ(TurnKernelsGet().transpose4, tables[0].transpose4);
    KernelLevelLimit(kKernelLevelHighest);
    EXPECT_EQ(TurnKernelsGet().transpose4, tables.back().transpose4);
}

TEST(Transpose, RowsBecomeColumns) {
    for (const int32_t pixel : {1, 3, 4})
        for (const ROI size : {ROI{1, 1}, ROI{7, 9}, ROI{8, 8}, ROI{17, 65}, ROI{130, 70}, ROI{37, 300}})
            for (const bool up : {false, true}) {
                const int64_t srcStep = size.width * pixel + 5, dstStep = size.height * pixel + 3;
                // Exactly the bytes of the pixels.
                const Bytes src = Noise(static_cast<size_t>((size.height - 1) * srcStep + size.width * pixel), 3);
                Bytes dst(static_cast<size_t>((size.width - 1) * dstStep + size.height * pixel), 0x5A);
                uint8_t *const to = dst.data() + (up ? (size.width - 1) * dstStep : 0);
                Transpose(to, up ? -dstStep : dstStep, src.data(), srcStep, size, pixel);
                for (int32_t x = 0; x < size.width; ++x)
                    for (int32_t y = 0; y < size.height; ++y)
                        ASSERT_EQ(std::memcmp(dst.data() + (up ? size.width - 1 - x : x) * dstStep + y * pixel,
                                              src.data() + y * srcStep + x * pixel, static_cast<size_t>(pixel)),
                                  0);
                for (int32_t x = 0; x + 1 < size.width; ++x)
                    ASSERT_EQ(dst[static_cast<size_t>(x * dstStep + size.height * pixel)], 0x5A);
            }
}

}    // namespace
}    // namespace zck
