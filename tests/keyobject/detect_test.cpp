// `KeyDetect`: parameters, the blocks that it accepts, and what becomes of key, ranges, history and picture.
#include <cstring>

#include "keyobject/block_scan.h"
#include "platform/files.h"
#include "tests/keyobject/key_fixture.h"
#include "tests/keyobject/own_frame.h"

namespace zck::test {
namespace {

constexpr int32_t kGreenHls = static_cast<int32_t>(0xFFD86859);    // saturation 216, lightness 104, hue 89
constexpr uint32_t kPainted = 0x40405030;                          // (64, 64, 64) of HLS, as RGB

class Detection : public KeyTest {
protected:
    void SetPicture(int width, int height, const Picture &picture) {
        ASSERT_EQ(m_key->KeyFrameSet(Frame(width, height, picture).get(), nullptr), S_OK);
    }
    void SetUniform(uint32_t pixel, int width = 32, int height = 16) {
        SetPicture(width, height, [=](int, int) { return pixel; });
    }
    int32_t Keys() const { return Raw().nKeysUsed; }
    size_t Painted(uint32_t paint = kPainted) const {
        const std::vector<uint32_t> pixels = Pixels();
        return static_cast<size_t>(std::count(pixels.begin(), pixels.end(), paint));
    }
};

TEST_F(Detection, RefusalsComeInTheirOrderAndChangeNothing) {
    EXPECT_EQ(m_key->KeyDetect(nullptr, nullptr), E_POINTER);
    EXPECT_EQ(Detect("blocks=0"), E_INVALIDARG);
    SetUniform(kGreen);
    EXPECT_EQ(m_key->KeyDetect(nullptr, nullptr), E_POINTER);
    EXPECT_EQ(Detect("blocks=0"), E_INVALIDARG);
    OwnFrameState state;
    ASSERT_EQ(m_key->KeyFrameSet(OwnFrame::Create(state).get(), nullptr), S_OK);
    EXPECT_EQ(Detect("blocks=0"), E_INVALIDARG);
    EXPECT_EQ(Detect(), kVfwEInvalidMediaType);
    EXPECT_FALSE(m_out);
    EXPECT_EQ(Forward(), E_UNEXPECTED);
    EXPECT_TRUE(SameKey(Raw(), CHROMA_KEY_RAW{}));
    SetUniform(kGreen);
    // No step was saved either.
    ASSERT_EQ(Set(eCKA_Power, 0.5), S_OK);
    ASSERT_EQ(Back(), S_OK);
    EXPECT_TRUE(SameKey(Raw(), CHROMA_KEY_RAW{}));
}

// Where the system has drives, the search leaves a picture on one of them if it is there; nowhere else is one made.
TEST_F(Detection, NoFileIsMadeInTheWorkingFolder) {
    SetUniform(kGreen);
    ASSERT_EQ(Detect("type=RGB"), S_OK);
    EXPECT_TRUE(SystemHasDrives() || !FileExists(ZCK_TEXT("F:\\CK.bmp")));
    EXPECT_FALSE(FileExists(ZCK_TEXT("CK.bmp")));
}

TEST_F(Detection, AUniformScreenIsOneThinKey) {
    SetUniform(kGreen);
    ASSERT_EQ(Detect("blocks=4 show_blocks=false"), S_OK);
    const CHROMA_KEY_RAW key = Raw();
    EXPECT_EQ(key.eType, eCKT_HLS);
    EXPECT_EQ(key.nKeysUsed, 1);
    EXPECT_EQ(key.arrKeys[0].nValue, kGreenHls);
    EXPECT_EQ(key.arrKeys[0].nDelta, 0x01010101);
    EXPECT_EQ(key.arrKeys[0].nSmoothRange, 26);
    EXPECT_EQ(key.nEdgesSmooth, 3);
    EXPECT_EQ(Pixel(7, 7), 0u);
    EXPECT_EQ(PropsOf(m_out.get()).vidProps.fccType, eZFCC_ARGB32);
}

TEST_F(Detection, TheSpaceComesFromTheCallThenTheStoreThenIsHls) {
    SetUniform(kGreen);
    const std::pair<const char *, eCK_Type> words[] = {
        {"type=RGB", eCKT_RGB}, {"type='hls'", eCKT_HLS}, {"type=Yuv", eCKT_YUV}, {"type=XYZ", eCKT_HLS}, {"", eCKT_HLS}};
    for (const auto &[word, type] : words) {
        ASSERT_EQ(Detect(word), S_OK);
        EXPECT_EQ(Raw().eType, type) << word;
    }
    Store("detect.type", "yuv");
    ASSERT_EQ(Detect(), S_OK);
    EXPECT_EQ(Raw().eType, eCKT_YUV);
    ASSERT_EQ(Detect("type=rgb"), S_OK);
    EXPECT_EQ(Raw().eType, eCKT_RGB);
    EXPECT_EQ(Raw().arrKeys[0].nValue, GreenKey().arrKeys[0].nValue);
    ASSERT_EQ(Detect("type=word"), S_OK);
    EXPECT_EQ(Raw().eType, eCKT_YUV);
    // The store's name is not one of the call.
    ASSERT_EQ(Detect("detect.type=rgb"), S_OK);
    EXPECT_EQ(Raw().eType, eCKT_YUV);
    Store("detect.type", "none");
    ASSERT_EQ(Detect(), S_OK);
    EXPECT_EQ(Raw().eType, eCKT_HLS);
}

TEST_F(Detection, NumbersComeFromTheCallThenTheStore) {
    // Two greens far apart, in stripes of 8.
    SetPicture(32, 16, [](int x, int) { return x / 8 % 2 == 0 ? 0xFF00FF40u : 0xFF004000u; });
    ASSERT_EQ(Detect("blocks=4"), S_OK);
    EXPECT_EQ(Keys(), 1);
    Store("detect.max_keys", "3");
    ASSERT_EQ(Detect("blocks=4 key_diff=0"), S_OK);
    EXPECT_EQ(Keys(), 2);
    ASSERT_EQ(Detect("blocks=4 key_diff=0 max_keys=1"), S_OK);
    EXPECT_EQ(Keys(), 1);
    Store("detect.blocks", "0");
    EXPECT_EQ(Detect(), E_INVALIDARG);
    ASSERT_EQ(Detect("blocks=4"), S_OK);
    // A property may be a node with text.
    Store("detect.blocks", "4");
    ASSERT_EQ(m_props->PropsRemove(Of("detect.max_keys").get()), S_OK);
    Store("detect.max_keys::more", "1");
    Store("detect.max_keys", "2");
    ASSERT_EQ(Detect("key_diff=0"), S_OK);
    EXPECT_EQ(Keys(), 2);
}

TEST_F(Detection, LimitsOfKeysAreCutTo1And16) {
    SetPicture(160, 16, [](int x, int) { return 0xFF000000u | static_cast<uint32_t>(60 + x / 8 * 9) << 8; });
    for (const auto &[words, keys] : {std::pair("max_keys=0", 1), {"max_keys=-3", 1}, {"max_keys=5", 5}, {"max_keys=40", 16}}) {
        ASSERT_EQ(Detect("blocks=20 key_diff=0 type=RGB " + std::string(words)), S_OK);
        EXPECT_EQ(Keys(), keys) << words;
    }
}

TEST_F(Detection, TheDifferenceOfKeysIsCutToWholeSteps) {
    // Two ranges whose joint one costs between 0.015 and 0.03.
    SetPicture(32, 16, [](int x, int) { return x < 16 ? 0xFF00C000u : 0xFF007800u; });
    const auto keys = [&](const char *diff) {
        EXPECT_EQ(Detect(std::string("type=RGB blocks=2 max_keys=4 key_diff=") + diff), S_OK);
        return Keys();
    };
    // The cost is a quarter of the squared distance of 72 / 255, 0.0199 and a little more.
    EXPECT_EQ(keys("0"), 2);
    EXPECT_EQ(keys("0.99"), 2);
    EXPECT_EQ(keys("-5"), 2);
    EXPECT_EQ(keys("1"), 1);
    EXPECT_EQ(keys("1.9"), 1);
    EXPECT_EQ(keys("2"), 2);
    EXPECT_EQ(keys("1e30"), 2);
    EXPECT_EQ(keys("-1e30"), 2);
}

TEST_F(Detection, RefusedBlocksAreNotPainted) {
    SetPicture(32, 16, [](int x, int) { return x < 16 ? 0xFF00C000u : 0xFF007800u; });
    ASSERT_EQ(Detect("type=RGB blocks=2 max_keys=4 key_diff=1"), S_OK);
    EXPECT_EQ(Pixel(0, 0), 0x40404040u);
    EXPECT_EQ(Pixel(15, 15), 0x40404040u);
    EXPECT_EQ(Pixel(16, 0), 0xFF007800u);
}

TEST_F(Detection, NothingFoundKeepsTheKeyAndEmptiesTheRanges) {
    SetUniform(kSkin);
    ASSERT_EQ(RawSet(GreenKey()), S_OK);
    const CHROMA_KEY_RAW before = Raw();
    for (const char *options : {"blocks=4 show_blocks=true", "blocks=4 show_blocks=false"}) {
        EXPECT_EQ(Detect(options), S_OK);
        EXPECT_TRUE(m_out);
        EXPECT_TRUE(SameKey(Raw(), before));
    }
    // The next pick rebuilds from the empty sets: the former entries go.
    ASSERT_EQ(Add(3, 3), S_OK);
    EXPECT_EQ(Keys(), 1);
    EXPECT_NE(Raw().arrKeys[0].nValue, before.arrKeys[0].nValue);
    // And each detection was a step.
    ASSERT_EQ(Back(), S_OK);
    ASSERT_EQ(Back(), S_OK);
    EXPECT_TRUE(SameKey(Raw(), before));
}

TEST_F(Detection, ReplacesTheRangesOfBothSets) {
    SetPicture(32, 16, [](int x, int) { return x < 16 ? kGreen : kSkin; });
    ASSERT_EQ(Detect("blocks=4"), S_OK);
    ASSERT_EQ(Exclude(30, 8), S_OK);
    EXPECT_EQ(Keys(), 2);
    ASSERT_EQ(Detect("blocks=4"), S_OK);
    EXPECT_EQ(Keys(), 1);
    ASSERT_EQ(Back(), S_OK);
    ASSERT_EQ(Forward(), S_OK);
    EXPECT_EQ(Keys(), 2);
}

TEST_F(Detection, TheBlockPictureShowsAcceptedBlocksInRgb) {
    Z_VID_PROPS props = PropsOf(32, 16);
    props.dblRate = 25;
    std::vector<uint8_t> bytes = BytesOf(32, 16, HalfGreen);
    ComPtr<IZFrame> frame;
    ASSERT_EQ(m_frames->FrameCreateFromProps(&props, reinterpret_cast<int64_t>(bytes.data()), frame.Put(), nullptr), S_OK);
    Z_TIME time = {};
    time.rtStartTime = 7;
    ASSERT_EQ(frame->FrameTimeSet(&time), S_OK);
    const ComPtr<IZFrame> background = Frame(8, 8, HalfGreen);
    ASSERT_EQ(m_key->KeyFrameSet(frame.get(), background.get()), S_OK);
    ASSERT_EQ(Detect("blocks=4"), S_OK);
    EXPECT_EQ(Pixel(0, 0), kPainted);
    EXPECT_EQ(Pixel(15, 15), kPainted);
    // By way of HLS, and not to the last bit.
    EXPECT_EQ(Pixel(16, 0), 0xFFD08F80u);
    const Z_AV_PROPS made = PropsOf(m_out.get());
    EXPECT_EQ(made.vidProps.fccType, eZFCC_RGB32);
    EXPECT_EQ(made.vidProps.nHeight, -16);
    EXPECT_EQ(made.vidProps.nRowBytes, 128);
    EXPECT_EQ(made.vidProps.dblRate, 25);
    ASSERT_EQ(QueryFor<IZFrame>(m_out.get())->FrameTimeGet(&time), S_OK);
    EXPECT_EQ(time.rtStartTime, 0);
    // Neither the reference nor the next detection has the paint.
    EXPECT_EQ(PixelsOf(frame.get())[0], kGreen);
    ASSERT_EQ(Detect("blocks=4"), S_OK);
    EXPECT_EQ(Raw().arrKeys[0].nValue, kGreenHls);
    ASSERT_EQ(Detect("blocks=4 type=RGB"), S_OK);
    EXPECT_EQ(Pixel(0, 0), 0x40404040u);
    EXPECT_EQ(Pixel(31, 3), kSkin);
}

TEST_F(Detection, TheBlockPictureOfYuvComesBackThroughItsSpace) {
    SetPicture(32, 16, HalfGreen);
    ASSERT_EQ(Detect("blocks=4 type=YUV"), S_OK);
    const std::vector<uint32_t> pixels = Pixels();
    ASSERT_EQ(pixels.size(), 512u);
    for (uint32_t shift = 0; shift < 32; shift += 8) {
        const int skin = static_cast<int>(kSkin >> shift & 0xFF);
        EXPECT_NEAR(static_cast<int>(pixels[31] >> shift & 0xFF), skin, 3) << shift;
    }
    EXPECT_EQ(pixels[0] >> 24, 0x40u);
}

TEST_F(Detection, PixelsBeyondTheLastWholeBlockAreNotVisited) {
    SetUniform(kGreen, 34, 18);
    ASSERT_EQ(Detect("blocks=4"), S_OK);
    EXPECT_EQ(Painted(), 32u * 16);
    EXPECT_EQ(Pixels()[32], Pixels()[33]);
    EXPECT_NE(Pixels()[32], kPainted);
}

TEST_F(Detection, TheFirstColumnOfABlockIsNotExamined) {
    // Skin in the first column of each block is no hindrance but for the distance of its neighbour.
    SetPicture(32, 16, [](int x, int) { return x % 8 == 0 ? kSkin : kGreen; });
    ASSERT_EQ(Detect("blocks=4 type=RGB threshold=1000"), S_OK);
    EXPECT_EQ(Painted(0x40404040), 512u);
    ASSERT_EQ(Detect("blocks=4 type=RGB"), S_OK);
    EXPECT_EQ(Painted(0x40404040), 0u);
    // But its first pixel is part of the range.
    ASSERT_EQ(Detect("blocks=4 type=RGB threshold=1000 show_blocks=false"), S_OK);
    EXPECT_EQ(Raw().arrKeys[0].nValue & 0xFF, 0x70);    // between 0x10 and 0xD0
    // Lower rows of the first column are not.
    SetPicture(32, 16, [](int x, int y) { return x % 8 == 0 && y % 4 != 0 ? kSkin : kGreen; });
    ASSERT_EQ(Detect("blocks=4 type=RGB threshold=1000 show_blocks=false"), S_OK);
    EXPECT_EQ(Raw().arrKeys[0].nValue, GreenKey().arrKeys[0].nValue);
    EXPECT_EQ(Raw().arrKeys[0].nDelta, 0x01010101);
}

// One block of 8 by 4 with one pixel changed by 6 steps in green: the squared distance is 36.
class Flatness : public Detection {
protected:
    bool Accepted(int x, int y, int steps, const char *threshold) {
        SetPicture(8, 4,
                   [=](int px, int py) { return px == x && py == y ? kGreen + (static_cast<uint32_t>(steps) << 8) : kGreen; });
        EXPECT_EQ(Detect(std::string("type=RGB blocks=1 threshold=") + threshold), S_OK);
        return Painted(0x40404040) == 32;
    }
};

TEST_F(Flatness, ADistanceOfTheLimitPasses) {
    // 3 * 2 * 2 = 12: a step of 3 is 9, one of 4 is 16.
    EXPECT_TRUE(Accepted(4, 2, 3, "2"));
    EXPECT_FALSE(Accepted(4, 2, 4, "2"));
    EXPECT_TRUE(Accepted(4, 2, 4, "3"));
    // 3 * 4 * 4 = 48 against steps of 6 and 7; 3 * 16 * 16 = 768 against 27 and 28.
    EXPECT_TRUE(Accepted(7, 3, 27, "16"));
    EXPECT_FALSE(Accepted(7, 3, 28, "16"));
    EXPECT_TRUE(Accepted(7, 3, 27, "-16"));
    EXPECT_FALSE(Accepted(7, 3, 28, "-16"));
}

TEST_F(Flatness, EveryNeighbourCounts) {
    for (int x = 1; x < 8; ++x) {
        for (int y = 0; y < 4; ++y) EXPECT_FALSE(Accepted(x, y, 4, "2")) << x << y;
    }
    // A pixel of the first column has neighbours on its right and below; the last one has only the right one.
    for (int y = 0; y < 4; ++y) EXPECT_FALSE(Accepted(0, y, 4, "2")) << y;
}

TEST_F(Flatness, TheFirstPixelMayBeTwiceAsFar) {
    // A ramp of 3 a row: each neighbour is at 9 of 12, the first pixel at up to 48.
    const auto ramp = [&](int step, int rows) {
        SetPicture(8, rows, [=](int, int y) { return kGreen + (static_cast<uint32_t>(step * y) << 8); });
        EXPECT_EQ(Detect("type=RGB blocks=1 threshold=2"), S_OK);
        return Painted(0x40404040) > 0;
    };
    EXPECT_TRUE(ramp(3, 3));     // 6 * 6
    EXPECT_FALSE(ramp(3, 4));    // 9 * 9
    EXPECT_TRUE(ramp(2, 4));
}

TEST_F(Flatness, ThresholdsWithoutBoundRejectNothing) {
    for (const char *threshold : {"256", "65536", "2147483647", "-2147483648", "99999999999"}) {
        SetPicture(8, 4, [](int x, int y) { return (x + y) % 2 == 0 ? 0xFF00FF00u : 0xFF0000FFu; });
        ASSERT_EQ(Detect(std::string("type=RGB blocks=1 threshold=") + threshold), S_OK);
        EXPECT_EQ(Painted(0x40404040), 32u) << threshold;
    }
}

TEST_F(Flatness, AlphaTakesNoPartInDistances) {
    SetPicture(8, 4, [](int x, int) { return x % 2 == 0 ? kGreen : kGreen & 0xFFFFFF; });
    ASSERT_EQ(Detect("type=RGB blocks=1 threshold=0 show_blocks=false"), S_OK);
    EXPECT_EQ(static_cast<uint32_t>(Raw().arrKeys[0].nDelta), 0x80010101u);
}

TEST_F(Detection, TheScreensAreBandsOfHueAndLightness) {
    const auto accepted = [&](uint32_t pixel, const char *type) {
        SetUniform(pixel, 8, 4);
        EXPECT_EQ(Detect(std::string("blocks=1 type=") + type), S_OK);
        return Keys() > 0 && Reset() == S_OK;
    };
    for (const char *type : {"RGB", "HLS", "YUV"}) {
        EXPECT_TRUE(accepted(0xFF00FF00, type)) << type;
        EXPECT_TRUE(accepted(kBlue, type)) << type;
        EXPECT_TRUE(accepted(0xFF608060, type)) << type << " pale";
        EXPECT_FALSE(accepted(0xFFFF0000, type)) << type;
        EXPECT_FALSE(accepted(0xFF00FFFF, type)) << type << " cyan";
        EXPECT_FALSE(accepted(0xFFFFFF00, type)) << type << " yellow";
        EXPECT_FALSE(accepted(0xFF808080, type)) << type << " grey";
    }
    // Lightness 25 is in the outer tenth, 26 is not.
    EXPECT_FALSE(accepted(0xFF003200, "HLS"));
    EXPECT_TRUE(accepted(0xFF003400, "HLS"));
    // Green begins with 95 degrees, which is hue 68.
    EXPECT_FALSE(accepted(0xFF69FF00, "HLS"));
    EXPECT_TRUE(accepted(0xFF68FF00, "HLS"));
}

TEST_F(Detection, AWidthOf1TakesTheFirstPixelOfAnyColour) {
    SetUniform(kSkin, 16, 16);
    ASSERT_EQ(Detect("blocks=16 type=RGB"), S_OK);
    EXPECT_EQ(Raw().arrKeys[0].nValue, static_cast<int32_t>(0xFF8090D0));
    EXPECT_EQ(Painted(0x40404040), 256u);
}

TEST_F(Detection, AGridFinerThanThePixelsPaintsNothing) {
    SetUniform(kSkin, 16, 16);
    ASSERT_EQ(Detect("blocks=17 type=RGB"), S_OK);
    EXPECT_EQ(Keys(), 1);
    EXPECT_EQ(Pixels(), std::vector<uint32_t>(256, kSkin));
    // Blocks of no height are not walked either, whatever they show.
    SetPicture(32, 4, [](int x, int) { return x % 2 == 0 ? kSkin : 0xFFFFFFFFu; });
    ASSERT_EQ(Detect("blocks=5 type=RGB"), S_OK);
    EXPECT_EQ(Keys(), 1);
}

TEST_F(Detection, NegativeGridsScanNothing) {
    SetUniform(kGreen);
    for (const char *blocks : {"blocks=-1", "blocks=-2147483648"}) {
        EXPECT_EQ(Detect(blocks), S_OK);
        EXPECT_EQ(Keys(), 0);
        EXPECT_EQ(Painted(), 0u);
    }
}

// Each of these would be rounds without end.
TEST_F(Detection, HugeGridsAreBounded) {
    for (const auto &[width, height] : {std::pair(40, 30), {40, 1}, {1, 30}, {1, 1}}) {
        SetPicture(width, height, [](int x, int y) { return 0xFF000000u | static_cast<uint32_t>(x * 5 + y * 40) << 8; });
        for (const char *blocks : {"blocks=2147483647", "blocks=1000000", "blocks=40", "blocks=30", "blocks=99999999999"}) {
            ASSERT_EQ(Detect(std::string("type=RGB max_keys=3 key_diff=0 ") + blocks), S_OK);
            EXPECT_GE(Keys(), 1);
        }
    }
}

/// The scan as it is told: every block of every row, one by one.
KeyRangeSet ScannedOneByOne(const WorkingImage &image, const BlockScan &scan) {
    KeyRangeSet set;
    set.maxRanges = 3;
    const int bw = image.Width() / scan.blocks;
    const int bh = image.Rows() / scan.blocks;
    for (int by = 0; by < scan.blocks; ++by) {
        for (int bx = 0; bx < scan.blocks; ++bx) {
            const uint8_t *p = image.Row(by * bh) + bx * bw * 4;
            KeyRange range = {};
            for (int i = 0; i < 4; ++i) {
                const int b = i == 3 ? 3 : 2 - i;
                range.centre[i] = (p[b] + p[b]) / 510.0;
                range.delta[i] = 0.00392156862745098;
            }
            RangeSetAdd(set, range, scan.diff, image.Space() == KeySpace::Hls);
        }
    }
    return set;
}

// Only blocks of one pixel or less: all of them are accepted with their first pixel.
TEST_F(Detection, BoundedScansCountAsIfTheyWereNot) {
    for (const auto &[width, height, blocks] : {std::tuple(40, 30, 77), {40, 1, 35}, {1, 30, 30}, {1, 1, 500}, {31, 4, 20}}) {
        const ComPtr<IZFrame> frame = Frame(width, height, [](int x, int y) {
            return 0xFF000000u | static_cast<uint32_t>(x * 7 + y * 50) << 8 | static_cast<uint32_t>(x % 3 * 60);
        });
        for (const KeySpace space : {KeySpace::Rgb, KeySpace::Hls}) {
            for (const double diff : {0.0, 0.015}) {
                WorkingImage image;
                ASSERT_EQ(image.Build(space, frame.get(), 1), S_OK);
                const BlockScan scan{blocks, 16, diff, false};
                KeyRangeSet set;
                set.maxRanges = 3;
                ScanBlocks(image, scan, &set);
                const KeyRangeSet expected = ScannedOneByOne(image, scan);
                EXPECT_EQ(set.count, expected.count);
                EXPECT_EQ(std::memcmp(set.ranges, expected.ranges, sizeof(set.ranges)), 0) << width << ' ' << blocks;
            }
        }
    }
}

TEST_F(Detection, OneLineOfAKnownFormatStaysOneLine) {
    Z_VID_PROPS props = PropsOf(32, 1);
    props.eVideoFormat = eZVF_PAL;
    OwnFrameState state;
    state.props = props;
    state.bytes = BytesOf(32, 1, HalfGreen);
    ASSERT_EQ(m_key->KeyFrameSet(OwnFrame::Create(state).get(), nullptr), S_OK);
    for (const char *type : {"type=HLS", "type=RGB", "type=YUV"}) {
        ASSERT_EQ(Detect(type), S_OK);
        EXPECT_EQ(PropsOf(m_out.get()).vidProps.nHeight, -1);
        EXPECT_EQ(Pixels().size(), 32u);
    }
    // With more lines the format stays.
    state.props.nHeight = -2;
    state.bytes = BytesOf(32, 2, HalfGreen);
    ASSERT_EQ(m_key->KeyFrameSet(OwnFrame::Create(state).get(), nullptr), S_OK);
    ASSERT_EQ(Detect(), S_OK);
    EXPECT_EQ(Pixels().size(), 64u);
}

TEST_F(Detection, PaddedRowsAndBottomUpViewsKeepTheirShape) {
    OwnFrameState state;
    state.props = PropsOf(30, 16);
    state.props.nHeight = 16;
    state.props.nRowBytes = 128;
    state.bytes = BytesOf(32, 16, [](int, int y) { return y < 8 ? kGreen : kSkin; });
    state.bytes.resize(32 * 16 * 4 - 8);    // the last row ends with its last pixel
    ASSERT_EQ(m_key->KeyFrameSet(OwnFrame::Create(state).get(), nullptr), S_OK);
    ASSERT_EQ(Detect("blocks=2 type=RGB"), S_OK);
    const Z_VID_PROPS props = PropsOf(m_out.get()).vidProps;
    EXPECT_EQ(props.nHeight, 16);
    EXPECT_EQ(props.nRowBytes, 128);
    EXPECT_EQ(Painted(0x40404040), 30u * 8);
    EXPECT_EQ(Pixels().back(), kSkin);
}

TEST_F(Detection, AFieldOfAlphaOnlyMattersOutsideOfHls) {
    SetPicture(32, 16, [](int x, int) { return x < 16 ? kGreen : kGreen & 0x00FFFFFF; });
    for (const auto &[type, keys] : {std::pair("HLS", 1), {"RGB", 2}, {"YUV", 2}}) {
        ASSERT_EQ(Detect(std::string("blocks=2 max_keys=4 key_diff=0 type=") + type), S_OK);
        EXPECT_EQ(Keys(), keys) << type;
    }
}

}    // namespace
}    // namespace zck::test
