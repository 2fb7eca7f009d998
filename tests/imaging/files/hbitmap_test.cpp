#include "imaging/files/hbitmap.h"

#include <gtest/gtest.h>

#include <vector>

namespace zck {
namespace {

BITMAPINFOHEADER Header(int32_t width, int32_t height, uint16_t bits, uint32_t bytes) {
    BITMAPINFOHEADER header = {};
    header.biSize = sizeof(header);
    header.biWidth = width;
    header.biHeight = height;
    header.biPlanes = 1;
    header.biBitCount = bits;
    header.biSizeImage = bytes;
    return header;
}

std::vector<uint8_t> RowsOf(const BITMAPINFOHEADER &made, const std::vector<uint8_t> &pixels) {
    HBITMAP bitmap = nullptr;
    EXPECT_EQ(BitmapMake(made, pixels.data(), &bitmap), S_OK);
    BITMAPINFOHEADER header = {};
    uint8_t *rows = nullptr;
    EXPECT_EQ(ReadHbitmap(bitmap, &header, &rows), S_OK);
    EXPECT_EQ(header.biSize, sizeof(header));
    EXPECT_EQ(header.biWidth, made.biWidth);
    EXPECT_EQ(header.biHeight, made.biHeight < 0 ? -made.biHeight : made.biHeight);
    EXPECT_EQ(header.biBitCount, 32);
    EXPECT_EQ(header.biCompression, 0u);
    const std::vector<uint8_t> result(rows, rows + header.biSizeImage);
    CoTaskMemFree(rows);
    EXPECT_NE(DeleteObject(bitmap), 0);
    return result;
}

using Bytes = std::vector<uint8_t>;

TEST(Hbitmap, PixelsOf32BitsStay) {
    EXPECT_EQ(RowsOf(Header(1, 2, 32, 8), {1, 2, 3, 4, 5, 6, 7, 8}), (Bytes{1, 2, 3, 4, 5, 6, 7, 8}));
}

TEST(Hbitmap, ANegativeHeightHasTheTopRowFirst) {
    EXPECT_EQ(RowsOf(Header(1, -2, 32, 8), {1, 2, 3, 4, 5, 6, 7, 8}), (Bytes{5, 6, 7, 8, 1, 2, 3, 4}));
}

TEST(Hbitmap, PixelsOf24BitsGetAlpha0) {
    EXPECT_EQ(RowsOf(Header(1, 2, 24, 8), {1, 2, 3, 9, 4, 5, 6, 9}), (Bytes{1, 2, 3, 0, 4, 5, 6, 0}));
}

TEST(Hbitmap, PixelsOf16BitsHaveFiveForEachColour) {
    // Blue 31, green 16, red 1.
    EXPECT_EQ(RowsOf(Header(1, 1, 16, 4), {0x1F, 0x06, 9, 9}), (Bytes{255, 132, 8, 0}));
}

TEST(Hbitmap, Arguments) {
    BITMAPINFOHEADER header;
    uint8_t *pixels = nullptr;
    EXPECT_EQ(ReadHbitmap(nullptr, &header, &pixels), E_INVALIDARG);
    EXPECT_EQ(ReadHbitmap(nullptr, nullptr, nullptr), E_INVALIDARG);
    HBITMAP bitmap = nullptr;
    const Bytes one(4);
    ASSERT_EQ(BitmapMake(Header(1, 1, 32, 4), one.data(), &bitmap), S_OK);
    EXPECT_EQ(ReadHbitmap(bitmap, nullptr, nullptr), E_POINTER);
    EXPECT_EQ(ReadHbitmap(bitmap, &header, nullptr), S_OK);
    EXPECT_EQ(ReadHbitmap(bitmap, nullptr, &pixels), S_OK);
    CoTaskMemFree(pixels);
    DeleteObject(bitmap);
}

}    // namespace
}    // namespace zck
