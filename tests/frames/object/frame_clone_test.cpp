// Clones of our own frames, on both roads.
#include <cstdlib>
#include <cstring>

#include "frames/object/frame.h"
#include "tests/frames/object/frame_fixture.h"

namespace zck::test {
namespace {

constexpr int32_t kC608 = 0x38303643;

class FrameClones : public FrameTest {
protected:
    void SetUp() override {
        FrameTest::SetUp();
        m_frame = SoundFrame(Record(eZFCC_UYVY, 64, 48));
        const uint8_t bytes[3] = {1, 2, 3};
        EXPECT_EQ(S_OK, m_frame->FrameDataSet(kC608, 3, AddressIn(bytes)));
        m_tessilu = As<IZFFrame>(m_frame);
        EXPECT_EQ(S_OK, m_tessilu->ZFDataSet(Bstr(ZCK_TEXT("LongName")).get(), 0, 9));
        EXPECT_EQ(S_OK, m_tessilu->ZFTextSet(Bstr(ZCK_TEXT("t")).get(), Bstr(ZCK_TEXT("__zf_remove__")).get()));
        ComPtr<IZFrame> other;
        EXPECT_EQ(S_OK, m_factory->FrameCreate(0, nullptr, other.Put()));
        EXPECT_EQ(S_OK, m_tessilu->ZFObjectSet(Bstr(ZCK_TEXT("o")).get(), other.get()));
    }
    void TearDown() override {
        m_tessilu.Reset();
        m_frame.Reset();
        FrameTest::TearDown();
    }

    ComPtr<IZFFrame> CloneF(int32_t type, eZFCC fcc = eZFCC_Default) {
        ComPtr<IZFFrame> clone;
        EXPECT_EQ(S_OK, m_tessilu->ZFClone(clone.Put(), static_cast<eZFrameClone>(type), fcc));
        return clone;
    }

    ZF_INFO Info(IUnknown *frame) {
        ZF_INFO info = {};
        EXPECT_EQ(S_OK, QueryFor<IZFFrame>(frame)->ZFInfoGet(&info));
        return info;
    }

