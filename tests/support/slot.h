// The place of an operation in the table of its interface.
#pragma once

#include <cstdint>
#include <cstring>

namespace zck::test {

/// In the ABI of both compilers a pointer to a virtual function starts with 1 + 8 * slot.
template <class Function>
uintptr_t Slot(Function function) {
    uintptr_t word = 0;
    std::memcpy(&word, &function, sizeof(word));
    return (word - 1) / 8;
}

}    // namespace zck::test
