// Planes and interleaved pixels, whole images: each conversion against a walk over single pixels.
#include "imaging/primitives/planar.h"

#include <gtest/gtest.h>

#include <functional>
#include <random>
#include <vector>

#include "imaging/primitives/convert422.h"
#include "imaging/primitives/copy.h"
#include "imaging/primitives/row_kernels.h"
#include "platform/processor.h"

namespace zck {
namespace {

using Bytes = std::vector<uint8_t>;

Bytes Noise(int64_t bytes, uint32_t seed) {
    std::mt19937 random(seed);
    Bytes noise(static_cast<size_t>(bytes));
    for (uint8_t &b : noise) b = static_cast<uint8_t>(random() >> 8);
    return noise;
}

int32_t Up2(int32_t n) { return (n + 1) / 2; }

// Three planes, each with padding of its own that must stay as it was. `div` is 2 for chroma rows of 4:2:0.
struct Planes {
    Planes(ROI roi, int32_t div, uint32_t seed) : size(roi) {
        for (int i = 0; i < 3; ++i) {
            width[i] = i == 0 ? roi.width : Up2(roi.width);
            rows[i] = i == 0 ? roi.height : (roi.height + div - 1) / div;
            step[i] = width[i] + 3 + i;
            memory[i] = Noise(step[i] * rows[i], seed + static_cast<uint32_t>(i));
            data[i] = memory[i].data();
        }
    }
    uint8_t &At(int plane, int64_t x, int64_t y) { return memory[plane][static_cast<size_t>(y * step[plane] + x)]; }
    const uint8_t *const *Source() const { return data; }

    ROI size;
    int32_t width[3], rows[3];
    int64_t step[3];
    Bytes memory[3];
    uint8_t *data[3];
};

struct Packed {
    Packed(ROI roi, int32_t rowBytes, uint32_t seed) : step(rowBytes + 5), memory(Noise(step * roi.height, seed)) {}
    uint8_t &At(int64_t byte, int64_t y) { return memory[static_cast<size_t>(y * step + byte)]; }

