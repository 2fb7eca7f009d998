// Ancillary data by name and by four-character code.
#include <cstring>
#include <mutex>
#include <shared_mutex>

#include "frames/object/address.h"
#include "frames/object/data_name.h"
#include "frames/object/frame.h"

namespace zck {
namespace {

constexpr uint32_t kInlineBytes = 8;

using BlobPtr = ComPtr<CCoZFrame2::Blob>;

// A blob of `used` bytes with `room` bytes copied into it.
HRESULT BlobCreate(const void *data, uint32_t room, uint32_t used, BlobPtr &out) {
    out.Attach(new CCoZFrame2::Blob);
    const HRESULT hr = out->Reserve(room);
    if (FAILED(hr)) return hr;
    std::memcpy(out->Data(), data, room);
    return out->SetSize(used);
}

bool IsInline(const CCoZFrame2::Blob &blob) { return blob.Size() == 0 && blob.Capacity() >= kInlineBytes; }

// Bytes of a blob in the packed form.
uint32_t PackedBytes(const CCoZFrame2::Blob &blob) { return IsInline(blob) ? kInlineBytes : blob.Size(); }

void BlobGive(const CCoZFrame2::Blob &blob, int32_t *size, int64_t *data) {
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

ComPtr<CCoZFrame2::Blob> CCoZFrame2::DataFind(TextView name) {
    const std::shared_lock lock(m_lockData);
    const ComPtr<Blob> *found = m_mapData.Find(name);
    return found != nullptr ? *found : ComPtr<Blob>();
}

HRESULT CCoZFrame2::DataStore(TextView name, int32_t size, int64_t value) {
    if (name.empty()) return E_INVALIDARG;
    ComPtr<Blob> old;
    if (size < 0) {
        const std::lock_guard lock(m_lockData);
        return m_mapData.Remove(name, old) ? S_OK : S_FALSE;
    }
    if (size > 0 && value == 0) return E_INVALIDARG;
    const void *data = size == 0 ? static_cast<const void *>(&value) : PointerFrom<const void>(value);
    ComPtr<Blob> blob;
    const HRESULT hr =
        BlobCreate(data, size == 0 ? kInlineBytes : static_cast<uint32_t>(size), static_cast<uint32_t>(size), blob);
    if (FAILED(hr)) return hr;
    const std::lock_guard lock(m_lockData);
    old = m_mapData.Set(name, std::move(blob));
    return S_OK;
}

HRESULT CCoZFrame2::DataUnpack(const uint8_t *packed, int32_t size) {
    if (packed == nullptr && size > 0) return E_INVALIDARG;
    DataMap fresh;
    HRESULT hr = S_OK;
    int64_t left = size;
    while (left >= 8 && SUCCEEDED(hr)) {
        int32_t code = 0;
        uint32_t length = 0;
        std::memcpy(&code, packed, 4);
        std::memcpy(&length, packed + 4, 4);
        packed += 8;
        left -= 8;
        const uint32_t room = length == 0 ? kInlineBytes : length;
        ComPtr<Blob> blob;
        if (code != 0 && room <= left) hr = BlobCreate(packed, room, length, blob);
        if (blob && SUCCEEDED(hr)) fresh.Set(NameFromCode(code), std::move(blob));
        // A length of 0 moves by nothing although it showed 8 bytes: the writer never writes 0.
        if (length > left) break;
        packed += length;
        left -= length;
    }
    const std::lock_guard lock(m_lockData);
    fresh.Swap(m_mapData);
    return hr;
}

// What packing and unpacking would make of another frame's data: names as their codes, inline values as 8 bytes.
HRESULT CCoZFrame2::DataTakeCoded(CCoZFrame2 &source) {
    DataMap taken;
    {
        const std::shared_lock lock(source.m_lockData);
        for (size_t i = 0; i < source.m_mapData.Count(); ++i) {
            const int32_t code = CodeFromName(source.m_mapData.Name(i));
            ComPtr<Blob> blob = source.m_mapData.At(i);
            if (code == 0) continue;
            if (IsInline(*blob)) {
                ComPtr<Blob> bytes;
                const HRESULT hr = BlobCreate(blob->Data(), kInlineBytes, kInlineBytes, bytes);
                if (FAILED(hr)) return hr;
                blob = bytes;
            }
            taken.Set(NameFromCode(code), std::move(blob));
        }
        if (source.m_mapData.Count() == 0) return S_FALSE;
    }
    const std::lock_guard lock(m_lockData);
    taken.Swap(m_mapData);
    return S_OK;
}

HRESULT CCoZFrame2::ZFDataGetByIndex(int32_t _nIndex, BSTR *_pbsName, int32_t *_pcbData, int64_t *_ppbData) {
    const std::shared_lock lock(m_lockData);
    if (_nIndex < 0 || static_cast<size_t>(_nIndex) >= m_mapData.Count()) return kErrorInvalidIndex;
    const auto index = static_cast<size_t>(_nIndex);
    if (_pbsName != nullptr) {
        const HRESULT hr = BstrCopyTo(m_mapData.Name(index), _pbsName);
        if (FAILED(hr)) return hr;
    }
    BlobGive(*m_mapData.At(index), _pcbData, _ppbData);
    return S_OK;
}

HRESULT CCoZFrame2::ZFDataGet(BSTR _bsName, int32_t *_pcbData, int64_t *_ppbData) {
    if (_bsName == nullptr) return FrameBufferIdGet(_ppbData);
    const std::shared_lock lock(m_lockData);
    const ComPtr<Blob> *blob = m_mapData.Find(ViewOf(_bsName));
    if (blob == nullptr) return kErrorFileNotFound;
    BlobGive(**blob, _pcbData, _ppbData);
    return S_OK;
}

HRESULT CCoZFrame2::ZFDataSet(BSTR _bsName, int32_t _cbData, int64_t _pbData) {
    return Guarded([&] { return DataStore(ViewOf(_bsName), _cbData, _pbData); });
}

HRESULT CCoZFrame2::FrameDataGetByIndex(int32_t _nIndex, int32_t *_pnDataFCC, int32_t *_pcbANCData, int64_t *_ppbANCData) {
    OutputsClear(_pcbANCData, _ppbANCData);
    if (_pnDataFCC != nullptr) *_pnDataFCC = 0;
    Bstr name;
    const HRESULT hr = ZFDataGetByIndex(_nIndex, _pnDataFCC != nullptr ? name.Put() : nullptr, _pcbANCData, _ppbANCData);
    if (SUCCEEDED(hr) && _pnDataFCC != nullptr) *_pnDataFCC = CodeFromName(name.view());
    return hr;
}

HRESULT CCoZFrame2::FrameDataGet(int32_t _nDataFCC, int32_t *_pcbANCData, int64_t *_ppbANCData) {
    OutputsClear(_pcbANCData, _ppbANCData);
    return Guarded([&] {
        const ComPtr<Blob> blob = DataFind(NameFromCode(_nDataFCC));
        if (!blob) return kErrorFileNotFound;
        BlobGive(*blob, _pcbANCData, _ppbANCData);
        return S_OK;
    });
}

HRESULT CCoZFrame2::FrameDataSet(int32_t _nDataFCC, int32_t _cbANCData, int64_t _pbANCData) {
    return Guarded([&] {
        return _nDataFCC != 0 ? DataStore(NameFromCode(_nDataFCC), _cbANCData, _pbANCData)
                              : DataUnpack(PointerFrom<const uint8_t>(_pbANCData), _cbANCData);
    });
}

HRESULT CCoZFrame2::FrameDataPack(int32_t _nDataFCC, int32_t *_pcbData, int64_t *_ppbData) {
    if (_pcbData == nullptr || _ppbData == nullptr) return E_POINTER;
    OutputsClear(_pcbData, _ppbData);
    return Guarded([&] {
        const std::shared_lock lock(m_lockData);
        uint64_t total = 0;
        const ComPtr<Blob> *one = nullptr;
        if (_nDataFCC != 0) {
            one = m_mapData.Find(NameFromCode(_nDataFCC));
            if (one == nullptr) return kErrorFileNotFound;
            total = (*one)->Size();
        } else {
            for (size_t i = 0; i < m_mapData.Count(); ++i) total += 8 + PackedBytes(*m_mapData.At(i));
        }
        if (total == 0) return S_OK;
        if (total > INT32_MAX) return E_OUTOFMEMORY;
        auto *block = static_cast<uint8_t *>(CoTaskMemAlloc(static_cast<size_t>(total)));
        if (block == nullptr) return E_OUTOFMEMORY;
        if (one != nullptr) {
            std::memcpy(block, (*one)->Data(), static_cast<size_t>(total));
        } else {
            uint8_t *at = block;
            for (size_t i = 0; i < m_mapData.Count(); ++i) {
                const int32_t code = CodeFromName(m_mapData.Name(i));
                const uint32_t length = PackedBytes(*m_mapData.At(i));
                std::memcpy(at, &code, 4);
                std::memcpy(at + 4, &length, 4);
                if (length != 0) std::memcpy(at + 8, m_mapData.At(i)->Data(), length);
                at += 8 + length;
            }
        }
        *_pcbData = static_cast<int32_t>(total);
        *_ppbData = AddressOf(block);
        return S_OK;
    });
}

HRESULT CCoZFrame2::FrameDataCopyFrom(IZFrame *_pFrame, int32_t _nMode) {
    if (_pFrame == nullptr) return E_INVALIDARG;
    return Guarded([&] {
        if (_nMode >= 2) {
            DataMap old;
            const std::lock_guard lock(m_lockData);
            old.Swap(m_mapData);
        }
        if (const auto own = QueryFor<CCoZFrame2>(_pFrame)) return DataTakeCoded(*own);
        const auto source = QueryFor<IZFrame_I>(_pFrame);
        if (!source) return E_NOINTERFACE;
        int32_t size = 0;
        int64_t block = 0;
        if (FAILED(source->FrameDataPack(0, &size, &block)) || block == 0) return S_FALSE;
        const HRESULT hr = DataUnpack(PointerFrom<const uint8_t>(block), size);
        CoTaskMemFree(PointerFrom<void>(block));
        return hr;
    });
}

}    // namespace zck
