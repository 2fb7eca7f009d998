#include "platform/status.h"

namespace zck {

HRESULT SystemErrorStatus(int32_t error, HRESULT fallback) noexcept {
    const HRESULT hr = HRESULT_FROM_WIN32(static_cast<DWORD>(error));
    return FAILED(hr) ? hr : fallback;
}

HRESULT LastSystemError(HRESULT fallback) noexcept { return SystemErrorStatus(static_cast<int32_t>(GetLastError()), fallback); }

}    // namespace zck
