#include "frames/data/packed_data.h"

#include <cstring>

#include "frames/data/data_name.h"

namespace zck {
namespace {

constexpr uint32_t kHeadBytes = 8;

HRESULT BlockGet(uint64_t total, int32_t &size, void *&block) {
    size = 0;
    block = nullptr;
    if (total == 0) return S_OK;
    if (total > INT32_MAX) return E_OUTOFMEMORY;
    block = CoTaskMemAlloc(static_cast<size_t>(total));
    if (block == nullptr) return E_OUTOFMEMORY;
    size = static_cast<int32_t>(total);
    return S_OK;
}

uint32_t WordAt(const uint8_t *at) {
    uint32_t word = 0;
    std::memcpy(&word, at, sizeof(word));
    return word;
}

}    // namespace

HRESULT DataPack(const DataMap &map, int32_t &size, void *&block) {
    uint64_t total = 0;
    for (size_t i = 0; i < map.Count(); ++i) total += kHeadBytes + ValueBytes(*map.At(i));
    const HRESULT hr = BlockGet(total, size, block);
    auto *at = static_cast<uint8_t *>(block);
    for (size_t i = 0; at != nullptr && i < map.Count(); ++i) {
        const int32_t code = CodeFromName(map.Name(i));
        const uint32_t length = ValueBytes(*map.At(i));
        std::memcpy(at, &code, 4);
        std::memcpy(at + 4, &length, 4);
        if (length != 0) std::memcpy(at + kHeadBytes, map.At(i)->Data(), length);
        at += kHeadBytes + length;
    }
    return hr;
}

HRESULT DataPackOne(const DataBlob &blob, int32_t &size, void *&block) {
    const HRESULT hr = BlockGet(blob.Size(), size, block);
    if (block != nullptr) std::memcpy(block, blob.Data(), blob.Size());
    return hr;
}

HRESULT DataUnpack(const uint8_t *packed, int64_t size, DataMap &map) {
    while (size >= kHeadBytes) {
        const auto code = static_cast<int32_t>(WordAt(packed));
        const uint32_t length = WordAt(packed + 4);
        packed += kHeadBytes;
        size -= kHeadBytes;
        const uint32_t room = length == 0 ? kInlineBytes : length;
        if (code != 0 && room <= size) {
            DataBlobPtr blob;
            const HRESULT hr = DataBlobCreate(packed, room, length, blob);
            if (FAILED(hr)) return hr;
            map.Set(NameFromCode(code), std::move(blob));
        }
        if (length > size) break;
        packed += length;
        size -= length;
    }
    return S_OK;
}

HRESULT DataTakeCoded(const DataMap &source, DataMap &map) {
    for (size_t i = 0; i < source.Count(); ++i) {
        const int32_t code = CodeFromName(source.Name(i));
        if (code == 0) continue;
        DataBlobPtr blob = source.At(i);
        if (IsInline(*blob)) {
            const HRESULT hr = DataBlobCreate(source.At(i)->Data(), kInlineBytes, kInlineBytes, blob);
            if (FAILED(hr)) return hr;
        }
        map.Set(NameFromCode(code), std::move(blob));
    }
    return S_OK;
}

}    // namespace zck
