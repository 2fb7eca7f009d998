// Sound between frames. What is needed of the other frame is copied before this one's lock is taken, so that two frames may
// add each other, and a frame may be added to itself.
#include <algorithm>
#include <mutex>
#include <shared_mutex>

#include "frames/audio/gain.h"
#include "frames/media/audio_props.h"
#include "frames/object/address.h"
#include "frames/object/frame.h"
#include "platform/process.h"

namespace zck {
namespace {

HRESULT CopyInto(CBLOBHolder<CHeapAlloc> &bytes, const void *data, int64_t size) {
    if (data == nullptr || size <= 0) return S_OK;
    const HRESULT hr = bytes.Reserve(static_cast<uint32_t>(size));
    if (SUCCEEDED(hr)) bytes.CopyIn(data, bytes.Size());
    return std::min(hr, S_OK);
}

// For a frame of another process, which gives a copy.
HRESULT SoundOfRemote(IZFFrame *source, CBLOBHolder<CHeapAlloc> &bytes) {
    const auto frame = QueryFor<IZFrame_I>(source);
    if (!frame) return E_NOINTERFACE;
    int32_t size = 0;
    int64_t block = 0;
    const HRESULT hr = frame->FrameAudioCopyGet(&size, &block);
    if (FAILED(hr)) return hr;
    const HRESULT copied = CopyInto(bytes, PointerFrom<>(block), size);
    CoTaskMemFree(PointerFrom<void>(block));
    return copied;
}

bool IsNaN(double value) { return value != value; }

// A position that has come to the end of a frame of so many samples is given back as -1.
void PositionGive(int32_t *place, int64_t position, int64_t end) {
    if (place != nullptr) *place = position >= end ? -1 : static_cast<int32_t>(position);
}

}    // namespace

HRESULT CCoZFrame2::SoundTake(IZFFrame *source, Z_AUD_PROPS &props, CBLOBHolder<CHeapAlloc> &bytes) {
    if (const auto own = QueryFor<CCoZFrame2>(source)) {
        const std::shared_lock lock(own->m_lockMedia);
        const AudioBlock audio = own->AudioOwn();
        props = audio.props;
        return CopyInto(bytes, audio.data, audio.size);
    }
    ZF_INFO info = {};
    const HRESULT hr = source->ZFInfoGet(&info);
    if (FAILED(hr)) return hr;
    props = info.avProps.audProps;
    if (info.nProcessId != CurrentProcessId()) return SoundOfRemote(source, bytes);
    return CopyInto(bytes, PointerFrom<>(info.pbAudio), info.cbAudio);
}

// With the media lock held exclusively: silence of another frame's record, where there was no sound.
HRESULT CCoZFrame2::AudioBegin(const Z_AUD_PROPS &props, int64_t samples) {
    const int64_t bytes = AudioBytesChecked(props, samples);
    if (bytes < 0) return E_OUTOFMEMORY;
    const HRESULT hr = AudioAssign(nullptr, static_cast<uint32_t>(bytes));
    if (FAILED(hr)) return hr;
    m_audioRef.Clear();
    m_props.audProps = props;
    return S_OK;
}

// Each position is tested against the other frame's length: this is what hosts rely on.
HRESULT CCoZFrame2::ZFAudioAdd(IZFFrame *_pSource, int32_t *_pnSourcePos, int32_t *_pnDestPos, int32_t _nCount,
                               double _dblStart, double _dblEnd, int32_t _bFade) {
    if (IsNaN(_dblStart) || IsNaN(_dblEnd)) return E_INVALIDARG;
    if (_pSource == nullptr) return S_FALSE;
    Z_AUD_PROPS props = {};
    CBLOBHolder<CHeapAlloc> bytes;
    HRESULT hr = SoundTake(_pSource, props, bytes);
    if (FAILED(hr)) return hr;
    const AudioBlock source{props, bytes.Data(), bytes.Size()};
    if (!source.HasSamples()) return S_FALSE;

    const std::lock_guard lock(m_lockMedia);
    const Z_AUD_PROPS &own = m_props.audProps;
    if (AudioPropsValid(&own, true) && own.nSamplesPerSec != props.nSamplesPerSec) return kVfwEInvalidMediaType;
    const int64_t sourcePos = _pnSourcePos != nullptr ? *_pnSourcePos : 0;
    const int64_t destPos = _pnDestPos != nullptr ? *_pnDestPos : 0;
    if (sourcePos < 0 || destPos < 0) return S_FALSE;
    const bool fresh = !AudioOwn().HasSamples();
    int64_t n = source.Samples() - sourcePos;
    if (_nCount >= 0) n = std::min<int64_t>(n, _nCount);
    if (!fresh) n = std::min(n, AudioOwn().Samples() - destPos);
    if (n <= 0) return S_FALSE;
    const bool formless =
        WorkFormOf(props.nBitsPerSample) == WorkForm::None || (!fresh && WorkFormOf(own.nBitsPerSample) == WorkForm::None);
    if (formless) return kVfwEInvalidMediaType;

    if (fresh) hr = AudioBegin(props, destPos + n);
    if (SUCCEEDED(hr)) hr = AudioAdd(AudioOwn(), destPos, source, sourcePos, n, _dblStart, _dblEnd, _bFade != 0);
    if (FAILED(hr)) return hr;
    LoudnessMeasure(AudioOwn(), m_props.ancData.audOutput);
    if (fresh) m_props.ancData.audOriginal = m_props.ancData.audOutput;
    PositionGive(_pnSourcePos, sourcePos + n, AudioOwn().Samples());
    PositionGive(_pnDestPos, destPos + n, source.Samples());
    return S_OK;
}

// There is no mixing service to be asked for, so the key names nothing.
HRESULT CCoZFrame2::ZFAudioMix(IZFFrame *_pSource, double _dblStart, double _dblEnd, int32_t _bFade, BSTR) {
    if (IsNaN(_dblStart) || IsNaN(_dblEnd)) return E_INVALIDARG;
    if (_pSource == nullptr) return S_FALSE;
    bool silent = false;
    {
        const std::shared_lock lock(m_lockMedia);
        silent = !AudioOwn().HasSamples();
    }
    if (silent) {
        const HRESULT hr = _pSource->ZFAudioCopyTo(nullptr, this);
        return FAILED(hr) ? hr : ZFAudioGain(nullptr, _dblStart, _dblEnd);
    }
    int32_t samples = 0;
    const HRESULT hr = _pSource->ZFAVPropsGet(nullptr, &samples);
    if (FAILED(hr)) return hr;
    if (samples > 0) return ZFAudioAdd(_pSource, nullptr, nullptr, -1, _dblStart, _dblEnd, _bFade);
    if (_bFade == 0) return S_FALSE;
    const auto faded = [](double dB) { return DbFromGain(std::max(0.0, 1.0 - GainFromDb(dB))); };
    return ZFAudioGain(nullptr, faded(_dblStart), faded(_dblEnd));
}

// With the media lock held: the sound as a target takes it.
HRESULT CCoZFrame2::AudioMappedGive(TextView map, Z_AUD_PROPS &props, CBLOBHolder<CHeapAlloc> &bytes) const {
    const AudioBlock audio = AudioOwn();
    if (!AudioPropsValid(&audio.props, true)) return kVfwEInvalidMediaType;
    props = audio.props;
    if (map.empty()) return CopyInto(bytes, audio.data, audio.size);
    ZChannelsBuffer channels;
    const HRESULT hr = channels.FromInterleaved(&audio.props, audio.size, audio.data, map, -1);
    if (FAILED(hr)) return hr;
    props.nChannels = channels.Count();
    return AudioJoin(channels, props, audio.Samples(), bytes);
}

HRESULT CCoZFrame2::ZFAudioCopyTo(BSTR _bsChannels, IZFFrame *_pDest) {
    if (_pDest == nullptr) return S_FALSE;
    const TextView map = ViewOf(_bsChannels);
    Z_AUD_PROPS props = {};
    CBLOBHolder<CHeapAlloc> bytes;
    {
        const std::shared_lock lock(m_lockMedia);
        const HRESULT hr = AudioMappedGive(map, props, bytes);
        if (FAILED(hr)) return hr;
    }
    if (map.empty() && QueryFor<CCoZFrame2>(_pDest).get() == this) return S_OK;
    return _pDest->ZFAudioSet(&props, static_cast<int32_t>(bytes.Size()), AddressOf(bytes.Data()));
}

}    // namespace zck
