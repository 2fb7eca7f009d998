#include "frames/media/format_table.h"

#include <gtest/gtest.h>

#include <set>

namespace zck {
namespace {

TEST(FormatTable, EachCodeHasOneRowAndIsFoundThere) {
    std::set<uint32_t> codes;
    for (const FormatRow &row : kFormatTable) {
        EXPECT_TRUE(codes.insert(row.fcc).second) << std::hex << row.fcc;
        EXPECT_EQ(FormatFind(row.fcc), &row);
    }
    EXPECT_EQ(FormatFind(eZFCC_Default), nullptr);
    EXPECT_EQ(FormatFind(static_cast<eZFCC>(0x20202020)), nullptr);
}

TEST(FormatTable, ColumnsOfARowAgree) {
    for (const FormatRow &row : kFormatTable) {
        SCOPED_TRACE(row.fcc);
        EXPECT_FALSE(row.bPlanar && row.bPacked);
        EXPECT_FALSE(row.bPlanar && row.bRgb);
        EXPECT_GE(row.group.pixels, 1);
        const bool wholeBytes = row.group.bytes != 0 && !row.bPlanar && !row.IsTenBit();
        EXPECT_TRUE(!wholeBytes || row.group.bytes * 8 == row.group.pixels * row.nPixelBits);
        // Work by pixels needs a size, and writes of a known length need whole groups.
        const bool worked = row.pixels != PixelClass::None || row.route != RouteClass::None;
        EXPECT_TRUE(!worked || row.nPixelBits > 0);
        EXPECT_EQ(row.bSure, row.bPacked && worked);
        EXPECT_TRUE(!row.bSure || row.group.bytes > 0);
        EXPECT_TRUE(row.nBits != 0 || !row.bCompressionTag);
        EXPECT_TRUE(!row.bAlpha || row.Is32());
    }
}

TEST(FormatTable, AFormatReadsAsOneOfTheSameBytes) {
    for (const FormatRow &row : kFormatTable) {
        SCOPED_TRACE(row.fcc);
        const FormatRow *plain = FormatFind(row.fccPlain);
        ASSERT_NE(plain, nullptr);
        EXPECT_EQ(plain->fccPlain, plain->fcc);
        EXPECT_EQ(plain->pixels, row.pixels);
        EXPECT_EQ(plain->nPixelBits, row.nPixelBits);
        EXPECT_EQ(plain->bRgb, row.bRgb);
    }
    EXPECT_EQ(FormatFind(eZFCC_HDYC)->fccPlain, eZFCC_UYVY);
    EXPECT_EQ(FormatFind(eZFCC_RGB32)->fccPlain, eZFCC_ARGB32);
}

TEST(FormatTable, EveryClassOfPixelsAndRoutesHasAFormat) {
    std::set<PixelClass> pixels;
    std::set<RouteClass> routes;
    for (const FormatRow &row : kFormatTable) {
        pixels.insert(row.pixels);
        routes.insert(row.route);
    }
    EXPECT_EQ(pixels.size(), static_cast<size_t>(kPixelClasses) + 1);
    EXPECT_EQ(routes.size(), static_cast<size_t>(kRouteClasses) + 1);
}

TEST(FormatTable, BytesOfARow) {
    const FormatRow &uyvy = *FormatFind(eZFCC_UYVY);
    EXPECT_EQ(uyvy.PixelRowBytes(5), 10);
    EXPECT_EQ(uyvy.GroupRowBytes(5), 12);
    EXPECT_EQ(uyvy.SureRowBytes(5), 8);
    const FormatRow &v210 = *FormatFind(eZFCC_v210);
    EXPECT_EQ(v210.PixelRowBytes(7), 32);
    EXPECT_EQ(v210.SureRowBytes(7), 16);
    EXPECT_EQ(FormatFind(eZFCC_RGB24)->PixelRowBytes(5), 15);
    EXPECT_EQ(FormatFind(eZFCC_NV12)->PixelRowBytes(5), 5);
    EXPECT_EQ(FormatFind(eZFCC_NV12)->SureRowBytes(5), 0);
    EXPECT_EQ(FormatFind(kFccYvu9)->PixelRowBytes(5), 6);
    EXPECT_EQ(FormatFind(eZFCC_RGB8)->SureRowBytes(5), 0);
    EXPECT_EQ(FormatFind(eZFCC_GPU_YUV422)->GroupRowBytes(5), 0);
}

TEST(FormatTable, LumaIsFirstInTwoPackedFormats) {
    std::set<uint32_t> first;
    for (const FormatRow &row : kFormatTable) {
        if (row.bPacked && row.LumaFirst()) first.insert(row.fcc);
    }
    EXPECT_EQ(first, (std::set<uint32_t>{eZFCC_YUY2, eZFCC_YVYU}));
}

}    // namespace
}    // namespace zck
