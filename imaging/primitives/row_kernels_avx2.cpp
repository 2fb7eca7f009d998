#include "imaging/primitives/row_kernels.h"

namespace zck {

void PrimitiveKernelsInitAvx2(PrimitiveKernels *) {}

}    // namespace zck
