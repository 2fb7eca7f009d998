// Whole pictures against the witness, on both kernel levels.
#include "keying/spill/spill.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstdio>
#include <random>
#include <vector>

#include "frames/media/pixel_format.h"
#include "frames/media/video_props.h"
#include "imaging/colour/convert.h"
#include "platform/processor.h"
#include "platform/status.h"
#include "tests/keying/spill/witness.h"
#include "tests/support/formats.h"

namespace zck {
namespace {

constexpr size_t kGuard = 256;
constexpr uint8_t kGuardByte = 0x5C;

Z_VID_PROPS Props(eZFCC fcc, int32_t width, int32_t height, int32_t pad = 0) {
    Z_VID_PROPS p = {};
    p.fccType = fcc;
    p.nWidth = width;
    p.nHeight = height;
    p.nRowBytes = RowBytes(fcc, width) + pad;
    return p;
}

struct Picture {
    Z_VID_PROPS props;
    std::vector<uint8_t> bytes;    // guard zones before and after
    std::vector<uint8_t> space;    // rows of 4 * AlphaStride

    uint8_t *Pixels() { return bytes.data() + kGuard; }
    int64_t Size() const { return static_cast<int64_t>(bytes.size() - 2 * kGuard); }
    int32_t Rows() const { return props.nHeight < 0 ? -props.nHeight : props.nHeight; }

    HRESULT Cancel(const CHROMA_KEY_RAW &key) { return CancelWithin(key, Size()); }
    HRESULT CancelWithin(const CHROMA_KEY_RAW &key, int64_t size) {
        const int64_t stride = AlphaStride(props);
        const auto bytesOfSpace = static_cast<int64_t>(space.size());
        return SpillCancel({Pixels(), size, &props, stride, space.data(), 4 * stride, bytesOfSpace, bytesOfSpace},
                           SpillPlanMake(key));
    }
};

class Spill : public testing::TestWithParam<KernelLevel> {
protected:
    void SetUp() override {
        if (GetParam() == KernelLevel::Avx2 && !CpuHasAvx2()) GTEST_SKIP() << "this processor has no AVX2";
        KernelLevelLimit(GetParam());
        std::printf("seed %u\n", m_seed);
    }
    void TearDown() override { KernelLevelLimit(kKernelLevelHighest); }

    int32_t Below(int32_t n) { return static_cast<int32_t>(static_cast<uint32_t>(m_random()) % static_cast<uint32_t>(n)); }

    // Spots of the keys' colours in noise, so that masks have insides, ramps and outsides.
    Picture Make(const Z_VID_PROPS &props, const CHROMA_KEY_RAW &key) {
        Picture p = {props, {}, {}};
        const auto rows = static_cast<size_t>(p.Rows());
        const size_t size = rows * static_cast<size_t>(props.nRowBytes);
        p.bytes = std::vector<uint8_t>(size + 2 * kGuard, kGuardByte);
        for (size_t i = 0; i < size; ++i) p.bytes[kGuard + i] = static_cast<uint8_t>(m_random());
        p.space.resize(4 * rows * static_cast<size_t>(AlphaStride(props)));
        int32_t run = 0;
        int32_t value = 0;
        for (size_t i = 0; i < p.space.size(); ++i) {
            if (i % 4 == 0 && --run < 0) {
                run = Below(24);
                value = key.arrKeys[Below(4)].nValue;
                if (Below(3) == 0) value = static_cast<int32_t>(m_random());
            }
            const int channel = static_cast<int>(key.eType == eCKT_RGB && i % 4 < 3 ? 2 - i % 4 : i % 4);
            const auto byte = static_cast<uint8_t>(static_cast<uint32_t>(value) >> (8 * channel));
            p.space[i] = static_cast<uint8_t>(byte + Below(40) - 20);
        }
        return p;
    }

