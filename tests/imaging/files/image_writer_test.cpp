#include "imaging/files/image_writer.h"

#include <gtest/gtest.h>

#include <thread>

#include "imaging/files/image_frames.h"
#include "platform/status.h"
#include "tests/support/scratch_folder.h"

namespace zck {
namespace {

using Bytes = std::vector<uint8_t>;

class ImageWriter : public testing::Test {
protected:
    HRESULT Save(std::string_view name, eZFCC fcc, int32_t width, int32_t height, const Bytes &bytes) {
        const ImgDesc desc = {fcc, width, height, 0};
        return SaveImageFile(bytes.data(), &desc, TextFromUtf8(m_folder.Path(name)));
    }
    /// The first bytes of the file that a name leads to.
    std::string Start(std::string_view name, eZFCC fcc = eZFCC_ARGB32) {
        EXPECT_EQ(Save(name, fcc, 2, 2, Bytes(16, 200)), S_OK) << name;
        return m_folder.Bytes(name).substr(0, 4);
    }
    /// What was saved, the bottom row first.
    Bytes Loaded(std::string_view name, bool keepAlpha = false) {
        ImageFrames frames;
        EXPECT_EQ(LoadImageFrames(TextFromUtf8(m_folder.Path(name)), nullptr, keepAlpha, false, frames), S_OK) << name;
        if (frames.size() != 1) return {};
        const uint8_t *data = frames.front().pixels.Data();
        return {data, data + frames.front().pixels.Size()};
    }

