#include "platform/clock.h"

#include <x86intrin.h>

#include <ctime>

namespace zck {

int64_t CounterRead() noexcept {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<int64_t>(now.tv_sec) * 1000000000 + now.tv_nsec;
}

int64_t CounterFrequency() noexcept { return 1000000000; }

uint32_t TimerMs() noexcept { return static_cast<uint32_t>(CounterRead() / 1000000); }

uint64_t TimeStampTicks() noexcept { return __rdtsc(); }

}    // namespace zck
