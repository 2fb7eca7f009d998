// Clocks. None of them goes back.
#pragma once

#include <cstdint>

#include "platform/sync.h"    // SleepMs

namespace zck {

/// The performance counter: ticks, and ticks per second.
int64_t CounterRead() noexcept;
int64_t CounterFrequency() noexcept;
/// The multimedia timer: milliseconds, wraps around.
uint32_t TimerMs() noexcept;
/// The processor's time stamp counter.
uint64_t TimeStampTicks() noexcept;

}    // namespace zck
