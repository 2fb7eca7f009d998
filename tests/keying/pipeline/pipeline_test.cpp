#include "keying/pipeline/pipeline.h"

#include <gtest/gtest.h>

#include "platform/status.h"
#include "tests/keying/pipeline/image_fixture.h"

namespace zck {
namespace {

using test::FillScene;
using test::GreenKey;
using test::Guarded;
using test::Props;

/// One picture with its plane; the plane holds 0x55 before the call.
struct Image {
    explicit Image(const Z_VID_PROPS &p, uint32_t seed = 1)
        : props(p), pixels(test::PixelBytes(p)), alpha(test::AlphaBytes(p), 0x55) {
        FillScene(pixels.Data(), pixels.Size(), seed);
        before = pixels.Bytes();
    }
    HRESULT Key(const CHROMA_KEY_RAW &key, bool writeAlpha = false) {
        return CK_GetAlphaKeyEx3(pixels.Data(), alpha.Data(), &props, &key, writeAlpha);
    }
    void SetPixel(int32_t x, int32_t y, uint8_t b, uint8_t g, uint8_t r) {
        uint8_t *p = pixels.Data() + int64_t{y} * props.nRowBytes + 4 * x;
        p[0] = b;
        p[1] = g;
        p[2] = r;
        p[3] = 9;
    }
    void Paint(uint8_t b, uint8_t g, uint8_t r) {
        for (int32_t x = 0; x < props.nWidth; ++x) SetPixel(x, 0, b, g, r);
    }
    uint8_t Alpha(int32_t x, int32_t y) const { return alpha.Data()[int64_t{y} * AlphaStride(props) + x]; }
    uint8_t PixelAlpha(int32_t x, int32_t y) const { return pixels.Data()[int64_t{y} * props.nRowBytes + 4 * x + 3]; }
    uint8_t OldAlpha(int32_t x, int32_t y) const { return before[static_cast<size_t>(y * props.nRowBytes + 4 * x + 3)]; }

