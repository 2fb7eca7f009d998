// One object, three views: queries, counting, and that every view reaches the same state.
#include <cstring>

#include "frames/views/frame_shell.h"
#include "frames/views/sample_buffer.h"
#include "platform/process.h"
#include "tests/frames/object/frame_fixture.h"

namespace zck::test {
namespace {

class FrameViews : public FrameTest {};

TEST_F(FrameViews, QueriesAreSymmetricAndTransitive) {
    const auto frame = Frame(Record(eZFCC_ARGB32, 16, -8));
    const IID *all[] = {&ZIidOf<IUnknown>(),   &ZIidOf<IZFrame>(),     &ZIidOf<IZFrame_I>(),   &ZIidOf<IZFFrame>(),
                        &ZIidOf<INSSBuffer>(), &ZIidOf<INSSBuffer2>(), &ZIidOf<INSSBuffer3>(), &ZIidOf<IZFrameShell>()};
    ComPtr<IUnknown> identity;
    ASSERT_EQ(S_OK, frame->QueryInterface(IID_IUnknown, identity.PutVoid()));
    for (const IID *from : all) {
        ComPtr<IUnknown> a;
        ASSERT_EQ(S_OK, frame->QueryInterface(*from, a.PutVoid()));
        for (const IID *to : all) {
            ComPtr<IUnknown> b;
            ASSERT_EQ(S_OK, a->QueryInterface(*to, b.PutVoid()));
            ComPtr<IUnknown> back;
            ASSERT_EQ(S_OK, b->QueryInterface(*from, back.PutVoid()));
            EXPECT_EQ(a.get(), back.get());
            ASSERT_EQ(S_OK, b->QueryInterface(IID_IUnknown, back.PutVoid()));
            EXPECT_EQ(identity.get(), back.get());
        }
    }
    void *none = &none;
    EXPECT_EQ(E_NOINTERFACE, frame->QueryInterface(ZIidOf<IZFrames>(), &none));
    EXPECT_EQ(nullptr, none);
    EXPECT_EQ(E_POINTER, frame->QueryInterface(IID_IUnknown, nullptr));
}

TEST_F(FrameViews, ReleaseDestroysAtTheLastReference) {
    IZFrame *frame = nullptr;
    ASSERT_EQ(S_OK, m_factory->FrameCreate(64, nullptr, &frame));
    EXPECT_EQ(m_objects + 2, ModuleCount::Get());
    EXPECT_EQ(2U, frame->AddRef());
    EXPECT_EQ(S_FALSE, frame->FrameRelease());
    EXPECT_EQ(1U, frame->Release());
    EXPECT_EQ(0U, frame->Release());
    EXPECT_EQ(m_objects + 1, ModuleCount::Get());
}

TEST_F(FrameViews, FramesOutliveTheirFactory) {
    const auto frame = Frame(Record(eZFCC_ARGB32, 16, -8));
    m_factory.Reset();
    EXPECT_EQ(Pattern(16 * 8 * 4), VideoOf(frame).Copy());
    const auto clone = Clone(frame.get(), eZFC_Full);
    EXPECT_EQ(Pattern(16 * 8 * 4), VideoOf(clone).Copy());
}

TEST_F(FrameViews, DescriptionIsSharedByTheViews) {
    const auto frame = SoundFrame(Record(eZFCC_UYVY, 64, 48));
    const auto tessilu = As<IZFFrame>(frame);
    Z_AV_PROPS a = PropsOf(frame);
    Z_AV_PROPS b = {};
    int32_t samples = 0;
    ASSERT_EQ(S_OK, tessilu->ZFAVPropsGet(&b, &samples));
    EXPECT_EQ(0, std::memcmp(&a, &b, sizeof(a)));
    EXPECT_EQ(100, samples);
    EXPECT_EQ(S_OK, tessilu->ZFAVPropsGet(nullptr, &samples));
    EXPECT_EQ(S_OK, tessilu->ZFAVPropsGet(&b, nullptr));
    EXPECT_EQ(E_POINTER, tessilu->ZFAVPropsGet(nullptr, nullptr));

    Bytes x = VideoOf(frame);
    Bytes y;
    ASSERT_EQ(S_OK, tessilu->ZFVideoGetBytes(&y.size, &y.address));
    EXPECT_EQ(x.size, y.size);
    EXPECT_EQ(x.address, y.address);
    x = AudioOf(frame);
    ASSERT_EQ(S_OK, tessilu->ZFAudioGetBytes(&y.size, &y.address));
    EXPECT_EQ(400, y.size);
    EXPECT_EQ(x.address, y.address);
    EXPECT_EQ(S_OK, tessilu->ZFVideoGetBytes(nullptr, nullptr));
    EXPECT_EQ(S_OK, tessilu->ZFAudioGetBytes(nullptr, nullptr));
    EXPECT_EQ(S_OK, tessilu->ZFAsyncWait());
}

TEST_F(FrameViews, NoSamplesWithoutAValidAudioRecord) {
    const auto frame = SoundFrame(Record(eZFCC_UYVY, 64, 48));
    Z_AV_PROPS props = PropsOf(frame);
    props.audProps.nChannels = 0;
    ASSERT_EQ(S_OK, frame->FrameAVPropsSet(&props));
    int32_t samples = -1;
    ASSERT_EQ(S_OK, As<IZFFrame>(frame)->ZFAVPropsGet(nullptr, &samples));
    EXPECT_EQ(0, samples);
}

TEST_F(FrameViews, DescriptionIsTakenAsItStands) {
    const auto frame = Frame(Record(eZFCC_ARGB32, 16, -8));
    EXPECT_EQ(E_POINTER, frame->FrameAVPropsGet(nullptr));
    Z_AV_PROPS props = {};
    props.vidProps.nWidth = 100000;
    props.vidProps.nHeight = 100000;
    props.vidProps.nRowBytes = 400000;
    props.vidProps.fccType = eZFCC_ARGB32;
    EXPECT_EQ(S_OK, frame->FrameAVPropsSet(&props));
    EXPECT_EQ(100000, PropsOf(frame).vidProps.nWidth);
    EXPECT_EQ(512, VideoOf(frame).size);

    // Only a standard format without row bytes is completed.
    props.vidProps = {};
    props.vidProps.eVideoFormat = eZVF_HD1080_50i;
    props.vidProps.fccType = eZFCC_RGB32;
    EXPECT_EQ(S_OK, frame->FrameAVPropsSet(&props));
    EXPECT_EQ(-1080, PropsOf(frame).vidProps.nHeight);
    EXPECT_EQ(7680, PropsOf(frame).vidProps.nRowBytes);

    EXPECT_EQ(S_OK, frame->FrameAVPropsSet(nullptr));
    const Z_AV_PROPS zero = {};
    const Z_AV_PROPS now = PropsOf(frame);
    EXPECT_EQ(0, std::memcmp(&zero, &now, sizeof(now)));
}

TEST_F(FrameViews, TimeAndFlags) {
    const auto frame = Frame(Record(eZFCC_ARGB32, 16, -8));
    const auto tessilu = As<IZFFrame>(frame);
    Z_TIME time = {};
    time.rtStartTime = 7;
    time.eFFlags = eZFF_Break_Last;
    EXPECT_EQ(S_OK, frame->FrameTimeSet(&time));
    Z_TIME read = {};
    EXPECT_EQ(S_OK, tessilu->ZFTimeGet(&read));
    EXPECT_EQ(7, read.rtStartTime);
    EXPECT_EQ(E_POINTER, frame->FrameTimeGet(nullptr));
    EXPECT_EQ(E_POINTER, tessilu->ZFTimeGet(nullptr));
    EXPECT_EQ(E_INVALIDARG, tessilu->ZFTimeSet(nullptr));

    int32_t result = -1;
    EXPECT_EQ(S_OK, tessilu->ZFFlagsTest(eZFF_Last, &result));
    EXPECT_EQ(2, result);
    EXPECT_EQ(S_FALSE, tessilu->ZFFlagsTest(eZFF_Live, &result));
    EXPECT_EQ(0, result);
    EXPECT_EQ(S_OK, tessilu->ZFFlagsTest(eZFF_Break, nullptr));

    time.rtStartTime = 9;
    EXPECT_EQ(S_OK, tessilu->ZFTimeSet(&time));
    EXPECT_EQ(S_OK, frame->FrameTimeGet(&read));
    EXPECT_EQ(9, read.rtStartTime);
    EXPECT_EQ(S_OK, frame->FrameTimeSet(nullptr));
    EXPECT_EQ(S_OK, frame->FrameTimeGet(&read));
    EXPECT_EQ(0, read.rtStartTime);
    EXPECT_EQ(0, static_cast<int32_t>(read.eFFlags));
}

TEST_F(FrameViews, EverythingAtOneMoment) {
    const auto frame = SoundFrame(Record(eZFCC_UYVY, 64, 48));
    Z_TIME time = {};
    Z_AV_PROPS props = {};
    int32_t video = 0;
    int32_t audio = 0;
    EXPECT_EQ(S_OK, frame->FrameInfoGet(&time, &props, &video, &audio));
    EXPECT_EQ(1234567, time.rtStartTime);
    EXPECT_EQ(64 * 48 * 2, video);
    EXPECT_EQ(400, audio);
    EXPECT_EQ(S_OK, frame->FrameInfoGet(nullptr, nullptr, nullptr, nullptr));

    int64_t videoAt = 0;
    int64_t audioAt = 0;
    EXPECT_EQ(S_OK, frame->FrameInfoPtrGet(&time, &props, &audio, &audioAt, &video, &videoAt));
    EXPECT_EQ(VideoOf(frame).address, videoAt);
    EXPECT_EQ(AudioOf(frame).address, audioAt);
    EXPECT_EQ(S_OK, frame->FrameInfoPtrGet(nullptr, nullptr, nullptr, nullptr, nullptr, nullptr));

    ZF_INFO info = {};
    const auto tessilu = As<IZFFrame>(frame);
    EXPECT_EQ(E_POINTER, tessilu->ZFInfoGet(nullptr));
    const int32_t eight[2] = {1, 2};
    EXPECT_EQ(S_OK, frame->FrameDataSet(0x41414141, 8, AddressIn(eight)));
    EXPECT_EQ(S_OK, tessilu->ZFObjectSet(Bstr(ZCK_TEXT("o")).get(), frame.get()));
    EXPECT_EQ(S_OK, tessilu->ZFInfoGet(&info));
    EXPECT_EQ(S_OK, tessilu->ZFObjectSet(Bstr(ZCK_TEXT("o")).get(), nullptr));    // else the frame would hold itself
    int64_t id = 0;
    EXPECT_EQ(S_OK, frame->FrameBufferIdGet(&id));
    EXPECT_NE(0, id);
    EXPECT_EQ(id, info.llSectionId);
    EXPECT_EQ(1234567, info.time.rtStartTime);
    EXPECT_EQ(64, info.avProps.vidProps.nWidth);
    EXPECT_EQ(400, info.cbAudio);
    EXPECT_EQ(64 * 48 * 2, info.cbVideo);
    EXPECT_EQ(videoAt, info.pbVideo);
    EXPECT_EQ(audioAt, info.pbAudio);
    EXPECT_EQ(100, info.nAudioSamples);
    EXPECT_EQ(CurrentProcessId(), info.nProcessId);
    EXPECT_EQ(1, info.nDataCount);
    EXPECT_EQ(1, info.nObjectCount);
    EXPECT_EQ(0, info.nTextCount);
}

TEST_F(FrameViews, ProcessAndSection) {
    const auto frame = Frame(Record(eZFCC_UYVY, 64, 48));
    uint32_t process = 0;
    EXPECT_EQ(S_OK, frame->FrameProcessIdGet(&process));
    EXPECT_EQ(CurrentProcessId(), process);
    EXPECT_EQ(E_POINTER, frame->FrameProcessIdGet(nullptr));
    EXPECT_EQ(E_POINTER, As<IZFFrame>(frame)->ZFProcessIdGet(nullptr));
    EXPECT_EQ(E_POINTER, frame->FrameBufferIdGet(nullptr));
    EXPECT_EQ(E_POINTER, frame->FrameVideoOffsetGet(nullptr));

    ComPtr<IZFrame> empty;
    ASSERT_EQ(S_OK, m_factory->FrameCreate(0, nullptr, empty.Put()));
    int64_t id = 5;
    EXPECT_EQ(kErrorEmpty, As<IZFrame_I>(empty)->FrameBufferIdGet(&id));
    EXPECT_EQ(0, id);
    EXPECT_EQ(0, VideoOf(empty).size);
    EXPECT_EQ(0, VideoOf(empty).address);
    EXPECT_EQ(0, AudioOf(empty).size);
    EXPECT_EQ(0, AudioOf(empty).address);
}

TEST_F(FrameViews, ReferenceClonesNameTheSourcesSection) {
    const auto frame = Frame(Record(eZFCC_UYVY, 64, 48));
    const auto once = Clone(frame.get(), eZFC_Reference);
    const auto twice = Clone(once.get(), eZFC_VideoRef);
    int64_t id = 0;
    int64_t ofClone = 0;
    ASSERT_EQ(S_OK, frame->FrameBufferIdGet(&id));
    EXPECT_EQ(S_OK, As<IZFrame_I>(twice)->FrameBufferIdGet(&ofClone));
    EXPECT_EQ(id, ofClone);
    EXPECT_EQ(S_OK, As<IZFFrame>(twice)->ZFDataGet(nullptr, nullptr, &ofClone));
    EXPECT_EQ(id, ofClone);
}

TEST_F(FrameViews, CopiesForTheCaller) {
    const auto frame = SoundFrame(Record(eZFCC_UYVY, 64, 48));
    int32_t size = 0;
    int64_t block = 0;
    EXPECT_EQ(S_OK, frame->FrameVideoCopyGet(&size, nullptr));
    EXPECT_EQ(64 * 48 * 2, size);
    EXPECT_EQ(S_OK, frame->FrameVideoCopyGet(&size, &block));
    ASSERT_NE(0, block);
    EXPECT_NE(VideoOf(frame).address, block);
    EXPECT_EQ(0, std::memcmp(At<void>(block), VideoOf(frame).data(), static_cast<size_t>(size)));
    CoTaskMemFree(At<void>(block));
    EXPECT_EQ(S_OK, frame->FrameAudioCopyGet(&size, &block));
    EXPECT_EQ(400, size);
    EXPECT_EQ(0, std::memcmp(At<void>(block), AudioOf(frame).data(), static_cast<size_t>(size)));
    CoTaskMemFree(At<void>(block));
    EXPECT_EQ(E_POINTER, frame->FrameAudioCopyGet(nullptr, nullptr));
    EXPECT_EQ(E_POINTER, frame->FrameVideoCopyGet(nullptr, nullptr));

    ComPtr<IZFrame> empty;
    ASSERT_EQ(S_OK, m_factory->FrameCreate(0, nullptr, empty.Put()));
    size = 1;
    block = 1;
    EXPECT_EQ(S_OK, As<IZFrame_I>(empty)->FrameAudioCopyGet(&size, &block));
    EXPECT_EQ(0, size);
    EXPECT_EQ(0, block);
}

TEST_F(FrameViews, AudioReset) {
    const auto frame = SoundFrame(Record(eZFCC_UYVY, 64, 48));
    EXPECT_EQ(E_INVALIDARG, frame->FrameAudioReset(-1, 0));
    EXPECT_EQ(Pattern(400), AudioOf(frame).Copy());

    // From the frame's own audio, shorter and then longer than its block.
    std::vector<uint8_t> tail = Pattern(400);
    tail.erase(tail.begin(), tail.begin() + 100);
    EXPECT_EQ(S_OK, frame->FrameAudioReset(300, AudioOf(frame).address + 100));
    EXPECT_EQ(tail, AudioOf(frame).Copy());

    EXPECT_EQ(S_OK, frame->FrameAudioResetFwd(600, 0));
    EXPECT_EQ(std::vector<uint8_t>(600), AudioOf(frame).Copy());
    const std::vector<uint8_t> sound = Pattern(50);
    EXPECT_EQ(S_OK, frame->FrameAudioReset(50, AddressIn(sound.data())));
    EXPECT_EQ(S_OK, frame->FrameAudioReset(60, 0));
    EXPECT_EQ(std::vector<uint8_t>(60), AudioOf(frame).Copy());

    EXPECT_EQ(S_OK, frame->FrameAudioReset(0, 0));
    EXPECT_EQ(0, AudioOf(frame).size);
    EXPECT_EQ(0, AudioOf(frame).address);
    // The description of the sound stays.
    EXPECT_EQ(2, PropsOf(frame).audProps.nChannels);
}

// Each of them leaves its outputs empty.
TEST_F(FrameViews, OperationsOfRoomsToComeAnswerNotImplemented) {
    const auto frame = Frame(Record(eZFCC_ARGB32, 16, -8));
    const auto tessilu = As<IZFFrame>(frame);
    EXPECT_EQ(E_NOTIMPL, tessilu->ZFPrint(nullptr, 1.0, nullptr, 0, nullptr, 0));
}

class SampleBuffer : public FrameTest {};

TEST_F(SampleBuffer, LengthFollowsThePictureUntilItIsSet) {
    const auto frame = Frame(Record(eZFCC_ARGB32, 16, -8));
    const auto sample = As<INSSBuffer3>(frame);
    DWORD length = 0;
    EXPECT_EQ(S_OK, sample->GetLength(&length));
    EXPECT_EQ(512U, length);
    EXPECT_EQ(S_OK, sample->GetMaxLength(&length));
    EXPECT_EQ(512U, length);
    EXPECT_EQ(E_OUTOFMEMORY, sample->SetLength(513));
    EXPECT_EQ(E_OUTOFMEMORY, sample->SetLength(0xFFFFFFFF));
    EXPECT_EQ(S_OK, sample->SetLength(512));
    EXPECT_EQ(S_OK, sample->SetLength(100));
    EXPECT_EQ(S_OK, sample->GetLength(&length));
    EXPECT_EQ(100U, length);
    EXPECT_EQ(S_OK, sample->SetLength(0));
    EXPECT_EQ(S_OK, sample->GetLength(&length));
    EXPECT_EQ(0U, length);
    EXPECT_EQ(S_OK, sample->GetMaxLength(&length));
    EXPECT_EQ(512U, length);
    EXPECT_EQ(E_POINTER, sample->GetLength(nullptr));
    EXPECT_EQ(E_POINTER, sample->GetMaxLength(nullptr));
}

TEST_F(SampleBuffer, BufferIsThePicture) {
    const auto frame = Frame(Record(eZFCC_ARGB32, 16, -8));
    const auto sample = As<INSSBuffer3>(frame);
    BYTE *bytes = nullptr;
    DWORD length = 0;
    EXPECT_EQ(S_OK, sample->GetBuffer(&bytes));
    EXPECT_EQ(VideoOf(frame).data(), bytes);
    EXPECT_EQ(S_OK, sample->SetLength(7));
    bytes = nullptr;
    EXPECT_EQ(S_OK, sample->GetBufferAndLength(&bytes, &length));
    EXPECT_EQ(VideoOf(frame).data(), bytes);
    EXPECT_EQ(7U, length);
    EXPECT_EQ(S_OK, sample->GetBufferAndLength(nullptr, nullptr));
    EXPECT_EQ(E_POINTER, sample->GetBuffer(nullptr));
}

TEST_F(SampleBuffer, SamplePropertiesAreAncillaryData) {
    const auto frame = Frame(Record(eZFCC_ARGB32, 16, -8));
    const auto sample = As<INSSBuffer3>(frame);
    BYTE read[8] = {};
    EXPECT_EQ(kErrorFileNotFound, sample->GetSampleProperties(8, read));
    BYTE written[5] = {1, 2, 3, 4, 5};
    EXPECT_EQ(S_OK, sample->SetSampleProperties(5, written));
    EXPECT_EQ(E_OUTOFMEMORY, sample->GetSampleProperties(4, read));
    EXPECT_EQ(0, read[0]);
    EXPECT_EQ(S_OK, sample->GetSampleProperties(8, read));
    EXPECT_EQ(0, std::memcmp(read, written, 5));
    EXPECT_EQ(0, read[5]);
    EXPECT_EQ(E_POINTER, sample->GetSampleProperties(8, nullptr));
    EXPECT_EQ(E_POINTER, sample->SetSampleProperties(8, nullptr));
    int32_t size = 0;
    EXPECT_EQ(S_OK, frame->FrameDataGet(0x3253534E, &size, nullptr));    // "NSS2"
    EXPECT_EQ(5, size);
}

TEST_F(SampleBuffer, Properties) {
    const auto frame = Frame(Record(eZFCC_ARGB32, 16, -8));
    const auto sample = As<INSSBuffer3>(frame);
    const GUID id = {0xC87CEAAF, 0x75BE, 0x4BC4, {0x84, 0xEB, 0xAC, 0x27, 0x98, 0x50, 0x76, 0x72}};
    DWORD size = 8;
    BYTE read[8] = {};
    EXPECT_EQ(kErrorFileNotFound, sample->GetProperty(id, read, &size));
    BYTE written[6] = {6, 5, 4, 3, 2, 1};
    EXPECT_EQ(S_OK, sample->SetProperty(id, written, 6));
    EXPECT_EQ(S_OK, sample->GetProperty(id, nullptr, &size));
    EXPECT_EQ(6U, size);
    size = 5;
    EXPECT_EQ(E_OUTOFMEMORY, sample->GetProperty(id, read, &size));
    size = 8;
    EXPECT_EQ(S_OK, sample->GetProperty(id, read, &size));
    EXPECT_EQ(6U, size);
    EXPECT_EQ(0, std::memcmp(read, written, 6));
    EXPECT_EQ(E_POINTER, sample->GetProperty(id, read, nullptr));
    EXPECT_EQ(E_POINTER, sample->SetProperty(id, nullptr, 3));
    EXPECT_EQ(S_OK,
              As<IZFFrame>(frame)->ZFDataGet(Bstr(ZCK_TEXT("{C87CEAAF-75BE-4BC4-84EB-AC2798507672}")).get(), nullptr, nullptr));
}

}    // namespace
}    // namespace zck::test
