// The one place through which failures pass, so that a debugger or a trace sees each where it arises: `break
// zck::FailureNoted`.
#pragma once

#include "zchromakey/com.h"

namespace zck {

/// Hears of each failure on the thread that met it, which may hold locks: it must not call into the library.
using FailureTrace = void (*)(HRESULT hr) noexcept;

/// Sets the trace for the whole process, null for none. Returns the one before. Any thread.
FailureTrace FailureTraceSet(FailureTrace trace) noexcept;

/// Tells the trace, if there is one, and returns `hr`. Never inlined.
HRESULT FailureNoted(HRESULT hr) noexcept;

/// Passes a status on; a failure goes by way of `FailureNoted`. Called once for each failure, where code of this library
/// makes it or gets it from another room or object, and not again on its way up.
inline HRESULT Noted(HRESULT hr) noexcept { return FAILED(hr) ? FailureNoted(hr) : hr; }

}    // namespace zck
