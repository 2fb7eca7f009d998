// Keys that move spill: the picture is changed between measuring and merging, and the alpha is that of the same key without.
#include <gtest/gtest.h>

#include "frames/media/pixel_format.h"
#include "imaging/colour/convert.h"
#include "keying/kernels/kernels.h"
#include "keying/pipeline/pipeline.h"
#include "platform/status.h"
#include "tests/keying/pipeline/image_fixture.h"
#include "tests/keying/spill/witness.h"

namespace zck {
namespace {

using test::Guarded;

Z_VID_PROPS Props(eZFCC fcc, int32_t width, int32_t height, int32_t pad = 0) {
    Z_VID_PROPS props = test::Props(width, height, fcc);
    props.nRowBytes = RowBytes(fcc, width) + 4 * pad;
    return props;
}

CHROMA_KEY_RAW SpillKey(eCK_Type type, int32_t cancel, int32_t keys) {
    CHROMA_KEY_RAW key = test::GreenKey();
    key.eType = type;
    key.bColorCancel = cancel;
    key.nKeysUsed = keys;
    for (int32_t i = 0; i < keys; ++i) {
        SINGLE_KEY &e = key.arrKeys[i];
        e = key.arrKeys[0];
        if (type == eCKT_HLS) e.nValue = 0x00B07058;
        if (type == eCKT_YUV) e.nValue = 0x00404078;
        e.nValue += i * 0x000A0A0A;
        e.nCancelRange = 30;
        e.nCancelPower = 90;
        e.nCancelChroma = -40;
        e.nCancelLuma = -13;
    }
    return key;
}

using Bytes = std::vector<uint8_t>;

// The key-space image of a picture, rows of 4 * `AlphaStride`.
Bytes SpaceOf(const Z_VID_PROPS &props, const uint8_t *pixels, eCK_Type type) {
    const int32_t stride = AlphaStride(props);
    const int32_t rows = std::abs(props.nHeight);
    Bytes space(4 * static_cast<size_t>(stride) * static_cast<size_t>(rows));
    Z_VID_PROPS wide = props;
    wide.fccType = eZFCC_RGB32;
    wide.nRowBytes = 4 * stride;
    if (!IsRgbFormat(props.fccType)) wide.nHeight = -rows;
    if (props.fccType == eZFCC_RGB32 || props.fccType == eZFCC_ARGB32) {
        std::copy_n(pixels, space.size(), space.data());
    } else {
        EXPECT_EQ(S_OK, ConvertSameGeometry(pixels, space.data(), &props, &wide));
    }
    if (type == eCKT_RGB) return space;
    KeyingKernels table = {};
    KeyingKernelsInitRef(&table);
    Bytes converted(space.size());
    for (int64_t y = 0; y < rows; ++y) {
        const auto at = static_cast<size_t>(y * 4 * stride);
        (type == eCKT_HLS ? table.to_hls : table.to_yuv)(&converted[at], &space[at], props.nWidth);
    }
    return converted;
}

// Moves the spill of a picture in the long way.
void MoveSpill(const Z_VID_PROPS &props, uint8_t *pixels, const CHROMA_KEY_RAW &key) {
    const int32_t stride = AlphaStride(props);
    const int32_t rows = std::abs(props.nHeight);
    const Bytes space = SpaceOf(props, pixels, key.eType);
    const bool rgb = IsRgbFormat(props.fccType);
    Z_VID_PROPS source = props;
    source.nHeight = -rows;
    Z_VID_PROPS target = source;
    target.fccType = eZFCC_YUY2;
    target.nRowBytes = RowBytes(eZFCC_YUY2, stride);
    Bytes yuv(static_cast<size_t>(target.nRowBytes) * static_cast<size_t>(rows));
    if (rgb) {
        ASSERT_EQ(S_OK, ConvertSameGeometry(pixels, yuv.data(), &source, &target));
    }
    const bool lumaFirst = rgb || props.fccType == eZFCC_YUY2;
    const test::Witness422 image{rgb ? yuv.data() : pixels, rgb ? target.nRowBytes : 2 * stride, lumaFirst};
    ASSERT_TRUE(test::WitnessSpill(key, space, props.nWidth, rows, stride, image));
    if (rgb) {
        ASSERT_EQ(S_OK, ConvertSameGeometry(yuv.data(), pixels, &target, &source));
    }
}

struct Result {
    Bytes pixels;
    Bytes alpha;
};

// The alpha of the key without the move, merged into pixels whose spill was moved before.
Result Expected(const Z_VID_PROPS &props, const Bytes &before, CHROMA_KEY_RAW key, bool writeAlpha) {
    Guarded pixels(before.size());
    std::copy(before.begin(), before.end(), pixels.Data());
    Guarded alpha(test::AlphaBytes(props), 0x55);
    const CHROMA_KEY_RAW with = key;
    key.bColorCancel = 0;
    EXPECT_EQ(S_OK, CK_GetAlphaKeyEx3(pixels.Data(), alpha.Data(), &props, &key, writeAlpha));
    std::copy(before.begin(), before.end(), pixels.Data());
    MoveSpill(props, pixels.Data(), with);
    if (props.fccType == eZFCC_ARGB32 || (props.fccType == eZFCC_RGB32 && writeAlpha)) {
        KeyingKernels table = {};
        KeyingKernelsInitRef(&table);
        for (int64_t y = 0; y < std::abs(props.nHeight); ++y) {
            uint8_t *row = pixels.Data() + y * props.nRowBytes;
            table.merge(row, row, alpha.Data() + y * AlphaStride(props), props.nWidth);
        }
    }
    return {pixels.Bytes(), alpha.Bytes()};
}

void ExpectMoved(const Z_VID_PROPS &props, const CHROMA_KEY_RAW &key, bool writeAlpha = false) {
    Guarded pixels(test::PixelBytes(props));
    Guarded alpha(test::AlphaBytes(props), 0x55);
    if (IsRgbFormat(props.fccType)) {
        test::FillScene(pixels.Data(), pixels.Size(), 5);
    } else {
        test::FillNoise(pixels.Data(), pixels.Size(), 5);
    }
    const Bytes before = pixels.Bytes();
    const Result expected = Expected(props, before, key, writeAlpha);
    EXPECT_EQ(S_OK, CK_GetAlphaKeyEx3(pixels.Data(), alpha.Data(), &props, &key, writeAlpha));
    const auto what = [&] {
        return testing::Message() << std::hex << props.fccType << std::dec << " " << props.nWidth << "x" << props.nHeight
                                  << " row " << props.nRowBytes << " type " << key.eType << " cancel " << key.bColorCancel
                                  << " edges " << key.nEdgesSmooth << " keys " << key.nKeysUsed;
    };
    EXPECT_TRUE(expected.alpha == alpha.Bytes()) << what();
    EXPECT_TRUE(expected.pixels == pixels.Bytes()) << what();
    EXPECT_FALSE(before == pixels.Bytes()) << what();
    EXPECT_TRUE(pixels.GuardsHold() && alpha.GuardsHold()) << what();
}

TEST(SpillStage, MovesColourBetweenMeasuringAndMerging) {
    for (const eZFCC fcc : {eZFCC_ARGB32, eZFCC_RGB32, eZFCC_RGB24, eZFCC_YUY2, eZFCC_UYVY, eZFCC_HDYC}) {
        for (const eCK_Type type : {eCKT_RGB, eCKT_HLS, eCKT_YUV}) {
            for (const int32_t cancel : {1, 2}) {
                for (const int32_t w : {48, 64, 56, 37, 19}) {
                    for (const int32_t edges : {0, 3}) {
                        CHROMA_KEY_RAW key = SpillKey(type, cancel, 1 + w % 3);
                        key.nEdgesSmooth = edges;
                        key.nMinTransparent = 20;
                        key.nInverseKey = w % 4;
                        ExpectMoved(Props(fcc, w, w % 2 != 0 ? -11 : 11, fcc == eZFCC_RGB24 ? 0 : w % 3), key, w % 2 != 0);
                    }
                }
            }
        }
    }
}

TEST(SpillStage, EachFieldIsAPictureOfItsOwn) {
    for (const eCK_Type type : {eCKT_RGB, eCKT_HLS}) {
        CHROMA_KEY_RAW key = SpillKey(type, 1, 2);
        const Z_VID_PROPS props = Props(eZFCC_ARGB32, 48, 21);
        Guarded pixels(test::PixelBytes(props));
        test::FillScene(pixels.Data(), pixels.Size(), 8);
        Bytes expected = pixels.Bytes();
        Guarded alpha(test::AlphaBytes(props));
        Z_VID_PROPS field = props;
        field.nRowBytes *= 2;
        field.nHeight /= 2;
        for (const int first : {0, 1}) {
            Guarded plane(test::AlphaBytes(field));
            EXPECT_EQ(S_OK, CK_GetAlphaKeyEx3(expected.data() + first * props.nRowBytes, plane.Data(), &field, &key, false));
        }
        key.nInterlacedVideo = 1;
        EXPECT_EQ(S_OK, CK_GetAlphaKeyEx3(pixels.Data(), alpha.Data(), &props, &key, false));
        EXPECT_EQ(expected, pixels.Bytes());
    }
}

TEST(SpillStage, AnEntryThatCutsNothingOutLeavesAnOpaquePictureWithoutSpill) {
    CHROMA_KEY_RAW key = SpillKey(eCKT_RGB, 1, 1);
    key.arrKeys[0].nAlpha = 255;
    const Z_VID_PROPS props = Props(eZFCC_ARGB32, 48, 9);
    Guarded pixels(test::PixelBytes(props));
    test::FillScene(pixels.Data(), pixels.Size(), 8);
    Bytes expected = pixels.Bytes();
    MoveSpill(props, expected.data(), key);
    Guarded alpha(test::AlphaBytes(props), 0x55);
    EXPECT_EQ(S_OK, CK_GetAlphaKeyEx3(pixels.Data(), alpha.Data(), &props, &key, false));
    EXPECT_EQ(Bytes(alpha.Size(), 255), alpha.Bytes());
    EXPECT_EQ(expected, pixels.Bytes()) << "the way back from 4:2:2 gives opaque pixels already";
}

TEST(SpillStage, APictureTooNarrowForAMaskEndsTheCall) {
    const CHROMA_KEY_RAW key = SpillKey(eCKT_RGB, 1, 1);
    const Z_VID_PROPS props = Props(eZFCC_ARGB32, 1, 9);
    Guarded pixels(test::PixelBytes(props));
    const Bytes before = pixels.Bytes();
    Guarded alpha(test::AlphaBytes(props));
    EXPECT_EQ(0xFFFFFFFAU, static_cast<uint32_t>(CK_GetAlphaKeyEx3(pixels.Data(), alpha.Data(), &props, &key, false)));
    EXPECT_EQ(before, pixels.Bytes());
}

TEST(SpillStage, WithoutAStrengthNothingIsMoved) {
    CHROMA_KEY_RAW key = SpillKey(eCKT_RGB, 2, 1);
    SINGLE_KEY &e = key.arrKeys[0];
    e.nCancelPower = e.nCancelChroma = e.nCancelLuma = e.nCancelAlpha = 0;
    const Z_VID_PROPS props = Props(eZFCC_RGB32, 48, 9);
    Guarded pixels(test::PixelBytes(props));
    test::FillScene(pixels.Data(), pixels.Size(), 8);
    const Bytes before = pixels.Bytes();
    Guarded alpha(test::AlphaBytes(props));
    EXPECT_EQ(S_OK, CK_GetAlphaKeyEx3(pixels.Data(), alpha.Data(), &props, &key, false));
    EXPECT_EQ(before, pixels.Bytes());
}

}    // namespace
}    // namespace zck
