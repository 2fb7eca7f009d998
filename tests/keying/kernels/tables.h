// The tables that the kernel tests compare.
#pragma once

#include "keying/kernels/kernels.h"
#include "tests/support/kernel_check.h"

namespace zck::test {

constexpr KernelFamily<KeyingKernels> kKeyingFamily = {KeyingKernelsInitRef, KeyingKernelsInitAvx2};

inline KeyingKernels RefTable() { return kKeyingFamily.Make(KernelLevel::Reference); }
inline KeyingKernels Avx2Table() { return kKeyingFamily.Make(KernelLevel::Avx2); }

}    // namespace zck::test