    int64_t step;
    Bytes memory;
};

// Where the components lie in a group of four bytes.
struct Order {
    int y0, y1, cb, cr;
};
constexpr Order kUyvy = {1, 3, 0, 2}, kYuy2 = {0, 2, 1, 3}, kYvyu = {0, 2, 3, 1};

constexpr ROI kSizes[] = {{1, 1}, {2, 1}, {1, 2}, {2, 2}, {3, 3}, {33, 5}, {70, 6}, {64, 7}, {1301, 4}, {1024, 8}, {66, 10}};

int32_t GroupBytes(ROI roi) { return Up2(roi.width) * 4; }

using ToPlanes = int32_t (*)(const uint8_t *, int64_t, uint8_t *const *, const int64_t *, ROI);
using FromPlanes = int32_t (*)(const uint8_t *const *, const int64_t *, uint8_t *, int64_t, ROI);

class Planar : public testing::TestWithParam<KernelLevel> {
protected:
    void SetUp() override { KernelLevelLimit(GetParam()); }
    void TearDown() override { KernelLevelLimit(kKernelLevelHighest); }
};
INSTANTIATE_TEST_SUITE_P(Levels, Planar, testing::Values(KernelLevel::Reference, KernelLevel::Avx2));

// Luma and chroma of 4:2:2 rows.
void ModelSplit(const Order &o, Packed &src, Planes &dst) {
    for (int32_t y = 0; y < dst.size.height; ++y)
        for (int32_t x = 0; x < dst.size.width; ++x) {
            dst.At(0, x, y) = src.At(4 * (x / 2) + (x % 2 == 0 ? o.y0 : o.y1), y);
            dst.At(1, x / 2, y) = src.At(4 * (x / 2) + o.cb, y);
            dst.At(2, x / 2, y) = src.At(4 * (x / 2) + o.cr, y);
        }
}

TEST_P(Planar, Unpack422) {
    const std::pair<ToPlanes, Order> kinds[] = {
        {CbYCr422ToYCbCr422_8u_C2P3R, kUyvy}, {YCbCr422_8u_C2P3R, kYuy2}, {YCrCb422ToYCbCr422_8u_C2P3R, kYvyu}};
    for (const auto &[convert, order] : kinds)
        for (const ROI roi : kSizes) {
            SCOPED_TRACE(testing::Message() << roi.width << "x" << roi.height << ", Cb at " << order.cb);
            Packed src(roi, GroupBytes(roi), 1);
            Planes expected(roi, 1, 2), found(roi, 1, 2);
            ModelSplit(order, src, expected);
            ASSERT_EQ(convert(src.memory.data(), src.step, found.data, found.step, roi), 0);
            for (int i = 0; i < 3; ++i) ASSERT_EQ(expected.memory[i], found.memory[i]) << i;
        }
}

// Packs rows whose chroma row is `chromaRow(y)`; the last group's second luma byte of an odd row stays.
void ModelJoin(const Order &o, Planes &src, Packed &dst, const std::function<int32_t(int32_t)> &chromaRow) {
    for (int32_t y = 0; y < src.size.height; ++y)
        for (int32_t x = 0; x < src.size.width; ++x) {
            dst.At(4 * (x / 2) + (x % 2 == 0 ? o.y0 : o.y1), y) = src.At(0, x, y);
            dst.At(4 * (x / 2) + o.cb, y) = src.At(1, x / 2, chromaRow(y));
            dst.At(4 * (x / 2) + o.cr, y) = src.At(2, x / 2, chromaRow(y));
        }
}

void CheckJoin(FromPlanes convert, const Order &order, int32_t div, bool exchanged,
               const std::function<int32_t(int32_t, int32_t)> &chromaRow) {
    for (const ROI roi : kSizes) {
        SCOPED_TRACE(testing::Message() << roi.width << "x" << roi.height);
        Planes src(roi, div, 3);
        Packed expected(roi, GroupBytes(roi), 4), found(roi, GroupBytes(roi), 4);
        ModelJoin(order, src, expected, [&](int32_t y) { return chromaRow(y, roi.height); });
        if (exchanged) {
            std::swap(src.data[1], src.data[2]);
            std::swap(src.step[1], src.step[2]);
        }
        ASSERT_EQ(convert(src.Source(), src.step, found.memory.data(), found.step, roi), 0);
        ASSERT_EQ(expected.memory, found.memory);
    }
}

int32_t OwnRow(int32_t y, int32_t) { return y; }
int32_t HalfRow(int32_t y, int32_t) { return y / 2; }

TEST_P(Planar, Pack422) {
    CheckJoin(YCbCr422_8u_P3C2R, kYuy2, 1, false, OwnRow);
    CheckJoin(YCbCr422ToYCrCb422_8u_P3C2R, kYvyu, 1, false, OwnRow);
}

TEST_P(Planar, Up420RepeatsChromaRows) {
    CheckJoin(YCbCr420ToYCrCb422_8u_P3C2R, kYvyu, 2, false, HalfRow);
    // Exchanged planes turn it into YUY2; the other form wants them exchanged.
    CheckJoin(YCbCr420ToYCrCb422_8u_P3C2R, kYuy2, 2, true, HalfRow);
    CheckJoin(YCrCb420ToCbYCr422_8u_P3C2R, kUyvy, 2, true, HalfRow);
}

TEST_P(Planar, Up420Interlaced) {
    // 10 rows: 0 1 0 1, 2 3 2 3, and of the last group the one row there is.
    const int32_t rows[] = {0, 1, 0, 1, 2, 3, 2, 3, 4, 5};
    CheckJoin(YCbCr420ToCbYCr422_Interlace_8u_P3C2R, kUyvy, 2, false,
              [&](int32_t y, int32_t height) { return std::min(rows[y], Up2(height) - 1); });
}

TEST_P(Planar, Down420IsTheMeanOfTwoRows) {
    const std::pair<ToPlanes, Order> kinds[] = {
        {CbYCr422ToYCbCr420_8u_C2P3R, kUyvy}, {YCbCr422ToYCbCr420_8u_C2P3R, kYuy2}, {YCrCb422ToYCbCr420_8u_C2P3R, kYvyu}};
    for (const auto &[convert, order] : kinds)
        for (const ROI roi : kSizes) {
            SCOPED_TRACE(testing::Message() << roi.width << "x" << roi.height << ", Cb at " << order.cb);
            Packed src(roi, GroupBytes(roi), 5);
            Planes full(roi, 1, 6), expected(roi, 2, 7), found(roi, 2, 7);
            ModelSplit(order, src, full);
            for (int32_t y = 0; y < roi.height; ++y)
                for (int32_t x = 0; x < roi.width; ++x) {
                    expected.At(0, x, y) = full.At(0, x, y);
                    const int32_t a = y / 2 * 2, b = std::min(a + 1, roi.height - 1);
                    for (int i = 1; i < 3; ++i)
                        expected.At(i, x / 2, y / 2) =
                            static_cast<uint8_t>((full.At(i, x / 2, a) + full.At(i, x / 2, b) + 1) / 2);
                }
            ASSERT_EQ(convert(src.memory.data(), src.step, found.data, found.step, roi), 0);
            for (int i = 0; i < 3; ++i) ASSERT_EQ(expected.memory[i], found.memory[i]) << i;
        }
}

TEST_P(Planar, Down420InterlacedKeepsTheFieldsApart) {
    // The rows of each chroma row, by height.
    for (const ROI roi : kSizes) {
        SCOPED_TRACE(testing::Message() << roi.width << "x" << roi.height);
        Packed src(roi, GroupBytes(roi), 8);
        Planes full(roi, 1, 9), expected(roi, 2, 10), found(roi, 2, 10);
        ModelSplit(kUyvy, src, full);
        for (int32_t y = 0; y < roi.height; ++y)
            for (int32_t x = 0; x < roi.width; ++x) expected.At(0, x, y) = full.At(0, x, y);
        const int32_t firsts[] = {0, 1, 4, 5, 8};
        for (int32_t n = 0; n < Up2(roi.height); ++n)
            for (int32_t x = 0; x < Up2(roi.width); ++x)
                for (int i = 1; i < 3; ++i) {
                    const int32_t a = firsts[n], b = a + 2 < roi.height ? a + 2 : a;
                    expected.At(i, x, n) = static_cast<uint8_t>((full.At(i, x, a) + full.At(i, x, b) + 1) / 2);
                }
        ASSERT_EQ(CbYCr422ToYCbCr420_Interlace_8u_C2P3R(src.memory.data(), src.step, found.data, found.step, roi), 0);
        for (int i = 0; i < 3; ++i) ASSERT_EQ(expected.memory[i], found.memory[i]) << i;
    }
}

TEST_P(Planar, BgrToPlanes422IsTheWayOverUyvy) {
    for (const ROI roi : kSizes) {
        Packed bgra(roi, 4 * roi.width, 11), bgr(roi, 3 * roi.width, 12), uyvy(roi, GroupBytes(roi), 13);
        ASSERT_EQ(Copy_8u_C4C3R(bgra.memory.data(), bgra.step, bgr.memory.data(), bgr.step, roi), 0);
        ASSERT_EQ(BGRToCbYCr422_8u_AC4C2R(bgra.memory.data(), bgra.step, uyvy.memory.data(), uyvy.step, roi), 0);
        Planes expected(roi, 1, 14), from4(roi, 1, 14), from3(roi, 1, 14);
        ModelSplit(kUyvy, uyvy, expected);
        ASSERT_EQ(BGRToYCbCr422_8u_AC4P3R(bgra.memory.data(), bgra.step, from4.data, from4.step, roi), 0);
        ASSERT_EQ(BGRToYCbCr422_8u_C3P3R(bgr.memory.data(), bgr.step, from3.data, from3.step, roi), 0);
        for (int i = 0; i < 3; ++i) {
            ASSERT_EQ(expected.memory[i], from4.memory[i]) << roi.width;
            ASSERT_EQ(expected.memory[i], from3.memory[i]) << roi.width;
        }
    }
}

TEST_P(Planar, BgrTo420TakesFourPixels) {
    for (const ROI roi : kSizes) {
        Packed bgra(roi, 4 * roi.width, 15), bgr(roi, 3 * roi.width, 16);
        ASSERT_EQ(Copy_8u_C4C3R(bgra.memory.data(), bgra.step, bgr.memory.data(), bgr.step, roi), 0);
        Planes expected(roi, 2, 17), from4(roi, 2, 17), from3(roi, 2, 17);
        PrimitiveKernels ref = {};
        PrimitiveKernelsInitRef(&ref);
        for (int32_t y = 0; y < roi.height; y += 2) {
            const int32_t z = std::min(y + 1, roi.height - 1);
            ref.bgra_to_420(&expected.At(0, 0, y), &expected.At(0, 0, z), &expected.At(1, 0, y / 2), &expected.At(2, 0, y / 2),
                            &bgra.At(0, y), &bgra.At(0, z), roi.width);
        }
        ASSERT_EQ(BGRToYCbCr420_8u_AC4P3R(bgra.memory.data(), bgra.step, from4.data, from4.step, roi), 0);
        ASSERT_EQ(BGRToYCbCr420_8u_C3P3R(bgr.memory.data(), bgr.step, from3.data, from3.step, roi), 0);
        for (int i = 0; i < 3; ++i) {
            ASSERT_EQ(expected.memory[i], from4.memory[i]) << roi.width << "x" << roi.height;
            ASSERT_EQ(expected.memory[i], from3.memory[i]) << roi.width << "x" << roi.height;
        }
    }
}

TEST_P(Planar, ToBgrIsTheWayOverUyvy) {
    for (const ROI roi : kSizes)
        for (const int32_t div : {1, 2}) {
            Planes src(roi, div, 18);
            Packed uyvy(roi, GroupBytes(roi), 19), bgra(roi, 4 * roi.width, 20), bgr(roi, 3 * roi.width, 21);
            ModelJoin(kUyvy, src, uyvy, [&](int32_t y) { return y / div; });
            ASSERT_EQ(CbYCr422ToBGR_8u_C2C4R(uyvy.memory.data(), uyvy.step, bgra.memory.data(), bgra.step, roi, 77), 0);
            ASSERT_EQ(Copy_8u_C4C3R(bgra.memory.data(), bgra.step, bgr.memory.data(), bgr.step, roi), 0);
            Packed found(roi, 3 * roi.width, 21);
            const FromPlanes to3 = div == 1 ? YCbCr422ToBGR_8u_P3C3R : YCbCr420ToBGR_8u_P3C3R;
            ASSERT_EQ(to3(src.Source(), src.step, found.memory.data(), found.step, roi), 0);
            ASSERT_EQ(bgr.memory, found.memory) << roi.width << "x" << roi.height;
            if (div == 1) continue;
            Packed found4(roi, 4 * roi.width, 20);
            ASSERT_EQ(YCbCr420ToBGR_8u_P3C4R(src.Source(), src.step, found4.memory.data(), found4.step, roi, 77), 0);
            ASSERT_EQ(bgra.memory, found4.memory) << roi.width << "x" << roi.height;
        }
}

TEST_P(Planar, Nv12AndThreePlanes) {
    for (const ROI roi : kSizes) {
        const ROI half = {2 * Up2(roi.width), Up2(roi.height)};
        Packed luma(roi, roi.width, 22), chroma(half, half.width, 23);
        Planes expected(roi, 2, 24), found(roi, 2, 24);
        for (int32_t y = 0; y < roi.height; ++y)
            for (int32_t x = 0; x < roi.width; ++x) expected.At(0, x, y) = luma.At(x, y);
        for (int32_t y = 0; y < half.height; ++y)
            for (int32_t x = 0; x < half.width; ++x) expected.At(1 + x % 2, x / 2, y) = chroma.At(x, y);
        ASSERT_EQ(
            YCbCr420_8u_P2P3R(luma.memory.data(), luma.step, chroma.memory.data(), chroma.step, found.data, found.step, roi),
            0);
        for (int i = 0; i < 3; ++i) ASSERT_EQ(expected.memory[i], found.memory[i]) << roi.width << "x" << roi.height;
        Packed backLuma(roi, roi.width, 22), backChroma(half, half.width, 23);
        std::fill_n(backLuma.memory.begin(), roi.width, uint8_t{0});
        std::fill_n(backChroma.memory.begin(), half.width, uint8_t{0});
        ASSERT_EQ(YCbCr420_8u_P3P2R(found.Source(), found.step, backLuma.memory.data(), backLuma.step, backChroma.memory.data(),
                                    backChroma.step, roi),
                  0);
        ASSERT_EQ(luma.memory, backLuma.memory);
        ASSERT_EQ(chroma.memory, backChroma.memory);
    }
}

TEST(PlanarArguments, MissingPlanesAndSizes) {
    uint8_t bytes[64] = {};
    uint8_t *planes[3] = {bytes, bytes, bytes};
    uint8_t *holes[3] = {bytes, nullptr, bytes};
    const int64_t steps[3] = {4, 4, 4};
    EXPECT_EQ(YCbCr422_8u_C2P3R(nullptr, 4, planes, steps, {2, 2}), kPrimitiveNull);
    EXPECT_EQ(YCbCr422_8u_C2P3R(bytes, 4, nullptr, steps, {2, 2}), kPrimitiveNull);
    EXPECT_EQ(YCbCr422_8u_C2P3R(bytes, 4, planes, nullptr, {2, 2}), kPrimitiveNull);
    EXPECT_EQ(YCbCr422_8u_C2P3R(bytes, 4, holes, steps, {2, 2}), kPrimitiveNull);
    EXPECT_EQ(YCbCr422_8u_C2P3R(bytes, 4, planes, steps, {0, 2}), kPrimitiveBadSize);
    EXPECT_EQ(YCbCr420ToBGR_8u_P3C4R(holes, steps, bytes, 4, {2, 2}, 255), kPrimitiveNull);
    EXPECT_EQ(YCbCr420ToBGR_8u_P3C4R(planes, steps, bytes, 4, {2, -1}, 255), kPrimitiveBadSize);
    EXPECT_EQ(CbYCr422ToYCbCr420_8u_C2P3R(bytes, 4, holes, steps, {2, 2}), kPrimitiveNull);
    EXPECT_EQ(CbYCr422ToYCbCr420_Interlace_8u_C2P3R(bytes, 4, holes, steps, {2, 2}), kPrimitiveNull);
    EXPECT_EQ(YCbCr420_8u_P2P3R(bytes, 4, nullptr, 4, planes, steps, {2, 2}), kPrimitiveNull);
    EXPECT_EQ(YCbCr420_8u_P3P2R(planes, steps, bytes, 4, nullptr, 4, {2, 2}), kPrimitiveNull);
    EXPECT_EQ(YCbCr420_8u_P3P2R(planes, steps, nullptr, 4, bytes, 4, {2, 2}), kPrimitiveNull);
}

}    // namespace
}    // namespace zck
