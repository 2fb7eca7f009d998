// Pictures of other formats: brought to 32-bit pixels in scratch, keyed, and left as they are.
#include "tests/support/formats.h"

#include <gtest/gtest.h>

#include "frames/media/pixel_format.h"
#include "imaging/colour/convert.h"
#include "keying/pipeline/pipeline.h"
#include "platform/status.h"
#include "tests/keying/pipeline/image_fixture.h"

namespace zck {
namespace {

using test::GreenKey;
using test::Guarded;

Z_VID_PROPS FormatProps(eZFCC fcc, int32_t width, int32_t height) {
    Z_VID_PROPS props = test::Props(width, height, fcc);
    props.nRowBytes = RowBytes(fcc, width);
    return props;
}

CHROMA_KEY_RAW KeyOf(eCK_Type type) {
    CHROMA_KEY_RAW key = GreenKey();
    key.eType = type;
    key.arrKeys[0].nDelta = 0x00606060;
    return key;
}

TEST(PipelineFormats, AreMeasuredAsTheir32BitPixels) {
    for (const eZFCC fcc : {eZFCC_RGB24, eZFCC_UYVY, eZFCC_HDYC, eZFCC_YUY2, eZFCC_v210}) {
        for (const eCK_Type type : {eCKT_RGB, eCKT_HLS, eCKT_YUV}) {
            for (const int32_t w : {48, 96, 144}) {
                for (const int32_t h : {1, 6, -6}) {
                    const Z_VID_PROPS props = FormatProps(fcc, w, h);
                    Guarded pixels(test::PixelBytes(props));
                    test::FillNoise(pixels.Data(), pixels.Size(), 11);
                    const auto before = pixels.Bytes();
                    Guarded alpha(test::AlphaBytes(props), 0x55);

                    // The picture's 32-bit form, in the same order in memory, keyed by itself.
                    Z_VID_PROPS wide = test::Props(AlphaStride(props), h, eZFCC_RGB32);
                    wide.nWidth = w;
                    if (fcc != eZFCC_RGB24) wide.nHeight = -std::abs(h);
                    Guarded widePixels(test::PixelBytes(wide));
                    ASSERT_EQ(S_OK, ConvertSameGeometry(pixels.Data(), widePixels.Data(), &props, &wide));
                    Guarded wideAlpha(test::AlphaBytes(wide), 0x55);
                    for (const int32_t edges : {0, 2}) {
                        CHROMA_KEY_RAW key = KeyOf(type);
                        key.nEdgesSmooth = h == 1 ? 0 : edges;
                        EXPECT_EQ(S_OK, CK_GetAlphaKeyEx3(pixels.Data(), alpha.Data(), &props, &key, true));
                        EXPECT_EQ(S_OK, CK_GetAlphaKeyEx3(widePixels.Data(), wideAlpha.Data(), &wide, &key, false));
                        EXPECT_EQ(wideAlpha.Bytes(), alpha.Bytes()) << fcc << " " << w << "x" << h;
                        EXPECT_EQ(before, pixels.Bytes()) << "there is no alpha byte to write";
                    }
                    EXPECT_TRUE(pixels.GuardsHold() && alpha.GuardsHold());
                }
            }
        }
    }
}

TEST(PipelineFormats, AStandardFormatInTheRecordDoesNotChangeTheSize) {
    for (const int32_t h : {1, 4}) {
        Z_VID_PROPS props = FormatProps(eZFCC_UYVY, 48, h);
        props.eVideoFormat = eZVF_HD1080_50i;
        props.eInterlace = eZI_Default;
        Guarded pixels(test::PixelBytes(props));
        Guarded alpha(test::AlphaBytes(props), 0x55);
        const CHROMA_KEY_RAW key = KeyOf(eCKT_RGB);
        EXPECT_EQ(S_OK, CK_GetAlphaKeyEx3(pixels.Data(), alpha.Data(), &props, &key, true));
        EXPECT_TRUE(alpha.GuardsHold());
        EXPECT_NE(0x55, alpha.Data()[static_cast<size_t>(48 * h - 1)]);
    }
}

TEST(PipelineFormats, WithoutAWayTo32BitPixelsAreRefused) {
    const auto refused = [](const FormatRow &row) { return row.nPixelBits != 0 && row.route == RouteClass::None; };
    for (const eZFCC fcc : test::FormatsWhere(refused)) {
        const Z_VID_PROPS props = FormatProps(fcc, 64, 4);
        Guarded pixels(2 * test::PixelBytes(props));
        Guarded alpha(test::AlphaBytes(props), 0x55);
        CHROMA_KEY_RAW key = KeyOf(eCKT_RGB);
        EXPECT_EQ(kVfwEInvalidSubtype, CK_GetAlphaKeyEx3(pixels.Data(), alpha.Data(), &props, &key, true)) << fcc;
        EXPECT_EQ(0x55, alpha.Data()[0]);
        key.nKeysUsed = 0;
        EXPECT_EQ(S_FALSE, CK_GetAlphaKeyEx3(pixels.Data(), alpha.Data(), &props, &key, true)) << "nothing is converted then";
        EXPECT_EQ(255, alpha.Data()[0]);
    }
}

TEST(PipelineFormats, EveryWidthStaysInside) {
    const auto converted = [](const FormatRow &row) { return row.route != RouteClass::None && !row.Is32(); };
    for (const eZFCC fcc : test::FormatsWhere(converted)) {
        for (int32_t w = 1; w <= 40; ++w) {
            for (const int32_t fields : {0, 1}) {
                const Z_VID_PROPS props = FormatProps(fcc, w, 7);
                Guarded pixels(test::PixelBytes(props));
                Guarded alpha(test::AlphaBytes(props), 0x55);
                CHROMA_KEY_RAW key = KeyOf(eCKT_HLS);
                key.nInterlacedVideo = fields;
                key.nInverseKey = 1;
                key.nEdgesSmooth = w >= 3 ? 3 : 0;
                EXPECT_EQ(S_OK, CK_GetAlphaKeyEx3(pixels.Data(), alpha.Data(), &props, &key, true)) << fcc << " " << w;
                EXPECT_TRUE(pixels.GuardsHold() && alpha.GuardsHold());
            }
        }
    }
}

TEST(PipelineFormats, ScratchKeepsWhatAnEarlierStageLeftInIt) {
    // A 24-bit picture in the HLS space: alpha is gathered in the plane that had the 32-bit picture before, and the columns
    // that are not measured show its bytes.
    const Z_VID_PROPS props = FormatProps(eZFCC_RGB24, 20, 5);
    Guarded pixels(test::PixelBytes(props));
    test::FillNoise(pixels.Data(), pixels.Size(), 4);
    Guarded alpha(test::AlphaBytes(props), 0x55);
    CHROMA_KEY_RAW key = KeyOf(eCKT_HLS);
    key.nEdgesSmooth = 1;
    ASSERT_EQ(20, AlphaStride(props));
    EXPECT_EQ(S_OK, CK_GetAlphaKeyEx3(pixels.Data(), alpha.Data(), &props, &key, true));
    const Z_VID_PROPS wide = test::Props(20, 5, eZFCC_RGB32);
    Guarded widePixels(test::PixelBytes(wide));
    ASSERT_EQ(S_OK, ConvertSameGeometry(pixels.Data(), widePixels.Data(), &props, &wide));
    for (int32_t y = 0; y < 5; ++y) {
        EXPECT_EQ(widePixels.Data()[y * 20 + 19], alpha.Data()[y * 20 + 19]) << y;
    }
}

}    // namespace
}    // namespace zck
