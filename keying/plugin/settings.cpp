// The named settings of the keyer, and the slots of its persistence.
#include "keying/plugin/chroma_key.h"
#include "platform/status.h"

namespace zck {

namespace {

/// Hands out a text that the caller may not want.
HRESULT GiveText(TextView text, BSTR *out) { return out == nullptr ? S_OK : BstrCopyTo(text, out); }

}    // namespace

HRESULT CCoZChromaKey::PropsSet(BSTR _bsPropName, BSTR _bsPropValue) {
    return Guarded([&] { return m_props.Set(ViewOf(_bsPropName), ViewOf(_bsPropValue)); });
}

HRESULT CCoZChromaKey::PropsGet(BSTR _bsPropName, BSTR *_pbsPropValue) {
    if (_pbsPropValue == nullptr) return E_POINTER;
    *_pbsPropValue = nullptr;
    if (ViewOf(_bsPropName).empty()) return E_NOTIMPL;
    return Guarded([&]() -> HRESULT {
        Text value;
        const HRESULT hr = m_props.Get(ViewOf(_bsPropName), &value);
        return hr == S_OK ? GiveText(value, _pbsPropValue) : hr;
    });
}

HRESULT CCoZChromaKey::PropsGetCount(BSTR _bsNodeName, int32_t *_pnCount) {
    if (_pnCount == nullptr) return E_POINTER;
    if (!ViewOf(_bsNodeName).empty()) return E_INVALIDARG;
    *_pnCount = m_props.Count();
    return S_OK;
}

HRESULT CCoZChromaKey::PropsGetByIndex(BSTR _bsNodeName, int32_t _nIndex, BSTR *_pbsPropName, BSTR *_pbsPropValue,
                                       int32_t *_pbNode) {
    if (_pbNode != nullptr) *_pbNode = 0;
    if (_pbsPropName != nullptr) *_pbsPropName = nullptr;
    if (_pbsPropValue != nullptr) *_pbsPropValue = nullptr;
    if (!ViewOf(_bsNodeName).empty()) return E_INVALIDARG;
    return Guarded([&]() -> HRESULT {
        Text name;
        Text value;
        HRESULT hr = m_props.GetByIndex(_nIndex, &name, &value);
        if (SUCCEEDED(hr)) hr = GiveText(name, _pbsPropName);
        if (SUCCEEDED(hr)) hr = GiveText(value, _pbsPropValue);
        return hr;
    });
}

HRESULT CCoZChromaKey::PropsRemove(BSTR _bsPropName) {
    return Guarded([&] { return m_props.Remove(ViewOf(_bsPropName)); });
}

HRESULT CCoZChromaKey::PropsInfoGet(BSTR, eZInfoType, BSTR *) { return E_NOTIMPL; }

HRESULT CCoZChromaKey::PropsOptionGetCount(BSTR, int32_t *) { return E_NOTIMPL; }

HRESULT CCoZChromaKey::PropsOptionGetByIndex(BSTR, int32_t, BSTR *, BSTR *) { return E_NOTIMPL; }

HRESULT CCoZChromaKey::PropsOptionSetByIndex(BSTR, int32_t) { return E_NOTIMPL; }

HRESULT CCoZChromaKey::PropsOptionGet(BSTR, int32_t *, BSTR *, BSTR *) { return E_NOTIMPL; }

HRESULT CCoZChromaKey::PersistSaveToFile(BSTR, BSTR, BSTR) { return E_NOTIMPL; }

HRESULT CCoZChromaKey::PersistSaveToString(BSTR, BSTR *, BSTR) { return E_NOTIMPL; }

HRESULT CCoZChromaKey::PersistLoad(BSTR, BSTR, BSTR) { return E_NOTIMPL; }

}    // namespace zck