    Z_VID_PROPS props;
    Guarded pixels;
    Guarded alpha;
    std::vector<uint8_t> before;
};

/// The key of the worked numbers: centre 100, half-axes 40, smooth range 20.
CHROMA_KEY_RAW GreyKey() {
    CHROMA_KEY_RAW key = GreenKey();
    key.arrKeys[0].nValue = 0x00646464;
    return key;
}

TEST(Pipeline, RefusesNullArguments) {
    Image image(Props(16, 2));
    const CHROMA_KEY_RAW key = GreenKey();
    EXPECT_EQ(E_POINTER, CK_GetAlphaKeyEx3(nullptr, image.alpha.Data(), &image.props, &key, false));
    EXPECT_EQ(E_POINTER, CK_GetAlphaKeyEx3(image.pixels.Data(), nullptr, &image.props, &key, false));
    EXPECT_EQ(E_POINTER, CK_GetAlphaKeyEx3(image.pixels.Data(), image.alpha.Data(), nullptr, &key, false));
    EXPECT_EQ(E_POINTER, CK_GetAlphaKeyEx3(image.pixels.Data(), image.alpha.Data(), &image.props, nullptr, false));
}

TEST(Pipeline, TypesThatKeyNothingTouchNothing) {
    for (const eCK_Type type : {eCKT_Alpha, eCKT_None, eCKT_Auto, static_cast<eCK_Type>(77), static_cast<eCK_Type>(-1)}) {
        Image image(Props(16, 2));
        CHROMA_KEY_RAW key = GreenKey();
        key.eType = type;
        EXPECT_EQ(S_FALSE, image.Key(key, true));
        EXPECT_EQ(image.before, image.pixels.Bytes());
        EXPECT_EQ(std::vector<uint8_t>(32, 0x55), image.alpha.Bytes());
    }
}

TEST(Pipeline, WorkedDistancesReachPlaneAndPixels) {
    Image image(Props(16, 1));
    image.Paint(100, 100, 100);
    image.SetPixel(1, 0, 100, 139, 100);
    image.SetPixel(2, 0, 100, 141, 100);
    image.SetPixel(3, 0, 100, 150, 100);
    image.SetPixel(4, 0, 100, 160, 100);
    EXPECT_EQ(S_OK, image.Key(GreyKey()));
    const uint8_t expected[] = {0, 0, 51, 172, 255, 0};
    for (int32_t x = 0; x < 6; ++x) {
        EXPECT_EQ(expected[x], image.Alpha(x, 0)) << x;
        EXPECT_EQ(expected[x], image.PixelAlpha(x, 0)) << x;
    }
}

TEST(Pipeline, WithoutKeysThePlaneIsOpaqueAndThePixelsStay) {
    for (const int32_t used : {0, -5}) {
        Image image(Props(19, 3, eZFCC_ARGB32, 2));
        CHROMA_KEY_RAW key = GreenKey();
        key.nKeysUsed = used;
        key.nInverseKey = 1;
        EXPECT_EQ(S_FALSE, image.Key(key, true));
        EXPECT_EQ(image.before, image.pixels.Bytes());
        for (int32_t y = 0; y < 3; ++y) {
            for (int32_t x = 0; x < 21; ++x) EXPECT_EQ(x < 19 ? 255 : 0x55, image.Alpha(x, y));
        }
    }
}

TEST(Pipeline, ACountOf20KeysIsReadAs16) {
    CHROMA_KEY_RAW key = GreenKey();
    for (SINGLE_KEY &entry : key.arrKeys) entry = key.arrKeys[0];
    key.arrKeys[15].nValue = 0x00101010;
    key.nKeysUsed = 16;
    Image sixteen(Props(32, 4));
    EXPECT_EQ(S_OK, sixteen.Key(key));
    key.nKeysUsed = 20;
    Image twenty(Props(32, 4));
    EXPECT_EQ(S_OK, twenty.Key(key));
    EXPECT_EQ(sixteen.alpha.Bytes(), twenty.alpha.Bytes());
}

TEST(Pipeline, EntriesWithNoWidthOrFullAlphaAreOff) {
    CHROMA_KEY_RAW key = GreenKey();
    key.arrKeys[0].nDelta = 0;
    Image noWidth(Props(16, 2));
    EXPECT_EQ(S_FALSE, noWidth.Key(key));
    key = GreenKey();
    key.arrKeys[0].nAlpha = 255;
    Image full(Props(16, 2));
    EXPECT_EQ(S_FALSE, full.Key(key));
}

TEST(Pipeline, AlphaGoesToRgb32OnlyWhenAsked) {
    Image quiet(Props(16, 1, eZFCC_RGB32));
    EXPECT_EQ(S_OK, quiet.Key(GreenKey(), false));
    EXPECT_EQ(quiet.before, quiet.pixels.Bytes());
    Image asked(Props(16, 1, eZFCC_RGB32));
    EXPECT_EQ(S_OK, asked.Key(GreenKey(), true));
    EXPECT_NE(asked.before, asked.pixels.Bytes());
    for (int32_t x = 0; x < 16; ++x) EXPECT_EQ(asked.Alpha(x, 0), asked.PixelAlpha(x, 0));
}

TEST(Pipeline, ATopThresholdOf0MakesAHardKey) {
    CHROMA_KEY_RAW key = GreenKey();
    key.nMaxTransparent = 0;
    Image image(Props(64, 4));
    EXPECT_EQ(S_OK, image.Key(key));
    for (const uint8_t a : image.alpha.Bytes()) EXPECT_TRUE(a == 0 || a == 255);
}

TEST(Pipeline, CrossedThresholdsEndAMiddleValueAt255) {
    Image image(Props(16, 1));
    image.Paint(100, 150, 100);
    CHROMA_KEY_RAW key = GreyKey();
    key.nMinTransparent = 200;
    key.nMaxTransparent = 100;
    EXPECT_EQ(S_OK, image.Key(key));
    EXPECT_EQ(255, image.Alpha(0, 0));
}

TEST(Pipeline, ThresholdsOfAnySizeCompareAsIntegers) {
    Image image(Props(16, 1));
    image.Paint(100, 150, 100);
    CHROMA_KEY_RAW key = GreyKey();
    key.nMinTransparent = 1000;
    EXPECT_EQ(S_OK, image.Key(key));
    EXPECT_EQ(0, image.Alpha(0, 0));
    key.nMinTransparent = -4;
    key.nMaxTransparent = -4;
    Image other(Props(16, 1));
    EXPECT_EQ(S_OK, other.Key(key));
    for (const uint8_t a : other.alpha.Bytes()) EXPECT_EQ(255, a);
}

TEST(Pipeline, AReverseKeyOfTheSameColourKeepsItOpaque) {
    Image image(Props(16, 1));
    image.Paint(100, 100, 100);
    CHROMA_KEY_RAW key = GreyKey();
    key.nKeysUsed = 2;
    key.arrKeys[1] = key.arrKeys[0];
    key.arrKeys[1].nReverseKey = 1;
    EXPECT_EQ(S_OK, image.Key(key));
    for (int32_t x = 0; x < 16; ++x) EXPECT_EQ(255, image.Alpha(x, 0));
}

TEST(Pipeline, AReverseKeyProtectsWhatIsNotMeasured) {
    // Right of the last block the reverse plane reads 0, which is inverted to full protection, but for the tail's first byte.
    Image image(Props(20, 2, eZFCC_ARGB32, 4));
    CHROMA_KEY_RAW key = GreyKey();
    key.nKeysUsed = 2;
    key.arrKeys[1] = key.arrKeys[0];
    key.arrKeys[1].nReverseKey = 1;
    EXPECT_EQ(S_OK, image.Key(key));
    for (int32_t y = 0; y < 2; ++y) {
        EXPECT_EQ(0x55, image.Alpha(16, y));
        for (int32_t x = 17; x < 20; ++x) EXPECT_EQ(255, image.Alpha(x, y));
        EXPECT_EQ(0x55, image.Alpha(20, y)) << "the sum ends at the width";
    }
}

TEST(Pipeline, ASecondKeyJoinsByWholeBlocksOf16) {
    // 24 columns: the distance reaches all of them, the join only 16.
    Image image(Props(24, 1));
    image.Paint(10, 10, 10);
    CHROMA_KEY_RAW key = GreyKey();
    key.nKeysUsed = 2;
    key.arrKeys[1] = key.arrKeys[0];
    key.arrKeys[1].nValue = 0x000A0A0A;
    key.arrKeys[1].nAlpha = 30;
    EXPECT_EQ(S_OK, image.Key(key));
    EXPECT_EQ(30, image.Alpha(15, 0));
    EXPECT_EQ(255, image.Alpha(16, 0));
}

TEST(Pipeline, AlphaOfTheFirstKeyIsAddedOverTheWholeWidth) {
    // 20 columns: 16 are measured, 4 keep what the plane held, and the addend reaches them as well.
    Image image(Props(20, 1));
    image.Paint(100, 100, 100);
    CHROMA_KEY_RAW key = GreyKey();
    key.arrKeys[0].nAlpha = 256 + 7;
    EXPECT_EQ(S_OK, image.Key(key));
    EXPECT_EQ(7, image.Alpha(15, 0));
    EXPECT_EQ(0x55 + 7, image.Alpha(16, 0));
    EXPECT_EQ(0x55 + 7, image.PixelAlpha(19, 0));
}

TEST(Pipeline, RightColumnsKeepWhatThePlaneHeld) {
    for (int32_t w = 0; w <= 40; ++w) {
        Image image(Props(w, 2, eZFCC_ARGB32, 8));
        image.alpha = Guarded(image.alpha.Size(), 0x55);
        EXPECT_EQ(S_OK, image.Key(GreenKey())) << w;
        const int32_t measured = (w + 3) / 4 * 4 / 8 * 8;
        for (int32_t y = 0; y < 2; ++y) {
            for (int32_t x = measured; x < w + 8; ++x) EXPECT_EQ(0x55, image.Alpha(x, y)) << w << " " << x;
        }
        EXPECT_TRUE(image.alpha.GuardsHold() && image.pixels.GuardsHold());
    }
}

TEST(Pipeline, SevenColumnsAreMeasuredWhereEightHaveRoom) {
    Image narrow(Props(7, 1));
    EXPECT_EQ(S_OK, narrow.Key(GreenKey()));
    EXPECT_EQ(0x55, narrow.Alpha(0, 0));
    Image roomy(Props(7, 1, eZFCC_ARGB32, 1));
    roomy.Paint(0x30, 0xC0, 0x20);
    EXPECT_EQ(S_OK, roomy.Key(GreenKey()));
    EXPECT_EQ(0, roomy.Alpha(0, 0));
}

TEST(Pipeline, TheMergeLeavesItsGap) {
    Image image(Props(27, 1));
    EXPECT_EQ(S_OK, image.Key(GreenKey()));
    for (int32_t x = 0; x < 27; ++x) {
        const bool gap = x >= 16 && x < 24;
        EXPECT_EQ(gap ? image.OldAlpha(x, 0) : image.Alpha(x, 0), image.PixelAlpha(x, 0)) << x;
    }
}

TEST(Pipeline, TheInversionSlipsIntoTheNextRow) {
    // 18 columns without padding: the tail starts at 17, and its last byte is the next row's first.
    Image plain(Props(18, 3));
    Image inverted(Props(18, 3));
    CHROMA_KEY_RAW key = GreenKey();
    EXPECT_EQ(S_OK, plain.Key(key));
    key.nInverseKey = 1;
    EXPECT_EQ(S_OK, inverted.Key(key));
    for (int32_t y = 0; y < 3; ++y) {
        // Inverted by the row above and again by its own row, but for the first.
        EXPECT_EQ(y == 0 ? 255 - plain.Alpha(0, y) : plain.Alpha(0, y), inverted.Alpha(0, y));
        for (int32_t x = 1; x < 16; ++x) EXPECT_EQ(255 - plain.Alpha(x, y), inverted.Alpha(x, y));
        EXPECT_EQ(plain.Alpha(16, y), inverted.Alpha(16, y));
        EXPECT_EQ(255 - plain.Alpha(17, y), inverted.Alpha(17, y));
    }
    EXPECT_TRUE(inverted.alpha.GuardsHold());
}

TEST(Pipeline, NegativeRoundsGatherInScratchAndLeaveThePlane) {
    Image image(Props(16, 4));
    CHROMA_KEY_RAW key = GreenKey();
    key.nEdgesSmooth = -1;
    EXPECT_EQ(S_OK, image.Key(key));
    for (const uint8_t a : image.alpha.Bytes()) EXPECT_EQ(0x55, a);
    for (int32_t x = 0; x < 16; ++x) EXPECT_EQ(0x55, image.PixelAlpha(x, 0));
}

TEST(Pipeline, SmoothingWithoutInteriorIsAFailure) {
    for (const auto &[w, h] : {std::pair{2, 8}, {16, 2}, {0, 0}, {1, 1}, {16, 0}}) {
        Image image(Props(w, h));
        CHROMA_KEY_RAW key = GreenKey();
        key.nEdgesSmooth = 1;
        EXPECT_EQ(StatusOf(0xFFFFFFFA), image.Key(key)) << w << "x" << h;
        for (const uint8_t a : image.alpha.Bytes()) EXPECT_EQ(0x55, a);
    }
}

TEST(Pipeline, SmoothingTakesNothingFromThePlane) {
    // The columns that are not measured come from scratch, which reads as 0.
    Image image(Props(20, 5));
    CHROMA_KEY_RAW key = GreenKey();
    key.nEdgesSmooth = 1;
    EXPECT_EQ(S_OK, image.Key(key));
    for (int32_t y = 0; y < 5; ++y) EXPECT_EQ(0, image.Alpha(19, y));
}

TEST(Pipeline, OneRoundIsTheGaussFilterAlone) {
    Image plain(Props(32, 9));
    Image smooth(Props(32, 9));
    CHROMA_KEY_RAW key = GreenKey();
    EXPECT_EQ(S_OK, plain.Key(key));
    key.nEdgesSmooth = 1;
    EXPECT_EQ(S_OK, smooth.Key(key));
    for (int32_t y = 0; y < 9; ++y) {
        for (int32_t x = 0; x < 32; ++x) {
            int32_t expected = plain.Alpha(x, y);
            if (x > 0 && x < 31 && y > 0 && y < 8) {
                int32_t s = 0;
                for (int32_t j = -1; j <= 1; ++j) {
                    for (int32_t i = -1; i <= 1; ++i) s += plain.Alpha(x + i, y + j) * (2 - i * i) * (2 - j * j);
                }
                expected = (s + 7 + ((s >> 4) & 1)) >> 4;
            }
            EXPECT_EQ(expected, smooth.Alpha(x, y)) << x << "," << y;
        }
    }
}

TEST(Pipeline, FieldsAreKeyedApartAndAnOddLastLineIsLeft) {
    Image image(Props(32, 7));
    CHROMA_KEY_RAW key = GreenKey();
    key.nInterlacedVideo = 1;
    key.nEdgesSmooth = 2;
    Image upper(Props(32, 3));
    Image lower(Props(32, 3));
    for (int32_t y = 0; y < 3; ++y) {
        std::copy_n(image.pixels.Data() + 256 * y, 128, upper.pixels.Data() + 128 * y);
        std::copy_n(image.pixels.Data() + 256 * y + 128, 128, lower.pixels.Data() + 128 * y);
    }
    EXPECT_EQ(S_OK, image.Key(key));
    key.nInterlacedVideo = 0;
    EXPECT_EQ(S_OK, upper.Key(key));
    EXPECT_EQ(S_OK, lower.Key(key));
    for (int32_t x = 0; x < 32; ++x) {
        for (int32_t y = 0; y < 3; ++y) {
            EXPECT_EQ(upper.Alpha(x, y), image.Alpha(x, 2 * y));
            EXPECT_EQ(lower.Alpha(x, y), image.Alpha(x, 2 * y + 1));
        }
        EXPECT_EQ(0x55, image.Alpha(x, 6));
        EXPECT_EQ(image.OldAlpha(x, 6), image.PixelAlpha(x, 6));
    }
}

TEST(Pipeline, TheRoundedWidthOfAFieldReachesIntoTheOther) {
    // 5 columns are rounded to 8 where the row pitch is doubled: three bytes of each next row are measured anew, after
    // an addend had been put on them.
    Image image(Props(5, 4));
    CHROMA_KEY_RAW key = GreenKey();
    key.arrKeys[0].nAlpha = 10;
    key.nInterlacedVideo = 1;
    EXPECT_EQ(S_OK, image.Key(key));
    Image lines(Props(24, 1));
    CHROMA_KEY_RAW bare = key;
    bare.nInterlacedVideo = 0;
    bare.arrKeys[0].nAlpha = 0;
    std::copy_n(image.before.data(), 80, lines.pixels.Data());
    EXPECT_EQ(S_OK, lines.Key(bare));
    const auto added = [](int32_t a) { return std::min(a + 10, 255); };
    // Field 1 runs last: its rows have the addend, its rounded bytes lie bare on field 0's second row.
    for (int32_t x = 0; x < 5; ++x) EXPECT_EQ(added(lines.Alpha(5 + x, 0)), image.Alpha(x, 1)) << x;
    for (int32_t x = 0; x < 3; ++x) EXPECT_EQ(lines.Alpha(10 + x, 0), image.Alpha(x, 2)) << x;
    for (int32_t x = 3; x < 5; ++x) EXPECT_EQ(added(lines.Alpha(10 + x, 0)), image.Alpha(x, 2)) << x;
    EXPECT_TRUE(image.alpha.GuardsHold());
}

TEST(Pipeline, RowOrderChangesNothingInMemory) {
    for (const eCK_Type type : {eCKT_RGB, eCKT_HLS, eCKT_YUV}) {
        CHROMA_KEY_RAW key = GreenKey();
        key.eType = type;
        key.nEdgesSmooth = 3;
        Image up(Props(37, 9));
        Image down(Props(37, -9));
        EXPECT_EQ(S_OK, up.Key(key));
        EXPECT_EQ(S_OK, down.Key(key));
        EXPECT_EQ(up.alpha.Bytes(), down.alpha.Bytes());
        EXPECT_EQ(up.pixels.Bytes(), down.pixels.Bytes());
    }
}

void ExpectRefused(void (*change)(Z_VID_PROPS &)) {
    Image image(Props(16, 4));
    Z_VID_PROPS props = image.props;
    change(props);
    CHROMA_KEY_RAW key = GreenKey();
    EXPECT_EQ(E_INVALIDARG, CK_GetAlphaKeyEx3(image.pixels.Data(), image.alpha.Data(), &props, &key, true));
    key.nInterlacedVideo = 1;
    EXPECT_EQ(E_INVALIDARG, CK_GetAlphaKeyEx3(image.pixels.Data(), image.alpha.Data(), &props, &key, true));
    key.nKeysUsed = 0;
    EXPECT_EQ(E_INVALIDARG, CK_GetAlphaKeyEx3(image.pixels.Data(), image.alpha.Data(), &props, &key, true));
    EXPECT_EQ(image.before, image.pixels.Bytes());
    EXPECT_EQ(std::vector<uint8_t>(64, 0x55), image.alpha.Bytes());
}

TEST(Pipeline, AbsurdPropsAreRefusedAndTouchNothing) {
    ExpectRefused([](Z_VID_PROPS &p) { p.nRowBytes = 60; });
    ExpectRefused([](Z_VID_PROPS &p) { p.nRowBytes = -64; });
    ExpectRefused([](Z_VID_PROPS &p) { p.nWidth = -16; });
    ExpectRefused([](Z_VID_PROPS &p) { p.nWidth = 0x7FFFFFFF; });
    ExpectRefused([](Z_VID_PROPS &p) { p.nHeight = INT32_MIN; });
    ExpectRefused([](Z_VID_PROPS &p) { p.fccType = eZFCC_Default; });
}

TEST(Pipeline, AnImageWithoutPixelsIsNoFailure) {
    for (const auto &[w, h] : {std::pair{0, 4}, {16, 0}, {0, 0}}) {
        Image image(Props(w, h));
        EXPECT_EQ(S_OK, image.Key(GreenKey(), true));
        CHROMA_KEY_RAW fields = GreenKey();
        fields.nInterlacedVideo = 1;
        EXPECT_EQ(S_OK, image.Key(fields, true));
        EXPECT_EQ(image.before, image.pixels.Bytes());
    }
}

TEST(Pipeline, KeyBytesOfRgbAreRedFirst) {
    CHROMA_KEY_RAW key = GreenKey();
    key.arrKeys[0].nValue = 0x00C83C14;
    key.arrKeys[0].nDelta = 0x00200508;
    Image image(Props(16, 1));
    image.Paint(200, 60, 20);
    EXPECT_EQ(S_OK, image.Key(key));
    EXPECT_EQ(0, image.Alpha(0, 0));
    // The half-widths turn with the centre: 30 off in blue is inside, 30 off in red is outside.
    Image blueOff(Props(16, 1));
    blueOff.Paint(170, 60, 20);
    EXPECT_EQ(S_OK, blueOff.Key(key));
    EXPECT_EQ(0, blueOff.Alpha(0, 0));
    Image redOff(Props(16, 1));
    redOff.Paint(200, 60, 50);
    EXPECT_EQ(S_OK, redOff.Key(key));
    EXPECT_EQ(255, redOff.Alpha(0, 0));
}

TEST(Pipeline, HlsAndYuvKeysMeasureInTheirSpace) {
    // Pure green: hue 85, lightness 127, saturation 255; with red and blue exchanged Y 149, U 54, V 0.
    for (const auto &[type, value] : {std::pair{eCKT_HLS, 0x00FF7F55}, {eCKT_YUV, 0x00003695}}) {
        Image image(Props(16, 1));
        image.Paint(0, 255, 0);
        image.SetPixel(3, 0, 255, 0, 0);
        CHROMA_KEY_RAW key = GreenKey();
        key.eType = type;
        key.arrKeys[0].nValue = value;
        key.arrKeys[0].nDelta = 0x00040404;
        EXPECT_EQ(S_OK, image.Key(key));
        EXPECT_EQ(0, image.Alpha(0, 0)) << type;
        EXPECT_EQ(255, image.Alpha(3, 0)) << type;
    }
}

TEST(Pipeline, NoStatePassesBetweenCalls) {
    CHROMA_KEY_RAW key = GreenKey();
    key.nKeysUsed = 3;
    key.arrKeys[1] = key.arrKeys[0];
    key.arrKeys[1].nReverseKey = 1;
    key.arrKeys[1].nValue = 0x0080A080;
    key.arrKeys[2] = key.arrKeys[1];
    key.nEdgesSmooth = 4;
    for (const int32_t w : {3, 13, 20, 21, 36}) {
        Image first(Props(w, 6));
        EXPECT_EQ(S_OK, first.Key(key));
        Image other(Props(64, 8), 77);
        EXPECT_EQ(S_OK, other.Key(key));
        Image again(Props(w, 6));
        EXPECT_EQ(S_OK, again.Key(key));
        EXPECT_EQ(first.alpha.Bytes(), again.alpha.Bytes());
    }
}

TEST(Pipeline, MoreRoundsThanAnyoneWaitsForComeToRest) {
    for (const int32_t rounds : {1000000000, 1000000001}) {
        CHROMA_KEY_RAW key = GreenKey();
        key.nEdgesSmooth = rounds;
        Image image(Props(40, 12));
        EXPECT_EQ(S_OK, image.Key(key));
        key.nEdgesSmooth = 30 + rounds % 2;
        Image other(Props(40, 12));
        EXPECT_EQ(S_OK, other.Key(key));
        EXPECT_EQ(other.alpha.Bytes(), image.alpha.Bytes()) << rounds;
    }
}

}    // namespace
}    // namespace zck
