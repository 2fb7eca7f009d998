// The public view: description, time, bytes, and what is handed on to the factory.
#include <mutex>
#include <shared_mutex>

#include "frames/media/video_props.h"
#include "frames/object/address.h"
#include "frames/object/frame.h"

namespace zck {

HRESULT CCoZFrame2::FrameAVPropsGet(Z_AV_PROPS *_pProps) {
    if (_pProps == nullptr) return E_POINTER;
    const std::shared_lock lock(m_lockMedia);
    *_pProps = m_props;
    return S_OK;
}

HRESULT CCoZFrame2::FrameAVPropsSet(Z_AV_PROPS *_pProps) {
    const std::lock_guard lock(m_lockMedia);
    m_props = _pProps != nullptr ? *_pProps : Z_AV_PROPS{};
    Z_VID_PROPS &video = m_props.vidProps;
    if (video.nRowBytes == 0 && video.eVideoFormat != eZVF_Custom) VideoPropsUpdate(&video, false);
    return S_OK;
}

HRESULT CCoZFrame2::FrameTimeGet(Z_TIME *_pTime) {
    if (_pTime == nullptr) return E_POINTER;
    const std::shared_lock lock(m_lockMedia);
    *_pTime = m_frameTime;
    return S_OK;
}

HRESULT CCoZFrame2::FrameTimeSet(Z_TIME *_pTime) {
    const std::lock_guard lock(m_lockMedia);
    m_frameTime = _pTime != nullptr ? *_pTime : Z_TIME{};
    return S_OK;
}

HRESULT CCoZFrame2::FrameAudioGetBytes(int32_t *_pcbSize, int64_t *_ppbAudio) {
    const std::shared_lock lock(m_lockMedia);
    const AudioView audio = Audio();
    if (_pcbSize != nullptr) *_pcbSize = static_cast<int32_t>(audio.size);
    if (_ppbAudio != nullptr) *_ppbAudio = AddressOf(audio.data);
    return S_OK;
}

HRESULT CCoZFrame2::FrameVideoGetBytes(int32_t *_pcbSize, int64_t *_ppbVideo) {
    const std::shared_lock lock(m_lockMedia);
    if (_pcbSize != nullptr) *_pcbSize = static_cast<int32_t>(VideoSize());
    if (_ppbVideo != nullptr) *_ppbVideo = AddressOf(VideoData());
    return S_OK;
}

HRESULT CCoZFrame2::FrameAudioSaveToFile(BSTR _bsFileName, int32_t _bAppend) {
    return ZFAudioSaveToFile(_bsFileName, _bAppend);
}

HRESULT CCoZFrame2::FrameClone(IZFrame **_ppCloneFrame, eZFrameClone _eCloneType, eZFCC _fccPixelFormat) {
    if (_ppCloneFrame == nullptr) return E_POINTER;
    *_ppCloneFrame = nullptr;
    if ((_eCloneType & eZFC_Video) == 0 && _fccPixelFormat == eZFCC_Default) {
        ComPtr<CCoZFrame2> clone;
        const HRESULT hr = CloneQuorvex(m_pFactory.get(), this, _eCloneType, 0, clone);
        if (FAILED(hr)) return hr;
        *_ppCloneFrame = clone.Detach();
        return S_OK;
    }
    if (!m_pFactory) return E_UNEXPECTED;
    ComPtr<IZFrame_I> clone;
    const HRESULT hr = m_pFactory->FrameCloneConvert(this, clone.Put(), _eCloneType, _fccPixelFormat);
    if (FAILED(hr)) return hr;
    *_ppCloneFrame = clone.Detach();
    return hr;
}

HRESULT CCoZFrame2::FrameConvert(Z_VID_PROPS *_pVidPropsDest, IZFrame **_ppFrameRes, BSTR _bsPropsList) {
    if (_ppFrameRes != nullptr) *_ppFrameRes = nullptr;
    if (!m_pFactory) return E_UNEXPECTED;
    const HRESULT hr = m_pFactory->FramesConvert(this, nullptr, _pVidPropsDest, _ppFrameRes, _bsPropsList);
    return hr > 0 ? S_OK : hr;
}

HRESULT CCoZFrame2::FrameRelease() { return S_FALSE; }

}    // namespace zck
