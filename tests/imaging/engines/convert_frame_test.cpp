#include "imaging/engines/convert_frame.h"

#include <gtest/gtest.h>

#include <cstring>
#include <random>

#include "frames/media/pixel_format.h"
#include "frames/media/video_props.h"
#include "imaging/colour/convert.h"
#include "platform/status.h"

namespace zck {
namespace {

using Bytes = std::vector<uint8_t>;
using Engine = HRESULT (*)(FieldConverter *, const EngineSource &, const EngineTarget &, int32_t);
constexpr Engine kEngines[] = {ConvertFrame2, ConvertFrame3};

struct Picture {
    Z_VID_PROPS props = {};
    Bytes memory;

    Picture(eZFCC fcc, int32_t width, int32_t height, int32_t value, eZInterlace scan = eZI_Progressive) {
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
    EngineSource Source() const { return {memory.data(), static_cast<int64_t>(memory.size()), &props}; }
    EngineTarget Target() { return {memory.data(), nullptr, nullptr, static_cast<int64_t>(memory.size()), &props}; }
    uint8_t *Row(int32_t y) { return memory.data() + static_cast<int64_t>(y) * props.nRowBytes; }
};

HRESULT Converted(Engine engine, const Picture &a, Picture &b, int32_t q = kResizeCubic) {
    FieldConverter ctx;
    return engine(&ctx, a.Source(), b.Target(), q);
}

TEST(ConvertFrame, Statuses) {
    for (const Engine engine : kEngines) {
        FieldConverter ctx;
        const Picture a(eZFCC_UYVY, 8, 8, 100);
        Picture b(eZFCC_UYVY, 12, 8, 9);
        const Bytes before = b.memory;
        EXPECT_EQ(engine(nullptr, a.Source(), b.Target(), 4), E_POINTER);
        EXPECT_EQ(engine(&ctx, {nullptr, 128, &a.props}, b.Target(), 4), E_POINTER);
        EXPECT_EQ(engine(&ctx, {a.memory.data(), 128, nullptr}, b.Target(), 4), E_POINTER);
        EXPECT_EQ(engine(&ctx, a.Source(), {nullptr, nullptr, nullptr, 192, &b.props}, 4), E_POINTER);
        EXPECT_EQ(engine(&ctx, a.Source(), {b.memory.data(), nullptr, nullptr, 192, nullptr}, 4), E_POINTER);
        EXPECT_EQ(engine(&ctx, {a.memory.data(), 127, &a.props}, b.Target(), 4), kVfwEInvalidMediaType);
        EXPECT_EQ(engine(&ctx, a.Source(), {b.memory.data(), nullptr, nullptr, 191, &b.props}, 4), kVfwEInvalidMediaType);
        for (int32_t Z_VID_PROPS::*field : {&Z_VID_PROPS::nWidth, &Z_VID_PROPS::nHeight, &Z_VID_PROPS::nRowBytes})
            for (const int32_t value : {0, INT32_MIN}) {
                Z_VID_PROPS p = b.props;
                p.*field = value;
                EXPECT_EQ(engine(&ctx, a.Source(), {b.memory.data(), nullptr, nullptr, 192, &p}, 4), E_UNEXPECTED);
                p = a.props;
                p.*field = value;
                EXPECT_EQ(engine(&ctx, {a.memory.data(), 128, &p}, b.Target(), 4), E_UNEXPECTED);
            }
        EXPECT_EQ(b.memory, before);
    }
}

TEST(ConvertFrame, FormatsThatAreNotScaledLeaveTheTargetAlone) {
    for (const Engine engine : kEngines)
        for (const eZFCC fcc : {eZFCC_v210, eZFCC_r210, eZFCC_RGB8, static_cast<eZFCC>(kFccRgb565)}) {
            const Picture a(eZFCC_ARGB32, 48, -8, -1), c(fcc, 48, 8, -2);
            Picture other(fcc, 48, 6, 9), same(fcc, 48, 8, 9), back(eZFCC_ARGB32, 48, -6, 9);
            EXPECT_EQ(Converted(engine, a, other), kVfwEInvalidSubtype);
            EXPECT_EQ(Converted(engine, c, back), kVfwEInvalidSubtype);
            EXPECT_EQ(Converted(engine, a, same), fcc == eZFCC_v210 ? E_FAIL : kVfwEInvalidSubtype);
            EXPECT_EQ(other.memory, Bytes(other.memory.size(), 9));
            EXPECT_EQ(same.memory, Bytes(same.memory.size(), 9));
            EXPECT_EQ(back.memory, Bytes(back.memory.size(), 9));
        }
}

TEST(ConvertFrame, Rgb8GoesIntoRgb8WithTheHighQualityEngineAlone) {
    const Picture a(eZFCC_RGB8, 16, 12, 77);
    Picture b(eZFCC_RGB8, 24, 20, 9), same(eZFCC_RGB8, 16, 12, 9);
    EXPECT_EQ(Converted(ConvertFrame2, a, b), kVfwEInvalidSubtype);
    ASSERT_EQ(Converted(ConvertFrame3, a, b), S_OK);
    EXPECT_NEAR(b.memory[24 * 10 + 12], 77, 1);
    ASSERT_EQ(Converted(ConvertFrame3, a, same), S_OK);
    EXPECT_EQ(same.memory, a.memory);
}

// A colour step between equal and unequal sizes: BT.709 against BT.601.
TEST(ConvertFrame, HdycIsBt709AsItStandsAndBt601WhenScaled) {
    for (const Engine engine : kEngines) {
        Picture a(eZFCC_HDYC, 16, 8, 0), uyvy(eZFCC_UYVY, 16, 8, 0);
        for (size_t i = 0; i < a.memory.size(); i += 4) {
            constexpr uint8_t kRed[4] = {100, 90, 220, 90};
            std::memcpy(a.memory.data() + i, kRed, 4);
        }
        uyvy.memory = a.memory;
        Picture same(eZFCC_ARGB32, 16, -8, 0), expected(eZFCC_ARGB32, 16, -8, 0), as601(eZFCC_ARGB32, 16, -8, 0),
            larger(eZFCC_ARGB32, 24, -8, 0);
        ASSERT_EQ(Converted(engine, a, same), S_OK);
        ASSERT_EQ(ConvertSameGeometry(a.memory.data(), expected.memory.data(), &a.props, &expected.props), S_OK);
        EXPECT_EQ(same.memory, expected.memory);
        ASSERT_EQ(ConvertSameGeometry(uyvy.memory.data(), as601.memory.data(), &uyvy.props, &as601.props), S_OK);
        ASSERT_EQ(Converted(engine, a, larger), S_OK);
        for (size_t c = 0; c < 4; ++c) EXPECT_NEAR(larger.memory[4 * (24 * 4 + 12) + c], as601.memory[4 * (16 * 4 + 8) + c], 1);
        EXPECT_NE(std::memcmp(as601.memory.data(), expected.memory.data(), 4), 0);
    }
}

// The straight path narrows an odd 4:2:2 picture by a pixel.
TEST(ConvertFrame, AnOddLastColumnOf422IsNotWritten) {
    for (const Engine engine : kEngines) {
        const Picture a(eZFCC_UYVY, 7, 4, 200);
        Picture b(eZFCC_ARGB32, 7, -4, 9), c(eZFCC_YUY2, 7, 4, 9);
        ASSERT_EQ(Converted(engine, a, b), S_OK);
        EXPECT_EQ(Bytes(b.Row(1) + 23, b.Row(1) + 28), Bytes({255, 9, 9, 9, 9}));
        ASSERT_EQ(Converted(engine, a, c), S_OK);
        EXPECT_EQ(Bytes(c.Row(1) + 11, c.Row(1) + 13), Bytes({200, 9}));
    }
}

TEST(ConvertFrame, OneColumnGoesByWayOfPlanes) {
    const Picture a(eZFCC_UYVY, 1, 4, 200);
    Picture b(eZFCC_YUY2, 1, 4, 9);
    EXPECT_EQ(Converted(ConvertFrame2, a, b), S_OK) << "no chroma to copy, no pair to pack";
    EXPECT_EQ(b.memory, Bytes(b.memory.size(), 9));
}

TEST(ConvertFrame, APictureOfOneLineHasNoFields) {
    const Picture a(eZFCC_UYVY, 8, 1, 200, eZI_Field1First);
    Picture b(eZFCC_UYVY, 8, 4, 9);
    b.props.eScaleType = eZST_None;
    EXPECT_EQ(Converted(ConvertFrame2, a, b), E_FAIL);
    EXPECT_EQ(b.memory, Bytes(b.memory.size(), 9));
}

// Rows of both fields in one value each.
Picture TwoFields(eZFCC fcc, int32_t width, int32_t height, eZInterlace scan) {
    Picture p(fcc, width, height, 0, scan);
    for (int32_t y = 0; y < std::abs(height); ++y)
        std::memset(p.Row(y), y % 2 == 0 ? 60 : 180, static_cast<size_t>(p.props.nRowBytes));
    return p;
}

TEST(ConvertFrame, AnInterlacedSourceMakesAProgressiveTargetOfItsFirstField) {
    for (const Engine engine : kEngines)
        for (const eZInterlace scan : {eZI_Field1First, eZI_Field2First})
            for (const eZFCC to : {eZFCC_UYVY, eZFCC_I420, eZFCC_YUY2}) {
                const Picture a = TwoFields(eZFCC_UYVY, 32, 16, scan);
                Picture b(to, 48, 24, 0);
                ASSERT_EQ(Converted(engine, a, b, 16), S_OK);
                for (const uint8_t v : b.memory)
                    ASSERT_NEAR(v, scan == eZI_Field1First ? 60 : 180, 2) << "the other field leaves no trace";
            }
}

TEST(ConvertFrame, FieldsStayFieldsAndTheirOrderMovesThePicture) {
    for (const Engine engine : kEngines) {
        const Picture a = TwoFields(eZFCC_UYVY, 32, 16, eZI_Field1First);
        Picture same(eZFCC_UYVY, 48, 24, 0, eZI_Field1First), other(eZFCC_UYVY, 48, 24, 0, eZI_Field2First);
        ASSERT_EQ(Converted(engine, a, same, 16), S_OK);
        ASSERT_EQ(Converted(engine, a, other, 16), S_OK);
        for (int32_t y = 0; y < 24; ++y) EXPECT_NEAR(same.Row(y)[20], y % 2 == 0 ? 60 : 180, 2) << y;
        EXPECT_NEAR(other.Row(0)[20], 60, 2);
        for (int32_t y = 1; y < 24; ++y)
            EXPECT_NEAR(other.Row(y)[20], y % 2 == 0 ? 180 : 60, 2) << "moved down by a line, " << y;
    }
}

TEST(ConvertFrame, FieldOutputs) {
    const Picture a = TwoFields(eZFCC_UYVY, 32, 16, eZI_Field2First);
    for (const Engine engine : kEngines) {
        Picture first(eZFCC_UYVY, 48, 24, 0), second(eZFCC_UYVY, 48, 24, 0), combined(eZFCC_UYVY, 48, 24, 9);
        FieldConverter ctx;
        const EngineTarget t = {nullptr, first.memory.data(), second.memory.data(), static_cast<int64_t>(first.memory.size()),
                                &first.props};
        ASSERT_EQ(engine(&ctx, a.Source(), t, 4), S_OK);
        for (const uint8_t v : first.memory) ASSERT_NEAR(v, 180, 2) << "the odd rows come first in time";
        for (const uint8_t v : second.memory) ASSERT_NEAR(v, 60, 2);
        const EngineTarget all = {combined.memory.data(), first.memory.data(), nullptr, t.bytes, &first.props};
        ASSERT_EQ(engine(&ctx, a.Source(), all, 4), S_OK);
        EXPECT_NEAR(combined.memory[500], engine == ConvertFrame2 ? 9 : 180, 2)
            << "the planar engine leaves the combined target alone";
    }
}

// What a conversion leaves in scratch is gone for the next one.
TEST(ConvertFrame, ScratchCarriesNothingFromCallToCall) {
    constexpr eZFCC kFormats[] = {eZFCC_UYVY, eZFCC_NV12, eZFCC_RGB24, eZFCC_ARGB32, eZFCC_YVYU};
    for (const Engine engine : kEngines) {
        FieldConverter kept;
        for (int32_t round = 0; round < 200; ++round) {
            const int32_t w = 9 + round % 13, h = 7 + round % 9;
            const eZInterlace scan = round % 3 == 0 ? eZI_Field1First : eZI_Progressive;
            const Picture a(kFormats[round % 5], w, h, -1 - round, scan);
            Picture b(kFormats[round / 5 % 5], 30 - w, 25 - h, 9, scan), c = b;
            FieldConverter fresh;
            const HRESULT hr = engine(&fresh, a.Source(), b.Target(), 5);
            ASSERT_EQ(engine(&kept, a.Source(), c.Target(), 5), hr);
            ASSERT_EQ(b.memory, c.memory) << round;
        }
    }
}

}    // namespace
}    // namespace zck
