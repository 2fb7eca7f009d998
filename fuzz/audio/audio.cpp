// Operations on a frame's sound: any record, map, gain and position. The statuses are those of a short list, and the sound is
// as long as its size says.
#include <algorithm>
#include <cstring>
#include <vector>

#include "frames/factory/factory.h"
#include "frames/views/f_frame.h"
#include "frames/views/frame_i.h"
#include "frames/views/frames_i.h"
#include "fuzz/support/foreign_text.h"
#include "platform/com_ptr.h"
#include "platform/status.h"

namespace zck {
namespace {

/// Takes numbers from the bytes until there are none, then zeros.
class Source {
public:
    Source(const uint8_t *data, size_t size) : m_data(data), m_left(size) {}
    bool Empty() const { return m_left == 0; }

    template <class T>
    T Take() {
        T value = {};
        const size_t n = std::min(m_left, sizeof(T));
        if (n != 0) std::memcpy(&value, m_data, n);
        Skip(n);
        return value;
    }
    Text Words() {
        const size_t n = std::min<size_t>(Take<uint8_t>() % 24, m_left);
        const Text text = fuzz::TextOfBytes(m_data, n);
        Skip(n);
        return text;
    }
    /// Small numbers mostly, and the last ones there are.
    int32_t Number() {
        const auto n = Take<int16_t>();
        constexpr int32_t kFar[] = {INT32_MIN, INT32_MAX, 2000000000, -1, 65536, 128, 129, 32};
        return n < -32000 ? kFar[static_cast<size_t>(n + 32768) % 8] : n % 300;
    }

private:
    void Skip(size_t n) {
        m_data += n;
        m_left -= n;
    }
    const uint8_t *m_data;
    size_t m_left;
};

ComPtr<IZFFrame> Frame() {
    static ComPtr<IZFrames_I> s_frames;
    if (!s_frames) fuzz::Require(FrameFactoryCreate(ZIidOf<IZFrames_I>(), s_frames.PutVoid()) == S_OK, "a factory is made");
    ComPtr<IZFrame_I> frame;
    fuzz::Require(s_frames->FrameAlloc(0, 0, nullptr, frame.Put()) == S_OK, "a frame is made");
    return QueryFor<IZFFrame>(frame.get());
}

Z_AUD_PROPS Record(Source &source) {
    constexpr int32_t kBits[] = {16, 24, 32, -32, 12, 20, 8, -64, 0, -1, INT32_MIN, 64};
    const auto pick = source.Take<uint8_t>();
    Z_AUD_PROPS props = {source.Number(), pick < 200 ? 48000 : source.Number(), kBits[pick % 12], pick};
    if (pick % 3 == 0) props.nChannels = 1 + pick % 7;
    return props;
}

double Decibels(Source &source) {
    const auto pick = source.Take<uint8_t>();
    return pick < 128 ? pick - 64.0 : source.Take<double>();
}

void Set(IZFFrame *frame, Source &source) {
    Z_AUD_PROPS props = Record(source);
    std::vector<uint8_t> bytes(source.Take<uint16_t>() % 2000);
    for (uint8_t &byte : bytes) byte = source.Take<uint8_t>();
    const auto address = static_cast<int64_t>(reinterpret_cast<uintptr_t>(bytes.data()));
    fuzz::Require(frame->ZFAudioSet(&props, static_cast<int32_t>(bytes.size()), address) == S_OK, "sound is set");
}

HRESULT Channel(IZFFrame *frame, Source &source) {
    int32_t size = -1;
    int64_t address = 0;
    const int32_t index = source.Number();
    const HRESULT hr = frame->ZFAudioChannelGet(index, source.Take<uint8_t>() & 1, &size, &address);
    fuzz::Require(size >= 0 && (SUCCEEDED(hr) || size == 0), "a channel has a size");
    if (size > 0) std::memset(reinterpret_cast<void *>(static_cast<uintptr_t>(address)), index, static_cast<size_t>(size));
    return hr;
}

HRESULT RecordSet(IZFFrame *frame, Source &source) {
    Z_AV_PROPS props = {};
    props.audProps = Record(source);
    const Bstr map(source.Words());
    return frame->ZFAVPropsSet(&props, map.get());
}

HRESULT One(IZFFrame *frame, IZFFrame *other, Source &source) {
    switch (source.Take<uint8_t>() % 8) {
        case 0:
            return Channel(frame, source);
        case 1:
            return frame->ZFAudioChannelsCommit();
        case 2:
            return RecordSet(frame, source);
        case 3: {
            const Bstr map(source.Words());
            const double from = Decibels(source);
            return frame->ZFAudioGain(map.get(), from, Decibels(source));
        }
        case 4: {
            int32_t at[2] = {source.Number(), source.Number()};
            // A frame without sound would be made as long as the place says.
            at[1] = std::min(at[1], 1000);
            const double from = Decibels(source);
            return frame->ZFAudioAdd(other, &at[0], &at[1], source.Number(), from, Decibels(source),
                                     source.Take<uint8_t>() & 1);
        }
        case 5: {
            const double from = Decibels(source);
            return frame->ZFAudioMix(other, from, Decibels(source), source.Take<uint8_t>() & 1, nullptr);
        }
        case 6: {
            const Bstr map(source.Words());
            return frame->ZFAudioCopyTo(map.get(), other);
        }
        default:
            Set(frame, source);
            return S_OK;
    }
}

void Check(IZFFrame *frame) {
    int32_t size = -1;
    int64_t address = 0;
    fuzz::Require(frame->ZFAudioGetBytes(&size, &address) == S_OK && size >= 0, "sound has a size");
    volatile uint8_t sum = 0;
    const auto *bytes = reinterpret_cast<const uint8_t *>(static_cast<uintptr_t>(address));
    for (int32_t i = 0; i < size; ++i) sum = static_cast<uint8_t>(sum + bytes[i]);
    Z_AV_PROPS props = {};
    int32_t samples = -1;
    fuzz::Require(frame->ZFAVPropsGet(&props, &samples) == S_OK && samples >= 0, "sound has a length");
    const int32_t valid = props.ancData.audOutput.nValidChannels;
    fuzz::Require(valid >= 0 && valid <= 32, "levels have their places");
}

void Walk(Source source) {
    const ComPtr<IZFFrame> frames[2] = {Frame(), Frame()};
    Set(frames[0].get(), source);
    for (int i = 0; i < 32 && !source.Empty(); ++i) {
        const size_t which = source.Take<uint8_t>() & 1;
        const HRESULT hr = One(frames[which].get(), frames[source.Take<uint8_t>() & 1].get(), source);
        constexpr HRESULT kAnswers[] = {
            S_OK, S_FALSE, E_INVALIDARG, E_OUTOFMEMORY, kVfwEInvalidMediaType, kErrorEmpty, static_cast<HRESULT>(0x80040203)};
        fuzz::Require(std::find(std::begin(kAnswers), std::end(kAnswers), hr) != std::end(kAnswers),
                      "a status is one of the list");
        Check(frames[0].get());
        Check(frames[1].get());
    }
}

}    // namespace
}    // namespace zck

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    zck::Walk({data, size});
    return 0;
}
