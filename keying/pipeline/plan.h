// A raw key, read once for a call: which entries take part, in which key space, with their constants made.
#pragma once

#include <cstdint>

#include "keying/kernels/kernels.h"
#include "keying/spill/spill_plan.h"
#include "zchromakey/key_types.h"

namespace zck {

struct PlanEntry {
    DistanceKey distance;
    int32_t nAlpha;
    bool reverse;
};

struct KeyPlan {
    eCK_Type type;
    int32_t count;    ///< entries that are alpha or reverse keys, in their order
    PlanEntry entries[16];
    bool hasAlpha;
    bool hasReverse;
    SpillPlan spill;
    int32_t low;    ///< thresholds; 0 and 255 are neutral
    int32_t high;
    int32_t edges;    ///< rounds of smoothing, the last one being the Gauss filter
    bool invert;

    /// A spill key is there and anti-spill is on.
    bool HasSpill() const { return spill.count > 0; }
};

/// The type is one that keys.
bool IsKeyingType(eCK_Type type);

KeyPlan KeyPlanMake(const CHROMA_KEY_RAW &key);

}    // namespace zck
