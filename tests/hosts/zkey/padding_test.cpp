#include "hosts/zkey/padding.h"

#include <gtest/gtest.h>

#include <cstring>
#include <vector>

namespace {

using namespace zkey;

TEST(Padding, SizesAreMultiplesOfBlocksAndThreads) {
    struct Case {
        int32_t width, height, threads;
        bool interlaced;
        int32_t toWidth, toHeight;
        eZFCC fcc = eZFCC_RGB32;
    };
    const Case cases[] = {{1920, 1080, 2, false, 1920, 1080},
                          {1080, 1920, 2, false, 1088, 1920},
                          {680, 440, 7, false, 688, 441},
                          {1, 1, 16, true, 16, 32},
                          {720, 486, 2, true, 720, 488},
                          {33, 101, 1, false, 48, 101},
                          {33, 101, 1, true, 48, 102},
                          {16, 16, 40, false, 16, 16},
                          {680, 440, 7, false, 688, 448, eZFCC_I420},
                          {680, 440, 7, true, 688, 448, eZFCC_NV12}};
    for (const Case &c : cases) {
        const PictureSize s = PaddedSize(c.width, c.height, c.threads, c.interlaced, c.fcc);
        EXPECT_EQ(s.width, c.toWidth) << c.width << "x" << c.height;
        EXPECT_EQ(s.height, c.toHeight) << c.width << "x" << c.height;
    }
}

TEST(Padding, BordersAreReadInAllForms) {
    const auto text = [](const char *t) {
        const auto b = BordersFromText(t);
        return b ? std::vector<int>{b->left, b->top, b->right, b->bottom} : std::vector<int>{};
    };
    EXPECT_EQ(text("16"), (std::vector<int>{16, 16, 16, 16}));
    EXPECT_EQ(text("1,2"), (std::vector<int>{1, 2, 1, 2}));
    EXPECT_EQ(text(" 1; 2\t3"), (std::vector<int>{1, 2, 1, 3}));
    EXPECT_EQ(text("1 2 3 4 5"), (std::vector<int>{1, 2, 3, 4}));
    EXPECT_EQ(text("0 0 0 0"), std::vector<int>{});
    EXPECT_EQ(text(" "), std::vector<int>{});
}

TEST(Padding, WhatBordersLeaveIsWholeBlocks) {
    for (const bool interlaced : {false, true}) {
        for (int32_t threads = 1; threads <= 16; threads += 3) {
            for (int32_t border = 0; border < 60; ++border) {
                const PictureSize picture{53, 47};
                PictureSize padded = PaddedSize(picture.width, picture.height, threads, interlaced, eZFCC_RGB32);
                const Borders b =
                    PaddedBorders({border, border, 59 - border, border / 2}, picture, threads, interlaced, padded);
                EXPECT_EQ(b.left % 8, 0);
                EXPECT_EQ((padded.width - b.left - b.right) % 16, 0);
                EXPECT_GT(padded.width - b.left - b.right, 0);
                EXPECT_EQ((padded.height - b.top - b.bottom) % (threads * (interlaced ? 2 : 1)), 0);
                EXPECT_GT(padded.height - b.top - b.bottom, 0);
                EXPECT_EQ(padded.width % 16, 0);
                EXPECT_GE(b.right, 0);
                EXPECT_GE(b.bottom, 0);
            }
        }
    }
}

/// A frame whose rows and columns beyond the picture hold rubbish, then repeated.
std::vector<uint8_t> Padded(const Z_VID_PROPS &props, int width, int height, const std::vector<std::vector<uint8_t>> &rows) {
    std::vector<uint8_t> bytes(static_cast<std::size_t>(FrameBytes(props)), 0xEE);
    for (std::size_t y = 0; y < rows.size(); ++y) {
        std::memcpy(&bytes[y * static_cast<std::size_t>(props.nRowBytes)], rows[y].data(), rows[y].size());
    }
    RepeatEdges(bytes.data(), props, width, height);
    return bytes;
}

std::vector<uint8_t> Row(const std::vector<uint8_t> &bytes, const Z_VID_PROPS &props, int y) {
    const auto at = bytes.begin() + std::ptrdiff_t{y} * props.nRowBytes;
    return {at, at + props.nRowBytes};
}

TEST(Padding, RgbRepeatsTheLastPixelAndRow) {
    const Z_VID_PROPS p = DescribeFrame(eZFCC_RGB24, 4, 3, eZI_Progressive, 25);
    const auto bytes = Padded(p, 2, 2, {{1, 2, 3, 4, 5, 6}, {7, 8, 9, 10, 11, 12}});
    EXPECT_EQ(Row(bytes, p, 0), (std::vector<uint8_t>{1, 2, 3, 4, 5, 6, 4, 5, 6, 4, 5, 6}));
    EXPECT_EQ(Row(bytes, p, 1), (std::vector<uint8_t>{7, 8, 9, 10, 11, 12, 10, 11, 12, 10, 11, 12}));
    EXPECT_EQ(Row(bytes, p, 2), Row(bytes, p, 1));
}

TEST(Padding, PairsRepeatTheLastLumaWithItsChroma) {
    Z_VID_PROPS p = DescribeFrame(eZFCC_UYVY, 6, 1, eZI_Progressive, 25);
    EXPECT_EQ(Row(Padded(p, 2, 1, {{90, 1, 91, 2}}), p, 0), (std::vector<uint8_t>{90, 1, 91, 2, 90, 2, 91, 2, 90, 2, 91, 2}));
    // An odd width: the second luma of the last pair is no pixel.
    EXPECT_EQ(Row(Padded(p, 3, 1, {{90, 1, 91, 2, 70, 5, 71, 0}}), p, 0),
              (std::vector<uint8_t>{90, 1, 91, 2, 70, 5, 71, 5, 70, 5, 71, 5}));
    p = DescribeFrame(eZFCC_YUY2, 4, 1, eZI_Progressive, 25);
    EXPECT_EQ(Row(Padded(p, 1, 1, {{1, 90, 0, 91}}), p, 0), (std::vector<uint8_t>{1, 90, 1, 91, 1, 90, 1, 91}));
}

uint32_t Sample(const uint8_t *row, int index) {
    uint32_t word = 0;
    std::memcpy(&word, row + index / 3 * 4, 4);
    return (word >> (10 * (index % 3))) & 1023;
}

TEST(Padding, TenBitSamplesRepeatAcrossWords) {
    const Z_VID_PROPS p = DescribeFrame(eZFCC_v210, 16, 2, eZI_Progressive, 25);
    for (const int width : {1, 2, 3, 5, 6, 7, 11}) {
        std::vector<uint8_t> bytes(static_cast<std::size_t>(FrameBytes(p)), 0);
        for (int i = 0; i < (width + 1) / 2 * 4; ++i) {
            uint32_t word = 0;
            std::memcpy(&word, &bytes[static_cast<std::size_t>(i / 3 * 4)], 4);
            word |= static_cast<uint32_t>(100 + i) << (10 * (i % 3));
            std::memcpy(&bytes[static_cast<std::size_t>(i / 3 * 4)], &word, 4);
        }
        RepeatEdges(bytes.data(), p, width, 1);
        const int pair = (width - 1) / 2 * 4;
        const auto luma = static_cast<uint32_t>(100 + pair + (width % 2 != 0 ? 1 : 3));
        for (int x = width; x < 16; ++x) {
            ASSERT_EQ(Sample(bytes.data(), x / 2 * 4 + (x % 2 != 0 ? 3 : 1)), luma) << width << " " << x;
            ASSERT_EQ(Sample(bytes.data(), x / 2 * 4), static_cast<uint32_t>(100 + pair)) << width << " " << x;
            ASSERT_EQ(Sample(bytes.data(), x / 2 * 4 + 2), static_cast<uint32_t>(102 + pair)) << width << " " << x;
        }
        for (int i = 0; i < pair; ++i) ASSERT_EQ(Sample(bytes.data(), i), static_cast<uint32_t>(100 + i)) << width;
        EXPECT_EQ(Row(bytes, p, 1), Row(bytes, p, 0));
    }
}

TEST(Padding, InterlacedPicturesRepeatRowsOfTheSameField) {
    const Z_VID_PROPS p = DescribeFrame(eZFCC_UYVY, 2, 6, eZI_Field1First, 25);
    const auto bytes = Padded(p, 2, 3, {{0, 1, 0, 1}, {0, 2, 0, 2}, {0, 3, 0, 3}});
    EXPECT_EQ(bytes[3 * 4 + 1], 2);
    EXPECT_EQ(bytes[4 * 4 + 1], 3);
    EXPECT_EQ(bytes[5 * 4 + 1], 2);
}

TEST(Padding, PlanesRepeatEachOnItsOwn) {
    // 2 by 2 pixels in a frame of 4 by 4: luma 1 to 4, one sample of each chroma.
    const struct {
        eZFCC fcc;
        std::vector<uint8_t> chroma;
    } cases[] = {{eZFCC_I420, {90, 90, 90, 90, 91, 91, 91, 91}},
                 {eZFCC_YV12, {91, 91, 91, 91, 90, 90, 90, 90}},
                 {eZFCC_NV12, {90, 91, 90, 91, 90, 91, 90, 91}}};
    for (const auto &c : cases) {
        const Z_VID_PROPS p = DescribeFrame(c.fcc, 4, 4, eZI_Progressive, 25);
        ASSERT_EQ(FrameBytes(p), 24);
        std::vector<uint8_t> bytes(24, 0xEE);
        const PlanarFrame f = PlanesOfFrame(bytes.data(), p);
        f.y[0] = 1;
        f.y[1] = 2;
        f.y[4] = 3;
        f.y[5] = 4;
        *f.cb = 90;
        *f.cr = 91;
        RepeatEdges(bytes.data(), p, 2, 2);
        const std::vector<uint8_t> luma(bytes.begin(), bytes.begin() + 16);
        const std::vector<uint8_t> chroma(bytes.begin() + 16, bytes.end());
        EXPECT_EQ(luma, (std::vector<uint8_t>{1, 2, 2, 2, 3, 4, 4, 4, 3, 4, 4, 4, 3, 4, 4, 4}));
        EXPECT_EQ(chroma, c.chroma);
    }
}

TEST(Padding, WholeSizesAreLeftAlone) {
    const Z_VID_PROPS p = DescribeFrame(eZFCC_RGB32, 16, 2, eZI_Progressive, 25);
    std::vector<uint8_t> bytes(static_cast<std::size_t>(FrameBytes(p)));
    for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<uint8_t>(i);
    const std::vector<uint8_t> before = bytes;
    RepeatEdges(bytes.data(), p, 16, 2);
    EXPECT_EQ(bytes, before);
}

}    // namespace
