// Copies of memory.
#pragma once

#include <cstddef>

namespace zck {

/// Copies `n` bytes between blocks that do not overlap. 0 bytes may have null pointers.
void CopyBytes(void *dst, const void *src, size_t n) noexcept;

/// The same from a source that may not be readable: false when a part of it is not, and then `dst` holds any part of it.
/// The destination must be writable. Nothing is raised and no handler is installed. The source is looked at before it is
/// copied: it must not be unmapped by another thread meanwhile. Costs less than twice the plain copy.
bool CopyBytesGuarded(void *dst, const void *src, size_t n) noexcept;

}    // namespace zck
