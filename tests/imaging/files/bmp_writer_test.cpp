#include "imaging/files/bmp_writer.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <vector>

#include "tests/support/scratch_folder.h"

namespace zck {
namespace {

class BmpWriter : public testing::Test {
protected:
    std::string Written(eZFCC fcc, int32_t width, int32_t height, const std::vector<uint8_t> &pixels, int32_t rowPixels = 0) {
        EXPECT_EQ(WriteBmp(Name(), fcc, width, height, rowPixels, pixels.data()), S_OK);
        std::ifstream file(m_folder.File("a.bmp"), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    Text Name() const { return TextFromUtf8(m_folder.Path("a.bmp")); }
    static uint32_t Word(const std::string &file, size_t at) {
        uint32_t value = 0;
        for (size_t i = 0; i < 4; ++i) value |= static_cast<uint32_t>(static_cast<uint8_t>(file[at + i])) << 8 * i;
        return value;
    }

    test::ScratchFolder m_folder;
};

TEST_F(BmpWriter, RgbGoesAsItStands) {
    const std::vector<uint8_t> pixels = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16};
    const std::string file = Written(eZFCC_ARGB32, 2, -2, pixels);
    ASSERT_EQ(file.size(), 54u + 16);
    EXPECT_EQ(file.substr(0, 2), "BM");
    EXPECT_EQ(Word(file, 2), 70u);
    EXPECT_EQ(Word(file, 6), 0u);
    EXPECT_EQ(Word(file, 10), 54u);
    EXPECT_EQ(Word(file, 14), 40u);
    EXPECT_EQ(Word(file, 18), 2u);
    EXPECT_EQ(Word(file, 22), static_cast<uint32_t>(-2));
    EXPECT_EQ(Word(file, 26), 1u | 32u << 16);
    EXPECT_EQ(Word(file, 30), 0u);
    EXPECT_EQ(Word(file, 34), 16u);
    EXPECT_EQ(file.substr(54), std::string(pixels.begin(), pixels.end()));
    // An old file is replaced, also a longer one.
    EXPECT_EQ(Written(eZFCC_RGB24, 1, 1, {9, 8, 7, 0}).size(), 58u);
}

TEST_F(BmpWriter, PairsBecomeABottomUpPicture) {
    // Grey above, and a colour below: Y 81, Cb 90, Cr 240.
    const std::vector<uint8_t> pixels = {16, 128, 235, 128, 81, 90, 81, 240};
    const std::string file = Written(eZFCC_YUY2, 2, -2, pixels);
    ASSERT_EQ(file.size(), 54u + 16);
    EXPECT_EQ(Word(file, 22), static_cast<uint32_t>(-2));
    EXPECT_EQ(Word(file, 26), 1u | 32u << 16);
    // 38142 * 65 = 2479230; with u = -38 and v = 112.
    const uint32_t red = 255;
    const uint32_t green = static_cast<uint32_t>((2479230 + 26640 * 38 - 12812 * 112) >> 15);
    const uint32_t blue = static_cast<uint32_t>((2479230 - 52298 * 38) >> 15);
    EXPECT_EQ(Word(file, 54), blue | green << 8 | red << 16);
    EXPECT_EQ(Word(file, 58), Word(file, 54));
    EXPECT_EQ(Word(file, 62), 0u);
    EXPECT_EQ(Word(file, 66), 0xFEFEFEu);
    // The same in the other orders.
    EXPECT_EQ(Written(eZFCC_UYVY, 2, -2, {128, 16, 128, 235, 90, 81, 240, 81}), file);
    EXPECT_EQ(Written(eZFCC_YVYU, 2, -2, {16, 128, 235, 128, 81, 240, 81, 90}), file);
    // And with rows that are longer in memory.
    EXPECT_EQ(Written(eZFCC_YUY2, 2, -2, {16, 128, 235, 128, 7, 7, 7, 7, 81, 90, 81, 240, 7, 7, 7, 7}, 4), file);
}

TEST_F(BmpWriter, WhatHasNoFormIsRefused) {
    const uint8_t pixels[64] = {};
    EXPECT_EQ(WriteBmp({}, eZFCC_ARGB32, 2, 2, 0, pixels), E_INVALIDARG);
    EXPECT_EQ(WriteBmp(Name(), eZFCC_ARGB32, 0, 2, 0, pixels), E_INVALIDARG);
    EXPECT_EQ(WriteBmp(Name(), eZFCC_ARGB32, -2, 2, 0, pixels), E_INVALIDARG);
    EXPECT_EQ(WriteBmp(Name(), eZFCC_ARGB32, 2, 0, 0, pixels), E_INVALIDARG);
    EXPECT_EQ(WriteBmp(Name(), eZFCC_ARGB32, 2, 2, 0, nullptr), E_INVALIDARG);
    EXPECT_EQ(WriteBmp(Name(), eZFCC_ARGB32, 2, 2, 1, pixels), E_INVALIDARG);
    EXPECT_EQ(WriteBmp(Name(), eZFCC_Default, 2, 2, 0, pixels), E_INVALIDARG);
    EXPECT_EQ(WriteBmp(Name(), eZFCC_NV12, 2, 2, 0, pixels), E_INVALIDARG);
    EXPECT_EQ(WriteBmp(Name(), eZFCC_YUY2, 3, 2, 0, pixels), E_INVALIDARG);
    EXPECT_EQ(WriteBmp(Name(), eZFCC_ARGB32, 0x10000, 0x10000, 0, pixels), E_INVALIDARG);
    EXPECT_EQ(WriteBmp(Name(), eZFCC_ARGB32, INT32_MAX, INT32_MIN, 0, pixels), E_INVALIDARG);
    EXPECT_LT(WriteBmp(TextFromUtf8(m_folder.Path("no/such/folder.bmp")), eZFCC_ARGB32, 2, 2, 0, pixels), 0);
}

}    // namespace
}    // namespace zck
