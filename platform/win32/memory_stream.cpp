#include "platform/memory_stream.h"

namespace zck {

HRESULT MemoryStreamCreate(IStream **out) noexcept {
    *out = nullptr;
    return CreateStreamOnHGlobal(nullptr, TRUE, out);
}

bool MarshalingExists() noexcept { return true; }

HRESULT ObjectMarshal(IStream *stream, IUnknown *object) noexcept {
    if (object == nullptr) return E_INVALIDARG;
    return CoMarshalInterface(stream, IID_IUnknown, object, MSHCTX_LOCAL, nullptr, MSHLFLAGS_NORMAL);
}

HRESULT ObjectUnmarshal(IStream *stream, IUnknown **out) noexcept {
    *out = nullptr;
    return CoUnmarshalInterface(stream, IID_IUnknown, reinterpret_cast<void **>(out));
}

void ObjectMarshalDrop(IStream *stream) noexcept { CoReleaseMarshalData(stream); }

}    // namespace zck
