// Ancillary data by name and by four-character code.
#include <cstring>

#include "frames/data/data_name.h"
#include "frames/object/address.h"
#include "frames/object/frame.h"

namespace zck {
namespace {

// A value that was given instead of an address comes back as it is.
void BlobGive(const DataBlob &blob, int32_t *size, int64_t *data) {
    if (size != nullptr) *size = static_cast<int32_t>(blob.Size());
    if (data == nullptr) return;
    if (blob.Size() != 0) {
        *data = AddressOf(blob.Data());
    } else if (IsInline(blob)) {
        std::memcpy(data, blob.Data(), sizeof(*data));
    }
}

void OutputsClear(int32_t *size, int64_t *data) {
    if (size != nullptr) *size = 0;
    if (data != nullptr) *data = 0;
}

}    // namespace

HRESULT CCoZFrame2::DataStore(TextView name, int32_t size, int64_t value) {
    return m_named.DataSet(name, size, size == 0 ? static_cast<const void *>(&value) : PointerFrom<const void>(value));
}

HRESULT CCoZFrame2::ZFDataGetByIndex(int32_t _nIndex, BSTR *_pbsName, int32_t *_pcbData, int64_t *_ppbData) {
    if (_pbsName != nullptr) *_pbsName = nullptr;
    OutputsClear(_pcbData, _ppbData);
    DataBlobPtr blob;
    const HRESULT hr = m_named.DataGetByIndex(_nIndex, _pbsName, blob);
    if (SUCCEEDED(hr)) BlobGive(*blob, _pcbData, _ppbData);
    return hr;
}

HRESULT CCoZFrame2::ZFDataGet(BSTR _bsName, int32_t *_pcbData, int64_t *_ppbData) {
    if (_bsName == nullptr) return FrameBufferIdGet(_ppbData);
    DataBlobPtr blob;
    const HRESULT hr = m_named.DataGet(ViewOf(_bsName), blob);
    OutputsClear(_pcbData, SUCCEEDED(hr) && ValueBytes(*blob) == 0 ? nullptr : _ppbData);
    if (SUCCEEDED(hr)) BlobGive(*blob, _pcbData, _ppbData);
    return hr;
}

HRESULT CCoZFrame2::ZFDataSet(BSTR _bsName, int32_t _cbData, int64_t _pbData) {
    return Guarded([&] { return DataStore(ViewOf(_bsName), _cbData, _pbData); });
}

HRESULT CCoZFrame2::FrameDataGetByIndex(int32_t _nIndex, int32_t *_pnDataFCC, int32_t *_pcbANCData, int64_t *_ppbANCData) {
    if (_pnDataFCC != nullptr) *_pnDataFCC = 0;
    Bstr name;
    const HRESULT hr = ZFDataGetByIndex(_nIndex, _pnDataFCC != nullptr ? name.Put() : nullptr, _pcbANCData, _ppbANCData);
    if (SUCCEEDED(hr) && _pnDataFCC != nullptr) *_pnDataFCC = CodeFromName(name.view());
    return hr;
}

HRESULT CCoZFrame2::FrameDataGet(int32_t _nDataFCC, int32_t *_pcbANCData, int64_t *_ppbANCData) {
    OutputsClear(_pcbANCData, _ppbANCData);
    return Guarded([&] {
        DataBlobPtr blob;
        const HRESULT hr = m_named.DataGet(NameFromCode(_nDataFCC), blob);
        if (SUCCEEDED(hr)) BlobGive(*blob, _pcbANCData, _ppbANCData);
        return hr;
    });
}

HRESULT CCoZFrame2::FrameDataSet(int32_t _nDataFCC, int32_t _cbANCData, int64_t _pbANCData) {
    return Guarded([&] {
        return _nDataFCC != 0 ? DataStore(NameFromCode(_nDataFCC), _cbANCData, _pbANCData)
                              : m_named.DataUnpack(PointerFrom<const uint8_t>(_pbANCData), _cbANCData);
    });
}

HRESULT CCoZFrame2::FrameDataPack(int32_t _nDataFCC, int32_t *_pcbData, int64_t *_ppbData) {
    if (_pcbData == nullptr || _ppbData == nullptr) return E_POINTER;
    OutputsClear(_pcbData, _ppbData);
    return Guarded([&] {
        void *block = nullptr;
        const HRESULT hr = m_named.DataPack(_nDataFCC, *_pcbData, block);
        *_ppbData = AddressOf(block);
        return hr;
    });
}

HRESULT CCoZFrame2::FrameDataCopyFrom(IZFrame *_pFrame, int32_t _nMode) {
    if (_pFrame == nullptr) return E_INVALIDARG;
    return Guarded([&] {
        if (_nMode >= 2) m_named.DataClear();
        if (const auto own = QueryFor<CCoZFrame2>(_pFrame)) return m_named.DataTakeCoded(own->m_named);
        const auto source = QueryFor<IZFrame_I>(_pFrame);
        if (!source) return E_NOINTERFACE;
        int32_t size = 0;
        int64_t block = 0;
        if (FAILED(source->FrameDataPack(0, &size, &block)) || block == 0) return S_FALSE;
        const HRESULT hr = m_named.DataUnpack(PointerFrom<const uint8_t>(block), size);
        CoTaskMemFree(PointerFrom<void>(block));
        return hr;
    });
}

}    // namespace zck
