// The alpha of one row: all keys and the thresholds, while the row is in the cache.
#pragma once

#include "keying/pipeline/image_view.h"
#include "keying/pipeline/plan.h"
#include "keying/pipeline/row_memory.h"

namespace zck {

/// Scratch for the rows of one thread.
class RowKeyer {
public:
    /// Takes the widths of the view; the plan must outlive the use.
    void Start(const KeyView &view, const KeyPlan *plan);

    /// Measures a pixel row of which `bytes` may be read. `alpha` has `AlphaReach` bytes of room and holds what the columns
    /// right of the last block start with.
    void Key(const uint8_t *pixels, int64_t bytes, uint8_t *alpha) const;

    /// Row of the key space of a pixel row, until the next call. `KeyedSpace` gives that of the row that `Key` was last called
    /// for, which is then already there.
    const uint8_t *Space(const uint8_t *pixels) const;
    const uint8_t *KeyedSpace(const uint8_t *pixels) const;

private:
    enum { kSpace, kOther, kReverse, kOtherReverse, kRows };
    void Protect(uint8_t *alpha) const;

    const KeyingKernels *m_kernels = nullptr;
    const KeyPlan *m_plan = nullptr;
    int32_t m_width = 0;
    int32_t m_blocks = 0;
    int32_t m_reach = 0;
    RowMemory m_rows;
};

}    // namespace zck
