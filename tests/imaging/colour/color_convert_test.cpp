#include "imaging/colour/color_convert.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "imaging/colour/planar_plan.h"
#include "platform/processor.h"
#include "platform/status.h"
#include "tests/imaging/colour/planes_model.h"
#include "tests/support/formats.h"

namespace zck {
namespace {

using test::MakePlanarPicture;
using test::ModelColorConvert;
using test::PlanarPicture;

const std::vector<eZFCC> kFormats = test::PictureFormats();

class ColorConverts : public testing::TestWithParam<KernelLevel> {
protected:
    void SetUp() override { KernelLevelLimit(GetParam()); }
    void TearDown() override { KernelLevelLimit(kKernelLevelHighest); }

    ImgConvertState m_state;
};
INSTANTIATE_TEST_SUITE_P(Levels, ColorConverts, testing::Values(KernelLevel::Reference, KernelLevel::Avx2));

std::vector<int32_t> Heights(eZFCC fcc, int32_t rows) {
    const bool rgb = fcc == eZFCC_RGB24 || fcc == eZFCC_RGB32 || fcc == eZFCC_ARGB32;
    return rgb ? std::vector<int32_t>{rows, -rows} : std::vector<int32_t>{rows};
}

TEST_P(ColorConverts, EveryFormatIntoEveryOther) {
    const std::pair<int32_t, int32_t> sizes[] = {{2, 1}, {2, 2}, {3, 3}, {34, 5}, {77, 4}, {1090, 3}, {1030, 2}};
    uint32_t seed = 1;
    for (const eZFCC from : kFormats)
        for (const eZFCC to : kFormats)
            for (const auto &[width, rows] : sizes)
                for (const int32_t srcHeight : Heights(from, rows))
                    for (const int32_t dstHeight : Heights(to, rows)) {
                        SCOPED_TRACE(testing::Message() << std::hex << from << " to " << to << std::dec << ", " << width
                                                        << " by " << srcHeight << " to " << dstHeight);
                        PlanarPicture src = MakePlanarPicture(from, width, srcHeight, 4, ++seed);
                        PlanarPicture expected = MakePlanarPicture(to, width, dstHeight, 6, ++seed);
                        PlanarPicture found = expected;
                        const int32_t columns = src.IsRgb() && expected.IsRgb() ? width : width / 2 * 2;
                        ModelColorConvert(src, 0, 0, expected, 0, 0, columns, rows);
                        ASSERT_EQ(ColorConvertViews(&m_state, src.memory.data(), found.memory.data(), src.View(), found.View(),
                                                    nullptr, nullptr),
                                  S_OK);
                        ASSERT_EQ(expected.memory, found.memory);
                    }
}

TEST_P(ColorConverts, Rectangles) {
    struct Part {
        tagRECT src, dst;
        int32_t srcLeft, srcTop, dstLeft, dstTop, columns, rows;
    };
    const Part parts[] = {
        {{2, 1, 20, 7}, {4, 2, 30, 9}, 2, 1, 4, 2, 18, 6}, {{3, 2, 21, 5}, {6, 3, 24, 9}, 4, 2, 6, 3, 16, 3},
        {{0, 4, 40, 9}, {0, 4, 40, 9}, 0, 4, 0, 4, 40, 5}, {{10, 3, 50, 20}, {-4, -2, 40, 20}, 14, 5, 0, 0, 26, 4},
        {{0, 8, 40, 9}, {0, 0, 40, 1}, 0, 8, 0, 0, 40, 1},
    };
    uint32_t seed = 1000;
    for (const eZFCC from : kFormats)
        for (const eZFCC to : kFormats)
            for (const Part &part : parts)
                for (const int32_t srcHeight : Heights(from, 9))
                    for (const int32_t dstHeight : Heights(to, 9)) {
                        PlanarPicture src = MakePlanarPicture(from, 40, srcHeight, 4, ++seed);
                        PlanarPicture expected = MakePlanarPicture(to, 40, dstHeight, 0, ++seed);
                        PlanarPicture found = expected;
                        // Two RGB images keep their odd columns.
                        Part p = part;
                        if (src.IsRgb() && expected.IsRgb() && p.srcLeft == 4) p.srcLeft = 3, p.columns = 18;
                        SCOPED_TRACE(testing::Message() << std::hex << from << " to " << to << std::dec << ", " << srcHeight
                                                        << " to " << dstHeight << ", left " << p.src.left);
                        ModelColorConvert(src, p.srcLeft, p.srcTop, expected, p.dstLeft, p.dstTop, p.columns, p.rows);
                        ASSERT_EQ(ColorConvertViews(&m_state, src.memory.data(), found.memory.data(), src.View(), found.View(),
                                                    &p.src, &p.dst),
                                  S_OK);
                        ASSERT_EQ(expected.memory, found.memory);
                    }
}

TEST_P(ColorConverts, ByDescriptor) {
    for (const eZFCC from : kFormats)
        for (const eZFCC to : kFormats) {
            SCOPED_TRACE(testing::Message() << std::hex << from << " to " << to);
            // Rows of 40 pixels, of which 36 are the picture.
            PlanarPicture src = MakePlanarPicture(from, 40, -6, 0, 7);
            PlanarPicture expected = MakePlanarPicture(to, 40, -6, 0, 8);
            src.width = expected.width = 36;
            PlanarPicture found = expected;
            if (from != eZFCC_NV12 && to != eZFCC_NV12) ModelColorConvert(src, 0, 0, expected, 0, 0, 36, 6);
            const ImgDesc sd = {from, 36, -6, 40};
            const ImgDesc dd = {to, 36, -6, 40};
            ASSERT_EQ(ColorConvert(&m_state, src.memory.data(), found.memory.data(), &sd, &dd, nullptr, nullptr), S_OK);
            ASSERT_EQ(expected.memory, found.memory);
        }
}

TEST(ColorConvert, WorkedYvyu) {
    ImgConvertState state;
    const ImgDesc yvyu = {eZFCC_YVYU, 2, 1, 0};
    const uint8_t group[4] = {81, 240, 81, 90};    // red: Y 81, Cr 240, Cb 90
    const auto convert = [&](eZFCC to, std::vector<uint8_t> out) {
        const ImgDesc target = {to, 2, to == eZFCC_RGB32 || to == eZFCC_RGB24 ? -1 : 1, 0};
        EXPECT_EQ(ColorConvert(&state, group, out.data(), &yvyu, &target, nullptr, nullptr), S_OK);
        return out;
    };
    EXPECT_EQ(convert(eZFCC_UYVY, std::vector<uint8_t>(4)), (std::vector<uint8_t>{90, 81, 240, 81}));
    EXPECT_EQ(convert(eZFCC_YUY2, std::vector<uint8_t>(4)), (std::vector<uint8_t>{81, 90, 81, 240}));
    // Red stays red with three bytes, and becomes blue with four.
    const std::vector<uint8_t> bgr = convert(eZFCC_RGB24, std::vector<uint8_t>(8));
    EXPECT_GT(bgr[2], 250);
    EXPECT_LT(bgr[0], 5);
    const std::vector<uint8_t> bgra = convert(eZFCC_RGB32, std::vector<uint8_t>(8));
    EXPECT_GT(bgra[0], 250);
    EXPECT_LT(bgra[2], 25);
    const uint8_t uyvy[4] = {1, 2, 3, 4};
    uint8_t back[4];
    const ImgDesc source = {eZFCC_UYVY, 2, 1, 0};
    EXPECT_EQ(ColorConvert(&state, uyvy, back, &source, &yvyu, nullptr, nullptr), S_OK);
    EXPECT_EQ((std::vector<uint8_t>(back, back + 4)), (std::vector<uint8_t>{2, 3, 4, 1}));
}

TEST(ColorConvert, OrderOfPlanesInMemory) {
    ImgConvertState state;
    const uint8_t yuy2[16] = {10, 50, 11, 200, 12, 60, 13, 210, 14, 52, 15, 202, 16, 62, 17, 212};
    const ImgDesc source = {eZFCC_YUY2, 4, 2, 0};
    std::vector<uint8_t> planes(12);
    ImgDesc target = {eZFCC_I420, 4, 2, 0};
    EXPECT_EQ(ColorConvert(&state, yuy2, planes.data(), &source, &target, nullptr, nullptr), S_OK);
    EXPECT_EQ(planes, (std::vector<uint8_t>{10, 11, 12, 13, 14, 15, 16, 17, 51, 61, 201, 211}));
    target.fcc = eZFCC_YV12;
    EXPECT_EQ(ColorConvert(&state, yuy2, planes.data(), &source, &target, nullptr, nullptr), S_OK);
    EXPECT_EQ(planes, (std::vector<uint8_t>{10, 11, 12, 13, 14, 15, 16, 17, 201, 211, 51, 61}));
}

TEST(ColorConvert, FormatsThatAreNotServedAreLeftAlone) {
    ImgConvertState state;
    std::vector<uint8_t> src(4096, 1), dst(4096, 2);
    const auto left = [](const FormatRow &row) { return row.pixels == PixelClass::None || row.pixels == PixelClass::Nv12; };
    for (const eZFCC odd : test::FormatsWhere(left)) {
        const ImgDesc known = {eZFCC_UYVY, 8, 4, 0};
        const ImgDesc other = {odd, 8, 4, 0};
        EXPECT_EQ(ColorConvert(&state, src.data(), dst.data(), &known, &other, nullptr, nullptr), S_OK) << odd;
        EXPECT_EQ(ColorConvert(&state, src.data(), dst.data(), &other, &known, nullptr, nullptr), S_OK) << odd;
        EXPECT_EQ(ColorConvert(&state, src.data(), dst.data(), &other, &other, nullptr, nullptr), S_OK) << odd;
    }
    EXPECT_EQ(dst, std::vector<uint8_t>(4096, 2));
    EXPECT_TRUE(ColorConvertServes(eZFCC_NV12, eZFCC_ARGB32));
    EXPECT_FALSE(ColorConvertServes(eZFCC_v210, eZFCC_ARGB32));
    EXPECT_FALSE(ColorConvertServes(eZFCC_I420, eZFCC_r210));
}

TEST(ColorConvert, BadArguments) {
    ImgConvertState state;
    uint8_t src[64] = {}, dst[64];
    std::fill_n(dst, 64, uint8_t{3});
    const ImgDesc d = {eZFCC_UYVY, 4, 2, 0};
    EXPECT_EQ(ColorConvert(nullptr, src, dst, &d, &d, nullptr, nullptr), E_INVALIDARG);
    EXPECT_EQ(ColorConvert(&state, nullptr, dst, &d, &d, nullptr, nullptr), E_INVALIDARG);
    EXPECT_EQ(ColorConvert(&state, src, nullptr, &d, &d, nullptr, nullptr), E_INVALIDARG);
    EXPECT_EQ(ColorConvert(&state, src, dst, nullptr, &d, nullptr, nullptr), E_INVALIDARG);
    EXPECT_EQ(ColorConvert(&state, src, dst, &d, nullptr, nullptr, nullptr), E_INVALIDARG);
    const tagRECT turned = {4, 0, 0, 2};
    EXPECT_EQ(ColorConvert(&state, src, dst, &d, &d, &turned, nullptr), E_INVALIDARG);
    // Rows that are shorter than their pixels.
    const ImgDesc cut = {eZFCC_UYVY, 4, 2, 2};
    EXPECT_EQ(ColorConvert(&state, src, dst, &cut, &d, nullptr, nullptr), E_INVALIDARG);
    EXPECT_EQ(ColorConvert(&state, src, dst, &d, &cut, nullptr, nullptr), E_INVALIDARG);
    const ImgDesc narrow = {eZFCC_UYVY, 1, 2, 0};
    EXPECT_EQ(ColorConvert(&state, src, dst, &narrow, &d, nullptr, nullptr), S_FALSE);
    for (const uint8_t b : dst) EXPECT_EQ(b, 3);
}

TEST(ColorConvert, ShortMemoriesAreRefused) {
    ImgConvertState state;
    for (const eZFCC fcc : kFormats) {
        PlanarPicture a = MakePlanarPicture(fcc, 16, -6, 2, 1);
        PlanarPicture b = MakePlanarPicture(fcc == eZFCC_UYVY ? eZFCC_YUY2 : eZFCC_UYVY, 16, 6, 0, 2);
        if (a.Is420()) a.memory.resize(a.memory.size() - (fcc == eZFCC_NV12 ? 2 : 1));    // what lies behind the last sample
        const auto run = [&](const PlanarPicture &from, PlanarPicture to, int64_t srcLess, int64_t dstLess) {
            ImageView source = from.View(), target = to.View();
            source.bytes -= srcLess;
            target.bytes -= dstLess;
            return ColorConvertViews(&state, from.memory.data(), to.memory.data(), source, target, nullptr, nullptr);
        };
        EXPECT_EQ(run(a, b, 0, 0), S_OK) << fcc;
        EXPECT_EQ(run(a, b, 1, 0), kVfwEInvalidMediaType) << fcc;
        EXPECT_EQ(run(b, a, 0, 1), kVfwEInvalidMediaType) << fcc;
    }
}

TEST(ColorConvert, OneStateServesOneCallAtATime) {
    ImgConvertState state;
    state.cs.lock();
    std::atomic<bool> done = false;
    std::thread other([&] {
        uint8_t src[16] = {}, dst[16];
        const ImgDesc d = {eZFCC_UYVY, 4, 2, 0};
        ColorConvert(&state, src, dst, &d, &d, nullptr, nullptr);
        done = true;
    });
    SleepMs(50);
    EXPECT_FALSE(done);
    state.cs.unlock();
    other.join();
    EXPECT_TRUE(done);
}

TEST_P(ColorConverts, PlansGiveTheSameRows) {
    uint32_t seed = 5000;
    const auto planned = [](const FormatRow &row) { return row.pixels != PixelClass::None && row.route == RouteClass::None; };
    for (const eZFCC from : test::FormatsWhere(planned))
        for (const eZFCC to : test::FormatsWhere([](const FormatRow &row) { return row.Is32(); }))
            for (const int32_t width : {1, 2, 3, 70, 1301})
                for (const int32_t rows : {1, 2, 5, 8})
                    for (const int32_t dstHeight : {rows, -rows}) {
                        SCOPED_TRACE(testing::Message()
                                     << std::hex << from << std::dec << ", " << width << " by " << dstHeight);
                        PlanarPicture src = MakePlanarPicture(from, width, rows, 4, ++seed);
                        PlanarPicture expected = MakePlanarPicture(to, width, dstHeight, 4, ++seed);
                        PlanarPicture found = expected;
                        for (int32_t y = 0; width % 2 != 0 && y < rows; ++y)
                            for (int i = 0; i < 4; ++i) expected.At(i, width - 1, y) = 0;
                        ModelColorConvert(src, 0, 0, expected, 0, 0, width / 2 * 2, rows);
                        PlanarPlan plan;
                        const Z_VID_PROPS sp = src.Props(), tp = found.Props();
                        const auto srcBytes = static_cast<int64_t>(src.memory.size());
                        const auto dstBytes = static_cast<int64_t>(found.memory.size());
                        ASSERT_EQ(plan.Prepare(&sp, srcBytes, &tp, dstBytes), S_OK);
                        ASSERT_TRUE(plan.RowsIndependent());
                        ASSERT_EQ(plan.Rows(), rows);
                        ASSERT_EQ(plan.Width(), width);
                        for (int32_t y = rows; y >= 0; --y) plan.RunRows(src.memory.data(), found.memory.data(), y, y + 1);
                        plan.RunRows(src.memory.data(), found.memory.data(), -3, 1);
                        ASSERT_EQ(expected.memory, found.memory);
                        // Luma alone needs so much.
                        const int64_t luma = (rows - 1) * src.rowBytes + width * (from == eZFCC_YVYU ? 2 : 1);
                        EXPECT_EQ(plan.Prepare(&sp, luma - 1, &tp, dstBytes), kVfwEInvalidMediaType);
                        EXPECT_EQ(plan.Prepare(&sp, srcBytes, &tp, dstBytes - 1), kVfwEInvalidMediaType);
                    }
}

TEST(PlanarPlans, OtherFormatsAndBadRecords) {
    PlanarPlan plan;
    Z_VID_PROPS sp = MakePlanarPicture(eZFCC_I420, 4, 4, 0, 1).Props();
    Z_VID_PROPS tp = MakePlanarPicture(eZFCC_ARGB32, 4, -4, 0, 1).Props();
    EXPECT_EQ(plan.Prepare(nullptr, 999, &tp, 999), E_POINTER);
    EXPECT_EQ(plan.Prepare(&sp, 999, nullptr, 999), E_POINTER);
    EXPECT_EQ(plan.Prepare(&tp, 999, &tp, 999), kVfwEInvalidSubtype);
    EXPECT_EQ(plan.Prepare(&sp, 999, &sp, 999), kVfwEInvalidSubtype);
    Z_VID_PROPS none = sp;
    none.nRowBytes = 0;
    EXPECT_EQ(plan.Prepare(&none, 999, &tp, 999), E_UNEXPECTED);
    none = sp;
    none.nWidth = 0;
    EXPECT_EQ(plan.Prepare(&none, 999, &tp, 999), E_UNEXPECTED);
    none = sp;
    none.nHeight = INT32_MIN;
    none.nRowBytes = INT32_MAX;
    EXPECT_EQ(plan.Prepare(&none, INT32_MAX, &tp, 999), kVfwEInvalidMediaType);
}

}    // namespace
}    // namespace zck
