#include "keying/kernels/kernels.h"
#include "platform/processor.h"

namespace zck {
namespace {

KeyingKernels Filled(void (*init)(KeyingKernels *)) {
    KeyingKernels table = {};
    init(&table);
    return table;
}

}    // namespace

const KeyingKernels &KeyingKernelsGet() {
    if (KernelLevelGet() == KernelLevel::Avx2) {
        // Made only here: even the filling is compiled for the level.
        static const KeyingKernels avx2 = Filled(KeyingKernelsInitAvx2);
        return avx2;
    }
    static const KeyingKernels ref = Filled(KeyingKernelsInitRef);
    return ref;
}

}    // namespace zck
