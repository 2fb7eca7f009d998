// The wide view's conversions: size, format and sound.
#include <cstring>
#include <thread>

#include "frames/media/pixel_format.h"
#include "platform/status.h"
#include "tests/frames/object/foreign_frame.h"
#include "tests/frames/object/frame_fixture.h"

namespace zck::test {
namespace {

class WideConversions : public FrameTest {
protected:
    void TearDown() override {
        m_result.Reset();
        FrameTest::TearDown();
    }
    HRESULT Resize(const ComPtr<IZFrame_I> &frame, int32_t width, int32_t height, const char *options = "",
                   eZFCC fcc = eZFCC_Default, int32_t field = 0) {
        const Bstr text(TextFromUtf8(options));
        return As<IZFFrame>(frame)->ZFResize(fcc, width, height, field, m_result.Put(), text.get(), 0);
    }
    HRESULT Convert(const ComPtr<IZFrame_I> &frame, Z_AV_PROPS target, const char *options = "") {
        const Bstr text(TextFromUtf8(options));
        return As<IZFFrame>(frame)->ZFConvert(&target, m_result.Put(), nullptr, text.get(), 0);
    }
    Z_AV_PROPS Props() { return PropsOf(As<IZFrame>(m_result)); }
    static eZFrameFlags FlagsOf(IZFrame *frame) {
        Z_TIME time = {};
        EXPECT_EQ(S_OK, frame->FrameTimeGet(&time));
        return time.eFFlags;
    }

