#include "platform/kernel_table.h"

#include "keying/kernels/kernels.h"

namespace zck {
namespace {

constexpr KernelFamily<KeyingKernels> kFamily = {KeyingKernelsInitRef, KeyingKernelsInitAvx2};

}    // namespace

const KeyingKernels &KeyingKernelsGet() { return KernelTableGet<kFamily>(); }

}    // namespace zck
