// Statuses: the codes that the library answers besides the public ones, the way from a system error to a status, and the
// guard that keeps exceptions of the standard library inside.
#pragma once

#include <new>

#include "zchromakey/com.h"

namespace zck {

/// A status from its printed form.
constexpr HRESULT StatusOf(uint32_t code) { return static_cast<HRESULT>(code); }

constexpr HRESULT kVfwEInvalidSubtype = StatusOf(0x80040201);      ///< the pixel format is not served
constexpr HRESULT kVfwEWrongState = StatusOf(0x80040227);          ///< not in a state for this operation
constexpr HRESULT kVfwEInvalidMediaType = StatusOf(0x80040248);    ///< the description does not fit the buffer
constexpr HRESULT kErrorFileNotFound = StatusOf(0x80070002);
constexpr HRESULT kErrorAccessDenied = StatusOf(0x80070005);
constexpr HRESULT kErrorDiskFull = StatusOf(0x80070070);
constexpr HRESULT kErrorAlreadyExists = StatusOf(0x800700B7);
constexpr HRESULT kErrorInvalidIndex = StatusOf(0x80070585);
constexpr HRESULT kErrorTimeout = StatusOf(0x800705B4);
constexpr HRESULT kErrorEmpty = StatusOf(0x800710D2);    ///< nothing is there to be given

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
        return E_OUTOFMEMORY;
    } catch (...) {
        return E_UNEXPECTED;
    }
}

}    // namespace zck
