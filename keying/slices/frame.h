// What the pool's threads work on: one frame at a time. Written by the dispatcher before the threads are woken.
#pragma once

#include "keying/pipeline/pipeline.h"
#include "keying/pipeline/row_road.h"
#include "keying/slices/slices.h"

namespace zck {

struct CSliceThreads::Frame {
    uint8_t *slicePixels[kSlotsMax] = {};    // null when a slot is idle
    uint8_t *sliceAlpha[kSlotsMax] = {};
    KeyBounds sliceBounds[kSlotsMax] = {};
    CHROMA_KEY_RAW key = {};
    Z_VID_PROPS props = {};    // of a slice: rows N times as far apart, one N-th of them
    int32_t count = 0;         // N, as it was when the frame came
    bool bWriteAlpha = false;
    bool inTurn = false;    // slot 0 works on all slices, one after another

    // The frame as rows, when it has a shape for that; the slots then have bands instead of slices.
    bool byRows = false;
    KeyPlan plan = {};
    RowRoad road;
    int32_t bands = 0;
    HRESULT bandStatus[kSlotsMax] = {};
    std::atomic<int32_t> edgesToCome{0};
    Event edgesDone{true};
};

}    // namespace zck
