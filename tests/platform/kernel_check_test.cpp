// The checker of kernels finds what it looks for.
#include "tests/support/kernel_check.h"

#include <gtest/gtest.h>

#include <string>

namespace zck {
namespace {

struct Kernels {
    void (*copy)(uint8_t *dst, const uint8_t *src, int32_t count);
};

void Copy(uint8_t *dst, const uint8_t *src, int32_t count) {
    for (int32_t i = 0; i < count; ++i) dst[i] = src[i];
}

// One byte is wrong, late in the row.
void Wrong(uint8_t *dst, const uint8_t *src, int32_t count) {
    Copy(dst, src, count);
    if (count > 7) dst[7] ^= 1;
}

void Behind(uint8_t *dst, const uint8_t *src, int32_t count) {
    Copy(dst, src, count);
    dst[count > 0 ? count : 0] ^= 1;
}

void Before(uint8_t *dst, const uint8_t *src, int32_t count) {
    Copy(dst, src, count);
    dst[-1] ^= 1;
}

void WritesItsSource(uint8_t *dst, const uint8_t *src, int32_t count) {
    Copy(dst, src, count);
    if (count > 0) const_cast<uint8_t *>(src)[0] ^= 1;
}

// The same bytes, but for a target that is the source.
void Backwards(uint8_t *dst, const uint8_t *src, int32_t count) {
    for (int32_t i = 0; i < count; ++i) dst[i] = dst == src ? static_cast<uint8_t>(0) : src[i];
}

void Call(const Kernels &k, uint8_t *dst, const uint8_t *src, int32_t count) { k.copy(dst, src, count); }

testing::AssertionResult Check(void (*ref)(uint8_t *, const uint8_t *, int32_t),
                               void (*vec)(uint8_t *, const uint8_t *, int32_t), bool inPlace = false, int64_t over = 0) {
    test::KernelShape shape = {test::Times(1), test::Times(1), 0};
    shape.over = over;
    std::mt19937 random(test::Seed());
    test::KernelCase<Kernels, decltype(&Call)> one(shape, test::Fill::Noise, 20, 3, random);
    return inPlace ? one.SameInPlace({ref}, {vec}, &Call) : one.Same({ref}, {vec}, &Call);
}

TEST(KernelCheck, EqualKernelsPass) {
    EXPECT_TRUE(Check(Copy, Copy));
    EXPECT_TRUE(Check(Copy, Copy, true));
    EXPECT_TRUE(Check(Copy, Backwards));
    EXPECT_TRUE(Check(Behind, Behind, false, 1)) << "a byte behind the target that the kernel may write";
}

TEST(KernelCheck, ADifferenceFails) {
    const testing::AssertionResult result = Check(Copy, Wrong);
    EXPECT_FALSE(result);
    EXPECT_EQ(std::string(result.message()).rfind("byte 7 is ", 0), 0U) << result.message();
    EXPECT_FALSE(Check(Copy, Backwards, true));
}

TEST(KernelCheck, BytesOutsideOfTheTargetFailAlsoWhenBothWriteThem) {
    EXPECT_FALSE(Check(Copy, Behind));
    EXPECT_FALSE(Check(Copy, Before));
    EXPECT_FALSE(Check(Behind, Behind));
    EXPECT_FALSE(Check(Before, Before));
}

TEST(KernelCheck, AWrittenSourceFails) { EXPECT_FALSE(Check(WritesItsSource, WritesItsSource)); }

TEST(KernelCheck, TheSeedOfTheCommandLineIsTaken) {
    const auto given = static_cast<uint32_t>(GTEST_FLAG_GET(random_seed));
    EXPECT_NE(test::Seed(), 0U);
    EXPECT_EQ(test::Seed(), given != 0 ? given : test::Seed());
}

}    // namespace
}    // namespace zck
