// How a room makes its tables of kernels: one for each processor level, every entry filled.
#pragma once

#include "platform/processor.h"

namespace zck {

/// The functions that fill the table of one family of kernels. A level without versions of its own is null.
template <class Table>
struct KernelFamily {
    using Fill = void (*)(Table *);
    Fill ref;
    Fill avx2;
    Fill avx512 = nullptr;

    /// The reference fills every entry, then each level up to `level` overwrites those that it has. Only for a level of this
    /// processor: the filling functions are compiled for theirs.
    Table Make(KernelLevel level) const {
        Table table = {};
        ref(&table);
        if (level >= KernelLevel::Avx2 && avx2 != nullptr) avx2(&table);
        if (level >= KernelLevel::Avx512 && avx512 != nullptr) avx512(&table);
        return table;
    }
};

/// The family's table for this processor and for the limit that tests set, made at the first call for its level. Lives as long
/// as the program. Callers keep the one that they got for all rows of a picture.
template <const auto &kFamily>
const auto &KernelTableGet() {
    switch (KernelLevelGet()) {
        case KernelLevel::Avx512: {
            static const auto avx512 = kFamily.Make(KernelLevel::Avx512);
            return avx512;
        }
        case KernelLevel::Avx2: {
            static const auto avx2 = kFamily.Make(KernelLevel::Avx2);
            return avx2;
        }
        default: {
            static const auto ref = kFamily.Make(KernelLevel::Reference);
            return ref;
        }
    }
}

}    // namespace zck
