// What the processor can do.
#pragma once

#include <cstdint>

namespace zck {

/// The highest of 69 (SSE4.2), 68 (SSE4.1), 67 (SSSE3), 66 (SSE3), 65 (SSE2), 64 (SSE), 0 (none).
int CpuFeatureLevel() noexcept;
/// The set of instructions, and a system that keeps the wide registers.
bool CpuHasAvx2() noexcept;
bool CpuHasAvx512() noexcept;    ///< the parts F, BW, DQ and VL

/// The processor's clock in MHz: as the system describes it, or measured against a clock when it does not say or when
/// `bMeasure` is set (takes 10 ms or more). False for a null place and when no clock answers; the result is then 0.
bool CpuSpeedMHz(uint32_t *mhz, bool bMeasure) noexcept;

/// The code paths that kernels are written for.
enum class KernelLevel { Reference, Avx2, Avx512 };
constexpr KernelLevel kKernelLevelHighest = KernelLevel::Avx512;

/// The best level of this processor, or the limit if that is lower.
KernelLevel KernelLevelGet() noexcept;
/// For tests and benchmarks: no level above this one is given from now on; `kKernelLevelHighest` lifts the limit. Whoever
/// holds a table keeps it.
void KernelLevelLimit(KernelLevel level) noexcept;

}    // namespace zck
