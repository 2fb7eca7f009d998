#include "platform/kernel_table.h"

#include "imaging/scale/scale_kernels.h"

namespace zck {
namespace {

constexpr KernelFamily<ScaleKernels> kFamily = {ScaleKernelsInitRef, ScaleKernelsInitAvx2};

}    // namespace

const ScaleKernels &ScaleKernelsGet() { return KernelTableGet<kFamily>(); }

}    // namespace zck
