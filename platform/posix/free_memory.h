// How much memory the system can still give.
#pragma once

#include <cstdint>

namespace zck {

/// Bytes that the machine and the control groups of this process have left, swap and what they can reclaim included. An
/// estimate, as other processes take and give meanwhile: who takes about as much risks that the system ends a process to get
/// it. The largest number where the system tells nothing.
uint64_t FreeMemory() noexcept;

}    // namespace zck