    ComPtr<IZFFrame> m_result;
};

TEST_F(WideConversions, ConvertNeedsAPlaceAndATarget) {
    const auto frame = Frame(Record(eZFCC_ARGB32, 16, -8));
    const auto wide = As<IZFFrame>(frame);
    Z_AV_PROPS target = {};
    EXPECT_EQ(E_INVALIDARG, wide->ZFConvert(&target, nullptr, nullptr, nullptr, 0));
    EXPECT_EQ(E_INVALIDARG, wide->ZFConvert(nullptr, m_result.Put(), nullptr, nullptr, 0));
    int32_t samples = 77;
    EXPECT_EQ(S_OK, wide->ZFConvert(&target, m_result.Put(), &samples, nullptr, 0));
    EXPECT_EQ(77, samples);
}

TEST_F(WideConversions, TheHoldersFrameIsTheTargetAndIsReplaced) {
    const auto frame = Frame(Record(eZFCC_ARGB32, 16, -8)), like = Frame(Record(eZFCC_UYVY, 32, 24));
    const std::vector<uint8_t> before = VideoOf(like).Copy();
    IZFFrame *held = As<IZFFrame>(like).Detach();
    ASSERT_EQ(S_OK, As<IZFFrame>(frame)->ZFConvert(nullptr, &held, nullptr, nullptr, 0));
    m_result.Attach(held);
    EXPECT_NE(As<IZFFrame>(like).get(), held);
    EXPECT_EQ(32, Props().vidProps.nWidth);
    EXPECT_EQ(eZFCC_UYVY, Props().vidProps.fccType);
    EXPECT_EQ(before, VideoOf(like).Copy());
}

TEST_F(WideConversions, AFailureLeavesTheHolderAlone) {
    const auto frame = Frame(Record(eZFCC_ARGB32, 16, -8)), kept = Frame(Record(eZFCC_UYVY, 32, 24));
    IZFFrame *held = As<IZFFrame>(kept).Detach();
    Z_AV_PROPS target = PropsOf(kept);
    target.vidProps.fccType = eZFCC_r210;
    EXPECT_EQ(kVfwEInvalidSubtype, As<IZFFrame>(frame)->ZFConvert(&target, &held, nullptr, nullptr, 0));
    EXPECT_EQ(As<IZFFrame>(kept).get(), held);
    held->Release();
}

TEST_F(WideConversions, SoundIsConvertedWithThePicture) {
    const auto frame = SoundFrame(Record(eZFCC_ARGB32, 16, -8));
    Z_AV_PROPS target = {};
    ASSERT_EQ(S_OK, Convert(frame, target));
    EXPECT_EQ(400, AudioOf(As<IZFrame>(m_result)).size) << "nothing is asked for";
    target.audProps = {1, 48000, 16, 0};
    ASSERT_EQ(S_OK, Convert(frame, target));
    EXPECT_EQ(200, AudioOf(As<IZFrame>(m_result)).size);
    EXPECT_EQ(1, Props().audProps.nChannels);
    EXPECT_EQ(400, AudioOf(frame).size);
    target.audProps = {2, 44100, 16, 0};
    EXPECT_EQ(kVfwEInvalidMediaType, Convert(frame, target));
    // A record that is not complete changes nothing.
    target.audProps = {2, 0, 0, 0};
    ASSERT_EQ(S_OK, Convert(frame, target));
    EXPECT_EQ(400, AudioOf(As<IZFrame>(m_result)).size);
    EXPECT_EQ(48000, Props().audProps.nSamplesPerSec);
}

TEST_F(WideConversions, WithoutSoundTheDescriptionAloneIsSet) {
    const auto frame = Frame(Record(eZFCC_ARGB32, 16, -8));
    Z_AV_PROPS target = {};
    target.audProps = {2, 44100, 16, 0};
    ASSERT_EQ(S_OK, Convert(frame, target));
    EXPECT_EQ(0, AudioOf(As<IZFrame>(m_result)).size);
    EXPECT_EQ(44100, Props().audProps.nSamplesPerSec);
    EXPECT_EQ(16, Props().vidProps.nWidth);
}

TEST_F(WideConversions, ResizeMakesSquarePixelsAndRowsOf16Bytes) {
    const auto frame = SoundFrame(Record(eZFCC_UYVY, 64, 36));
    ASSERT_EQ(S_OK, Resize(frame, 50, 30));
    const Z_VID_PROPS made = Props().vidProps;
    EXPECT_EQ(50, made.nWidth);
    EXPECT_EQ(30, made.nHeight);
    EXPECT_EQ(112, made.nRowBytes);
    EXPECT_EQ(5, made.nAspectX);
    EXPECT_EQ(3, made.nAspectY);
    EXPECT_EQ(eZST_None, made.eScaleType);
    EXPECT_EQ(112 * 30, VideoOf(As<IZFrame>(m_result)).size);
    ASSERT_EQ(S_OK, Resize(frame, 20, -10, "scale_type=crop", eZFCC_RGB24));
    EXPECT_EQ(eZFCC_RGB24, Props().vidProps.fccType);
    EXPECT_EQ(-10, Props().vidProps.nHeight);
    EXPECT_EQ(eZST_Crop, Props().vidProps.eScaleType);
    ASSERT_EQ(S_OK, Resize(frame, 20, 10, "scale_type=stretch"));
    EXPECT_EQ(eZST_None, Props().vidProps.eScaleType);
    ASSERT_EQ(S_OK, Resize(frame, 70000, 1, "scale_type=none"));
    EXPECT_EQ(17500, Props().vidProps.nAspectX);
    EXPECT_EQ(1, Props().vidProps.nAspectY);
}

TEST_F(WideConversions, ResizeKeepsTheShapeWhenItIsAskedTo) {
    Z_VID_PROPS wide = Record(eZFCC_UYVY, 64, 36);
    wide.nAspectX = 16;
    wide.nAspectY = 9;
    const auto frame = Frame(wide);
    ASSERT_EQ(S_OK, Resize(frame, 1000, 1000, "scale_type=Fit_AR"));
    EXPECT_EQ(1000, Props().vidProps.nWidth);
    EXPECT_EQ(562, Props().vidProps.nHeight);
    EXPECT_EQ(eZST_None, Props().vidProps.eScaleType);
    ASSERT_EQ(S_OK, Resize(frame, 1000, -90, "scale_type=fit_ar", eZFCC_RGB24));
    EXPECT_EQ(160, Props().vidProps.nWidth);
    EXPECT_EQ(-90, Props().vidProps.nHeight);
    for (const int32_t n : {INT32_MIN, -1, INT32_MAX}) Resize(frame, n, n, "scale_type=fit_ar");
}

TEST_F(WideConversions, ResizeToNothingTakesTheFramesOwnSize) {
    Z_VID_PROPS props = Record(eZFCC_UYVY, 64, 36);
    const auto frame = Frame(props);
    ASSERT_EQ(S_OK, Resize(frame, 0, 0));
    EXPECT_EQ(64, Props().vidProps.nWidth);
    EXPECT_EQ(36, Props().vidProps.nHeight);
}

// A height of one is only a sign where the format is known.
TEST_F(WideConversions, OneLineOfAStandardFormatIsOneLine) {
    Z_VID_PROPS pal = {};
    pal.eVideoFormat = eZVF_PAL;
    pal.fccType = eZFCC_UYVY;
    VideoPropsUpdate(&pal, true);
    const auto frame = Frame(pal);
    ASSERT_EQ(S_OK, Resize(frame, 720, 1, "scaling_quality=14"));
    EXPECT_EQ(1, Props().vidProps.nHeight);
    EXPECT_EQ(1440, VideoOf(As<IZFrame>(m_result)).size);
}

TEST_F(WideConversions, OneFieldIsResizedAlone) {
    Z_VID_PROPS props = Record(eZFCC_UYVY, 64, 36);
    props.eInterlace = eZI_Field2First;
    const auto frame = Frame(props);
    const Bytes bytes = VideoOf(frame);
    for (int32_t y = 0; y < 36; ++y) std::memset(bytes.data() + y * 128, y % 2 == 0 ? 60 : 200, 128);
    for (const int32_t field : {1, 2}) {
        ASSERT_EQ(S_OK, Resize(frame, 32, 24, "", eZFCC_Default, field));
        EXPECT_EQ(eZI_Progressive, Props().vidProps.eInterlace);
        const auto pixels = VideoOf(As<IZFrame>(m_result)).Copy();
        EXPECT_EQ(std::vector<uint8_t>(pixels.size(), field == 1 ? 200 : 60), pixels);
    }
}

TEST_F(WideConversions, ResizedFramesSayThatTheStreamBreaks) {
    const auto frame = Frame(Record(eZFCC_UYVY, 64, 36));
    Z_TIME time = {};
    time.eFFlags = static_cast<eZFrameFlags>(eZFF_Live | eZFF_Pause | eZFF_Last);
    ASSERT_EQ(S_OK, frame->FrameTimeSet(&time));
    ASSERT_EQ(S_OK, Resize(frame, 32, 24));
    EXPECT_EQ(eZFF_Live | eZFF_Last | eZFF_Break, FlagsOf(As<IZFrame>(m_result).get()));
    EXPECT_EQ(time.eFFlags, FlagsOf(frame.get()));
    EXPECT_EQ(E_INVALIDARG, As<IZFFrame>(frame)->ZFResize(eZFCC_Default, 32, 24, 0, nullptr, nullptr, 0));
    EXPECT_EQ(time.eFFlags, FlagsOf(frame.get()));
    // A failed call leaves the flags changed.
    EXPECT_EQ(kVfwEInvalidSubtype, Resize(frame, 32, 24, "", eZFCC_r210));
    EXPECT_FALSE(m_result);
    EXPECT_EQ(eZFF_Live | eZFF_Last | eZFF_Break, FlagsOf(frame.get()));
}

TEST_F(WideConversions, TransitionsNeedAProcessor) {
    const auto frame = Frame(Record(eZFCC_UYVY, 64, 36));
    const auto wide = As<IZFFrame>(frame);
    EXPECT_EQ(E_INVALIDARG, wide->ZFTransition(nullptr, m_result.Put(), 0.5, 0, nullptr, 0));
    IZFFrame *held = wide.get();
    EXPECT_EQ(E_NOINTERFACE, wide->ZFTransition(wide.get(), &held, 0.5, 0, nullptr, 0));
    EXPECT_EQ(wide.get(), held);
    EXPECT_EQ(E_NOINTERFACE, wide->ZFTransition(wide.get(), nullptr, 0.5, 0, nullptr, 0));
}

}    // namespace
}    // namespace zck::test
