#include "frames/media/pixel_format.h"

#include <gtest/gtest.h>

#include <iterator>
#include <limits>
#include <set>

namespace zck {
namespace {

constexpr int32_t kMin = std::numeric_limits<int32_t>::min();
constexpr int32_t kMax = std::numeric_limits<int32_t>::max();
constexpr eZFCC kUnknown = static_cast<eZFCC>(0x20202020);

struct Known {
    eZFCC fcc;
    int32_t bits;
    bool planar;
    bool packed;
    bool rgb;
};

// Every code that the arithmetic knows, and those next to them that it must not know.
constexpr Known kKnown[] = {
    {eZFCC_Default, 0, false, false, false},
    {eZFCC_r210, 32, false, true, true},
    {eZFCC_v210, 20, false, true, false},
    {eZFCC_I420, 12, true, false, false},
    {eZFCC_YV12, 12, true, false, false},
    {eZFCC_NV12, 16, true, false, false},
    {eZFCC_YUY2, 16, false, true, false},
    {eZFCC_HDYC, 16, false, true, false},
    {eZFCC_YVYU, 16, false, true, false},
    {eZFCC_UYVY, 16, false, true, false},
    {eZFCC_RGB24, 24, false, true, true},
    {eZFCC_RGB32, 32, false, true, true},
    {eZFCC_ARGB32, 32, false, true, true},
    {eZFCC_RGB8, 8, false, true, true},
    {eZFCC_GPU_YUV422, 0, false, false, false},
    {eZFCC_GPU_RGB444, 0, false, false, false},
    {kFccYvu9, 9, false, false, false},
    {kFccIyu2, 24, false, false, false},
    {kFccY422, 16, true, false, false},
    {kFccY444, 24, true, false, false},
    {kFccRgb565, 16, false, false, true},
    {kFccRgb555, 16, false, false, true},
    {kFccRgb1, 0, false, false, false},
    {kFccRgb4, 0, false, false, false},
    {kFccArgb1555, 0, false, false, false},
    {kFccArgb4444, 0, false, false, false},
    {static_cast<eZFCC>(0xE436EB7F), 0, false, false, false},
    {kUnknown, 0, false, false, false},
};

TEST(PixelFormat, BitsAndClassesOfEveryCode) {
    for (const Known &k : kKnown) {
        SCOPED_TRACE(static_cast<uint32_t>(k.fcc));
        EXPECT_EQ(PixelBits(k.fcc), k.bits);
        EXPECT_EQ(IsPlanarFormat(k.fcc), k.planar);
        EXPECT_EQ(IsPackedFormat(k.fcc), k.packed);
        EXPECT_EQ(IsRgbFormat(k.fcc), k.rgb);
    }
}

TEST(PixelFormat, CodesOfFormatsWithoutEnumeratorAreTheirCharacters) {
    EXPECT_EQ(uint32_t{kFccYvu9}, 'Y' | 'V' << 8 | 'U' << 16 | '9' << 24);
    EXPECT_EQ(uint32_t{kFccIyu2}, 'I' | 'Y' << 8 | 'U' << 16 | '2' << 24);
    EXPECT_EQ(uint32_t{kFccY422}, 'Y' | '4' << 8 | '2' << 16 | '2' << 24);
    EXPECT_EQ(uint32_t{kFccY444}, 'Y' | '4' << 8 | '4' << 16 | '4' << 24);
}

TEST(RowBytes, WorkedNumbers) {
    EXPECT_EQ(RowBytes(eZFCC_v210, 1920), 5120);
    EXPECT_EQ(RowBytes(eZFCC_v210, 1921), 5248);
    EXPECT_EQ(RowBytes(eZFCC_v210, 1), 128);
    EXPECT_EQ(RowBytes(eZFCC_r210, 64), 256);
    EXPECT_EQ(RowBytes(eZFCC_r210, 65), 512);
    EXPECT_EQ(RowBytes(eZFCC_RGB32, 1920), 7680);
    EXPECT_EQ(RowBytes(eZFCC_RGB24, 3), 12);
    EXPECT_EQ(RowBytes(eZFCC_RGB8, 5), 8);
    EXPECT_EQ(RowBytes(eZFCC_UYVY, 719), 1440);
    EXPECT_EQ(RowBytes(eZFCC_NV12, 721), 721);
    EXPECT_EQ(RowBytes(kFccY444, 721), 721);
    EXPECT_EQ(RowBytes(kFccYvu9, 8), 12);
    EXPECT_EQ(RowBytes(kUnknown, 720), 0);
    EXPECT_EQ(RowBytes(eZFCC_Default, 720), 0);
}

TEST(RowBytes, NegativeWidthsRoundAsTheArithmeticSays) {
    EXPECT_EQ(RowBytes(eZFCC_RGB24, -1), 0);    // -24 bits are -3 bytes, rounded up
    EXPECT_EQ(RowBytes(eZFCC_RGB8, -5), -4);
    EXPECT_EQ(RowBytes(eZFCC_v210, -1), 0);    // division toward zero
    EXPECT_EQ(RowBytes(eZFCC_v210, -95), -128);
    EXPECT_EQ(RowBytes(eZFCC_I420, -7), -7);
    EXPECT_EQ(RowBytes(kFccYvu9, -3), -4);    // -27 bits are shifted down to -4 bytes
}

TEST(RowBytes, HugeWidthsAreClampedNotWrapped) {
    EXPECT_EQ(RowBytes(eZFCC_ARGB32, kMax), kMax);
    EXPECT_EQ(RowBytes(eZFCC_ARGB32, 0x20000000), kMax);
    EXPECT_EQ(RowBytes(eZFCC_ARGB32, 0x1FFFFFFF), 0x7FFFFFFC);
    EXPECT_EQ(RowBytes(eZFCC_ARGB32, kMin), kMin);
    EXPECT_EQ(RowBytes(eZFCC_v210, kMax), kMax);
    EXPECT_EQ(RowBytes(eZFCC_r210, kMax), kMax);
    EXPECT_EQ(RowBytes(eZFCC_RGB8, kMax), kMax);
}

TEST(RowPixels, TurnsRowsBackIntoPixels) {
    EXPECT_EQ(RowPixels(eZFCC_v210, 5120), 1920);
    EXPECT_EQ(RowPixels(eZFCC_v210, 5247), 1920);
    EXPECT_EQ(RowPixels(eZFCC_r210, 511), 64);
    EXPECT_EQ(RowPixels(eZFCC_I420, 720), 720);
    EXPECT_EQ(RowPixels(eZFCC_RGB24, 12), 4);
    EXPECT_EQ(RowPixels(eZFCC_RGB24, 11), 3);
    EXPECT_EQ(RowPixels(eZFCC_RGB32, kMax), kMax / 4);
    EXPECT_EQ(RowPixels(eZFCC_RGB8, kMin), kMin);
}

TEST(RowPixels, IsZeroForFormatsOfUnknownWidth) {
    EXPECT_EQ(RowPixels(eZFCC_Default, 720), 0);
    EXPECT_EQ(RowPixels(kUnknown, 720), 0);
    EXPECT_EQ(RowPixels(eZFCC_GPU_YUV422, 720), 0);
}

TEST(RowPixels, NeverLosesAPixelOfAPaddedRow) {
    for (const Known &k : kKnown) {
        if (k.bits == 0) continue;
        for (int32_t w = 0; w < 300; ++w) {
            // Rows of whole bytes only: 9 and 12 bits do not fill them.
            if (!k.planar && k.fcc == kFccYvu9) continue;
            ASSERT_GE(RowPixels(k.fcc, RowBytes(k.fcc, w)), w) << static_cast<uint32_t>(k.fcc) << " " << w;
        }
    }
}

TEST(PixelFormatTable, RowsStandInTheirOrder) {
    const eZFCC order[] = {eZFCC_YUY2,  eZFCC_UYVY, eZFCC_YV12, eZFCC_YVYU, eZFCC_I420, kFccIyu2,   eZFCC_RGB32, eZFCC_ARGB32,
                           eZFCC_RGB24, kFccRgb565, kFccRgb555, eZFCC_HDYC, eZFCC_v210, eZFCC_r210, eZFCC_NV12};
    ASSERT_EQ(std::size(order), static_cast<size_t>(kPixelFormatRows));
    for (int i = 0; i < kPixelFormatRows; ++i) {
        EXPECT_EQ(PixelFormatTable()[i].fcc, order[i]) << i;
        EXPECT_EQ(PixelFormatFind(order[i]), PixelFormatTable() + i);
    }
    EXPECT_EQ(PixelFormatFind(eZFCC_RGB8), nullptr);
    EXPECT_EQ(PixelFormatFind(eZFCC_Default), nullptr);
}

TEST(PixelFormatTable, AgreesWithTheArithmeticButForNv12) {
    for (int i = 0; i < kPixelFormatRows; ++i) {
        const FormatRow &row = PixelFormatTable()[i];
        SCOPED_TRACE(i);
        EXPECT_EQ(row.nBits, row.fcc == eZFCC_NV12 ? 12 : PixelBits(row.fcc));
        EXPECT_EQ(row.bPlanar, IsPlanarFormat(row.fcc));
        EXPECT_EQ(row.bCompressionTag, !IsRgbFormat(row.fcc));
        EXPECT_EQ(row.nDivY, row.bPlanar ? 2 : 1);
    }
}

TEST(PixelFormatTable, ComponentsLieWhereTheBytesAre) {
    const FormatRow &uyvy = *PixelFormatFind(eZFCC_UYVY);
    EXPECT_EQ(uyvy.nOffset[0], 1);
    EXPECT_EQ(uyvy.nOffset[1], 0);
    EXPECT_EQ(uyvy.nOffset[2], 2);
    EXPECT_EQ(uyvy.nStep[0], 2);
    EXPECT_EQ(uyvy.nStep[1], 4);
    const FormatRow &yvyu = *PixelFormatFind(eZFCC_YVYU);
    EXPECT_EQ(yvyu.nOffset[1], 3);
    EXPECT_EQ(yvyu.nOffset[2], 1);
    const FormatRow &rgb = *PixelFormatFind(eZFCC_RGB24);
    EXPECT_EQ(rgb.nOffset[0], 2);
    EXPECT_EQ(rgb.nOffset[2], 0);
    EXPECT_EQ(rgb.nStep[0], 3);
    // In packed formats of whole bytes with 4:2:2 sampling every byte of a group has one owner.
    for (eZFCC fcc : {eZFCC_YUY2, eZFCC_UYVY, eZFCC_YVYU, eZFCC_HDYC}) {
        const FormatRow &r = *PixelFormatFind(fcc);
        EXPECT_EQ((std::set<int32_t>{r.nOffset[0], r.nOffset[0] + r.nStep[0], r.nOffset[1], r.nOffset[2]}),
                  (std::set<int32_t>{0, 1, 2, 3}));
    }
}

}    // namespace
}    // namespace zck
