#include "keying/spill/spill_kernels.h"
#include "platform/processor.h"

namespace zck {
namespace {

SpillKernels Filled(void (*init)(SpillKernels *)) {
    SpillKernels table = {};
    init(&table);
    return table;
}

}    // namespace

const SpillKernels &SpillKernelsGet() {
    if (KernelLevelGet() == KernelLevel::Avx2) {
        // Made only here: even the filling is compiled for the level.
        static const SpillKernels avx2 = Filled(SpillKernelsInitAvx2);
        return avx2;
    }
    static const SpillKernels ref = Filled(SpillKernelsInitRef);
    return ref;
}

}    // namespace zck
