#include "imaging/files/image_frames.h"

#include <gtest/gtest.h>

#include "platform/status.h"
#include "tests/support/image_bytes.h"
#include "tests/support/scratch_folder.h"

namespace zck {
namespace {

using test::ImageBytes;
using Bytes = ImageBytes;

class ImageFramesTest : public testing::Test {
protected:
    HRESULT Load(std::string_view name, bool keepAlpha = false, bool firstOnly = false, HBITMAP bitmap = nullptr) {
        return LoadImageFrames(TextFromUtf8(m_folder.Path(name)), bitmap, keepAlpha, firstOnly, m_frames);
    }
    HRESULT LoadBytes(std::string_view name, const std::string &bytes, bool keepAlpha = false, bool firstOnly = false) {
        m_folder.Put(name, bytes);
        return Load(name, keepAlpha, firstOnly);
    }
    const ImageFrame &Frame(size_t i) const { return *std::next(m_frames.begin(), static_cast<std::ptrdiff_t>(i)); }
    Bytes Pixels(size_t i = 0) const {
        const ImageFrame &frame = Frame(i);
        EXPECT_EQ(frame.fccType, eZFCC_ARGB32);
        EXPECT_EQ(frame.nRowPixels, frame.nWidth);
        return {frame.pixels.Data(), frame.pixels.Data() + frame.pixels.Size()};
    }

    test::ScratchFolder m_folder;
    ImageFrames m_frames;
};

TEST_F(ImageFramesTest, PngIsMultipliedUnlessAlphaIsKept) {
    // Red, and a white of half alpha; below, transparent and a dark green of alpha 200.
    const std::string file = test::PngBytes(2, 2, {255, 0, 0, 255, 255, 255, 255, 128, 9, 9, 9, 0, 0, 100, 0, 200});
    ASSERT_EQ(LoadBytes("a.png", file), S_OK);
    ASSERT_EQ(m_frames.size(), 1u);
    EXPECT_EQ(Frame(0).nWidth, 2);
    EXPECT_EQ(Frame(0).nHeight, 2);
    EXPECT_EQ(Frame(0).rtDuration, 0);
    EXPECT_EQ(Frame(0).rtStart, 0);
    // The bottom row first. 100 * 200 / 255 = 78.4.
    EXPECT_EQ(Pixels(), (Bytes{0, 0, 0, 0, 0, 78, 0, 200, 0, 0, 255, 255, 128, 128, 128, 128}));
    ASSERT_EQ(LoadBytes("a.png", file, true), S_OK);
    EXPECT_EQ(Pixels(), (Bytes{9, 9, 9, 0, 0, 100, 0, 200, 0, 0, 255, 255, 255, 255, 255, 128}));
}

TEST_F(ImageFramesTest, BmpOf32BitsComesAsItStands) {
    test::BmpParts parts;
    ASSERT_EQ(LoadBytes("a.BMP", BmpBytes(parts)), S_OK);
    EXPECT_EQ(test::Chars(Pixels()), "abcdefghijklmnop");
    EXPECT_EQ(Frame(0).nHeight, 2);
    // With a negative height the top row is the first.
    parts.height = -2;
    ASSERT_EQ(LoadBytes("a.bmp", BmpBytes(parts)), S_OK);
    EXPECT_EQ(Frame(0).nHeight, -2);
    EXPECT_EQ(test::Chars(Pixels()), "abcdefghijklmnop");
    // Other programs leave the fourth byte 0: transparent.
    parts.pixels = std::string("abc\0def\0ghi\0jkl\0", 16);
    ASSERT_EQ(LoadBytes("a.bmp", BmpBytes(parts)), S_OK);
    EXPECT_EQ(test::Chars(Pixels()), parts.pixels);
}

TEST_F(ImageFramesTest, OtherBmpIsTheCodecs) {
    test::BmpParts parts;
    parts.bits = 24;
    parts.pixels = "abcdef__ghijkl__";
    ASSERT_EQ(LoadBytes("a.bmp", BmpBytes(parts)), S_OK);
    EXPECT_EQ(test::Chars(Pixels()),
              "abc\xFF"
              "def\xFF"
              "ghi\xFF"
              "jkl\xFF");
    // Rows with the top one first are turned over.
    parts.height = -2;
    ASSERT_EQ(LoadBytes("a.bmp", BmpBytes(parts)), S_OK);
    EXPECT_EQ(Frame(0).nHeight, 2);
    EXPECT_EQ(test::Chars(Pixels()).substr(0, 4), "ghi\xFF");
}

TEST_F(ImageFramesTest, TheKindFollowsFromTheContent) {
    ASSERT_EQ(LoadBytes("a.bmp", test::PngBytes(1, 1, {1, 2, 3, 255})), S_OK);
    EXPECT_EQ(Pixels(), (Bytes{3, 2, 1, 255}));
    ASSERT_EQ(LoadBytes("a", test::PngBytes(1, 1, {1, 2, 3, 255})), S_OK);
    EXPECT_EQ(Pixels(), (Bytes{3, 2, 1, 255}));
}

class GifFrames : public ImageFramesTest {
protected:
    static constexpr uint8_t kRed = 0;
    static constexpr uint8_t kGreen = 1;
    static constexpr uint8_t kBlue = 2;
    static constexpr uint8_t kClear = 3;

