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
}

const PrimitiveKernels &PrimitiveKernelsGet() {
    static const PrimitiveKernels ref = Make(KernelLevel::Reference);
    static const PrimitiveKernels best = Make(KernelLevelGet());
    return KernelLevelGet() == KernelLevel::Reference ? ref : best;
}

}    // namespace zck
