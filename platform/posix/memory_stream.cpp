#include "platform/memory_stream.h"

#include "platform/byte_stream.h"

namespace zck {

HRESULT MemoryStreamCreate(IStream **out) noexcept { return ByteStreamCreate(out); }

bool MarshalingExists() noexcept { return false; }

HRESULT ObjectMarshal(IStream *, IUnknown *) noexcept { return E_NOTIMPL; }

HRESULT ObjectUnmarshal(IStream *, IUnknown **out) noexcept {
    *out = nullptr;
    return E_NOTIMPL;
}

void ObjectMarshalDrop(IStream *) noexcept {}

}    // namespace zck
