#include "platform/status.h"
#include "tests/frames/object/frame_fixture.h"
#include "tests/support/image_bytes.h"
#include "tests/support/scratch_folder.h"

namespace zck::test {
namespace {

using Pixels = std::vector<uint8_t>;

class CreateFromFile : public FrameTest {
protected:
    void TearDown() override {
        m_frame.Reset();
        FrameTest::TearDown();
    }
    HRESULT Create(TextView name, TextView options = {}) {
        return m_factory->FrameCreateFromFile(Bstr(name).get(), m_frame.Put(), Bstr(options).get());
    }
    HRESULT CreateFile(std::string_view name, TextView options = {}) {
        return Create(TextFromUtf8(m_folder.Path(name)), options);
    }
    Z_VID_PROPS Made() { return PropsOf(m_frame).vidProps; }

    ScratchFolder m_folder;
    ComPtr<IZFrame> m_frame;
};

TEST_F(CreateFromFile, AColourMakesAnNtscFrame) {
    ASSERT_EQ(S_OK, Create(ZCK_TEXT("Orange")));
    EXPECT_EQ(eZFCC_ARGB32, Made().fccType);
    EXPECT_EQ(eZVF_NTSC, Made().eVideoFormat);
    EXPECT_EQ(720, Made().nWidth);
    EXPECT_EQ(-486, Made().nHeight);
    const Pixels pixels = VideoOf(m_frame).Copy();
    ASSERT_EQ(720u * 486 * 4, pixels.size());
    EXPECT_EQ((Pixels{0, 165, 255}), Pixels(pixels.begin(), pixels.begin() + 3));
    EXPECT_EQ(Pixels(pixels.begin(), pixels.begin() + 4), Pixels(pixels.end() - 4, pixels.end()));
    // The row order of a colour cannot be chosen.
    ASSERT_EQ(S_OK, Create(ZCK_TEXT("Orange"), ZCK_TEXT("bottom-top=true")));
    EXPECT_EQ(-486, Made().nHeight);
}

TEST_F(CreateFromFile, AColourTakesAFormat) {
    ASSERT_EQ(S_OK, Create(ZCK_TEXT("White"), ZCK_TEXT("pixel_format=UYVY")));
    EXPECT_EQ(eZFCC_UYVY, Made().fccType);
    EXPECT_EQ(486, Made().nHeight);
    EXPECT_EQ(235, VideoOf(m_frame).data()[1]);
    // One that cannot be filled is all 0.
    ASSERT_EQ(S_OK, Create(ZCK_TEXT("White"), ZCK_TEXT("pixel_format=v210")));
    EXPECT_EQ(eZFCC_v210, Made().fccType);
    for (const uint8_t byte : VideoOf(m_frame).Copy()) ASSERT_EQ(0, byte);
    ASSERT_EQ(S_OK, Create(ZCK_TEXT("White"), ZCK_TEXT("audio_samples=10")));
    EXPECT_EQ(40, AudioOf(m_frame).size);
}

TEST_F(CreateFromFile, ANameWithASlashIsNoColour) {
    EXPECT_EQ(kErrorFileNotFound, Create(ZCK_TEXT("./Orange")));
    EXPECT_EQ(kErrorFileNotFound, Create(ZCK_TEXT(".\\Orange")));
    EXPECT_EQ(kErrorFileNotFound, Create(ZCK_TEXT("NoColourAndNoFile")));
    EXPECT_EQ(kErrorFileNotFound, Create(ZCK_TEXT("")));
    EXPECT_FALSE(m_frame);
}

TEST_F(CreateFromFile, AFileGivesItsFirstPictureWithTheTopRowFirst) {
    m_folder.Put("a.gif", GifBytes(2, 2, {0x0A0B0C, 0x141516},
                                   {{0, 0, 2, 2, 5, 0, -1, false, {0, 0, 1, 1}}, {0, 0, 2, 2, 5, 0, -1, false, {1, 1, 1, 1}}}));
    ASSERT_EQ(S_OK, CreateFile("a.gif"));
    EXPECT_EQ(eZFCC_ARGB32, Made().fccType);
    EXPECT_EQ(2, Made().nWidth);
    EXPECT_EQ(-2, Made().nHeight);
    EXPECT_EQ(8, Made().nRowBytes);
    EXPECT_EQ((Pixels{12, 11, 10, 255, 12, 11, 10, 255, 22, 21, 20, 255, 22, 21, 20, 255}), VideoOf(m_frame).Copy());
    ASSERT_EQ(S_OK, CreateFile("a.gif", ZCK_TEXT("bottom-top=true")));
    EXPECT_EQ(2, Made().nHeight);
    EXPECT_EQ((Pixels{22, 21, 20, 255, 22, 21, 20, 255, 12, 11, 10, 255, 12, 11, 10, 255}), VideoOf(m_frame).Copy());
}

TEST_F(CreateFromFile, ColourIsMultipliedByAlpha) {
    m_folder.Put("a.png", PngBytes(1, 1, {255, 255, 255, 128}));
    ASSERT_EQ(S_OK, CreateFile("a.png"));
    EXPECT_EQ((Pixels{128, 128, 128, 128}), VideoOf(m_frame).Copy());
}

TEST_F(CreateFromFile, ABmpWithTheTopRowFirstIsNotConverted) {
    BmpParts parts;
    parts.height = -2;
    m_folder.Put("a.bmp", BmpBytes(parts));
    ASSERT_EQ(S_OK, CreateFile("a.bmp"));
    EXPECT_EQ(-2, Made().nHeight);
    EXPECT_EQ(parts.pixels, Chars(VideoOf(m_frame).Copy()));
    ASSERT_EQ(S_OK, CreateFile("a.bmp", ZCK_TEXT("bottom-top=1")));
    EXPECT_EQ(2, Made().nHeight);
    EXPECT_EQ("ijklmnopabcdefgh", Chars(VideoOf(m_frame).Copy()));
    // Alpha is what the fourth byte says; other programs leave it 0.
    parts.pixels = std::string("abc\0def\0ghi\0jkl\0", 16);
    m_folder.Put("a.bmp", BmpBytes(parts));
    ASSERT_EQ(S_OK, CreateFile("a.bmp"));
    EXPECT_EQ(parts.pixels, Chars(VideoOf(m_frame).Copy()));
}

TEST_F(CreateFromFile, ABmpOf24BitsComesAsArgb32) {
    BmpParts parts;
    parts.bits = 24;
    parts.pixels = "abcdef__ghijkl__";
    m_folder.Put("a.bmp", BmpBytes(parts));
    ASSERT_EQ(S_OK, CreateFile("a.bmp"));
    EXPECT_EQ(eZFCC_ARGB32, Made().fccType);
    EXPECT_EQ(
        "ghi\xFF"
        "jkl\xFF"
        "abc\xFF"
        "def\xFF",
        Chars(VideoOf(m_frame).Copy()));
}

TEST_F(CreateFromFile, AFormatIsConvertedTo) {
    m_folder.Put("a.png", PngBytes(2, 2, Pixels(16, 255)));
    ASSERT_EQ(S_OK, CreateFile("a.png", ZCK_TEXT("pixel_format=UYVY")));
    EXPECT_EQ(eZFCC_UYVY, Made().fccType);
    EXPECT_EQ(2, Made().nHeight);
    EXPECT_EQ(4, Made().nRowBytes);
    EXPECT_EQ((Pixels{128, 235, 128, 235, 128, 235, 128, 235}), VideoOf(m_frame).Copy());
    ASSERT_EQ(S_OK, CreateFile("a.png", ZCK_TEXT("pixel_format=RGB24 bottom-top=true")));
    EXPECT_EQ(eZFCC_RGB24, Made().fccType);
    EXPECT_EQ(2, Made().nHeight);
    EXPECT_EQ(8, Made().nRowBytes);
}

TEST_F(CreateFromFile, FormatsWithoutARoute) {
    m_folder.Put("a.png", PngBytes(2, 2, Pixels(16, 255)));
    for (const TextView format : {ZCK_TEXT("I420"), ZCK_TEXT("YVYU"), ZCK_TEXT("r210")}) {
        EXPECT_EQ(kVfwEInvalidSubtype, CreateFile("a.png", Text(ZCK_TEXT("pixel_format=")) + Text(format)));
        EXPECT_FALSE(m_frame);
    }
    EXPECT_EQ(E_FAIL, CreateFile("a.png", ZCK_TEXT("pixel_format=v210")));
    EXPECT_EQ(kVfwEInvalidSubtype, CreateFile("a.png", ZCK_TEXT("pixel_format=nonsense")));
}

TEST_F(CreateFromFile, WhatIsNoPicture) {
    m_folder.Put("a.png", "no picture");
    EXPECT_EQ(E_INVALIDARG, CreateFile("a.png"));
    EXPECT_EQ(kErrorFileNotFound, CreateFile("missing.png"));
    EXPECT_EQ(E_INVALIDARG, CreateFile(""));
    EXPECT_FALSE(m_frame);
}

TEST_F(CreateFromFile, TheWideFactoryGivesTheSame) {
    m_folder.Put("a.png", PngBytes(1, 1, {1, 2, 3, 255}));
    ComPtr<IZFFrame> frame;
    const Bstr path(TextFromUtf8(m_folder.Path("a.png")));
    ASSERT_EQ(S_OK, As<IZFFactory>(m_factory)->ZFFrameCreateFromFile(path.get(), frame.Put(), nullptr));
    EXPECT_EQ((Pixels{3, 2, 1, 255}), VideoOf(As<IZFrame>(frame)).Copy());
}

}    // namespace
}    // namespace zck::test
