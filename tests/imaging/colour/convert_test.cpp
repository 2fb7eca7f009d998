#include "imaging/colour/convert.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <limits>
#include <random>

#include "platform/processor.h"
#include "platform/status.h"
#include "tests/imaging/colour/model.h"
#include "tests/support/formats.h"

namespace zck {
namespace {

using test::Bytes;
using test::ModelConvert;
using test::ModelPicture;
using test::ModelRecord;
using test::Picture;

const std::vector<eZFCC> kFormats = test::RouteFormats();

bool IsRgb(eZFCC f) { return f == eZFCC_RGB32 || f == eZFCC_ARGB32 || f == eZFCC_RGB24; }

constexpr int64_t kGuard = 256;

// The target's memory between two guard zones that must stay.
struct Guarded {
    explicit Guarded(const Bytes &memory) : all(memory.size() + 2 * kGuard, 0x5A), size(memory.size()) {
        std::copy(memory.begin(), memory.end(), all.begin() + kGuard);
    }
    uint8_t *Data() { return all.data() + kGuard; }
    Bytes Memory() const { return Bytes(all.begin() + kGuard, all.begin() + kGuard + static_cast<std::ptrdiff_t>(size)); }
    bool GuardsStand() const {
        const auto intact = [](uint8_t b) { return b == 0x5A; };
        return std::all_of(all.begin(), all.begin() + kGuard, intact) && std::all_of(all.end() - kGuard, all.end(), intact);
    }
    Bytes all;
    size_t size;
};

class ConvertTest : public testing::TestWithParam<KernelLevel> {
protected:
    void SetUp() override {
        if (GetParam() == KernelLevel::Avx2 && !CpuHasAvx2()) GTEST_SKIP() << "this processor has no AVX2";
        KernelLevelLimit(GetParam());
    }
    void TearDown() override { KernelLevelLimit(kKernelLevelHighest); }

    // Converts and compares with the model. Source and target may end with their last pixel.
    void Check(const Z_VID_PROPS &sp, const Z_VID_PROPS &tp, bool cut) {
        const Picture source = ModelPicture(sp, 1, cut);
        Picture target = ModelPicture(tp, 2, cut);
        const auto srcBytes = static_cast<int64_t>(source.memory.size());
        const auto dstBytes = static_cast<int64_t>(target.memory.size());
        Guarded found(target.memory);
        const HRESULT hr = cut ? ConvertSameGeometry(source.memory.data(), srcBytes, found.Data(), dstBytes, &sp, &tp)
                               : ConvertSameGeometry(source.memory.data(), found.Data(), &sp, &tp);
        const bool provided = !(IsRgb(sp.fccType) && tp.fccType == eZFCC_v210);
        ASSERT_EQ(hr, provided ? S_OK : E_FAIL);
        ModelConvert(source, target, std::min(sp.nWidth, tp.nWidth), std::min(std::abs(sp.nHeight), std::abs(tp.nHeight)));
        ASSERT_EQ(found.Memory(), target.memory);
        ASSERT_TRUE(found.GuardsStand());
    }

