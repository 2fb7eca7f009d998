// The operations of the frame's views on state, time, pixels and sound.
#include <atomic>
#include <cstring>
#include <random>
#include <thread>

#include "platform/process.h"
#include "tests/conformance/frame_fixture.h"

namespace conformance {
namespace {

constexpr HRESULT kBadMedia = static_cast<HRESULT>(0x80040248);
constexpr HRESULT kEmpty = static_cast<HRESULT>(0x800710D2);
constexpr HRESULT kNotFound = static_cast<HRESULT>(0x80070002);

class Views : public Frames {
protected:
    void SetUp() override {
        Frames::SetUp();
        m_frame = MakeRich(Picture(eZFCC_UYVY, 16, 8));
        m_inner = QueryFor<IZFrame_I>(m_frame.get());
        m_own = QueryFor<IZFFrame>(m_frame.get());
        m_sample = QueryFor<INSSBuffer3>(m_frame.get());
        ASSERT_TRUE(m_inner && m_own && m_sample);
    }
    ComPtr<IZFrame> m_frame;
    ComPtr<IZFrame_I> m_inner;
    ComPtr<IZFFrame> m_own;
    ComPtr<INSSBuffer3> m_sample;
};

TEST_F(Views, EveryViewLeadsToEveryOther) {
    const IID ids[] = {ZIidOf<IUnknown>(), ZIidOf<IZFrame>(), ZIidOf<IZFrame_I>(), ZIidOf<IZFFrame>(), ZIidOf<INSSBuffer3>()};
    for (const IID &from : ids)
        for (const IID &to : ids) {
            IUnknown *first = nullptr, *second = nullptr, *direct = nullptr;
            ASSERT_EQ(m_frame->QueryInterface(from, reinterpret_cast<void **>(&first)), S_OK);
            ASSERT_EQ(first->QueryInterface(to, reinterpret_cast<void **>(&second)), S_OK);
            ASSERT_EQ(m_frame->QueryInterface(to, reinterpret_cast<void **>(&direct)), S_OK);
            EXPECT_EQ(second, direct);
            first->Release();
            second->Release();
            direct->Release();
        }
    void *none = &none;
    EXPECT_EQ(m_frame->QueryInterface(ZIidOf<IZFrames>(), &none), E_NOINTERFACE);
    EXPECT_EQ(none, nullptr);
    EXPECT_EQ(m_frame->QueryInterface(ZIidOf<IZFrame>(), nullptr), E_POINTER);
}

TEST_F(Views, RawDescription) {
    EXPECT_EQ(m_frame->FrameAVPropsGet(nullptr), E_POINTER);
    Z_AV_PROPS p = {};
    p.vidProps.eVideoFormat = eZVF_HD1080_50i;
    p.vidProps.nRowBytes = 5;
    EXPECT_EQ(m_frame->FrameAVPropsSet(&p), S_OK);    // row bytes are there, so it stays as it is
    EXPECT_EQ(Words(Props(m_frame).vidProps), Words(p.vidProps));
    p.vidProps.nRowBytes = 0;
    EXPECT_EQ(m_frame->FrameAVPropsSet(&p), S_OK);
    EXPECT_EQ(Words(Props(m_frame).vidProps), Words(FromFormat(eZVF_HD1080_50i, eZFCC_HDYC)));
    EXPECT_EQ(p.vidProps.nWidth, 0);
    p.vidProps = {};
    p.vidProps.nWidth = 77;    // no format: nothing is completed
    EXPECT_EQ(m_frame->FrameAVPropsSet(&p), S_OK);
    EXPECT_EQ(Words(Props(m_frame).vidProps), Words(p.vidProps));
    EXPECT_EQ(m_frame->FrameAVPropsSet(nullptr), S_OK);
    const Z_AV_PROPS zero = {}, seen = Props(m_frame);
    EXPECT_EQ(std::memcmp(&seen, &zero, sizeof zero), 0);
    EXPECT_EQ(Video(m_frame).size, 256);    // the pixels do not go
}

TEST_F(Views, TimeInBothFamilies) {
    EXPECT_EQ(m_frame->FrameTimeGet(nullptr), E_POINTER);
    EXPECT_EQ(m_own->ZFTimeGet(nullptr), E_POINTER);
    EXPECT_EQ(m_own->ZFTimeSet(nullptr), E_INVALIDARG);
    EXPECT_EQ(Time(m_frame).tcFrame.nSeconds, 7);
    Z_TIME t = {};
    t.rtStartTime = -5;
    t.tcFrame.nExtraCounter = 11;
    EXPECT_EQ(m_own->ZFTimeSet(&t), S_OK);
    EXPECT_EQ(Time(m_frame).rtStartTime, -5);
    EXPECT_EQ(m_own->ZFTimeGet(&t), S_OK);
    EXPECT_EQ(t.tcFrame.nExtraCounter, 11);
    EXPECT_EQ(m_frame->FrameTimeSet(nullptr), S_OK);
    EXPECT_EQ(m_own->ZFTimeGet(&t), S_OK);
    EXPECT_EQ(t.rtStartTime, 0);
    EXPECT_EQ(t.tcFrame.nExtraCounter, 0);
}

TEST_F(Views, FlagsUnderAMask) {
    int32_t result = -1;
    EXPECT_EQ(m_own->ZFFlagsTest(eZFF_Break, &result), S_OK);
    EXPECT_EQ(result, 1);
    EXPECT_EQ(m_own->ZFFlagsTest(eZFF_Type_Mask, &result), S_OK);
    EXPECT_EQ(result, eZFF_BI);
    EXPECT_EQ(m_own->ZFFlagsTest(eZFF_Last, &result), S_FALSE);
    EXPECT_EQ(result, 0);
    EXPECT_EQ(m_own->ZFFlagsTest(eZFF_Net_Last, &result), S_OK);
    EXPECT_EQ(result, eZFF_Net);
    EXPECT_EQ(m_own->ZFFlagsTest(eZFF_Last, nullptr), S_FALSE);
}

TEST_F(Views, BytesWithMissingOutputs) {
    int32_t size = -1;
    int64_t at = -1;
    EXPECT_EQ(m_frame->FrameVideoGetBytes(nullptr, nullptr), S_OK);
    EXPECT_EQ(m_frame->FrameAudioGetBytes(nullptr, nullptr), S_OK);
    EXPECT_EQ(m_frame->FrameVideoGetBytes(&size, nullptr), S_OK);
    EXPECT_EQ(size, 256);
    EXPECT_EQ(m_frame->FrameAudioGetBytes(nullptr, &at), S_OK);
    EXPECT_EQ(at, Audio(m_frame).address);
    EXPECT_EQ(m_own->ZFVideoGetBytes(&size, &at), S_OK);
    EXPECT_EQ(at, Video(m_frame).address);
    EXPECT_EQ(m_own->ZFAudioGetBytes(&size, &at), S_OK);
    EXPECT_EQ(size, 400);
    EXPECT_EQ(at, Audio(m_frame).address);
    EXPECT_EQ(m_own->ZFAsyncWait(), S_OK);
}

TEST_F(Views, ProcessAndSection) {
    uint32_t id = 0;
    EXPECT_EQ(m_inner->FrameProcessIdGet(&id), S_OK);
    EXPECT_EQ(id, zck::CurrentProcessId());
    id = 0;
    EXPECT_EQ(m_own->ZFProcessIdGet(&id), S_OK);
    EXPECT_EQ(id, zck::CurrentProcessId());
    EXPECT_EQ(m_inner->FrameProcessIdGet(nullptr), E_POINTER);
    EXPECT_EQ(m_own->ZFProcessIdGet(nullptr), E_POINTER);

    int64_t section = 0, other = 0;
    ASSERT_EQ(m_inner->FrameBufferIdGet(&section), S_OK);
    EXPECT_NE(section, 0);
    int32_t size = -1;
    EXPECT_EQ(m_own->ZFDataGet(nullptr, &size, &other), S_OK);    // no name: the section
    EXPECT_EQ(other, section);

    Bytes block(256);
    const Z_VID_PROPS p = Picture(eZFCC_UYVY, 16, 8);
    EXPECT_EQ(QueryFor<IZFrame_I>(Wrap(p, block.data(), 256).get())->FrameBufferIdGet(&other), kEmpty);
    EXPECT_EQ(QueryFor<IZFrame_I>(Wrap(p, block.data(), 256, PlainObject().get()).get())->FrameBufferIdGet(&other), kEmpty);
    other = 0;
    EXPECT_EQ(QueryFor<IZFrame_I>(Wrap(p, block.data(), 256, m_frame.get()).get())->FrameBufferIdGet(&other), S_OK);
    EXPECT_EQ(other, section);    // the keeper is asked
    ComPtr<IZFrame_I> empty;
    ASSERT_EQ(m_factory->FrameAlloc(0, 0, nullptr, empty.Put()), S_OK);
    EXPECT_EQ(empty->FrameBufferIdGet(&other), kEmpty);
}

TEST_F(Views, CopiesOfPixelsAndSound) {
    int32_t size = -1;
    int64_t at = -1;
    ASSERT_EQ(m_inner->FrameVideoCopyGet(&size, &at), S_OK);
    EXPECT_EQ(size, 256);
    EXPECT_NE(at, Video(m_frame).address);
    EXPECT_EQ(std::memcmp(PointerOf(at), Video(m_frame).data(), 256), 0);
    CoTaskMemFree(PointerOf(at));
    ASSERT_EQ(m_inner->FrameAudioCopyGet(&size, &at), S_OK);
    EXPECT_EQ(size, 400);
    EXPECT_EQ(std::memcmp(PointerOf(at), Audio(m_frame).data(), 400), 0);
    CoTaskMemFree(PointerOf(at));
    size = -1;
    EXPECT_EQ(m_inner->FrameVideoCopyGet(&size, nullptr), S_OK);
    EXPECT_EQ(size, 256);
    EXPECT_EQ(m_inner->FrameAudioCopyGet(&size, nullptr), S_OK);
    EXPECT_EQ(size, 400);
    ComPtr<IZFrame_I> empty;
    ASSERT_EQ(m_factory->FrameAlloc(0, 0, nullptr, empty.Put()), S_OK);
    size = 5;
    at = 5;
    EXPECT_EQ(empty->FrameAudioCopyGet(&size, &at), S_OK);
    EXPECT_EQ(size, 0);
    EXPECT_EQ(at, 0);
    size = 5;
    at = 5;
    EXPECT_EQ(empty->FrameVideoCopyGet(&size, &at), S_OK);
    EXPECT_EQ(size, 0);
    EXPECT_EQ(at, 0);
}

TEST_F(Views, ResettingTheSound) {
    Bytes sound(37);
    for (size_t i = 0; i < sound.size(); ++i) sound[i] = static_cast<uint8_t>(i + 1);
    EXPECT_EQ(m_inner->FrameAudioReset(37, AddressOf(sound.data())), S_OK);
    EXPECT_EQ(Audio(m_frame).bytes(), sound);
    EXPECT_EQ(m_inner->FrameAudioReset(50, 0), S_OK);
    EXPECT_EQ(Audio(m_frame).bytes(), Bytes(50, 0));
    EXPECT_EQ(m_inner->FrameAudioResetFwd(20, AddressOf(sound.data())), S_OK);
    EXPECT_EQ(Audio(m_frame).bytes(), Bytes(sound.begin(), sound.begin() + 20));
    EXPECT_EQ(m_inner->FrameAudioReset(10, 0), S_OK);    // a block that stays is zeroed too
    EXPECT_EQ(Audio(m_frame).bytes(), Bytes(10, 0));
    EXPECT_EQ(m_inner->FrameAudioReset(-1, AddressOf(sound.data())), E_INVALIDARG);
    EXPECT_EQ(m_inner->FrameAudioReset(0, 0), S_OK);
    EXPECT_EQ(Audio(m_frame).size, 0);
}

TEST_F(Views, InfoAtOneMoment) {
    EXPECT_EQ(m_inner->FrameInfoGet(nullptr, nullptr, nullptr, nullptr), S_OK);
    EXPECT_EQ(m_inner->FrameInfoPtrGet(nullptr, nullptr, nullptr, nullptr, nullptr, nullptr), S_OK);
    Z_TIME time = {};
    Z_AV_PROPS props = {};
    int32_t video = 0, audio = 0;
    int64_t pVideo = 0, pAudio = 0;
    EXPECT_EQ(m_inner->FrameInfoGet(&time, &props, &video, &audio), S_OK);
    EXPECT_EQ(time.rtEndTime, 800000);
    EXPECT_EQ(props.bLocked, 3);
    EXPECT_EQ(video, 256);
    EXPECT_EQ(audio, 400);
    video = audio = 0;
    EXPECT_EQ(m_inner->FrameInfoPtrGet(&time, &props, &audio, &pAudio, &video, &pVideo), S_OK);
    EXPECT_EQ(video, 256);
    EXPECT_EQ(audio, 400);
    EXPECT_EQ(pVideo, Video(m_frame).address);
    EXPECT_EQ(pAudio, Audio(m_frame).address);

    EXPECT_EQ(m_own->ZFInfoGet(nullptr), E_POINTER);
    ZF_INFO info = {};
    ASSERT_EQ(m_own->ZFInfoGet(&info), S_OK);
    int64_t section = 0;
    EXPECT_EQ(m_inner->FrameBufferIdGet(&section), S_OK);
    EXPECT_EQ(info.llSectionId, section);
    EXPECT_EQ(info.time.rtStartTime, 400000);
    EXPECT_EQ(Words(info.avProps.vidProps), Words(Props(m_frame).vidProps));
    EXPECT_EQ(info.avProps.audProps.nChannels, 2);
    EXPECT_EQ(info.cbAudio, 400);
    EXPECT_EQ(info.cbVideo, 256);
    EXPECT_EQ(info.pbVideo, pVideo);
    EXPECT_EQ(info.pbAudio, pAudio);
    EXPECT_EQ(info.nAudioSamples, 100);
    EXPECT_EQ(info.nProcessId, zck::CurrentProcessId());
    EXPECT_EQ(info.nDataCount, 3);
    EXPECT_EQ(info.nObjectCount, 1);
    EXPECT_EQ(info.nTextCount, 1);

    int32_t samples = 0;
    EXPECT_EQ(m_own->ZFAVPropsGet(&props, &samples), S_OK);
    EXPECT_EQ(samples, 100);
    props.audProps.nChannels = 0;    // not strictly valid any more
    EXPECT_EQ(m_frame->FrameAVPropsSet(&props), S_OK);
    EXPECT_EQ(m_own->ZFAVPropsGet(nullptr, &samples), S_OK);
    EXPECT_EQ(samples, 0);

    Bytes block(256);
    ASSERT_EQ(QueryFor<IZFFrame>(Wrap(Picture(eZFCC_UYVY, 16, 8), block.data(), 256).get())->ZFInfoGet(&info), S_OK);
    EXPECT_EQ(info.llSectionId, 0);
}

TEST_F(Views, OffsetIsThatOfTheLastCut) {
    int32_t offset = -1;
    EXPECT_EQ(m_inner->FrameVideoOffsetGet(&offset), S_OK);
    EXPECT_EQ(offset, 0);
    EXPECT_EQ(m_inner->FrameVideoOffsetGet(nullptr), E_POINTER);
}

TEST_F(Views, ReleasingDoesNothing) {
    EXPECT_EQ(m_frame->FrameRelease(), S_FALSE);
    EXPECT_EQ(Video(m_frame).size, 256);
}

TEST_F(Views, SampleBufferLengths) {
    DWORD length = 0;
    BYTE *at = nullptr;
    EXPECT_EQ(m_sample->GetLength(nullptr), E_POINTER);
    EXPECT_EQ(m_sample->GetLength(&length), S_OK);
    EXPECT_EQ(length, 256U);
    EXPECT_EQ(m_sample->SetLength(257), E_OUTOFMEMORY);
    EXPECT_EQ(m_sample->SetLength(0xFFFFFFFF), E_OUTOFMEMORY);
    EXPECT_EQ(m_sample->SetLength(256), S_OK);
    EXPECT_EQ(m_sample->GetLength(&length), S_OK);
    EXPECT_EQ(length, 256U);
    EXPECT_EQ(m_sample->SetLength(0), S_OK);
    EXPECT_EQ(m_sample->GetLength(&length), S_OK);
    EXPECT_EQ(length, 0U);
    EXPECT_EQ(m_sample->SetLength(100), S_OK);
    EXPECT_EQ(m_sample->GetMaxLength(&length), S_OK);
    EXPECT_EQ(length, 256U);
    EXPECT_EQ(m_sample->GetBuffer(&at), S_OK);
    EXPECT_EQ(at, Video(m_frame).data());
    at = nullptr;
    EXPECT_EQ(m_sample->GetBufferAndLength(&at, &length), S_OK);
    EXPECT_EQ(at, Video(m_frame).data());
    EXPECT_EQ(length, 100U);
    EXPECT_EQ(m_sample->GetBufferAndLength(nullptr, &length), S_OK);
    EXPECT_EQ(m_sample->GetBufferAndLength(&at, nullptr), S_OK);
    EXPECT_EQ(m_sample->GetBufferAndLength(nullptr, nullptr), S_OK);
}

TEST_F(Views, SampleProperties) {
    BYTE bytes[8] = {1, 2, 3, 4, 5, 6, 7, 8}, out[8] = {};
    EXPECT_EQ(m_sample->GetSampleProperties(8, out), kNotFound);
    EXPECT_EQ(m_sample->SetSampleProperties(6, bytes), S_OK);
    EXPECT_EQ(m_sample->GetSampleProperties(5, out), E_OUTOFMEMORY);
    EXPECT_EQ(m_sample->GetSampleProperties(8, out), S_OK);
    EXPECT_EQ(std::memcmp(out, bytes, 6), 0);
    EXPECT_EQ(out[6], 0);
    int32_t size = 0;
    int64_t at = 0;
    EXPECT_EQ(m_own->ZFDataGet(TextOf("nss2").get(), &size, &at), S_OK);
    EXPECT_EQ(size, 6);

    const GUID id = {0x12345678, 0x9ABC, 0xDEF0, {1, 2, 3, 4, 5, 6, 7, 8}}, other = {1, 2, 3, {}};
    DWORD need = 0;
    EXPECT_EQ(m_sample->GetProperty(id, nullptr, &need), kNotFound);
    EXPECT_EQ(m_sample->SetProperty(id, bytes, 7), S_OK);
    EXPECT_EQ(m_own->ZFDataGet(TextOf("{12345678-9abc-def0-0102-030405060708}").get(), &size, &at), S_OK);
    EXPECT_EQ(size, 7);
    EXPECT_EQ(m_sample->GetProperty(id, nullptr, &need), S_OK);
    EXPECT_EQ(need, 7U);
    need = 6;
    EXPECT_EQ(m_sample->GetProperty(id, out, &need), E_OUTOFMEMORY);
    need = 8;
    EXPECT_EQ(m_sample->GetProperty(id, out, &need), S_OK);
    EXPECT_EQ(std::memcmp(out, bytes, 7), 0);
    need = 8;
    EXPECT_EQ(m_sample->GetProperty(other, out, &need), kNotFound);
}

TEST_F(Views, CheckedDescriptionCannotStateMoreThanTheBuffer) {
    Z_AV_PROPS p = {};
    p.vidProps = Picture(eZFCC_UYVY, 400, 300);
    ASSERT_EQ(m_own->ZFAVPropsSet(&p, nullptr), S_OK);
    Z_VID_PROPS seen = Props(m_frame).vidProps;
    EXPECT_EQ(seen.nWidth, 16);
    EXPECT_EQ(seen.nHeight, 8);
    EXPECT_EQ(seen.nRowBytes, 32);
    p.vidProps = Picture(eZFCC_UYVY, 10, 5);    // less is possible, and the rows stay those of the buffer
    ASSERT_EQ(m_own->ZFAVPropsSet(&p, nullptr), S_OK);
    seen = Props(m_frame).vidProps;
    EXPECT_EQ(seen.nWidth, 10);
    EXPECT_EQ(seen.nHeight, 5);
    EXPECT_EQ(seen.nRowBytes, 32);
}

TEST_F(Views, CheckedRelabelling) {
    const std::pair<eZFCC, eZFCC> asked[] = {{eZFCC_HDYC, eZFCC_HDYC},    // as wide as the frame's
                                             {eZFCC_YUY2, eZFCC_YUY2},    {eZFCC_RGB32, eZFCC_UYVY},    // another width
                                             {eZFCC_Default, eZFCC_UYVY},                               // none
                                             {eZFCC_NV12, eZFCC_UYVY},    // as wide, but it would need more
                                             {eZFCC_v210, eZFCC_UYVY}};
    for (const auto &[to, becomes] : asked) {
        const ComPtr<IZFrame> frame = Make(Picture(eZFCC_UYVY, 16, 8));
        Z_AV_PROPS p = {};
        p.vidProps = Picture(to, 16, Rgb(to) ? -8 : 8);
        ASSERT_EQ(QueryFor<IZFFrame>(frame.get())->ZFAVPropsSet(&p, nullptr), S_OK) << std::hex << to;
        EXPECT_EQ(Props(frame).vidProps.fccType, becomes) << std::hex << to;
        EXPECT_EQ(Props(frame).vidProps.nHeight, 8) << std::hex << to;
    }
}

TEST_F(Views, CheckedFillsGapsFromTheFrame) {
    Z_VID_PROPS own = Picture(eZFCC_UYVY, 16, 8);
    own.eScaleType = eZST_Crop;
    own.eInterlace = eZI_Field1First;
    own.nAspectX = 4;
    own.nAspectY = 3;
    own.dblRate = 12;
    const ComPtr<IZFrame> frame = Make(own);
    Z_AV_PROPS p = {};
    p.vidProps.fccType = eZFCC_UYVY;
    p.vidProps.nWidth = 12;
    p.vidProps.nHeight = 6;
    p.vidProps.nRowBytes = 24;
    ASSERT_EQ(QueryFor<IZFFrame>(frame.get())->ZFAVPropsSet(&p, nullptr), S_OK);
    const Z_VID_PROPS seen = Props(frame).vidProps;
    EXPECT_EQ(seen.nWidth, 12);
    EXPECT_EQ(seen.nHeight, 6);
    EXPECT_EQ(seen.nRowBytes, 32);
    EXPECT_EQ(seen.eScaleType, eZST_Crop);
    EXPECT_EQ(seen.eInterlace, eZI_Field1First);
    EXPECT_EQ(seen.nAspectX, 4);
    EXPECT_EQ(seen.nAspectY, 3);
    EXPECT_EQ(seen.dblRate, 12);
}

TEST_F(Views, CheckedSignMirrorsThePixels) {
    const ComPtr<IZFrame> frame = Make(Picture(eZFCC_RGB32, 5, -7));
    const Bytes before = Video(frame).bytes();
    Z_AV_PROPS p = {};
    p.vidProps = Picture(eZFCC_RGB32, 5, 7);
    ASSERT_EQ(QueryFor<IZFFrame>(frame.get())->ZFAVPropsSet(&p, nullptr), S_OK);
    EXPECT_EQ(Props(frame).vidProps.nHeight, 7);
    const Bytes after = Video(frame).bytes();
    for (size_t y = 0; y < 7; ++y)
        for (size_t i = 0; i < 20; ++i) ASSERT_EQ(after[y * 20 + i], before[(6 - y) * 20 + i]);
    // The same sign again leaves them alone.
    ASSERT_EQ(QueryFor<IZFFrame>(frame.get())->ZFAVPropsSet(&p, nullptr), S_OK);
    EXPECT_EQ(Video(frame).bytes(), after);
    // Outside of the family heights are positive and nothing turns.
    const ComPtr<IZFrame> yuv = Make(Picture(eZFCC_UYVY, 16, 8));
    const Bytes pixels = Video(yuv).bytes();
    p.vidProps = Picture(eZFCC_UYVY, 16, -8);
    ASSERT_EQ(QueryFor<IZFFrame>(yuv.get())->ZFAVPropsSet(&p, nullptr), S_OK);
    EXPECT_EQ(Props(yuv).vidProps.nHeight, 8);
    EXPECT_EQ(Video(yuv).bytes(), pixels);
}

// The lines of the other field become the mean of the kept ones around them, ties to even.
Bytes Deinterlaced(Bytes pixels, const Z_VID_PROPS &p, int32_t keep) {
    if (OrderSign(&p) < 0) keep = 1 - keep;
    if (Rgb(p.fccType) && p.nHeight < 0) keep = 1 - keep;
    const int32_t lines = p.nHeight < 0 ? -p.nHeight : p.nHeight, bytes = p.nWidth * (Bits(p.fccType) / 8);
    const auto row = [&](int32_t y) { return static_cast<size_t>(y) * static_cast<size_t>(p.nRowBytes); };
    for (int32_t pair = 0; pair < lines / 2 - 1; ++pair) {
        const int32_t above = pair * 2 + keep;
        for (size_t i = 0; i < static_cast<size_t>(bytes); ++i) {
            const int sum = pixels[row(above) + i] + pixels[row(above + 2) + i];
            pixels[row(above + 1) + i] = static_cast<uint8_t>(sum / 2 + (sum % 2 != 0 && sum / 2 % 2 != 0 ? 1 : 0));
        }
    }
    return pixels;
}

TEST_F(Views, CheckedDeinterlacing) {
    for (const eZFCC fcc : {eZFCC_UYVY, eZFCC_RGB32, eZFCC_RGB24})
        for (const int32_t height : {-8, 8, 9, -2, 4})
            for (const eZInterlace order : {eZI_Field1First, eZI_Field2First, eZI_Progressive})
                for (const eZInterlace what : {eZI_DeinterlaceF1, eZI_DeinterlaceF2}) {
                    if (height < 0 && !Rgb(fcc)) continue;
                    Z_VID_PROPS own = Picture(fcc, 7, height);
                    own.eInterlace = order;
                    const ComPtr<IZFrame> frame = Make(own);
                    const Bytes before = Video(frame).bytes();
                    Z_AV_PROPS p = {};
                    p.vidProps = own;
                    p.vidProps.eInterlace = what;
                    ASSERT_EQ(QueryFor<IZFFrame>(frame.get())->ZFAVPropsSet(&p, nullptr), S_OK);
                    const bool done = order != eZI_Progressive;
                    const Bytes want = done ? Deinterlaced(before, own, what == eZI_DeinterlaceF1 ? 0 : 1) : before;
                    EXPECT_EQ(Video(frame).bytes(), want) << Words(own) << " " << what;
                    if (done) {
                        EXPECT_EQ(Props(frame).vidProps.eInterlace, eZI_Progressive);
                    }
                }
}

TEST_F(Views, CheckedWithoutARecordOrPixels) {
    ComPtr<IZFrame_I> bare;
    ASSERT_EQ(m_factory->FrameAlloc(256, 0, nullptr, bare.Put()), S_OK);
    const ComPtr<IZFFrame> own = QueryFor<IZFFrame>(bare.get());
    Z_AV_PROPS p = {};
    p.vidProps = Picture(eZFCC_UYVY, 16, 8);
    ASSERT_EQ(own->ZFAVPropsSet(&p, nullptr), S_OK);
    EXPECT_EQ(Words(Props(bare).vidProps), Words(p.vidProps));
    ASSERT_EQ(m_factory->FrameAlloc(255, 0, nullptr, bare.Put()), S_OK);    // one byte too small
    EXPECT_EQ(QueryFor<IZFFrame>(bare.get())->ZFAVPropsSet(&p, nullptr), kBadMedia);
    ASSERT_EQ(m_factory->FrameAlloc(0, 0, nullptr, bare.Put()), S_OK);
    EXPECT_EQ(QueryFor<IZFFrame>(bare.get())->ZFAVPropsSet(&p, nullptr), kBadMedia);
}

TEST_F(Views, ReadersClonesAndWritersTogether) {
    std::atomic<bool> stop{false};
    std::vector<std::thread> threads;
    for (int t = 0; t < 2; ++t)
        threads.emplace_back([&] {
            while (!stop) {
                ComPtr<IZFrame> clone, cut;
                ASSERT_EQ(m_frame->FrameClone(clone.Put(), eZFC_Reference, eZFCC_Default), S_OK);
                tagRECT rect = {0, 0, 4, 4};
                ASSERT_EQ(clone->FrameCut(0, &rect, cut.Put()), S_OK);
                ComPtr<IZFrame> converted;
                ASSERT_EQ(m_frame->FrameClone(converted.Put(), eZFC_Full, eZFCC_RGB32), S_OK);
            }
        });
    threads.emplace_back([&] {
        while (!stop) {
            Z_TIME t = {};
            ASSERT_EQ(m_frame->FrameTimeGet(&t), S_OK);
            ASSERT_EQ(t.rtStartTime * 2, t.rtEndTime);    // never half of one and half of another
            ZF_INFO info;
            ASSERT_EQ(m_own->ZFInfoGet(&info), S_OK);
            ASSERT_EQ(info.time.rtStartTime * 2, info.time.rtEndTime);
        }
    });
    for (int i = 0; i < 300; ++i) {
        Z_TIME t = {};
        t.rtStartTime = i;
        t.rtEndTime = 2 * i;
        ASSERT_EQ(m_frame->FrameTimeSet(&t), S_OK);
        const char data[] = "xyz";
        ASSERT_EQ(m_own->ZFDataSet(TextOf("LIVE").get(), 1 + i % 3, AddressOf(data)), S_OK);
    }
    stop = true;
    for (auto &one : threads) one.join();
}

}    // namespace
}    // namespace conformance
