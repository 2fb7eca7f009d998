// Which part of a source goes to which part of a target.
#pragma once

#include "zchromakey/com.h"
#include "zchromakey/media_types.h"

namespace zck {

struct FittedRects {
    tagRECT source;
    tagRECT target;
    bool bDiffers;    ///< false when both are whole pictures of one size
};

/// Fits a source picture into a target by the scale type of the source, else of the target: crop (a part of the source fills
/// the target), letter-box (all of the source in a part of the target), no-scale (the middles of both at one size), none (all
/// to all). Without a type the display aspects decide: neighbouring widths of high definition are not scaled, a narrower source
/// is cropped when the target is not much lower, all else is letter-boxed. Both records have a size.
///
/// Edges are even, and a rectangle keeps at least two columns and rows where the picture has them. Under no-scale half the
/// excess is rounded up to even on each side, so that an excess of 2 (modulo 4) costs 4 more.
FittedRects FitRects(const Z_VID_PROPS &source, const Z_VID_PROPS &target);

}    // namespace zck