    void CheckSigns(eZFCC from, eZFCC to, int32_t width, int32_t height, int32_t padding, bool cut) {
        for (const int32_t signs : {0, 1, 2, 3}) {
            if (((signs & 1) != 0 && !IsRgb(from)) || ((signs & 2) != 0 && !IsRgb(to))) continue;
            // Bit set: bottom-up.
            const int32_t sh = IsRgb(from) && (signs & 1) == 0 ? -height : height;
            const int32_t th = IsRgb(to) && (signs & 2) == 0 ? -height : height;
            SCOPED_TRACE(testing::Message() << std::hex << from << " to " << to << std::dec << ", " << width << " x " << sh
                                            << ", " << th << ", padding " << padding << (cut ? ", cut" : ""));
            Check(ModelRecord(from, width, sh, padding), ModelRecord(to, width, th, padding), cut);
            if (HasFatalFailure()) return;
        }
    }
};

INSTANTIATE_TEST_SUITE_P(Level, ConvertTest, testing::Values(KernelLevel::Reference, KernelLevel::Avx2),
                         [](const auto &p) { return p.param == KernelLevel::Avx2 ? "Avx2" : "Reference"; });

TEST_P(ConvertTest, EveryRouteAtManyWidths) {
    for (const eZFCC from : kFormats)
        for (const eZFCC to : kFormats)
            for (int32_t width = 1; width <= 67; ++width)
                for (const int32_t height : {1, 3})
                    for (const bool cut : {false, true}) {
                        CheckSigns(from, to, width, height, 0, cut);
                        if (HasFatalFailure()) return;
                    }
}

TEST_P(ConvertTest, EveryRouteOverTheSeamsOfItsPieces) {
    for (const eZFCC from : kFormats)
        for (const eZFCC to : kFormats)
            for (const int32_t width : {383, 384, 385, 511, 512, 513, 769, 1025, 1922})
                for (const int32_t padding : {0, 4, 64}) {
                    CheckSigns(from, to, width, 2, padding, padding == 4);
                    if (HasFatalFailure()) return;
                }
}

TEST_P(ConvertTest, CommonPartOfDifferentSizes) {
    for (const eZFCC from : kFormats)
        for (const eZFCC to : kFormats) {
            const int32_t sign = IsRgb(to) ? -1 : 1;
            Check(ModelRecord(from, 30, 5, 8), ModelRecord(to, 21, sign * 7, 0), false);
            Check(ModelRecord(from, 21, IsRgb(from) ? -7 : 7, 0), ModelRecord(to, 30, 5, 8), true);
            if (HasFatalFailure()) return;
        }
}

// Heights outside the RGB family have no direction.
TEST_P(ConvertTest, NegativeHeightOf422DoesNotFlip) {
    Check(ModelRecord(eZFCC_UYVY, 8, -3, 0), ModelRecord(eZFCC_YUY2, 8, 3, 0), false);
    Check(ModelRecord(eZFCC_YUY2, 8, 3, 0), ModelRecord(eZFCC_UYVY, 8, -3, 0), false);
}

TEST_P(ConvertTest, RowBytesAreCompletedFromTheWidth) {
    Z_VID_PROPS sp = ModelRecord(eZFCC_UYVY, 5, 3, 0);
    Z_VID_PROPS tp = ModelRecord(eZFCC_RGB24, 5, 3, 0);
    Picture source = ModelPicture(sp, 1, false);
    Picture target = ModelPicture(tp, 2, false);
    Guarded found(target.memory);
    sp.nRowBytes = -7;
    tp.nRowBytes = 0;
    EXPECT_EQ(ConvertSameGeometry(source.memory.data(), found.Data(), &sp, &tp), S_OK);
    ModelConvert(source, target, 5, 3);
    EXPECT_EQ(found.Memory(), target.memory);
    // The caller's records stay as they are.
    EXPECT_EQ(sp.nRowBytes, -7);
    EXPECT_EQ(tp.nRowBytes, 0);
}

TEST_P(ConvertTest, DecoderWritesWholePairsBehindItsBlocks) {
    // Width 2: two rounds, so two pairs: 16 bytes; the row has room for them.
    const Z_VID_PROPS sp = ModelRecord(eZFCC_HDYC, 2, 1, 4);
    const Z_VID_PROPS tp = ModelRecord(eZFCC_RGB32, 2, -1, 16);
    const Bytes src = {128, 16, 128, 235, 128, 126, 128, 16};
    Bytes dst(24, 7);
    ASSERT_EQ(ConvertSameGeometry(src.data(), dst.data(), &sp, &tp), S_OK);
    // 298 * 219 >> 8 = 254; 298 * 110 >> 8 = 128.
    const Bytes expected = {0, 0, 0, 255, 254, 254, 254, 255, 128, 128, 128, 255, 0, 0, 0, 255, 7, 7, 7, 7, 7, 7, 7, 7};
    EXPECT_EQ(dst, expected);
    // A pair that is only partly in the source is not done.
    Bytes shorter(24, 7);
    ASSERT_EQ(ConvertSameGeometry(src.data(), 7, shorter.data(), 24, &sp, &tp), S_OK);
    EXPECT_TRUE(std::equal(shorter.begin(), shorter.begin() + 8, expected.begin()));
    EXPECT_EQ(Bytes(shorter.begin() + 8, shorter.end()), Bytes(16, 7));
}

TEST_P(ConvertTest, DecoderSurplusOnABottomUpTargetStaysOnTheRowAbove) {
    const Z_VID_PROPS sp = ModelRecord(eZFCC_HDYC, 1, 2, 0);
    const Z_VID_PROPS tp = ModelRecord(eZFCC_RGB32, 1, 2, 0);
    const Bytes src = {128, 16, 128, 235, 128, 126, 128, 235};
    Bytes dst(8, 7);
    ASSERT_EQ(ConvertSameGeometry(src.data(), dst.data(), &sp, &tp), S_OK);
    // The lower row lies first in memory; its second pixel replaced the upper row.
    EXPECT_EQ(dst, (Bytes{128, 128, 128, 255, 254, 254, 254, 255}));
}

TEST_P(ConvertTest, HdycToRgb24WritesFourBytesAPixel) {
    const Z_VID_PROPS sp = ModelRecord(eZFCC_HDYC, 4, 2, 0);
    const Z_VID_PROPS tp = ModelRecord(eZFCC_RGB24, 4, -2, 0);
    const Bytes src = {128, 16, 128, 16, 128, 16, 128, 235, 128, 235, 128, 235, 128, 16, 128, 16};
    Guarded found(Bytes(24, 7));
    ASSERT_EQ(ConvertSameGeometry(src.data(), found.Data(), &sp, &tp), S_OK);
    // The second row covers the end of the first one, and its own end is dropped.
    EXPECT_EQ(found.Memory(),
              (Bytes{0, 0, 0, 255, 0, 0, 0, 255, 0, 0, 0, 255, 254, 254, 254, 255, 254, 254, 254, 255, 0, 0, 0, 255}));
    EXPECT_TRUE(found.GuardsStand());
}

TEST_P(ConvertTest, EncoderRestTakesWhatFollowsInMemory) {
    const Z_VID_PROPS sp = ModelRecord(eZFCC_RGB32, 1, -2, 0);
    const Z_VID_PROPS tp = ModelRecord(eZFCC_HDYC, 1, 2, 0);
    const Bytes src = {0, 0, 0, 0, 255, 255, 255, 0};
    Bytes dst(8, 7);
    ASSERT_EQ(ConvertSameGeometry(src.data(), dst.data(), &sp, &tp), S_OK);
    // Row 0 with the first pixel of row 1 behind it, row 1 with itself; 222 * 255 >> 8 = 221.
    EXPECT_EQ(dst, (Bytes{127, 16, 128, 237, 127, 237, 128, 237}));
    // With three left the last one has no output.
    const Z_VID_PROPS sp3 = ModelRecord(eZFCC_RGB32, 3, -1, 0);
    const Z_VID_PROPS tp3 = ModelRecord(eZFCC_HDYC, 3, 1, 0);
    const Bytes src3(12, 0);
    Bytes dst3(8, 7);
    ASSERT_EQ(ConvertSameGeometry(src3.data(), dst3.data(), &sp3, &tp3), S_OK);
    EXPECT_EQ(dst3, (Bytes{128, 16, 128, 16, 7, 7, 7, 7}));
}

TEST_P(ConvertTest, Rgb24ToHdycEndsWithABlackPartner) {
    const Z_VID_PROPS sp = ModelRecord(eZFCC_RGB24, 1, -2, 0);
    const Z_VID_PROPS tp = ModelRecord(eZFCC_HDYC, 1, 2, 0);
    const Bytes src = {255, 255, 255, 99, 255, 255, 255, 99};
    Bytes dst(8, 7);
    ASSERT_EQ(ConvertSameGeometry(src.data(), dst.data(), &sp, &tp), S_OK);
    EXPECT_EQ(dst, (Bytes{127, 237, 128, 16, 127, 237, 128, 16}));
}

TEST_P(ConvertTest, V210RowsThatAreNoWholeBlocks) {
    // 7 pixels: 2 blocks are packed, 1 is unpacked; the odd pixel is not written.
    const Z_VID_PROPS uyvy = ModelRecord(eZFCC_UYVY, 7, 1, 0);
    const Z_VID_PROPS v210 = ModelRecord(eZFCC_v210, 7, 1, 0);
    Bytes src(16, 200);
    Bytes packed(128, 7);
    ASSERT_EQ(ConvertSameGeometry(src.data(), packed.data(), &uyvy, &v210), S_OK);
    // Of the last block 4 bytes were there, the others count as 0.
    EXPECT_EQ(packed[16 + 4], 200 << 2 & 255);
    EXPECT_EQ(packed[16 + 8], 0);
    EXPECT_EQ(packed[32], 7);
    Bytes back(16, 7);
    ASSERT_EQ(ConvertSameGeometry(packed.data(), back.data(), &v210, &uyvy), S_OK);
    EXPECT_EQ(back, (Bytes{200, 200, 200, 200, 200, 200, 200, 200, 200, 200, 200, 200, 7, 7, 7, 7}));
    // On to RGB the unwritten pixel counts as zeros: green.
    const Z_VID_PROPS rgb = ModelRecord(eZFCC_RGB32, 7, -1, 0);
    Bytes pixels(28, 7);
    ASSERT_EQ(ConvertSameGeometry(packed.data(), pixels.data(), &v210, &rgb), S_OK);
    EXPECT_EQ(Bytes(pixels.begin() + 24, pixels.end()), (Bytes{0, 136, 0, 255}));
}

TEST_P(ConvertTest, AlphaByRoute) {
    const Z_VID_PROPS rgb32 = ModelRecord(eZFCC_RGB32, 1, -1, 0);
    const Z_VID_PROPS argb = ModelRecord(eZFCC_ARGB32, 1, -1, 0);
    const Z_VID_PROPS rgb24 = ModelRecord(eZFCC_RGB24, 1, -1, 0);
    const Bytes src = {1, 2, 3, 4};
    Bytes dst(4, 9);
    ASSERT_EQ(ConvertSameGeometry(src.data(), dst.data(), &rgb32, &argb), S_OK);
    EXPECT_EQ(dst, src);
    ASSERT_EQ(ConvertSameGeometry(src.data(), dst.data(), &rgb24, &argb), S_OK);
    EXPECT_EQ(dst, (Bytes{1, 2, 3, 255}));
    dst[3] = 9;
    ASSERT_EQ(ConvertSameGeometry(src.data(), dst.data(), &rgb24, &rgb32), S_OK);
    EXPECT_EQ(dst, (Bytes{1, 2, 3, 255}));
}

TEST(ConvertRoute, OnlyTwoRoutesAreToldTheAlpha) {
    for (const eZFCC from : kFormats)
        for (const eZFCC to : kFormats) {
            const ConvertRoute *route = ConvertRouteFind(from, to);
            ASSERT_NE(route, nullptr);
            const bool told = (from == eZFCC_UYVY || from == eZFCC_YUY2) && (to == eZFCC_RGB32 || to == eZFCC_ARGB32);
            EXPECT_EQ(route->nAlphaArg, told ? -1 : 1) << std::hex << from << " " << to;
            EXPECT_EQ(route->routine == nullptr, IsRgb(from) && to == eZFCC_v210);
        }
    EXPECT_EQ(ConvertRouteFind(eZFCC_HDYC, eZFCC_RGB24)->routine, ConvertRouteFind(eZFCC_HDYC, eZFCC_RGB32)->routine);
}

TEST(ConvertStatus, FormatsWithoutClass) {
    const Bytes src(4096);
    Bytes dst(4096, 9);
    const Z_VID_PROPS good = ModelRecord(eZFCC_UYVY, 4, 2, 0);
    for (const eZFCC fcc : test::FormatsWhere([](const FormatRow &row) { return row.route == RouteClass::None; })) {
        Z_VID_PROPS other = good;
        other.fccType = fcc;
        other.nRowBytes = 256;
        EXPECT_EQ(ConvertSameGeometry(src.data(), dst.data(), &good, &other), kVfwEInvalidSubtype) << std::hex << fcc;
        EXPECT_EQ(ConvertSameGeometry(src.data(), dst.data(), &other, &good), kVfwEInvalidSubtype) << std::hex << fcc;
        EXPECT_EQ(ConvertSameGeometry(src.data(), dst.data(), &other, &other), kVfwEInvalidSubtype) << std::hex << fcc;
        EXPECT_EQ(ConvertRouteFind(fcc, eZFCC_UYVY), nullptr);
        EXPECT_EQ(ConvertRouteFind(eZFCC_UYVY, fcc), nullptr);
    }
    EXPECT_EQ(dst, Bytes(4096, 9));
}

TEST(ConvertStatus, RgbToV210IsNotProvided) {
    const Bytes src(64);
    Bytes dst(256, 9);
    const Z_VID_PROPS v210 = ModelRecord(eZFCC_v210, 4, 2, 0);
    for (const eZFCC fcc : {eZFCC_RGB32, eZFCC_ARGB32, eZFCC_RGB24}) {
        const Z_VID_PROPS rgb = ModelRecord(fcc, 4, -2, 0);
        EXPECT_EQ(ConvertSameGeometry(src.data(), dst.data(), &rgb, &v210), E_FAIL);
    }
    EXPECT_EQ(dst, Bytes(256, 9));
}

TEST(ConvertStatus, MissingAndAbsurdArguments) {
    constexpr int32_t kMost = std::numeric_limits<int32_t>::max();
    constexpr int32_t kLeast = std::numeric_limits<int32_t>::min();
    const Bytes src(64);
    Bytes dst(64, 9);
    const Z_VID_PROPS good = ModelRecord(eZFCC_RGB32, 4, -2, 0);
    EXPECT_EQ(ConvertSameGeometry(nullptr, dst.data(), &good, &good), E_POINTER);
    EXPECT_EQ(ConvertSameGeometry(src.data(), nullptr, &good, &good), E_POINTER);
    EXPECT_EQ(ConvertSameGeometry(src.data(), dst.data(), nullptr, &good), E_POINTER);
    EXPECT_EQ(ConvertSameGeometry(src.data(), dst.data(), &good, nullptr), E_POINTER);
    struct Absurd {
        int32_t width, height, rowBytes;
        HRESULT hr;
    };
    const Absurd records[] = {{0, 2, 0, E_UNEXPECTED},
                              {0, 2, 16, E_UNEXPECTED},
                              {4, 0, 16, E_UNEXPECTED},
                              {-4, 2, 16, E_UNEXPECTED},
                              {-4, -2, 0, E_UNEXPECTED},
                              {kLeast, 2, 16, E_UNEXPECTED},
                              {kMost, 1, 0, kVfwEInvalidMediaType},
                              {kMost, kMost, kMost, kVfwEInvalidMediaType},
                              {4, kMost, 16, kVfwEInvalidMediaType},
                              {4, kLeast, 16, kVfwEInvalidMediaType},
                              {4, 2, kMost, kVfwEInvalidMediaType}};
    for (const eZFCC fcc : kFormats)
        for (const Absurd &a : records) {
            Z_VID_PROPS bad = ModelRecord(fcc, 4, 2, 0);
            bad.nWidth = a.width;
            bad.nHeight = a.height;
            bad.nRowBytes = a.rowBytes;
            EXPECT_EQ(ConvertSameGeometry(src.data(), dst.data(), &bad, &good), a.hr) << a.width << " " << a.height;
            EXPECT_EQ(ConvertSameGeometry(src.data(), dst.data(), &good, &bad), a.hr) << a.width << " " << a.height;
        }
    // A disabled format is completed by nothing: rows of any step, backwards even.
    for (const int32_t rowBytes : {1, -16, kLeast}) {
        Z_VID_PROPS disabled = good;
        disabled.eVideoFormat = eZVF_Disabled;
        disabled.nRowBytes = rowBytes;
        EXPECT_EQ(ConvertSameGeometry(src.data(), dst.data(), &disabled, &good), kVfwEInvalidMediaType) << rowBytes;
        EXPECT_EQ(ConvertSameGeometry(src.data(), dst.data(), &good, &disabled), kVfwEInvalidMediaType) << rowBytes;
    }
    EXPECT_EQ(dst, Bytes(64, 9));
}

TEST(ConvertStatus, MemoryThatDoesNotHoldTheRecord) {
    const Bytes src(64);
    Bytes dst(64, 9);
    const Z_VID_PROPS rgb = ModelRecord(eZFCC_RGB32, 3, -2, 4);    // needs 16 + 12
    const Z_VID_PROPS uyvy = ModelRecord(eZFCC_UYVY, 3, 2, 0);     // needs 8 + 8
    EXPECT_EQ(ConvertSameGeometry(src.data(), 27, dst.data(), 64, &rgb, &uyvy), kVfwEInvalidMediaType);
    EXPECT_EQ(ConvertSameGeometry(src.data(), 64, dst.data(), 15, &rgb, &uyvy), kVfwEInvalidMediaType);
    EXPECT_EQ(ConvertSameGeometry(src.data(), -1, dst.data(), 64, &rgb, &uyvy), kVfwEInvalidMediaType);
    EXPECT_EQ(dst, Bytes(64, 9));
    EXPECT_EQ(ConvertSameGeometry(src.data(), 28, dst.data(), 16, &rgb, &uyvy), S_OK);
    EXPECT_EQ(ConvertSameGeometry(nullptr, 28, dst.data(), 16, &rgb, &uyvy), E_POINTER);
    EXPECT_EQ(ConvertSameGeometry(src.data(), 28, nullptr, 16, &rgb, &uyvy), E_POINTER);
}

// The height of a one-line record is a sign only where a format is known; here it is a row count.
TEST(ConvertStatus, OneLineOfAKnownFormat) {
    Z_VID_PROPS sp = ModelRecord(eZFCC_UYVY, 1280, 1, 0);
    sp.eVideoFormat = eZVF_HD720_50p;
    Z_VID_PROPS tp = ModelRecord(eZFCC_RGB32, 1280, -1, 0);
    tp.eVideoFormat = eZVF_HD720_50p;
    const Picture source = ModelPicture(sp, 1, false);
    Picture target = ModelPicture(tp, 2, false);
    Guarded found(target.memory);
    EXPECT_EQ(ConvertSameGeometry(source.memory.data(), found.Data(), &sp, &tp), S_OK);
    ModelConvert(source, target, 1280, 1);
    EXPECT_EQ(found.Memory(), target.memory);
    EXPECT_TRUE(found.GuardsStand());
}

}    // namespace
}    // namespace zck
