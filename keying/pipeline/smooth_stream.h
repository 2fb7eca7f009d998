// The edge smoothing as a stream: rows go in from the top, and finished rows come out a few rows later. Every step works on
// rows that are still in the cache, and the plane is walked once.
#pragma once

#include "keying/kernels/kernels.h"
#include "keying/pipeline/row_memory.h"
#include "keying/pipeline/smooth_plane.h"

namespace zck {

/// One plane, or a band of one. At time t the row t goes in, and row t - `Lag()` comes out; in between each round makes one row
/// of its erosion and one of its box filter. `SmoothRounds` tells the same in whole planes.
class SmoothStream {
public:
    /// For a plane of `width` by `height`, both at least 3, of which the rows `first` to `end` - 1 go in. `edges`: rounds, the
    /// last filter included, at least 1. `reach`: bytes that an input row has room for.
    void Start(SmoothKind kind, int32_t width, int32_t height, int32_t reach, int32_t edges, int32_t first, int32_t end);

    static int32_t LagOf(int32_t edges) { return 2 * (edges - 1) + 1; }
    int32_t Lag() const { return m_stages + 1; }

    /// Where row t is to be put before `Step(t)`; it stays readable until row t has come out.
    uint8_t *Input(int32_t t) const { return m_rows.Row(t & m_inputMask); }

    /// Moves all rounds by one row; from `end` on there is no more input.
    void Step(int32_t t) const;

    /// Writes the finished row `row` = t - `Lag()`, `width` bytes, after `Step(t)`.
    void Output(int32_t row, uint8_t *dst) const;

private:
    const uint8_t *StageRow(int32_t stage, int32_t row) const;
    uint8_t *StageSlot(int32_t stage, int32_t row) const;
    void Erode(int32_t stage, int32_t row) const;
    void Box(int32_t stage, int32_t row) const;
    bool IsBorder(int32_t row) const { return row == 0 || row == m_height - 1; }

    const KeyingKernels *m_kernels = nullptr;
    SmoothKind m_kind = SmoothKind::Seam;
    int32_t m_width = 0;
    int32_t m_height = 0;
    int32_t m_first = 0;
    int32_t m_end = 0;
    int32_t m_stages = 0;    // two a round
    int32_t m_inputMask = 0;
    RowMemory m_rows;
};

}    // namespace zck
