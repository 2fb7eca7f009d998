#include "imaging/convert/img_convert.h"

#include <gtest/gtest.h>

#include "frames/media/pixel_format.h"
#include "platform/status.h"
#include "tests/imaging/colour/planes_model.h"
#include "tests/support/formats.h"

namespace zck {
namespace {

using test::MakePlanarPicture;
using test::ModelColorConvert;
using test::PlanarPicture;

HRESULT Convert(const PlanarPicture &src, PlanarPicture &dst) {
    ImgScaleState state;
    const Z_VID_PROPS sp = src.Props(), tp = dst.Props();
    return ImgConvert(&state, src.memory.data(), static_cast<int64_t>(src.memory.size()), dst.memory.data(),
                      static_cast<int64_t>(dst.memory.size()), &sp, &tp);
}

TEST(ImgConvert, ImagesOfOneSize) {
    const std::vector<eZFCC> kFormats = test::PictureFormats();
    uint32_t seed = 0;
    for (const eZFCC from : kFormats)
        for (const eZFCC to : kFormats)
            for (const int32_t width : {34, 35})
                for (const int32_t height : {-7, 7}) {
                    SCOPED_TRACE(testing::Message()
                                 << std::hex << from << " to " << to << std::dec << ", " << width << " by " << height);
                    if (from == to) continue;
                    // Rows that are no whole number of pixels.
                    PlanarPicture src = MakePlanarPicture(from, width, height, 5, ++seed);
                    PlanarPicture expected = MakePlanarPicture(to, width, height, 7, ++seed);
                    PlanarPicture found = expected;
                    const int32_t columns = src.IsRgb() && expected.IsRgb() ? width : 34;
                    ModelColorConvert(src, 0, 0, expected, 0, 0, columns, 7);
                    ASSERT_EQ(Convert(src, found), S_OK);
                    ASSERT_EQ(expected.memory, found.memory);
                }
}

TEST(ImgConvert, NothingToConvert) {
    PlanarPicture column = MakePlanarPicture(eZFCC_I420, 1, 4, 0, 1);
    PlanarPicture target = MakePlanarPicture(eZFCC_ARGB32, 1, -4, 0, 2);
    const PlanarPicture before = target;
    EXPECT_EQ(Convert(column, target), S_FALSE);
    EXPECT_EQ(before.memory, target.memory);
}

TEST(ImgConvert, FormatsThatAreNotServedSucceed) {
    PlanarPicture src = MakePlanarPicture(eZFCC_ARGB32, 8, -4, 0, 1);
    PlanarPicture dst = MakePlanarPicture(eZFCC_ARGB32, 64, -4, 0, 2);
    dst.width = 8;
    dst.fcc = eZFCC_r210;
    const PlanarPicture before = dst;
    EXPECT_EQ(Convert(src, dst), S_OK);
    EXPECT_EQ(before.memory, dst.memory);
}

TEST(ImgConvert, Failures) {
    ImgScaleState state;
    PlanarPicture src = MakePlanarPicture(eZFCC_I420, 8, 4, 0, 1);
    PlanarPicture dst = MakePlanarPicture(eZFCC_ARGB32, 8, -4, 0, 2);
    const PlanarPicture before = dst;
    Z_VID_PROPS sp = src.Props(), tp = dst.Props();
    const uint8_t *const s = src.memory.data();
    uint8_t *const d = dst.memory.data();
    EXPECT_EQ(ImgConvert(nullptr, s, 48, d, 128, &sp, &tp), E_INVALIDARG);
    EXPECT_EQ(ImgConvert(&state, nullptr, 48, d, 128, &sp, &tp), E_INVALIDARG);
    EXPECT_EQ(ImgConvert(&state, s, 48, nullptr, 128, &sp, &tp), E_INVALIDARG);
    EXPECT_EQ(ImgConvert(&state, s, 48, d, 128, nullptr, &tp), E_INVALIDARG);
    EXPECT_EQ(ImgConvert(&state, s, 48, d, 128, &sp, nullptr), E_INVALIDARG);
    EXPECT_EQ(ImgConvert(&state, s, 47, d, 128, &sp, &tp), kVfwEInvalidMediaType);
    EXPECT_EQ(ImgConvert(&state, s, 48, d, 127, &sp, &tp), kVfwEInvalidMediaType);
    Z_VID_PROPS other = tp;
    other.nHeight = -3;
    EXPECT_EQ(ImgConvert(&state, s, 48, d, 128, &sp, &other), E_INVALIDARG);
    other = sp;
    other.nRowBytes = 0;
    EXPECT_EQ(ImgConvert(&state, s, 48, d, 128, &other, &tp), E_UNEXPECTED);
    other = sp;
    other.nWidth = -8;
    EXPECT_EQ(ImgConvert(&state, s, 48, d, 128, &other, &tp), E_UNEXPECTED);
    EXPECT_EQ(before.memory, dst.memory);
}

}    // namespace
}    // namespace zck
