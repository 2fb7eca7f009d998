#include "frames/audio/audio_buffer.h"
#include "frames/audio/audio_work.h"
#include "frames/media/audio_props.h"

namespace zck {
namespace {

HRESULT Fill(ZAudioBuffer2 &buffer, const AudioBlock &audio, int64_t first, int64_t count) {
    const int64_t total =
        buffer.Add(&audio.props, audio.data + AudioBytes(&audio.props, first), AudioBytes(&audio.props, count), true, false);
    return total < 0 ? static_cast<HRESULT>(total) : S_OK;
}

}    // namespace

HRESULT AudioAdd(const AudioBlock &dest, int64_t destPos, const AudioBlock &source, int64_t sourcePos, int64_t count,
                 double dBStart, double dBEnd, bool bFade) noexcept {
    ZAudioBuffer2 own;
    ZAudioBuffer2 other;
    HRESULT hr = Fill(own, dest, destPos, count);
    if (SUCCEEDED(hr)) hr = Fill(other, source, sourcePos, count);
    if (FAILED(hr)) return hr;
    const GainRamp gain = GainRamp::Between(GainFromDb(dBStart), GainFromDb(dBEnd), dest.Samples());
    const GainRamp ownGain = bFade ? GainRamp{1.0 - gain.step, -gain.step} : GainRamp{};
    hr = own.Mix(&other, gain, ownGain, {count, 0, 0, 0});
    if (FAILED(hr)) return hr;
    return own.Get(nullptr, dest.data + AudioBytes(&dest.props, destPos), count);
}

}    // namespace zck
