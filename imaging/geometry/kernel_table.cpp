#include "platform/kernel_table.h"

#include "imaging/geometry/turn_kernels.h"

namespace zck {
namespace {

constexpr KernelFamily<TurnKernels> kFamily = {TurnKernelsInitRef, TurnKernelsInitAvx2};

}    // namespace

const TurnKernels &TurnKernelsGet() { return KernelTableGet<kFamily>(); }

}    // namespace zck
