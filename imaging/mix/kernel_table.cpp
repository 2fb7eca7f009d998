#include "platform/kernel_table.h"

#include "imaging/mix/mix_kernels.h"

namespace zck {
namespace {

constexpr KernelFamily<MixKernels> kFamily = {MixKernelsInitRef, MixKernelsInitAvx2};

}    // namespace

const MixKernels &MixKernelsGet() { return KernelTableGet<kFamily>(); }

}    // namespace zck
