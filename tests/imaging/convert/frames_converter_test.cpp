// Fields at once, first fields, moved lines.
#include "imaging/convert/frames_converter.h"

#include <gtest/gtest.h>

#include <random>

#include "frames/media/pixel_format.h"
#include "frames/media/video_props.h"
#include "imaging/colour/convert.h"
#include "imaging/convert/conversion_plan.h"
#include "platform/status.h"
#include "tests/support/formats.h"

namespace zck {
namespace {

using Bytes = std::vector<uint8_t>;

// Rows of one value each, or noise.
struct Image {
    Z_VID_PROPS props = {};
    Bytes memory;

    Image(eZFCC fcc, int32_t width, int32_t height, eZInterlace scan, int32_t even, int32_t odd) {
        props.fccType = fcc;
        props.nWidth = width;
        props.nHeight = height;
        props.nRowBytes = RowBytes(fcc, width);
        props.eInterlace = scan;
        props.eScaleType = eZST_None;
        memory.resize(static_cast<size_t>(FrameBufferSize(&props)));
        const int32_t rows = static_cast<int32_t>(memory.size()) / props.nRowBytes;
        for (int32_t y = 0; y < rows; ++y) std::fill_n(Row(y), props.nRowBytes, static_cast<uint8_t>(y % 2 == 0 ? even : odd));
        if (even >= 0) return;
        std::mt19937 random(static_cast<uint32_t>(-even));
        for (uint8_t &b : memory) b = static_cast<uint8_t>(random() >> 8);
    }
    EngineSource Source() const { return {memory.data(), static_cast<int64_t>(memory.size()), &props}; }
    EngineTarget Target() { return {memory.data(), nullptr, nullptr, static_cast<int64_t>(memory.size()), &props}; }
    uint8_t *Row(int32_t y) { return memory.data() + static_cast<int64_t>(y) * props.nRowBytes; }
};

constexpr eZInterlace kOrders[] = {eZI_Field1First, eZI_Field2First};

TEST(FramesConverter, FieldsStayInTheirRows) {
    FramesConverter converter;
    for (const eZInterlace scan : kOrders)
        for (const eZFCC fcc : {eZFCC_UYVY, eZFCC_ARGB32, eZFCC_I420})
            for (const int32_t quality : {1, 4, 8, 14, 18}) {
                const Image a(fcc, 64, fcc == eZFCC_ARGB32 ? -48 : 48, scan, 60, 200);
                Image b(fcc, 48, fcc == eZFCC_ARGB32 ? -72 : 72, scan, 9, 9);
                ASSERT_EQ(converter.Convert(a.Source(), b.Target(), FieldMode::kBoth, quality), S_OK);
                for (int32_t y = 8; y < 64; ++y)
                    EXPECT_NEAR(b.Row(y)[20], y % 2 == 0 ? 60 : 200, 1) << fcc << " " << quality << " row " << y;
            }
}

TEST(FramesConverter, AProgressiveTargetIsMadeOfTheFirstFieldAtEveryQuality) {
    FramesConverter converter;
    for (const eZInterlace scan : kOrders)
        for (const eZFCC fcc : {eZFCC_UYVY, eZFCC_ARGB32, eZFCC_I420})
            for (int32_t quality = -1; quality < 28; ++quality) {
                const Image a(fcc, 64, 48, scan, 60, 200);
                Image b(fcc, 48, 40, eZI_Progressive, 9, 9);
                // A picture that runs from the bottom up has the upper field in its odd rows.
                const bool first = (scan == eZI_Field1First) != (fcc == eZFCC_ARGB32);
                ASSERT_EQ(converter.Convert(a.Source(), b.Target(), FieldMode::kBoth, quality), S_OK);
                for (int32_t y = 0; y < 40; ++y)
                    EXPECT_NEAR(b.Row(y)[20], first ? 60 : 200, 1) << fcc << " " << quality << " row " << y;
            }
}

// A target that does not say that it is progressive keeps all rows when that is asked for.
TEST(FramesConverter, ATargetWithoutAScanMayKeepTheRowsOfBothFields) {
    FramesConverter converter;
    const Image a(eZFCC_UYVY, 64, 48, eZI_Field1First, 60, 200);
    Image b(eZFCC_UYVY, 48, 48, eZI_Default, 9, 9), first = b;
    ASSERT_EQ(converter.Convert(a.Source(), b.Target(), FieldMode::kBoth, 4), S_OK);
    EXPECT_EQ(b.Row(0)[20], 60);
    EXPECT_EQ(b.Row(1)[20], 200);
    ASSERT_EQ(converter.Convert(a.Source(), first.Target(), FieldMode::kFirst, 4), S_OK);
    EXPECT_EQ(first.Row(1)[20], 60);
}

TEST(FramesConverter, AnotherFieldOrderMovesThePictureByOneLine) {
    FramesConverter converter;
    for (const eZInterlace scan : kOrders)
        for (const int32_t sign : {-1, 1}) {
            const Image a(eZFCC_ARGB32, 16, sign * 8, scan, -3, -3);
            Image b(eZFCC_ARGB32, 16, sign * 8, scan == eZI_Field1First ? eZI_Field2First : eZI_Field1First, 9, 9);
            ASSERT_EQ(converter.Convert(a.Source(), b.Target(), FieldMode::kBoth, 4), S_OK);
            Bytes expected = a.memory;
            // Memory rows, whatever the row order: up for a first-field-first target. The line that is left over stays.
            if (scan == eZI_Field2First)
                std::copy(a.memory.begin() + 64, a.memory.end(), expected.begin());
            else
                std::copy(a.memory.begin(), a.memory.end() - 64, expected.begin() + 64);
            EXPECT_EQ(b.memory, expected) << scan << " " << sign;
        }
}

// BT.709 pixels take 4 bytes each, also in RGB24: what a row has too much would be the other field's.
TEST(FramesConverter, ARowOfAFieldWritesNothingIntoTheOtherField) {
    for (const int32_t width : {16, 18, 19})
        for (const eZFCC fcc : {eZFCC_RGB24, eZFCC_ARGB32})
            for (const int32_t sign : {-1, 1}) {
                FramesConverter converter;
                const Image a(eZFCC_HDYC, width, 12, eZI_Field1First, -5, -5);
                Image b(fcc, width, sign * 12, eZI_Field1First, 0, 0), expected = b;
                ASSERT_EQ(converter.Convert(a.Source(), b.Target(), FieldMode::kBoth, 4), S_OK);
                // Row by row, each as a picture of its own.
                for (int32_t y = 0; y < 12; ++y) {
                    Z_VID_PROPS sp = a.props, tp = b.props;
                    sp.nHeight = 1;
                    tp.nHeight = -1;
                    sp.eInterlace = tp.eInterlace = eZI_Progressive;
                    sp.nWidth = tp.nWidth = width & ~1;
                    ASSERT_EQ(ConvertSameGeometry(a.memory.data() + y * a.props.nRowBytes, a.props.nRowBytes,
                                                  expected.Row(sign < 0 ? y : 11 - y), b.props.nRowBytes, &sp, &tp),
                              S_OK);
                }
                EXPECT_EQ(b.memory, expected.memory) << width << " " << fcc << " " << sign;
            }
}

// The second thread makes the lower half; what it makes is what one thread makes.
TEST(FramesConverter, LargePicturesAreTheSameOnOneThreadAndOnTwo) {
    FramesConverter converter;
    struct Case {
        eZFCC from;
        eZFCC to;
    };
    for (const Case c : {Case{eZFCC_UYVY, eZFCC_ARGB32},
                         {eZFCC_UYVY, eZFCC_I420},
                         {eZFCC_NV12, eZFCC_NV12},
                         {eZFCC_RGB24, eZFCC_RGB24},
                         {eZFCC_I420, eZFCC_YVYU}})
        for (const int32_t height : {516, 511}) {
            const Image a(c.from, 642, 514, eZI_Progressive, -3, -3);
            for (const int32_t width : {640, 642}) {
                Image two(c.to, width, width == 642 ? 514 : height, eZI_Progressive, 9, 9), one = two;
                FieldConverter alone;
                ASSERT_EQ(ConvertFrame2(&alone, a.Source(), one.Target(), 4), S_OK);
                for (int i = 0; i < 3; ++i) {
                    ASSERT_EQ(converter.Convert(a.Source(), two.Target(), FieldMode::kBoth, 4), S_OK);
                    EXPECT_EQ(two.memory, one.memory) << c.from << " " << c.to << " " << width << " " << height;
                }
            }
        }
}

TEST(FramesConverter, StatusesLeaveTheConverterUsable) {
    FramesConverter converter;
    const Image a(eZFCC_UYVY, 16, 8, eZI_Field1First, 60, 200), one(eZFCC_UYVY, 16, 1, eZI_Field1First, 60, 60);
    Image b(eZFCC_UYVY, 24, 8, eZI_Field1First, 9, 9), v210(eZFCC_v210, 48, 8, eZI_Field1First, 9, 9);
    EngineTarget target = b.Target();
    EXPECT_EQ(converter.Convert({nullptr, 256, &a.props}, target, FieldMode::kBoth, 4), E_POINTER);
    EXPECT_EQ(converter.Convert({a.memory.data(), 256, nullptr}, target, FieldMode::kBoth, 4), E_POINTER);
    EXPECT_EQ(converter.Convert({a.memory.data(), 255, &a.props}, target, FieldMode::kBoth, 4), kVfwEInvalidMediaType);
    --target.bytes;
    EXPECT_EQ(converter.Convert(a.Source(), target, FieldMode::kBoth, 4), kVfwEInvalidMediaType);
    EXPECT_EQ(converter.Convert(one.Source(), b.Target(), FieldMode::kBoth, 4), E_UNEXPECTED) << "no rows for a field";
    EXPECT_EQ(b.memory, Bytes(b.memory.size(), 9));
    EXPECT_EQ(converter.Convert(a.Source(), v210.Target(), FieldMode::kBoth, 4), kVfwEInvalidSubtype);
    EXPECT_EQ(converter.Convert(a.Source(), b.Target(), FieldMode::kBoth, 4), S_OK);
}

TEST(FramesConverter, LinesOfAFieldPairAreLinedUpOnce) {
    FramesConverter converter;
    Image a(eZFCC_UYVY, 720, 480, eZI_Field2First, 60, 200), b(eZFCC_UYVY, 720, 486, eZI_Field2First, 9, 9);
    for (Image *image : {&a, &b}) {
        image->props.eVideoFormat = eZVF_NTSC;
        image->props.dblRate = 29.970029970029973;
    }
    ASSERT_EQ(converter.Convert(a.Source(), b.Target(), FieldMode::kBoth, 4), S_OK);
    const Bytes picture(b.Row(6), b.Row(6) + a.memory.size());
    EXPECT_EQ(picture, a.memory);
    for (int32_t y = 0; y < 6; ++y) EXPECT_EQ(Bytes(b.Row(y), b.Row(y) + 4), Bytes({128, 16, 128, 16})) << y;
}

// Both come out alike or fail alike, whatever the target held before.
struct TwoTargets {
    Image zero;
    Image other;

