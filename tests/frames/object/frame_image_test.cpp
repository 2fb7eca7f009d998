#include "platform/bitmap.h"
#include "platform/status.h"
#include "tests/frames/object/frame_fixture.h"
#include "tests/support/scratch_folder.h"

namespace zck::test {
namespace {

using Pixels = std::vector<uint8_t>;

constexpr auto kNotSupported = static_cast<HRESULT>(0x80004021);

class FrameImage : public FrameTest {
protected:
    HRESULT Save(IZFrame *frame, std::string_view name) {
        return frame->FrameVideoSaveToFile(Bstr(TextFromUtf8(m_folder.Path(name))).get());
    }
    /// What was saved, as blue, green, red, alpha with the top row first.
    Pixels Loaded(std::string_view name) {
        ComPtr<IZFrame> frame;
        const Bstr path(TextFromUtf8(m_folder.Path(name)));
        EXPECT_EQ(S_OK, m_factory->FrameCreateFromFile(path.get(), frame.Put(), nullptr)) << name;
        return frame ? VideoOf(frame).Copy() : Pixels();
    }
    ComPtr<IZFrame_I> FrameOf(eZFCC fcc, int32_t width, int32_t height, const Pixels &pixels) {
        auto frame = Frame(Record(fcc, width, height));
        const Bytes video = VideoOf(frame);
        EXPECT_EQ(static_cast<size_t>(video.size), pixels.size());
        std::memcpy(video.data(), pixels.data(), pixels.size());
        return frame;
    }
    ComPtr<IZFrame> Cut(IZFrame *frame, tagRECT rect) {
        ComPtr<IZFrame> cut;
        EXPECT_EQ(S_OK, frame->FrameCut(0, &rect, cut.Put()));
        return cut;
    }