    HRESULT LoadParts(const std::vector<test::GifPart> &parts, bool firstOnly = false) {
        return LoadBytes("a.gif", test::GifBytes(2, 1, {0xFF0000, 0x00FF00, 0x0000FF, 0x123456}, parts), false, firstOnly);
    }
    /// Both pixels in letters: r, g, b, - for transparent.
    std::string Letters(size_t i) const {
        const Bytes pixels = Pixels(i);
        std::string letters;
        for (size_t at = 0; at < pixels.size(); at += 4) {
            const uint32_t pixel = static_cast<uint32_t>(pixels[at] | pixels[at + 1] << 8 | pixels[at + 2] << 16) |
                                   static_cast<uint32_t>(pixels[at + 3]) << 24;
            letters += pixel == 0xFFFF0000   ? 'r'
                       : pixel == 0xFF00FF00 ? 'g'
                       : pixel == 0xFF0000FF ? 'b'
                       : pixel == 0          ? '-'
                                             : '?';
        }
        return letters;
    }
};

TEST_F(GifFrames, PicturesHaveDelaysAndStarts) {
    const test::GifPart whole = {0, 0, 2, 1, 5, 0, -1, false, {kRed, kGreen}};
    test::GifPart second = whole;
    second.delay = 0;
    test::GifPart third = whole;
    third.delay = 0xFFFF;
    ASSERT_EQ(LoadParts({whole, second, third, whole}), S_OK);
    ASSERT_EQ(m_frames.size(), 4u);
    const int64_t durations[] = {500000, 0, 6553500000, 500000};
    const int64_t starts[] = {0, 500000, 900000, 6554400000};
    for (size_t i = 0; i < 4; ++i) {
        EXPECT_EQ(Frame(i).rtDuration, durations[i]) << i;
        EXPECT_EQ(Frame(i).rtStart, starts[i]) << i;
        EXPECT_EQ(Letters(i), "rg");
    }
    ASSERT_EQ(LoadParts({whole, second, third, whole}, true), S_OK);
    EXPECT_EQ(m_frames.size(), 1u);
}

TEST_F(GifFrames, PicturesAreComposed) {
    ASSERT_EQ(LoadParts({{0, 0, 2, 1, 1, 1, -1, false, {kRed, kRed}},
                         {1, 0, 1, 1, 1, 0, -1, false, {kGreen}},
                         {0, 0, 2, 1, 1, 3, kClear, false, {kBlue, kClear}},
                         {1, 0, 1, 1, 1, 1, -1, false, {kBlue}}}),
              S_OK);
    ASSERT_EQ(m_frames.size(), 4u);
    EXPECT_EQ(Letters(0), "rr");
    EXPECT_EQ(Letters(1), "rg");
    EXPECT_EQ(Letters(2), "bg");
    EXPECT_EQ(Letters(3), "rb");    // the third one has gone again
}

TEST_F(GifFrames, WhatIsTransparentIsZero) {
    ASSERT_EQ(LoadParts({{0, 0, 2, 1, 1, 0, kClear, false, {kClear, kGreen}}}), S_OK);
    EXPECT_EQ(Letters(0), "-g");
}

TEST_F(GifFrames, InterlacedRowsComeInTheirPlaces) {
    const Bytes rows = {0, 8, 4, 2, 6, 1, 3, 5, 7};
    std::vector<uint32_t> palette;
    for (uint32_t i = 0; i < 9; ++i) palette.push_back(i);
    ASSERT_EQ(LoadBytes("a.gif", test::GifBytes(1, 9, palette, {{0, 0, 1, 9, 0, 0, -1, true, rows}})), S_OK);
    const Bytes pixels = Pixels();
    for (size_t y = 0; y < 9; ++y) EXPECT_EQ(pixels[4 * y], 8 - y);
}

TEST_F(GifFrames, TooManyPicturesAreRefusedBeforeDecoding) {
    std::vector<test::GifPart> parts(4097, {0, 0, 2, 1, 1, 0, -1, false, {kRed, kRed}});
    EXPECT_EQ(LoadParts(parts), E_OUTOFMEMORY);
    EXPECT_TRUE(m_frames.empty());
    // The first alone is no list.
    EXPECT_EQ(LoadParts(parts, true), S_OK);
    parts.pop_back();
    EXPECT_EQ(LoadParts(parts), S_OK);
    EXPECT_EQ(m_frames.size(), 4096u);
    // Small parts of a large area: 32000 * 16000 * 4 bytes are less than 2 GB, twice as many are more.
    const test::GifPart small = {0, 0, 1, 1, 1, 0, -1, false, {kRed}};
    EXPECT_EQ(LoadBytes("a.gif", test::GifBytes(32000, 16000, {}, {small, small})), E_OUTOFMEMORY);
    EXPECT_EQ(LoadBytes("a.gif", test::GifBytes(32768, 1, {}, {small})), E_OUTOFMEMORY);
}

class TiffFrames : public ImageFramesTest {};

TEST_F(TiffFrames, AllPagesWithSizesOfTheirOwn) {
    ASSERT_EQ(LoadBytes("a.tif", test::TiffBytes({{1, 1, 0, {1, 2, 3}}, {1, 2, 0, {4, 5, 6, 7, 8, 9}}})), S_OK);
    ASSERT_EQ(m_frames.size(), 2u);
    EXPECT_EQ(Pixels(0), (Bytes{3, 2, 1, 255}));
    EXPECT_EQ(Frame(1).nHeight, 2);
    EXPECT_EQ(Pixels(1), (Bytes{9, 8, 7, 255, 6, 5, 4, 255}));
    EXPECT_EQ(Frame(1).rtStart, 400000);
    EXPECT_EQ(Frame(1).rtDuration, 0);
    ASSERT_EQ(Load("a.tif", false, true), S_OK);
    EXPECT_EQ(m_frames.size(), 1u);
}

TEST_F(TiffFrames, StraightColourIsMultiplied) {
    const std::string file = test::TiffBytes({{1, 1, 2, {255, 100, 0, 128}}});
    ASSERT_EQ(LoadBytes("a.tif", file), S_OK);
    EXPECT_EQ(Pixels(), (Bytes{0, 50, 128, 128}));
    ASSERT_EQ(LoadBytes("a.tif", file, true), S_OK);
    EXPECT_EQ(Pixels(), (Bytes{0, 100, 255, 128}));
}

TEST_F(TiffFrames, MultipliedColourStays) {
    const std::string file = test::TiffBytes({{1, 1, 1, {128, 50, 0, 128}}});
    ASSERT_EQ(LoadBytes("a.tif", file), S_OK);
    EXPECT_EQ(Pixels(), (Bytes{0, 50, 128, 128}));
    ASSERT_EQ(LoadBytes("a.tif", file, true), S_OK);
    const Bytes straight = Pixels();
    EXPECT_NEAR(straight[1], 99.6, 2);
    EXPECT_NEAR(straight[2], 255, 2);
    EXPECT_EQ(straight[3], 128);
}

TEST_F(TiffFrames, DirectoriesInARingAreTooMany) {
    const std::string ring = test::TiffBytes({{1, 1, 0, {1, 2, 3}}}, true);
    EXPECT_EQ(LoadBytes("a.tif", ring), E_OUTOFMEMORY);
    EXPECT_EQ(LoadBytes("a.tif", ring, false, true), S_OK);
}

TEST_F(ImageFramesTest, HugePicturesAreRefusedBeforeDecoding) {
    const auto png = [](uint32_t width, uint32_t height) {
        std::string file = test::PngBytes(1, 1, {1, 2, 3, 4});
        std::string header;
        test::PutBig(header, width, 4);
        test::PutBig(header, height, 4);
        file.replace(16, 8, header);
        header = file.substr(12, 17);
        std::string crc;
        test::PutBig(crc, test::PngCrc(header), 4);
        return file.replace(29, 4, crc);
    };
    EXPECT_EQ(LoadBytes("a.png", png(32768, 1)), E_OUTOFMEMORY);
    EXPECT_EQ(LoadBytes("a.png", png(1, 32768)), E_OUTOFMEMORY);
    EXPECT_EQ(LoadBytes("a.png", png(32767, 32767)), E_OUTOFMEMORY);
    EXPECT_EQ(LoadBytes("a.png", png(0xFFFFFFFF, 0xFFFFFFFF)), E_OUTOFMEMORY);
    EXPECT_EQ(LoadBytes("a.tif", test::TiffBytes({{40000, 1, 0, {1, 2, 3}}})), E_OUTOFMEMORY);
    test::BmpParts parts;
    parts.bits = 24;
    parts.width = 32767;
    parts.height = 32767;
    EXPECT_EQ(LoadBytes("a.bmp", BmpBytes(parts)), E_OUTOFMEMORY);
}

TEST_F(ImageFramesTest, WhatIsNoPicture) {
    EXPECT_EQ(Load("missing.png"), kErrorFileNotFound);
    EXPECT_EQ(LoadImageFrames(TextView(), nullptr, false, false, m_frames), kErrorFileNotFound);
    EXPECT_EQ(LoadImageFrames(ZCK_TEXT(""), nullptr, false, false, m_frames), kErrorFileNotFound);
    EXPECT_EQ(LoadBytes("a.png", "this is no picture"), E_INVALIDARG);
    EXPECT_EQ(LoadBytes("a.png", ""), E_INVALIDARG);
    EXPECT_EQ(LoadBytes("a.bmp", "BMthis is no picture"), E_INVALIDARG);
    EXPECT_EQ(Load(""), E_INVALIDARG);    // a folder is there
    EXPECT_TRUE(m_frames.empty());
}

TEST_F(ImageFramesTest, AFileThatBreaksOffGivesAPictureOrAFailure) {
    const std::string png = test::PngBytes(2, 2, Bytes(16, 77));
    const std::string gif = test::GifBytes(2, 1, {1, 2}, {{0, 0, 2, 1, 5, 0, -1, false, {0, 1}}});
    const std::string tiff = test::TiffBytes({{1, 1, 0, {1, 2, 3}}});
    for (const std::string &file : {png, gif, tiff}) {
        for (size_t size = 0; size < file.size(); ++size) {
            const HRESULT hr = LoadBytes("cut", file.substr(0, size));
            EXPECT_TRUE(hr == S_OK || hr == E_FAIL || hr == E_INVALIDARG || hr == E_OUTOFMEMORY)
                << size << " " << std::hex << hr;
            EXPECT_EQ(hr == S_OK, !m_frames.empty());
        }
    }
}

TEST_F(ImageFramesTest, ABitmapIsTakenInPlaceOfAFileThatIsThere) {
    m_folder.Put("a", "no picture");
    BITMAPINFOHEADER header = {};
    header.biSize = sizeof(header);
    header.biWidth = 1;
    header.biHeight = 1;
    header.biPlanes = 1;
    header.biBitCount = 32;
    header.biSizeImage = 4;
    const uint8_t pixel[] = {1, 2, 3, 4};
    HBITMAP bitmap = nullptr;
    ASSERT_EQ(BitmapMake(header, pixel, &bitmap), S_OK);
    ASSERT_EQ(Load("a", false, false, bitmap), S_OK);
    ASSERT_EQ(m_frames.size(), 1u);
    EXPECT_EQ(Pixels(), (Bytes{1, 2, 3, 4}));
    EXPECT_EQ(Load("missing", false, false, bitmap), kErrorFileNotFound);
    DeleteObject(bitmap);
}

}    // namespace
}    // namespace zck
