// What the pool's threads work on: one frame at a time. Written by the dispatcher before the threads are woken.
#pragma once

#include "keying/pipeline/pipeline.h"
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
};

}    // namespace zck
