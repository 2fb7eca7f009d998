#include "imaging/scale/scale_kernels.h"
#include "platform/processor.h"

namespace zck {
namespace {

ScaleKernels Make(KernelLevel level) {
    ScaleKernels table = {};
    ScaleKernelsInitRef(&table);
    if (level == KernelLevel::Avx2) ScaleKernelsInitAvx2(&table);
    return table;
}

}    // namespace

const ScaleKernels &ScaleKernelsGet() {
    static const ScaleKernels ref = Make(KernelLevel::Reference);
    // Of the processor, not of the limit that may hold at the first call.
    static const ScaleKernels best = Make(CpuHasAvx2() ? KernelLevel::Avx2 : KernelLevel::Reference);
    return KernelLevelGet() == KernelLevel::Reference ? ref : best;
}

}    // namespace zck