    ScratchFolder m_folder;
};

TEST_F(FrameImage, AFrameWithoutPictureHasNothingToGive) {
    ComPtr<IZFrame> frame;
    ASSERT_EQ(S_OK, m_factory->FrameCreate(0, nullptr, frame.Put()));
    EXPECT_EQ(kErrorEmpty, Save(frame.get(), "a.png"));
    int64_t bitmap = 1;
    EXPECT_EQ(kErrorEmpty, frame->FrameVideoGetHbitmap(&bitmap));
    EXPECT_EQ(0, bitmap);
    EXPECT_EQ(E_POINTER, frame->FrameVideoGetHbitmap(nullptr));
}

TEST_F(FrameImage, FramesOfTheRgbFamilyAreSavedAsTheyAre) {
    const Pixels pixels = {1, 2, 3, 255, 4, 5, 6, 255, 50, 60, 70, 128, 0, 0, 0, 0};
    ASSERT_EQ(S_OK, Save(FrameOf(eZFCC_ARGB32, 2, -2, pixels).get(), "a.bmp"));
    EXPECT_EQ(pixels, Loaded("a.bmp"));
    ASSERT_EQ(S_OK, Save(FrameOf(eZFCC_ARGB32, 2, -2, pixels).get(), "a.PNG"));
    const Pixels png = Loaded("a.PNG");
    for (size_t i = 0; i < pixels.size(); ++i) EXPECT_NEAR(pixels[i], png[i], 1) << i;
    // A bottom-up frame is the same picture upside down.
    ASSERT_EQ(S_OK, Save(FrameOf(eZFCC_RGB32, 1, 2, {1, 2, 3, 9, 4, 5, 6, 9}).get(), "b.png"));
    EXPECT_EQ((Pixels{4, 5, 6, 255, 1, 2, 3, 255}), Loaded("b.png"));
}

TEST_F(FrameImage, TheTgaOfTheHelpIsABmp) {
    ASSERT_EQ(S_OK, Save(FrameOf(eZFCC_ARGB32, 1, -1, {1, 2, 3, 255}).get(), "a.tga"));
    EXPECT_EQ("BM", m_folder.Bytes("a.tga").substr(0, 2));
}

TEST_F(FrameImage, RowsOfRgb24AreSavedWithoutTheirPadding) {
    const Pixels pixels = {1, 2, 3, 99, 4, 5, 6, 98};
    ASSERT_EQ(S_OK, Save(FrameOf(eZFCC_RGB24, 1, -2, pixels).get(), "a.png"));
    EXPECT_EQ((Pixels{1, 2, 3, 255, 4, 5, 6, 255}), Loaded("a.png"));
    ASSERT_EQ(S_OK, Save(FrameOf(eZFCC_RGB24, 1, 2, pixels).get(), "a.bmp"));
    EXPECT_EQ((Pixels{4, 5, 6, 255, 1, 2, 3, 255}), Loaded("a.bmp"));
}

TEST_F(FrameImage, OtherFormatsAreSavedAsAnArgbClone) {
    Pixels grey(16 * 2 * 8);
    for (size_t i = 0; i < grey.size(); ++i) grey[i] = i % 2 == 0 ? 128 : 235;
    const auto frame = FrameOf(eZFCC_UYVY, 16, 8, grey);
    const auto clone = Clone(frame.get(), eZFC_VideoRef, eZFCC_ARGB32);
    ASSERT_EQ(S_OK, Save(frame.get(), "a.png"));
    EXPECT_EQ(VideoOf(clone).Copy(), Loaded("a.png"));
    ASSERT_EQ(S_OK, Save(frame.get(), "a.bmp"));
    EXPECT_EQ(54u + 16 * 8 * 4, m_folder.Bytes("a.bmp").size());
}

TEST_F(FrameImage, FormatsWithoutAFileForm) {
    for (const eZFCC fcc : {eZFCC_RGB8, eZFCC_r210}) {
        const auto frame = Frame(Record(fcc, 64, -2));
        EXPECT_EQ(kNotSupported, Save(frame.get(), "a.png"));
        EXPECT_EQ(kNotSupported, Save(frame.get(), "a.bmp"));
    }
    int64_t bitmap = 0;
    EXPECT_EQ(E_INVALIDARG, Frame(Record(eZFCC_RGB8, 64, -2))->FrameVideoGetHbitmap(&bitmap));
}

TEST_F(FrameImage, FilesThatCannotBeWritten) {
    const auto frame = Frame(Record(eZFCC_UYVY, 16, 8));
    EXPECT_EQ(E_FAIL, Save(frame.get(), "missing/a.png"));
    EXPECT_EQ(static_cast<HRESULT>(0x80070003), Save(frame.get(), "missing/a.bmp"));
    EXPECT_EQ(E_FAIL, frame->FrameVideoSaveToFile(nullptr));
}

// The writers take rows of the width, and a cut has longer ones.
TEST_F(FrameImage, APaddedCutIsSavedSheared) {
    Pixels pixels;
    for (uint8_t i = 1; i <= 8; ++i) pixels.insert(pixels.end(), {i, i, i, 255});
    const auto frame = FrameOf(eZFCC_ARGB32, 4, -2, pixels);
    const auto cut = Cut(frame.get(), {0, 0, 2, 2});
    // Not 1 2 over 5 6: the first row of the frame, cut in two.
    const Pixels sheared(pixels.begin(), pixels.begin() + 16);
    for (const char *name : {"a.png", "a.bmp"}) {
        ASSERT_EQ(S_OK, Save(cut.get(), name));
        EXPECT_EQ(sheared, Loaded(name)) << name;
    }
    int64_t handle = 0;
    ASSERT_EQ(S_OK, cut->FrameVideoGetHbitmap(&handle));
    BITMAPINFOHEADER header;
    uint8_t *rows = nullptr;
    auto *bitmap = At<std::remove_pointer_t<HBITMAP>>(handle);
    ASSERT_EQ(S_OK, BitmapRead(bitmap, header, &rows));
    EXPECT_EQ(Pixels(pixels.begin() + 8, pixels.begin() + 16), Pixels(rows, rows + 8));
    CoTaskMemFree(rows);
    DeleteObject(bitmap);
    // A copy through a conversion is what a host saves.
    ComPtr<IZFrame> whole;
    Z_VID_PROPS props = Record(eZFCC_ARGB32, 2, -2);
    ASSERT_EQ(S_OK, cut->FrameConvert(&props, whole.Put(), nullptr));
    const auto copy = Clone(whole.get(), eZFC_Video, eZFCC_Default);
    ASSERT_EQ(S_OK, Save(copy.get(), "b.png"));
}

TEST_F(FrameImage, ARecordThatStatesMoreThanTheBufferIsRefused) {
    for (const eZFCC fcc : {eZFCC_ARGB32, eZFCC_RGB32, eZFCC_RGB24}) {
        const auto frame = Frame(Record(fcc, 4, -2));
        for (const int32_t rowBytes : {0, 16, 400, -16, -400}) {
            Z_AV_PROPS props = PropsOf(frame);
            props.vidProps.nHeight = -200;
            props.vidProps.nRowBytes = rowBytes;
            ASSERT_EQ(S_OK, frame->FrameAVPropsSet(&props));
            EXPECT_EQ(kVfwEInvalidMediaType, Save(frame.get(), "a.png")) << rowBytes;
            EXPECT_EQ(kVfwEInvalidMediaType, Save(frame.get(), "a.bmp")) << rowBytes;
            int64_t bitmap = 0;
            EXPECT_EQ(kVfwEInvalidMediaType, frame->FrameVideoGetHbitmap(&bitmap)) << rowBytes;
        }
        Z_AV_PROPS props = PropsOf(frame);
        props.vidProps.nHeight = 0;
        ASSERT_EQ(S_OK, frame->FrameAVPropsSet(&props));
        EXPECT_EQ(E_FAIL, Save(frame.get(), "a.png"));
    }
}

class FrameBitmap : public FrameImage {
protected:
    /// Blue, green, red, alpha, the bottom row first.
    Pixels RowsOf(IZFrame *frame) {
        int64_t handle = 0;
        EXPECT_EQ(S_OK, frame->FrameVideoGetHbitmap(&handle));
        if (handle == 0) return {};
        auto *bitmap = At<std::remove_pointer_t<HBITMAP>>(handle);
        BITMAPINFOHEADER header;
        uint8_t *rows = nullptr;
        EXPECT_EQ(S_OK, BitmapRead(bitmap, header, &rows));
        const Pixels result(rows, rows + header.biSizeImage);
        CoTaskMemFree(rows);
        EXPECT_NE(0, DeleteObject(bitmap));
        return result;
    }
};

TEST_F(FrameBitmap, HoldsThePicture) {
    const Pixels pixels = {1, 2, 3, 4, 5, 6, 7, 8};
    EXPECT_EQ((Pixels{5, 6, 7, 8, 1, 2, 3, 4}), RowsOf(FrameOf(eZFCC_ARGB32, 1, -2, pixels).get()));
    EXPECT_EQ(pixels, RowsOf(FrameOf(eZFCC_RGB32, 1, 2, pixels).get()));
    EXPECT_EQ((Pixels{1, 2, 3, 0, 5, 6, 7, 0}), RowsOf(FrameOf(eZFCC_RGB24, 1, 2, pixels).get()));
}

TEST_F(FrameBitmap, OfAnotherFormatIsThatOfAnArgbClone) {
    const auto frame = Frame(Record(eZFCC_UYVY, 16, 8));
    EXPECT_EQ(RowsOf(Clone(frame.get(), eZFC_VideoRef, eZFCC_ARGB32).get()), RowsOf(frame.get()));
}

TEST_F(FrameBitmap, TheWideViewGivesTheSame) {
    const auto frame = FrameOf(eZFCC_ARGB32, 1, -1, {1, 2, 3, 4});
    int64_t handle = 0;
    ASSERT_EQ(S_OK, As<IZFFrame>(frame)->ZFVideoGetHbitmap(&handle));
    EXPECT_NE(0, DeleteObject(At<std::remove_pointer_t<HBITMAP>>(handle)));
    EXPECT_EQ(S_OK, As<IZFFrame>(frame)->ZFVideoSaveToFile(Bstr(TextFromUtf8(m_folder.Path("a.bmp"))).get()));
    EXPECT_EQ((Pixels{1, 2, 3, 4}), Loaded("a.bmp"));
}

}    // namespace
}    // namespace zck::test
