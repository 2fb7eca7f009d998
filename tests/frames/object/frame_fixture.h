// What tests of frames share: a factory, records, frames with known bytes.
#pragma once

#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "frames/factory/factory.h"
#include "frames/media/video_props.h"
#include "frames/views/f_factory.h"
#include "frames/views/frame_i.h"
#include "frames/views/frames_i.h"
#include "platform/com_ptr.h"
#include "platform/object.h"
#include "platform/text.h"

namespace zck::test {

inline Z_VID_PROPS Record(eZFCC fcc, int32_t width, int32_t height) {
    Z_VID_PROPS props = {};
    props.fccType = fcc;
    props.nWidth = width;
    props.nHeight = height;
    props.eInterlace = eZI_Progressive;
    VideoPropsUpdate(&props, false);
    return props;
}

inline uint8_t PatternByte(size_t i) { return static_cast<uint8_t>(i * 7 + (i >> 8) * 13 + 1); }

inline std::vector<uint8_t> Pattern(size_t size) {
    std::vector<uint8_t> bytes(size);
    for (size_t i = 0; i < size; ++i) bytes[i] = PatternByte(i);
    return bytes;
}

template <class T>
T *At(int64_t address) {
    return reinterpret_cast<T *>(static_cast<uintptr_t>(address));
}

inline int64_t AddressIn(const void *p) { return static_cast<int64_t>(reinterpret_cast<uintptr_t>(p)); }

struct Bytes {
    int32_t size = -1;
    int64_t address = -1;
    uint8_t *data() const { return At<uint8_t>(address); }
    std::vector<uint8_t> Copy() const { return {data(), data() + size}; }
};

template <class Frame>
Bytes VideoOf(const Frame &frame) {
    Bytes bytes;
    EXPECT_EQ(S_OK, frame->FrameVideoGetBytes(&bytes.size, &bytes.address));
    return bytes;
}

template <class Frame>
Bytes AudioOf(const Frame &frame) {
    Bytes bytes;
    EXPECT_EQ(S_OK, frame->FrameAudioGetBytes(&bytes.size, &bytes.address));
    return bytes;
}

template <class Frame>
Z_AV_PROPS PropsOf(const Frame &frame) {
    Z_AV_PROPS props = {};
    EXPECT_EQ(S_OK, frame->FrameAVPropsGet(&props));
    return props;
}

template <class To, class From>
ComPtr<To> As(const ComPtr<From> &from) {
    return QueryFor<To>(from.get());
}

/// Each test sees the module's object count go back to what it was.
class FrameTest : public ::testing::Test {
protected:
    void SetUp() override {
        m_objects = ModuleCount::Get();
        ASSERT_EQ(S_OK, FrameFactoryCreate(ZIidOf<IZFrames_I>(), m_factory.PutVoid()));
    }
    void TearDown() override {
        m_factory.Reset();
        EXPECT_EQ(m_objects, ModuleCount::Get());
    }

    /// A frame with patterned pixels.
    ComPtr<IZFrame_I> Frame(Z_VID_PROPS props) {
        const std::vector<uint8_t> pixels = Pattern(static_cast<size_t>(FrameBufferSize(&props)));
        ComPtr<IZFrame> frame;
        EXPECT_EQ(S_OK, m_factory->FrameCreateFromProps(&props, AddressIn(pixels.data()), frame.Put(), nullptr));
        return As<IZFrame_I>(frame);
    }

    /// The same with sound and a time.
    ComPtr<IZFrame_I> SoundFrame(Z_VID_PROPS props) {
        ComPtr<IZFrame_I> frame = Frame(props);
        Z_AV_PROPS all = PropsOf(frame);
        all.audProps = {2, 48000, 16, 5};
        all.ancData.eFlags = eZAF_AL_Valid;
        all.bLocked = 3;
        EXPECT_EQ(S_OK, frame->FrameAVPropsSet(&all));
        const std::vector<uint8_t> sound = Pattern(400);
        EXPECT_EQ(S_OK, frame->FrameAudioReset(400, AddressIn(sound.data())));
        Z_TIME time = {};
        time.rtStartTime = 1234567;
        time.eFFlags = eZFF_Live;
        EXPECT_EQ(S_OK, frame->FrameTimeSet(&time));
        return frame;
    }

    ComPtr<IZFrame> Clone(IZFrame *frame, int32_t type, eZFCC fcc = eZFCC_Default) {
        ComPtr<IZFrame> clone;
        EXPECT_EQ(S_OK, frame->FrameClone(clone.Put(), static_cast<eZFrameClone>(type), fcc));
        return clone;
    }

    ComPtr<IZFrames_I> m_factory;
    int32_t m_objects = 0;
};

}    // namespace zck::test
