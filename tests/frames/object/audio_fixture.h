// What tests of a frame's sound share.
#pragma once

#include <cstring>

#include "tests/frames/object/frame_fixture.h"

namespace zck::test {

constexpr Z_AUD_PROPS kStereo16 = {2, 48000, 16, 0};
constexpr Z_AUD_PROPS kMono16 = {1, 48000, 16, 0};

/// `Sample` is what the bytes hold.
template <class Sample>
std::vector<Sample> SamplesOf(IZFFrame *frame) {
    int32_t size = 0;
    int64_t address = 0;
    EXPECT_EQ(S_OK, frame->ZFAudioGetBytes(&size, &address));
    std::vector<Sample> samples(static_cast<size_t>(size) / sizeof(Sample));
    if (!samples.empty()) std::memcpy(samples.data(), At<void>(address), samples.size() * sizeof(Sample));
    return samples;
}

using Shorts = std::vector<int16_t>;
using Ints = std::vector<int32_t>;
using Floats = std::vector<float>;

class AudioTest : public FrameTest {
protected:
    ComPtr<IZFFrame> Empty() {
        ComPtr<IZFrame_I> frame;
        EXPECT_EQ(S_OK, m_factory->FrameAlloc(0, 0, nullptr, frame.Put()));
        return As<IZFFrame>(frame);
    }

    template <class Sample>
    ComPtr<IZFFrame> Sound(Z_AUD_PROPS props, const std::vector<Sample> &samples) {
        const auto frame = Empty();
        EXPECT_EQ(S_OK,
                  frame->ZFAudioSet(&props, static_cast<int32_t>(samples.size() * sizeof(Sample)), AddressIn(samples.data())));
        return frame;
    }

    static Z_AV_PROPS Props(const ComPtr<IZFFrame> &frame) {
        Z_AV_PROPS props = {};
        EXPECT_EQ(S_OK, frame->ZFAVPropsGet(&props, nullptr));
        return props;
    }
    static Z_ANC_DATA Levels(const ComPtr<IZFFrame> &frame) { return Props(frame).ancData; }
    static Z_AUD_PROPS Record(const ComPtr<IZFFrame> &frame) { return Props(frame).audProps; }

    static HRESULT Gain(const ComPtr<IZFFrame> &frame, TextView map, double start, double end) {
        const Bstr text(map);
        return frame->ZFAudioGain(map.empty() ? nullptr : text.get(), start, end);
    }
    static HRESULT RecordSet(const ComPtr<IZFFrame> &frame, Z_AUD_PROPS asked, TextView map) {
        Z_AV_PROPS props = {};
        props.audProps = asked;
        const Bstr text(map);
        return frame->ZFAVPropsSet(&props, map.empty() ? nullptr : text.get());
    }
};

inline bool SameRecord(const Z_AUD_PROPS &a, const Z_AUD_PROPS &b) { return std::memcmp(&a, &b, sizeof(a)) == 0; }

}    // namespace zck::test
