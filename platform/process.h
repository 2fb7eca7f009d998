// Who is running.
#pragma once

#include <cstdint>

namespace zck {

uint32_t CurrentProcessId() noexcept;
uint32_t CurrentThreadId() noexcept;

}    // namespace zck
