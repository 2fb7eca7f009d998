// Anti-spill: light of the screen on the subject leaves a fringe of the key colour; pixels near that colour are moved away
// from it, in 4:2:2. The alpha is not touched.
#pragma once

#include <cstdint>

#include "keying/spill/spill_plan.h"
#include "zchromakey/com.h"
#include "zchromakey/media_types.h"

namespace zck {

/// The picture to change, and the picture to measure.
struct SpillImage {
    uint8_t *pixels;
    int64_t pixelBytes;    ///< from `pixels` on; nothing beyond is touched
    const Z_VID_PROPS *props;
    int64_t stride;    ///< pixels from row to row: `AlphaStride` of the props

    const uint8_t *space;    ///< the key-space image, 4 bytes a pixel; may be `pixels` itself
    int64_t spaceStride;     ///< bytes
    int64_t spaceBytes;      ///< readable from `space` on; pixels beyond count as 0
    int64_t spaceRow;        ///< readable from the start of a row on
};

/// Changes the picture by all entries of the plan, in their order. Packed YUV of 8 bits is changed in place, in the format's
/// own order of luma and chroma, but YVYU like YUY2, its chromas exchanged; RGB goes through YUY2 and back, which costs it
/// half of its chroma resolution everywhere and gives it an alpha of 255. An empty plan does nothing.
///
/// `S_OK`; the status of a conversion that is not there or has no room; 0xFFFFFFFA when the mask has no size (width below
/// 2, or no rows), the picture then being as it was. Throws `std::bad_alloc` for scratch rows.
HRESULT SpillCancel(const SpillImage &image, const SpillPlan &plan);

}    // namespace zck
