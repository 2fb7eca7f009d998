#include <algorithm>

#include "frames/audio/audio_work.h"
#include "frames/audio/channel_map.h"
#include "frames/media/audio_props.h"
#include "platform/status.h"

namespace zck {
namespace {

constexpr int32_t kLoudnessChannels = 32;

int64_t SamplesIn(const ZChannelsBuffer &channels) {
    return channels.Form() == WorkForm::None ? 0 : channels.Bytes() / static_cast<uint32_t>(WorkBytes(channels.Form()));
}

// One channel into its entries; channels that have none are not measured, as nothing waits for them.
void MeasureOne(MeterHolder &holder, ZChannelsBuffer &channels, int32_t index, const Z_AUD_PROPS &props, int64_t samples,
                Z_AUDIO_LOUDNESS &loudness) {
    if (index >= kLoudnessChannels) return;
    MeterChannel(holder, props, channels.Channel(index), samples, &loudness.arrRMS[index], &loudness.arrVUMeter[index],
                 &loudness.arrVUPeaks[index]);
}

void ZeroMeasured(Z_AUDIO_LOUDNESS &loudness) {
    std::fill(std::begin(loudness.arrRMS), std::end(loudness.arrRMS), 0.0F);
    std::fill(std::begin(loudness.arrVUMeter), std::end(loudness.arrVUMeter), 0.0F);
    std::fill(std::begin(loudness.arrVUPeaks), std::end(loudness.arrVUPeaks), 0.0F);
    loudness.nValidChannels = 0;
}

void MeasureAll(ZChannelsBuffer &channels, const Z_AUD_PROPS &props, Z_AUDIO_LOUDNESS &loudness) {
    ZeroMeasured(loudness);
    const int64_t samples = SamplesIn(channels);
    if (samples < 1) return;
    MeterHolder holder;
    const int32_t count = std::min(channels.Count(), kLoudnessChannels);
    for (int32_t c = 0; c < count; ++c) MeasureOne(holder, channels, c, props, samples, loudness);
    loudness.nValidChannels = count;
}

bool IsMeasured(const Z_ANC_DATA &levels) {
    const auto *bytes = reinterpret_cast<const uint8_t *>(&levels);
    return std::any_of(bytes, bytes + sizeof(levels), [](uint8_t byte) { return byte != 0; });
}

}    // namespace

int64_t AudioBlock::Samples() const noexcept { return AudioSamples(&props, size); }

void LoudnessMeasure(const AudioBlock &audio, Z_AUDIO_LOUDNESS &loudness) noexcept {
    ZChannelsBuffer channels;
    // Only whole samples, so that all channels end with one.
    const int64_t bytes = AudioBytes(&audio.props, audio.Samples());
    if (bytes > 0) channels.FromInterleaved(&audio.props, bytes, audio.data, {}, -1);
    MeasureAll(channels, audio.props, loudness);
}

void LoudnessMeasureBoth(const AudioBlock &audio, Z_ANC_DATA &levels) noexcept {
    LoudnessMeasure(audio, levels.audOutput);
    levels.audOriginal = levels.audOutput;
}

HRESULT AudioGain(const AudioBlock &audio, Z_ANC_DATA &levels, TextView map, double dBStart, double dBEnd) noexcept {
    if (dBStart != dBStart || dBEnd != dBEnd) return E_INVALIDARG;
    const int64_t samples = audio.Samples();
    if (samples < 1) return S_FALSE;
    const GainRamp ramp = GainRamp::Between(GainFromDb(dBStart), GainFromDb(dBEnd), samples);
    const bool measured = IsMeasured(levels);
    if (ramp.Neutral() && measured) return S_OK;

    ZChannelsBuffer channels;
    const HRESULT hr = channels.FromInterleaved(&audio.props, AudioBytes(&audio.props, samples), audio.data, {}, -1);
    if (FAILED(hr)) return hr;
    const int32_t valid = std::min(audio.props.nChannels, kLoudnessChannels);
    if (ramp.Neutral()) {
        MeasureAll(channels, audio.props, levels.audOutput);
        levels.audOriginal = levels.audOutput;
        return S_OK;
    }
    return Guarded([&] {
        const std::vector<int32_t> list = ChannelMapParse(map);
        MeterHolder holder;
        for (int32_t c = 0; c < channels.Count(); ++c) {
            if (map.empty() || std::find(list.begin(), list.end(), c) != list.end()) {
                GainApply(channels.Channel(c), channels.Form(), 0, samples, ramp, kMeterGain);
                MeasureOne(holder, channels, c, audio.props, samples, levels.audOutput);
            } else if (!measured) {
                MeasureOne(holder, channels, c, audio.props, samples, levels.audOriginal);
            }
        }
        levels.audOutput.nValidChannels = levels.audOriginal.nValidChannels = valid;
        return Interleave(channels, 0, audio.props, samples, audio.data);
    });
}

HRESULT AudioJoin(ZChannelsBuffer &channels, const Z_AUD_PROPS &props, int64_t samples, CBLOBHolder<CHeapAlloc> &out) noexcept {
    const int64_t bytes = AudioBytesChecked(props, samples);
    if (bytes < 0) return E_OUTOFMEMORY;
    CBLOBHolder<CHeapAlloc> block;
    const HRESULT hr = std::min(block.Reserve(static_cast<uint32_t>(bytes)), S_OK);
    if (FAILED(hr)) return hr;
    const HRESULT joined = Interleave(channels, 0, props, samples, block.Data());
    if (SUCCEEDED(joined)) out.Attach(block.Detach(), static_cast<uint32_t>(bytes));
    return joined;
}

HRESULT AudioConvert(const AudioBlock &audio, const Z_AUD_PROPS &to, TextView map, ZChannelsBuffer &channels,
                     CBLOBHolder<CHeapAlloc> &out) noexcept {
    ZChannelsBuffer made;
    // -1 stands for the record's own bits to `FromInterleaved`; as a wish it has no working form.
    if (WorkFormOf(to.nBitsPerSample) == WorkForm::None) return kVfwEInvalidMediaType;
    const int64_t samples = audio.Samples();
    if (AudioBytesChecked(to, samples) < 0) return E_OUTOFMEMORY;
    HRESULT hr = made.FromInterleaved(&audio.props, audio.size, audio.data, map, to.nBitsPerSample);
    if (FAILED(hr)) return hr;
    if (!made.MixDown(to.nChannels, made.Form() == WorkForm::Float32)) return E_OUTOFMEMORY;
    hr = AudioJoin(made, to, samples, out);
    if (SUCCEEDED(hr)) channels.Swap(made);
    return hr;
}

}    // namespace zck
