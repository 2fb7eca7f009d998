// The editing of a key, which is not there yet.
#include "keyobject/key_value.h"

namespace zck {
namespace {

/// The answer of a slot that gives a frame.
HRESULT Absent(IUnknown **out) noexcept {
    if (out != nullptr) *out = nullptr;
    return E_NOTIMPL;
}

}    // namespace

HRESULT CCoZKeyValue::KeyFrameSet(IUnknown *, IUnknown *) { return E_NOTIMPL; }

HRESULT CCoZKeyValue::KeyFrameGet(IUnknown **_ppZFrameRes, IUnknown **_ppZFrameBG) {
    Absent(_ppZFrameBG);
    return Absent(_ppZFrameRes);
}

HRESULT CCoZKeyValue::KeyDetect(BSTR, IUnknown **_ppZFrameRes) { return Absent(_ppZFrameRes); }

HRESULT CCoZKeyValue::KeyAddPoint(int32_t, int32_t, BSTR, IUnknown **_ppZFrameRes) { return Absent(_ppZFrameRes); }

HRESULT CCoZKeyValue::KeyExcludePoint(int32_t, int32_t, BSTR, IUnknown **_ppZFrameRes) { return Absent(_ppZFrameRes); }

HRESULT CCoZKeyValue::KeyAddRect(int32_t, int32_t, int32_t, int32_t, BSTR, IUnknown **_ppZFrameRes) {
    return Absent(_ppZFrameRes);
}

HRESULT CCoZKeyValue::KeyAdjustSet(eCK_Adjust, double, IUnknown **_ppZFrameRes) { return Absent(_ppZFrameRes); }

HRESULT CCoZKeyValue::KeyAdjustGet(eCK_Adjust, double *_pdblValue) {
    if (_pdblValue != nullptr) *_pdblValue = 0;
    return E_NOTIMPL;
}

HRESULT CCoZKeyValue::KeyStepBack(int32_t, IUnknown **_ppZFrameRes) { return Absent(_ppZFrameRes); }

HRESULT CCoZKeyValue::KeyStepFwd(int32_t, IUnknown **_ppZFrameRes) { return Absent(_ppZFrameRes); }

HRESULT CCoZKeyValue::KeyReset(IUnknown **_ppZFrameRes) { return Absent(_ppZFrameRes); }

HRESULT CCoZKeyValue::KeyRawSet(CHROMA_KEY_RAW *, CK_ADJUST *) { return E_NOTIMPL; }

HRESULT CCoZKeyValue::KeyRawGet(CHROMA_KEY_RAW *_pvmKey, CK_ADJUST *_pKeyAdjust) {
    if (_pvmKey != nullptr) *_pvmKey = {};
    if (_pKeyAdjust != nullptr) *_pKeyAdjust = {};
    return E_NOTIMPL;
}

}    // namespace zck