    explicit TwoTargets(const Image &like) : zero(like), other(like) {
        std::fill(zero.memory.begin(), zero.memory.end(), uint8_t{0});
        std::fill(other.memory.begin(), other.memory.end(), uint8_t{0xCD});
    }
    template <class Work>
    bool Alike(Work &&work) {
        const HRESULT hr = work(zero.Target());
        return work(other.Target()) == hr && (FAILED(hr) || zero.memory == other.memory);
    }
};

// Sizes, scans and fits by turns, so that all of them meet all pairs of formats.
TEST(FramesConverter, TargetsThatAreWrittenWholeNeedNoClearing) {
    FramesConverter converter;
    std::mt19937 random(5);
    const auto any = [&random](auto list) { return list[random() % list.size()]; };
    int32_t whole = 0;
    for (const eZFCC from : test::PictureFormats())
        for (const eZFCC to : {eZFCC_UYVY, eZFCC_HDYC, eZFCC_YUY2, eZFCC_RGB32, eZFCC_ARGB32, eZFCC_RGB24, eZFCC_YVYU})
            for (int32_t round = 0; round < 150; ++round) {
                const auto scan = [&] { return any(std::vector{eZI_Progressive, eZI_Field1First, eZI_Field2First}); };
                const auto width = [&] { return any(std::vector{4, 5, 8, 36, 63, 64, 68, 100}); };
                const auto height = [&] { return any(std::vector{4, 6, 7, 8, 36, 48, 50, 72, -4, -8, -48, -45}); };
                Image a(from, width(), IsRgbFormat(from) ? height() : std::abs(height()), scan(), -3, -3);
                Image b(to, width(), IsRgbFormat(to) ? height() : std::abs(height()), scan(), 9, 9);
                if (round % 3 == 0) b.props.nWidth = a.props.nWidth;
                if (round % 6 == 0) b.props.nHeight = IsRgbFormat(to) ? -std::abs(a.props.nHeight) : std::abs(a.props.nHeight);
                b.props.nRowBytes = RowBytes(to, b.props.nWidth) + (round % 10 == 9 ? 4 : 0);
                a.props.eScaleType = any(std::vector{eZST_None, eZST_Crop, eZST_LetterBox, eZST_NoScale, eZST_Default});
                a.props.e3DFormat = round % 20 == 7 ? eZ3D_TopAndBottom : eZ3D_None;
                b.memory.resize(static_cast<size_t>(std::max(FrameBufferSize(&b.props), 0)));
                if (a.memory.empty() || b.memory.empty() || !WritesWholeTarget(a.props, b.props)) continue;
                ++whole;
                TwoTargets targets(b);
                const int32_t quality = any(std::vector{1, 2, 4, 5, 8, 9, 11, 12, 14, 18, 19});
                const FieldMode mode = any(std::vector{FieldMode::kBoth, FieldMode::kFirst});
                EXPECT_TRUE(targets.Alike([&](EngineTarget t) { return converter.Convert(a.Source(), t, mode, quality); }))
                    << std::hex << from << " to " << to << std::dec << " " << a.props.nWidth << "x" << a.props.nHeight << " to "
                    << b.props.nWidth << "x" << b.props.nHeight << " scans " << a.props.eInterlace << " " << b.props.eInterlace
                    << " fit " << a.props.eScaleType << " quality " << quality;
                const bool left = round % 2 == 0;
                EXPECT_TRUE(targets.Alike([&](EngineTarget t) {
                    return converter.Rotate(a.Source(), t, left, a.props.eInterlace != eZI_Progressive);
                })) << "turned";
            }
    EXPECT_GT(whole, 1000);
}

}    // namespace
}    // namespace zck
