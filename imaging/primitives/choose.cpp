#include "imaging/primitives/row_kernels.h"
#include "platform/processor.h"

namespace zck {
namespace {

PrimitiveKernels Make(KernelLevel level) {
    PrimitiveKernels table = {};
    PrimitiveKernelsInitRef(&table);
    if (level == KernelLevel::Avx2) PrimitiveKernelsInitAvx2(&table);
    return table;
}

}    // namespace

const PrimitiveKernels &PrimitiveKernelsGet() {
    static const PrimitiveKernels ref = Make(KernelLevel::Reference);
    static const PrimitiveKernels best = Make(KernelLevelGet());
    return KernelLevelGet() == KernelLevel::Reference ? ref : best;
}

}    // namespace zck
