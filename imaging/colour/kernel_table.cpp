#include "platform/kernel_table.h"

#include "imaging/colour/colour_kernels.h"

namespace zck {
namespace {

constexpr KernelFamily<ColourKernels> kFamily = {ColourKernelsInitRef, ColourKernelsInitAvx2};

}    // namespace

const ColourKernels &ColourKernelsGet() { return KernelTableGet<kFamily>(); }

}    // namespace zck
