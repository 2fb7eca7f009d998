#include "keying/pipeline/plan.h"

#include "keying/key/key.h"

namespace zck {
namespace {

void AddEntry(KeyPlan *plan, const SINGLE_KEY &entry, bool reverse) {
    const int32_t value = InPixelOrder(entry.nValue, plan->type);
    const int32_t delta = InPixelOrder(entry.nDelta, plan->type);
    plan->entries[plan->count++] = {DistanceKeySetup(value, delta, entry.nSmoothRange), entry.nAlpha, reverse};
}

}    // namespace

bool IsKeyingType(eCK_Type type) { return type == eCKT_RGB || type == eCKT_HLS || type == eCKT_YUV; }

KeyPlan KeyPlanMake(const CHROMA_KEY_RAW &key) {
    KeyPlan plan = {};
    plan.type = key.eType;
    for (int32_t i = 0; i < KeysUsed(key); ++i) {
        const SINGLE_KEY &entry = key.arrKeys[i];
        if (IsAlphaKey(entry)) {
            plan.hasAlpha = true;
            AddEntry(&plan, entry, false);
        } else if (IsReverseKey(entry)) {
            plan.hasReverse = true;
            AddEntry(&plan, entry, true);
        }
    }
    plan.spill = SpillPlanMake(key);
    plan.low = key.nMinTransparent;
    plan.high = key.nMaxTransparent;
    plan.edges = key.nEdgesSmooth;
    plan.invert = (key.nInverseKey & 1) != 0;
    return plan;
}

}    // namespace zck
