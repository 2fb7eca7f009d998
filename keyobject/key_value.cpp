#include "keyobject/key_value.h"

#include "keyobject/preview.h"
#include "zchromakey/module.h"

namespace zck {

const CLSID &CCoZKeyValue::PersistClassId() { return CLSID_ZKey; }

HRESULT CCoZKeyValue::PersistTransfer(Transfer, TextView, const XMLParse::XMLNodePtr &, TextView,
                                      const XMLParse::XMLNodePtr &) {
    return S_OK;
}

KeyStep CCoZKeyValue::StepNow() const {
    const std::lock_guard guard(m_stepLock);
    return m_step;
}

void CCoZKeyValue::StepPut(const KeyStep &step) {
    const std::lock_guard guard(m_stepLock);
    m_step = step;
}

HRESULT CCoZKeyValue::Render(IUnknown **out) {
    ComPtr<IZFrame> preview;
    const HRESULT hr = RenderPreview(m_frames, StepNow().key, &preview);
    return FAILED(hr) ? hr : preview->QueryInterface(IID_IUnknown, reinterpret_cast<void **>(out));
}

HRESULT CCoZKeyValue::KeyFrameSet(IUnknown *_pZFrameKeyingOrNull, IUnknown *_pZFrameBGOrNull) {
    return Guarded([&] { return m_frames.Set(_pZFrameKeyingOrNull, _pZFrameBGOrNull); });
}

HRESULT CCoZKeyValue::KeyFrameGet(IUnknown **_ppZFrameRes, IUnknown **_ppZFrameBG) {
    if (_ppZFrameRes != nullptr) *_ppZFrameRes = nullptr;
    if (_ppZFrameBG != nullptr) *_ppZFrameBG = nullptr;
    const ComPtr<IZFrame> background = _ppZFrameBG != nullptr ? m_frames.Now().background : nullptr;
    if (background) background->QueryInterface(IID_IUnknown, reinterpret_cast<void **>(_ppZFrameBG));
    // A preview that cannot be made is no failure here.
    if (_ppZFrameRes != nullptr) Guarded([&] { return Render(_ppZFrameRes); });
    return S_OK;
}

}    // namespace zck
