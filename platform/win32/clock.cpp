#include "platform/clock.h"

#include <x86intrin.h>

#include "zchromakey/com.h"

// Left out of windows.h when it is lean.
#include <timeapi.h>

namespace zck {

int64_t CounterRead() noexcept {
    LARGE_INTEGER value{};
    QueryPerformanceCounter(&value);
    return value.QuadPart;
}

int64_t CounterFrequency() noexcept {
    LARGE_INTEGER value{};
    return QueryPerformanceFrequency(&value) ? value.QuadPart : 0;
}

uint32_t TimerMs() noexcept { return timeGetTime(); }

uint64_t TimeStampTicks() noexcept { return __rdtsc(); }

}    // namespace zck
