// What the pool's threads do with one frame. Everything here is written by the dispatcher before the threads are woken, and
// read by it after they are done.
#pragma once

#include <array>

#include "keying/pipeline/pipeline.h"
#include "keying/pipeline/row_source.h"
#include "keying/slices/slices.h"

namespace zck {

/// A frame that was taken, and the props that each of its slices has as an image of its own.
struct SlicedFrame {
    uint8_t *pixels;
    uint8_t *alpha;
    int64_t pixelBytes;
    Z_VID_PROPS props;
    Z_VID_PROPS slice;     // rows N times as far apart, one N-th of them, progressive
    CHROMA_KEY_RAW key;    // with the field treatment of the frame
    int32_t count;         // N, as it was when the frame came
    WriteAlpha writeAlpha;
    const RowSource *source;    // or null
};

using SliceStatuses = std::array<HRESULT, CSliceThreads::kSlotsMax>;

/// One way to key a frame on the pool's threads. Lives as long as the pool, and serves one frame at a time.
class SliceWork {
public:
    virtual ~SliceWork() = default;
    /// On the dispatcher's thread, before the slots. `S_FALSE`: the frame has no shape for this way.
    virtual HRESULT Begin(const SlicedFrame &frame) = 0;
    /// The share of a slot, on its thread. Sets the status of the slices that it works on.
    virtual void Work(int32_t slot, const CWorkerThread &self, SliceStatuses &status) = 0;
    /// On the dispatcher's thread, after the slots. A failure is the frame's: no slice's status tells it.
    virtual HRESULT Finish(const SlicedFrame &frame) = 0;
};

/// The limits of slice `index`. Slices own their rows and nothing else; a single slice owns the plane.
KeyBounds SliceBounds(const SlicedFrame &frame, int32_t index);

/// Fetches all rows of a frame that has a source.
HRESULT FetchAll(const SlicedFrame &frame);

}    // namespace zck
