#include "imaging/geometry/turn_kernels.h"
#include "platform/processor.h"

namespace zck {
namespace {

TurnKernels Make(KernelLevel level) {
    TurnKernels table = {};
    TurnKernelsInitRef(&table);
    if (level == KernelLevel::Avx2) TurnKernelsInitAvx2(&table);
    return table;
}

}    // namespace

const TurnKernels &TurnKernelsGet() {
    static const TurnKernels ref = Make(KernelLevel::Reference);
    // Of the processor, not of the limit that may hold at the first call.
    static const TurnKernels best = Make(CpuHasAvx2() ? KernelLevel::Avx2 : KernelLevel::Reference);
    return KernelLevelGet() == KernelLevel::Reference ? ref : best;
}

}    // namespace zck
