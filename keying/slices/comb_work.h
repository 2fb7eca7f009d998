// The frame as combs of rows: slice i of N has the rows i, i + N and so on.
#pragma once

#include "keying/slices/slice_work.h"

namespace zck {

/// Each slot keys its own slice; the pass over the seams follows on the dispatcher's thread.
class CombWork : public SliceWork {
public:
    HRESULT Begin(const SlicedFrame &frame) override;
    void Work(int32_t slot, const CWorkerThread &self, SliceStatuses &status) override;
    HRESULT Finish(const SlicedFrame &frame) override;

protected:
    void WorkSlice(int32_t index, SliceStatuses &status);
    int32_t SliceCount() const { return m_frame->count; }

private:
    struct Slice {
        uint8_t *pixels;    // null when there is nothing to do
        uint8_t *alpha;
        KeyBounds bounds;
    };
    HRESULT KeySlice(const Slice &slice) const;

    const SlicedFrame *m_frame = nullptr;
    std::array<Slice, CSliceThreads::kSlotsMax> m_slices = {};
};

/// For slices that reach into each other's rows: slot 0 keys all of them, in their order.
class CombsInTurn final : public CombWork {
public:
    /// Some stages step from row to row by whole pixels. Where a row is none, what a slice reads and writes drifts into the
    /// rows of the others, and only a fixed order of the slices gives the same bytes each time.
    static bool Needed(const SlicedFrame &frame);

    void Work(int32_t slot, const CWorkerThread &self, SliceStatuses &status) override;
};

}    // namespace zck
