// Frames for tests, and what can be read of them.
#pragma once

#include <gtest/gtest.h>

#include <initializer_list>
#include <string>

#include "frames/factory/factory.h"
#include "frames/views/f_factory.h"
#include "frames/views/frame_i.h"
#include "frames/views/frames_i.h"
#include "frames/views/sample_buffer.h"
#include "platform/com_ptr.h"
#include "platform/status.h"
#include "platform/text.h"
#include "tests/conformance/convert_model.h"
#include "tests/conformance/media_model.h"

namespace conformance {

using zck::Bstr;
using zck::ComPtr;
using zck::QueryFor;

inline int64_t AddressOf(const void *p) { return static_cast<int64_t>(reinterpret_cast<uintptr_t>(p)); }
inline uint8_t *PointerOf(int64_t address) { return reinterpret_cast<uint8_t *>(static_cast<uintptr_t>(address)); }

inline Bstr TextOf(const char *s) { return Bstr(zck::TextFromUtf8(s)); }

inline eZFrameClone Bits(std::initializer_list<int32_t> bits) {
    int32_t all = 0;
    for (const int32_t b : bits) all |= b;
    return static_cast<eZFrameClone>(all);
}

struct Seen {
    int32_t size;
    int64_t address;
    uint8_t *data() const { return PointerOf(address); }
    Bytes bytes() const { return size > 0 ? Bytes(data(), data() + size) : Bytes(); }
};

template <class Frame>
Seen Video(const ComPtr<Frame> &frame) {
    Seen s = {-1, -1};
    const ComPtr<IZFrame> view = QueryFor<IZFrame>(frame.get());
    EXPECT_EQ(view->FrameVideoGetBytes(&s.size, &s.address), S_OK);
    return s;
}

template <class Frame>
Seen Audio(const ComPtr<Frame> &frame) {
    Seen s = {-1, -1};
    const ComPtr<IZFrame> view = QueryFor<IZFrame>(frame.get());
    EXPECT_EQ(view->FrameAudioGetBytes(&s.size, &s.address), S_OK);
    return s;
}

template <class Frame>
Z_AV_PROPS Props(const ComPtr<Frame> &frame) {
    Z_AV_PROPS props = {};
    EXPECT_EQ(QueryFor<IZFrame>(frame.get())->FrameAVPropsGet(&props), S_OK);
    return props;
}

template <class Frame>
Z_TIME Time(const ComPtr<Frame> &frame) {
    Z_TIME time = {};
    EXPECT_EQ(QueryFor<IZFrame>(frame.get())->FrameTimeGet(&time), S_OK);
    return time;
}

inline uint32_t RefsOf(IUnknown *object) {
    object->AddRef();
    return object->Release();
}

// A factory and what it is asked for most.
class Frames : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_EQ(zck::FrameFactoryCreate(ZIidOf<IZFrames_I>(), m_factory.PutVoid()), S_OK);
        m_wide = QueryFor<IZFFactory>(m_factory.get());
        ASSERT_TRUE(m_wide);
    }

    // A frame with noise for pixels.
    ComPtr<IZFrame> Make(Z_VID_PROPS p, uint32_t seed = 1);
    // The same with time, sound, loudness, data, text and an object.
    ComPtr<IZFrame> MakeRich(Z_VID_PROPS p);
    // A frame over a block of the caller.
    ComPtr<IZFrame> Wrap(Z_VID_PROPS p, void *pixels, int32_t size, IUnknown *keeper = nullptr);

    ComPtr<IZFrames_I> m_factory;
    ComPtr<IZFFactory> m_wide;
};

// A counted object that is nothing else.
ComPtr<IUnknown> PlainObject();

}    // namespace conformance
