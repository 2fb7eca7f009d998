#include "platform/copy.h"

#include <cstring>

#include "zchromakey/com.h"

namespace zck {

void CopyBytes(void *dst, const void *src, size_t n) noexcept {
    if (n != 0) std::memcpy(dst, src, n);
}

bool CopyBytesGuarded(void *dst, const void *src, size_t n) noexcept {
    if (n == 0) return true;
    SIZE_T got = 0;
    return ReadProcessMemory(GetCurrentProcess(), src, dst, n, &got) && got == n;
}

}    // namespace zck
