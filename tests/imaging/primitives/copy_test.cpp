#include "imaging/primitives/copy.h"

#include <gtest/gtest.h>

#include <vector>

namespace zck {
namespace {

using Bytes = std::vector<uint8_t>;

TEST(Copy, RowsOfEveryPixelWidth) {
    const Bytes src = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16};
    using Function = int32_t (*)(const uint8_t *, int64_t, uint8_t *, int64_t, ROI);
    const std::pair<Function, size_t> copies[] = {{Copy_8u_C1R, 1}, {Copy_16u_C1R, 2}, {Copy_8u_C3R, 3}, {Copy_8u_C4R, 4}};
    for (const auto &[copy, bytes] : copies) {
        // Two pixels of the second row, then of the first one.
        Bytes dst(10, 99);
        Bytes expected(10, 99);
        for (size_t i = 0; i < 2 * bytes && i < 5; ++i) expected[i] = src[8 + i];
        for (size_t i = 0; i < bytes; ++i) expected[5 + i] = src[i];
        if (bytes == 1) {
            EXPECT_EQ(copy(src.data() + 8, -8, dst.data(), 5, {2, 1}), 0);
        } else {
            for (size_t i = bytes; i < 5; ++i) expected[i] = 99;
        }
        EXPECT_EQ(copy(src.data() + 8, -8, dst.data(), 5, {1, 2}), 0);
        EXPECT_EQ(dst, expected) << bytes;
    }
}

TEST(Copy, BetweenThreeAndFourBytes) {
    const Bytes four = {1, 2, 3, 4, 5, 6, 7, 8};
    Bytes three(7, 99);
    EXPECT_EQ(Copy_8u_C4C3R(four.data(), 8, three.data(), 6, {2, 1}), 0);
    EXPECT_EQ(three, (Bytes{1, 2, 3, 5, 6, 7, 99}));
    Bytes back(9, 99);
    EXPECT_EQ(Copy_8u_C3C4R(three.data(), 6, back.data(), 8, {2, 1}), 0);
    EXPECT_EQ(back, (Bytes{1, 2, 3, 255, 5, 6, 7, 255, 99}));
}

TEST(Copy, OneChannelOutAndIn) {
    Bytes four = {1, 2, 3, 4, 5, 6, 7, 8};
    Bytes plane(2);
    EXPECT_EQ(Copy_8u_C4C1R(four.data() + 3, 8, plane.data(), 2, {2, 1}), 0);
    EXPECT_EQ(plane, (Bytes{4, 8}));
    EXPECT_EQ(Copy_8u_C1C4R(plane.data(), 2, four.data() + 1, 8, {2, 1}), 0);
    EXPECT_EQ(four, (Bytes{1, 4, 3, 4, 5, 8, 7, 8}));
    EXPECT_EQ(Set_8u_C4CR(255, four.data() + 3, 4, {1, 2}), 0);
    EXPECT_EQ(four, (Bytes{1, 4, 3, 255, 5, 8, 7, 255}));
}

TEST(Copy, Fills) {
    Bytes image(8, 9);
    EXPECT_EQ(Set_8u_C1R(1, image.data(), 4, {2, 2}), 0);
    EXPECT_EQ(image, (Bytes{1, 1, 9, 9, 1, 1, 9, 9}));
    const uint8_t value[] = {5, 6, 7, 8};
    EXPECT_EQ(Set_8u_C3R(value, image.data(), 8, {2, 1}), 0);
    EXPECT_EQ(image, (Bytes{5, 6, 7, 5, 6, 7, 9, 9}));
    EXPECT_EQ(Set_8u_C4R(value, image.data() + 4, -4, {1, 2}), 0);
    EXPECT_EQ(image, (Bytes{5, 6, 7, 8, 5, 6, 7, 8}));
    EXPECT_EQ(Set_32s(0x04030201, image.data() + 1, 1), 0);
    EXPECT_EQ(image, (Bytes{5, 1, 2, 3, 4, 6, 7, 8}));
    EXPECT_EQ(Zero_8u(image.data() + 1, 6), 0);
    EXPECT_EQ(image, (Bytes{5, 0, 0, 0, 0, 0, 0, 8}));
}

TEST(Copy, BadArgumentsDoNothing) {
    Bytes image(4, 9);
    const uint8_t value[] = {1, 2, 3, 4};
    EXPECT_LT(Copy_8u_C1R(nullptr, 4, image.data(), 4, {4, 1}), 0);
    EXPECT_LT(Copy_8u_C4C3R(value, 4, nullptr, 4, {1, 1}), 0);
    EXPECT_LT(Copy_8u_C4R(value, 4, image.data(), 4, {-1, 1}), 0);
    EXPECT_LT(Copy_8u_C3C4R(value, 4, image.data(), 4, {1, 0}), 0);
    EXPECT_LT(Set_8u_C3R(nullptr, image.data(), 4, {1, 1}), 0);
    EXPECT_LT(Set_8u_C4R(nullptr, image.data(), 4, {1, 1}), 0);
    EXPECT_LT(Set_8u_C1R(1, nullptr, 4, {1, 1}), 0);
    EXPECT_LT(Set_32s(0, nullptr, 1), 0);
    EXPECT_LT(Set_32s(0, image.data(), -1), 0);
    EXPECT_LT(Zero_8u(image.data(), 0), 0);
    EXPECT_LT(Zero_8u(nullptr, 1), 0);
    EXPECT_EQ(image, Bytes(4, 9));
}

}    // namespace
}    // namespace zck
