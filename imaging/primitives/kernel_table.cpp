#include "platform/kernel_table.h"

#include "imaging/primitives/row_kernels.h"

namespace zck {
namespace {

constexpr KernelFamily<PrimitiveKernels> kFamily = {PrimitiveKernelsInitRef, PrimitiveKernelsInitAvx2};

}    // namespace

void PrimitiveKernelsInitAvx2(PrimitiveKernels *table) {
    PrimitivePixelsInitAvx2(table);
    PrimitiveArithmeticInitAvx2(table);
    PrimitiveConvertInitAvx2(table);
    PrimitivePlanesInitAvx2(table);
}

const PrimitiveKernels &PrimitiveKernelsGet() { return KernelTableGet<kFamily>(); }

}    // namespace zck
