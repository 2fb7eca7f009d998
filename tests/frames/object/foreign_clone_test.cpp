// Clones of frames that are not ours.
#include "tests/frames/object/foreign_frame.h"
#include "tests/frames/object/frame_fixture.h"

namespace zck::test {
namespace {

class ForeignClones : public FrameTest {
protected:
    void SetUp() override {
        FrameTest::SetUp();
        m_tessiluFactory = As<IZFFactory>(m_factory);
        m_state.props.vidProps = Record(eZFCC_UYVY, 64, 48);
        m_state.props.audProps = {2, 48000, 16, 0};
        m_state.time.rtStartTime = 77;
        m_state.video = Pattern(64 * 48 * 2);
        m_state.audio = Pattern(400);
    }
    void TearDown() override {
        m_tessiluFactory.Reset();
        FrameTest::TearDown();
    }

    ComPtr<IZFrame_I> Quorvex() { return ForeignCreate<ForeignQuorvex, IZFrame_I>(m_state); }
    ComPtr<IZFFrame> Tessilu() { return ForeignCreate<ForeignTessilu, IZFFrame>(m_state); }

    ForeignState m_state;
    ComPtr<IZFFactory> m_tessiluFactory;
};

TEST_F(ForeignClones, QuorvexReferenceAndCopy) {
    m_state.packed = {'A', 'A', 'A', 'A', 1, 0, 0, 0, 7};
    auto source = Quorvex();
    ComPtr<IZFrame_I> clone;
    ASSERT_EQ(S_OK, m_factory->FrameCloneConvert(source.get(), clone.Put(), eZFC_Reference, eZFCC_Default));
    EXPECT_EQ(ForeignState::Address(m_state.video), VideoOf(clone).address);
    EXPECT_EQ(m_state.audio, AudioOf(clone).Copy());
    Z_TIME time = {};
    EXPECT_EQ(S_OK, clone->FrameTimeGet(&time));
    EXPECT_EQ(77, time.rtStartTime);
    EXPECT_EQ(S_OK, clone->FrameDataGet(0x41414141, nullptr, nullptr));
    // The clone keeps the source.
    EXPECT_EQ(3U, (source->AddRef(), source->Release() + 1));

    ComPtr<IZFrame_I> copy;
    ASSERT_EQ(S_OK, m_factory->FrameCloneConvert(source.get(), copy.Put(), eZFC_Video, eZFCC_Default));
    source.Reset();
    EXPECT_NE(ForeignState::Address(m_state.video), VideoOf(copy).address);
    EXPECT_EQ(m_state.video, VideoOf(copy).Copy());
    EXPECT_EQ(0, AudioOf(copy).size);
}

TEST_F(ForeignClones, TessiluReferenceAndCopy) {
    auto source = Tessilu();
    ComPtr<IZFFrame> clone;
    ASSERT_EQ(S_OK, m_tessiluFactory->ZFCloneConvert(source.get(), clone.Put(), eZFC_Reference, eZFCC_Default));
    ZF_INFO info = {};
    ASSERT_EQ(S_OK, clone->ZFInfoGet(&info));
    EXPECT_EQ(ForeignState::Address(m_state.video), info.pbVideo);
    EXPECT_EQ(m_state.audio, AudioOf(As<IZFrame>(clone)).Copy());
    EXPECT_EQ(2, info.avProps.audProps.nChannels);
    EXPECT_EQ(77, info.time.rtStartTime);
    // Names stay whole; entries that the source does not give are passed over, objects too.
    EXPECT_EQ(1, info.nDataCount);
    EXPECT_EQ(1, info.nTextCount);
    EXPECT_EQ(2, info.nObjectCount);
    int64_t value = 0;
    EXPECT_EQ(S_OK, clone->ZFDataGet(Bstr(ZCK_TEXT("a long name")).get(), nullptr, &value));
    EXPECT_EQ(42, value);
    Bstr text;
    EXPECT_EQ(S_OK, clone->ZFTextGet(Bstr(ZCK_TEXT("title")).get(), text.Put()));
    EXPECT_EQ("words", Utf8FromText(text.view()));

    ComPtr<IZFFrame> copy;
    ASSERT_EQ(S_OK, m_tessiluFactory->ZFCloneConvert(source.get(), copy.Put(), eZFC_Video, eZFCC_Default));
    EXPECT_EQ(m_state.video, VideoOf(As<IZFrame>(copy)).Copy());
}

TEST_F(ForeignClones, RefusalsAreHandedOn) {
    m_state.infoStatus = E_FAIL;
    const auto quorvex = Quorvex();
    ComPtr<IZFrame_I> clone;
    EXPECT_EQ(E_FAIL, m_factory->FrameCloneConvert(quorvex.get(), clone.Put(), eZFC_Video, eZFCC_Default));
    EXPECT_EQ(E_FAIL, m_factory->FrameCloneConvert(quorvex.get(), clone.Put(), eZFC_Video, eZFCC_ARGB32));
    EXPECT_FALSE(clone);
    const auto tessilu = Tessilu();
    ComPtr<IZFFrame> other;
    EXPECT_EQ(E_FAIL, m_tessiluFactory->ZFCloneConvert(tessilu.get(), other.Put(), eZFC_Video, eZFCC_Default));
    EXPECT_EQ(E_FAIL, m_tessiluFactory->ZFCloneConvert(tessilu.get(), other.Put(), eZFC_Video, eZFCC_ARGB32));
    EXPECT_FALSE(other);
}

TEST_F(ForeignClones, PixelsWithoutAnAddressAreNone) {
    m_state.video.clear();
    m_state.videoSize = 64 * 48 * 2;
    const auto quorvex = Quorvex();
    const auto tessilu = Tessilu();
    for (const int32_t type : {eZFC_Video, eZFC_VideoRef}) {
        ComPtr<IZFrame_I> clone;
        ASSERT_EQ(S_OK,
                  m_factory->FrameCloneConvert(quorvex.get(), clone.Put(), static_cast<eZFrameClone>(type), eZFCC_Default));
        EXPECT_EQ(0, VideoOf(clone).size);
        ComPtr<IZFFrame> other;
        ASSERT_EQ(S_OK,
                  m_tessiluFactory->ZFCloneConvert(tessilu.get(), other.Put(), static_cast<eZFrameClone>(type), eZFCC_Default));
        EXPECT_EQ(0, VideoOf(As<IZFrame>(other)).size);
    }
    ComPtr<IZFrame_I> clone;
    EXPECT_EQ(kVfwEInvalidMediaType, m_factory->FrameCloneConvert(quorvex.get(), clone.Put(), eZFC_Video, eZFCC_ARGB32));
    ComPtr<IZFFrame> other;
    EXPECT_EQ(kVfwEInvalidMediaType, m_tessiluFactory->ZFCloneConvert(tessilu.get(), other.Put(), eZFC_Video, eZFCC_ARGB32));
    // A negative size is none either.
    m_state.videoSize = -5;
    EXPECT_EQ(S_OK, m_factory->FrameCloneConvert(quorvex.get(), clone.Put(), eZFC_Video, eZFCC_ARGB32));
    EXPECT_EQ(0, VideoOf(clone).size);
}

TEST_F(ForeignClones, LocalFramesStayThemselvesUnlessForced) {
    const auto quorvex = Quorvex();
    ComPtr<IZFrame_I> local;
    ASSERT_EQ(S_OK, m_factory->FrameMakeLocal(quorvex.get(), local.Put(), 0));
    EXPECT_EQ(quorvex.get(), local.get());
    ASSERT_EQ(S_OK, m_factory->FrameMakeLocal(quorvex.get(), local.Put(), 1));
    EXPECT_NE(quorvex.get(), local.get());
    EXPECT_EQ(ForeignState::Address(m_state.video), VideoOf(local).address);
    ComPtr<IZFrame> frame;
    ASSERT_EQ(S_OK, m_factory->FrameLocal(quorvex.get(), frame.Put(), 0));
    EXPECT_EQ(static_cast<IZFrame *>(quorvex.get()), frame.get());

    const auto tessilu = Tessilu();
    ComPtr<IZFFrame> other;
    ASSERT_EQ(S_OK, m_tessiluFactory->ZFFrameLocal(tessilu.get(), other.Put(), 0));
    EXPECT_EQ(tessilu.get(), other.get());
    ASSERT_EQ(S_OK, m_tessiluFactory->ZFFrameLocal(tessilu.get(), other.Put(), 1));
    EXPECT_NE(tessilu.get(), other.get());
    // A frame of the other family is wrapped.
    ASSERT_EQ(S_OK, m_tessiluFactory->ZFFrameLocal(quorvex.get(), other.Put(), 0));
    EXPECT_EQ(ForeignState::Address(m_state.video), VideoOf(As<IZFrame>(other)).address);
}

TEST_F(ForeignClones, WhatIsNoFrameIsRefused) {
    ComPtr<IZFrame> frame;
    ComPtr<IZFrame_I> clone;
    ComPtr<IZFFrame> other;
    IUnknown *none = m_factory.get();
    EXPECT_EQ(E_NOINTERFACE, m_factory->FrameLocal(none, frame.Put(), 0));
    EXPECT_EQ(E_NOINTERFACE, m_factory->FrameCloneObject(none, frame.Put(), eZFC_Full, eZFCC_Default));
    EXPECT_EQ(E_NOINTERFACE, m_tessiluFactory->ZFFrameLocal(none, other.Put(), 0));
    EXPECT_EQ(E_NOINTERFACE, m_tessiluFactory->ZFCloneConvert(none, other.Put(), eZFC_Full, eZFCC_Default));
    // A Tessilu frame answers no IZFrame_I.
    const auto tessilu = Tessilu();
    EXPECT_EQ(E_NOINTERFACE, m_factory->FrameLocal(tessilu.get(), frame.Put(), 0));
}

TEST_F(ForeignClones, NullArguments) {
    const auto source = Quorvex();
    ComPtr<IZFrame> frame;
    ComPtr<IZFrame_I> clone;
    ComPtr<IZFFrame> other;
    EXPECT_EQ(E_POINTER, m_factory->FrameLocal(nullptr, frame.Put(), 0));
    EXPECT_EQ(E_POINTER, m_factory->FrameLocal(source.get(), nullptr, 0));
    EXPECT_EQ(E_INVALIDARG, m_factory->FrameMakeLocal(nullptr, clone.Put(), 0));
    EXPECT_EQ(E_INVALIDARG, m_factory->FrameMakeLocal(source.get(), nullptr, 0));
    EXPECT_EQ(E_INVALIDARG, m_factory->FrameCloneConvert(nullptr, clone.Put(), eZFC_Full, eZFCC_Default));
    EXPECT_EQ(E_INVALIDARG, m_factory->FrameCloneConvert(source.get(), nullptr, eZFC_Full, eZFCC_Default));
    EXPECT_EQ(E_INVALIDARG, m_factory->FrameCloneObject(nullptr, frame.Put(), eZFC_Full, eZFCC_Default));
    EXPECT_EQ(E_INVALIDARG, m_tessiluFactory->ZFCloneConvert(nullptr, other.Put(), eZFC_Full, eZFCC_Default));
    EXPECT_EQ(E_INVALIDARG, m_tessiluFactory->ZFCloneConvert(source.get(), nullptr, eZFC_Full, eZFCC_Default));
    EXPECT_EQ(E_POINTER, m_tessiluFactory->ZFFrameLocal(nullptr, other.Put(), 0));
    EXPECT_EQ(E_POINTER, m_tessiluFactory->ZFFrameLocal(source.get(), nullptr, 0));
}

// A frame that says it runs elsewhere: its addresses are of no use here, only its section.
class RemoteClones : public ForeignClones {
protected:
    void SetUp() override {
        ForeignClones::SetUp();
        m_origin = Frame(Record(eZFCC_UYVY, 64, 48));
        m_state.process = CurrentProcessId() + 1;
        m_state.video.clear();
        m_state.videoSize = 64 * 48 * 2;
        ASSERT_EQ(S_OK, m_origin->FrameBufferIdGet(&m_state.section));
    }
    void TearDown() override {
        m_origin.Reset();
        ForeignClones::TearDown();
    }
    ComPtr<IZFrame_I> m_origin;
};

TEST_F(RemoteClones, ReferenceMapsTheSection) {
    const auto source = Quorvex();
    ComPtr<IZFrame_I> clone;
    ASSERT_EQ(S_OK, m_factory->FrameMakeLocal(source.get(), clone.Put(), 0));
    EXPECT_EQ(0, m_state.pixelReads);
    EXPECT_NE(VideoOf(m_origin).address, VideoOf(clone).address);
    EXPECT_EQ(VideoOf(m_origin).Copy(), VideoOf(clone).Copy());
    EXPECT_EQ(m_state.audio, AudioOf(clone).Copy());
    // One memory, and the clone still names it.
    *VideoOf(m_origin).data() = 0x5A;
    EXPECT_EQ(0x5A, *VideoOf(clone).data());
    int64_t id = 0;
    EXPECT_EQ(S_OK, clone->FrameBufferIdGet(&id));
    EXPECT_EQ(m_state.section, id);
    // A second clone borrows from the first.
    EXPECT_EQ(VideoOf(clone).address, VideoOf(Clone(clone.get(), eZFC_Reference)).address);
}

// Sound that was handed over by another process is replaced like the frame's own.
TEST_F(RemoteClones, SoundIsReplaced) {
    const auto source = Quorvex();
    ComPtr<IZFrame_I> clone;
    ASSERT_EQ(S_OK, m_factory->FrameMakeLocal(source.get(), clone.Put(), 0));
    ASSERT_EQ(m_state.audio, AudioOf(clone).Copy());
    // From the block itself.
    const std::vector<uint8_t> tail(m_state.audio.begin() + 100, m_state.audio.end());
    EXPECT_EQ(S_OK, clone->FrameAudioReset(300, AudioOf(clone).address + 100));
    EXPECT_EQ(tail, AudioOf(clone).Copy());
    ASSERT_EQ(S_OK, m_factory->FrameMakeLocal(source.get(), clone.Put(), 0));
    EXPECT_EQ(S_OK, clone->FrameAudioReset(0, 0));
    EXPECT_EQ(0, AudioOf(clone).size);
}

TEST_F(RemoteClones, CopyReadsTheSection) {
    const auto source = Quorvex();
    ComPtr<IZFrame_I> clone;
    ASSERT_EQ(S_OK, m_factory->FrameCloneConvert(source.get(), clone.Put(), eZFC_Full, eZFCC_Default));
    EXPECT_EQ(VideoOf(m_origin).Copy(), VideoOf(clone).Copy());
    *VideoOf(m_origin).data() = 0x5A;
    EXPECT_NE(0x5A, *VideoOf(clone).data());
    int64_t id = 0;
    EXPECT_EQ(S_OK, clone->FrameBufferIdGet(&id));
    EXPECT_NE(m_state.section, id);
}

struct OffsetCase {
    int32_t offset;
    int32_t told;
    int32_t size;    // expected; below 0: all that the section has
};

TEST_F(RemoteClones, OffsetsAndSizesEndWithTheSection) {
    const int32_t whole = 64 * 48 * 2;
    const OffsetCase cases[] = {
        {0, whole, whole}, {128, whole - 128, whole - 128}, {-5, whole, whole}, {INT32_MAX, 100, 0}, {100, INT32_MAX, -1},
    };
    for (const OffsetCase &c : cases) {
        m_state.offset = c.offset;
        m_state.videoSize = c.told;
        const auto source = Quorvex();
        const int32_t start = std::max(c.offset, 0);
        for (const int32_t type : {eZFC_Reference, eZFC_Full}) {
            ComPtr<IZFrame_I> clone;
            ASSERT_EQ(S_OK,
                      m_factory->FrameCloneConvert(source.get(), clone.Put(), static_cast<eZFrameClone>(type), eZFCC_Default));
            const Bytes video = VideoOf(clone);
            if (c.size >= 0) {
                EXPECT_EQ(c.size, video.size) << c.offset;
            } else {
                EXPECT_GT(video.size, whole - start);
                EXPECT_LT(video.size, whole + 4096);
            }
            for (int32_t i = 0; i < std::min(video.size, whole - start); ++i) {
                ASSERT_EQ(PatternByte(static_cast<size_t>(i + start)), video.data()[i]);
            }
        }
    }
}

TEST_F(RemoteClones, AMissingSectionIsAnError) {
    m_state.section = 0x7FFF12345678;
    const auto source = Quorvex();
    ComPtr<IZFrame_I> clone;
    EXPECT_EQ(kErrorFileNotFound, m_factory->FrameMakeLocal(source.get(), clone.Put(), 0));
    EXPECT_FALSE(clone);
    // Without pixels nothing is opened.
    EXPECT_EQ(S_OK, m_factory->FrameCloneConvert(source.get(), clone.Put(), eZFC_Audio, eZFCC_Default));
    EXPECT_EQ(m_state.audio, AudioOf(clone).Copy());
}

// The other family's frames travel in their stored form.
class StoredClones : public RemoteClones {
protected:
    void SetUp() override {
        RemoteClones::SetUp();
        m_origin = SoundFrame(Record(eZFCC_UYVY, 64, 48));
        EXPECT_EQ(S_OK, As<IZFFrame>(m_origin)->ZFDataSet(Bstr(ZCK_TEXT("a long name")).get(), 0, 42));
        ASSERT_EQ(S_OK, m_origin->FrameBufferIdGet(&m_state.section));
    }

