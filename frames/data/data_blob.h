// `DataBlob`: the bytes of one entry of ancillary data.
#pragma once

#include "frames/memory/blob_holder.h"
#include "platform/com_ptr.h"

namespace zck {

/// Never changed once it is stored, so that frames share it. A used size of 0 with room for 8 bytes is a 64-bit value that
/// was given instead of an address.
using DataBlob = CBLOBHolder<CHeapAlloc>;
using DataBlobPtr = ComPtr<DataBlob>;

constexpr uint32_t kInlineBytes = 8;

inline bool IsInline(const DataBlob &blob) noexcept { return blob.Size() == 0 && blob.Capacity() >= kInlineBytes; }

/// Bytes of the value, also of one that stands in place of an address.
inline uint32_t ValueBytes(const DataBlob &blob) noexcept { return IsInline(blob) ? kInlineBytes : blob.Size(); }

/// A blob of `used` bytes with `room` bytes copied into it; zeros from a null address. Throws `std::bad_alloc`, or answers
/// `E_OUTOFMEMORY`.
inline HRESULT DataBlobCreate(const void *bytes, uint32_t room, uint32_t used, DataBlobPtr &out) {
    DataBlobPtr blob;
    blob.Attach(new DataBlob);
    HRESULT hr = blob->Reserve(room);
    if (FAILED(hr)) return hr;
    blob->CopyIn(bytes, room);
    hr = blob->SetSize(used);
    out.Swap(blob);
    return hr;
}

}    // namespace zck
