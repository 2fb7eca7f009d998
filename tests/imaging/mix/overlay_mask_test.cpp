// Masks of pictures, options, places.
#include "imaging/mix/overlay_mask.h"

#include "imaging/mix/overlay_options.h"
#include "imaging/mix/print_place.h"
#include "platform/status.h"
#include "tests/imaging/mix/canvas.h"

namespace zck::test {
namespace {

Bytes MaskOf(const Canvas &picture) {
    const Z_VID_PROPS record = MaskRecord(picture.props);
    Bytes mask(static_cast<size_t>(record.nRowBytes) * static_cast<size_t>(record.nHeight));
    EXPECT_EQ(S_OK, MaskFromPicture(picture.Overlay(), mask.data()));
    return mask;
}

TEST(OverlayMask, IsAsLargeAsThePictureInRowsOfEights) {
    const Z_VID_PROPS odd = MaskRecord(Canvas(eZFCC_RGB24, 13, -5).props);
    EXPECT_EQ(eZFCC_RGB8, odd.fccType);
    EXPECT_EQ(13, odd.nWidth);
    EXPECT_EQ(5, odd.nHeight);
    EXPECT_EQ(16, odd.nRowBytes);
    EXPECT_EQ(12, MaskRecord(Canvas(eZFCC_UYVY, 13, 5).props).nWidth);
}

TEST(OverlayMask, IsTheAlphaOrTheLumaFromTheTop) {
    for (const int32_t height : {-5, 5}) {
        Canvas argb(eZFCC_ARGB32, 13, height);
        Canvas rgb32 = argb;
        rgb32.props.fccType = eZFCC_RGB32;
        Canvas rgb24(eZFCC_RGB24, 13, height, 4);
        Canvas rgb8(eZFCC_RGB8, 13, height, 5, 3);
        const Bytes alpha = MaskOf(argb), luma = MaskOf(rgb32), luma24 = MaskOf(rgb24), plain = MaskOf(rgb8);
        for (int64_t y = 0; y < 5; ++y)
            for (int64_t x = 0; x < 13; ++x) {
                const auto i = static_cast<size_t>(16 * y + x);
                const auto y601 = [](const uint8_t *p) { return (257 * p[2] + 504 * p[1] + 98 * p[0] + 16500) / 1000; };
                ASSERT_EQ(alpha[i], argb.At(x, y)[3]);
                ASSERT_EQ(luma[i], y601(argb.At(x, y)));
                ASSERT_EQ(luma24[i], y601(rgb24.At(x, y)));
                ASSERT_EQ(plain[i], *rgb8.At(x, y));
            }
    }
    for (const eZFCC fcc : {eZFCC_UYVY, eZFCC_HDYC, eZFCC_YUY2, eZFCC_YVYU}) {
        Canvas yuv(fcc, 12, 3);
        const Bytes luma = MaskOf(yuv);
        const int at = fcc == eZFCC_UYVY || fcc == eZFCC_HDYC ? 1 : 0;
        for (int64_t x = 0; x < 12; ++x) EXPECT_EQ(luma[static_cast<size_t>(32 + x)], yuv.At(x, 2)[at]) << x;
    }
    Canvas i420(eZFCC_I420, 12, 4);
    EXPECT_EQ(MaskOf(i420)[16 + 3], i420.memory[12 + 3]);
}

TEST(OverlayMask, OtherFormatsHaveNone) {
    uint8_t none = 0;
    for (const eZFCC fcc : {eZFCC_v210, eZFCC_r210, kFccRgb565})
        EXPECT_EQ(E_INVALIDARG, MaskFromPicture(Canvas(fcc, 64, 4).Overlay(), &none)) << fcc;
}

TEST(OverlayMask, AMaskIsUsableWhenItsBytesAreThere) {
    Canvas mask(eZFCC_RGB8, 16, 4);
    MixOverlay image = mask.Overlay();
    EXPECT_TRUE(MaskUsable(image));
    image.bytes = 63;
    EXPECT_FALSE(MaskUsable(image));
    image = mask.Overlay();
    image.props.fccType = eZFCC_ARGB32;
    EXPECT_FALSE(MaskUsable(image));
    image = {mask.props, nullptr, 0};
    EXPECT_FALSE(MaskUsable(image));
}

TEST(OverlayMask, AnEvenMaskStaysSoWhenItIsScaled) {
    Canvas mask(eZFCC_RGB8, 16, 4);
    mask.Fill({77});
    Canvas scaled(eZFCC_RGB8, 24, 9);
    EXPECT_EQ(S_OK, MaskScale(mask.Overlay(), scaled.props, scaled.memory.data()));
    EXPECT_EQ(scaled.memory, Bytes(24 * 9, 77));
}

OverlayOptions Read(const char *text, int32_t flags = 0) { return OverlayOptionsFromText(TextFromUtf8(text), flags); }

TEST(OverlayOptions, Defaults) {
    const OverlayOptions none = Read("");
    EXPECT_TRUE(none.audio && none.symmetricGain && none.video);
    EXPECT_FALSE(none.async || none.audioGain);
    EXPECT_FALSE(Read("", kOverlaySecondField).audio);
    EXPECT_FALSE(Read("video=true", kOverlayFirstField | kOverlaySecondField).audio);
    EXPECT_TRUE(Read("audio=true", kOverlaySecondField).audio);
}

TEST(OverlayOptions, AreRead) {
    const OverlayOptions all = Read("audio=false audio_gain='-6.5' symmetric_gain=0 async=yes video=off");
    EXPECT_FALSE(all.audio || all.symmetricGain || all.video);
    EXPECT_TRUE(all.async);
    EXPECT_EQ(-6.5, all.audioGain);
    EXPECT_FALSE(Read("audio_gain=loud").audioGain);
    EXPECT_FALSE(Read("audio_gain=").audioGain);
    EXPECT_EQ(3.0, Read("audio_gain=3").audioGain);
}

TEST(PrintPlace, PixelsFractionsAndGrids) {
    Z_VID_PROPS frame = {};
    frame.nWidth = 200;
    frame.nHeight = -100;
    PrintPlace place = PrintPlaceOf({10, 20, 30, 40, 0}, frame, 0.55);
    EXPECT_EQ(10, place.left);
    EXPECT_EQ(60, place.bottom);
    EXPECT_EQ(0, place.rowHeight);
    EXPECT_EQ(10, PrintPlaceOf({10, 20, 30, 40, -7}, frame, 0.55).left);
    place = PrintPlaceOf({0.5, 0.25, 0.5, 0.5, 1}, frame, 0.55);
    EXPECT_EQ(100, place.left);
    EXPECT_EQ(25, place.top);
    EXPECT_EQ(200, place.right);
    EXPECT_EQ(75, place.bottom);
    place = PrintPlaceOf({2, 1, 3, 1, 2}, frame, 0.55);
    const double row = 86.0 / 14;
    EXPECT_DOUBLE_EQ(row, place.rowHeight);
    EXPECT_DOUBLE_EQ(14 + 2 * 0.55 * row, place.left);
    EXPECT_DOUBLE_EQ(7 + row, place.top);
    EXPECT_DOUBLE_EQ(14 + 5 * 0.55 * row, place.right);
    EXPECT_DOUBLE_EQ(86.0 / 10, PrintPlaceOf({0, 0, 1, 1, 10}, frame, 0).rowHeight);
    EXPECT_DOUBLE_EQ(14 + 0.86, PrintPlaceOf({1, 0, 1, 1, 10}, frame, 0).left);
}

TEST(PrintPlace, CoordinatesAreTruncatedToWholePixels) {
    EXPECT_EQ(3, PrintPixel(3.9));
    EXPECT_EQ(-3, PrintPixel(-3.9));
    EXPECT_EQ(INT32_MAX, PrintPixel(1e300));
    EXPECT_EQ(INT32_MIN, PrintPixel(-1e300));
    EXPECT_EQ(0, PrintPixel(std::numeric_limits<double>::quiet_NaN()));
}

}    // namespace
}    // namespace zck::test
