#include "imaging/colour/fill.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

namespace zck {
namespace {

constexpr uint32_t kRed = 0x0000FF;

Z_VID_PROPS Record(eZFCC fcc, int32_t width, int32_t height, int32_t rowBytes) {
    Z_VID_PROPS p = {};
    p.fccType = fcc;
    p.nWidth = width;
    p.nHeight = height;
    p.nRowBytes = rowBytes;
    return p;
}

TEST(Fill, ColoursOfTheVideoRange) {
    EXPECT_EQ(ColorToYUY2(0), 0x80108010U);
    EXPECT_EQ(ColorToUYVY(0), 0x10801080U);
    EXPECT_EQ(ColorToYUY2(0xFFFFFF), 0x80EB80EBU);
    // Red: Y 81.535, Cb 90.26, Cr 239.945.
    EXPECT_EQ(ColorToYUY2(kRed), 0xF0525A52U);
    EXPECT_EQ(ColorToUYVY(kRed), 0x52F0525AU);
}

TEST(Fill, HalvesOfTheFormulasGoUp) {
    // 257 * 250 + 504 * 0 + 98 * 0 + 16000 = 80250; the next ones end in 500.
    int halves = 0;
    for (int32_t r = 0; r < 256; ++r)
        for (int32_t g = 0; g < 256; ++g) {
            const int32_t thousandths = 257 * r + 504 * g + 16000;
            if (thousandths % 1000 != 500) continue;
            ++halves;
            const auto colour = static_cast<uint32_t>(r | g << 8);
            EXPECT_EQ(ColorToYUY2(colour) & 0xFF, static_cast<uint32_t>(thousandths / 1000 + 1));
        }
    EXPECT_GT(halves, 10);
}

TEST(Fill, RgbColoursExchangeRedAndBlueAndKeepTheTopByte) { EXPECT_EQ(ColorToRGB32(0x44332211), 0x44112233U); }

TEST(Fill, PlainFillsWholeUnitsOnly) {
    struct Case {
        eZFCC fcc;
        std::vector<uint8_t> bytes;
    };
    const Case cases[] = {
        {eZFCC_YUY2, {82, 90, 82, 240, 82, 90, 82, 240, 7, 7, 7}}, {eZFCC_UYVY, {90, 82, 240, 82, 90, 82, 240, 82, 7, 7, 7}},
        {eZFCC_HDYC, {90, 82, 240, 82, 90, 82, 240, 82, 7, 7, 7}}, {eZFCC_RGB32, {0, 0, 255, 0, 0, 0, 255, 0, 7, 7, 7}},
        {eZFCC_ARGB32, {0, 0, 255, 0, 0, 0, 255, 0, 7, 7, 7}},     {eZFCC_RGB24, {0, 0, 255, 0, 0, 255, 0, 0, 255, 7, 7}},
        {eZFCC_YVYU, {7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7}},           {eZFCC_v210, {7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7}},
    };
    for (const Case &c : cases) {
        std::vector<uint8_t> memory(11, 7);
        FillPlain(c.fcc, memory.data(), 11, kRed);
        EXPECT_EQ(memory, c.bytes) << std::hex << c.fcc;
        std::vector<uint8_t> little(2, 7);
        FillPlain(c.fcc, little.data(), 2, kRed);
        FillPlain(c.fcc, nullptr, 8, kRed);
        EXPECT_EQ(little, (std::vector<uint8_t>{7, 7}));
    }
}

TEST(Fill, OpaqueLeavesThePaddingAndTheOddPixel) {
    const Z_VID_PROPS p = Record(eZFCC_UYVY, 3, -2, 8);
    std::vector<uint8_t> memory(16, 7);
    EXPECT_EQ(FillImage(&p, memory.data(), kRed, 1.0), S_OK);
    const std::vector<uint8_t> row = {90, 82, 240, 82, 7, 7, 7, 7};
    EXPECT_TRUE(std::equal(row.begin(), row.end(), memory.begin()));
    EXPECT_TRUE(std::equal(row.begin(), row.end(), memory.begin() + 8));
}

TEST(Fill, PartlyScalesThePictureAndAddsTheColour) {
    // q = 64: what was there times 64 / 128 with ties to even, plus half the colour.
    const Z_VID_PROPS p = Record(eZFCC_RGB24, 2, 1, 8);
    std::vector<uint8_t> memory = {1, 3, 200, 255, 5, 250, 7, 7};
    EXPECT_EQ(FillImage(&p, memory.data(), 0x030201, 0.5), S_OK);
    EXPECT_EQ(memory, (std::vector<uint8_t>{0 + 1, 2 + 1, 100, 128 + 1, 2 + 1, 125, 7, 7}));
    // The alpha byte takes part, and an odd 4:2:2 pixel is scaled but gets no colour.
    const Z_VID_PROPS argb = Record(eZFCC_ARGB32, 1, 1, 4);
    std::vector<uint8_t> pixel = {0, 0, 0, 200};
    EXPECT_EQ(FillImage(&argb, pixel.data(), 0xFF000000, 0.25), S_OK);
    EXPECT_EQ(pixel, (std::vector<uint8_t>{0, 0, 0, 150 + 63}));
    const Z_VID_PROPS odd = Record(eZFCC_YUY2, 3, 1, 8);
    std::vector<uint8_t> row(8, 100);
    EXPECT_EQ(FillImage(&odd, row.data(), 0, 0.5), S_OK);
    EXPECT_EQ(row, (std::vector<uint8_t>{58, 114, 58, 114, 50, 50, 100, 100}));
    const Z_VID_PROPS one = Record(eZFCC_YUY2, 1, 1, 4);
    std::vector<uint8_t> single(4, 100);
    EXPECT_EQ(FillImage(&one, single.data(), 0, 0.5), S_OK);
    EXPECT_EQ(single, (std::vector<uint8_t>{50, 50, 100, 100}));
    EXPECT_EQ(FillImage(&one, single.data(), 0, 1), S_OK);
    EXPECT_EQ(single, (std::vector<uint8_t>{50, 50, 100, 100}));
}

TEST(Fill, StatusesOfFillImage) {
    const Z_VID_PROPS p = Record(eZFCC_RGB32, 1, 1, 4);
    std::vector<uint8_t> pixel(4, 9);
    EXPECT_EQ(FillImage(&p, nullptr, 0, 1), E_INVALIDARG);
    EXPECT_EQ(FillImage(nullptr, pixel.data(), 0, 1), E_INVALIDARG);
    for (const double opacity : {0.0, -1.0, 0.0078, std::nan(""), -std::numeric_limits<double>::infinity()})
        EXPECT_EQ(FillImage(&p, pixel.data(), 0, opacity), S_FALSE) << opacity;
    for (const eZFCC fcc : {eZFCC_v210, eZFCC_YVYU, eZFCC_I420, eZFCC_RGB8, eZFCC_Default}) {
        const Z_VID_PROPS other = Record(fcc, 1, 1, 4);
        EXPECT_EQ(FillImage(&other, pixel.data(), 0, 1), S_FALSE);
    }
    const Z_VID_PROPS empty = Record(eZFCC_RGB32, 1, 0, 4);
    const Z_VID_PROPS negative = Record(eZFCC_RGB32, -1, 1, 4);
    EXPECT_EQ(FillImage(&empty, pixel.data(), 0, 1), E_FAIL);
    EXPECT_EQ(FillImage(&negative, pixel.data(), 0, 0.5), E_FAIL);
    EXPECT_EQ(pixel, std::vector<uint8_t>(4, 9));
    EXPECT_EQ(FillImage(&p, pixel.data(), 0, std::numeric_limits<double>::infinity()), S_OK);
    EXPECT_EQ(pixel, std::vector<uint8_t>(4, 0));
    std::vector<uint8_t> below(4, 128);
    EXPECT_EQ(FillImage(&p, below.data(), 0, 1.0 / 128), S_OK);
    EXPECT_EQ(below, std::vector<uint8_t>(4, 127));
}

}    // namespace
}    // namespace zck
