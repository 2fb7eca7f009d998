#include "imaging/scale/resize_planes.h"

#include <gtest/gtest.h>

#include <cstring>
#include <random>

#include "frames/media/pixel_format.h"
#include "frames/media/video_props.h"
#include "imaging/colour/planar_image.h"
#include "platform/status.h"

namespace zck {
namespace {

using Bytes = std::vector<uint8_t>;

// An image with its memory.
struct Picture {
    Z_VID_PROPS props = {};
    ImageLayout layout;
    Bytes memory;
    ScaleImage image;

    Picture(eZFCC fcc, int32_t width, int32_t height, uint32_t seed) {
        props.fccType = fcc;
        props.nWidth = width;
        props.nHeight = height;
        props.nRowBytes = RowBytes(fcc, width);
        EXPECT_TRUE(ImageLayoutMake(fcc, width, height, props.nRowBytes, &layout));
        memory.resize(static_cast<size_t>(layout.bytes));
        std::mt19937 random(seed);
        for (uint8_t &b : memory) b = static_cast<uint8_t>(random() >> 8);
        image = ScaleImageMake(memory.data(), layout);
    }
    const uint8_t *Row(int32_t y, int32_t plane = 0) const { return image.plane[plane] + y * image.step[plane]; }
};

Bytes Planes(const Picture &p, PlanarImage *image) {
    Bytes scratch(static_cast<size_t>(PlanesScratch(p.props, true)) + 1);
    EXPECT_EQ(LoadPlanes(image, p.memory.data(), static_cast<int64_t>(p.memory.size()), &p.props, scratch.data(),
                         static_cast<int64_t>(scratch.size())),
              S_OK);
    return scratch;
}

// Whole planes, resized one by one and packed as a whole: what the rows of the scaler must come to.
Bytes ByWholePlanes(const Picture &a, const Picture &b, int32_t q, int32_t qChroma) {
    PlanarImage from, to;
    const Bytes fromBytes = Planes(a, &from);
    Bytes toBytes(static_cast<size_t>(PlanesScratch(b.props, false)));
    EXPECT_EQ(LoadPlanes(&to, nullptr, 0, &b.props, toBytes.data(), static_cast<int64_t>(toBytes.size())), S_OK);
    for (int32_t i = 0; i < 3; ++i) {
        const bool grows = to.nWidth[i] > from.nWidth[i] || to.nHeight[i] > from.nHeight[i];
        const int32_t code = i > 0 ? qChroma : q == 8 && grows ? 4 : q;
        Resizer r;
        const ResizeShape shape = {{from.nWidth[i], from.nHeight[i]}, {to.nWidth[i], to.nHeight[i]}, 1, code};
        if (shape.source.width == shape.target.width && shape.source.height == shape.target.height) {
            for (int32_t y = 0; y < to.nHeight[i]; ++y)
                std::copy_n(from.plane[i] + y * from.nRowBytes[i], to.nWidth[i], to.plane[i] + y * to.nRowBytes[i]);
        } else {
            EXPECT_EQ(ResizeImage(&r, shape, from.plane[i], from.nRowBytes[i], to.plane[i], to.nRowBytes[i]), 0);
        }
    }
    Bytes memory = b.memory;
    const bool up = b.layout.step[0] < 0;
    EXPECT_EQ(PackPlanes(&to, memory.data() + b.layout.offset[0], b.layout.bytes, b.props.fccType,
                         up ? -b.props.nRowBytes : b.props.nRowBytes),
              S_OK);
    return memory;
}

constexpr eZFCC kFormats[] = {eZFCC_UYVY, eZFCC_YUY2, eZFCC_YVYU,  eZFCC_I420,
                              eZFCC_YV12, eZFCC_NV12, eZFCC_RGB24, eZFCC_ARGB32};

TEST(ResizePlanes, RowByRowIsWhatWholePlanesAre) {
    uint32_t seed = 0;
    PlaneScaler scaler;
    for (const eZFCC from : kFormats)
        for (const eZFCC to : kFormats)
            for (const ROI size : {ROI{34, 20}, ROI{35, 21}, ROI{60, 31}, ROI{17, 40}})
                for (const int32_t q : {1, 4, 8, 16}) {
                    if (IsRgbFormat(from) && IsRgbFormat(to)) continue;
                    if (IsPlanarFormat(to) && !IsPlanarFormat(from) && size.width == 34) continue;
                    SCOPED_TRACE(testing::Message() << std::hex << from << " to " << to << std::dec << ", " << size.width
                                                    << " x " << size.height << ", code " << q);
                    const Picture a(from, 34, 20, ++seed);
                    Picture b(to, size.width, IsRgbFormat(to) && q == 4 ? -size.height : size.height, ++seed);
                    const Bytes expected = ByWholePlanes(a, b, q, std::min(q, 2));
                    ASSERT_EQ(ResizePlanes(&scaler, a.image, b.image, q, std::min(q, 2)), S_OK);
                    ASSERT_EQ(b.memory, expected);
                }
}

TEST(ResizePlanes, RgbKeepsItsAlphaAndRgb24Has255) {
    PlaneScaler scaler;
    const Picture a(eZFCC_ARGB32, 12, -6, 1);
    Picture b(eZFCC_RGB32, 12, 6, 2);
    ASSERT_EQ(ResizePlanes(&scaler, a.image, b.image, 5, 2), S_OK);
    for (int32_t y = 0; y < 6; ++y) EXPECT_EQ(std::memcmp(a.Row(y), b.Row(y), 48), 0) << "a copy, upright, under all codes";
    const Picture c(eZFCC_RGB24, 12, -6, 3);
    Picture d(eZFCC_ARGB32, 7, -9, 4);
    ASSERT_EQ(ResizePlanes(&scaler, c.image, d.image, 4, 2), S_OK);
    for (size_t i = 3; i < d.memory.size(); i += 4) EXPECT_EQ(d.memory[i], 255);
    Picture e(eZFCC_RGB24, 12, -6, 5);
    Picture f(eZFCC_ARGB32, 12, -6, 6);
    ASSERT_EQ(ResizePlanes(&scaler, c.image, f.image, 4, 2), S_OK);
    ASSERT_EQ(ResizePlanes(&scaler, f.image, e.image, 4, 2), S_OK);
    EXPECT_EQ(e.memory, c.memory);
}

// A channel is a plane of its own.
TEST(ResizePlanes, AlphaIsAChannelLikeTheOthers) {
    const Picture a(eZFCC_ARGB32, 30, -14, 8);
    Picture b(eZFCC_ARGB32, 20, -9, 9);
    PlaneScaler scaler;
    ASSERT_EQ(ResizePlanes(&scaler, a.image, b.image, 4, 2), S_OK);
    for (size_t c = 0; c < 4; ++c) {
        Bytes plane, expected(20 * 9);
        for (size_t i = c; i < a.memory.size(); i += 4) plane.push_back(a.memory[i]);
        Resizer r;
        ASSERT_EQ(ResizeImage(&r, {{30, 14}, {20, 9}, 1, 4}, plane.data(), 30, expected.data(), 20), 0);
        for (size_t i = 0; i < expected.size(); ++i) ASSERT_EQ(b.memory[4 * i + c], expected[i]);
    }
}

TEST(ResizePlanes, OutsideTheRectangleIsBlack) {
    PlaneScaler scaler;
    for (const bool copied : {true, false}) {
        const Picture a(eZFCC_UYVY, copied ? 8 : 12, 6, 1);
        Picture uyvy(eZFCC_UYVY, 16, 10, 2);
        uyvy.image.SetPart({4, 2, 12, 8});
        ASSERT_EQ(ResizePlanes(&scaler, a.image, uyvy.image, 4, 2), S_OK);
        EXPECT_EQ(Bytes(uyvy.memory.begin(), uyvy.memory.begin() + 4), Bytes({128, 16, 128, 16}));
        EXPECT_EQ(Bytes(uyvy.memory.end() - 4, uyvy.memory.end()), Bytes({128, 16, 128, 16}));
        EXPECT_EQ(Bytes(uyvy.memory.begin() + 32 * 4, uyvy.memory.begin() + 32 * 4 + 8),
                  Bytes({128, 16, 128, 16, 128, 16, 128, 16}));
        EXPECT_TRUE(!copied || std::memcmp(uyvy.Row(2) + 8, a.Row(0), 16) == 0);
        Picture fromPlanes(eZFCC_ARGB32, 16, -10, 3);
        fromPlanes.image.SetPart({4, 2, 12, 8});
        ASSERT_EQ(ResizePlanes(&scaler, a.image, fromPlanes.image, 4, 2), S_OK);
        EXPECT_EQ(Bytes(fromPlanes.memory.begin(), fromPlanes.memory.begin() + 4), Bytes({0, 0, 0, 255}))
            << "planes know no alpha";
        const Picture rgb(eZFCC_ARGB32, copied ? 8 : 12, 6, 4);
        Picture wrapped(eZFCC_ARGB32, 16, -10, 5);
        wrapped.image.SetPart({4, 2, 12, 8});
        ASSERT_EQ(ResizePlanes(&scaler, rgb.image, wrapped.image, 4, 2), S_OK);
        EXPECT_EQ(Bytes(wrapped.memory.begin(), wrapped.memory.begin() + 4), Bytes({0, 0, 0, 0}));
        Picture i420(eZFCC_I420, 16, 10, 6);
        i420.image.SetPart({4, 2, 12, 8});
        ASSERT_EQ(ResizePlanes(&scaler, a.image, i420.image, 4, 2), S_OK);
        EXPECT_EQ(i420.memory[0], 16);
        EXPECT_EQ(i420.memory[160], 128);
        EXPECT_EQ(i420.memory.back(), 128);
    }
}

TEST(ResizePlanes, ARectangleOfTheSourceIsAPictureOfItsOwn) {
    const Picture a(eZFCC_UYVY, 40, 20, 1);
    Picture cut(eZFCC_UYVY, 24, 10, 2);
    for (int32_t y = 0; y < 10; ++y) std::memcpy(cut.memory.data() + 48 * y, a.Row(4 + y) + 16, 48);
    ScaleImage part = a.image;
    part.SetPart({8, 4, 32, 14});
    Picture b(eZFCC_YUY2, 17, 9, 3), c(eZFCC_YUY2, 17, 9, 3);
    PlaneScaler scaler;
    ASSERT_EQ(ResizePlanes(&scaler, part, b.image, 16, 2), S_OK);
    ASSERT_EQ(ResizePlanes(&scaler, cut.image, c.image, 16, 2), S_OK);
    EXPECT_EQ(b.memory, c.memory);
}

TEST(ResizePlanes, FieldsAreEveryOtherRow) {
    const Picture a(eZFCC_I420, 8, 22, 1);
    const ScaleImage odd = SplitField(a.image, 1);
    EXPECT_EQ(odd.rows, 11);
    EXPECT_EQ(odd.plane[0], a.Row(1));
    EXPECT_EQ(odd.step[0], 16);
    EXPECT_EQ(a.image.Whole(1).rows, 11);
    EXPECT_EQ(odd.Whole(1).rows, 5);
    EXPECT_EQ(odd.plane[1], a.Row(1, 1));
    const Picture b(eZFCC_RGB32, 8, 7, 1);
    const ScaleImage up = SplitField(b.image, 0);
    EXPECT_EQ(up.plane[0], b.memory.data() + 6 * 32) << "the picture's top row";
    EXPECT_EQ(up.step[0], -64);
    EXPECT_EQ(up.rows, 3);
    ScaleImage part = a.image;
    part.SetPart({0, 6, 8, 19});
    const ScaleImage half = SplitField(part, 0);
    EXPECT_EQ(half.part[0].top, 3);
    EXPECT_EQ(half.part[0].rows, 6) << "of 13";
    EXPECT_EQ(half.part[1].rows, 3) << "each plane by itself: 6 rows of chroma";
}

TEST(ResizePlanes, Statuses) {
    PlaneScaler scaler;
    const Picture a(eZFCC_UYVY, 8, 6, 1);
    Picture b(eZFCC_UYVY, 12, 6, 2);
    const Bytes before = b.memory;
    EXPECT_EQ(ResizePlanes(nullptr, a.image, b.image, 4, 2), E_POINTER);
    EXPECT_EQ(ResizePlanes(&scaler, ScaleImage(), b.image, 4, 2), kVfwEInvalidSubtype);
    EXPECT_EQ(ResizePlanes(&scaler, a.image, b.image, 3, 2), E_FAIL);
    b.image.SetPart({4, 2, 4, 4});
    EXPECT_EQ(ResizePlanes(&scaler, a.image, b.image, 4, 2), E_FAIL);
    EXPECT_EQ(b.memory, before);
    // One column has no chroma, and two such pictures are equal there.
    const Picture thin(eZFCC_UYVY, 1, 6, 3);
    Picture thinner(eZFCC_I420, 1, 4, 4);
    EXPECT_EQ(ResizePlanes(&scaler, thin.image, thinner.image, 4, 2), E_FAIL) << "0 by 6 against 0 by 2 samples";
    Picture same(eZFCC_YUY2, 1, 6, 4);
    EXPECT_EQ(ResizePlanes(&scaler, thin.image, same.image, 4, 2), S_OK);
}

// Bands of rows in any order make the picture.
TEST(ResizePlanes, BandsMakeThePicture) {
    for (const eZFCC to : {eZFCC_NV12, eZFCC_UYVY, eZFCC_ARGB32}) {
        const Picture a(eZFCC_NV12, 38, 44, 1);
        Picture whole(to, 21, 31, 2), bands(to, 21, 31, 2);
        PlaneScaler scaler;
        ASSERT_EQ(ResizePlanes(&scaler, a.image, whole.image, 16, 2), S_OK);
        ASSERT_EQ(scaler.Prepare(a.image, bands.image, 16, 2), S_OK);
        scaler.Run(20, 31);
        scaler.Run(0, 8);
        scaler.Run(8, 20);
        EXPECT_EQ(whole.memory, bands.memory);
    }
}

}    // namespace
}    // namespace zck
