#include "platform/object.h"

namespace zck {

HRESULT FreeThreadedMarshalerCreate(IUnknown *, IUnknown **out) noexcept {
    *out = nullptr;
    return S_OK;
}

bool IsMarshalerInterface(REFIID) noexcept { return false; }

}    // namespace zck
