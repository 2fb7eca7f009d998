// `INSSBuffer3`: the frame as a sample buffer of the platform's media writers.
#include <cstring>
#include <shared_mutex>

#include "frames/data/data_name.h"
#include "frames/object/address.h"
#include "frames/object/frame.h"

namespace zck {
namespace {

// The name under which sample properties are kept.
constexpr TextView kSampleProperties = ZCK_TEXT("NSS2");

}    // namespace

HRESULT CCoZFrame2::GetLength(DWORD *_pnLength) {
    return _pnLength != nullptr ? GetBufferAndLength(nullptr, _pnLength) : E_POINTER;
}

HRESULT CCoZFrame2::SetLength(DWORD _nLength) {
    const std::shared_lock lock(m_lockMedia);
    if (static_cast<uint64_t>(_nLength) > VideoSize()) return E_OUTOFMEMORY;
    m_nSampleLength = static_cast<int32_t>(_nLength);
    return S_OK;
}

HRESULT CCoZFrame2::GetMaxLength(DWORD *_pnLength) {
    if (_pnLength == nullptr) return E_POINTER;
    const std::shared_lock lock(m_lockMedia);
    *_pnLength = VideoSize();
    return S_OK;
}

HRESULT CCoZFrame2::GetBuffer(BYTE **_ppbBuffer) {
    return _ppbBuffer != nullptr ? GetBufferAndLength(_ppbBuffer, nullptr) : E_POINTER;
}

HRESULT CCoZFrame2::GetBufferAndLength(BYTE **_ppbBuffer, DWORD *_pnLength) {
    const std::shared_lock lock(m_lockMedia);
    const int32_t length = m_nSampleLength;
    if (_ppbBuffer != nullptr) *_ppbBuffer = VideoData();
    if (_pnLength != nullptr) *_pnLength = length >= 0 ? static_cast<DWORD>(length) : VideoSize();
    return S_OK;
}

HRESULT CCoZFrame2::GetSampleProperties(DWORD _cbProps, BYTE *_pbProps) {
    if (_pbProps == nullptr) return E_POINTER;
    DataBlobPtr blob;
    const HRESULT hr = m_named.DataGet(kSampleProperties, blob);
    if (FAILED(hr)) return hr;
    if (_cbProps < blob->Size()) return E_OUTOFMEMORY;
    if (blob->Size() != 0) std::memcpy(_pbProps, blob->Data(), blob->Size());
    return S_OK;
}

HRESULT CCoZFrame2::SetSampleProperties(DWORD _cbProps, BYTE *_pbProps) {
    if (_pbProps == nullptr && _cbProps != 0) return E_POINTER;
    if (_cbProps > INT32_MAX) return E_INVALIDARG;
    return Guarded([&] { return DataStore(kSampleProperties, static_cast<int32_t>(_cbProps), AddressOf(_pbProps)); });
}

HRESULT CCoZFrame2::SetProperty(GUID _id, void *_pValue, DWORD _cbValue) {
    if (_pValue == nullptr && _cbValue != 0) return E_POINTER;
    if (_cbValue > INT32_MAX) return E_INVALIDARG;
    return Guarded([&] { return DataStore(NameFromIdentifier(_id), static_cast<int32_t>(_cbValue), AddressOf(_pValue)); });
}

HRESULT CCoZFrame2::GetProperty(GUID _id, void *_pValue, DWORD *_pcbValue) {
    if (_pcbValue == nullptr) return E_POINTER;
    return Guarded([&] {
        DataBlobPtr blob;
        const HRESULT hr = m_named.DataGet(NameFromIdentifier(_id), blob);
        if (FAILED(hr)) return hr;
        const DWORD room = *_pcbValue;
        *_pcbValue = blob->Size();
        if (_pValue == nullptr) return S_OK;
        if (room < blob->Size()) return E_OUTOFMEMORY;
        if (blob->Size() != 0) std::memcpy(_pValue, blob->Data(), blob->Size());
        return S_OK;
    });
}

}    // namespace zck
