// The anti-spill of one picture as a stream of rows, all entries in one walk.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "keying/spill/spill_mask.h"
#include "keying/spill/spill_plan.h"

namespace zck {

/// Where the rows of a picture come from and go to. Each is asked for once per entry, or once.
class SpillSource {
public:
    /// Row `row` of the key space, 4 bytes a pixel, and how much of it may be read. Asked for rows not yet closed only.
    virtual const uint8_t *KeyRow(int32_t row, int64_t *bytes) = 0;

    /// The macro pixels of row `row`, width / 2 of them, to be changed in place: in the picture itself or in `room`, which has
    /// 2 * width + 32 bytes.
    virtual uint8_t *Open(int32_t row, uint8_t *room) = 0;

    /// All entries are done with the row that `Open` gave. No key row at or above it is asked for any more.
    virtual void Close(int32_t row, uint8_t *pixels) = 0;

protected:
    ~SpillSource() = default;
};

class SpillRows {
public:
    /// `plan` must outlive the use and not be empty. Rows `first` to `end` - 1 are changed. Key rows are asked for from
    /// `first` - `Lag()` to `end` + `Lag()` - 1, as far as the picture has them. Scratch grows, and is kept.
    void Start(const SpillPlan *plan, const SpillShape &shape, bool lumaFirst, int32_t first, int32_t end);

    /// Rows from the one that goes in to the one that is done.
    int32_t Lag() const { return m_lag; }

    /// All entries run side by side: each key row is asked for when it goes in, and not again. Otherwise each runs behind the
    /// one before it, as the columns right of the last block go from one to the next.
    static bool SideBySide(const SpillPlan &plan, const SpillShape &shape) {
        return plan.count == 1 || int64_t{shape.blocks} * 8 >= shape.width;
    }

    /// First row that goes in.
    int32_t Begin() const { return m_begin; }

    /// Row t goes in, if there is one, and row t - `Lag()` is closed, if it is to be changed. To be called for each t from
    /// `Begin()` to `end` + `Lag()` - 1.
    void Step(int32_t t, SpillSource *source);

private:
    uint8_t *Scratch(int64_t row) { return m_scratch.data() + row * m_pitch; }
    bool IsChanged(int32_t row) const { return row >= m_first && row < m_end; }
    void Correct(int32_t entry, uint8_t *pixels);

    struct Entry {
        SpillMask mask;
        SpillBlockKey block;
        SpillPixelKey pixel;
    };

    const SpillKernels *m_kernels = nullptr;
    const SpillPlan *m_plan = nullptr;
    SpillShape m_shape = {};
    int32_t m_first = 0;
    int32_t m_end = 0;
    int32_t m_begin = 0;
    int32_t m_behind = 0;    // rows from one entry to the next
    int32_t m_lag = 0;
    int32_t m_opens = 0;    // rows that are open at a time
    std::array<Entry, 16> m_entries = {};
    std::array<uint8_t *, SpillMask::kLag * 16> m_open = {};
    std::vector<uint8_t> m_scratch;
    int64_t m_pitch = 0;
};

}    // namespace zck
