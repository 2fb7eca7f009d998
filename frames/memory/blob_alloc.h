// The allocators of `CBLOBHolder`. Blocks come zeroed; null when there is no memory.
#pragma once

#include <cstdint>

namespace zck {

/// The process heap.
struct CHeapAlloc {
    static uint8_t *Alloc(uint32_t n) noexcept;
    static void Free(uint8_t *block) noexcept;
};

/// The language's new.
struct CNewAlloc {
    static uint8_t *Alloc(uint32_t n) noexcept;
    static void Free(uint8_t *block) noexcept;
};

/// The platform's task allocator, for blocks that change owner across an interface.
struct CCoTaskAlloc {
    static uint8_t *Alloc(uint32_t n) noexcept;
    static void Free(uint8_t *block) noexcept;
};

/// Gives nothing and frees nothing: the holder points at a block of somebody else.
struct CFakeAlloc {
    static uint8_t *Alloc(uint32_t) noexcept { return nullptr; }
    static void Free(uint8_t *) noexcept {}
};

}    // namespace zck
