// What makes, wraps and localises frames.
#include <algorithm>
#include <cstring>

#include "frames/memory/ipc_buffer.h"
#include "tests/conformance/frame_fixture.h"

namespace conformance {
namespace {

constexpr HRESULT kBadMedia = static_cast<HRESULT>(0x80040248);

TEST_F(Frames, TheFactoryHasBothFamilies) {
    void *out = m_factory.get();
    EXPECT_EQ(zck::FrameFactoryCreate(ZIidOf<IZFFrame>(), &out), E_NOINTERFACE);
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(zck::FrameFactoryCreate(ZIidOf<IZFrames>(), nullptr), E_POINTER);
    EXPECT_TRUE(QueryFor<IZFrames>(m_factory.get()));
    EXPECT_TRUE(QueryFor<IZFrames_I>(m_wide.get()));
    EXPECT_EQ(QueryFor<IUnknown>(m_factory.get()), QueryFor<IUnknown>(m_wide.get()).get());
    EXPECT_EQ(m_factory->FrameCreateReserved(), E_NOTIMPL);
}

TEST_F(Frames, AllocGivesZeroedPixelsAndSound) {
    // Dirty sections first, so that the zeros are not those of a fresh one.
    for (int i = 0; i < 6; ++i) {
        ComPtr<IZFrame> dirty;
        ASSERT_EQ(m_factory->FrameCreate(5000, nullptr, dirty.Put()), S_OK);
        std::memset(Video(dirty).data(), 0xEE, 5000);
    }
    for (int i = 0; i < 6; ++i) {
        ComPtr<IZFrame_I> frame;
        ASSERT_EQ(m_factory->FrameAlloc(5000, 300, nullptr, frame.Put()), S_OK);
        EXPECT_EQ(Video(frame).size, 5000);
        EXPECT_EQ(Video(frame).bytes(), Bytes(5000, 0));
        EXPECT_EQ(Audio(frame).bytes(), Bytes(300, 0));
        Z_AV_PROPS zero = {};
        const Z_AV_PROPS props = Props(frame);
        EXPECT_EQ(std::memcmp(&props, &zero, sizeof zero), 0);
        EXPECT_EQ(Time(frame).rtEndTime, 0);
        int64_t id = 0;
        EXPECT_EQ(frame->FrameBufferIdGet(&id), S_OK);
        zck::IPCBuffer opened;
        ASSERT_EQ(opened.OpenBuffer(static_cast<uint64_t>(id)), S_OK);
        Video(frame).data()[17] = 99;
        EXPECT_EQ(opened.DataPointer(0)[17], 99);
        std::memset(Video(frame).data(), 0xDD, 5000);
    }
}

TEST_F(Frames, AllocOfNothingAndOfBadSizes) {
    ComPtr<IZFrame_I> frame;
    EXPECT_EQ(m_factory->FrameAlloc(100, 0, nullptr, nullptr), E_POINTER);
    EXPECT_EQ(m_factory->FrameAlloc(-1, 0, nullptr, frame.Put()), E_INVALIDARG);
    EXPECT_EQ(m_factory->FrameAlloc(0, -1, nullptr, frame.Put()), E_INVALIDARG);
    EXPECT_FALSE(frame);
    ASSERT_EQ(m_factory->FrameAlloc(0, 0, nullptr, frame.Put()), S_OK);
    EXPECT_EQ(Video(frame).size, 0);
    EXPECT_EQ(Video(frame).address, 0);
    EXPECT_EQ(Audio(frame).size, 0);
    ComPtr<IZFrame> created;
    EXPECT_EQ(m_factory->FrameCreate(-5, nullptr, created.Put()), E_INVALIDARG);
    EXPECT_EQ(m_factory->FrameCreate(5, nullptr, nullptr), E_POINTER);
}

TEST_F(Frames, TheKeeperOfAnAllocIsNotHeld) {
    const ComPtr<IUnknown> keeper = PlainObject();
    ComPtr<IZFrame> frame;
    ASSERT_EQ(m_factory->FrameCreate(100, keeper.get(), frame.Put()), S_OK);
    EXPECT_EQ(RefsOf(keeper.get()), 1U);
}

TEST_F(Frames, AFrameKeepsItsFactory) {
    ComPtr<IZFrame> frame = Make(Picture(eZFCC_UYVY, 8, 4));
    m_wide.Reset();
    const ComPtr<IZFrames_I> factory = std::move(m_factory);
    EXPECT_GE(RefsOf(factory.get()), 2U);
    frame.Reset();
    EXPECT_EQ(RefsOf(factory.get()), 1U);
}

TEST_F(Frames, FromPropsCopiesPixelsAndNormalises) {
    Z_VID_PROPS p = {};
    p.eVideoFormat = eZVF_PAL;
    p.fccType = eZFCC_UYVY;
    Bytes pixels(1440 * 576);
    for (size_t i = 0; i < pixels.size(); ++i) pixels[i] = static_cast<uint8_t>(i * 31 >> 3);
    ComPtr<IZFrame> frame;
    ASSERT_EQ(m_factory->FrameCreateFromProps(&p, AddressOf(pixels.data()), frame.Put(), nullptr), S_OK);
    EXPECT_EQ(Video(frame).bytes(), pixels);
    Z_VID_PROPS want = p;
    Update(&want, false);
    EXPECT_EQ(Words(Props(frame).vidProps), Words(want));
    EXPECT_EQ(p.nWidth, 0);    // the caller's record is not touched
    EXPECT_EQ(Audio(frame).size, 0);
}

TEST_F(Frames, FromPropsRefusesWhatIsNoPicture) {
    ComPtr<IZFrame> frame;
    EXPECT_EQ(m_factory->FrameCreateFromProps(nullptr, 0, frame.Put(), nullptr), kBadMedia);
    Z_VID_PROPS p = {};
    EXPECT_EQ(m_factory->FrameCreateFromProps(&p, 0, frame.Put(), nullptr), kBadMedia);
    p = Picture(eZFCC_I420, 100, 100);
    p.nRowBytes = 0;
    EXPECT_EQ(m_factory->FrameCreateFromProps(&p, 0, frame.Put(), nullptr),
              kBadMedia);    // custom planar rows are the caller's
    p = Picture(eZFCC_RGB32, 40000, 40000);
    EXPECT_EQ(m_factory->FrameCreateFromProps(&p, 0, frame.Put(), nullptr), kBadMedia);
    p = Picture(eZFCC_Default, 10, 10);
    p.nRowBytes = 20;
    EXPECT_EQ(m_factory->FrameCreateFromProps(&p, 0, frame.Put(), nullptr), kBadMedia);
    p = Picture(eZFCC_UYVY, 10, 10);
    p.eVideoFormat = static_cast<eZVideoFormat>(35);    // known to nobody, but "a format": the size decides
    ASSERT_EQ(m_factory->FrameCreateFromProps(&p, 0, frame.Put(), nullptr), S_OK);
    EXPECT_EQ(Video(frame).size, 200);
    frame.Reset();
    p = {};
    p.nWidth = 720;
    p.nHeight = 576;
    p.dblRate = 25;
    p.fccType = eZFCC_I420;    // a planar standard size
    EXPECT_EQ(m_factory->FrameCreateFromProps(&p, 0, frame.Put(), nullptr), S_OK);
    EXPECT_EQ(Video(frame).size, 622080);
    p = Picture(eZFCC_UYVY, 10, 10);
    EXPECT_EQ(m_factory->FrameCreateFromProps(&p, 0, nullptr, nullptr), E_POINTER);
}

TEST_F(Frames, FromPropsWithUnreadablePixels) {
    const Z_VID_PROPS p = Picture(eZFCC_UYVY, 64, 64);
    ComPtr<IZFrame> frame;
    EXPECT_EQ(m_factory->FrameCreateFromProps(const_cast<Z_VID_PROPS *>(&p), 64, frame.Put(), nullptr),
              static_cast<HRESULT>(0x80070005));
    EXPECT_FALSE(frame);
}

TEST_F(Frames, FromPropsFillsWithAColour) {
    struct Case {
        const char *text;
        uint32_t colour;    // 0xAABBGGRR
    };
    const Case cases[] = {{"", 0},
                          {"solid_color=Red", 0xFF0000FF},
                          {"solid_color='red(128)'", 0x800000FF},
                          {"solid_color=\"Orange\"", 0xFF00A5FF},
                          {"other=1 solid_color=Cyan more='x y'", 0xFFFFFF00},
                          {"solid_color=Transparent", 0},
                          {"solid_color=563412", 0xFF123456},
                          {"solid_color=ABC", 0xFFCCBBAA},
                          {"solid_color=abc", 0},
                          {"solid_color=#FF0000", 0},
                          {"solid_color='Red(0.5)'", 0x000000FF},
                          {"solid_color=orvane-light", 0xFF8A5406},
                          {"solid_color=OV", 0xFF8A5406},
                          {"solid_color=ovl", 0xFFB29000},
                          {"solid_color=OvLight", 0xFFB29000}};
    for (const Case &c : cases)
        for (const eZFCC fcc :
             {eZFCC_ARGB32, eZFCC_RGB32, eZFCC_RGB24, eZFCC_UYVY, eZFCC_HDYC, eZFCC_YUY2, eZFCC_v210, eZFCC_YVYU, eZFCC_RGB8}) {
            Z_VID_PROPS p = Picture(fcc, 10, Rgb(fcc) ? -6 : 6);
            ComPtr<IZFrame> frame;
            ASSERT_EQ(m_factory->FrameCreateFromProps(&p, 0, frame.Put(), TextOf(c.text).get()), S_OK);
            Bytes want(static_cast<size_t>(BufferSize(&p)), 0);
            FillModel(p, want, c.colour, 1.0);
            EXPECT_EQ(Video(frame).bytes(), want) << c.text << " " << std::hex << fcc;
        }
}

TEST_F(Frames, FromPropsReservesSilence) {
    struct Case {
        const char *text;
        int32_t bytes;
        Z_AUD_PROPS audio;
    };
    const Case cases[] = {{"audio_samples=1920", 7680, {2, 48000, 16, 0}},
                          {"audio_samples=1920 channels=1 rate=44100 bits=8", 0, {1, 44100, 8, 0}},
                          {"audio_samples=10 channels=6", 40, {2, 48000, 16, 0}},
                          {"channels=6 bits=-32", 0, {6, 0, -32, 0}},
                          {"audio_samples=0 rate=5", 0, {0, 5, 0, 0}},
                          {"audio_samples=-3", 0, {0, 0, 0, 0}},
                          {"", 0, {0, 0, 0, 0}}};
    for (const Case &c : cases) {
        Z_VID_PROPS p = Picture(eZFCC_UYVY, 10, 6);
        ComPtr<IZFrame> frame;
        ASSERT_EQ(m_factory->FrameCreateFromProps(&p, 0, frame.Put(), TextOf(c.text).get()), S_OK);
        EXPECT_EQ(Audio(frame).bytes(), Bytes(static_cast<size_t>(c.bytes), 0)) << c.text;
        const Z_AUD_PROPS audio = Props(frame).audProps;
        EXPECT_EQ(std::memcmp(&audio, &c.audio, sizeof audio), 0) << c.text;
        int32_t samples = -1;
        EXPECT_EQ(QueryFor<IZFFrame>(frame.get())->ZFAVPropsGet(nullptr, &samples), S_OK);
        EXPECT_EQ(samples, c.bytes / 4) << c.text;
    }
}

TEST_F(Frames, WideCreateTakesTheWholeRecord) {
    ComPtr<IZFFrame> frame;
    Z_AV_PROPS props = {};
    EXPECT_EQ(m_wide->ZFFrameCreate(nullptr, 0, 0, 0, frame.Put()), E_INVALIDARG);
    EXPECT_EQ(m_wide->ZFFrameCreate(&props, 0, 0, 0, nullptr), E_INVALIDARG);
    EXPECT_EQ(m_wide->ZFFrameCreate(&props, 0, 0, 0, frame.Put()), kBadMedia);
    props.vidProps = Picture(eZFCC_RGB32, 6, -4);
    Bytes pixels(96, 0x42);
    ASSERT_EQ(m_wide->ZFFrameCreate(&props, AddressOf(pixels.data()), 0, 0, frame.Put()), S_OK);
    EXPECT_EQ(Video(frame).bytes(), pixels);
    EXPECT_NE(Video(frame).data(), pixels.data());
}

TEST_F(Frames, WrapPointsAtTheCallersBlock) {
    Bytes block(1000, 5);
    Z_VID_PROPS p = Picture(eZFCC_UYVY, 720, 576);
    p.nRowBytes = 0;    // not normalised, not checked
    p.eVideoFormat = eZVF_PAL;
    ComPtr<IUnknown> keeper = PlainObject();
    ComPtr<IZFrame> frame = Wrap(p, block.data(), 1000, keeper.get());
    EXPECT_EQ(Video(frame).data(), block.data());
    EXPECT_EQ(Video(frame).size, 1000);
    EXPECT_EQ(Words(Props(frame).vidProps), Words(p));
    Z_AV_PROPS rest = Props(frame), zero = {};
    std::memset(&rest.vidProps, 0, sizeof rest.vidProps);
    EXPECT_EQ(std::memcmp(&rest, &zero, sizeof zero), 0);
    EXPECT_EQ(RefsOf(keeper.get()), 2U);
    frame.Reset();
    EXPECT_EQ(RefsOf(keeper.get()), 1U);
    EXPECT_EQ(block, Bytes(1000, 5));

    ComPtr<IZFFrame> out;
    EXPECT_EQ(m_wide->ZFFrameWrap(&p, 1000, AddressOf(block.data()), nullptr, nullptr), E_POINTER);
    EXPECT_EQ(m_wide->ZFFrameWrap(nullptr, 1000, AddressOf(block.data()), nullptr, out.Put()), E_INVALIDARG);
    EXPECT_EQ(m_wide->ZFFrameWrap(&p, 1000, 0, nullptr, out.Put()), E_INVALIDARG);
}

TEST_F(Frames, BuffersComeFromThePool) {
    zck::IPCBuffer *b = nullptr;
    EXPECT_EQ(m_factory->BufferGet(0, &b), E_INVALIDARG);
    EXPECT_EQ(m_factory->BufferGet(-1, &b), E_INVALIDARG);
    EXPECT_EQ(m_factory->BufferGet(100, nullptr), E_INVALIDARG);
    EXPECT_EQ(m_factory->BufferReturn(nullptr), E_INVALIDARG);
    ASSERT_EQ(m_factory->BufferGet(400, &b), S_OK);
    EXPECT_EQ(b->DataSize(0), 480U);
    const uint64_t id = b->BufferId();
    EXPECT_EQ(m_factory->BufferReturn(b), S_OK);
    // Two spares stand before it in the queue.
    std::vector<zck::IPCBuffer *> all(3);
    bool found = false;
    for (auto &one : all) {
        ASSERT_EQ(m_factory->BufferGet(400, &one), S_OK);
        found = found || one->BufferId() == id;
    }
    EXPECT_TRUE(found);
    for (auto *one : all) m_factory->BufferReturn(one);
}

TEST_F(Frames, AFramesSectionGoesBackToThePool) {
    ComPtr<IZFrame> frame = Make(Picture(eZFCC_UYVY, 100, 10));
    int64_t id = 0;
    ASSERT_EQ(QueryFor<IZFrame_I>(frame.get())->FrameBufferIdGet(&id), S_OK);
    frame.Reset();
    bool found = false;
    std::vector<ComPtr<IZFrame>> others(4);
    for (auto &other : others) {
        other = Make(Picture(eZFCC_UYVY, 100, 10));
        int64_t again = 0;
        ASSERT_EQ(QueryFor<IZFrame_I>(other.get())->FrameBufferIdGet(&again), S_OK);
        found = found || again == id;
    }
    EXPECT_TRUE(found);
}

TEST_F(Frames, LocalFramesStayThemselvesUnlessForced) {
    const ComPtr<IZFrame> frame = MakeRich(Picture(eZFCC_UYVY, 16, 8));
    ComPtr<IZFrame> local;
    ASSERT_EQ(m_factory->FrameLocal(frame.get(), local.Put(), 0), S_OK);
    EXPECT_EQ(local, frame.get());
    EXPECT_EQ(m_factory->FrameLocal(nullptr, local.Put(), 0), E_POINTER);
    EXPECT_EQ(m_factory->FrameLocal(frame.get(), nullptr, 0), E_POINTER);
    EXPECT_EQ(m_factory->FrameLocal(PlainObject().get(), local.Put(), 0), E_NOINTERFACE);

    ComPtr<IZFrame_I> own;
    ASSERT_EQ(m_factory->FrameMakeLocal(frame.get(), own.Put(), 0), S_OK);
    EXPECT_EQ(QueryFor<IUnknown>(own.get()), QueryFor<IUnknown>(frame.get()).get());
    EXPECT_EQ(m_factory->FrameMakeLocal(nullptr, own.Put(), 0), E_INVALIDARG);
    EXPECT_EQ(m_factory->FrameMakeLocal(frame.get(), nullptr, 0), E_INVALIDARG);
    ASSERT_EQ(m_factory->FrameMakeLocal(frame.get(), own.Put(), 1), S_OK);
    EXPECT_FALSE(QueryFor<IUnknown>(own.get()) == QueryFor<IUnknown>(frame.get()).get());
    EXPECT_EQ(Video(own).address, Video(frame).address);    // a clone that borrows
    EXPECT_EQ(Audio(own).bytes(), Audio(frame).bytes());
    ComPtr<IUnknown> thing;
    EXPECT_EQ(QueryFor<IZFFrame>(own.get())->ZFObjectGet(TextOf("thing").get(), thing.Put(), 0), S_OK);

    ComPtr<IZFFrame> wide;
    ASSERT_EQ(m_wide->ZFFrameLocal(frame.get(), wide.Put(), 0), S_OK);
    EXPECT_EQ(QueryFor<IUnknown>(wide.get()), QueryFor<IUnknown>(frame.get()).get());
    ASSERT_EQ(m_wide->ZFFrameLocal(frame.get(), wide.Put(), 1), S_OK);
    EXPECT_FALSE(QueryFor<IUnknown>(wide.get()) == QueryFor<IUnknown>(frame.get()).get());
    EXPECT_EQ(Video(wide).address, Video(frame).address);
    EXPECT_EQ(m_wide->ZFFrameLocal(PlainObject().get(), wide.Put(), 0), E_NOINTERFACE);
}

TEST_F(Frames, CloneObjectAsksForAFrame) {
    const ComPtr<IZFrame> frame = Make(Picture(eZFCC_UYVY, 16, 8));
    ComPtr<IZFrame> clone;
    EXPECT_EQ(m_factory->FrameCloneObject(PlainObject().get(), clone.Put(), eZFC_Video, eZFCC_Default), E_NOINTERFACE);
    ASSERT_EQ(m_factory->FrameCloneObject(frame.get(), clone.Put(), eZFC_Video, eZFCC_Default), S_OK);
    EXPECT_EQ(Video(clone).bytes(), Video(frame).bytes());
    EXPECT_NE(Video(clone).address, Video(frame).address);
}

TEST_F(Frames, CloneConvertRefusesNull) {
    const ComPtr<IZFrame> frame = Make(Picture(eZFCC_UYVY, 16, 8));
    ComPtr<IZFrame_I> clone;
    ComPtr<IZFFrame> wide;
    EXPECT_EQ(m_factory->FrameCloneConvert(nullptr, clone.Put(), eZFC_Video, eZFCC_Default), E_INVALIDARG);
    EXPECT_EQ(m_factory->FrameCloneConvert(frame.get(), nullptr, eZFC_Video, eZFCC_Default), E_INVALIDARG);
    EXPECT_EQ(m_wide->ZFCloneConvert(nullptr, wide.Put(), eZFC_Video, eZFCC_Default), E_INVALIDARG);
    EXPECT_EQ(m_wide->ZFCloneConvert(frame.get(), nullptr, eZFC_Video, eZFCC_Default), E_INVALIDARG);
    EXPECT_EQ(m_wide->ZFCloneConvert(PlainObject().get(), wide.Put(), eZFC_Video, eZFCC_Default), E_NOINTERFACE);
}

}    // namespace
}    // namespace conformance
