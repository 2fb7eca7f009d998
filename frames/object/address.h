// Addresses in the interfaces are 64-bit integers, so that automation clients of any width can carry them.
#pragma once

#include <cstdint>

namespace zck {

inline int64_t AddressOf(const void *p) noexcept { return static_cast<int64_t>(reinterpret_cast<uintptr_t>(p)); }

template <class T = uint8_t>
T *PointerFrom(int64_t address) noexcept {
    return reinterpret_cast<T *>(static_cast<uintptr_t>(address));
}

}    // namespace zck
