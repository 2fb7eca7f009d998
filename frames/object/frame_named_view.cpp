// `IZFFrame`: description, time, bytes and clones.
#include <mutex>
#include <shared_mutex>

#include "frames/object/address.h"
#include "frames/object/frame.h"
#include "platform/process.h"

namespace zck {

HRESULT CCoZFrame2::ZFProcessIdGet(uint32_t *_pnProcessId) { return FrameProcessIdGet(_pnProcessId); }

HRESULT CCoZFrame2::ZFAVPropsGet(Z_AV_PROPS *_pProps, int32_t *_pnAudioSamples) {
    if (_pProps == nullptr && _pnAudioSamples == nullptr) return E_POINTER;
    const std::shared_lock lock(m_lockMedia);
    if (_pProps != nullptr) *_pProps = m_props;
    if (_pnAudioSamples != nullptr) *_pnAudioSamples = AudioSampleCount();
    return S_OK;
}

HRESULT CCoZFrame2::ZFTimeGet(Z_TIME *_pTime) { return FrameTimeGet(_pTime); }

HRESULT CCoZFrame2::ZFTimeSet(Z_TIME *_pTime) { return _pTime != nullptr ? FrameTimeSet(_pTime) : E_INVALIDARG; }

HRESULT CCoZFrame2::ZFFlagsTest(eZFrameFlags _eMask, int32_t *_pnResult) {
    const std::shared_lock lock(m_lockMedia);
    const int32_t flags = static_cast<int32_t>(m_frameTime.eFFlags) & static_cast<int32_t>(_eMask);
    if (_pnResult != nullptr) *_pnResult = flags;
    return flags != 0 ? S_OK : S_FALSE;
}

HRESULT CCoZFrame2::ZFInfoGet(ZF_INFO *_pInfo) {
    if (_pInfo == nullptr) return E_POINTER;
    ZF_INFO info = {};
    const NamedData::Counts counts = m_named.CountsGet();
    info.nDataCount = counts.data;
    info.nObjectCount = counts.objects;
    info.nTextCount = counts.texts;
    {
        const std::shared_lock lock(m_lockMedia);
        const AudioView audio = Audio();
        info.time = m_frameTime;
        info.avProps = m_props;
        info.cbAudio = static_cast<int32_t>(audio.size);
        info.cbVideo = static_cast<int32_t>(VideoSize());
        info.pbVideo = AddressOf(VideoData());
        info.pbAudio = AddressOf(audio.data);
        info.nAudioSamples = AudioSampleCount();
    }
    info.nProcessId = CurrentProcessId();
    FrameBufferIdGet(&info.llSectionId);
    *_pInfo = info;
    return S_OK;
}

HRESULT CCoZFrame2::ZFAudioGetBytes(int32_t *_pcbSize, int64_t *_ppbAudio) { return FrameAudioGetBytes(_pcbSize, _ppbAudio); }

HRESULT CCoZFrame2::ZFVideoGetBytes(int32_t *_pcbSize, int64_t *_ppbVideo) {
    ZFAsyncWait();
    return FrameVideoGetBytes(_pcbSize, _ppbVideo);
}

HRESULT CCoZFrame2::ZFVideoGetHbitmap(int64_t *_pcpHBitmap) {
    ZFAsyncWait();
    return FrameVideoGetHbitmap(_pcpHBitmap);
}

HRESULT CCoZFrame2::ZFVideoSaveToFile(BSTR _bsFileName) {
    ZFAsyncWait();
    return FrameVideoSaveToFile(_bsFileName);
}

HRESULT CCoZFrame2::ZFClone(IZFFrame **_ppCloneFrame, eZFrameClone _eCloneType, eZFCC _fccPixelFormat) {
    if (_ppCloneFrame == nullptr) return E_POINTER;
    *_ppCloneFrame = nullptr;
    eZFCC format = eZFCC_Default;
    {
        const std::shared_lock lock(m_lockMedia);
        format = m_props.vidProps.fccType;
    }
    const bool converts = _fccPixelFormat != eZFCC_Default && _fccPixelFormat != format;
    if ((_eCloneType & (eZFC_Video | eZFC_VideoRef)) != 0 || converts) ZFAsyncWait();
    const auto factory = QueryFor<IZFFactory>(m_pFactory.get());
    if (!factory) return E_UNEXPECTED;
    if ((_eCloneType & eZFC_Video) != 0 || converts) {
        return factory->ZFCloneConvert(static_cast<IZFFrame *>(this), _ppCloneFrame, _eCloneType, _fccPixelFormat);
    }
    ComPtr<CCoZFrame2> clone;
    const HRESULT hr = CloneTessilu(m_pFactory.get(), this, _eCloneType, 0, clone);
    if (SUCCEEDED(hr)) *_ppCloneFrame = clone.Detach();
    return hr;
}

// Whoever fills the frame holds the section until the pixels are there.
HRESULT CCoZFrame2::ZFAsyncWait() {
    const std::lock_guard wait(m_csAsync);
    return S_OK;
}

}    // namespace zck
