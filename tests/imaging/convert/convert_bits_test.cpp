// Stereo halves, lined-up lines, single lines, and which engine a quality reaches.
#include "imaging/convert/convert_bits.h"

#include <gtest/gtest.h>

#include <random>

#include "frames/media/pixel_format.h"
#include "frames/media/video_props.h"
#include "imaging/scale/resizer.h"
#include "platform/status.h"

namespace zck {
namespace {

using Bytes = std::vector<uint8_t>;

struct Image {
    Z_VID_PROPS props = {};
    Bytes memory;

    Image(eZFCC fcc, int32_t width, int32_t height, int32_t value, eZInterlace scan = eZI_Progressive) {
        props.fccType = fcc;
        props.nWidth = width;
        props.nHeight = height;
        props.nRowBytes = RowBytes(fcc, width);
        props.eInterlace = scan;
        props.eScaleType = eZST_None;
        memory.assign(static_cast<size_t>(FrameBufferSize(&props)), static_cast<uint8_t>(value));
        if (value >= 0) return;
        std::mt19937 random(static_cast<uint32_t>(-value));
        for (uint8_t &b : memory) b = static_cast<uint8_t>(random() >> 8);
    }
    int64_t Size() const { return static_cast<int64_t>(memory.size()); }
    EngineSource Source() const { return {memory.data(), Size(), &props}; }
    EngineTarget Target() { return {memory.data(), nullptr, nullptr, Size(), &props}; }
    uint8_t *Row(int32_t y) { return memory.data() + static_cast<int64_t>(y) * props.nRowBytes; }
    bool RowIs(int32_t y, int32_t from, int32_t bytes, int32_t value) {
        const Bytes part(Row(y) + from, Row(y) + from + bytes);
        return part == Bytes(part.size(), static_cast<uint8_t>(value));
    }
};

HRESULT Converted(const Image &a, Image &b, int32_t quality = 4, int32_t eye = -1) {
    FieldConverter ctx;
    return ConvertBits(&ctx, a.Source(), b.Target(), quality, eye);
}

TEST(ConvertBits, Statuses) {
    FieldConverter ctx;
    const Image a(eZFCC_UYVY, 16, 8, 100);
    Image b(eZFCC_UYVY, 24, 8, 9);
    const Bytes before = b.memory;
    EXPECT_EQ(ConvertBits(nullptr, a.Source(), b.Target(), 4, -1), E_POINTER);
    EXPECT_EQ(ConvertBits(&ctx, {nullptr, 256, &a.props}, b.Target(), 4, -1), E_POINTER);
    EXPECT_EQ(ConvertBits(&ctx, {a.memory.data(), 256, nullptr}, b.Target(), 4, -1), E_POINTER);
    EXPECT_EQ(ConvertBits(&ctx, a.Source(), {nullptr, nullptr, nullptr, 384, &b.props}, 4, -1), E_POINTER);
    EXPECT_EQ(ConvertBits(&ctx, a.Source(), {b.memory.data(), nullptr, nullptr, 384, nullptr}, 4, -1), E_POINTER);
    EXPECT_EQ(ConvertBits(&ctx, {a.memory.data(), 255, &a.props}, b.Target(), 4, -1), kVfwEInvalidMediaType);
    EXPECT_EQ(ConvertBits(&ctx, a.Source(), {b.memory.data(), nullptr, nullptr, 383, &b.props}, 4, -1), kVfwEInvalidMediaType);
    for (int32_t Z_VID_PROPS::*field : {&Z_VID_PROPS::nWidth, &Z_VID_PROPS::nHeight}) {
        for (const int32_t value : {0, INT32_MIN}) {
            Image c = b;
            c.props.*field = value;
            EXPECT_EQ(Converted(a, c), E_UNEXPECTED);
            EXPECT_EQ(Converted(c, b), E_UNEXPECTED);
        }
    }
    EXPECT_EQ(b.memory, before);
    EXPECT_EQ(Converted(a, b), S_OK);
}

TEST(ConvertBits, HalfOfOneColumnOrRowIsNoPicture) {
    Image a(eZFCC_ARGB32, 1, -8, 100), row(eZFCC_ARGB32, 8, -1, 100), b(eZFCC_ARGB32, 8, -8, 9);
    a.props.e3DFormat = eZ3D_SideBySide;
    row.props.e3DFormat = eZ3D_TopAndBottom;
    EXPECT_EQ(Converted(a, b), E_UNEXPECTED);
    EXPECT_EQ(Converted(row, b), E_UNEXPECTED);
}

TEST(ConvertBits, AFlatTargetShowsOneEyeOfASideBySidePair) {
    Image a(eZFCC_ARGB32, 16, -4, 60), b(eZFCC_ARGB32, 8, -8, 9);
    a.props.e3DFormat = eZ3D_SideBySide;
    for (int32_t y = 0; y < 4; ++y) std::fill_n(a.Row(y) + 32, 32, uint8_t{200});
    ASSERT_EQ(Converted(a, b), S_OK);
    EXPECT_EQ(b.memory, Bytes(b.memory.size(), 60));
    ASSERT_EQ(Converted(a, b, 4, 1), S_OK);
    EXPECT_EQ(b.memory, Bytes(b.memory.size(), 200));
}

TEST(ConvertBits, TheSecondEyeOfTopAndBottomIsTheSecondHalfOfTheMemory) {
    for (const int32_t sign : {-1, 1}) {
        Image a(eZFCC_ARGB32, 8, sign * 8, 60), b(eZFCC_ARGB32, 12, -6, 9);
        a.props.e3DFormat = eZ3D_TopAndBottom;
        std::fill_n(a.Row(4), 4 * 32, uint8_t{200});
        ASSERT_EQ(Converted(a, b, 4, 0), S_OK);
        EXPECT_EQ(b.memory, Bytes(b.memory.size(), 60));
        ASSERT_EQ(Converted(a, b, 4, 1), S_OK);
        EXPECT_EQ(b.memory, Bytes(b.memory.size(), 200));
    }
}

TEST(ConvertBits, AStereoTargetGetsBothEyes) {
    Image a(eZFCC_UYVY, 16, 8, 60), b(eZFCC_UYVY, 16, 12, 9);
    a.props.e3DFormat = eZ3D_SideBySide;
    for (int32_t y = 0; y < 8; ++y) std::fill_n(a.Row(y) + 16, 16, uint8_t{200});
    b.props.e3DFormat = eZ3D_TopAndBottom;
    ASSERT_EQ(Converted(a, b), S_OK);
    for (int32_t y = 0; y < 12; ++y) EXPECT_TRUE(b.RowIs(y, 0, 32, y < 6 ? 60 : 200)) << y;
    // A flat source is both.
    a.props.e3DFormat = eZ3D_None;
    ASSERT_EQ(Converted(a, b), S_OK);
    EXPECT_EQ(Bytes(b.Row(0), b.Row(6)), Bytes(b.Row(6), b.Row(6) + 6 * 32));
    EXPECT_EQ(b.Row(0)[0], 60);
    EXPECT_EQ(b.Row(0)[31], 200);
}

TEST(ConvertBits, PlanarPicturesCountAsFlat) {
    Image a(eZFCC_I420, 16, 8, 128), b(eZFCC_I420, 16, 12, 9);
    std::fill_n(a.memory.data(), 16 * 8, uint8_t{60});
    for (int32_t y = 0; y < 8; ++y) std::fill_n(a.Row(y) + 8, 8, uint8_t{200});
    b.props.e3DFormat = eZ3D_TopAndBottom;
    ASSERT_EQ(Converted(a, b), S_OK);
    EXPECT_TRUE(b.RowIs(11, 0, 4, 60));
    EXPECT_TRUE(b.RowIs(0, 12, 4, 200));
}

TEST(ConvertBits, APictureOf2160LinesWithoutAFormatIsTakenAsTwoEyes) {
    Image a(eZFCC_UYVY, 64, 8, 60), b(eZFCC_UYVY, 1920, 2160, 9);
    a.memory.assign(a.memory.size(), 128);
    std::fill_n(a.Row(0), 4 * 128, uint8_t{60});
    b.props.dblRate = 25;
    ASSERT_EQ(Converted(a, b), S_OK);
    // Each half shows the whole source.
    EXPECT_EQ(b.Row(0)[0], 60);
    EXPECT_EQ(b.Row(1079)[0], 128);
    EXPECT_EQ(b.Row(1080)[0], 60);
    EXPECT_EQ(b.Row(2159)[0], 128);
}

TEST(ConvertBits, ALineOfAStandardFormatStaysOneLine) {
    Image a(eZFCC_UYVY, 720, 1, 60), b(eZFCC_YUY2, 720, 1, 9);
    a.props.eVideoFormat = b.props.eVideoFormat = eZVF_PAL;
    ASSERT_EQ(Converted(a, b), S_OK);
    EXPECT_EQ(b.memory, Bytes(b.memory.size(), 60));
}

TEST(ConvertBits, APictureOf480LinesStandsUnscaledBelowSixBlackLines) {
    for (const int32_t sign : {-1, 1}) {
        Image a(eZFCC_UYVY, 720, 480, -5), b(eZFCC_RGB24, 720, sign * 486, 9);
        a.props.dblRate = b.props.dblRate = 29.970029970029973;
        a.props.eInterlace = b.props.eInterlace = eZI_Field2First;
        a.props.eVideoFormat = b.props.eVideoFormat = eZVF_NTSC;
        Image same(eZFCC_RGB24, 720, sign * 480, 9);
        same.props.eInterlace = eZI_Field2First;
        FieldConverter ctx;
        ASSERT_EQ(ConvertFrame2(&ctx, a.Source(), same.Target(), 4), S_OK);
        ASSERT_EQ(Converted(a, b), S_OK);
        const int64_t row = b.props.nRowBytes;
        const uint8_t *const picture = b.memory.data() + (sign < 0 ? 6 * row : 0);
        EXPECT_EQ(Bytes(picture, picture + 480 * row), same.memory);
        const uint8_t *const black = b.memory.data() + (sign < 0 ? 0 : 480 * row);
        EXPECT_EQ(Bytes(black, black + 6 * row), Bytes(static_cast<size_t>(6 * row)));
    }
}

using Engine = HRESULT (*)(FieldConverter *, const EngineSource &, const EngineTarget &, int32_t);

void ExpectEngine(const Image &a, const Image &like, int32_t quality, Engine engine, int32_t code) {
    Image b = like, expected = like;
    FieldConverter ctx;
    ASSERT_EQ(engine(&ctx, a.Source(), expected.Target(), code), S_OK);
    ASSERT_EQ(Converted(a, b, quality), S_OK);
    EXPECT_EQ(b.memory, expected.memory) << quality;
    Image scaled = like;
    ASSERT_EQ(ConvertBitsScaled(&ctx, a.Source(), scaled.memory.data(), scaled.Size(), &scaled.props, quality), S_OK);
    EXPECT_EQ(scaled.memory, expected.memory) << quality;
}

TEST(ConvertBits, TheQualityChoosesTheEngine) {
    const Image a(eZFCC_UYVY, 64, 48, -7), b(eZFCC_UYVY, 40, 20, 9);
    ExpectEngine(a, b, -1, ConvertFrame2, kResizeNearest);
    ExpectEngine(a, b, 3, ConvertFrame2, kResizeLinear);
    ExpectEngine(a, b, 4, ConvertFrame2, kResizeCubic);
    ExpectEngine(a, b, 8, ConvertFrame2, 8);
    ExpectEngine(a, b, 9, ConvertFrame2, 16);
    ExpectEngine(a, b, 10, ConvertFrame3, 4);
    ExpectEngine(a, b, 12, ConvertFrame3, 4);
    ExpectEngine(a, b, 15, ConvertFrame3, 5);
    ExpectEngine(a, b, 99, ConvertFrame3, 16);
}

TEST(ConvertBits, FieldsThatShrinkReachTheHighQualityEngineFromCode5On) {
    const Image a(eZFCC_UYVY, 64, 48, -7, eZI_Field1First), b(eZFCC_UYVY, 40, 20, 9, eZI_Field1First),
        larger(eZFCC_UYVY, 40, 60, 9, eZI_Field1First);
    ExpectEngine(a, b, 4, ConvertFrame2, 4);
    ExpectEngine(a, b, 5, ConvertFrame3, 5);
    ExpectEngine(a, b, 16, ConvertFrame3, 6);
    ExpectEngine(a, larger, 5, ConvertFrame2, 5);
}

TEST(ConvertBits, ScaledTakesCompleteRecordsAlone) {
    FieldConverter ctx;
    const Image a(eZFCC_UYVY, 16, 8, 100);
    Image b(eZFCC_UYVY, 24, 8, 9);
    EXPECT_EQ(ConvertBitsScaled(&ctx, a.Source(), nullptr, 384, &b.props, 4), E_POINTER);
    EXPECT_EQ(ConvertBitsScaled(&ctx, a.Source(), b.memory.data(), 384, nullptr, 4), E_POINTER);
    Z_VID_PROPS p = b.props;
    p.nRowBytes = 0;
    EXPECT_EQ(ConvertBitsScaled(&ctx, a.Source(), b.memory.data(), 384, &p, 4), E_UNEXPECTED);
    EXPECT_EQ(b.memory, Bytes(b.memory.size(), 9));
}

}    // namespace
}    // namespace zck
