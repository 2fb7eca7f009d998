// Transposed blocks of pixels. The reference functions are the meaning; the vector versions give the same bytes.
//
// This header is read by files that are compiled for newer processors than the rest: plain records and declarations only.
#pragma once

#include <cstdint>

namespace zck {

/// Pixels of a block's side.
constexpr int32_t kTurnBlock = 8;

struct TurnKernels {
    /// A block of 8 by 8 pixels of 4 bytes: row i of the target is column i of the source. Steps are bytes, of any sign; no
    /// pointer needs an alignment; the blocks do not overlap.
    void (*transpose4)(uint8_t *dst, int64_t dstStep, const uint8_t *src, int64_t srcStep);
};

/// The table for the processor's level as it is now (see `KernelLevelLimit`).
const TurnKernels &TurnKernelsGet();

/// Fill a table for one level; `InitAvx2` only where the processor has it.
void TurnKernelsInitRef(TurnKernels *table);
void TurnKernelsInitAvx2(TurnKernels *table);

}    // namespace zck