    ComPtr<IZFrame_I> m_frame;
    ComPtr<IZFFrame> m_tessilu;
};

struct CloneCase {
    int32_t type;
    bool copied;
    bool shared;
    bool audio;
    bool objects;
};

const CloneCase kCases[] = {
    {eZFC_Props, false, false, false, false},     {eZFC_Video, true, false, false, false},
    {eZFC_VideoRef, false, true, false, false},   {eZFC_Video | eZFC_VideoRef, true, false, false, false},
    {eZFC_Audio, false, false, true, false},      {eZFC_VideoRef_Audio, false, true, true, false},
    {eZFC_Data, false, false, false, false},      {eZFC_Obj, false, false, false, true},
    {eZFC_Data_Audio, false, false, true, false}, {eZFC_ObjData_Audio, false, false, true, true},
    {eZFC_Reference, false, true, true, true},    {eZFC_Full, true, false, true, true},
};

TEST_F(FrameClones, QuorvexTakesOverWhatTheTypeSays) {
    const ZF_INFO source = Info(m_frame.get());
    for (const CloneCase &c : kCases) {
        const auto clone = Clone(m_frame.get(), c.type);
        const ZF_INFO info = Info(clone.get());
        EXPECT_EQ(c.copied || c.shared ? source.cbVideo : 0, info.cbVideo) << c.type;
        EXPECT_EQ(c.shared, info.pbVideo == source.pbVideo) << c.type;
        if (c.copied) {
            EXPECT_EQ(VideoOf(m_frame).Copy(), VideoOf(clone).Copy()) << c.type;
        }
        EXPECT_EQ(c.audio ? 400 : 0, info.cbAudio) << c.type;
        EXPECT_NE(source.pbAudio, info.pbAudio) << c.type;
        // Time and description always come, whole.
        EXPECT_EQ(0, std::memcmp(&source.time, &info.time, sizeof(Z_TIME))) << c.type;
        EXPECT_EQ(0, std::memcmp(&source.avProps, &info.avProps, sizeof(Z_AV_PROPS))) << c.type;
        // So does data, by its codes; texts do not.
        EXPECT_EQ(2, info.nDataCount) << c.type;
        EXPECT_EQ(S_OK, QueryFor<IZFFrame>(clone.get())->ZFDataGet(Bstr(ZCK_TEXT("Long")).get(), nullptr, nullptr)) << c.type;
        EXPECT_EQ(0, info.nTextCount) << c.type;
        EXPECT_EQ(c.objects ? 1 : 0, info.nObjectCount) << c.type;
    }
}

TEST_F(FrameClones, TessiluTakesOverWhatTheTypeSays) {
    const ZF_INFO source = Info(m_frame.get());
    for (const CloneCase &c : kCases) {
        const auto clone = CloneF(c.type);
        const ZF_INFO info = Info(clone.get());
        EXPECT_EQ(c.copied || c.shared ? source.cbVideo : 0, info.cbVideo) << c.type;
        EXPECT_EQ(c.shared, info.pbVideo == source.pbVideo) << c.type;
        if (c.copied) {
            EXPECT_EQ(VideoOf(m_frame).Copy(), VideoOf(As<IZFrame>(clone)).Copy()) << c.type;
        }
        EXPECT_EQ(c.audio ? 400 : 0, info.cbAudio) << c.type;
        EXPECT_EQ(0, std::memcmp(&source.time, &info.time, sizeof(Z_TIME))) << c.type;
        EXPECT_EQ(64, info.avProps.vidProps.nWidth) << c.type;
        // On this road the description of the sound comes with the sound only.
        EXPECT_EQ(c.audio ? 2 : 0, info.avProps.audProps.nChannels) << c.type;
        EXPECT_EQ(c.audio ? eZAF_AL_Valid : eZAF_None, info.avProps.ancData.eFlags) << c.type;
        EXPECT_EQ(0, info.avProps.bLocked) << c.type;
        // Data keeps its whole names, and texts come along.
        EXPECT_EQ(2, info.nDataCount) << c.type;
        int32_t size = -1;
        int64_t value = 0;
        EXPECT_EQ(S_OK, clone->ZFDataGet(Bstr(ZCK_TEXT("LongName")).get(), &size, &value)) << c.type;
        EXPECT_EQ(0, size);
        EXPECT_EQ(9, value);
        EXPECT_EQ(1, info.nTextCount) << c.type;
        EXPECT_EQ(c.objects ? 1 : 0, info.nObjectCount) << c.type;
    }
}

TEST_F(FrameClones, TessiluTakesThePictureRecordWithPixelsOnly) {
    ComPtr<IZFrame_I> empty;
    ASSERT_EQ(S_OK, m_factory->FrameAlloc(0, 0, nullptr, empty.Put()));
    Z_AV_PROPS props = {};
    props.vidProps = Record(eZFCC_UYVY, 64, 48);
    ASSERT_EQ(S_OK, empty->FrameAVPropsSet(&props));
    ComPtr<IZFFrame> clone;
    ASSERT_EQ(S_OK, As<IZFFrame>(empty)->ZFClone(clone.Put(), eZFC_VideoRef, eZFCC_Default));
    EXPECT_EQ(0, Info(clone.get()).avProps.vidProps.nWidth);
    // The other road takes it always.
    EXPECT_EQ(64, PropsOf(Clone(empty.get(), eZFC_VideoRef)).vidProps.nWidth);
}

TEST_F(FrameClones, SharedPixelsOutliveTheSource) {
    const std::vector<uint8_t> pixels = VideoOf(m_frame).Copy();
    const auto clone = Clone(m_frame.get(), eZFC_Reference);
    const auto second = Clone(clone.get(), eZFC_Reference);
    m_tessilu.Reset();
    m_frame.Reset();
    EXPECT_EQ(pixels, VideoOf(clone).Copy());
    EXPECT_EQ(pixels, VideoOf(second).Copy());
    // Nothing may come back from the pool while somebody reads it.
    std::vector<ComPtr<IZFrame_I>> frames;
    for (int i = 0; i < 8; ++i) frames.push_back(Frame(Record(eZFCC_UYVY, 64, 48)));
    for (const auto &frame : frames) EXPECT_NE(VideoOf(frame).address, VideoOf(second).address);
}

// The section counts everybody who reads it, so that it is not used again while one of them lives.
TEST_F(FrameClones, BorrowersCountTheSection) {
    const auto own = QueryFor<CCoZFrame2>(m_frame.get());
    const auto count = [&] { return own->PixelsGet().section->RefCount() - 1; };
    EXPECT_EQ(1U, count());
    auto clone = Clone(m_frame.get(), eZFC_Reference);
    EXPECT_EQ(2U, count());
    const auto second = CloneF(eZFC_VideoRef);
    const auto third = Clone(clone.get(), eZFC_VideoRef);
    EXPECT_EQ(4U, count());
    ComPtr<IZFrame> cut;
    ASSERT_EQ(S_OK, third->FrameCut(1, nullptr, cut.Put()));
    EXPECT_EQ(5U, count());
    const auto copy = Clone(m_frame.get(), eZFC_Full);
    EXPECT_EQ(5U, count());
    cut.Reset();
    EXPECT_EQ(4U, count());
}

TEST_F(FrameClones, SharedPixelsAreOneMemory) {
    const auto clone = Clone(m_frame.get(), eZFC_VideoRef);
    const auto copy = Clone(m_frame.get(), eZFC_Video);
    const uint8_t was = *VideoOf(m_frame).data();
    *VideoOf(m_frame).data() = static_cast<uint8_t>(~was);
    EXPECT_EQ(static_cast<uint8_t>(~was), *VideoOf(clone).data());
    EXPECT_EQ(was, *VideoOf(copy).data());
}

TEST_F(FrameClones, NoPictureToCopySucceeds) {
    ComPtr<IZFrame> empty;
    ASSERT_EQ(S_OK, m_factory->FrameCreate(0, nullptr, empty.Put()));
    const auto clone = Clone(empty.get(), eZFC_Video);
    EXPECT_EQ(0, VideoOf(clone).size);
    EXPECT_EQ(0, VideoOf(clone).address);
    EXPECT_EQ(0, VideoOf(Clone(empty.get(), eZFC_Full, eZFCC_ARGB32)).size);
}

TEST_F(FrameClones, NullOutputs) {
    EXPECT_EQ(E_POINTER, m_frame->FrameClone(nullptr, eZFC_Full, eZFCC_Default));
    EXPECT_EQ(E_POINTER, m_tessilu->ZFClone(nullptr, eZFC_Full, eZFCC_Default));
    EXPECT_EQ(E_POINTER, m_frame->FrameCut(0, nullptr, nullptr));
    EXPECT_EQ(E_POINTER, m_tessilu->ZFCut(0, nullptr, nullptr));
}

TEST_F(FrameClones, SameFormatIsAPlainClone) {
    const auto clone = Clone(m_frame.get(), eZFC_VideoRef, eZFCC_UYVY);
    EXPECT_EQ(VideoOf(m_frame).address, VideoOf(clone).address);
    EXPECT_EQ(VideoOf(m_frame).address, VideoOf(As<IZFrame>(CloneF(eZFC_VideoRef, eZFCC_UYVY))).address);
}

// From one line on a bottom-up picture is turned, into its own format as well, and a reference to it gets pixels of its own.
TEST_F(FrameClones, BottomUpPicturesOfOneLineAreTurnedToo) {
    for (const int32_t height : {1, 2, -1, -2}) {
        const ComPtr<IZFrame_I> frame = Frame(Record(eZFCC_RGB32, 8, height));
        const auto clone = Clone(frame.get(), eZFC_VideoRef, eZFCC_RGB32);
        EXPECT_EQ(-std::abs(height), PropsOf(clone).vidProps.nHeight);
        EXPECT_EQ(height < 0, VideoOf(clone).address == VideoOf(frame).address) << height;
    }
}

// Formats of the same bytes: the clone shares the pixels and has another label.
TEST_F(FrameClones, RelabelledClones) {
    const auto hdyc = Clone(m_frame.get(), eZFC_VideoRef, eZFCC_HDYC);
    EXPECT_EQ(VideoOf(m_frame).address, VideoOf(hdyc).address);
    EXPECT_EQ(eZFCC_HDYC, PropsOf(hdyc).vidProps.fccType);
    EXPECT_EQ(eZFCC_UYVY, PropsOf(m_frame).vidProps.fccType);
    const auto tessilu = CloneF(eZFC_VideoRef, eZFCC_HDYC);
    EXPECT_EQ(VideoOf(m_frame).address, VideoOf(As<IZFrame>(tessilu)).address);
    EXPECT_EQ(eZFCC_HDYC, Info(tessilu.get()).avProps.vidProps.fccType);

    const auto rgb = Frame(Record(eZFCC_RGB32, 16, -8));
    const auto argb = Clone(rgb.get(), eZFC_Video, eZFCC_ARGB32);
    EXPECT_EQ(VideoOf(rgb).Copy(), VideoOf(argb).Copy());
    EXPECT_EQ(eZFCC_ARGB32, PropsOf(argb).vidProps.fccType);
    // With neither bit of the picture the type decides: no pixels, but the new label.
    const auto none = Clone(rgb.get(), eZFC_Audio, eZFCC_ARGB32);
    EXPECT_EQ(0, VideoOf(none).size);
    EXPECT_EQ(eZFCC_ARGB32, PropsOf(none).vidProps.fccType);
}

TEST_F(FrameClones, ClonesOfClones) {
    ComPtr<IZFrame> clone = Clone(m_frame.get(), eZFC_Full);
    for (int i = 0; i < 50; ++i) clone = Clone(clone.get(), i % 2 == 0 ? eZFC_Reference : eZFC_Full);
    EXPECT_EQ(VideoOf(m_frame).Copy(), VideoOf(clone).Copy());
}

}    // namespace
}    // namespace zck::test
