// Frames of any size, format and scan, through the doors that hosts use.
#include <algorithm>
#include <cstring>
#include <thread>

#include "frames/media/pixel_format.h"
#include "imaging/colour/convert.h"
#include "imaging/geometry/mirror_bits.h"
#include "platform/status.h"
#include "tests/frames/object/foreign_frame.h"
#include "tests/frames/object/frame_fixture.h"

namespace zck::test {
namespace {

constexpr int32_t kC608 = 0x38303643;

class FramesConverted : public FrameTest {
protected:
    void TearDown() override {
        m_result.Reset();
        FrameTest::TearDown();
    }
    HRESULT Convert(const ComPtr<IZFrame_I> &frame, const Z_VID_PROPS &target, const char *options = "") {
        return Two(frame.get(), nullptr, target, options);
    }
    HRESULT Two(IZFrame *first, IZFrame *second, Z_VID_PROPS target, const char *options = "") {
        const Bstr text(TextFromUtf8(options));
        return m_factory->FramesConvert(first, second, &target, m_result.Put(), text.get());
    }
    Z_VID_PROPS Video() { return PropsOf(m_result).vidProps; }
    std::vector<uint8_t> Pixels() { return VideoOf(m_result).Copy(); }
    const uint8_t *Row(int32_t y) { return VideoOf(m_result).data() + static_cast<int64_t>(y) * Video().nRowBytes; }

    // Even rows of one value, odd rows of another.
    ComPtr<IZFrame_I> Striped(const Z_VID_PROPS &props, uint8_t even, uint8_t odd) {
        const auto frame = Frame(props);
        const Bytes bytes = VideoOf(frame);
        for (int32_t y = 0; y < bytes.size / props.nRowBytes; ++y)
            std::memset(bytes.data() + static_cast<int64_t>(y) * props.nRowBytes, y % 2 == 0 ? even : odd,
                        static_cast<size_t>(props.nRowBytes));
        return frame;
    }
    static Z_VID_PROPS Sized(eZFCC fcc, int32_t width, int32_t height, eZInterlace scan = eZI_Progressive) {
        Z_VID_PROPS props = Record(fcc, width, height);
        props.eInterlace = scan;
        return props;
    }
    static Z_VID_PROPS Wanted(eZFCC fcc, int32_t width, int32_t height) {
        Z_VID_PROPS props = {};
        props.fccType = fcc;
        props.nWidth = width;
        props.nHeight = height;
        return props;
    }

