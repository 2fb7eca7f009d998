// The move of spill colour in the frame that is walked by rows: each comb is a picture of its own.
#pragma once

#include <vector>

#include "keying/pipeline/row_frame.h"
#include "keying/spill/rgb_row.h"
#include "keying/spill/spill_rows.h"

namespace zck {

/// One band's share. A row of the frame is changed when the row `ReachOf` below it goes in.
class RowSpill final : private SpillSource {
public:
    /// The frame's spill can be moved row by row.
    static bool Serves(const RowFrame &frame);

    /// Rows above and below a row that its change needs; 0 without spill.
    static int32_t ReachOf(const RowFrame &frame) { return frame.plan->HasSpill() ? SpillMask::kLag * frame.combs : 0; }

    /// Takes the rows `first` to `end` - 1 to change; all that the frame points at must stay.
    HRESULT Start(const RowFrame *frame, int32_t first, int32_t end);

    /// Row `row` of the key space has to go in with `Step`, from `first` - reach to `end` + reach - 1.
    bool Wants(int32_t row) const { return row < m_frame->keyedRows; }

    /// To be called for each row in their order, also for those past the frame. `space` is the row of the key space, where
    /// `Wants` asks for it. Row `row` - reach is then changed and stands in the frame's pixels.
    void Step(int32_t row, const uint8_t *space);

    /// The row has been, or will be, changed.
    bool Changes(int32_t row) const { return row < m_frame->keyedRows; }

private:
    const uint8_t *KeyRow(int32_t line, int64_t *bytes) override;
    uint8_t *Open(int32_t line, uint8_t *room) override;
    void Close(int32_t line, uint8_t *pixels) override;
    int32_t RowOf(int32_t line) const { return line * m_frame->combs + m_comb; }

    struct Comb {
        SpillRows rows;
        int32_t begin = 0;
        int32_t end = 0;    // lines to step through
    };

    const RowFrame *m_frame = nullptr;
    SpillRgbRow m_convert;
    std::vector<Comb> m_combs;
    int32_t m_comb = 0;    // of the row that goes in
    const uint8_t *m_space = nullptr;
};

}    // namespace zck