    test::ScratchFolder m_folder;
};

void ExpectNear(const Bytes &expected, const Bytes &got, int tolerance) {
    ASSERT_EQ(expected.size(), got.size());
    for (size_t i = 0; i < got.size(); ++i) EXPECT_NEAR(expected[i], got[i], tolerance) << i;
}

TEST_F(ImageWriter, TheExtensionChoosesTheKindInAnyCase) {
    for (const char *name : {"a.png", "a.PNG", "b.Png"}) EXPECT_EQ(Start(name), "\x89PNG") << name;
    for (const char *name : {"a.gif", "a.GIF"}) EXPECT_EQ(Start(name), "GIF8") << name;
    for (const char *name : {"a.tif", "a.tiff", "a.TIFF"}) {
        const std::string start = Start(name).substr(0, 2);
        EXPECT_TRUE(start == "II" || start == "MM") << name;
    }
    for (const char *name : {"a.jpg", "a.jpeg", "a.JPG"}) EXPECT_EQ(Start(name).substr(0, 3), "\xFF\xD8\xFF") << name;
    for (const char *name : {"a.bmp", "a.BMP", "a.tga", "a.", "a", "a.png2", "a.png.x"})
        EXPECT_EQ(Start(name).substr(0, 2), "BM") << name;
}

TEST_F(ImageWriter, BmpKeepsAlphaOnlyAsBmp) {
    const Bytes pixels = {1, 2, 3, 4, 50, 60, 70, 128};
    ASSERT_EQ(Save("a.bmp", eZFCC_ARGB32, 2, -1, pixels), S_OK);
    EXPECT_EQ(m_folder.Bytes("a.bmp").size(), 54u + 8);
    EXPECT_EQ(m_folder.Bytes("a.bmp").substr(54), std::string(pixels.begin(), pixels.end()));
    // Under any other name the codec drops it.
    ASSERT_EQ(Save("a.tga", eZFCC_ARGB32, 2, -1, {0, 64, 0, 128, 0, 0, 0, 0}), S_OK);
    ExpectNear({0, 128, 0, 255, 0, 0, 0, 255}, Loaded("a.tga"), 2);
    // RGB32 goes through the codec also as .bmp.
    ASSERT_EQ(Save("b.bmp", eZFCC_RGB32, 2, -2, {1, 2, 3, 0, 4, 5, 6, 0, 7, 8, 9, 0, 10, 11, 12, 0}), S_OK);
    const std::string file = m_folder.Bytes("b.bmp");
    EXPECT_EQ(file.substr(file.size() - 16, 3), "\x07\x08\x09");    // the bottom row first
    EXPECT_EQ(file.substr(18, 8), std::string("\2\0\0\0\2\0\0\0", 8));
}

TEST_F(ImageWriter, PngHasTheColourBeforeItWasMultiplied) {
    // A white edge of half alpha, one of alpha 1, a colour above its alpha, and one that is transparent.
    const Bytes pixels = {128, 128, 128, 128, 1, 1, 1, 1, 90, 200, 0, 100, 9, 9, 9, 0};
    ASSERT_EQ(Save("a.png", eZFCC_ARGB32, 2, 2, pixels), S_OK);
    ExpectNear({255, 255, 255, 128, 255, 255, 255, 1, 229, 255, 0, 100, 0, 0, 0, 0}, Loaded("a.png", true), 2);
    ExpectNear({128, 128, 128, 128, 1, 1, 1, 1, 90, 100, 0, 100, 0, 0, 0, 0}, Loaded("a.png"), 1);
}

TEST_F(ImageWriter, TiffKeepsAlpha) {
    const Bytes pixels = {128, 128, 128, 128, 10, 20, 30, 255, 90, 0, 50, 100, 0, 0, 0, 0};
    ASSERT_EQ(Save("a.tif", eZFCC_ARGB32, 2, 2, pixels), S_OK);
    ExpectNear(pixels, Loaded("a.tif"), 1);
    ExpectNear({255, 255, 255, 128, 10, 20, 30, 255, 229, 0, 127, 100, 0, 0, 0, 0}, Loaded("a.tif", true), 2);
}

TEST_F(ImageWriter, RowOrderFollowsTheSignOfTheHeight) {
    const Bytes pixels = {1, 2, 3, 255, 4, 5, 6, 255};
    for (const char *name : {"a.png", "a.tif", "a.gif", "a.tga"}) {
        ASSERT_EQ(Save(name, eZFCC_ARGB32, 1, 2, pixels), S_OK);
        EXPECT_EQ(Loaded(name), pixels) << name;
        ASSERT_EQ(Save(name, eZFCC_ARGB32, 1, -2, pixels), S_OK);
        EXPECT_EQ(Loaded(name), (Bytes{4, 5, 6, 255, 1, 2, 3, 255})) << name;
    }
}

TEST_F(ImageWriter, RowsOfRgb24AreAsWideAsOthers) {
    const Bytes pixels = {1, 2, 3, 4, 5, 6, 99, 99, 7, 8, 9, 10, 11, 12, 99, 99};
    for (const char *name : {"a.png", "a.tif", "a.gif", "a.bmp"}) {
        ASSERT_EQ(Save(name, eZFCC_RGB24, 2, 2, pixels), S_OK);
        EXPECT_EQ(Loaded(name), (Bytes{1, 2, 3, 255, 4, 5, 6, 255, 7, 8, 9, 255, 10, 11, 12, 255})) << name;
    }
}

TEST_F(ImageWriter, Rgb32IsOpaque) {
    for (const char *name : {"a.png", "a.tif", "a.gif"}) {
        ASSERT_EQ(Save(name, eZFCC_RGB32, 1, 1, {1, 2, 3, 77}), S_OK);
        EXPECT_EQ(Loaded(name), (Bytes{1, 2, 3, 255})) << name;
    }
}

TEST_F(ImageWriter, JpegKeepsFlatAreas) {
    Bytes pixels;
    for (int i = 0; i < 16 * 16; ++i) pixels.insert(pixels.end(), {40, 64, 100, 128});
    ASSERT_EQ(Save("a.jpg", eZFCC_ARGB32, 16, 16, pixels), S_OK);
    Bytes expected;
    for (int i = 0; i < 16 * 16; ++i) expected.insert(expected.end(), {80, 128, 199, 255});
    ExpectNear(expected, Loaded("a.jpg"), 12);
}

TEST_F(ImageWriter, GifOfFewColoursKeepsThem) {
    Bytes pixels;
    for (int i = 0; i < 64; ++i) {
        const uint8_t pixel[] = {static_cast<uint8_t>(i * 4), static_cast<uint8_t>(255 - i), static_cast<uint8_t>(i * 37), 255};
        pixels.insert(pixels.end(), pixel, pixel + 4);
    }
    ASSERT_EQ(Save("a.gif", eZFCC_ARGB32, 8, 8, pixels), S_OK);
    ExpectNear(pixels, Loaded("a.gif"), 8);
    // Many colours are gathered.
    pixels.clear();
    for (int i = 0; i < 64 * 64; ++i) {
        const uint8_t pixel[] = {static_cast<uint8_t>(i % 64 * 4), static_cast<uint8_t>(i / 64 * 4), 128, 255};
        pixels.insert(pixels.end(), pixel, pixel + 4);
    }
    ASSERT_EQ(Save("b.gif", eZFCC_ARGB32, 64, 64, pixels), S_OK);
    ExpectNear(pixels, Loaded("b.gif"), 24);
}

TEST_F(ImageWriter, WhatCannotBeSaved) {
    const Bytes pixels(64);
    const ImgDesc desc = {eZFCC_ARGB32, 2, 2, 0};
    EXPECT_EQ(SaveImageFile(nullptr, &desc, ZCK_TEXT("a.png")), E_UNEXPECTED);
    EXPECT_EQ(SaveImageFile(pixels.data(), nullptr, ZCK_TEXT("a.png")), E_UNEXPECTED);
    EXPECT_EQ(SaveImageFile(pixels.data(), &desc, TextView()), E_FAIL);
    EXPECT_EQ(SaveImageFile(pixels.data(), &desc, ZCK_TEXT("")), E_FAIL);
    for (const eZFCC fcc : {eZFCC_RGB8, eZFCC_r210, eZFCC_UYVY, eZFCC_Default})
        EXPECT_EQ(Save("a.png", fcc, 2, 2, pixels), kCoENotSupported);
    EXPECT_EQ(Save("a.bmp", eZFCC_YUY2, 2, 2, pixels), kCoENotSupported);
    EXPECT_EQ(Save("a.png", eZFCC_ARGB32, 2, 0, pixels), E_FAIL);
    EXPECT_EQ(Save("a.png", eZFCC_ARGB32, 0, 2, pixels), E_FAIL);
    EXPECT_EQ(Save("a.png", eZFCC_ARGB32, -2, 2, pixels), E_FAIL);
    EXPECT_EQ(Save("a.png", eZFCC_ARGB32, INT32_MAX, INT32_MIN, pixels), E_FAIL);
    EXPECT_EQ(Save("missing/a.png", eZFCC_ARGB32, 2, 2, pixels), E_FAIL);
    EXPECT_EQ(Save("missing/a.bmp", eZFCC_ARGB32, 2, 2, pixels), static_cast<HRESULT>(0x80070003));
    EXPECT_EQ(Save("", eZFCC_ARGB32, 2, 2, pixels), E_FAIL);
    EXPECT_EQ(Save("a.bmp", eZFCC_ARGB32, 2, 0, pixels), E_INVALIDARG);
}

TEST_F(ImageWriter, ThreadsDoNotMeet) {
    constexpr int kThreads = 4;
    std::vector<std::thread> threads;
    for (int i = 0; i < kThreads; ++i) {
        threads.emplace_back([this, i] {
            const auto grey = static_cast<uint8_t>(50 * i + 1);
            for (const char *kind : {".png", ".tif", ".gif", ".jpg", ".bmp"}) {
                const std::string name = std::to_string(i) + kind;
                EXPECT_EQ(Save(name, eZFCC_RGB32, 1, 1, {grey, grey, grey, 255}), S_OK);
                ExpectNear({grey, grey, grey, 255}, Loaded(name), 3);
            }
        });
    }
    for (std::thread &thread : threads) thread.join();
}

TEST_F(ImageWriter, OldFilesAreReplaced) {
    for (const char *name : {"a.png", "a.bmp"}) {
        m_folder.Put(name, std::string(5000, 'x'));
        ASSERT_EQ(Save(name, eZFCC_ARGB32, 1, 1, {1, 2, 3, 255}), S_OK);
        EXPECT_LT(m_folder.Bytes(name).size(), 1000u);
        EXPECT_EQ(Loaded(name), (Bytes{1, 2, 3, 255}));
    }
}

}    // namespace
}    // namespace zck
