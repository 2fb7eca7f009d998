// Attached objects and text attributes.
#include <mutex>
#include <shared_mutex>

#include "frames/object/frame.h"

namespace zck {

// Where a local form is wanted and there is one, it is given in place of the stored object.
HRESULT CCoZFrame2::ObjectGive(ComPtr<IUnknown> object, IUnknown **out, bool local) {
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
    if (_ppObject != nullptr) *_ppObject = nullptr;
    ComPtr<IUnknown> object;
    {
        const std::shared_lock lock(m_lockData);
        if (_nIndex < 0 || static_cast<size_t>(_nIndex) >= m_mapObjects.Count()) return kErrorInvalidIndex;
        const auto index = static_cast<size_t>(_nIndex);
        if (_pbsName != nullptr) {
            const HRESULT hr = BstrCopyTo(m_mapObjects.Name(index), _pbsName);
            if (FAILED(hr)) return hr;
        }
        object = m_mapObjects.At(index);
    }
    return _ppObject != nullptr ? ObjectGive(std::move(object), _ppObject, _bLocal != 0) : S_OK;
}

HRESULT CCoZFrame2::ZFObjectGet(BSTR _bsName, IUnknown **_ppObject, int32_t _bLocal) {
    if (_ppObject == nullptr) return E_POINTER;
    *_ppObject = nullptr;
    ComPtr<IUnknown> object;
    {
        const std::shared_lock lock(m_lockData);
        const ComPtr<IUnknown> *found = m_mapObjects.Find(ViewOf(_bsName));
        if (found == nullptr) return kErrorFileNotFound;
        object = *found;
    }
    return ObjectGive(std::move(object), _ppObject, _bLocal != 0);
}

HRESULT CCoZFrame2::ZFObjectSet(BSTR _bsName, IUnknown *_pObject) {
    return Guarded([&] {
        ComPtr<IUnknown> old;
        const std::lock_guard lock(m_lockData);
        old = m_mapObjects.Set(ViewOf(_bsName), _pObject);
        return S_OK;
    });
}

HRESULT CCoZFrame2::ZFTextGetByIndex(int32_t _nIndex, BSTR *_pbsName, BSTR *_pbsText) {
    const std::shared_lock lock(m_lockData);
    if (_nIndex < 0 || static_cast<size_t>(_nIndex) >= m_mapText.Count()) return kErrorInvalidIndex;
    const auto index = static_cast<size_t>(_nIndex);
    Bstr name;
    HRESULT hr = _pbsName != nullptr ? BstrCopyTo(m_mapText.Name(index), name.Put()) : S_OK;
    if (SUCCEEDED(hr) && _pbsText != nullptr) hr = BstrCopyTo(m_mapText.At(index), _pbsText);
    if (SUCCEEDED(hr) && _pbsName != nullptr) *_pbsName = name.Detach();
    return hr;
}

HRESULT CCoZFrame2::ZFTextGet(BSTR _bsName, BSTR *_pbsText) {
    if (_pbsText == nullptr) return E_POINTER;
    *_pbsText = nullptr;
    const std::shared_lock lock(m_lockData);
    const Text *found = m_mapText.Find(ViewOf(_bsName));
    return found != nullptr ? BstrCopyTo(*found, _pbsText) : kErrorFileNotFound;
}

// The word for removal is the only value that is stored; every other value, and null, removes the name. Text comes in with
// clones and stored frames, and hosts clear names with this operation.
HRESULT CCoZFrame2::ZFTextSet(BSTR _bsName, BSTR _bsText) {
    return Guarded([&] {
        Text old;
        const std::lock_guard lock(m_lockData);
        if (ViewOf(_bsText) == ZCK_TEXT("__zf_remove__")) {
            old = m_mapText.Set(ViewOf(_bsName), Text(ViewOf(_bsText)));
            return S_OK;
        }
        return m_mapText.Remove(ViewOf(_bsName), old) ? S_OK : S_FALSE;
    });
}

}    // namespace zck
