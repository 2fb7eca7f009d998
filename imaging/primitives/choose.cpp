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

void PrimitiveKernelsInitAvx2(PrimitiveKernels *table) {
    PrimitivePixelsInitAvx2(table);
    PrimitiveArithmeticInitAvx2(table);
    PrimitiveConvertInitAvx2(table);
    PrimitivePlanesInitAvx2(table);
}

const PrimitiveKernels &PrimitiveKernelsGet() {
    static const PrimitiveKernels ref = Make(KernelLevel::Reference);
    // Of the processor, not of the limit that may hold at the first call.
    static const PrimitiveKernels best = Make(CpuHasAvx2() ? KernelLevel::Avx2 : KernelLevel::Reference);
    return KernelLevelGet() == KernelLevel::Reference ? ref : best;
}

}    // namespace zck
