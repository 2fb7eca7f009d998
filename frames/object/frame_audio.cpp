// The frame's own sound: setting it, its channels, gain, another record.
#include <algorithm>
#include <mutex>

#include "frames/audio/channel_map.h"
#include "frames/media/audio_props.h"
#include "frames/object/address.h"
#include "frames/object/frame.h"

namespace zck {
namespace {

constexpr HRESULT kVfwEEnumOutOfSync = StatusOf(0x80040203);

// What every channel of the record's sound has, where each sample keeps its place.
int64_t ChannelBytes(const AudioBlock &audio) {
    return int64_t{audio.size} / audio.props.nChannels * WorkBytes(WorkFormOf(audio.props.nBitsPerSample)) /
           StoredBytes(StoredFormOf(audio.props.nBitsPerSample));
}

bool ChannelsFit(const ZChannelsBuffer &channels, const AudioBlock &audio) {
    if (channels.Form() != WorkFormOf(audio.props.nBitsPerSample)) return false;
    const int64_t bytes = ChannelBytes(audio);
    for (int32_t c = 0; c < channels.Count(); ++c) {
        if (channels.BytesOf(c) != bytes) return false;
    }
    return true;
}

}    // namespace

HRESULT CCoZFrame2::ZFAudioSet(Z_AUD_PROPS *_pProps, int32_t _cbSize, int64_t _pbAudio) {
    if (_cbSize < 0) return E_INVALIDARG;
    const std::lock_guard lock(m_lockMedia);
    const HRESULT hr = AudioAssign(PointerFrom<>(_pbAudio), static_cast<uint32_t>(_cbSize));
    if (FAILED(hr)) return hr;
    if (AudioPropsValid(_pProps, true)) m_props.audProps = *_pProps;
    // The bytes may have come from here, so it goes last.
    m_audioRef.Clear();
    m_channels.Clear();
    m_props.ancData = {};
    if (_cbSize > 0 && _pbAudio != 0) LoudnessMeasureBoth(AudioOwn(), m_props.ancData);
    return S_OK;
}

HRESULT CCoZFrame2::ZFAudioSamplesSet(Z_AUD_PROPS *_pProps, int32_t _nSamples) {
    if (!AudioPropsValid(_pProps, true) || _nSamples < 0) return E_INVALIDARG;
    const int64_t bytes = AudioBytesChecked(*_pProps, _nSamples);
    return bytes >= 0 ? ZFAudioSet(_pProps, static_cast<int32_t>(bytes), 0) : E_OUTOFMEMORY;
}

HRESULT CCoZFrame2::ZFAudioChannelGet(int32_t _nIndex, int64_t _bGrow, int32_t *_pcbSize, int64_t *_ppbChannel) {
    if (_pcbSize != nullptr) *_pcbSize = 0;
    if (_ppbChannel != nullptr) *_ppbChannel = 0;
    const std::lock_guard lock(m_lockMedia);
    const AudioBlock audio = AudioOwn();
    if (!AudioPropsValid(&audio.props, true) || audio.size == 0) return kErrorEmpty;
    HRESULT hr = S_OK;
    if (m_channels.Count() == 0) hr = m_channels.FromInterleaved(&audio.props, audio.size, audio.data, {}, -1);
    const int32_t wanted = _bGrow != 0 ? std::min(_nIndex, ZChannelsBuffer::kChannelsMax) + 1 : 0;
    // Channels that a conversion added have no samples yet: they become silent ones.
    if (SUCCEEDED(hr)) hr = m_channels.Resize(m_channels.Bytes(), std::max(m_channels.Count(), wanted), true);
    if (FAILED(hr)) return hr;
    uint8_t *channel = m_channels.Channel(_nIndex);
    if (channel == nullptr && m_channels.Bytes() != 0) return E_OUTOFMEMORY;
    if (_pcbSize != nullptr) *_pcbSize = static_cast<int32_t>(m_channels.Bytes());
    if (_ppbChannel != nullptr) *_ppbChannel = AddressOf(channel);
    return S_OK;
}

HRESULT CCoZFrame2::ZFAudioChannelsCommit() {
    const std::lock_guard lock(m_lockMedia);
    const AudioBlock audio = AudioOwn();
    if (!AudioPropsValid(&audio.props, true)) return kVfwEInvalidMediaType;
    if (m_channels.Count() == 0) return S_FALSE;
    if (WorkFormOf(audio.props.nBitsPerSample) == WorkForm::None) return kVfwEInvalidMediaType;
    if (!ChannelsFit(m_channels, audio)) return kVfwEEnumOutOfSync;
    Z_AUD_PROPS made = audio.props;
    made.nChannels = m_channels.Count();
    CBLOBHolder<CHeapAlloc> block;
    const HRESULT hr = AudioJoin(m_channels, made, audio.Samples(), block);
    if (FAILED(hr)) return hr;
    m_props.audProps = made;
    AudioReplace(block);
    return S_OK;
}

// With the media lock held exclusively. The store stays as its caller left it.
void CCoZFrame2::AudioReplace(CBLOBHolder<CHeapAlloc> &block) {
    const uint32_t size = block.Size();
    m_audio.Attach(block.Detach(), size);
    m_audioRef.Clear();
    LoudnessMeasureBoth(AudioOwn(), m_props.ancData);
}

HRESULT CCoZFrame2::ZFAudioGain(BSTR _bsChannels, double _dblStart, double _dblEnd) {
    const std::lock_guard lock(m_lockMedia);
    return AudioGain(AudioOwn(), m_props.ancData, ViewOf(_bsChannels), _dblStart, _dblEnd);
}

// With the media lock held exclusively. Rate and split bits are labels: nothing is resampled. A wish for floats of as many
// channels changes nothing but them.
HRESULT CCoZFrame2::AudioRecordSet(Z_AUD_PROPS asked, TextView map) {
    Z_AUD_PROPS &own = m_props.audProps;
    if (!map.empty() && !AudioPropsValid(&asked, true) && asked.nChannels >= 0) {
        const auto channels = static_cast<int32_t>(ChannelMapParse(map).size());
        asked = channels != 0 ? own : Z_AUD_PROPS{};
        asked.nChannels = channels;
    }
    if (!AudioPropsValid(&asked, true)) {
        if (asked.nChannels < 0) {
            m_audio.Clear();
            m_audioRef.Clear();
        }
        return S_OK;
    }
    if (!AudioPropsValid(&own, true) || Audio().size == 0) {
        own = asked;
        return S_OK;
    }
    own.nSamplesPerSec = asked.nSamplesPerSec;
    own.nTrackSplitBits = asked.nTrackSplitBits;
    const bool sameBits = asked.nBitsPerSample < 1 || asked.nBitsPerSample == own.nBitsPerSample;
    if (map.empty() && asked.nChannels == own.nChannels && sameBits) return S_OK;

    CBLOBHolder<CHeapAlloc> block;
    const HRESULT hr = AudioConvert(AudioOwn(), asked, map, m_channels, block);
    if (FAILED(hr)) return hr;
    own = asked;
    AudioReplace(block);
    return S_OK;
}

}    // namespace zck
