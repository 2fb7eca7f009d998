#include "imaging/scale/scale_dyn.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

#include "imaging/scale/blend_rows.h"
#include "platform/processor.h"

namespace zck {
namespace {

using Bytes = std::vector<uint8_t>;

// Row r holds the value r in all its bytes.
Bytes Steps(int32_t rows, int64_t step) {
    Bytes bytes(static_cast<size_t>(rows * step));
    for (size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<uint8_t>(static_cast<int64_t>(i) / step);
    return bytes;
}

// The first byte of each row of the result.
std::vector<int32_t> Scaled(int32_t srcRows, int32_t dstRows, double factor, int32_t flags, int32_t width = 16) {
    DynScaler scaler;
    const Bytes src = Steps(std::abs(srcRows), width);
    Bytes dst(static_cast<size_t>(std::abs(dstRows) * width), 0xEE);
    EXPECT_EQ(Scale_Dyn(&scaler, src.data(), dst.data(), srcRows, dstRows, width, width, width, factor, flags), S_OK);
    std::vector<int32_t> rows;
    for (size_t i = 0; i < dst.size(); i += static_cast<size_t>(width)) rows.push_back(dst[i]);
    return rows;
}

using Rows = std::vector<int32_t>;

TEST(ScaleDyn, EqualHeightsAreCopied) {
    EXPECT_EQ(Scaled(5, 5, 1.0, kScaleProgressive), Rows({0, 1, 2, 3, 4}));
    EXPECT_EQ(Scaled(6, 6, 1.0, kScaleBothFields), Rows({0, 1, 2, 3, 4, 5}));
    EXPECT_EQ(Scaled(6, 6, 1.0, kScaleProgressive), Rows({0, 1, 2, 3, 4, 4})) << "the last row of an even height repeats";
}

TEST(ScaleDyn, NearestRowWithANegativeFactor) {
    EXPECT_EQ(Scaled(9, 3, -1.0, kScaleProgressive), Rows({0, 3, 6}));
    EXPECT_EQ(Scaled(3, 6, -1.0, kScaleProgressive), Rows({0, 1, 1, 2, 2, 2})) << "half way the row below, and 2.5 has none";
}

TEST(ScaleDyn, FieldsStayFields) {
    const Rows rows = Scaled(40, 20, 1.0, kScaleBothFields);
    // Row 2 i of the target is made of even rows around 4 i, row 2 i + 1 of odd rows around 4 i + 2.
    EXPECT_EQ(rows.size(), 20U);
    for (size_t r = 2; r < 16; ++r) EXPECT_NEAR(rows[r], r % 2 == 0 ? 2 * static_cast<int>(r) : 2 * static_cast<int>(r), 2);
}

TEST(ScaleDyn, OneFieldMakesThePicture) {
    // The field rows as they are: half height, one tap.
    EXPECT_EQ(Scaled(8, 4, 1.0, kScaleFirstField), Rows({0, 2, 4, 6}));
    const Rows odd = Scaled(8, 4, 1.0, kScaleSecondField);
    for (const int32_t v : odd) EXPECT_EQ(v % 2, 1);
}

TEST(ScaleDyn, NegativeHeightsWalkUpwards) {
    EXPECT_EQ(Scaled(-5, 5, 1.0, kScaleProgressive), Rows({4, 3, 2, 1, 0}));
    EXPECT_EQ(Scaled(5, -5, 1.0, kScaleProgressive), Rows({4, 3, 2, 1, 0}));
    EXPECT_EQ(Scaled(-5, -5, 1.0, kScaleProgressive), Rows({0, 1, 2, 3, 4}));
}

TEST(ScaleDyn, SwappedFields) { EXPECT_EQ(Scaled(6, 6, 1.0, kScaleBothFields | kScaleSwapFields), Rows({1, 0, 3, 2, 5, 4})); }

TEST(ScaleDyn, TheFieldOrderMovesThePictureByOneLine) {
    EXPECT_EQ(Scaled(6, 6, 1.0, kScaleBothFields | kScaleLineDown), Rows({0, 0, 1, 2, 3, 4}));
    EXPECT_EQ(Scaled(6, 6, 1.0, kScaleBothFields | kScaleLineUp), Rows({1, 2, 3, 4, 5, 5}));
    EXPECT_EQ(Scaled(6, 6, 1.0, kScaleBothFields | kScaleLineUp | kScaleLineDown), Rows({1, 1, 2, 3, 4, 4}));
}

TEST(ScaleDyn, LowPicturesDoNotMove) {
    EXPECT_EQ(Scaled(1, 1, 1.0, kScaleBothFields | kScaleLineDown), Rows({0}));
    EXPECT_EQ(Scaled(1, 1, 1.0, kScaleBothFields | kScaleLineUp), Rows({0}));
    EXPECT_EQ(Scaled(2, 2, 1.0, kScaleBothFields | kScaleLineUp | kScaleLineDown), Rows({0, 1}));
    EXPECT_EQ(Scaled(2, 2, 1.0, kScaleBothFields | kScaleLineUp), Rows({1, 1}));
}

TEST(ScaleDyn, WithoutSizeNothingIsWritten) {
    DynScaler scaler;
    const Bytes src(64, 7);
    Bytes dst(64, 9);
    for (const int32_t rows : {0, 4})
        for (const int32_t height : {0, 4})
            for (const int32_t width : {0, -3, 16}) {
                if (rows != 0 && height != 0 && width > 0) continue;
                EXPECT_EQ(Scale_Dyn(&scaler, src.data(), dst.data(), rows, height, width, 16, 16, 1.0, 3), S_OK);
            }
    EXPECT_EQ(dst, Bytes(64, 9));
}

// White stays white in whole blocks of four taps and more, and loses one elsewhere.
TEST(ScaleDyn, WhiteInBlocksAndBehindThem) {
    const Bytes src(40 * 20, 255);
    const auto last = [&](int32_t rows, double factor) {
        DynScaler scaler;
        Bytes dst(10 * 20);
        EXPECT_EQ(Scale_Dyn(&scaler, src.data(), dst.data(), rows, 10, 20, 20, 20, factor, kScaleProgressive), S_OK);
        return std::pair<int32_t, int32_t>(dst[5 * 20], dst[5 * 20 + 19]);
    };
    EXPECT_EQ(last(40, 1.0), std::pair(255, 254)) << "seven taps";
    EXPECT_EQ(last(5, 0.75), std::pair(254, 254)) << "three taps";
    EXPECT_EQ(last(40, -1.0), std::pair(255, 255)) << "copies";
}

TapRow ThreeTaps() {
    TapRow taps = {};
    taps.nUsed = 3;
    for (int32_t i = 0; i < 3; ++i) taps.nSrcRow[i] = i;
    taps.nWeight[0] = 100;
    taps.nWeight[1] = 90;
    taps.nWeight[2] = 65;
    return taps;
}

// 20 bytes: 16 exact ones, then 4 that read the second row at double speed.
TEST(BlendRows, BehindTheBlocksThreeTapsReadTheSecondRowAtDoubleSpeed) {
    std::mt19937 random(5);
    Bytes src(3 * 20);
    for (uint8_t &b : src) b = static_cast<uint8_t>(random());
    Bytes dst(20);
    BlendRows(dst.data(), {src.data(), 20, src.data() + src.size()}, ThreeTaps(), 20);
    for (size_t i = 0; i < 16; ++i) EXPECT_EQ(dst[i], (src[i] * 100 + src[20 + i] * 90 + src[40 + i] * 65) >> 8) << i;
    // Byte 2 and 3 take what follows the second row: the third.
    for (size_t j = 0; j < 4; ++j) EXPECT_EQ(dst[16 + j], (src[16 + j] * 100 + src[36 + 2 * j] * 155) >> 8) << j;
}

TEST(BlendRows, BehindTheLastRowThatReadIsZero) {
    Bytes src(3 * 20, 200);
    TapRow taps = ThreeTaps();
    std::swap(taps.nSrcRow[1], taps.nSrcRow[2]);
    Bytes dst(20);
    BlendRows(dst.data(), {src.data(), 20, src.data() + src.size()}, taps, 20);
    EXPECT_EQ(dst[17], (200 * 255) >> 8);
    EXPECT_EQ(dst[18], (200 * 100) >> 8) << "the second row is the last of the image";
    EXPECT_EQ(dst[19], (200 * 100) >> 8);
}

// Padding between the rows counts as what follows a row.
TEST(BlendRows, BehindARowItsPaddingIsRead) {
    Bytes src(3 * 24, 50);
    for (size_t i = 20; i < 24; ++i) src[24 + i] = 250;
    Bytes dst(20);
    BlendRows(dst.data(), {src.data(), 24, src.data() + 2 * 24 + 20}, ThreeTaps(), 20);
    EXPECT_EQ(dst[17], (50 * 255) >> 8);
    EXPECT_EQ(dst[18], (50 * 100 + 250 * 155) >> 8);
}

// The rows between which is mixed are found by address, whatever the order of the walk is: the end is the same.
TEST(ScaleDyn, BothDirectionsEndAtTheSameByte) {
    const Bytes src(5 * 20, 255);
    const auto scaled = [&](int32_t rows) {
        DynScaler scaler;
        Bytes dst(10 * 20);
        EXPECT_EQ(Scale_Dyn(&scaler, src.data(), dst.data(), rows, 10, 20, 20, 20, 0.87, kScaleProgressive), S_OK);
        return dst;
    };
    for (const int32_t rows : {5, -5}) {
        const Bytes dst = scaled(rows);
        int64_t dark = 0;
        for (size_t y = 0; y < 10; ++y) dark += dst[20 * y + 19] < 253 ? 1 : 0;
        EXPECT_GT(dark, 0) << "some row ends behind the image, rows " << rows;
    }
}

TEST(ScaleDyn, TheSameAtAllLevels) {
    std::mt19937 random(9);
    Bytes src(64 * 83);
    for (uint8_t &b : src) b = static_cast<uint8_t>(random() >> 8);
    for (const int32_t target : {7, 20, 63, 64, 100})
        for (const int32_t flags : {0, 1, 2, 3, 16, 32, 64})
            for (const double factor : {-1.0, 0.0, 0.5, 1.0}) {
                Bytes expected(static_cast<size_t>(target * 83)), found = expected;
                DynScaler scaler;
                KernelLevelLimit(KernelLevel::Reference);
                Scale_Dyn(&scaler, src.data(), expected.data(), 64, target, 79, 83, 83, factor, flags);
                KernelLevelLimit(kKernelLevelHighest);
                Scale_Dyn(&scaler, src.data(), found.data(), 64, target, 79, 83, 83, factor, flags);
                ASSERT_EQ(expected, found) << target << " flags " << flags << " factor " << factor;
            }
}

}    // namespace
}    // namespace zck