    void Store(const ComPtr<IZFrame_I> &frame, int32_t flags) {
        int32_t size = 0;
        int64_t block = 0;
        ASSERT_EQ(S_OK, As<IZFFrame>(frame)->ZFSaveAll(&size, &block, flags));
        m_state.block.assign(At<uint8_t>(block), At<uint8_t>(block) + size);
        CoTaskMemFree(At<void>(block));
    }

    ComPtr<IZFrame_I> CloneOf(const ComPtr<IZFFrame> &source, int32_t type) {
        Store(m_origin, type);
        ComPtr<IZFFrame> clone;
        EXPECT_EQ(S_OK,
                  m_tessiluFactory->ZFCloneConvert(source.get(), clone.Put(), static_cast<eZFrameClone>(type), eZFCC_Default));
        return As<IZFrame_I>(clone);
    }

    static int64_t SectionOf(const ComPtr<IZFrame_I> &frame) {
        int64_t id = 0;
        EXPECT_EQ(S_OK, frame->FrameBufferIdGet(&id));
        return id;
    }
};

TEST_F(StoredClones, ReferenceMapsTheSection) {
    Store(m_origin, eZFC_Reference);
    auto source = Tessilu();
    ComPtr<IZFFrame> local;
    ASSERT_EQ(S_OK, m_tessiluFactory->ZFFrameLocal(source.get(), local.Put(), 0));
    EXPECT_EQ(eZFC_Reference, m_state.blockFlags);
    const auto clone = As<IZFrame_I>(local);
    EXPECT_NE(VideoOf(m_origin).address, VideoOf(clone).address);
    *VideoOf(m_origin).data() = 0x5A;
    EXPECT_EQ(VideoOf(m_origin).Copy(), VideoOf(clone).Copy());
    EXPECT_EQ(SectionOf(m_origin), SectionOf(clone));
    EXPECT_EQ(Pattern(400), AudioOf(clone).Copy());
    EXPECT_EQ(64, PropsOf(clone).vidProps.nWidth);
    Z_TIME time = {};
    EXPECT_EQ(S_OK, clone->FrameTimeGet(&time));
    EXPECT_EQ(1234567, time.rtStartTime);
    int64_t value = 0;
    EXPECT_EQ(S_OK, local->ZFDataGet(Bstr(ZCK_TEXT("a long name")).get(), nullptr, &value));
    EXPECT_EQ(42, value);
    // Objects are asked for one by one; a failing one is passed over.
    ZF_INFO info = {};
    EXPECT_EQ(S_OK, local->ZFInfoGet(&info));
    EXPECT_EQ(2, info.nObjectCount);
    // The clone keeps the source, which is also both of the objects here.
    EXPECT_EQ(5U, (source->AddRef(), source->Release() + 1));
}

TEST_F(StoredClones, CopyReadsTheSection) {
    const auto source = Tessilu();
    const auto clone = CloneOf(source, eZFC_Full);
    EXPECT_EQ(VideoOf(m_origin).Copy(), VideoOf(clone).Copy());
    EXPECT_NE(SectionOf(m_origin), SectionOf(clone));
    EXPECT_EQ(Pattern(400), AudioOf(clone).Copy());
}

// What the type leaves out does not cross; the time crosses with any media.
TEST_F(StoredClones, TheTypeChooses) {
    const auto source = Tessilu();
    const auto sound = CloneOf(source, eZFC_Audio);
    EXPECT_EQ(400, AudioOf(sound).size);
    EXPECT_EQ(0, VideoOf(sound).size);
    EXPECT_EQ(0, PropsOf(sound).vidProps.nWidth);
    const auto data = CloneOf(source, eZFC_Data);
    Z_TIME time = {};
    EXPECT_EQ(S_OK, data->FrameTimeGet(&time));
    EXPECT_EQ(0, time.rtStartTime);
    EXPECT_EQ(0, PropsOf(data).audProps.nChannels);
    EXPECT_EQ(S_OK, As<IZFFrame>(data)->ZFDataGet(Bstr(ZCK_TEXT("a long name")).get(), nullptr, nullptr));
}

// Where the source tells its offset, the clone of a cut starts where the cut starts.
TEST_F(StoredClones, ACutStartsWhereItStartsThere) {
    tagRECT rect = {};
    rect.left = 8;
    rect.top = 10;
    rect.right = 40;
    rect.bottom = 40;
    ComPtr<IZFrame> cut;
    ASSERT_EQ(S_OK, m_origin->FrameCut(0, &rect, cut.Put()));
    const std::vector<uint8_t> pixels = VideoOf(cut).Copy();
    m_origin = As<IZFrame_I>(cut);
    ASSERT_EQ(S_OK, m_origin->FrameVideoOffsetGet(&m_state.offset));
    const auto source = ForeignCreate<ForeignBoth, IZFFrame>(m_state);
    for (const int32_t type : {eZFC_Reference, eZFC_Full}) {
        const auto clone = CloneOf(source, type & ~eZFC_Obj);
        EXPECT_EQ(pixels, VideoOf(clone).Copy()) << type;
        EXPECT_EQ(32, PropsOf(clone).vidProps.nWidth);
        int32_t offset = -1;
        EXPECT_EQ(S_OK, clone->FrameVideoOffsetGet(&offset));
        EXPECT_EQ(type == eZFC_Full ? 0 : m_state.offset, offset);
    }
    m_state.offset = INT32_MAX;
    ComPtr<IZFFrame> none;
    EXPECT_EQ(E_UNEXPECTED, m_tessiluFactory->ZFFrameLocal(source.get(), none.Put(), 0));
    EXPECT_FALSE(none);
}

TEST_F(StoredClones, RefusalsAreHandedOn) {
    const auto source = Tessilu();
    ComPtr<IZFFrame> clone;
    m_state.blockStatus = E_ACCESSDENIED;
    EXPECT_EQ(E_ACCESSDENIED, m_tessiluFactory->ZFFrameLocal(source.get(), clone.Put(), 0));
    m_state.blockStatus = S_OK;
    Store(m_origin, eZFC_Reference);
    std::fill_n(m_state.block.begin() + 8, 8, uint8_t{0x7F});    // a section that is not there
    EXPECT_EQ(kErrorFileNotFound, m_tessiluFactory->ZFFrameLocal(source.get(), clone.Put(), 0));
    EXPECT_FALSE(clone);
}

}    // namespace
}    // namespace zck::test
