// Attached objects and text attributes.
#include "frames/object/frame.h"

namespace zck {
namespace {

template <class T>
void OutputsClear(BSTR *name, T *value) {
    if (name != nullptr) *name = nullptr;
    if (value != nullptr) *value = nullptr;
}

}    // namespace

// Where a local form is wanted and there is one, it is given in place of the stored object.
HRESULT CCoZFrame2::ObjectGive(ComPtr<IUnknown> object, IUnknown **out, bool local) {
    if (out == nullptr) return S_OK;
    if (local && object) {
        if (const auto factory = QueryFor<IZFFactory>(m_pFactory.get())) {
            ComPtr<IZFFrame> frame;
            factory->ZFFrameLocal(object.get(), frame.Put(), 0);
            if (frame) object = frame.get();
        }
    }
    *out = object.Detach();
    return S_OK;
}

HRESULT CCoZFrame2::ZFObjectGetByIndex(int32_t _nIndex, BSTR *_pbsName, IUnknown **_ppObject, int32_t _bLocal) {
    OutputsClear(_pbsName, _ppObject);
    ComPtr<IUnknown> object;
    const HRESULT hr = m_named.ObjectGetByIndex(_nIndex, _pbsName, object);
    return SUCCEEDED(hr) ? ObjectGive(std::move(object), _ppObject, _bLocal != 0) : hr;
}

HRESULT CCoZFrame2::ZFObjectGet(BSTR _bsName, IUnknown **_ppObject, int32_t _bLocal) {
    OutputsClear(nullptr, _ppObject);
    ComPtr<IUnknown> object;
    const HRESULT hr = m_named.ObjectGet(ViewOf(_bsName), object);
    return SUCCEEDED(hr) ? ObjectGive(std::move(object), _ppObject, _bLocal != 0) : hr;
}

HRESULT CCoZFrame2::ZFObjectSet(BSTR _bsName, IUnknown *_pObject) {
    return Guarded([&] {
        m_named.ObjectSet(ViewOf(_bsName), _pObject);
        return S_OK;
    });
}

HRESULT CCoZFrame2::ZFTextGetByIndex(int32_t _nIndex, BSTR *_pbsName, BSTR *_pbsText) {
    OutputsClear(_pbsName, _pbsText);
    return m_named.TextGetByIndex(_nIndex, _pbsName, _pbsText);
}

HRESULT CCoZFrame2::ZFTextGet(BSTR _bsName, BSTR *_pbsText) {
    OutputsClear(nullptr, _pbsText);
    return m_named.TextGet(ViewOf(_bsName), _pbsText);
}

HRESULT CCoZFrame2::ZFTextSet(BSTR _bsName, BSTR _bsText) {
    return Guarded([&] { return m_named.TextSet(ViewOf(_bsName), ViewOf(_bsText)); });
}

}    // namespace zck
