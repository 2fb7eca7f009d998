#include "platform/object.h"

namespace zck {

HRESULT FreeThreadedMarshalerCreate(IUnknown *controlling, IUnknown **out) noexcept {
    *out = nullptr;
    return CoCreateFreeThreadedMarshaler(controlling, out);
}

bool IsMarshalerInterface(REFIID riid) noexcept { return riid == IID_IMarshal; }

}    // namespace zck
