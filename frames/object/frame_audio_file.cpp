// Sound files.
#include <mutex>
#include <shared_mutex>

#include "frames/audio/wav_file.h"
#include "frames/media/audio_props.h"
#include "frames/object/frame.h"

namespace zck {

HRESULT CCoZFrame2::ZFAudioSaveToFile(BSTR _bsFileName, int32_t _bAppend) {
    const TextView name = ViewOf(_bsFileName);
    if (name.empty()) return E_INVALIDARG;
    const std::shared_lock lock(m_lockMedia);
    const AudioBlock audio = AudioOwn();
    if (!AudioPropsValid(&audio.props, true) || audio.size == 0) return kVfwEInvalidMediaType;
    return WavSave(name, _bAppend != 0, audio);
}

HRESULT CCoZFrame2::ZFAudioFromFile(BSTR _bsFileName, int32_t _nFirstSample, int32_t _nSamples) {
    const TextView name = ViewOf(_bsFileName);
    if (name.empty()) return E_INVALIDARG;
    Z_AUD_PROPS like = {};
    uint32_t likeSize = 0;
    {
        const std::shared_lock lock(m_lockMedia);
        like = m_props.audProps;
        likeSize = Audio().size;
    }
    Z_AUD_PROPS props = {};
    CBLOBHolder<CHeapAlloc> bytes;
    const HRESULT hr = WavLoad(name, _nFirstSample, _nSamples, {like, nullptr, likeSize}, props, bytes);
    if (FAILED(hr)) return hr;
    const std::lock_guard lock(m_lockMedia);
    m_props.audProps = props;
    m_props.ancData = {};
    m_channels.Clear();
    AudioReplace(bytes);
    return S_OK;
}

}    // namespace zck
