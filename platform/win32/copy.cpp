#include "platform/copy.h"

#include <cstdint>
#include <cstring>

#include "zchromakey/com.h"

namespace zck {
namespace {

bool IsReadable(const MEMORY_BASIC_INFORMATION &region) noexcept {
    constexpr DWORD kReadable =
        PAGE_READONLY | PAGE_READWRITE | PAGE_WRITECOPY | PAGE_EXECUTE_READ | PAGE_EXECUTE_READWRITE | PAGE_EXECUTE_WRITECOPY;
    return region.State == MEM_COMMIT && (region.Protect & kReadable) != 0 && (region.Protect & PAGE_GUARD) == 0;
}

/// Walks the regions that the block touches.
bool BlockIsReadable(const void *src, size_t n) noexcept {
    auto at = reinterpret_cast<uintptr_t>(src);
    const uintptr_t end = at + n;
    if (end < at) return false;
    while (at < end) {
        MEMORY_BASIC_INFORMATION region{};
        if (VirtualQuery(reinterpret_cast<const void *>(at), &region, sizeof(region)) == 0 || !IsReadable(region)) return false;
        at = reinterpret_cast<uintptr_t>(region.BaseAddress) + region.RegionSize;
    }
    return true;
}

}    // namespace

void CopyBytes(void *dst, const void *src, size_t n) noexcept {
    if (n != 0) std::memcpy(dst, src, n);
}

bool CopyBytesGuarded(void *dst, const void *src, size_t n) noexcept {
    if (n == 0) return true;
    if (!BlockIsReadable(src, n)) return false;
    std::memcpy(dst, src, n);
    return true;
}

}    // namespace zck
