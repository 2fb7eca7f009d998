// The tables that the kernel tests compare.
#pragma once

#include "keying/kernels/kernels.h"

namespace zck::test {

inline KeyingKernels RefTable() {
    KeyingKernels table = {};
    KeyingKernelsInitRef(&table);
    return table;
}

inline KeyingKernels Avx2Table() {
    KeyingKernels table = {};
    KeyingKernelsInitAvx2(&table);
    return table;
}

// Asked of the compiler's run time, so that no mask of our own hides a processor's level.
inline bool Avx2Here() { return __builtin_cpu_supports("avx2") != 0 && __builtin_cpu_supports("fma") != 0; }

}    // namespace zck::test
