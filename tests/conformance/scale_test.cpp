// Scaling against a plain model: the vertical scaler byte for byte, the engines over all formats, scans, row orders and
// outputs.
#include <gtest/gtest.h>

#include <random>

#include "frames/media/pixel_format.h"
#include "imaging/engines/convert_frame.h"
#include "imaging/engines/fit_rects.h"
#include "imaging/scale/scale_dyn.h"
#include "tests/conformance/both_levels.h"
#include "tests/conformance/dice.h"
#include "tests/conformance/scale_model.h"

namespace conformance {
namespace {

using namespace zck;

TEST(Scaling, RowsByteForByte) {
    const uint32_t seed = std::random_device{}();
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    Dice dice(seed);
    DynScaler scaler;
    for (int32_t round = 0; round < 3000; ++round) {
        const int32_t width = dice(1, 70), sh = dice(1, 60), dh = dice(1, 60);
        const int64_t ss = width + dice(0, 9), ds = width + dice(0, 9);
        const int32_t flags = dice(0, 3) | (dice(0, 3) == 0 ? 16 : 0) | (dice(0, 3) == 0 ? 32 : 0) | (dice(0, 3) == 0 ? 64 : 0);
        constexpr double kFactors[] = {-1.0, 0.0, 0.25, 0.4, 0.5, 0.75, 0.8, 0.9, 1.0, 1.7};
        const double factor = kFactors[dice(0, 9)];
        const int32_t a = dice(0, 1) != 0 ? sh : -sh, b = dice(0, 1) != 0 ? dh : -dh;
        // The last row ends with its last pixel.
        Bytes src = dice.NoiseOrLimits(static_cast<size_t>(ss * (sh - 1) + width));
        Bytes expected = dice.Noise(static_cast<size_t>(ds * (dh - 1) + width));
        Bytes found = expected;
        ScaleRowsModel({&src, 0, ss}, {&expected, 0, ds}, a, b, width, factor, flags);
        ASSERT_EQ(Scale_Dyn(&scaler, src.data(), found.data(), a, b, width, ss, ds, factor, flags), S_OK);
        ASSERT_EQ(expected, found) << a << " to " << b << " rows, " << width << " bytes, flags " << flags << " factor "
                                   << factor;
    }
}

constexpr eZFCC kFormats[] = {eZFCC_UYVY, eZFCC_HDYC, eZFCC_YUY2,  eZFCC_YVYU,  eZFCC_I420,
                              eZFCC_YV12, eZFCC_NV12, eZFCC_RGB24, eZFCC_RGB32, eZFCC_ARGB32};
constexpr int32_t kCodes[] = {1, 2, 4, 5, 6, 7, 8, 16};

Z_VID_PROPS Record(Dice &dice, eZFCC fcc) {
    Z_VID_PROPS p = {};
    p.fccType = fcc;
    p.nWidth = dice(0, 9) == 0 ? dice(2, 5) : dice(6, 40);
    p.nHeight = dice(0, 9) == 0 ? dice(2, 5) : dice(6, 40);
    if (IsRgbFormat(fcc) && dice(0, 1) != 0) p.nHeight = -p.nHeight;
    p.nRowBytes = RowBytes(fcc, p.nWidth);
    constexpr eZInterlace kScans[] = {eZI_Progressive, eZI_Field1First, eZI_Field2First};
    p.eInterlace = kScans[dice(0, 2)];
    p.eScaleType = static_cast<eZScaleType>(dice(0, 4));
    if (dice(0, 1) != 0) {
        p.nAspectX = static_cast<int16_t>(dice(1, 9));
        p.nAspectY = static_cast<int16_t>(dice(1, 9));
    }
    return p;
}

// Two units where a sum of two reals that were rounded each is rounded again; of YUV in RGB four more.
int32_t Tolerance(const Z_VID_PROPS &sp, const Z_VID_PROPS &tp) {
    if (IsRgbFormat(sp.fccType) == IsRgbFormat(tp.fccType)) return 1;
    return IsRgbFormat(tp.fccType) ? 6 : 2;
}

// Whole rows, of planar pictures one and a half times.
size_t FrameBytes(const Z_VID_PROPS &p) {
    const size_t luma = static_cast<size_t>(p.nRowBytes) * static_cast<size_t>(std::abs(p.nHeight));
    return Is420(p.fccType) ? luma * 3 / 2 : luma;
}

using Engine = HRESULT (*)(FieldConverter *, const EngineSource &, const EngineTarget &, int32_t);
using Model = bool (*)(const Bytes &, const EngineOutputs &, const Z_VID_PROPS &, const Z_VID_PROPS &, int32_t);

void CheckEngine(Engine engine, Model model, uint32_t seed, int32_t rounds) {
    Dice dice(seed);
    FieldConverter ctx;
    int32_t compared = 0;
    for (int32_t round = 0; round < rounds; ++round) {
        const Z_VID_PROPS sp = Record(dice, kFormats[dice(0, 9)]);
        Z_VID_PROPS tp = Record(dice, kFormats[dice(0, 9)]);
        if (dice(0, 5) == 0) tp.nWidth = sp.nWidth, tp.nRowBytes = RowBytes(tp.fccType, tp.nWidth);
        const int32_t q = kCodes[dice(0, 7)];
        const int32_t wanted = dice(0, 2) != 0 ? 1 : dice(1, 7);
        SCOPED_TRACE(testing::Message() << "round " << round << ": " << std::hex << sp.fccType << " to " << tp.fccType
                                        << std::dec << ", " << sp.nWidth << " x " << sp.nHeight << " to " << tp.nWidth << " x "
                                        << tp.nHeight << ", scans " << sp.eInterlace << " " << tp.eInterlace << ", types "
                                        << sp.eScaleType << " " << tp.eScaleType << ", code " << q << ", outputs " << wanted);
        const Bytes memory = dice.NoiseOrLimits(FrameBytes(sp));
        const size_t bytes = FrameBytes(tp);
        Bytes expected[3], found[3];
        for (int32_t i = 0; i < 3; ++i) found[i] = expected[i] = dice.Noise(bytes);
        const auto given = [wanted](int32_t i, Bytes *b) { return (wanted >> i & 1) != 0 ? b : nullptr; };
        const auto data = [wanted](int32_t i, Bytes *b) { return (wanted >> i & 1) != 0 ? b->data() : nullptr; };
        const EngineOutputs outputs = {given(0, &expected[0]), given(1, &expected[1]), given(2, &expected[2])};
        if (IsStraightModel(outputs, sp, tp) || !model(memory, outputs, sp, tp, q)) continue;
        const EngineTarget target = {data(0, &found[0]), data(1, &found[1]), data(2, &found[2]), static_cast<int64_t>(bytes),
                                     &tp};
        const HRESULT hr = engine(&ctx, {memory.data(), static_cast<int64_t>(memory.size()), &sp}, target, q);
        ASSERT_EQ(hr, S_OK);
        ++compared;
        const int32_t tolerance = q == 1 ? 1 : Tolerance(sp, tp);
        for (int32_t i = 0; i < 3; ++i)
            for (size_t b = 0; b < bytes; ++b)
                ASSERT_LE(std::abs(expected[i][b] - found[i][b]), tolerance) << "output " << i << " byte " << b;
    }
    EXPECT_GT(compared, rounds / 2);
}

TEST(Scaling, ThePlanarEngine) {
    const uint32_t seed = std::random_device{}();
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    BothLevels([&] { CheckEngine(ConvertFrame2, Frame2Model, seed, 2500); });
}

TEST(Scaling, TheHighQualityEngine) {
    const uint32_t seed = std::random_device{}();
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    BothLevels([&] { CheckEngine(ConvertFrame3, Frame3Model, seed, 2500); });
}

TEST(Scaling, Rectangles) {
    const uint32_t seed = std::random_device{}();
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    Dice dice(seed);
    constexpr int32_t kWidths[] = {2, 6, 7, 360, 720, 1280, 1440, 1918, 1920, 1922, 2048},
                      kHeights[] = {2, 5, 240, 480, 486, 540, 576, 720, 1080, 1088};
    for (int32_t round = 0; round < 20000; ++round) {
        Z_VID_PROPS sp = Record(dice, eZFCC_UYVY), tp = Record(dice, eZFCC_UYVY);
        sp.nWidth = kWidths[dice(0, 10)], tp.nWidth = kWidths[dice(0, 10)];
        sp.nHeight = kHeights[dice(0, 9)], tp.nHeight = kHeights[dice(0, 9)];
        const FitModel fit = FitRectsModel(sp, tp);
        const FittedRects found = FitRects(sp, tp);
        const auto same = [](const tagRECT &a, const tagRECT &b) {
            return a.left == b.left && a.top == b.top && a.right == b.right && a.bottom == b.bottom;
        };
        ASSERT_TRUE(same(fit.src, found.source) && same(fit.dst, found.target))
            << sp.nWidth << " x " << sp.nHeight << " (" << sp.nAspectX << ":" << sp.nAspectY << ") to " << tp.nWidth << " x "
            << tp.nHeight << " (" << tp.nAspectX << ":" << tp.nAspectY << "), types " << sp.eScaleType << " " << tp.eScaleType;
        ASSERT_GT(found.source.right, found.source.left);
        ASSERT_GT(found.target.bottom, found.target.top);
    }
}

}    // namespace
}    // namespace conformance
