#include "imaging/colour/colour_kernels.h"

namespace zck {

void ColourKernelsInitAvx2(ColourKernels *) {}

}    // namespace zck
