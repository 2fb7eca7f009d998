#include "keying/kernels/kernels.h"

namespace zck {
namespace {

KeyingKernels MakeRef() {
    KeyingKernels table = {};
    KeyingKernelsInitRef(&table);
    return table;
}

}    // namespace

const KeyingKernels &KeyingKernelsGet() {
    static const KeyingKernels ref = MakeRef();
    return ref;
}

}    // namespace zck
