// The spill mask of one entry as a stream of rows: a row of the key space goes in, and the full-size mask comes out two rows
// later, widened by two pixels to each side.
#pragma once

#include <cstdint>

#include "keying/kernels/kernels.h"

namespace zck {

/// The picture that rows are walked of.
struct SpillShape {
    int32_t width;
    int32_t height;
    int32_t blocks;    ///< of 8 pixels that are measured in a row
    bool slips;        ///< rows stand end to end: the byte that an inversion does late is the next row's first
};

/// Widens by a maximum over 3 by 3, twice; the picture's outermost pixels keep their values both times.
class SpillMask {
public:
    /// Rows of its scratch.
    static constexpr int32_t kScratchRows = 7;
    static constexpr int32_t kLag = 2;

    /// `scratch` has `kScratchRows` rows, `pitch` apart, of at least width + 40 bytes, and keeps them until the next start.
    void Start(const SpillShape &shape, const DistanceKey &key, bool invert, uint8_t *scratch, int64_t pitch);

    /// Takes row t of the key space, of which `bytes` bytes may be read; pixels beyond count as 0. `before` is the row that
    /// stood in the plane so far: the columns right of the last block keep it. Null: they start as 0. Rows are put in order.
    void Put(int32_t t, const uint8_t *space, int64_t bytes, const uint8_t *before);

    /// Moves the widening on, after row t was put, or after the last row. Row t - `kLag` is then `Row()`.
    void Step(int32_t t);

    const uint8_t *Row() const { return Slot(kScratchRows - 1); }

private:
    uint8_t *Slot(int32_t i) const { return m_scratch + i * m_pitch; }
    uint8_t *Measured(int32_t row) const { return Slot(row % 3); }
    uint8_t *WidenedOnce(int32_t row) const { return Slot(3 + row % 3); }
    bool IsInner(int32_t row) const;
    void Measure(uint8_t *dst, const uint8_t *space, int64_t bytes) const;
    void Widen(uint8_t *dst, const uint8_t *above, const uint8_t *middle, const uint8_t *below) const;

    const KeyingKernels *m_kernels = nullptr;
    SpillShape m_shape = {};
    DistanceKey m_key = {};
    bool m_invert = false;
    uint8_t *m_scratch = nullptr;
    int64_t m_pitch = 0;
};

}    // namespace zck
