#include "platform/process.h"

#include "zchromakey/com.h"

namespace zck {

uint32_t CurrentProcessId() noexcept { return GetCurrentProcessId(); }
uint32_t CurrentThreadId() noexcept { return GetCurrentThreadId(); }

}    // namespace zck
