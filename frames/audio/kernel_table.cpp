#include "platform/kernel_table.h"

#include "frames/audio/sample_kernels.h"

namespace zck {
namespace {

constexpr KernelFamily<SampleKernels> kFamily = {SampleKernelsInitRef, SampleKernelsInitAvx2};

}    // namespace

const SampleKernels &SampleKernelsGet() { return KernelTableGet<kFamily>(); }

}    // namespace zck
