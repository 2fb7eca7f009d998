#include "frames/audio/channels_buffer.h"

#include <algorithm>
#include <cstring>

#include "frames/audio/channel_map.h"
#include "frames/media/audio_props.h"
#include "platform/status.h"

namespace zck {

void ZChannelsBuffer::Clear() noexcept {
    m_vecBlobs.clear();
    m_spare.Clear();
    m_form = WorkForm::None;
}

void ZChannelsBuffer::Swap(ZChannelsBuffer &other) noexcept {
    m_vecBlobs.swap(other.m_vecBlobs);
    std::swap(m_form, other.m_form);
}

HRESULT ZChannelsBuffer::SetCount(int32_t n) noexcept {
    return Guarded([&] {
        const auto count = static_cast<size_t>(std::clamp(n, 0, kChannelsMax));
        if (count < m_vecBlobs.size()) m_vecBlobs.resize(count);
        m_vecBlobs.reserve(count);
        while (m_vecBlobs.size() < count) {
            ComPtr<Blob> blob;
            blob.Attach(new Blob);
            m_vecBlobs.push_back(std::move(blob));
        }
        return S_OK;
    });
}

HRESULT ZChannelsBuffer::Reserve(uint32_t bytes, int32_t channels, bool bZeroFill) noexcept {
    HRESULT hr = channels >= 0 ? SetCount(channels) : S_OK;
    for (size_t i = 0; SUCCEEDED(hr) && i < m_vecBlobs.size(); ++i)
        hr = std::min(bZeroFill ? m_vecBlobs[i]->Reserve(bytes, 0) : m_vecBlobs[i]->Reserve(bytes), S_OK);
    if (FAILED(hr)) Clear();
    return hr;
}

HRESULT ZChannelsBuffer::Resize(uint32_t bytes, int32_t channels, bool bZeroFill) noexcept {
    HRESULT hr = channels >= 0 ? SetCount(channels) : S_OK;
    for (size_t i = 0; SUCCEEDED(hr) && i < m_vecBlobs.size(); ++i) {
        Blob &blob = *m_vecBlobs[i];
        const uint32_t had = blob.Size();
        if (bytes > blob.Capacity()) {
            Blob grown;
            hr = std::min(grown.Reserve(bytes), S_OK);
            if (FAILED(hr)) break;
            grown.CopyIn(blob.Data(), had);
            blob.Attach(grown.Detach(), bytes);
        } else {
            blob.SetSize(bytes);
            if (bZeroFill && bytes > had) std::memset(blob.Data(had), 0, bytes - had);
        }
    }
    if (FAILED(hr)) Clear();
    return hr;
}

uint32_t ZChannelsBuffer::BytesOf(int32_t index) const noexcept {
    return index >= 0 && index < Count() ? m_vecBlobs[static_cast<size_t>(index)]->Size() : 0;
}

uint8_t *ZChannelsBuffer::Channel(int32_t index, uint32_t offset) noexcept {
    if (index >= 0 && index < Count()) return m_vecBlobs[static_cast<size_t>(index)]->Data(offset);
    m_spare.Reserve(Bytes(), 0);
    return m_spare.Data();
}

uint8_t *const *ZChannelsBuffer::Pointers(uint32_t offset, int32_t first, int32_t count) noexcept {
    const int32_t wanted = count < 0 ? Count() - first : std::min(count, kChannelsMax);
    for (int32_t i = 0; i < wanted; ++i) m_arrChannels[static_cast<size_t>(i)] = Channel(first + i, offset);
    return m_arrChannels.data();
}

HRESULT ZChannelsBuffer::FromInterleaved(const Z_AUD_PROPS *props, int64_t bytes, const void *data, TextView map,
                                         int32_t bits) noexcept {
    if (!AudioPropsValid(props, true)) return kVfwEInvalidMediaType;
    if (bytes < 0) return E_INVALIDARG;
    const WorkForm form = WorkFormOf(bits == -1 ? props->nBitsPerSample : bits);
    const StoredForm stored = StoredFormOf(props->nBitsPerSample);
    if (form == WorkForm::None || stored == StoredForm::None) return kVfwEInvalidMediaType;
    const int64_t size = bytes / props->nChannels * WorkBytes(form) / StoredBytes(stored);
    if (size > kAudioBytesMax) return E_OUTOFMEMORY;
    return Guarded([&] {
        ZChannelsBuffer made;
        made.m_form = form;
        const int64_t samples = data != nullptr ? AudioSamples(props, bytes) : 0;
        const auto used = static_cast<uint32_t>(size);
        const HRESULT hr = map.empty() ? made.SplitWhole(*props, data, std::min(props->nChannels, kChannelsMax), used, samples)
                                       : made.Mapped(*props, data, map, used, samples);
        if (SUCCEEDED(hr)) Swap(made);
        return hr;
    });
}

HRESULT ZChannelsBuffer::SplitWhole(const Z_AUD_PROPS &props, const void *data, int32_t channels, uint32_t bytes,
                                    int64_t samples) {
    // New blocks are zeroed, so that what lies behind the last whole sample is silent.
    const HRESULT hr = Reserve(bytes, channels, false);
    if (SUCCEEDED(hr)) SplitAt(props, data, 0, samples);
    return hr;
}

void ZChannelsBuffer::SplitAt(const Z_AUD_PROPS &props, const void *data, uint32_t offset, int64_t samples) noexcept {
    if (samples == 0) return;
    const StoredForm stored = StoredFormOf(props.nBitsPerSample);
    void *targets[kChannelsMax];
    std::copy_n(Pointers(offset, 0, -1), Count(), targets);
    const SplitSamples split = SampleKernelsGet().split[static_cast<int>(stored)][static_cast<int>(m_form)];
    split(targets, Count(), static_cast<const uint8_t *>(data), int64_t{StoredBytes(stored)} * props.nChannels, samples);
}

HRESULT ZChannelsBuffer::Append(const Z_AUD_PROPS &props, int64_t samples, const void *data) noexcept {
    const WorkForm form = WorkFormOf(props.nBitsPerSample);
    if (form == WorkForm::None) return kVfwEInvalidMediaType;
    const uint32_t had = Bytes();
    if (samples > (kAudioBytesMax - had) / WorkBytes(form)) return E_OUTOFMEMORY;
    const uint32_t bytes = had + static_cast<uint32_t>(samples * WorkBytes(form));
    const HRESULT hr = Resize(bytes, std::min(props.nChannels, kChannelsMax), true);
    if (FAILED(hr)) return hr;
    m_form = form;
    SplitAt(props, data, had, samples);
    return S_OK;
}

HRESULT ZChannelsBuffer::CopyFrom(const ZChannelsBuffer &other) noexcept {
    HRESULT hr = SetCount(other.Count());
    for (size_t i = 0; SUCCEEDED(hr) && i < m_vecBlobs.size(); ++i) {
        const Blob &from = *other.m_vecBlobs[i];
        hr = std::min(m_vecBlobs[i]->Reserve(from.Size()), S_OK);
        if (SUCCEEDED(hr)) m_vecBlobs[i]->CopyIn(from.Data(), from.Size());
    }
    m_form = other.m_form;
    if (FAILED(hr)) Clear();
    return hr;
}

HRESULT ZChannelsBuffer::Mapped(const Z_AUD_PROPS &props, const void *data, TextView map, uint32_t bytes, int64_t samples) {
    const std::vector<int32_t> list = ChannelMapParse(map);
    if (list.empty()) return E_INVALIDARG;
    const HRESULT hr = Reserve(bytes, static_cast<int32_t>(list.size()), true);
    if (FAILED(hr) || samples == 0) return hr;
    ZChannelsBuffer whole;
    whole.m_form = m_form;
    const HRESULT split = whole.SplitWhole(props, data, std::min(props.nChannels, kChannelsMax), bytes, samples);
    if (FAILED(split)) return split;
    for (size_t i = 0; i < list.size(); ++i) {
        if (list[i] >= 0 && list[i] < whole.Count()) m_vecBlobs[i]->CopyIn(whole.Channel(list[i]), bytes);
    }
    return S_OK;
}

HRESULT Interleave(ZChannelsBuffer &channels, int64_t first, const Z_AUD_PROPS &props, int64_t samples, void *block) noexcept {
    const StoredForm stored = StoredFormOf(props.nBitsPerSample);
    const WorkForm form = channels.Form();
    const int32_t count = std::min(channels.Count(), props.nChannels);
    if (stored == StoredForm::None || (form == WorkForm::None && count > 0)) return kVfwEInvalidMediaType;
    if (count <= 0 || samples <= 0) return S_OK;

    const JoinSamples join = SampleKernelsGet().join[static_cast<int>(stored)][static_cast<int>(form)];
    const int32_t width = StoredBytes(stored);
    const int64_t stride = int64_t{width} * props.nChannels;
    const void *sources[ZChannelsBuffer::kChannelsMax] = {};
    int32_t whole = 0;
    for (int32_t c = 0; c < count; ++c) {
        const int64_t has = std::max<int64_t>(int64_t{channels.BytesOf(c)} / WorkBytes(form) - first, 0);
        const uint8_t *source = has > 0 ? channels.Channel(c, static_cast<uint32_t>(first * WorkBytes(form))) : nullptr;
        if (whole == c && has >= samples) {
            sources[whole++] = source;
        } else if (has > 0) {
            const void *one = source;
            join(static_cast<uint8_t *>(block) + int64_t{c} * width, stride, &one, 1, std::min(has, samples));
        }
    }
    if (whole > 0) join(static_cast<uint8_t *>(block), stride, sources, whole, samples);
    return S_OK;
}

}    // namespace zck
