#include "imaging/colour/colour_kernels.h"
#include "platform/processor.h"

namespace zck {
namespace {

ColourKernels Make(KernelLevel level) {
    ColourKernels table = {};
    ColourKernelsInitRef(&table);
    if (level == KernelLevel::Avx2) ColourKernelsInitAvx2(&table);
    return table;
}

}    // namespace

const ColourKernels &ColourKernelsGet() {
    static const ColourKernels ref = Make(KernelLevel::Reference);
    // Of the processor, not of the limit that may hold at the first call.
    static const ColourKernels best = Make(CpuHasAvx2() ? KernelLevel::Avx2 : KernelLevel::Reference);
    return KernelLevelGet() == KernelLevel::Reference ? ref : best;
}

}    // namespace zck
