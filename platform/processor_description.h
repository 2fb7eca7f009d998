// The processor as the system describes it; the back-ends' part of `processor.h`.
#pragma once

#include <cstdint>

namespace zck {

/// The clock in MHz. False, and `mhz` unchanged, when the system does not say or says 0.
bool ProcessorDescriptionMHz(uint32_t &mhz) noexcept;

}    // namespace zck
