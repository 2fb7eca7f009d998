// The frame as bands of neighbouring rows, each walked once: the same bytes as by combs, for the common shapes.
#pragma once

#include <atomic>

#include "keying/pipeline/streaming_path.h"
#include "keying/slices/slice_work.h"

namespace zck {

class BandWork final : public SliceWork {
public:
    HRESULT Begin(const SlicedFrame &frame) override;
    void Work(int32_t slot, const CWorkerThread &self, SliceStatuses &status) override;
    /// The first failure of a band: its source failed, or memory ran out.
    HRESULT Finish(const SlicedFrame &frame) override;

private:
    HRESULT Prepare(const SlicedFrame &frame);
    HRESULT WalkBand(int32_t band, const CWorkerThread &self);
    bool AwaitEdges(const CWorkerThread &self);

    KeyPlan m_plan = {};
    StreamingPath m_path;
    int32_t m_bands = 0;    // at most one for each slot
    std::array<HRESULT, CSliceThreads::kSlotsMax> m_bandStatus = {};
    std::atomic<int32_t> m_edgesToCome{0};
    Event m_edgesDone{true};
};

}    // namespace zck