    CHROMA_KEY_RAW RandomKey() {
        constexpr eCK_Type kTypes[] = {eCKT_RGB, eCKT_HLS, eCKT_YUV};
        CHROMA_KEY_RAW key = {};
        key.eType = kTypes[Below(3)];
        key.nKeysUsed = Below(4) + 1;
        key.bColorCancel = Below(2) + 1;
        key.nInverseKey = Below(4);
        for (SINGLE_KEY &e : key.arrKeys) {
            e.nValue = static_cast<int32_t>(m_random());
            e.nDelta = (Below(60) | Below(60) << 8 | Below(60) << 16) * (Below(6) != 0);
            e.nCancelRange = Below(60) - 20;
            e.nCancelPower = (Below(300) - 100) * (Below(4) != 0);
            e.nCancelChroma = (Below(300) - 150) * (Below(4) != 0);
            e.nCancelLuma = (Below(200) - 100) * (Below(4) != 0);
            e.nCancelAlpha = Below(4) == 0;
            e.nReverseKey = Below(6) == 0;
        }
        return key;
    }

    static bool IsOff(const CHROMA_KEY_RAW &key) { return SpillPlanMake(key).count == 0; }

    // The witness on a copy of the picture.
    static HRESULT Expect(Picture *p, const CHROMA_KEY_RAW &key) {
        if (IsOff(key)) return S_OK;
        const eZFCC fcc = p->props.fccType;
        const int32_t stride = AlphaStride(p->props);
        const bool rgb = IsRgbFormat(fcc);
        std::vector<uint8_t> yuv;
        Z_VID_PROPS source = p->props;
        source.nHeight = -p->Rows();
        Z_VID_PROPS target = source;
        if (rgb) {
            target.fccType = eZFCC_YUY2;
            target.nRowBytes = RowBytes(eZFCC_YUY2, stride);
            yuv.assign(static_cast<size_t>(target.nRowBytes) * static_cast<size_t>(p->Rows()), 0);
            EXPECT_EQ(ConvertSameGeometry(p->Pixels(), yuv.data(), &source, &target), S_OK);
        }
        const bool lumaFirst = rgb || fcc == eZFCC_YUY2 || fcc == eZFCC_YVYU;
        const test::Witness422 image{rgb ? yuv.data() : p->Pixels(), rgb ? target.nRowBytes : 2 * stride, lumaFirst};
        if (!test::WitnessSpill(key, p->space, p->props.nWidth, p->Rows(), stride, image)) return StatusOf(0xFFFFFFFA);
        return rgb ? ConvertSameGeometry(yuv.data(), p->Pixels(), &target, &source) : S_OK;
    }

    void Check(const Z_VID_PROPS &props, const CHROMA_KEY_RAW &key) {
        Picture one = Make(props, key);
        Picture two = one;
        const HRESULT hr = Expect(&two, key);
        ASSERT_EQ(one.Cancel(key), hr);
        ASSERT_TRUE(one.bytes == two.bytes)
            << "format " << std::hex << props.fccType << std::dec << ", width " << props.nWidth << ", height " << props.nHeight
            << ", row " << props.nRowBytes << ", seed " << m_seed;
    }

