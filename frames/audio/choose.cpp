#include "frames/audio/sample_kernels.h"
#include "platform/processor.h"

namespace zck {
namespace {

SampleKernels Make(KernelLevel level) {
    SampleKernels table = {};
    SampleKernelsInitRef(&table);
    if (level == KernelLevel::Avx2) SampleKernelsInitAvx2(&table);
    return table;
}

}    // namespace

const SampleKernels &SampleKernelsGet() {
    static const SampleKernels ref = Make(KernelLevel::Reference);
    // Of the processor, not of the limit that may hold at the first call.
    static const SampleKernels best = Make(CpuHasAvx2() ? KernelLevel::Avx2 : KernelLevel::Reference);
    return KernelLevelGet() == KernelLevel::Reference ? ref : best;
}

}    // namespace zck
