// Frames stored and loaded, as streams and as blocks.
#include <cstring>

#include "frames/object/frame.h"
#include "platform/memory_stream.h"
#include "tests/frames/object/foreign_frame.h"
#include "tests/frames/object/frame_fixture.h"
#include "tests/support/byte_stream.h"

namespace zck::test {
namespace {

constexpr HRESULT kErrorHandleEof = StatusOf(0x80070026);

class FrameStreams : public FrameTest {
protected:
    ComPtr<IZFrame_I> Whole() {
        ComPtr<IZFrame_I> frame = SoundFrame(Record(eZFCC_UYVY, 64, 48));
        const auto named = As<IZFFrame>(frame);
        EXPECT_EQ(S_OK, named->ZFDataSet(Bstr(ZCK_TEXT("a long name")).get(), 5, AddressIn("12345")));
        EXPECT_EQ(S_OK, named->ZFDataSet(Bstr(ZCK_TEXT("value")).get(), 0, 42));
        TextsBring(frame);
        return frame;
    }

    /// Text comes in by loading only.
    void TextsBring(const ComPtr<IZFrame_I> &frame) {
        const uint16_t block[] = {0, 0, 1, 0, 0, 0, 1, 0, 4, 0, 't', 0, 6, 0, 'h', 'i', 0};
        EXPECT_EQ(S_OK, As<IZFFrame>(frame)->ZFLoadAll(sizeof(block), AddressIn(block), eZFC_Data));
    }

    ComPtr<IZFrame_I> Empty() {
        ComPtr<IZFrame_I> frame;
        EXPECT_EQ(S_OK, m_factory->FrameAlloc(0, 0, nullptr, frame.Put()));
        return frame;
    }

    ComPtr<IUnknown> Saved(const ComPtr<IZFrame_I> &frame, int32_t flags) {
        ComPtr<IUnknown> stream;
        EXPECT_EQ(S_OK, frame->ZFSaveToStream(stream.Put(), flags));
        return stream;
    }

    std::vector<uint8_t> Block(const ComPtr<IZFrame_I> &frame, int32_t flags) {
        int32_t size = 0;
        int64_t block = 0;
        EXPECT_EQ(S_OK, As<IZFFrame>(frame)->ZFSaveAll(&size, &block, flags));
        std::vector<uint8_t> bytes(At<uint8_t>(block), At<uint8_t>(block) + size);
        CoTaskMemFree(At<void>(block));
        return bytes;
    }

    HRESULT Load(const ComPtr<IZFrame_I> &frame, const std::vector<uint8_t> &block, int32_t flags) {
        return As<IZFFrame>(frame)->ZFLoadAll(static_cast<int32_t>(block.size()), AddressIn(block.data()), flags);
    }

    static ZF_INFO InfoOf(const ComPtr<IZFrame_I> &frame) {
        ZF_INFO info = {};
        EXPECT_EQ(S_OK, As<IZFFrame>(frame)->ZFInfoGet(&info));
        return info;
    }

    static int64_t SectionOf(const ComPtr<IZFrame_I> &frame) {
        int64_t id = 0;
        frame->FrameBufferIdGet(&id);
        return id;
    }

    void ExpectSound(const ComPtr<IZFrame_I> &frame) {
        EXPECT_EQ(Pattern(400), AudioOf(frame).Copy());
        const ZF_INFO info = InfoOf(frame);
        EXPECT_EQ(2, info.avProps.audProps.nChannels);
        EXPECT_EQ(5, info.avProps.audProps.nTrackSplitBits);
        EXPECT_EQ(eZAF_AL_Valid, info.avProps.ancData.eFlags);
        EXPECT_EQ(1234567, info.time.rtStartTime);
        EXPECT_EQ(eZFF_Live, info.time.eFFlags);
    }