    ComPtr<IZFrame> m_result;
};

TEST_F(FramesConverted, StatusesComeInOrder) {
    const auto frame = Frame(Sized(eZFCC_ARGB32, 16, -8));
    Z_VID_PROPS target = Wanted(eZFCC_UYVY, 8, 4);
    EXPECT_EQ(E_POINTER, m_factory->FramesConvert(nullptr, nullptr, nullptr, nullptr, nullptr));
    IZFrame *untouched = frame.get();
    EXPECT_EQ(E_POINTER, m_factory->FramesConvert(nullptr, nullptr, nullptr, &untouched, nullptr));
    EXPECT_EQ(nullptr, untouched);
    EXPECT_EQ(E_INVALIDARG, m_factory->FramesConvert(nullptr, nullptr, &target, m_result.Put(), nullptr));
    EXPECT_EQ(E_POINTER, frame->FrameConvert(&target, nullptr, nullptr));
    EXPECT_EQ(E_POINTER, frame->FrameConvert(nullptr, m_result.Put(), nullptr));
    EXPECT_EQ(S_OK, frame->FrameConvert(&target, m_result.Put(), nullptr));
    EXPECT_EQ(8, Video().nWidth);
    EXPECT_EQ(S_OK, Two(nullptr, frame.get(), target)) << "the second takes the first one's place";
    EXPECT_EQ(8, Video().nWidth);
}

TEST_F(FramesConverted, TargetsThatCannotBeAreRefused) {
    const auto frame = Frame(Sized(eZFCC_ARGB32, 16, -8));
    EXPECT_EQ(kVfwEInvalidMediaType, Convert(frame, Wanted(eZFCC_ARGB32, 40000, -40000)));
    EXPECT_EQ(kVfwEInvalidMediaType, Convert(frame, Wanted(eZFCC_ARGB32, -5, 5)));
    EXPECT_EQ(kVfwEInvalidSubtype, Convert(frame, Wanted(eZFCC_r210, 8, 4)));
    EXPECT_EQ(E_FAIL, Convert(frame, Wanted(eZFCC_v210, 16, 8)));
    EXPECT_FALSE(m_result);
}

TEST_F(FramesConverted, WhatTheTargetDoesNotSayComesFromTheSource) {
    const auto frame = SoundFrame(Sized(eZFCC_UYVY, 64, 48, eZI_Field1First));
    ASSERT_EQ(S_OK, Convert(frame, Z_VID_PROPS{}));
    const Z_VID_PROPS own = PropsOf(frame).vidProps, made = Video();
    EXPECT_EQ(0, std::memcmp(&own, &made, sizeof(own)));
    ASSERT_EQ(S_OK, Convert(frame, Wanted(eZFCC_Default, 32, 24)));
    EXPECT_EQ(eZFCC_UYVY, Video().fccType);
    EXPECT_EQ(eZI_Field1First, Video().eInterlace);
    EXPECT_EQ(64, Video().nRowBytes);
}

TEST_F(FramesConverted, TheSamePictureIsACloneThatTouchesNoByte) {
    struct Case {
        eZFCC from;
        eZFCC to;
    };
    for (const Case c : {Case{eZFCC_UYVY, eZFCC_UYVY},
                         {eZFCC_UYVY, eZFCC_HDYC},
                         {eZFCC_HDYC, eZFCC_UYVY},
                         {eZFCC_RGB32, eZFCC_ARGB32},
                         {eZFCC_ARGB32, eZFCC_RGB32},
                         {eZFCC_I420, eZFCC_I420}}) {
        for (const eZInterlace scan : {eZI_Progressive, eZI_Field1First}) {
            Z_VID_PROPS props = Sized(c.from, 64, 48, scan);
            props.nRowBytes = RowBytes(c.from, 64);
            const auto frame = SoundFrame(props);
            const std::vector<uint8_t> before = VideoOf(frame).Copy();
            Z_VID_PROPS target = PropsOf(frame).vidProps;
            target.fccType = c.to;
            ASSERT_EQ(S_OK, Convert(frame, target));
            EXPECT_EQ(VideoOf(frame).address, VideoOf(m_result).address);
            EXPECT_EQ(VideoOf(frame).size, VideoOf(m_result).size);
            EXPECT_EQ(c.to, Video().fccType);
            EXPECT_EQ(before, VideoOf(frame).Copy());
        }
    }
}

// No pixel is read, so that none has to be there.
TEST_F(FramesConverted, TheSamePictureMayLackItsPixels) {
    const auto frame = Frame(Sized(eZFCC_ARGB32, 16, -8));
    Z_AV_PROPS stated = PropsOf(frame);
    stated.vidProps.nHeight = -9;
    ASSERT_EQ(S_OK, frame->FrameAVPropsSet(&stated));
    EXPECT_EQ(S_OK, Convert(frame, stated.vidProps));
    EXPECT_EQ(-9, Video().nHeight);
    EXPECT_EQ(kVfwEInvalidMediaType, Convert(frame, stated.vidProps, "mirror=horz"));
    EXPECT_EQ(kVfwEInvalidMediaType, Convert(frame, Wanted(eZFCC_UYVY, 16, 9)));
    EXPECT_FALSE(m_result);
    const auto sound = Frame(Sized(eZFCC_ARGB32, 16, -8));
    EXPECT_EQ(kVfwEInvalidMediaType, Two(sound.get(), frame.get(), Wanted(eZFCC_UYVY, 16, 8))) << "both sources count";
    ComPtr<IZFrame> empty;
    ASSERT_EQ(S_OK, m_factory->FrameCreate(0, nullptr, empty.Put()));
    EXPECT_EQ(kVfwEInvalidMediaType, Two(empty.get(), nullptr, Wanted(eZFCC_UYVY, 16, 8)));
}

TEST_F(FramesConverted, EverythingElseOfTheSourceComesAlong) {
    const auto frame = SoundFrame(Sized(eZFCC_ARGB32, 64, -48));
    const std::vector<uint8_t> data = Pattern(10);
    ASSERT_EQ(S_OK, frame->FrameDataSet(kC608, 10, AddressIn(data.data())));
    const auto object = Frame(Sized(eZFCC_ARGB32, 8, -8));
    const Bstr name(ZCK_TEXT("mask"));
    ASSERT_EQ(S_OK, As<IZFFrame>(frame)->ZFObjectSet(name.get(), object.get()));
    for (const char *options : {"", "mirror=horz", "rotate=left", "crop=8"})
        for (const int32_t width : {64, 32}) {
            Z_VID_PROPS target = PropsOf(frame).vidProps;
            target.nWidth = width;
            target.nRowBytes = 4 * width;
            ASSERT_EQ(S_OK, Convert(frame, target, options)) << options;
            Z_TIME time = {};
            ASSERT_EQ(S_OK, m_result->FrameTimeGet(&time));
            EXPECT_EQ(1234567, time.rtStartTime);
            EXPECT_EQ(eZFF_Live, time.eFFlags);
            EXPECT_EQ(Pattern(400), AudioOf(m_result).Copy());
            EXPECT_EQ(5, PropsOf(m_result).audProps.nTrackSplitBits);
            EXPECT_EQ(3, PropsOf(m_result).bLocked);
            EXPECT_EQ(eZAF_AL_Valid, PropsOf(m_result).ancData.eFlags);
            int32_t size = 0;
            int64_t address = 0;
            ASSERT_EQ(S_OK, m_result->FrameDataGet(kC608, &size, &address));
            EXPECT_EQ(data, std::vector<uint8_t>(At<uint8_t>(address), At<uint8_t>(address) + size));
            ComPtr<IUnknown> found;
            ASSERT_EQ(S_OK, As<IZFFrame>(m_result)->ZFObjectGet(name.get(), found.Put(), 0));
            EXPECT_EQ(QueryFor<IZFrame>(found.get()).get(), As<IZFrame>(object).get());
        }
}

// The result has its own pixels or keeps the source's alive.
TEST_F(FramesConverted, ResultsOutliveTheirSources) {
    auto frame = Frame(Sized(eZFCC_ARGB32, 16, -8));
    const std::vector<uint8_t> before = VideoOf(frame).Copy();
    ASSERT_EQ(S_OK, Convert(frame, PropsOf(frame).vidProps));
    frame.Reset();
    const auto other = Frame(Sized(eZFCC_ARGB32, 16, -8));
    std::memset(VideoOf(other).data(), 0, 512);
    EXPECT_EQ(before, Pixels());
}

TEST_F(FramesConverted, InterlacedFramesKeepTheirFields) {
    Z_VID_PROPS pal = Record(eZFCC_UYVY, 720, 576);
    pal.eVideoFormat = eZVF_PAL;
    VideoPropsUpdate(&pal, true);
    pal.fccType = eZFCC_UYVY;
    pal.nRowBytes = 1440;
    pal.eInterlace = eZI_Field1First;
    const auto frame = Striped(pal, 60, 200);
    Z_VID_PROPS hd = Record(eZFCC_HDYC, 1920, 1080);
    hd.eInterlace = eZI_Field1First;
    hd.dblRate = 25;
    ASSERT_EQ(S_OK, Convert(frame, hd));
    EXPECT_EQ(eZFCC_HDYC, Video().fccType);
    EXPECT_EQ(eZI_Field1First, Video().eInterlace);
    for (int32_t y = 20; y < 1060; ++y) ASSERT_NEAR(Row(y)[1920], y % 2 == 0 ? 60 : 200, 1) << y;
}

TEST_F(FramesConverted, BottomUpPicturesStandUpright) {
    const auto frame = Frame(Record(eZFCC_RGB24, 1920, 1080));
    const Bytes bytes = VideoOf(frame);
    // In memory the bottom comes first.
    std::memset(bytes.data(), 40, static_cast<size_t>(bytes.size / 2));
    std::memset(bytes.data() + bytes.size / 2, 220, static_cast<size_t>(bytes.size / 2));
    ASSERT_EQ(S_OK, Convert(frame, Wanted(eZFCC_UYVY, 1280, 720)));
    EXPECT_EQ(720, Video().nHeight);
    EXPECT_GT(Row(100)[1], 180);
    EXPECT_LT(Row(600)[1], 60);
}

TEST_F(FramesConverted, AnotherFieldOrderMovesByOneLine) {
    const auto frame = Striped(Sized(eZFCC_UYVY, 16, 8, eZI_Field1First), 60, 200);
    Z_VID_PROPS target = PropsOf(frame).vidProps;
    target.eInterlace = eZI_Field2First;
    ASSERT_EQ(S_OK, Convert(frame, target));
    EXPECT_NE(VideoOf(frame).address, VideoOf(m_result).address);
    const int32_t expected[8] = {60, 60, 200, 60, 200, 60, 200, 60};
    for (int32_t y = 0; y < 8; ++y) EXPECT_EQ(expected[y], Row(y)[0]) << y;
}

TEST_F(FramesConverted, AProgressiveTargetLosesTheSecondField) {
    Z_VID_PROPS props = Sized(eZFCC_UYVY, 32, 16, eZI_Field2First);
    props.nAspectX = 2;
    props.nAspectY = 1;
    const auto frame = Striped(props, 60, 200);
    for (const char *options : {"", "scaling_quality=1", "scaling_quality=18", "scaling_quality=0", "field=1"}) {
        Z_VID_PROPS target = Wanted(eZFCC_UYVY, 32, 16);
        target.eInterlace = eZI_Progressive;
        ASSERT_EQ(S_OK, Convert(frame, target, options));
        for (int32_t y = 0; y < 16; ++y) EXPECT_NEAR(Row(y)[0], 200, 1) << options;
    }
}

// Its display aspect is that of its rows.
TEST_F(FramesConverted, AFieldWithoutAnAspectIsLetterBoxed) {
    const auto frame = Striped(Sized(eZFCC_UYVY, 32, 16, eZI_Field1First), 60, 200);
    Z_VID_PROPS target = Wanted(eZFCC_UYVY, 32, 16);
    target.eInterlace = eZI_Progressive;
    ASSERT_EQ(S_OK, Convert(frame, target));
    for (int32_t y = 0; y < 16; ++y) EXPECT_EQ(y < 4 || y >= 12 ? 128 : 60, Row(y)[0]) << y;
    // The other engine takes the frame whole.
    ASSERT_EQ(S_OK, Convert(frame, target, "scaling_quality=14"));
    for (int32_t y = 0; y < 16; ++y) EXPECT_NEAR(Row(y)[0], 60, 1) << y;
}

TEST_F(FramesConverted, ScaleTypesByKeyword) {
    const auto frame = Striped(Sized(eZFCC_UYVY, 32, 32), 100, 100);
    const Z_VID_PROPS wide = Wanted(eZFCC_UYVY, 64, 32);
    ASSERT_EQ(S_OK, Convert(frame, wide, "scale_type=none"));
    EXPECT_EQ(eZST_None, Video().eScaleType);
    EXPECT_EQ(100, Row(0)[0]);
    ASSERT_EQ(S_OK, Convert(frame, wide, "scale_type=letter-box"));
    EXPECT_EQ(128, Row(16)[0]);
    EXPECT_EQ(100, Row(16)[64]);
    ASSERT_EQ(S_OK, Convert(frame, wide, "scale_type=no-scale"));
    EXPECT_EQ(128, Row(16)[0]);
    ASSERT_EQ(S_OK, Convert(frame, wide, "scale_type=crop"));
    EXPECT_EQ(100, Row(0)[0]);
    // "default" takes the record's type away.
    Z_VID_PROPS boxed = wide;
    boxed.eScaleType = eZST_LetterBox;
    ASSERT_EQ(S_OK, Convert(frame, boxed, "scale_type=default"));
    EXPECT_EQ(eZST_Default, Video().eScaleType);
    EXPECT_EQ(100, Row(0)[0]) << "a narrower source is cropped";
    ASSERT_EQ(S_OK, Convert(frame, boxed, "scale_type=stretch"));
    EXPECT_EQ(eZST_LetterBox, Video().eScaleType);
}

TEST_F(FramesConverted, TheSourcesScaleTypeWins) {
    Z_VID_PROPS props = Sized(eZFCC_UYVY, 32, 32);
    props.eScaleType = eZST_LetterBox;
    const auto frame = Striped(props, 100, 100);
    ASSERT_EQ(S_OK, Convert(frame, Wanted(eZFCC_UYVY, 64, 32), "scale_type=none"));
    EXPECT_EQ(128, Row(16)[0]);
    EXPECT_EQ(eZST_None, Video().eScaleType);
}

TEST_F(FramesConverted, CroppedBeforeItIsScaled) {
    const auto frame = Frame(Sized(eZFCC_UYVY, 64, 32));
    const Bytes bytes = VideoOf(frame);
    for (int32_t y = 0; y < 32; ++y)
        for (int32_t x = 0; x < 128; ++x) bytes.data()[y * 128 + x] = x < 24 ? 9 : static_cast<uint8_t>(50 + y);
    // Left of 11 is rounded to 12.
    ASSERT_EQ(S_OK, Convert(frame, Wanted(eZFCC_UYVY, 52, 28), "crop='11 4 0 0' scale_type=none"));
    for (int32_t y = 0; y < 28; ++y)
        for (const int32_t x : {0, 103}) EXPECT_EQ(54 + y, Row(y)[x]) << y;
    // Sides that meet cut nothing.
    ASSERT_EQ(S_OK, Convert(frame, PropsOf(frame).vidProps, "crop=32"));
    EXPECT_EQ(bytes.address, VideoOf(m_result).address);
    // Rounded to nothing.
    EXPECT_EQ(E_UNEXPECTED, Convert(frame, Wanted(eZFCC_UYVY, 52, 28), "crop='31 0 32 0'"));
    EXPECT_EQ(kVfwEInvalidMediaType, Convert(frame, Wanted(eZFCC_UYVY, 52, 28), "crop='31 0 32 0' rotate=left"));
    EXPECT_FALSE(m_result);
}

TEST_F(FramesConverted, AQuarterTurn) {
    const auto frame = Frame(Sized(eZFCC_ARGB32, 192, -108));
    Z_VID_PROPS turned = Wanted(eZFCC_ARGB32, 108, -192);
    turned.nAspectX = 9;
    turned.nAspectY = 16;
    const auto *from = At<uint32_t>(VideoOf(frame).address);
    ASSERT_EQ(S_OK, Convert(frame, turned, "rotate=left scale_type=none"));
    const auto *to = At<uint32_t>(VideoOf(m_result).address);
    for (int32_t y = 0; y < 192; ++y)
        for (int32_t x = 0; x < 108; ++x) ASSERT_EQ(from[x * 192 + 191 - y], to[y * 108 + x]);
    ASSERT_EQ(S_OK, Convert(frame, turned, "rotate=right scale_type=none"));
    to = At<uint32_t>(VideoOf(m_result).address);
    for (int32_t y = 0; y < 192; ++y)
        for (int32_t x = 0; x < 108; ++x) ASSERT_EQ(from[(107 - x) * 192 + y], to[y * 108 + x]);
    const auto planar = Frame(Sized(eZFCC_ARGB32, 16, -8));
    Z_AV_PROPS props = PropsOf(planar);
    props.vidProps = {};
    props.vidProps.fccType = eZFCC_I420;
    props.vidProps.nWidth = props.vidProps.nRowBytes = 16;
    props.vidProps.nHeight = 8;
    ASSERT_EQ(S_OK, planar->FrameAVPropsSet(&props));
    EXPECT_EQ(E_INVALIDARG, Convert(planar, Wanted(eZFCC_UYVY, 8, 16), "rotate=left"));
}

TEST_F(FramesConverted, MirroredInPlaceAtTheEnd) {
    const auto frame = Frame(Sized(eZFCC_UYVY, 64, 48));
    const std::vector<uint8_t> before = VideoOf(frame).Copy();
    const Z_VID_PROPS props = PropsOf(frame).vidProps;
    struct Case {
        const char *options;
        int32_t index;
    };
    for (const Case c : {Case{"mirror=horz", 1}, {"mirror=vert", 2}, {"mirror=both", 3}}) {
        std::vector<uint8_t> expected = before;
        ASSERT_EQ(S_OK, MirrorBits(expected.data(), static_cast<int64_t>(expected.size()), &props, c.index));
        ASSERT_EQ(S_OK, Convert(frame, props, c.options));
        EXPECT_EQ(expected, Pixels());
        EXPECT_EQ(before, VideoOf(frame).Copy()) << "the source stays";
        // Of a picture that is converted, too.
        Z_VID_PROPS other = props;
        other.fccType = eZFCC_YUY2;
        ASSERT_EQ(S_OK, Convert(frame, other));
        expected = Pixels();
        ASSERT_EQ(S_OK, MirrorBits(expected.data(), static_cast<int64_t>(expected.size()), &other, c.index));
        ASSERT_EQ(S_OK, Convert(frame, other, c.options));
        EXPECT_EQ(expected, Pixels());
    }
    EXPECT_EQ(E_NOTIMPL, Convert(frame, Wanted(eZFCC_v210, 64, 48), "mirror=horz"));
    EXPECT_FALSE(m_result);
}

TEST_F(FramesConverted, TwoEqualFramesBecomeTheFieldsOfOne) {
    const Z_VID_PROPS props = Sized(eZFCC_UYVY, 16, 8);
    const auto a = Striped(props, 60, 61), b = Striped(props, 200, 201);
    Z_VID_PROPS target = props;
    target.eInterlace = eZI_Field1First;
    ASSERT_EQ(S_OK, Two(a.get(), b.get(), target));
    for (int32_t y = 0; y < 8; ++y) EXPECT_EQ(y % 2 == 0 ? 60 : 201, Row(y)[0]) << y;
    EXPECT_EQ(eZI_Field1First, Video().eInterlace);
    target.eInterlace = eZI_Field2First;
    ASSERT_EQ(S_OK, Two(a.get(), b.get(), target));
    for (int32_t y = 0; y < 8; ++y) EXPECT_EQ(y % 2 == 0 ? 200 : 61, Row(y)[0]) << y;
    // Also into a progressive target.
    ASSERT_EQ(S_OK, Two(a.get(), b.get(), props));
    EXPECT_EQ(201, Row(1)[0]);
    // Of other frames the second has no part in it.
    const auto c = Striped(Sized(eZFCC_UYVY, 16, 10), 90, 91);
    ASSERT_EQ(S_OK, Two(a.get(), c.get(), props));
    EXPECT_EQ(VideoOf(a).address, VideoOf(m_result).address);
}

TEST_F(FramesConverted, EqualFramesOfAFormatThatIsNotWovenFail) {
    const Z_VID_PROPS props = Sized(eZFCC_YVYU, 16, 8);
    const auto a = Frame(props), b = Frame(props);
    EXPECT_EQ(kVfwEInvalidSubtype, Two(a.get(), b.get(), Wanted(eZFCC_UYVY, 16, 8)));
    Z_AV_PROPS stated = PropsOf(a);
    stated.vidProps.nHeight = 9;
    ASSERT_EQ(S_OK, a->FrameAVPropsSet(&stated));
    ASSERT_EQ(S_OK, b->FrameAVPropsSet(&stated));
    EXPECT_EQ(kVfwEInvalidMediaType, Two(a.get(), b.get(), Wanted(eZFCC_UYVY, 16, 8)));
    EXPECT_FALSE(m_result);
}

// Sections of the pool carry the pixels of earlier frames.
TEST_F(FramesConverted, WhatIsNotWrittenIsZero) {
    std::vector<ComPtr<IZFrame>> soil(4);
    for (auto &frame : soil) {
        ASSERT_EQ(S_OK, m_factory->FrameCreate(24 * 3 * 9, nullptr, frame.Put()));
        std::memset(VideoOf(frame).data(), 0xEE, 24 * 3 * 9);
    }
    soil.clear();
    const auto frame = Frame(Sized(eZFCC_UYVY, 15, 9));
    ASSERT_EQ(S_OK, Convert(frame, Wanted(eZFCC_RGB24, 15, 9)));
    // The last column of an odd 4:2:2 picture and the row's padding.
    for (int32_t y = 0; y < 9; ++y)
        for (int32_t x = 42; x < 48; ++x) EXPECT_EQ(0, Row(y)[x]) << y << " " << x;
}

// Frames of other makers come with their pixels, and answer for what they do not give.
TEST_F(FramesConverted, ForeignFramesAreReadOnce) {
    ForeignState state;
    state.props.vidProps = Sized(eZFCC_UYVY, 16, 8);
    state.video = Pattern(16 * 2 * 8);
    state.time.rtStartTime = 77;
    ComPtr<ForeignQuorvex> foreign;
    foreign.Attach(new ForeignQuorvex(state));
    const auto own = Frame(state.props.vidProps);
    Z_VID_PROPS target = Wanted(eZFCC_ARGB32, 24, -12);
    ASSERT_EQ(S_OK, Convert(own, target));
    const std::vector<uint8_t> expected = Pixels();
    ASSERT_EQ(S_OK, Two(foreign.get(), nullptr, target));
    EXPECT_EQ(expected, Pixels());
    EXPECT_EQ(1, state.pixelReads);
    Z_TIME time = {};
    ASSERT_EQ(S_OK, m_result->FrameTimeGet(&time));
    EXPECT_EQ(77, time.rtStartTime);
    state.infoStatus = E_ACCESSDENIED;
    EXPECT_EQ(E_ACCESSDENIED, Two(foreign.get(), nullptr, target));
    EXPECT_EQ(E_ACCESSDENIED, Two(own.get(), foreign.get(), target));
    // Of another process, without a section that could be opened.
    state.infoStatus = S_OK;
    state.process = CurrentProcessId() + 1;
    state.section = 0x7FFF000000000000;
    EXPECT_GT(0, Two(foreign.get(), nullptr, target));
    EXPECT_FALSE(m_result);
}

TEST_F(FramesConverted, ThreadsGetTheirOwnResults) {
    const auto fields = Frame(Sized(eZFCC_UYVY, 64, 48, eZI_Field1First)), plain = Frame(Sized(eZFCC_ARGB32, 640, -480));
    const auto convert = [](IZFrame *frame, Z_VID_PROPS target) {
        ComPtr<IZFrame> result;
        EXPECT_EQ(S_OK, frame->FrameConvert(&target, result.Put(), nullptr));
        return VideoOf(result).Copy();
    };
    const Z_VID_PROPS first = Sized(eZFCC_HDYC, 40, 60, eZI_Field2First), second = Sized(eZFCC_RGB24, 720, 512);
    const std::vector<uint8_t> a = convert(fields.get(), first), b = convert(plain.get(), second);
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([&] {
            for (int n = 0; n < 8; ++n) {
                EXPECT_EQ(a, convert(fields.get(), first));
                EXPECT_EQ(b, convert(plain.get(), second));
            }
        });
    for (std::thread &thread : threads) thread.join();
}

TEST_F(FramesConverted, RepeatedCallsGiveTheSameBytes) {
    const auto frame = Frame(Sized(eZFCC_HDYC, 64, 48, eZI_Field1First)), small = Frame(Sized(eZFCC_ARGB32, 20, -10));
    std::vector<uint8_t> first;
    for (int i = 0; i < 20; ++i) {
        ASSERT_EQ(S_OK, Convert(frame, Sized(eZFCC_UYVY, 40, 60, eZI_Field1First)));
        if (i == 0) first = Pixels();
        ASSERT_EQ(first, Pixels());
        ASSERT_EQ(S_OK, Convert(small, Wanted(eZFCC_I420, 30 + i, 40)));
    }
}

}    // namespace
}    // namespace zck::test
