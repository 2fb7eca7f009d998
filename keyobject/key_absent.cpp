// The editing of a key on the picture, which is not there yet.
#include "keyobject/key_value.h"

namespace zck {
namespace {

/// The answer of a slot that gives a frame.
HRESULT Absent(IUnknown **out) noexcept {
    if (out != nullptr) *out = nullptr;
    return E_NOTIMPL;
}

}    // namespace

HRESULT CCoZKeyValue::KeyDetect(BSTR, IUnknown **_ppZFrameRes) { return Absent(_ppZFrameRes); }

HRESULT CCoZKeyValue::KeyAddPoint(int32_t, int32_t, BSTR, IUnknown **_ppZFrameRes) { return Absent(_ppZFrameRes); }

HRESULT CCoZKeyValue::KeyExcludePoint(int32_t, int32_t, BSTR, IUnknown **_ppZFrameRes) { return Absent(_ppZFrameRes); }

HRESULT CCoZKeyValue::KeyAddRect(int32_t, int32_t, int32_t, int32_t, BSTR, IUnknown **_ppZFrameRes) {
    return Absent(_ppZFrameRes);
}

}    // namespace zck