    const uint32_t m_seed = std::random_device{}();
    std::mt19937 m_random{m_seed};
};

CHROMA_KEY_RAW GreenKey(int32_t cancel) {
    CHROMA_KEY_RAW key = {};
    key.eType = eCKT_RGB;
    key.nKeysUsed = 1;
    key.bColorCancel = cancel;
    key.arrKeys[0] = {0x0000C000, 0x00303030, 0, 0, 40, 76, -40, -13, -13, 0};
    key.arrKeys[1] = key.arrKeys[2] = key.arrKeys[3] = key.arrKeys[0];
    return key;
}

TEST_P(Spill, PicturesOfAllShapesAsTheWitnessHasThem) {
    constexpr eZFCC kFormats[] = {eZFCC_YUY2, eZFCC_UYVY, eZFCC_HDYC, eZFCC_YVYU, eZFCC_RGB32, eZFCC_ARGB32, eZFCC_RGB24};
    for (const eZFCC fcc : kFormats) {
        for (int32_t width = 2; width <= 67; ++width) {
            for (int i = 0; i < 6; ++i) {
                const int32_t height = 1 + Below(9);
                Check(Props(fcc, width, Below(2) != 0 ? height : -height, 4 * Below(5)), RandomKey());
                if (HasFatalFailure()) return;
            }
        }
    }
}

TEST_P(Spill, WideAndTallPictures) {
    for (int i = 0; i < 12; ++i) {
        const int32_t width = 700 + Below(30);
        Check(Props(i % 2 != 0 ? eZFCC_RGB32 : eZFCC_UYVY, width, 40 + Below(20)), RandomKey());
        if (HasFatalFailure()) return;
    }
}

TEST_P(Spill, SixteenEntriesWorkOnTheResultOfTheOneBefore) {
    for (const int32_t width : {24, 44, 21}) {
        CHROMA_KEY_RAW key = RandomKey();
        key.nKeysUsed = 20;
        for (SINGLE_KEY &e : key.arrKeys) e.nReverseKey = 0;
        Check(Props(eZFCC_YUY2, width, 23), key);
        Check(Props(eZFCC_RGB32, width, 23), key);
        if (HasFatalFailure()) return;
    }
}

TEST_P(Spill, AbsurdRecords) {
    constexpr int32_t kAbsurd[] = {INT_MIN, INT_MIN + 1, -65536, -32769, 32768, 65535, 1 << 24, INT_MAX};
    for (int i = 0; i < 300; ++i) {
        CHROMA_KEY_RAW key = RandomKey();
        for (SINGLE_KEY &e : key.arrKeys) {
            int32_t *fields[] = {&e.nCancelRange, &e.nCancelPower, &e.nCancelChroma, &e.nCancelLuma};
            for (int32_t *field : fields) *field = kAbsurd[Below(8)];
            e.nDelta = static_cast<int32_t>(m_random());
        }
        key.nKeysUsed = kAbsurd[Below(8)];
        Check(Props(i % 2 != 0 ? eZFCC_YUY2 : eZFCC_UYVY, 2 + Below(60), 5), key);
        if (HasFatalFailure()) return;
    }
}

TEST_P(Spill, YvyuIsTakenForYuy2) {
    const CHROMA_KEY_RAW key = GreenKey(1);
    Picture yvyu = Make(Props(eZFCC_YVYU, 32, 6), key);
    Picture yuy2 = yvyu;
    yuy2.props.fccType = eZFCC_YUY2;
    const std::vector<uint8_t> before = yvyu.bytes;
    EXPECT_EQ(yvyu.Cancel(key), S_OK);
    EXPECT_EQ(yuy2.Cancel(key), S_OK);
    EXPECT_EQ(yvyu.bytes, yuy2.bytes);
    EXPECT_NE(yvyu.bytes, before);
}

TEST_P(Spill, PackedFormatsOfOtherKindsAreChromaFirst) {
    Check(Props(eZFCC_v210, 96, 4), GreenKey(1));
    Check(Props(static_cast<eZFCC>(0x12345678), 0, 4), GreenKey(1));
}

TEST_P(Spill, BlocksLeaveTheMacroPixelsOnTheRight) {
    const CHROMA_KEY_RAW key = GreenKey(1);
    Picture p = Make(Props(eZFCC_YUY2, 46, 5), key);
    const Picture before = p;
    ASSERT_EQ(p.Cancel(key), S_OK);
    // 23 macro pixels: two blocks of eight.
    for (int y = 0; y < 5; ++y) {
        const auto row = static_cast<std::ptrdiff_t>(kGuard) + y * p.props.nRowBytes;
        EXPECT_TRUE(std::equal(p.bytes.begin() + row + 64, p.bytes.begin() + row + 92, before.bytes.begin() + row + 64));
        EXPECT_FALSE(std::equal(p.bytes.begin() + row, p.bytes.begin() + row + 64, before.bytes.begin() + row));
    }
    Picture narrow = Make(Props(eZFCC_YUY2, 15, 5), key);
    const std::vector<uint8_t> same = narrow.bytes;
    EXPECT_EQ(narrow.Cancel(key), S_OK);
    EXPECT_EQ(narrow.bytes, same) << "below a block nothing is done";
}

TEST_P(Spill, PerPixelPathReachesTheLastMacroPixel) {
    const CHROMA_KEY_RAW key = GreenKey(2);
    Picture p = Make(Props(eZFCC_YUY2, 7, 5), key);
    const Picture before = p;
    ASSERT_EQ(p.Cancel(key), S_OK);
    // Three macro pixels; the seventh pixel has none.
    EXPECT_FALSE(std::equal(p.Pixels() + 8, p.Pixels() + 12, before.bytes.begin() + kGuard + 8));
    EXPECT_TRUE(std::equal(p.Pixels() + 12, p.Pixels() + 16, before.bytes.begin() + kGuard + 12));
}

TEST_P(Spill, RgbLosesHalfItsChromaResolutionOutsideTheMask) {
    CHROMA_KEY_RAW key = GreenKey(1);
    Picture p = Make(Props(eZFCC_RGB32, 32, 4), key);
    std::fill(p.space.begin(), p.space.end(), uint8_t{255});
    for (int32_t i = 0; i < 32 * 4; ++i) {
        // Red and blue of one luma, side by side.
        const uint8_t pixel[4] = {static_cast<uint8_t>(i % 2 != 0 ? 250 : 0), 100, static_cast<uint8_t>(i % 2 != 0 ? 0 : 95),
                                  9};
        std::copy(pixel, pixel + 4, p.Pixels() + 4 * i);
    }
    ASSERT_EQ(p.Cancel(key), S_OK);
    const uint8_t *first = p.Pixels();
    const uint8_t *second = p.Pixels() + 4;
    EXPECT_NEAR(first[0], second[0], 4);
    EXPECT_NEAR(first[2], second[2], 4);
    EXPECT_EQ(first[3], 255);
}

TEST_P(Spill, ASecondEntryWithoutStrengthsTakesPartInThePerPixelPathOnly) {
    CHROMA_KEY_RAW one = GreenKey(2);
    CHROMA_KEY_RAW two = one;
    two.nKeysUsed = 2;
    two.arrKeys[1].nCancelPower = two.arrKeys[1].nCancelChroma = 0;
    two.arrKeys[1].nCancelLuma = two.arrKeys[1].nCancelAlpha = 0;
    two.arrKeys[1].nValue = 0x000000FF;
    const Picture start = Make(Props(eZFCC_YUY2, 32, 6), one);
    for (const int32_t cancel : {1, 2}) {
        one.bColorCancel = two.bColorCancel = cancel;
        Picture p = start;
        Picture q = start;
        ASSERT_EQ(p.Cancel(one), S_OK);
        ASSERT_EQ(q.Cancel(two), S_OK);
        EXPECT_EQ(p.bytes == q.bytes, cancel == 1);
    }
    Check(Props(eZFCC_YUY2, 32, 6), two);
}

TEST_P(Spill, AMaskWithoutSizeEndsTheCallAndLeavesThePicture) {
    const CHROMA_KEY_RAW key = GreenKey(1);
    for (const eZFCC fcc : {eZFCC_YUY2, eZFCC_RGB32}) {
        for (const auto &[width, height] : {std::pair{1, 4}, {0, 4}, {8, 0}}) {
            Picture p = Make(Props(fcc, width, height, 16), key);
            const std::vector<uint8_t> before = p.bytes;
            EXPECT_EQ(static_cast<uint32_t>(p.Cancel(key)), 0xFFFFFFFAU) << width << " by " << height;
            EXPECT_EQ(p.bytes, before);
        }
    }
}

TEST_P(Spill, AFormatWithoutAWayToYuvEndsTheCall) {
    const CHROMA_KEY_RAW key = GreenKey(1);
    const auto closed = [](const FormatRow &row) { return (row.bRgb || row.bPlanar) && row.route == RouteClass::None; };
    for (const eZFCC fcc : test::FormatsWhere(closed)) {
        Picture p = Make(Props(fcc, 16, 8), key);
        const std::vector<uint8_t> before = p.bytes;
        EXPECT_EQ(p.Cancel(key), kVfwEInvalidSubtype) << std::hex << fcc;
        EXPECT_EQ(p.bytes, before);
    }
}

TEST_P(Spill, AnEmptyPlanDoesNothing) {
    const CHROMA_KEY_RAW key = GreenKey(0);
    Picture p = Make(Props(eZFCC_I420, 1, 1), key);
    const std::vector<uint8_t> before = p.bytes;
    EXPECT_EQ(p.Cancel(key), S_OK);
    EXPECT_EQ(p.bytes, before);
}

TEST_P(Spill, NothingIsTouchedBeyondThePicturesBytes) {
    for (const int32_t cancel : {1, 2}) {
        const CHROMA_KEY_RAW key = GreenKey(cancel);
        const Picture start = Make(Props(eZFCC_UYVY, 48, 5), key);
        Picture whole = start;
        ASSERT_EQ(whole.Cancel(key), S_OK);
        for (const int64_t size : {int64_t{0}, int64_t{1}, int64_t{96 * 2 + 41}, int64_t{96 * 5 - 1}}) {
            Picture p = start;
            EXPECT_EQ(p.CancelWithin(key, size), S_OK);
            const auto end = static_cast<std::ptrdiff_t>(kGuard) + static_cast<std::ptrdiff_t>(size);
            EXPECT_TRUE(std::equal(p.bytes.begin(), p.bytes.begin() + end, whole.bytes.begin()));
            EXPECT_TRUE(std::equal(p.bytes.begin() + end, p.bytes.end(), start.bytes.begin() + end)) << size;
        }
        Picture rgb = Make(Props(eZFCC_RGB32, 48, 5), key);
        const std::vector<uint8_t> before = rgb.bytes;
        EXPECT_EQ(rgb.CancelWithin(key, rgb.Size() - 1), kVfwEInvalidMediaType);
        EXPECT_EQ(rgb.bytes, before);
    }
}

TEST_P(Spill, KeySpaceBeyondItsBytesCountsAsZero) {
    const CHROMA_KEY_RAW key = GreenKey(1);
    Picture p = Make(Props(eZFCC_YUY2, 32, 6), key);
    Picture q = p;
    constexpr size_t kEnd = 4 * 32 * 3 + 50;
    for (size_t i = kEnd; i < q.space.size(); ++i) q.space[i] = 0;
    p.space.resize(kEnd);
    ASSERT_EQ(p.Cancel(key), S_OK);
    ASSERT_EQ(q.Cancel(key), S_OK);
    EXPECT_EQ(p.bytes, q.bytes);
}

TEST_P(Spill, ThePictureItselfMayBeMeasured) {
    for (const int32_t height : {17, -17}) {
        const CHROMA_KEY_RAW key = GreenKey(1);
        Picture p = Make(Props(eZFCC_RGB32, 40, height), key);
        std::copy(p.space.begin(), p.space.end(), p.Pixels());
        Picture q = p;
        ASSERT_EQ(Expect(&q, key), S_OK);
        EXPECT_EQ(SpillCancel({p.Pixels(), p.Size(), &p.props, 40, p.Pixels(), 160, p.Size(), p.Size()}, SpillPlanMake(key)),
                  S_OK);
        EXPECT_EQ(p.bytes, q.bytes);
    }
}

TEST_P(Spill, APictureWhoseRowsAreNoWholePixelsIsMeasuredAsItWas) {
    const CHROMA_KEY_RAW key = GreenKey(1);
    Z_VID_PROPS props = Props(eZFCC_RGB32, 40, 70);
    props.nRowBytes += 3;
    Picture p = Make(props, key);
    std::copy(p.space.begin(), p.space.end(), p.Pixels());
    p.space.assign(p.Pixels(), p.Pixels() + p.Size());
    Picture q = p;
    ASSERT_EQ(Expect(&q, key), S_OK);
    EXPECT_EQ(SpillCancel({p.Pixels(), p.Size(), &p.props, 40, p.Pixels(), 160, p.Size(), p.Size()}, SpillPlanMake(key)), S_OK);
    EXPECT_EQ(p.bytes, q.bytes);
}

INSTANTIATE_TEST_SUITE_P(Levels, Spill, testing::Values(KernelLevel::Reference, KernelLevel::Avx2));

}    // namespace
}    // namespace zck
