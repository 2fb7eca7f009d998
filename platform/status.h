// Statuses: the short names that the rooms use for the public codes, the way from a system error to a status, and the
// guard that keeps exceptions of the standard library inside.
#pragma once

#include <new>

#include "platform/failure.h"
#include "zchromakey/statuses.h"

namespace zck {

/// A status from its printed form.
constexpr HRESULT StatusOf(uint32_t code) { return static_cast<HRESULT>(code); }

constexpr HRESULT kVfwEInvalidSubtype = Z_E_UNSUPPORTED_FORMAT;
constexpr HRESULT kVfwEWrongState = Z_E_WRONG_STATE;
constexpr HRESULT kVfwEInvalidMediaType = Z_E_INVALID_VIDEO_PROPS;
constexpr HRESULT kErrorFileNotFound = Z_E_FILE_NOT_FOUND;
constexpr HRESULT kErrorAccessDenied = Z_E_ACCESS_DENIED;
constexpr HRESULT kErrorHandleEof = Z_E_HANDLE_EOF;
constexpr HRESULT kErrorNotSupported = Z_E_NOT_SUPPORTED;
constexpr HRESULT kErrorDiskFull = Z_E_DISK_FULL;
constexpr HRESULT kErrorAlreadyExists = Z_E_ALREADY_EXISTS;
constexpr HRESULT kErrorInvalidIndex = Z_E_INVALID_INDEX;
constexpr HRESULT kErrorTimeout = Z_E_TIMEOUT;
constexpr HRESULT kErrorEmpty = Z_E_EMPTY;

/// The status of a system error number: `GetLastError` values on Windows, `errno` values elsewhere. Always a failure in
/// the form 0x8007xxxx, and `fallback` for 0 and for a number that has no such form.
HRESULT SystemErrorStatus(int32_t error, HRESULT fallback) noexcept;

/// The status of the calling thread's last system error.
HRESULT LastSystemError(HRESULT fallback) noexcept;

/// Runs `body`, which returns a status, and turns what it throws into one. Every interface method and thread body that may
/// meet a throwing function runs inside of it.
template <class Body>
HRESULT Guarded(Body &&body) noexcept {
    try {
        return body();
    } catch (const std::bad_alloc &) {
        return Noted(E_OUTOFMEMORY);
    } catch (...) {
        return Noted(E_UNEXPECTED);
    }
}

}    // namespace zck
