#include "platform/kernel_table.h"

#include "keying/spill/spill_kernels.h"

namespace zck {
namespace {

constexpr KernelFamily<SpillKernels> kFamily = {SpillKernelsInitRef, SpillKernelsInitAvx2};

}    // namespace

const SpillKernels &SpillKernelsGet() { return KernelTableGet<kFamily>(); }

}    // namespace zck
