#include "imaging/colour/planar_image.h"

#include <gtest/gtest.h>

#include <vector>

#include "frames/media/pixel_format.h"
#include "platform/status.h"
#include "tests/imaging/colour/planes_model.h"
#include "tests/support/formats.h"

namespace zck {
namespace {

using test::MakePlanarPicture;
using test::ModelColorConvert;
using test::PlanarPicture;
using Bytes = std::vector<uint8_t>;

int64_t Size(const Bytes &bytes) { return static_cast<int64_t>(bytes.size()); }

const std::vector<eZFCC> kPlanar =
    test::FormatsWhere([](const FormatRow &row) { return row.bPlanar && row.pixels != PixelClass::None; });
const std::vector<eZFCC> kFull =
    test::FormatsWhere([](const FormatRow &row) { return !row.bPlanar && row.pixels != PixelClass::None; });

// YUY2 holds the samples of 4:2:2 planes.
PlanarPicture AsYuy2(PlanarPicture &src) {
    PlanarPicture yuy2 = MakePlanarPicture(eZFCC_YUY2, src.width, src.Rows(), 0, 99);
    ModelColorConvert(src, 0, 0, yuy2, 0, 0, src.width / 2 * 2, src.Rows());
    return yuy2;
}

TEST(LoadPlanes, UnpacksInto422) {
    for (const eZFCC fcc : kFull)
        for (const int32_t width : {2, 6, 70})
            for (const int32_t height : {5, -5}) {
                if (height < 0 && !IsRgbFormat(fcc)) continue;
                SCOPED_TRACE(testing::Message() << std::hex << fcc << std::dec << ", " << width << " by " << height);
                PlanarPicture src = MakePlanarPicture(fcc, width, height, 4, 1);
                PlanarPicture yuy2 = AsYuy2(src);
                const Z_VID_PROPS props = src.Props();
                ASSERT_EQ(PlanesScratch(props, true), 2 * width * 5);
                Bytes scratch(static_cast<size_t>(2 * width * 5));
                PlanarImage image;
                ASSERT_EQ(LoadPlanes(&image, src.memory.data(), Size(src.memory), &props, scratch.data(), Size(scratch)), S_OK);
                EXPECT_TRUE(image.bPlanar);
                EXPECT_EQ(image.fcc, fcc);
                EXPECT_EQ(image.plane[0], scratch.data());
                EXPECT_EQ(image.plane[1], scratch.data() + width * 5);
                EXPECT_EQ(image.plane[2], scratch.data() + width * 5 + width / 2 * 5);
                for (int i = 0; i < 3; ++i) {
                    EXPECT_EQ(image.nRowBytes[i], i == 0 ? width : width / 2);
                    EXPECT_EQ(image.nWidth[i], i == 0 ? width : width / 2);
                    EXPECT_EQ(image.nHeight[i], 5);
                    EXPECT_EQ(image.rect[i].left + image.rect[i].top, 0);
                    EXPECT_EQ(image.rect[i].right, image.nWidth[i]);
                    EXPECT_EQ(image.rect[i].bottom, 5);
                }
                for (int32_t y = 0; y < 5; ++y)
                    for (int32_t x = 0; x < width; ++x) {
                        ASSERT_EQ(image.plane[0][y * width + x], yuy2.At(0, x, y));
                        ASSERT_EQ(image.plane[1][y * (width / 2) + x / 2], yuy2.At(1, x, y));
                        ASSERT_EQ(image.plane[2][y * (width / 2) + x / 2], yuy2.At(2, x, y));
                    }
            }
}

TEST(LoadPlanes, PlanarImagesAreWrapped) {
    for (const eZFCC fcc : {eZFCC_I420, eZFCC_YV12}) {
        PlanarPicture src = MakePlanarPicture(fcc, 10, 7, 4, 2);
        const Z_VID_PROPS props = src.Props();
        EXPECT_EQ(PlanesScratch(props, true), 0);
        PlanarImage image;
        ASSERT_EQ(LoadPlanes(&image, src.memory.data(), Size(src.memory), &props, nullptr, 0), S_OK);
        EXPECT_EQ(image.plane[0], src.memory.data());
        EXPECT_EQ(image.plane[1], &src.Chroma(1, 0, 0));
        EXPECT_EQ(image.plane[2], &src.Chroma(2, 0, 0));
        EXPECT_EQ(image.nRowBytes[0], 14);
        EXPECT_EQ(image.nRowBytes[1], 7);
        EXPECT_EQ(image.nWidth[1], 5);
        EXPECT_EQ(image.nHeight[0], 7);
        EXPECT_EQ(image.nHeight[2], 3);
    }
}

TEST(LoadPlanes, Nv12IsSplit) {
    for (const int32_t height : {1, 2, 7}) {
        PlanarPicture src = MakePlanarPicture(eZFCC_NV12, 10, height, 4, 3);
        const Z_VID_PROPS props = src.Props();
        ASSERT_EQ(PlanesScratch(props, true), 10 * height + 10 * (height / 2));
        Bytes scratch(static_cast<size_t>(PlanesScratch(props, true)));
        PlanarImage image;
        ASSERT_EQ(LoadPlanes(&image, src.memory.data(), Size(src.memory), &props, scratch.data(), Size(scratch)), S_OK);
        EXPECT_EQ(image.nRowBytes[0], 10);
        EXPECT_EQ(image.nRowBytes[2], 5);
        for (int32_t y = 0; y < height; ++y)
            for (int32_t x = 0; x < 10; ++x) {
                ASSERT_EQ(image.plane[0][10 * y + x], src.At(0, x, y));
                if (y / 2 >= height / 2) continue;
                ASSERT_EQ(image.plane[1][5 * (y / 2) + x / 2], src.Chroma(1, x, y / 2));
                ASSERT_EQ(image.plane[2][5 * (y / 2) + x / 2], src.Chroma(2, x, y / 2));
            }
    }
}

TEST(LoadPlanes, WithoutSourceThePlanesAreLaidOut) {
    Bytes scratch(10 * 6 * 2, 5);
    PlanarImage image;
    for (const eZFCC fcc : {eZFCC_I420, eZFCC_YV12}) {
        const Z_VID_PROPS props = MakePlanarPicture(fcc, 10, 6, 0, 4).Props();
        ASSERT_EQ(LoadPlanes(&image, nullptr, 0, &props, scratch.data(), 90), S_OK);
        EXPECT_EQ(image.plane[0], scratch.data());
        EXPECT_EQ(image.plane[fcc == eZFCC_I420 ? 1 : 2], scratch.data() + 60);
        EXPECT_EQ(image.plane[fcc == eZFCC_I420 ? 2 : 1], scratch.data() + 75);
    }
    const Z_VID_PROPS props = MakePlanarPicture(eZFCC_RGB24, 10, 6, 0, 4).Props();
    ASSERT_EQ(LoadPlanes(&image, nullptr, 0, &props, scratch.data(), 120), S_OK);
    EXPECT_EQ(image.plane[2], scratch.data() + 90);
    EXPECT_EQ(scratch, Bytes(120, 5));
}

TEST(LoadPlanes, Failures) {
    Bytes memory(400), scratch(400);
    PlanarImage image;
    Z_VID_PROPS props = MakePlanarPicture(eZFCC_UYVY, 10, 6, 0, 5).Props();
    EXPECT_EQ(LoadPlanes(nullptr, memory.data(), 400, &props, scratch.data(), 400), E_POINTER);
    EXPECT_EQ(LoadPlanes(&image, memory.data(), 400, nullptr, scratch.data(), 400), E_POINTER);
    EXPECT_EQ(LoadPlanes(&image, memory.data(), 400, &props, nullptr, 400), E_POINTER);
    EXPECT_EQ(LoadPlanes(&image, memory.data(), 119, &props, scratch.data(), 400), kVfwEInvalidMediaType);
    EXPECT_EQ(LoadPlanes(&image, memory.data(), 120, &props, scratch.data(), 119), kVfwEInvalidMediaType);
    EXPECT_EQ(LoadPlanes(&image, memory.data(), 120, &props, scratch.data(), 120), S_OK);
    for (const eZFCC none : test::FormatsWhere([](const FormatRow &row) { return row.pixels == PixelClass::None; })) {
        props.fccType = none;
        EXPECT_EQ(LoadPlanes(&image, memory.data(), 400, &props, scratch.data(), 400), kVfwEInvalidSubtype);
        EXPECT_FALSE(image.bPlanar);
        EXPECT_EQ(PlanesScratch(props, false), 0);
    }
    props.fccType = eZFCC_UYVY;
    props.nWidth = 0;
    EXPECT_EQ(LoadPlanes(&image, memory.data(), 400, &props, scratch.data(), 400), kVfwEInvalidMediaType);
}

// Into every format of their sampling, rows with padding, top-down and upwards.
TEST(PackPlanes, WritesEveryFormat) {
    for (const eZFCC to : kFull)
        for (const int32_t up : {0, 1}) {
            if (!IsRgbFormat(to) && up != 0) continue;
            SCOPED_TRACE(testing::Message() << std::hex << to << ", up " << up);
            PlanarPicture src = MakePlanarPicture(eZFCC_YUY2, 38, 5, 0, 6);
            const Z_VID_PROPS props = src.Props();
            Bytes scratch(static_cast<size_t>(PlanesScratch(props, true)));
            PlanarImage image;
            ASSERT_EQ(LoadPlanes(&image, src.memory.data(), Size(src.memory), &props, scratch.data(), Size(scratch)), S_OK);
            PlanarPicture expected = MakePlanarPicture(to, 38, IsRgbFormat(to) && up != 0 ? 5 : -5, 4, 7);
            PlanarPicture found = expected;
            ModelColorConvert(src, 0, 0, expected, 0, 0, 38, 5);
            const auto row = static_cast<int32_t>(found.rowBytes);
            uint8_t *const first = found.memory.data() + (up != 0 ? 4 * row : 0);
            ASSERT_EQ(PackPlanes(&image, first, Size(found.memory), to, up != 0 ? -row : row), S_OK);
            ASSERT_EQ(expected.memory, found.memory);
            EXPECT_EQ(PackPlanes(&image, first, Size(found.memory) - 1, to, up != 0 ? -row : row), kVfwEInvalidMediaType);
        }
}

TEST(PackPlanes, WritesEveryPlanarFormat) {
    for (const eZFCC from : kPlanar)
        for (const eZFCC to : kPlanar)
            for (const int32_t height : {1, 6, 7}) {
                SCOPED_TRACE(testing::Message() << std::hex << from << " to " << to << std::dec << ", " << height);
                PlanarPicture src = MakePlanarPicture(from, 38, height, 2, 8);
                const Z_VID_PROPS props = src.Props();
                Bytes scratch(static_cast<size_t>(PlanesScratch(props, true)));
                PlanarImage image;
                ASSERT_EQ(LoadPlanes(&image, src.memory.data(), Size(src.memory), &props, scratch.data(), Size(scratch)), S_OK);
                PlanarPicture expected = MakePlanarPicture(to, 38, height, 4, 9);
                PlanarPicture found = expected;
                ModelColorConvert(src, 0, 0, expected, 0, 0, 38, height);
                ASSERT_EQ(PackPlanes(&image, found.memory.data(), Size(found.memory), to, static_cast<int32_t>(found.rowBytes)),
                          S_OK);
                ASSERT_EQ(expected.memory, found.memory);
            }
}

TEST(PackPlanes, Failures) {
    PlanarPicture src = MakePlanarPicture(eZFCC_I420, 8, 4, 0, 10);
    const Z_VID_PROPS props = src.Props();
    PlanarImage image;
    Bytes out(400, 7);
    EXPECT_EQ(PackPlanes(&image, out.data(), 400, eZFCC_I420, 8), E_FAIL);
    ASSERT_EQ(LoadPlanes(&image, src.memory.data(), Size(src.memory), &props, nullptr, 0), S_OK);
    EXPECT_EQ(PackPlanes(nullptr, out.data(), 400, eZFCC_I420, 8), E_POINTER);
    EXPECT_EQ(PackPlanes(&image, nullptr, 400, eZFCC_I420, 8), E_POINTER);
    EXPECT_EQ(PackPlanes(&image, out.data(), 400, eZFCC_UYVY, 16), kVfwEInvalidSubtype);
    EXPECT_EQ(PackPlanes(&image, out.data(), 400, eZFCC_v210, 128), kVfwEInvalidSubtype);
    EXPECT_EQ(PackPlanes(&image, out.data(), 400, eZFCC_NV12, 7), kVfwEInvalidMediaType);
    EXPECT_EQ(PackPlanes(&image, out.data(), 400, eZFCC_NV12, -8), kVfwEInvalidMediaType);
    EXPECT_EQ(PackPlanes(&image, out.data(), 47, eZFCC_NV12, 8), kVfwEInvalidMediaType);
    EXPECT_EQ(out, Bytes(400, 7));
}

}    // namespace
}    // namespace zck
