// A raw key, read once for a call: which entries move spill, and with what.
#pragma once

#include <cstdint>

#include "keying/kernels/kernels.h"
#include "keying/spill/spill_colour.h"
#include "keying/spill/spill_kernels.h"
#include "zchromakey/key_types.h"

namespace zck {

struct SpillEntry {
    DistanceKey distance;    ///< of the widened key
    int32_t power;
    int32_t chroma;
    int32_t luma;
};

struct SpillPlan {
    int32_t count;    ///< 0: there is nothing to do
    bool perPixel;
    bool invert;    ///< the mask is inverted, so that it is highest at the key colour
    SpillColour colour;
    SpillEntry entries[16];
};

/// `key` as the caller stored it. The plan is empty without anti-spill or without a spill key; with the per-pixel path one
/// spill key brings in every entry that is neither off nor a reverse key.
SpillPlan SpillPlanMake(const CHROMA_KEY_RAW &key);

/// The kernels' parameters, for macro pixels with luma or with chroma in the first byte.
SpillBlockKey SpillBlockKeyOf(const SpillPlan &plan, const SpillEntry &entry, bool lumaFirst);
SpillPixelKey SpillPixelKeyOf(const SpillPlan &plan, const SpillEntry &entry, bool lumaFirst);

}    // namespace zck
