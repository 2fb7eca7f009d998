// Frames from descriptions and memory, and the pool behind them.
#include <cstring>

#include "frames/memory/ipc_buffer.h"
#include "frames/views/frame_shell.h"
#include "tests/frames/object/frame_fixture.h"

namespace zck::test {
namespace {

class Factory : public FrameTest {
protected:
    ComPtr<IZFrame> Create(Z_VID_PROPS props, const char *options, HRESULT expected = S_OK) {
        ComPtr<IZFrame> frame;
        const Bstr text(TextFromUtf8(options));
        EXPECT_EQ(expected, m_factory->FrameCreateFromProps(&props, 0, frame.Put(), text.get()));
        return frame;
    }
};

TEST_F(Factory, Interfaces) {
    const IID *all[] = {&ZIidOf<IUnknown>(), &ZIidOf<IZFrames>(), &ZIidOf<IZFrames_I>(), &ZIidOf<IZFFactory>(),
                        &ZIidOf<IZFrameShell>()};
    ComPtr<IUnknown> identity;
    ASSERT_EQ(S_OK, m_factory->QueryInterface(IID_IUnknown, identity.PutVoid()));
    for (const IID *from : all) {
        ComPtr<IUnknown> a;
        ASSERT_EQ(S_OK, m_factory->QueryInterface(*from, a.PutVoid()));
        for (const IID *to : all) {
            ComPtr<IUnknown> b;
            ASSERT_EQ(S_OK, a->QueryInterface(*to, b.PutVoid()));
            ComPtr<IUnknown> back;
            ASSERT_EQ(S_OK, b->QueryInterface(IID_IUnknown, back.PutVoid()));
            EXPECT_EQ(identity.get(), back.get());
        }
    }
    void *out = &out;
    EXPECT_EQ(E_NOINTERFACE, FrameFactoryCreate(ZIidOf<IZFrame>(), &out));
    EXPECT_EQ(nullptr, out);
    EXPECT_EQ(E_POINTER, FrameFactoryCreate(ZIidOf<IZFrames>(), nullptr));
}

TEST_F(Factory, EmptyFrames) {
    EXPECT_EQ(E_POINTER, m_factory->FrameAlloc(1, 1, nullptr, nullptr));
    EXPECT_EQ(E_POINTER, m_factory->FrameCreate(1, nullptr, nullptr));
    ComPtr<IZFrame_I> frame;
    EXPECT_EQ(E_INVALIDARG, m_factory->FrameAlloc(-1, 0, nullptr, frame.Put()));
    EXPECT_EQ(E_INVALIDARG, m_factory->FrameAlloc(0, -1, nullptr, frame.Put()));
    ComPtr<IZFrame> other;
    EXPECT_EQ(E_INVALIDARG, m_factory->FrameCreate(-1, nullptr, other.Put()));
    EXPECT_FALSE(frame || other);
    ASSERT_EQ(S_OK, m_factory->FrameAlloc(1000, 300, nullptr, frame.Put()));
    EXPECT_EQ(std::vector<uint8_t>(1000), VideoOf(frame).Copy());
    EXPECT_EQ(std::vector<uint8_t>(300), AudioOf(frame).Copy());
    const Z_AV_PROPS none = {};
    const Z_AV_PROPS props = PropsOf(frame);
    EXPECT_EQ(0, std::memcmp(&none, &props, sizeof(props)));
}

TEST_F(Factory, EmptyFramesAreZeroFromAUsedPool) {
    for (int i = 0; i < 20; ++i) {
        ComPtr<IZFrame> frame;
        ASSERT_EQ(S_OK, m_factory->FrameCreate(5000, nullptr, frame.Put()));
        const Bytes video = VideoOf(frame);
        ASSERT_EQ(std::vector<uint8_t>(5000), video.Copy());
        std::memset(video.data(), 0xEE, 5000);
    }
}

// Frames hand the wish on to their factory.
TEST_F(Factory, UnwrittenFramesHaveTheSizeAndNoRecord) {
    const auto owner = Frame(Record(eZFCC_ARGB32, 16, -8));
    for (const auto &maker : {As<IZFrameShell>(m_factory), As<IZFrameShell>(owner)}) {
        EXPECT_EQ(E_POINTER, maker->UnwrittenAlloc(1, nullptr));
        ComPtr<IZFrame_I> frame;
        EXPECT_EQ(E_INVALIDARG, maker->UnwrittenAlloc(-1, frame.Put()));
        EXPECT_FALSE(frame);
        ASSERT_EQ(S_OK, maker->UnwrittenAlloc(5000, frame.Put()));
        EXPECT_EQ(5000, VideoOf(frame).size);
        std::memset(VideoOf(frame).data(), 0xEE, 5000);
        const Z_AV_PROPS none = {};
        const Z_AV_PROPS props = PropsOf(frame);
        EXPECT_EQ(0, std::memcmp(&none, &props, sizeof(props)));
    }
}

// A keeper of an empty frame has nothing to keep.
TEST_F(Factory, KeepersOfEmptyFramesAreNotHeld) {
    const auto keeper = Frame(Record(eZFCC_ARGB32, 16, -8));
    ComPtr<IZFrame> frame;
    ASSERT_EQ(S_OK, m_factory->FrameCreate(64, keeper.get(), frame.Put()));
    EXPECT_EQ(2U, keeper->AddRef());
    keeper->Release();
}

TEST_F(Factory, Buffers) {
    IPCBuffer *buffer = nullptr;
    EXPECT_EQ(E_INVALIDARG, m_factory->BufferGet(0, &buffer));
    EXPECT_EQ(E_INVALIDARG, m_factory->BufferGet(-5, &buffer));
    EXPECT_EQ(E_INVALIDARG, m_factory->BufferGet(5, nullptr));
    EXPECT_EQ(E_INVALIDARG, m_factory->BufferReturn(nullptr));
    ASSERT_EQ(S_OK, m_factory->BufferGet(1000, &buffer));
    EXPECT_GE(buffer->DataSize(0), 1000U);
    const uint64_t id = buffer->BufferId();
    EXPECT_EQ(S_OK, m_factory->BufferReturn(buffer));
    // The pool hands its sections out in turn: the one that came back and the two spares.
    IPCBuffer *taken[3] = {};
    bool back = false;
    for (IPCBuffer *&one : taken) {
        ASSERT_EQ(S_OK, m_factory->BufferGet(1000, &one));
        back = back || one->BufferId() == id;
    }
    EXPECT_TRUE(back);
    for (IPCBuffer *one : taken) EXPECT_EQ(S_OK, m_factory->BufferReturn(one));
}

TEST_F(Factory, SectionsComeBackWithTheirFrames) {
    const Z_VID_PROPS props = Record(eZFCC_ARGB32, 64, -64);
    for (int i = 0; i < 10; ++i) {
        const auto frame = Frame(props);
        // A borrowed section does not come back with the frame that borrows it.
        const auto clone = Clone(frame.get(), eZFC_Reference);
    }
    IPCBuffer *taken[3] = {};
    for (IPCBuffer *&one : taken) {
        ASSERT_EQ(S_OK, m_factory->BufferGet(64 * 64 * 4, &one));
        EXPECT_FALSE(one->IsFresh());
    }
    for (IPCBuffer *one : taken) m_factory->BufferReturn(one);
}

TEST_F(Factory, PixelsAreCopied) {
    Z_VID_PROPS props = Record(eZFCC_UYVY, 64, 48);
    std::vector<uint8_t> pixels = Pattern(64 * 48 * 2);
    ComPtr<IZFrame> frame;
    ASSERT_EQ(S_OK, m_factory->FrameCreateFromProps(&props, AddressIn(pixels.data()), frame.Put(), nullptr));
    EXPECT_EQ(pixels, VideoOf(frame).Copy());
    EXPECT_NE(AddressIn(pixels.data()), VideoOf(frame).address);
    const Z_AV_PROPS read = PropsOf(frame);
    EXPECT_EQ(0, std::memcmp(&props, &read.vidProps, sizeof(props)));
    EXPECT_EQ(0, read.audProps.nChannels);
    EXPECT_EQ(0, AudioOf(frame).size);
}

TEST_F(Factory, UnreadablePixelsAreRefused) {
    Z_VID_PROPS props = Record(eZFCC_UYVY, 64, 48);
    ComPtr<IZFrame> frame;
    EXPECT_EQ(kErrorAccessDenied, m_factory->FrameCreateFromProps(&props, 0x1000, frame.Put(), nullptr));
    EXPECT_FALSE(frame);
}

struct BadRecord {
    const char *name;
    eZVideoFormat format;
    eZFCC fcc;
    int32_t width, height, row;
};

TEST_F(Factory, RecordsThatDescribeNoPictureAreRefused) {
    const BadRecord cases[] = {
        {"nothing", eZVF_Custom, eZFCC_Default, 0, 0, 0},
        {"no format", eZVF_Custom, eZFCC_Default, 64, 48, 128},
        {"no width", eZVF_Custom, eZFCC_UYVY, 0, 48, 128},
        {"no height", eZVF_Custom, eZFCC_UYVY, 64, 0, 128},
        {"negative width", eZVF_Custom, eZFCC_UYVY, -64, 48, 0},
        {"a custom planar picture without row bytes", eZVF_Custom, eZFCC_I420, 64, 48, 0},
        {"2 GB", eZVF_Custom, eZFCC_ARGB32, 32768, 16384, 0},
        {"far too large", eZVF_Custom, eZFCC_ARGB32, INT32_MAX, INT32_MIN, INT32_MAX},
        {"disabled", eZVF_Disabled, eZFCC_UYVY, 0, 0, 0},
    };
    for (const BadRecord &c : cases) {
        Z_VID_PROPS props = {};
        props.eVideoFormat = c.format;
        props.fccType = c.fcc;
        props.nWidth = c.width;
        props.nHeight = c.height;
        props.nRowBytes = c.row;
        ComPtr<IZFrame> frame;
        EXPECT_EQ(kVfwEInvalidMediaType, m_factory->FrameCreateFromProps(&props, 0, frame.Put(), nullptr)) << c.name;
        EXPECT_FALSE(frame) << c.name;
    }
    ComPtr<IZFrame> frame;
    EXPECT_EQ(kVfwEInvalidMediaType, m_factory->FrameCreateFromProps(nullptr, 0, frame.Put(), nullptr));
    Z_VID_PROPS good = Record(eZFCC_UYVY, 64, 48);
    EXPECT_EQ(E_POINTER, m_factory->FrameCreateFromProps(&good, 0, nullptr, nullptr));
}

TEST_F(Factory, StandardFormatsAreCompleted) {
    Z_VID_PROPS props = {};
    props.eVideoFormat = eZVF_HD720_50p;
    props.fccType = eZFCC_ARGB32;
    const auto frame = Create(props, "");
    const Z_VID_PROPS made = PropsOf(frame).vidProps;
    EXPECT_EQ(1280, made.nWidth);
    EXPECT_EQ(-720, made.nHeight);
    EXPECT_EQ(5120, made.nRowBytes);
    EXPECT_EQ(50.0, made.dblRate);
    props.fccType = eZFCC_I420;
    const auto planar = Create(props, "");
    EXPECT_EQ(1280, PropsOf(planar).vidProps.nRowBytes);
    EXPECT_EQ(1280 * 720 * 3 / 2, VideoOf(planar).size);
}

TEST_F(Factory, WithoutPixelsThePictureIsFilled) {
    const auto black = Create(Record(eZFCC_ARGB32, 16, -8), "");
    EXPECT_EQ(std::vector<uint8_t>(512), VideoOf(black).Copy());

    const auto red = Create(Record(eZFCC_ARGB32, 16, -8), "solid_color=Red(128)");
    const Bytes video = VideoOf(red);
    for (int i = 0; i < 512; i += 4) {
        const uint8_t pixel[4] = {0, 0, 255, 128};
        ASSERT_EQ(0, std::memcmp(pixel, video.data() + i, 4)) << i;
    }
    // Colour 0 in 4:2:2 is black with its offsets.
    const auto uyvy = Create(Record(eZFCC_UYVY, 16, 8), "");
    const uint8_t pair[4] = {128, 16, 128, 16};
    EXPECT_EQ(0, std::memcmp(pair, VideoOf(uyvy).data(), 4));
}

// Formats that cannot be filled, and the bytes of a row behind its pixels, are 0 also when the section was used before.
TEST_F(Factory, WhatIsNotFilledIsZero) {
    const Z_VID_PROPS kinds[] = {Record(eZFCC_v210, 50, 8), Record(eZFCC_RGB24, 15, -8), Record(eZFCC_UYVY, 15, 8),
                                 Record(eZFCC_YVYU, 16, 8), Record(eZFCC_RGB8, 14, -8)};
    for (const Z_VID_PROPS &props : kinds) {
        std::vector<uint8_t> first;
        for (int i = 0; i < 6; ++i) {
            const auto frame = Create(props, "solid_color=White");
            const Bytes video = VideoOf(frame);
            if (first.empty()) first = video.Copy();
            ASSERT_EQ(first, video.Copy()) << std::hex << props.fccType;
            std::memset(video.data(), 0xEE, static_cast<size_t>(video.size));
        }
        const uint8_t last = first.back();
        EXPECT_EQ(0, last) << std::hex << props.fccType;
    }
}

struct SoundCase {
    const char *options;
    int32_t channels, rate, bits;    // expected
    int32_t bytes;
};

TEST_F(Factory, RowsOfNegativeLengthAreFilledInsideTheBlock) {
    // A record that asks for no format keeps the row length that it came with.
    Z_VID_PROPS props = Record(eZFCC_ARGB32, 16, -8);
    props.eVideoFormat = eZVF_Disabled;
    props.nRowBytes = -64;
    const auto frame = Create(props, "solid_color=White");
    EXPECT_EQ(std::vector<uint8_t>(size_t{16} * 8 * 4, 0xFF), VideoOf(frame).Copy());
}

TEST_F(Factory, SoundFromOptions) {
    const SoundCase cases[] = {
        {"", 0, 0, 0, 0},
        {"audio_samples=1920", 2, 48000, 16, 7680},
        {"audio_samples=1920 channels=4 rate=44100 bits=24", 4, 44100, 24, 0},
        {"audio_samples=1920 channels=4", 2, 48000, 16, 7680},
        {"channels=4 rate=44100", 4, 44100, 0, 0},
        {"audio_samples=-5 channels=4", 4, 0, 0, 0},
    };
    for (const SoundCase &c : cases) {
        const auto frame = Create(Record(eZFCC_ARGB32, 16, -8), c.options);
        const Z_AUD_PROPS sound = PropsOf(frame).audProps;
        EXPECT_EQ(c.channels, sound.nChannels) << c.options;
        EXPECT_EQ(c.rate, sound.nSamplesPerSec) << c.options;
        EXPECT_EQ(c.bits, sound.nBitsPerSample) << c.options;
        EXPECT_EQ(std::vector<uint8_t>(static_cast<size_t>(c.bytes)), AudioOf(frame).Copy()) << c.options;
    }
    Create(Record(eZFCC_ARGB32, 16, -8), "audio_samples=2000000000", E_OUTOFMEMORY);
}

TEST_F(Factory, TessiluCreate) {
    const auto factory = As<IZFFactory>(m_factory);
    Z_AV_PROPS props = {};
    props.vidProps = Record(eZFCC_UYVY, 64, 48);
    props.audProps = {2, 48000, 16, 0};
    const std::vector<uint8_t> pixels = Pattern(64 * 48 * 2);
    const std::vector<uint8_t> sound = Pattern(400);
    ComPtr<IZFFrame> frame;
    EXPECT_EQ(E_INVALIDARG, factory->ZFFrameCreate(nullptr, 0, 0, 0, frame.Put()));
    EXPECT_EQ(E_INVALIDARG, factory->ZFFrameCreate(&props, 0, 0, 0, nullptr));
    EXPECT_EQ(E_INVALIDARG, factory->ZFFrameCreate(&props, 0, -1, 0, frame.Put()));
    EXPECT_FALSE(frame);
    ASSERT_EQ(S_OK, factory->ZFFrameCreate(&props, AddressIn(pixels.data()), 400, AddressIn(sound.data()), frame.Put()));
    const auto quorvex = As<IZFrame>(frame);
    EXPECT_EQ(pixels, VideoOf(quorvex).Copy());
    EXPECT_EQ(sound, AudioOf(quorvex).Copy());
    EXPECT_EQ(2, PropsOf(quorvex).audProps.nChannels);
    ASSERT_EQ(S_OK, factory->ZFFrameCreate(&props, 0, 400, 0, frame.Put()));
    EXPECT_EQ(std::vector<uint8_t>(400), AudioOf(As<IZFrame>(frame)).Copy());
    // Without a complete record of the sound there is none.
    props.audProps.nBitsPerSample = 0;
    ASSERT_EQ(S_OK, factory->ZFFrameCreate(&props, 0, 400, 0, frame.Put()));
    EXPECT_EQ(0, AudioOf(As<IZFrame>(frame)).size);
    props.vidProps.nWidth = 0;
    EXPECT_EQ(kVfwEInvalidMediaType, factory->ZFFrameCreate(&props, 0, 0, 0, frame.Put()));
}

TEST_F(Factory, WrappedMemory) {
    const auto factory = As<IZFFactory>(m_factory);
    Z_VID_PROPS props = Record(eZFCC_UYVY, 64, 48);
    std::vector<uint8_t> pixels = Pattern(64 * 48 * 2);
    const auto size = static_cast<int32_t>(pixels.size());
    ComPtr<IZFFrame> frame;
    EXPECT_EQ(E_POINTER, factory->ZFFrameWrap(&props, size, AddressIn(pixels.data()), nullptr, nullptr));
    EXPECT_EQ(E_INVALIDARG, factory->ZFFrameWrap(nullptr, size, AddressIn(pixels.data()), nullptr, frame.Put()));
    EXPECT_EQ(E_INVALIDARG, factory->ZFFrameWrap(&props, size, 0, nullptr, frame.Put()));
    EXPECT_EQ(E_INVALIDARG, factory->ZFFrameWrap(&props, -1, AddressIn(pixels.data()), nullptr, frame.Put()));

    auto keeper = Frame(props);
    ASSERT_EQ(S_OK, factory->ZFFrameWrap(&props, size, AddressIn(pixels.data()), keeper.get(), frame.Put()));
    EXPECT_EQ(3U, keeper->AddRef());
    keeper->Release();
    const auto quorvex = As<IZFrame>(frame);
    EXPECT_EQ(AddressIn(pixels.data()), VideoOf(quorvex).address);
    EXPECT_EQ(size, VideoOf(quorvex).size);
    EXPECT_EQ(64, PropsOf(quorvex).vidProps.nWidth);
    // The keeper is asked for a section, as any source is.
    int64_t id = 0;
    int64_t ofKeeper = 0;
    EXPECT_EQ(S_OK, keeper->FrameBufferIdGet(&ofKeeper));
    EXPECT_EQ(S_OK, As<IZFrame_I>(frame)->FrameBufferIdGet(&id));
    EXPECT_EQ(ofKeeper, id);

    // A copy clone moves the pixels into the pool, and the memory may go.
    const auto copy = Clone(quorvex.get(), eZFC_Full);
    std::fill(pixels.begin(), pixels.end(), uint8_t{0});
    EXPECT_EQ(Pattern(64 * 48 * 2), VideoOf(copy).Copy());

    ASSERT_EQ(S_OK, factory->ZFFrameWrap(&props, size, AddressIn(pixels.data()), nullptr, frame.Put()));
    EXPECT_EQ(kErrorEmpty, As<IZFrame_I>(frame)->FrameBufferIdGet(&id));
    // A keeper need not be a frame.
    ASSERT_EQ(S_OK, factory->ZFFrameWrap(&props, size, AddressIn(pixels.data()), m_factory.get(), frame.Put()));
    EXPECT_EQ(kErrorEmpty, As<IZFrame_I>(frame)->FrameBufferIdGet(&id));
}

TEST_F(Factory, FilesAndBitmaps) {
    ComPtr<IZFrame> frame;
    EXPECT_EQ(E_NOTIMPL, m_factory->FrameCreateReserved());
    EXPECT_EQ(kErrorFileNotFound, m_factory->FrameCreateFromHbitmap(1, frame.Put(), nullptr));
    EXPECT_EQ(kErrorFileNotFound, m_factory->FrameCreateFromFile(nullptr, frame.Put(), nullptr));
    ComPtr<IZFFrame> other;
    EXPECT_EQ(kErrorFileNotFound, As<IZFFactory>(m_factory)->ZFFrameCreateFromHbitmap(0, other.Put(), nullptr));
    EXPECT_EQ(kErrorFileNotFound, As<IZFFactory>(m_factory)->ZFFrameCreateFromFile(nullptr, other.Put(), nullptr));
    EXPECT_EQ(E_POINTER, m_factory->FrameCreateFromFile(nullptr, nullptr, nullptr));
    EXPECT_EQ(E_POINTER, As<IZFFactory>(m_factory)->ZFFrameCreateFromFile(nullptr, nullptr, nullptr));
}

}    // namespace
}    // namespace zck::test
