#include "platform/processor.h"

#include <atomic>

#include "platform/clock.h"
#include "platform/processor_description.h"

namespace zck {
namespace {

std::atomic<KernelLevel> s_limit{kKernelLevelHighest};

/// The clock in MHz from two readings of a counter and of the time stamp counter; 0 when the counter did not move.
template <class Read>
double MeasureMHz(Read read, double frequency, uint32_t sleepMs) noexcept {
    const auto counter = read();
    const uint64_t stamp = TimeStampTicks();
    SleepMs(sleepMs);
    const auto elapsed = static_cast<int64_t>(read() - counter);
    const uint64_t ticks = TimeStampTicks() - stamp;
    if (elapsed < 1) return 0;
    return static_cast<double>(ticks) * frequency / static_cast<double>(elapsed) / 1000000;
}

}    // namespace

int CpuFeatureLevel() noexcept {
    if (__builtin_cpu_supports("sse4.2")) return 69;
    if (__builtin_cpu_supports("sse4.1")) return 68;
    if (__builtin_cpu_supports("ssse3")) return 67;
    if (__builtin_cpu_supports("sse3")) return 66;
    if (__builtin_cpu_supports("sse2")) return 65;
    if (__builtin_cpu_supports("sse")) return 64;
    return 0;
}

bool CpuHasAvx2() noexcept { return __builtin_cpu_supports("avx2"); }

bool CpuHasAvx512() noexcept {
    return CpuHasAvx2() && __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512bw") &&
           __builtin_cpu_supports("avx512dq") && __builtin_cpu_supports("avx512vl");
}

bool CpuSpeedMHz(uint32_t *mhz, bool bMeasure) noexcept {
    if (mhz == nullptr) return false;
    *mhz = 0;
    if (!bMeasure && ProcessorDescriptionMHz(*mhz)) return true;
    double measured = 0;
    if (CounterFrequency() >= 1) measured = MeasureMHz(CounterRead, static_cast<double>(CounterFrequency()), 10);
    if (measured <= 0) measured = MeasureMHz(TimerMs, 1000, 40);
    if (measured <= 0) return false;
    *mhz = static_cast<uint32_t>(measured);
    return true;
}

KernelLevel KernelLevelGet() noexcept {
    static const KernelLevel found = CpuHasAvx512() ? KernelLevel::Avx512
                                     : CpuHasAvx2() ? KernelLevel::Avx2
                                                    : KernelLevel::Reference;
    const KernelLevel limit = s_limit.load(std::memory_order_relaxed);
    return limit < found ? limit : found;
}

void KernelLevelLimit(KernelLevel level) noexcept { s_limit.store(level, std::memory_order_relaxed); }

}    // namespace zck
