#include "imaging/primitives/arithmetic.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

#include "imaging/primitives/row_kernels.h"
#include "tests/support/kernel_check.h"

namespace zck {
namespace {

using Bytes = std::vector<uint8_t>;

TEST(Arithmetic, ProductsRoundTiesToEvenAtEveryLevel) {
    const auto tables = test::TablesOf<PrimitiveKernels>({PrimitiveKernelsInitRef, PrimitiveKernelsInitAvx2});
    Bytes src(256), dst(256);
    for (size_t i = 0; i < 256; ++i) src[i] = static_cast<uint8_t>(i);
    for (const PrimitiveKernels &k : tables)
        for (int32_t n = -2; n <= 20; ++n)
            for (int32_t value = 0; value < 256; ++value) {
                k.mul_const(dst.data(), src.data(), static_cast<uint8_t>(value), 256, n);
                for (int32_t i = 0; i < 256; ++i) {
                    // Exact in a real; rounds ties to even.
                    const double exact = std::nearbyint(std::ldexp(static_cast<double>(i * value), -n));
                    ASSERT_EQ(dst[static_cast<size_t>(i)], exact < 255 ? exact : 255) << i << " * " << value << " / 2^" << n;
                }
            }
}

TEST(Arithmetic, CompositionOfAllBytesAndAlphasAtEveryLevel) {
    const auto tables = test::TablesOf<PrimitiveKernels>({PrimitiveKernelsInitRef, PrimitiveKernelsInitAvx2});
    for (const PrimitiveKernels &k : tables)
        for (int32_t alpha = 0; alpha < 256; ++alpha) {
            Bytes over(256 * 4), under(256 * 4), dst(256 * 4);
            for (size_t i = 0; i < 256; ++i) {
                over[4 * i] = 3;
                over[4 * i + 3] = static_cast<uint8_t>(alpha);
                for (size_t j = 0; j < 4; ++j) under[4 * i + j] = static_cast<uint8_t>(i);
            }
            k.alpha_over(dst.data(), over.data(), under.data(), 256);
            for (int32_t i = 0; i < 256; ++i) {
                const int32_t rest = (i * (255 - alpha) + 127) / 255;
                ASSERT_EQ(dst[static_cast<size_t>(4 * i)], std::min(255, 3 + rest));
                ASSERT_EQ(dst[static_cast<size_t>(4 * i + 1)], rest);
                ASSERT_EQ(dst[static_cast<size_t>(4 * i + 3)], std::min(255, alpha + rest));
            }
        }
}

TEST(Arithmetic, ImagesInRowsWithSteps) {
    // Two rows of two bytes, 3 apart; and the same backwards.
    Bytes image = {10, 20, 7, 30, 40, 7};
    EXPECT_EQ(MulC_8u_C1IRSfs(64, image.data(), 3, {2, 2}, 7), 0);
    EXPECT_EQ(image, (Bytes{5, 10, 7, 15, 20, 7}));
    EXPECT_EQ(AddC_8u_C1IRSfs(250, image.data() + 3, -3, {2, 2}, 0), 0);
    EXPECT_EQ(image, (Bytes{255, 255, 7, 255, 255, 7}));
    Bytes target(6, 1);
    EXPECT_EQ(MulC_8u_C1RSfs(image.data(), 3, 2, target.data() + 3, -3, {1, 2}, 1), 0);
    EXPECT_EQ(target, (Bytes{255, 1, 1, 255, 1, 1}));
}

TEST(Arithmetic, PixelsOfThreeAndFourBytes) {
    Bytes three = {1, 2, 3, 4, 5, 6, 7};
    const uint8_t value3[] = {10, 20, 255};
    EXPECT_EQ(AddC_8u_C3IRSfs(value3, three.data(), 7, {2, 1}, 0), 0);
    EXPECT_EQ(three, (Bytes{11, 22, 255, 14, 25, 255, 7}));
    Bytes four = {1, 2, 3, 4, 5, 6, 7, 8};
    const uint8_t value4[] = {10, 20, 30, 255};
    EXPECT_EQ(AddC_8u_C4IRSfs(value4, four.data(), 8, {2, 1}, 0), 0);
    EXPECT_EQ(four, (Bytes{11, 22, 33, 255, 15, 26, 37, 255}));
    const uint8_t alike[] = {128, 128, 128, 128};
    const uint8_t mixed[] = {128, 0, 255, 64};
    Bytes scaled(4);
    EXPECT_EQ(MulC_8u_C4RSfs(four.data(), 8, alike, scaled.data(), 4, {1, 1}, 8), 0);
    EXPECT_EQ(scaled, (Bytes{6, 11, 16, 128}));    // 5.5 and 16.5 go to the even neighbour, 127.5 too
    EXPECT_EQ(MulC_8u_C4RSfs(four.data(), 8, mixed, scaled.data(), 4, {1, 1}, 8), 0);
    EXPECT_EQ(scaled, (Bytes{6, 0, 33, 64}));
    Bytes sum = {1, 2, 3, 4, 5, 6, 7, 200};
    EXPECT_EQ(Add_8u_C4IRSfs(four.data(), 8, sum.data(), 8, {2, 1}, 0), 0);
    EXPECT_EQ(sum, (Bytes{12, 24, 36, 255, 20, 32, 44, 255}));
    EXPECT_EQ(Add_8u_C3IRSfs(four.data(), 8, sum.data(), 8, {1, 1}, 0), 0);
    EXPECT_EQ(sum, (Bytes{23, 46, 69, 255, 20, 32, 44, 255}));
    EXPECT_EQ(Add_8u_C1IRSfs(four.data(), 8, sum.data(), 8, {1, 1}, 1), 0);
    EXPECT_EQ(sum[0], 17);
    Bytes product(2);
    EXPECT_EQ(Mul_8u_C1RSfs(four.data(), 8, four.data() + 1, 8, product.data(), 2, {2, 1}, 4), 0);
    EXPECT_EQ(product, (Bytes{15, 45}));    // 242 / 16 = 15.125, 726 / 16 = 45.375
    EXPECT_EQ(Mul_8u_C1IRSfs(four.data(), 8, product.data(), 2, {2, 1}, 0), 0);
    EXPECT_EQ(product, (Bytes{165, 255}));
}

TEST(Arithmetic, BadArgumentsDoNothing) {
    Bytes image(4, 9);
    const uint8_t value[] = {1, 2, 3, 4};
    EXPECT_EQ(MulC_8u_C1IRSfs(1, nullptr, 4, {4, 1}, 0), kPrimitiveNull);
    EXPECT_LT(MulC_8u_C1IRSfs(1, image.data(), 4, {0, 1}, 0), 0);
    EXPECT_LT(MulC_8u_C1IRSfs(1, image.data(), 4, {1, -1}, 0), 0);
    EXPECT_LT(AddC_8u_C3IRSfs(nullptr, image.data(), 4, {1, 1}, 0), 0);
    EXPECT_LT(AddC_8u_C4IRSfs(value, image.data(), 4, {std::numeric_limits<int32_t>::min(), 1}, 0), 0);
    EXPECT_LT(MulC_8u_C4RSfs(image.data(), 4, nullptr, image.data(), 4, {1, 1}, 8), 0);
    EXPECT_LT(Mul_8u_C1RSfs(image.data(), 4, nullptr, 4, image.data(), 4, {1, 1}, 8), 0);
    EXPECT_LT(AlphaComp_8u_AC4R(image.data(), 4, image.data(), 4, nullptr, 4, {1, 1}, 6), 0);
    EXPECT_EQ(AlphaComp_8u_AC4R(image.data(), 4, image.data(), 4, image.data(), 4, {1, 1}, 5), kPrimitiveNotProvided);
    EXPECT_EQ(image, Bytes(4, 9));
    EXPECT_EQ(AlphaComp_8u_AC4R(image.data(), 4, image.data(), 4, image.data(), 4, {1, 1}, 6), 0);
    EXPECT_EQ(image, Bytes(4, 18));
}

}    // namespace
}    // namespace zck
