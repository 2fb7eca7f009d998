#include "keying/spill/spill_plan.h"

#include <algorithm>

#include "keying/key/key.h"

namespace zck {
namespace {

constexpr int32_t kPerPixel = 2;        // of `bColorCancel`
constexpr int32_t kUninverted = 2;      // bit of `nInverseKey`
constexpr int32_t kSmoothRange = 10;    // of the mask, whatever the entry's own is

int32_t Widened(int32_t delta, int32_t range) {
    uint32_t wide = 0;
    for (int j = 0; j < 4; ++j) {
        const int64_t byte = (static_cast<uint32_t>(delta) >> (8 * j)) & 0xFFU;
        wide |= static_cast<uint32_t>(std::clamp<int64_t>(byte + range, 0, 255)) << (8 * j);
    }
    return static_cast<int32_t>(wide);
}

SpillEntry EntryOf(const SINGLE_KEY &key, eCK_Type type) {
    const int32_t wide = Widened(InPixelOrder(key.nDelta, type), key.nCancelRange);
    return {DistanceKeySetup(InPixelOrder(key.nValue, type), wide, kSmoothRange), key.nCancelPower, key.nCancelChroma,
            key.nCancelLuma};
}

int16_t Saturated(int64_t v) { return static_cast<int16_t>(std::clamp<int64_t>(v, INT16_MIN, INT16_MAX)); }

}    // namespace

SpillPlan SpillPlanMake(const CHROMA_KEY_RAW &key) {
    SpillPlan plan = {};
    const SINGLE_KEY *end = key.arrKeys + KeysUsed(key);
    if (key.bColorCancel == 0 || std::none_of(key.arrKeys, end, IsSpillKey)) return plan;
    plan.perPixel = key.bColorCancel == kPerPixel;
    plan.invert = (key.nInverseKey & kUninverted) == 0;
    plan.colour = SpillColourOf(key);
    for (const SINGLE_KEY *entry = key.arrKeys; entry != end; ++entry) {
        const bool forced = plan.perPixel && entry->nDelta != 0 && entry->nReverseKey <= 0;
        if (forced || IsSpillKey(*entry)) plan.entries[plan.count++] = EntryOf(*entry, key.eType);
    }
    return plan;
}

SpillBlockKey SpillBlockKeyOf(const SpillPlan &plan, const SpillEntry &entry, bool lumaFirst) {
    SpillBlockKey key = {};
    const int32_t luma = lumaFirst ? 0 : 1;
    const int32_t chroma = 1 - luma;
    for (int i = 0; i < 2; ++i) {
        const int y = luma + 2 * i;
        key.move[y] = Saturated(-int64_t{entry.power} / 4);
        key.gain[y] = Saturated(entry.luma);
        key.key[y] = plan.colour.y;
        const int c = chroma + 2 * i;
        key.move[c] = Saturated(entry.power);
        key.gain[c] = Saturated(2 * int64_t{entry.chroma});
        key.key[c] = static_cast<int16_t>((i == 0 ? plan.colour.u : plan.colour.v) - 128);
        key.zero[c] = 128;
    }
    return key;
}

SpillPixelKey SpillPixelKeyOf(const SpillPlan &plan, const SpillEntry &entry, bool lumaFirst) {
    SpillPixelKey key = {};
    key.chromaAt = lumaFirst ? 1 : 0;
    key.mode = plan.colour.rgb.b[1] > plan.colour.rgb.b[2] ? 1 : 0;
    key.key[0] = plan.colour.u - 128;
    key.key[1] = plan.colour.v - 128;
    key.power = entry.power;
    key.chroma = entry.chroma;
    key.luma = entry.luma;
    return key;
}

}    // namespace zck