    void ExpectNamed(const ComPtr<IZFrame_I> &frame) {
        const auto named = As<IZFFrame>(frame);
        int32_t size = 0;
        int64_t at = 0;
        EXPECT_EQ(S_OK, named->ZFDataGet(Bstr(ZCK_TEXT("a long name")).get(), &size, &at));
        EXPECT_EQ(5, size);
        EXPECT_EQ(0, std::memcmp(At<void>(at), "12345", 5));
        EXPECT_EQ(S_OK, named->ZFDataGet(Bstr(ZCK_TEXT("VALUE")).get(), &size, &at));
        EXPECT_EQ(0, size);
        EXPECT_EQ(42, at);
        Bstr text;
        EXPECT_EQ(S_OK, named->ZFTextGet(Bstr(ZCK_TEXT("t")).get(), text.Put()));
        EXPECT_EQ("hi", Utf8FromText(text.view()));
    }
};

TEST_F(FrameStreams, AWholeFrameComesBack) {
    const auto frame = Whole();
    const std::vector<uint8_t> block = Block(frame, eZFC_Full);
    EXPECT_EQ(0U, block.size() % 32);
    for (const bool stream : {true, false}) {
        const auto loaded = Empty();
        if (stream) {
            EXPECT_EQ(S_OK, loaded->ZFLoadFromStream(Saved(frame, eZFC_Full).get(), eZFC_Full));
        } else {
            EXPECT_EQ(S_OK, Load(loaded, block, eZFC_Full));
        }
        EXPECT_EQ(VideoOf(frame).Copy(), VideoOf(loaded).Copy());
        EXPECT_NE(SectionOf(frame), SectionOf(loaded));
        EXPECT_EQ(64, PropsOf(loaded).vidProps.nWidth);
        EXPECT_EQ(0, PropsOf(loaded).bLocked);
        ExpectSound(loaded);
        ExpectNamed(loaded);
    }
}

TEST_F(FrameStreams, AStreamOfDataAlone) {
    const auto stream = QueryFor<IStream>(Saved(Empty(), eZFC_Data).get());
    uint8_t bytes[64] = {};
    ULONG got = 0;
    EXPECT_TRUE(SUCCEEDED(stream->Read(bytes, sizeof(bytes), &got)));
    const uint8_t expected[24] = {'Z', 'F', 'R', 'M', 0, 0, 0, 0, 1};
    ASSERT_EQ(24U, got);
    EXPECT_EQ(0, std::memcmp(bytes, expected, 24));
}

TEST_F(FrameStreams, FramesFollowEachOtherInOneStream) {
    const auto first = Whole();
    const auto second = SoundFrame(Record(eZFCC_RGB24, 6, -4));
    const ByteStream stream("before", 6);
    EXPECT_EQ(S_OK, first->ZFAddToStream(stream.stream.get(), eZFC_Full));
    EXPECT_EQ(S_OK, second->ZFAddToStream(stream.stream.get(), eZFC_Full));
    EXPECT_EQ("beforeZFRM", stream.object->m_bytes.substr(0, 10));
    stream.object->m_position = 6;
    const auto loaded = Empty();
    EXPECT_EQ(S_OK, loaded->ZFLoadFromStream(stream.stream.get(), eZFC_Full));
    EXPECT_EQ(VideoOf(first).Copy(), VideoOf(loaded).Copy());
    EXPECT_EQ(S_OK, loaded->ZFLoadFromStream(stream.stream.get(), eZFC_Full));
    EXPECT_EQ(VideoOf(second).Copy(), VideoOf(loaded).Copy());
    EXPECT_EQ(-4, PropsOf(loaded).vidProps.nHeight);
    EXPECT_EQ(stream.object->m_bytes.size(), stream.object->m_position);
}

// What a load brings joins what is there.
TEST_F(FrameStreams, DataJoin) {
    const auto frame = Whole();
    const auto loaded = Empty();
    const auto named = As<IZFFrame>(loaded);
    EXPECT_EQ(S_OK, named->ZFDataSet(Bstr(ZCK_TEXT("own")).get(), 0, 1));
    EXPECT_EQ(S_OK, named->ZFDataSet(Bstr(ZCK_TEXT("Value")).get(), 0, 2));
    EXPECT_EQ(S_OK, loaded->ZFLoadFromStream(Saved(frame, eZFC_Data).get(), eZFC_Data));
    ExpectNamed(loaded);
    EXPECT_EQ(3, InfoOf(loaded).nDataCount);
    Bstr name;
    EXPECT_EQ(S_OK, named->ZFDataGetByIndex(1, name.Put(), nullptr, nullptr));
    EXPECT_EQ("Value", Utf8FromText(name.view()));
}

TEST_F(FrameStreams, EverythingButPixelsIsReadWithoutTheSection) {
    auto frame = Whole();
    const auto stream = Saved(frame, eZFC_Full);
    const std::vector<uint8_t> block = Block(frame, eZFC_Full);
    frame.Reset();
    // The idle section goes with its pool.
    m_factory.Reset();
    ASSERT_EQ(S_OK, FrameFactoryCreate(ZIidOf<IZFrames_I>(), m_factory.PutVoid()));
    const auto loaded = Empty();
    EXPECT_EQ(S_OK, loaded->ZFLoadFromStream(stream.get(), eZFC_Data_Audio));
    ExpectSound(loaded);
    ExpectNamed(loaded);
    EXPECT_EQ(0, VideoOf(loaded).size);
    EXPECT_EQ(kErrorFileNotFound, Load(loaded, block, eZFC_Full));
}

TEST_F(FrameStreams, OldPixelsGoInAnyCase) {
    const auto other = Frame(Record(eZFCC_UYVY, 32, 16));
    const auto loaded = Frame(Record(eZFCC_UYVY, 32, 16));
    // A stream without pixels.
    EXPECT_EQ(S_OK, loaded->ZFLoadFromStream(Saved(Whole(), eZFC_Audio).get(), eZFC_VideoRef_Audio));
    EXPECT_EQ(0, VideoOf(loaded).size);
    EXPECT_EQ(0, SectionOf(loaded));
    EXPECT_EQ(0, PropsOf(loaded).vidProps.nWidth);
    EXPECT_EQ(400, AudioOf(loaded).size);
    // A section that is not there.
    EXPECT_EQ(S_OK, loaded->ZFLoadFromStream(Saved(other, eZFC_Video).get(), eZFC_Video));
    EXPECT_EQ(1024, VideoOf(loaded).size);
    std::vector<uint8_t> block = Block(other, eZFC_Video);
    std::fill_n(block.begin() + 8, 8, uint8_t{0x7F});
    EXPECT_EQ(kErrorFileNotFound, Load(loaded, block, eZFC_Video));
    EXPECT_EQ(0, VideoOf(loaded).size);
    EXPECT_EQ(32, PropsOf(loaded).vidProps.nWidth);
    // Without the bits nothing of the picture changes.
    EXPECT_EQ(S_OK, loaded->ZFLoadFromStream(Saved(other, eZFC_Video).get(), eZFC_Video));
    EXPECT_EQ(S_OK, Load(loaded, block, eZFC_Audio));
    EXPECT_EQ(1024, VideoOf(loaded).size);
    EXPECT_EQ(32, PropsOf(loaded).vidProps.nWidth);
}

TEST_F(FrameStreams, SoundThatWasNotWrittenLeavesNone) {
    const auto loaded = Whole();
    EXPECT_EQ(S_OK, Load(loaded, Block(loaded, eZFC_Video), eZFC_Full));
    EXPECT_EQ(0, AudioOf(loaded).size);
    EXPECT_EQ(0, PropsOf(loaded).audProps.nChannels);
    EXPECT_EQ(64 * 48 * 2, VideoOf(loaded).size);
}

// A frame's own section is copied before it is let go.
TEST_F(FrameStreams, AFrameLoadsItself) {
    const auto frame = Whole();
    const std::vector<uint8_t> pixels = VideoOf(frame).Copy();
    EXPECT_EQ(S_OK, frame->ZFLoadFromStream(Saved(frame, eZFC_Full).get(), eZFC_Full));
    EXPECT_EQ(pixels, VideoOf(frame).Copy());
    ExpectNamed(frame);
}

// A planted section that is smaller than what the stream says of it.
TEST_F(FrameStreams, SizesEndWithTheSection) {
    const auto other = Frame(Record(eZFCC_UYVY, 32, 16));
    std::vector<uint8_t> block = Block(other, eZFC_Video);
    const auto loaded = Empty();
    block[6] = 1;    // 65536 bytes more
    EXPECT_EQ(E_UNEXPECTED, Load(loaded, block, eZFC_Video));
    EXPECT_EQ(0, VideoOf(loaded).size);
    block[7] = 0xFF;
    EXPECT_EQ(E_UNEXPECTED, Load(loaded, block, eZFC_Video));
    const auto borrower = As<IZFrame_I>(Clone(other.get(), eZFC_Reference));
    EXPECT_EQ(E_UNEXPECTED, Load(borrower, block, eZFC_VideoRef));
    EXPECT_EQ(0, VideoOf(borrower).size);
}

TEST_F(FrameStreams, AFrameThatBorrowsMapsTheSection) {
    const auto source = Frame(Record(eZFCC_UYVY, 64, 48));
    const auto other = Frame(Record(eZFCC_UYVY, 32, 16));
    *VideoOf(other).data() = 0x5A;
    const auto borrower = As<IZFrame_I>(Clone(source.get(), eZFC_Reference));
    EXPECT_EQ(S_OK, borrower->ZFLoadFromStream(Saved(other, eZFC_Reference).get(), eZFC_Reference));
    EXPECT_EQ(SectionOf(other), SectionOf(borrower));
    EXPECT_NE(VideoOf(other).address, VideoOf(borrower).address);
    EXPECT_EQ(0x5A, *VideoOf(borrower).data());
    *VideoOf(other).data() = 0x5B;
    EXPECT_EQ(0x5B, *VideoOf(borrower).data());
    // A clone of it keeps the mapping, whatever becomes of the borrower.
    const auto clone = Clone(borrower.get(), eZFC_Reference);
    // The second time there is a section to let go, and the source goes with it: the pixels are copied.
    EXPECT_EQ(S_OK, borrower->ZFLoadFromStream(Saved(other, eZFC_Reference).get(), eZFC_Reference));
    EXPECT_NE(SectionOf(other), SectionOf(borrower));
    EXPECT_EQ(VideoOf(other).Copy(), VideoOf(borrower).Copy());
    EXPECT_EQ(VideoOf(other).Copy(), VideoOf(clone).Copy());
}

TEST_F(FrameStreams, BothBitsMapAndOneOfThemCopies) {
    const auto source = Frame(Record(eZFCC_UYVY, 64, 48));
    const auto other = Frame(Record(eZFCC_UYVY, 32, 16));
    const std::vector<uint8_t> block = Block(other, eZFC_Video);
    const auto both = As<IZFrame_I>(Clone(source.get(), eZFC_Reference));
    EXPECT_EQ(S_OK, Load(both, block, eZFC_Video | eZFC_VideoRef));
    EXPECT_EQ(SectionOf(other), SectionOf(both));
    const auto copy = As<IZFrame_I>(Clone(source.get(), eZFC_Reference));
    EXPECT_EQ(S_OK, Load(copy, block, eZFC_Video));
    EXPECT_NE(SectionOf(other), SectionOf(copy));
    EXPECT_EQ(VideoOf(other).Copy(), VideoOf(copy).Copy());
}

TEST_F(FrameStreams, ReferencesOutliveTheReload) {
    const auto frame = Frame(Record(eZFCC_UYVY, 64, 48));
    const std::vector<uint8_t> pixels = VideoOf(frame).Copy();
    const auto clone = Clone(frame.get(), eZFC_Reference);
    const auto other = Frame(Record(eZFCC_UYVY, 64, 48));
    std::memset(VideoOf(other).data(), 0xEE, 64 * 48 * 2);
    for (int i = 0; i < 3; ++i) EXPECT_EQ(S_OK, frame->ZFLoadFromStream(Saved(other, eZFC_Video).get(), eZFC_Video));
    EXPECT_EQ(pixels, VideoOf(clone).Copy());
    EXPECT_EQ(VideoOf(other).Copy(), VideoOf(frame).Copy());
}

// No offset crosses: the reader has the section from its start, under the record of the cut.
TEST_F(FrameStreams, ACutFrameLosesItsOffset) {
    const auto frame = Frame(Record(eZFCC_UYVY, 64, 48));
    tagRECT rect = {};
    rect.left = 8;
    rect.top = 10;
    rect.right = 40;
    rect.bottom = 40;
    ComPtr<IZFrame> cut;
    ASSERT_EQ(S_OK, frame->FrameCut(0, &rect, cut.Put()));
    const auto loaded = Empty();
    EXPECT_EQ(S_OK, loaded->ZFLoadFromStream(Saved(As<IZFrame_I>(cut), eZFC_Video).get(), eZFC_Video));
    EXPECT_EQ(32, PropsOf(loaded).vidProps.nWidth);
    EXPECT_EQ(VideoOf(cut).size, VideoOf(loaded).size);
    EXPECT_EQ(PatternByte(0), *VideoOf(loaded).data());
    EXPECT_NE(PatternByte(0), *VideoOf(cut).data());
}

// The caller's memory has no section, so no pixels are read.
TEST_F(FrameStreams, FramesOverForeignMemoryHaveNoSection) {
    Z_VID_PROPS props = Record(eZFCC_UYVY, 16, 8);
    const std::vector<uint8_t> pixels = Pattern(256);
    ComPtr<IZFFrame> wrapped;
    ASSERT_EQ(S_OK, As<IZFFactory>(m_factory)->ZFFrameWrap(&props, 256, AddressIn(pixels.data()), nullptr, wrapped.Put()));
    const std::vector<uint8_t> block = Block(As<IZFrame_I>(wrapped), eZFC_Video);
    const uint8_t head[16] = {1, 0, 0, 0, 0, 1};    // the size stays, the section's number is 0
    EXPECT_EQ(0, std::memcmp(block.data(), head, sizeof(head)));
    const auto loaded = Frame(props);
    EXPECT_EQ(S_OK, Load(loaded, block, eZFC_Video));
    EXPECT_EQ(0, VideoOf(loaded).size);
}

TEST_F(FrameStreams, AFrameWithoutAFactoryTakesNoPixels) {
    const auto frame = Frame(Record(eZFCC_UYVY, 16, 8));
    const std::vector<uint8_t> block = Block(frame, eZFC_Full);
    ComPtr<CCoZFrame2> alone;
    ASSERT_EQ(S_OK, CCoZFrame2::Create(nullptr, alone));
    EXPECT_EQ(E_UNEXPECTED, alone->ZFLoadAll(static_cast<int32_t>(block.size()), AddressIn(block.data()), eZFC_Full));
    EXPECT_EQ(S_OK, alone->ZFLoadAll(static_cast<int32_t>(block.size()), AddressIn(block.data()), eZFC_Data_Audio));
}

TEST_F(FrameStreams, Arguments) {
    const auto frame = Whole();
    const auto wide = As<IZFFrame>(frame);
    int32_t size = 7;
    int64_t block = 7;
    EXPECT_EQ(E_INVALIDARG, frame->ZFSaveToStream(nullptr, eZFC_Full));
    EXPECT_EQ(E_INVALIDARG, frame->ZFAddToStream(nullptr, eZFC_Full));
    EXPECT_EQ(E_INVALIDARG, frame->ZFLoadFromStream(nullptr, eZFC_Full));
    EXPECT_EQ(E_NOINTERFACE, frame->ZFAddToStream(m_factory.get(), eZFC_Full));
    EXPECT_EQ(E_NOINTERFACE, frame->ZFLoadFromStream(m_factory.get(), eZFC_Full));
    EXPECT_EQ(E_INVALIDARG, wide->ZFSaveAll(nullptr, &block, eZFC_Full));
    EXPECT_EQ(E_INVALIDARG, wide->ZFSaveAll(&size, nullptr, eZFC_Full));
    EXPECT_EQ(E_INVALIDARG, wide->ZFLoadAll(1, 0, eZFC_Full));
    EXPECT_EQ(E_INVALIDARG, wide->ZFLoadAll(-1, AddressIn(&block), eZFC_Full));
    EXPECT_EQ(kErrorHandleEof, wide->ZFLoadAll(0, 0, eZFC_Full));
    EXPECT_EQ(400, AudioOf(frame).size);
}

TEST_F(FrameStreams, AFailureOfTheStreamGivesNoStream) {
    const auto frame = Whole();
    ByteStream stream;
    stream.object->m_status = E_ACCESSDENIED;
    EXPECT_EQ(E_ACCESSDENIED, frame->ZFAddToStream(stream.stream.get(), eZFC_Full));
    EXPECT_EQ(E_ACCESSDENIED, frame->ZFLoadFromStream(stream.stream.get(), eZFC_Full));
    ExpectSound(frame);
}

// A stream that calls the frame back finds no lock held.
class CallingStream final : public CByteStream {
public:
    HRESULT Z_STDCALL Write(const void *pv, ULONG cb, ULONG *pcbWritten) override {
        Call();
        return CByteStream::Write(pv, cb, pcbWritten);
    }
    HRESULT Z_STDCALL Read(void *pv, ULONG cb, ULONG *pcbRead) override {
        Call();
        return CByteStream::Read(pv, cb, pcbRead);
    }
    IZFrame_I *m_frame = nullptr;

private:
    void Call() {
        EXPECT_EQ(S_OK, m_frame->FrameTimeSet(nullptr));
        EXPECT_EQ(S_OK, m_frame->FrameDataSet(1, 0, 1));
    }
};

TEST_F(FrameStreams, StreamsAreCalledWithoutALock) {
    const auto frame = Whole();
    ComPtr<IStream> stream;
    ASSERT_EQ(S_OK, CreateObject<CallingStream>(nullptr, IID_IStream, stream.PutVoid()));
    auto *object = static_cast<CallingStream *>(stream.get());
    object->m_frame = frame.get();
    EXPECT_EQ(S_OK, frame->ZFAddToStream(stream.get(), eZFC_Full));
    object->m_position = 0;
    EXPECT_EQ(S_OK, frame->ZFLoadFromStream(stream.get(), eZFC_Full));
    ExpectNamed(frame);
}

}    // namespace
}    // namespace zck::test
