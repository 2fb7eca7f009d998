#include "frames/memory/blob_alloc.h"

#include <cstdlib>
#include <cstring>
#include <new>

#include "zchromakey/com.h"

namespace zck {

// Large blocks are fresh pages of the system, which are zero already: the C allocator knows and does not touch them.
uint8_t *CHeapAlloc::Alloc(uint32_t n) noexcept { return static_cast<uint8_t *>(std::calloc(n != 0 ? n : 1, 1)); }
void CHeapAlloc::Free(uint8_t *block) noexcept { std::free(block); }

uint8_t *CNewAlloc::Alloc(uint32_t n) noexcept { return new (std::nothrow) uint8_t[n](); }
void CNewAlloc::Free(uint8_t *block) noexcept { delete[] block; }

uint8_t *CCoTaskAlloc::Alloc(uint32_t n) noexcept {
    void *block = CoTaskMemAlloc(n);
    if (block != nullptr) std::memset(block, 0, n);
    return static_cast<uint8_t *>(block);
}
void CCoTaskAlloc::Free(uint8_t *block) noexcept { CoTaskMemFree(block); }

}    // namespace zck
