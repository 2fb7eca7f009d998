// The search for a backdrop: a grid of blocks over the working image, of which the flat ones in the colour of a screen give
// ranges.
#pragma once

#include "keyobject/key_range.h"
#include "keyobject/working_image.h"

namespace zck {

struct BlockScan {
    int32_t blocks;       ///< per row and per column; none below 1
    int32_t threshold;    ///< of flatness, in steps of a byte
    double diff;          ///< as `RangeSetAdd` takes it
    bool paint;           ///< accepted blocks become grey, 0x40 in all four bytes
};

/// Adds a range for each accepted block to `ranges`. What is beyond the last whole block is not visited. Where the grid is
/// finer than the pixels, a block is its first pixel, whatever the colour, and no pixel is painted; the time stays bounded.
void ScanBlocks(const WorkingImage &image, const BlockScan &scan, KeyRangeSet *ranges);

}    // namespace zck
