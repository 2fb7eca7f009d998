#include "imaging/primitives/convert422.h"

#include <gtest/gtest.h>

#include <vector>

#include "imaging/primitives/copy.h"
#include "imaging/primitives/row_kernels.h"

namespace zck {
namespace {

using Bytes = std::vector<uint8_t>;

// Blue, green, red, white, black, and grey at the end of an odd row.
const Bytes kPixels = {255, 0, 0, 1, 0, 255, 0, 2, 0, 0, 255, 3, 255, 255, 255, 4, 0, 0, 0, 5, 128, 128, 128, 6};

TEST(Convert422, WorkedColours) {
    Bytes uyvy(12);
    EXPECT_EQ(BGRToCbYCr422_8u_AC4C2R(kPixels.data(), 24, uyvy.data(), 12, {6, 1}), 0);
    // Blue: Y 40.99, Cb 239.945, Cr 109.895; green: Y 144.52, Cb 53.795, Cr 34.16; pairs share their mean chroma.
    EXPECT_EQ(uyvy, (Bytes{147, 41, 72, 145, 109, 82, 184, 235, 128, 16, 128, 126}));
    Bytes yuy2(12);
    EXPECT_EQ(BGRToYCbCr422_8u_AC4C2R(kPixels.data(), 24, yuy2.data(), 12, {6, 1}), 0);
    EXPECT_EQ(yuy2, (Bytes{41, 147, 145, 72, 82, 109, 235, 184, 16, 128, 126, 128}));
    Bytes bgra(24);
    const Bytes greys = {128, 16, 128, 235, 128, 126, 128, 0};
    EXPECT_EQ(CbYCr422ToBGR_8u_C2C4R(greys.data(), 8, bgra.data(), 16, {4, 1}, 200), 0);
    EXPECT_EQ(Bytes(bgra.begin(), bgra.begin() + 16),
              (Bytes{0, 0, 0, 200, 255, 255, 255, 200, 128, 128, 128, 200, 0, 0, 0, 200}));
}

TEST(Convert422, ThreeBytePixelsGiveTheSameBytesAsFour) {
    // Longer than a piece, odd, two rows, the second one below the first in memory.
    constexpr int32_t kWidth = 1301;
    Bytes bgra(kWidth * 4 * 2);
    for (size_t i = 0; i < bgra.size(); ++i) bgra[i] = static_cast<uint8_t>(i * 31 + i / 7);
    Bytes bgr(kWidth * 3 * 2);
    ASSERT_EQ(Copy_8u_C4C3R(bgra.data(), kWidth * 4, bgr.data(), kWidth * 3, {kWidth, 2}), 0);
    constexpr int64_t kStep = (kWidth + 1) * 2;
    Bytes four(kStep * 2, 9), three(kStep * 2, 9);
    EXPECT_EQ(BGRToYCbCr422_8u_AC4C2R(bgra.data(), kWidth * 4, four.data(), kStep, {kWidth, 2}), 0);
    EXPECT_EQ(BGRToYCbCr422_8u_C3C2R(bgr.data() + kWidth * 3, -kWidth * 3, three.data() + kStep, -kStep, {kWidth, 2}), 0);
    EXPECT_EQ(four, three);
    Bytes up4(kWidth * 4 * 2), up3(kWidth * 3 * 2), cut(kWidth * 3 * 2);
    EXPECT_EQ(YCbCr422ToBGR_8u_C2C4R(four.data(), kStep, up4.data(), kWidth * 4, {kWidth, 2}, 255), 0);
    EXPECT_EQ(YCbCr422ToBGR_8u_C2C3R(four.data(), kStep, up3.data(), kWidth * 3, {kWidth, 2}), 0);
    ASSERT_EQ(Copy_8u_C4C3R(up4.data(), kWidth * 4, cut.data(), kWidth * 3, {kWidth, 2}), 0);
    EXPECT_EQ(up3, cut);
    Bytes uyvy(kStep), viaYuy2(kStep, 9), row(kWidth * 3);
    RowBgrToUyvy(uyvy.data(), bgr.data(), kWidth);
    PrimitiveKernelsGet().yuy2_to_uyvy(viaYuy2.data(), three.data(), kWidth);
    viaYuy2.back() = uyvy.back();
    EXPECT_EQ(uyvy, viaYuy2);
    RowUyvyToBgr(row.data(), uyvy.data(), kWidth);
    EXPECT_EQ(row, Bytes(up3.begin(), up3.begin() + kWidth * 3));
}

TEST(Convert422, ExchangesOfBytes) {
    const Bytes group = {1, 2, 3, 4};
    Bytes out(4);
    EXPECT_EQ(CbYCr422ToYCbCr422_8u_C2R(group.data(), 4, out.data(), 4, {2, 1}), 0);
    EXPECT_EQ(out, (Bytes{2, 1, 4, 3}));
    EXPECT_EQ(YCbCr422ToCbYCr422_8u_C2R(group.data(), 4, out.data(), 4, {2, 1}), 0);
    EXPECT_EQ(out, (Bytes{2, 1, 4, 3}));
    EXPECT_EQ(YCbCr422ToYCrCb422_8u_C2R(group.data(), 4, out.data(), 4, {2, 1}), 0);
    EXPECT_EQ(out, (Bytes{1, 4, 3, 2}));
}

TEST(Convert422, BadArguments) {
    Bytes out(8, 9);
    EXPECT_EQ(BGRToCbYCr422_8u_AC4C2R(nullptr, 4, out.data(), 4, {1, 1}), kPrimitiveNull);
    EXPECT_EQ(YCbCr422ToBGR_8u_C2C3R(out.data(), 4, nullptr, 4, {1, 1}), kPrimitiveNull);
    EXPECT_EQ(CbYCr422ToBGR_8u_C2C4R(out.data(), 4, out.data(), 4, {0, 1}, 255), kPrimitiveBadSize);
    EXPECT_EQ(CbYCr422ToYCbCr422_8u_C2R(out.data(), 4, out.data(), 4, {1, -1}), kPrimitiveBadSize);
    EXPECT_EQ(out, Bytes(8, 9));
}

}    // namespace
}    // namespace zck
