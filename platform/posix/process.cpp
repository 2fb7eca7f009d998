#include "platform/process.h"

#include <sys/syscall.h>
#include <unistd.h>

namespace zck {

uint32_t CurrentProcessId() noexcept { return static_cast<uint32_t>(getpid()); }
uint32_t CurrentThreadId() noexcept { return static_cast<uint32_t>(syscall(SYS_gettid)); }

}    // namespace zck
