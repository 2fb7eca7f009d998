#include "frames/audio/audio_buffer.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "frames/media/audio_props.h"
#include "platform/status.h"

namespace zck {
namespace {

bool SameFormat(const Z_AUD_PROPS &a, const Z_AUD_PROPS &b) {
    return a.nChannels == b.nChannels && a.nSamplesPerSec == b.nSamplesPerSec && a.nBitsPerSample == b.nBitsPerSample;
}

}    // namespace

void ZAudioBuffer2::Clear() noexcept {
    m_channels.Clear();
    m_scratch.Clear();
    m_resamplers.clear();
}

int64_t ZAudioBuffer2::Samples() const noexcept {
    return m_channels.Form() == WorkForm::None ? 0 : m_channels.Bytes() / static_cast<uint32_t>(WorkBytes(m_channels.Form()));
}

int64_t ZAudioBuffer2::Add(const Z_AUD_PROPS *props, const void *data, int64_t bytes, bool bNewFormatIfEmpty,
                           bool bMixDown) noexcept {
    if (!AudioPropsValid(props, true) || bytes < 0 || (data == nullptr && bytes != 0)) return E_INVALIDARG;
    if (m_format.nChannels < 0) return kErrorNotSupported;
    const bool fresh = !AudioPropsValid(&m_format, true) || (bNewFormatIfEmpty && Samples() == 0);
    const Z_AUD_PROPS format = fresh ? *props : m_format;
    if (WorkFormOf(props->nBitsPerSample) == WorkForm::None || WorkFormOf(format.nBitsPerSample) == WorkForm::None)
        return kVfwEInvalidMediaType;
    if (fresh) {
        Clear();
        m_format = format;
    }
    const HRESULT hr = SameFormat(*props, m_format) ? m_channels.Append(*props, AudioSamples(props, bytes), data)
                                                    : Guarded([&] { return AddConverted(*props, data, bytes, bMixDown); });
    return FAILED(hr) ? hr : Samples();
}

HRESULT ZAudioBuffer2::AddConverted(const Z_AUD_PROPS &props, const void *data, int64_t bytes, bool bMixDown) {
    const int64_t samples = AudioSamples(&props, bytes);
    HRESULT hr = m_scratch.FromInterleaved(&props, AudioBytes(&props, samples), data, {}, m_format.nBitsPerSample);
    if (FAILED(hr)) return hr;
    const bool bFloat = m_scratch.Form() == WorkForm::Float32;
    if (bMixDown && m_scratch.Count() > m_format.nChannels && !m_scratch.MixDown(m_format.nChannels, bFloat))
        return E_OUTOFMEMORY;

    const int32_t in = props.nSamplesPerSec;
    const int32_t out = m_format.nSamplesPerSec;
    if (in != m_resamplersIn || out != m_resamplersOut) m_resamplers.clear();
    m_resamplersIn = in;
    m_resamplersOut = out;
    const uint32_t at = m_channels.Bytes();
    const double room = std::round(static_cast<double>(samples) * out / in) + 512;
    const int32_t width = WorkBytes(m_scratch.Form());
    if (room * width > static_cast<double>(kAudioBytesMax - at)) return E_OUTOFMEMORY;
    const int32_t channels = std::min(m_format.nChannels, ZChannelsBuffer::kChannelsMax);
    hr = m_channels.Resize(at + static_cast<uint32_t>(room) * static_cast<uint32_t>(width), channels, true);
    if (FAILED(hr)) return hr;
    m_channels.SetForm(m_scratch.Form());

    int64_t made = 0;
    for (int32_t c = 0; SUCCEEDED(hr) && c < channels; ++c)
        hr = ResampleOne(c, in, samples, at, static_cast<int64_t>(room), made);
    const HRESULT cut = m_channels.Resize(at + static_cast<uint32_t>(made * width), -1, false);
    return FAILED(hr) ? hr : cut;
}

// Channels that the block does not have go on with silence, so that all keep one length.
HRESULT ZAudioBuffer2::ResampleOne(int32_t channel, int32_t in, int64_t samples, uint32_t at, int64_t room, int64_t &made) {
    const auto index = static_cast<size_t>(channel);
    while (m_resamplers.size() <= index) m_resamplers.push_back(std::make_unique<Resampler>(in, m_format.nSamplesPerSec));
    const uint8_t *source = m_scratch.Channel(channel);
    if (source == nullptr && samples > 0) return E_OUTOFMEMORY;
    uint8_t *target = m_channels.Channel(channel, at);
    if (m_scratch.Form() == WorkForm::Float32) {
        made =
            m_resamplers[index]->Run(reinterpret_cast<const float *>(source), samples, reinterpret_cast<float *>(target), room);
    } else {
        made = m_resamplers[index]->Run(reinterpret_cast<const int16_t *>(source), samples, reinterpret_cast<int16_t *>(target),
                                        room);
    }
    return S_OK;
}

HRESULT ZAudioBuffer2::Mix(ZAudioBuffer2 *source, GainRamp sourceGain, GainRamp destGain, const MixPart &part) noexcept {
    if (source == nullptr || m_format.nChannels < 0) return S_FALSE;
    if (Samples() == 0) {
        m_format = source->m_format;
        m_channels.Clear();
        if (sourceGain.start != 1.0) return S_OK;
        return m_channels.CopyFrom(source->m_channels);
    }
    if (m_format.nSamplesPerSec != source->m_format.nSamplesPerSec) return S_FALSE;
    int64_t samples = std::min(Samples(), source->Samples());
    if (part.samples > 0) samples = std::min(samples, part.samples);
    if (sourceGain.start <= 0.0 || samples < 1) return S_FALSE;
    if (destGain.step <= -1.0) destGain.step = -sourceGain.step;

    const int32_t wanted = part.channels > 0 ? part.channels : ZChannelsBuffer::kChannelsMax;
    for (int64_t i = 0; i < wanted; ++i) {
        const int64_t from = part.sourceFirst + i;
        const int64_t to = part.destFirst + i;
        if (from < 0 || to < 0) continue;
        if (from >= source->m_channels.Count() || to >= m_channels.Count()) break;
        MixChannel(source->m_channels, static_cast<int32_t>(from), static_cast<int32_t>(to), samples, sourceGain, destGain);
    }
    return S_OK;
}

// In blocks, so that the copy of the source needs no memory.
void ZAudioBuffer2::MixChannel(ZChannelsBuffer &from, int32_t source, int32_t dest, int64_t samples, const GainRamp &sourceGain,
                               const GainRamp &destGain) noexcept {
    constexpr int64_t kBlock = 2048;
    const WorkForm form = m_channels.Form();
    const int32_t width = WorkBytes(form);
    const int32_t sourceWidth = WorkBytes(from.Form());
    const SampleKernels &kernels = SampleKernelsGet();
    const auto stored = static_cast<int>(from.Form() == WorkForm::Int16 ? StoredForm::Int16 : StoredForm::Float32);
    const SplitSamples convert = kernels.split[stored][static_cast<int>(form)];
    samples = std::min({samples, int64_t{from.BytesOf(source)} / sourceWidth, int64_t{m_channels.BytesOf(dest)} / width});
    for (int64_t at = 0; at < samples; at += kBlock) {
        const int64_t count = std::min(kBlock, samples - at);
        alignas(32) uint8_t block[kBlock * sizeof(float)];
        void *target = block;
        convert(&target, 1, from.Channel(source, static_cast<uint32_t>(at * sourceWidth)), sourceWidth, count);
        uint8_t *own = m_channels.Channel(dest, static_cast<uint32_t>(at * width));
        GainApply(block, form, at, count, sourceGain, kMixGain);
        GainApply(own, form, at, count, destGain, kMixGain);
        if (form == WorkForm::Float32)
            kernels.add32(reinterpret_cast<float *>(own), reinterpret_cast<float *>(block), count);
        else
            kernels.add16(reinterpret_cast<int16_t *>(own), reinterpret_cast<int16_t *>(block), count);
    }
}

HRESULT ZAudioBuffer2::Get(const Z_AUD_PROPS *format, void *dest, int64_t samples) noexcept {
    const Z_AUD_PROPS &props = format != nullptr ? *format : m_format;
    if (dest == nullptr) return E_POINTER;
    if (!AudioPropsValid(&props, true)) return kVfwEInvalidMediaType;
    const int64_t wanted = samples < 0 ? Samples() : samples;
    const int64_t bytes = AudioBytesChecked(props, wanted);
    if (bytes < 0) return E_OUTOFMEMORY;
    const int64_t count = std::min(wanted, Samples());
    const int64_t filled = AudioBytes(&props, count);
    if (bytes > filled) std::memset(static_cast<uint8_t *>(dest) + filled, 0, static_cast<size_t>(bytes - filled));
    return Interleave(m_channels, 0, props, count, dest);
}

}    // namespace zck
