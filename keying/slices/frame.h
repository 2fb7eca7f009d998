// The frame that the pool's threads work on, and the ways to key it. One at a time is in use.
#pragma once

#include "keying/slices/band_work.h"
#include "keying/slices/comb_work.h"

namespace zck {

struct CSliceThreads::Frame {
    SlicedFrame sliced = {};
    CombWork combs;
    CombsInTurn combsInTurn;
    BandWork bands;
    SliceWork *work = &combs;
};

}    // namespace zck
