#include "imaging/primitives/mirror.h"

#include <gtest/gtest.h>

#include <limits>
#include <vector>

namespace zck {
namespace {

using Bytes = std::vector<uint8_t>;
using MirrorFunction = int32_t (*)(const uint8_t *, int64_t, uint8_t *, int64_t, ROI, int32_t);
using InPlaceFunction = int32_t (*)(uint8_t *, int64_t, ROI, int32_t);

struct Case {
    int pixelBytes;
    MirrorFunction copy;
    InPlaceFunction inPlace;
};

const Case kCases[] = {{1, Mirror_8u_C1R, nullptr},
                       {2, Mirror_16u_C1R, Mirror_16u_C1IR},
                       {3, Mirror_8u_C3R, Mirror_8u_C3IR},
                       {4, Mirror_8u_C4R, Mirror_8u_C4IR}};

TEST(Mirror, EveryAxisPixelAndShape) {
    for (const Case &c : kCases)
        for (const int32_t axis : {0, 1, 2})
            for (const int32_t width : {1, 2, 7, 40, 512, 700, 1300})
                for (const int32_t height : {1, 2, 5}) {
                    const int64_t row = int64_t{width} * c.pixelBytes;
                    const int64_t step = row + 3;
                    Bytes src(static_cast<size_t>(step * height));
                    for (size_t i = 0; i < src.size(); ++i) src[i] = static_cast<uint8_t>(i * 7 + i / 256);
                    Bytes expected(src.size(), 99);
                    for (int64_t y = 0; y < height; ++y)
                        for (int64_t i = 0; i < row; ++i) {
                            const int64_t x = i / c.pixelBytes;
                            const int64_t fromX = axis == 0 ? x : width - 1 - x;
                            const int64_t fromY = axis == 1 ? y : height - 1 - y;
                            expected[static_cast<size_t>(y * step + i)] =
                                src[static_cast<size_t>(fromY * step + fromX * c.pixelBytes + i % c.pixelBytes)];
                        }
                    SCOPED_TRACE(testing::Message() << c.pixelBytes << " axis " << axis << " " << width << "x" << height);
                    Bytes dst(src.size(), 99);
                    EXPECT_EQ(c.copy(src.data(), step, dst.data(), step, {width, height}, axis), 0);
                    EXPECT_EQ(dst, expected);
                    if (c.inPlace == nullptr) continue;
                    // The padding stays.
                    for (int64_t y = 0; y < height; ++y)
                        for (int64_t i = row; i < step; ++i) {
                            const auto at = static_cast<size_t>(y * step + i);
                            expected[at] = src[at];
                        }
                    EXPECT_EQ(c.inPlace(src.data(), step, {width, height}, axis), 0);
                    EXPECT_EQ(src, expected);
                }
}

TEST(Mirror, NegativeStepsAndBadArguments) {
    const Bytes src = {1, 2, 3, 4, 5, 6};
    Bytes dst(6, 9);
    EXPECT_EQ(Mirror_8u_C1R(src.data() + 4, -2, dst.data(), 2, {2, 3}, 0), 0);
    EXPECT_EQ(dst, src);
    EXPECT_LT(Mirror_8u_C1R(src.data(), 2, dst.data(), 2, {2, 3}, 3), 0);
    EXPECT_LT(Mirror_8u_C1R(src.data(), 2, dst.data(), 2, {2, 3}, -1), 0);
    EXPECT_LT(Mirror_8u_C1R(nullptr, 2, dst.data(), 2, {2, 3}, 0), 0);
    EXPECT_LT(Mirror_8u_C1R(src.data(), 2, nullptr, 2, {2, 3}, 0), 0);
    EXPECT_LT(Mirror_8u_C1R(src.data(), 2, dst.data(), 2, {2, 0}, 0), 0);
    EXPECT_LT(Mirror_8u_C4IR(dst.data(), 4, {1, std::numeric_limits<int32_t>::min()}, 0), 0);
    EXPECT_LT(Mirror_8u_C3IR(nullptr, 4, {1, 1}, 0), 0);
    EXPECT_LT(Mirror_16u_C1IR(dst.data(), 2, {1, 1}, 4), 0);
    EXPECT_EQ(dst, src);
}

TEST(Mirror, OrderOfBytesInAPixel) {
    Bytes image = {1, 2, 3, 4, 9, 5, 6, 7, 8, 9};
    const int32_t order[] = {2, 1, 0, 3};
    EXPECT_EQ(SwapChannels_8u_C4IR(image.data(), 5, {1, 2}, order), 0);
    EXPECT_EQ(image, (Bytes{3, 2, 1, 4, 9, 7, 6, 5, 8, 9}));
    const int32_t outside[] = {0, 1, 2, 4};
    EXPECT_LT(SwapChannels_8u_C4IR(image.data(), 5, {1, 2}, outside), 0);
    EXPECT_LT(SwapChannels_8u_C4IR(image.data(), 5, {1, 2}, nullptr), 0);
    EXPECT_LT(SwapChannels_8u_C4IR(nullptr, 5, {1, 2}, order), 0);
    EXPECT_EQ(image[0], 3);
}

}    // namespace
}    // namespace zck
