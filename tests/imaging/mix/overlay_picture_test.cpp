// Pictures over pictures: formats, places, row orders, statuses.
#include "imaging/mix/overlay_picture.h"

#include <cmath>

#include "imaging/mix/one_size.h"
#include "platform/status.h"
#include "tests/imaging/mix/canvas.h"

namespace zck::test {
namespace {

HRESULT Lay(Canvas &target, const Canvas &over, int32_t x, int32_t y, double opacity = 1.0) {
    return OverlayPicture(target.Target(), over.Overlay(), x, y, opacity);
}

// A product of 128ths, to the nearest, ties to even.
int32_t Share(int32_t value, int32_t q) { return static_cast<int32_t>(std::nearbyint(value * q / 128.0)); }

uint8_t Constant(uint8_t under, uint8_t over, int32_t q) {
    return static_cast<uint8_t>(std::min(255, Share(under, 128 - q) + Share(over, q)));
}

// The overlay's pixel over a premultiplied target, all four bytes.
Bytes Composed(const Bytes &under, const Bytes &over) {
    Bytes out;
    for (size_t i = 0; i < 4; ++i)
        out.push_back(static_cast<uint8_t>(std::min(255, over[i] + (under[i] * (255 - over[3]) + 127) / 255)));
    return out;
}

TEST(OverlayPicture, AtOpacityOneRgb32IsCopied) {
    Canvas target(eZFCC_RGB32, 20, -10);
    const Canvas before = target;
    Canvas over(eZFCC_RGB32, 7, -4, 2);
    ASSERT_EQ(S_OK, Lay(target, over, 5, 3));
    for (int64_t y = 0; y < 10; ++y)
        for (int64_t x = 0; x < 20; ++x) {
            const bool inside = x >= 5 && x < 12 && y >= 3 && y < 7;
            ASSERT_EQ(target.Pixel(x, y), inside ? over.Pixel(x - 5, y - 3) : Canvas(before).Pixel(x, y)) << x << ", " << y;
        }
}

TEST(OverlayPicture, HalfOfRgb24RoundsBothHalvesToEven) {
    Canvas target(eZFCC_RGB24, 33, -5);
    Canvas before = target;
    Canvas over(eZFCC_RGB24, 33, -5, 2);
    ASSERT_EQ(S_OK, Lay(target, over, 0, 0, 0.5));
    for (int64_t y = 0; y < 5; ++y)
        for (int64_t i = 0; i < 99; ++i)
            ASSERT_EQ(target.At(0, y)[i], Constant(before.At(0, y)[i], over.At(0, y)[i], 64)) << y << ", " << i;
}

TEST(OverlayPicture, BytesOf422AreMixedAlike) {
    for (const eZFCC fcc : {eZFCC_UYVY, eZFCC_HDYC, eZFCC_YUY2, eZFCC_YVYU}) {
        Canvas target(fcc, 22, 6);
        Canvas before = target;
        Canvas over(fcc, 22, 6, 3);
        ASSERT_EQ(S_OK, Lay(target, over, 0, 0, 0.3));
        for (int64_t y = 0; y < 6; ++y)
            for (int64_t i = 0; i < 44; ++i)
                ASSERT_EQ(target.At(0, y)[i], Constant(before.At(0, y)[i], over.At(0, y)[i], 38)) << fcc << y << ", " << i;
    }
}

TEST(OverlayPicture, UyvyAndHdycAreMixedAsTheyStand) {
    Canvas target(eZFCC_HDYC, 8, 2);
    Canvas over(eZFCC_UYVY, 8, 2, 2);
    ASSERT_EQ(S_OK, Lay(target, over, 0, 0));
    EXPECT_EQ(target.memory, over.memory);
}

TEST(OverlayPicture, OpacityIsClampedAndNoNumberIsZero) {
    const Canvas before(eZFCC_RGB32, 8, -3);
    Canvas over(eZFCC_RGB32, 8, -3, 2);
    for (const double none : {0.0, -1.0, -1e300, -std::numeric_limits<double>::infinity(), std::nan("")}) {
        Canvas target = before;
        ASSERT_EQ(S_OK, Lay(target, over, 0, 0, none));
        EXPECT_EQ(target.memory, before.memory) << none;
    }
    for (const double all : {1.0, 1.5, 1e300, std::numeric_limits<double>::infinity(), 0.9999}) {
        Canvas target = before;
        ASSERT_EQ(S_OK, Lay(target, over, 0, 0, all));
        EXPECT_EQ(target.memory, over.memory) << all;
    }
}

// Odd left edges of 4:2:2 go up to the next even column, and the last column is lost.
TEST(OverlayPicture, OddPlacesOf422MoveToTheRight) {
    Canvas target(eZFCC_UYVY, 40, 4);
    Canvas before = target;
    Canvas over(eZFCC_UYVY, 8, 4, 2);
    ASSERT_EQ(S_OK, Lay(target, over, 21, 0));
    for (int64_t x = 0; x < 40; ++x)
        EXPECT_EQ(target.Pixel(x, 1), x >= 22 && x < 28 ? over.Pixel(x - 22, 1) : before.Pixel(x, 1)) << x;
}

TEST(OverlayPicture, WhatIsLeftOfTheTargetGoesByTheOverlaysOwnFormat) {
    Canvas target(eZFCC_UYVY, 40, 4);
    Canvas over(eZFCC_UYVY, 20, 4, 2);
    ASSERT_EQ(S_OK, Lay(target, over, -11, 0));
    EXPECT_EQ(target.Pixel(0, 2), over.Pixel(12, 2));
    // An ARGB32 overlay starts at its pixel 11.
    Canvas plain(eZFCC_RGB32, 40, -4);
    Canvas alpha(eZFCC_ARGB32, 20, -4, 2);
    const Bytes under = plain.Pixel(0, 2);
    ASSERT_EQ(S_OK, Lay(plain, alpha, -11, 0));
    EXPECT_EQ(plain.Pixel(0, 2), Composed(under, alpha.Pixel(11, 2)));
}

TEST(OverlayPicture, NothingOnTheTargetIsAnAnswer) {
    const Canvas before(eZFCC_RGB24, 10, -10);
    for (const auto &[x, y] : {std::pair{10, 0}, {-4, 0}, {0, 10}, {0, -4}, {INT32_MAX, 0}, {INT32_MIN, INT32_MIN}}) {
        Canvas target = before;
        EXPECT_EQ(S_FALSE, Lay(target, Canvas(eZFCC_RGB24, 4, -4), x, y));
        EXPECT_EQ(S_FALSE, Lay(target, Canvas(eZFCC_ARGB32, 4, -4), x, y));
        EXPECT_EQ(S_FALSE, Lay(target, Canvas(eZFCC_UYVY, 4, 4), x, y));
        EXPECT_EQ(target.memory, before.memory);
    }
    Canvas v210(eZFCC_v210, 12, 4);
    EXPECT_EQ(S_FALSE, Lay(v210, Canvas(eZFCC_ARGB32, 4, -4), 12, 0));
}

TEST(OverlayPicture, RowOrdersShowTheSamePicture) {
    for (const eZFCC fcc : {eZFCC_RGB24, eZFCC_RGB32, eZFCC_ARGB32})
        for (const eZFCC overFcc : {eZFCC_RGB24, eZFCC_RGB32, eZFCC_ARGB32}) {
            const Canvas under(fcc, 9, -8), over(overFcc, 9, -8, 2);
            Canvas expected = under;
            ASSERT_EQ(S_OK, Lay(expected, over, 0, 0, 0.6));
            for (const bool turnUnder : {false, true})
                for (const bool turnOver : {false, true}) {
                    Canvas target = turnUnder ? TurnedOver(under) : under;
                    ASSERT_EQ(S_OK, Lay(target, turnOver ? TurnedOver(over) : over, 0, 0, 0.6));
                    if (turnUnder) target = TurnedOver(target);
                    EXPECT_EQ(target.memory, expected.memory) << fcc << ", " << overFcc << turnUnder << turnOver;
                }
        }
    for (const eZFCC fcc : {eZFCC_UYVY, eZFCC_YUY2})
        for (const eZFCC overFcc : {eZFCC_RGB24, eZFCC_RGB32, eZFCC_ARGB32}) {
            const Canvas under(fcc, 10, 8), over(overFcc, 10, -8, 2);
            Canvas one = under, two = under;
            ASSERT_EQ(S_OK, Lay(one, over, 0, 0, 0.6));
            ASSERT_EQ(S_OK, Lay(two, TurnedOver(over), 0, 0, 0.6));
            EXPECT_EQ(one.memory, two.memory) << fcc << ", " << overFcc;
        }
}

// The view of a bottom-up picture starts one row lower, unless it reaches the bottom.
TEST(OverlayPicture, InABottomUpTargetAPartLiesOneRowLower) {
    Canvas target(eZFCC_RGB32, 4, 10);
    Canvas before = target;
    Canvas over(eZFCC_RGB32, 4, -3, 2);
    ASSERT_EQ(S_OK, Lay(target, over, 0, 2));
    EXPECT_EQ(target.Pixel(1, 2), before.Pixel(1, 2));
    for (int64_t y = 0; y < 3; ++y) EXPECT_EQ(target.Pixel(1, 3 + y), over.Pixel(1, y));
}

// Of a bottom-up overlay that hangs over the bottom, the top is seen.
TEST(OverlayPicture, ABottomUpOverlayKeepsItsTop) {
    Canvas target(eZFCC_RGB32, 4, -6);
    const Canvas over(eZFCC_RGB32, 4, -4, 2);
    Canvas other = target;
    Canvas top = over;
    ASSERT_EQ(S_OK, Lay(target, over, 0, 4));
    ASSERT_EQ(S_OK, Lay(other, TurnedOver(over), 0, 4));
    EXPECT_EQ(target.memory, other.memory);
    EXPECT_EQ(target.Pixel(0, 4), top.Pixel(0, 0));
}

TEST(OverlayPicture, PremultipliedPixelsLieOverRgb32) {
    Canvas target(eZFCC_RGB32, 13, -3);
    Canvas before = target;
    Canvas over(eZFCC_ARGB32, 13, -3, 2);
    ASSERT_EQ(S_OK, Lay(target, over, 0, 0));
    for (int64_t x = 0; x < 13; ++x) EXPECT_EQ(target.Pixel(x, 1), Composed(before.Pixel(x, 1), over.Pixel(x, 1)));
}

// The overlay's fourth byte counts as it stands, here as an alpha of 0: the overlay is added.
TEST(OverlayPicture, Rgb32OverArgb32GoesByItsFourthByte) {
    Canvas target(eZFCC_ARGB32, 5, -2);
    Canvas over(eZFCC_RGB32, 5, -2);
    target.Fill({10, 20, 30, 40});
    over.Fill({1, 2, 250, 0});
    ASSERT_EQ(S_OK, Lay(target, over, 0, 0));
    EXPECT_EQ(target.Pixel(2, 1), (Bytes{11, 22, 255, 40}));
}

TEST(OverlayPicture, OverRgb24TheAlphaIsAWeight) {
    Canvas target(eZFCC_RGB24, 12, -3);
    Canvas before = target;
    Canvas over(eZFCC_ARGB32, 12, -3, 2);
    over.At(0, 0)[3] = 0;
    over.At(1, 0)[3] = 255;
    ASSERT_EQ(S_OK, Lay(target, over, 0, 0, 0.7));
    for (int64_t y = 0; y < 3; ++y)
        for (int64_t x = 0; x < 12; ++x)
            for (int64_t j = 0; j < 3; ++j) {
                const int32_t q = ((over.At(x, y)[3] + 1) * 90) >> 8;
                ASSERT_EQ(target.At(x, y)[j], Constant(before.At(x, y)[j], over.At(x, y)[j], q)) << x << ", " << y;
            }
}

TEST(OverlayPicture, AnEmptyOverlayLeaves422ButForRounding) {
    Canvas target(eZFCC_UYVY, 22, 3);
    const Canvas before = target;
    Canvas over(eZFCC_ARGB32, 22, -3);
    over.Fill({0, 0, 0, 0});
    ASSERT_EQ(S_OK, Lay(target, over, 0, 0));
    for (size_t i = 0; i < target.memory.size(); ++i) EXPECT_NEAR(target.memory[i], before.memory[i], 1);
    over.Fill({0, 0, 0, 255});
    ASSERT_EQ(S_OK, Lay(target, over, 0, 0));
    EXPECT_EQ(target.Pixel(4, 1), (Bytes{128, 16}));
}

// What is converted row by row is what the whole conversion gives.
TEST(OverlayPicture, ConvertedOverlaysAreThoseOfTheWholeConversion) {
    constexpr eZFCC kFormats[] = {eZFCC_RGB24, eZFCC_RGB32, eZFCC_ARGB32, eZFCC_UYVY, eZFCC_HDYC,
                                  eZFCC_YUY2,  eZFCC_YVYU,  eZFCC_I420,   eZFCC_v210, eZFCC_NV12};
    constexpr eZFCC kTargets[] = {eZFCC_RGB24, eZFCC_RGB32, eZFCC_ARGB32, eZFCC_UYVY, eZFCC_HDYC, eZFCC_YUY2, eZFCC_YVYU};
    for (const eZFCC from : kFormats)
        for (const eZFCC to : kTargets)
            for (const int32_t width : {18, 20, 21, 22, 23}) {
                if (from == eZFCC_v210 && to == eZFCC_YVYU) continue;    // no way
                if (width % 2 != 0 && !IsRgbFormat(from)) continue;
                if (from == to || from == eZFCC_ARGB32) continue;
                if (PlainFormat(from) == PlainFormat(to)) continue;
                const Canvas over(from, width, 6, 2);
                Canvas converted(to, width, IsRgbFormat(to) ? -6 : 6);
                std::fill(converted.memory.begin(), converted.memory.end(), uint8_t{0});
                ASSERT_EQ(S_OK, ConvertAtOneSize({over.memory.data(), static_cast<int64_t>(over.memory.size()), &over.props},
                                                 converted.memory.data(), static_cast<int64_t>(converted.memory.size()),
                                                 converted.props))
                    << from << ", " << to;
                Canvas one(to, 24, IsRgbFormat(to) ? -8 : 8, 3), two = one;
                ASSERT_EQ(S_OK, Lay(one, over, 4, -1, 0.4)) << from << ", " << to;
                ASSERT_EQ(S_OK, Lay(two, converted, 4, -1, 0.4));
                ASSERT_EQ(one.memory, two.memory) << from << ", " << to << ", " << width;
            }
}

TEST(OverlayPicture, A422OverlayOfOddWidthEndsAtTheEvenColumn) {
    for (const eZFCC to : {eZFCC_RGB32, eZFCC_RGB24, eZFCC_UYVY}) {
        Canvas target(to, 12, IsRgbFormat(to) ? -3 : 3);
        Canvas before = target;
        ASSERT_EQ(S_OK, Lay(target, Canvas(eZFCC_YUY2, 7, 3, 2), 0, 0));
        EXPECT_NE(target.Pixel(5, 1), before.Pixel(5, 1));
        for (int64_t x = 6; x < 12; ++x) EXPECT_EQ(target.Pixel(x, 1), before.Pixel(x, 1)) << x;
    }
}

// A square logo keeps its size and place, although the aspects of its two records differ.
TEST(OverlayPicture, AspectsAndScaleTypesDoNotFitTheOverlay) {
    Canvas over(eZFCC_I420, 16, 16, 2);
    Canvas plain(eZFCC_RGB32, 16, -16), odd(eZFCC_RGB32, 16, -16);
    ASSERT_EQ(S_OK, Lay(plain, over, 0, 0));
    over.props.nAspectX = 16;
    over.props.nAspectY = 3;
    over.props.eScaleType = eZST_Crop;
    over.props.e3DFormat = eZ3D_SideBySide;
    ASSERT_EQ(S_OK, Lay(odd, over, 0, 0));
    EXPECT_EQ(plain.memory, odd.memory);
}

TEST(OverlayPicture, SharedMemoryGivesTheBytesOfSeparateMemory) {
    for (const eZFCC fcc : {eZFCC_RGB24, eZFCC_RGB32, eZFCC_ARGB32, eZFCC_UYVY})
        for (const auto &[x, y] : {std::pair{2, 1}, {-2, -1}, {0, 0}, {4, -3}}) {
            Canvas shared(fcc, 16, IsRgbFormat(fcc) ? -8 : 8);
            Canvas target = shared;
            const Canvas over = shared;
            ASSERT_EQ(S_OK,
                      OverlayPicture(shared.Target(), {shared.props, shared.memory.data(), shared.Target().bytes}, x, y, 0.5));
            ASSERT_EQ(S_OK, Lay(target, over, x, y, 0.5));
            EXPECT_EQ(shared.memory, target.memory) << fcc << ", " << x;
        }
}

TEST(OverlayPicture, FormatsWithoutAMix) {
    const auto same = [](eZFCC fcc, int32_t height) {
        Canvas target(fcc, 48, height);
        const Canvas before = target;
        const HRESULT hr = Lay(target, Canvas(fcc, 48, height, 2), 0, 0);
        EXPECT_EQ(target.memory, before.memory);
        return hr;
    };
    EXPECT_EQ(kMixFormatsDiffer, same(eZFCC_RGB8, 4));
    EXPECT_EQ(kMixFormatsDiffer, same(eZFCC_v210, 4));
    EXPECT_EQ(kMixFormatsDiffer, same(eZFCC_r210, 4));
    EXPECT_EQ(kMixFormatsDiffer, same(eZFCC_I420, 4));
    EXPECT_EQ(kMixFormatsDiffer, same(eZFCC_NV12, 4));
    EXPECT_EQ(kMixFormatsDiffer, same(kFccRgb565, 4));
    const auto alpha = [](eZFCC fcc) {
        Canvas target(fcc, 48, 4);
        return Lay(target, Canvas(eZFCC_ARGB32, 8, -4, 2), 0, 0);
    };
    EXPECT_EQ(kVfwEInvalidSubtype, alpha(eZFCC_YVYU));
    EXPECT_EQ(kVfwEInvalidSubtype, alpha(eZFCC_I420));
    EXPECT_EQ(kVfwEInvalidSubtype, alpha(eZFCC_RGB8));
    EXPECT_EQ(E_FAIL, alpha(eZFCC_v210));
    Canvas v210(eZFCC_v210, 48, 4);
    EXPECT_EQ(E_FAIL, Lay(v210, Canvas(eZFCC_RGB24, 8, -4), 0, 0));
    Canvas r210(eZFCC_r210, 64, -4);
    EXPECT_EQ(kVfwEInvalidSubtype, Lay(r210, Canvas(eZFCC_RGB24, 8, -4), 0, 0));
}

TEST(OverlayPicture, RecordsAreCheckedTargetFirst) {
    Canvas target(eZFCC_RGB32, 8, -4);
    Canvas over(eZFCC_RGB32, 8, -4, 2);
    Canvas bad = over;
    bad.props.nWidth = 0;
    EXPECT_EQ(kMixInvalidRecord, Lay(target, bad, 0, 0));
    EXPECT_EQ(kMixInvalidRecord, Lay(bad, over, 0, 0));
    bad = over;
    bad.props.nRowBytes = -32;
    EXPECT_EQ(kMixInvalidRecord, Lay(target, bad, 0, 0));
    bad = over;
    bad.props.nHeight = -5;
    EXPECT_EQ(kVfwEInvalidMediaType, Lay(target, bad, 0, 0));
    EXPECT_EQ(kVfwEInvalidMediaType, Lay(target, bad, 100, 0));
    bad.props.nHeight = INT32_MIN;
    EXPECT_EQ(kVfwEInvalidMediaType, Lay(bad, over, 0, 0));
    // Rows are never shorter than their pixels.
    bad = over;
    bad.props.nRowBytes = 4;
    ASSERT_EQ(S_OK, Lay(target, bad, 0, 0));
    EXPECT_EQ(target.memory, over.memory);
}

TEST(OverlayPicture, NothingOutsideThePicturesIsTouched) {
    for (const eZFCC fcc : {eZFCC_RGB24, eZFCC_RGB32, eZFCC_ARGB32, eZFCC_UYVY, eZFCC_YVYU})
        for (const eZFCC overFcc : {eZFCC_RGB24, eZFCC_RGB32, eZFCC_ARGB32, eZFCC_YUY2, eZFCC_HDYC}) {
            Canvas target(fcc, 10, IsRgbFormat(fcc) ? -5 : 5, 1, 12);
            const Canvas before = target;
            const HRESULT hr = Lay(target, Canvas(overFcc, 30, 20, 2), -3, -7, 0.5);
            EXPECT_TRUE(SUCCEEDED(hr) || fcc == eZFCC_YVYU) << fcc << ", " << overFcc;
            const auto row = static_cast<size_t>(target.props.nRowBytes);
            const size_t pixels = row - 12;
            for (size_t i = 0; i < target.memory.size(); ++i)
                if (i % row >= pixels) {
                    ASSERT_EQ(target.memory[i], before.memory[i]) << i;
                }
        }
}

}    // namespace
}    // namespace zck::test
