#include "platform/failure.h"

#include <atomic>

namespace zck {
namespace {

std::atomic<FailureTrace> s_trace{nullptr};

}    // namespace

FailureTrace FailureTraceSet(FailureTrace trace) noexcept { return s_trace.exchange(trace); }

__attribute__((noinline)) HRESULT FailureNoted(HRESULT hr) noexcept {
    if (const FailureTrace trace = s_trace.load()) trace(hr);
    return hr;
}

}    // namespace zck
