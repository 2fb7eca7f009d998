#include "keying/key/key.h"

#include <algorithm>

namespace zck {
namespace {

constexpr CK_COLOR_ADJUST kColorDefaults = {1.0, 0.3, -0.25, -0.05, -0.05};
constexpr CK_RANGE_ADJUST kRangeDefaults = {0.66, 0.66, 0.66};
constexpr double kByte = 255.0;
constexpr double kSmoothUnit = 10.0;    // rounds of smoothing per unit of `dblSmooth`
constexpr int32_t kAlphaOff = 255;      // the floor at which an entry has no effect on alpha

bool ActsOnAlpha(const SINGLE_KEY &key) { return key.nDelta != 0 && key.nAlpha != kAlphaOff; }

}    // namespace

CK_ADJUST AdjustDefaults() {
    CK_ADJUST adjust = {};
    adjust.dblTransparent = 0.1;
    adjust.dblSmooth = 0.25;
    adjust.dblMinTransparent = 0.4;
    adjust.dblMaxTransparent = 0.9;
    adjust.dblExclTransparent = 0.05;
    adjust.colAdjust = kColorDefaults;
    adjust.rangeAdjust = kRangeDefaults;
    return adjust;
}

CK_ADJUST AdjustFromRaw(const CHROMA_KEY_RAW &raw, int32_t keyIndex) {
    const SINGLE_KEY &key = raw.arrKeys[std::clamp(keyIndex, 0, kKeysMax - 1)];
    CK_ADJUST adjust = {};
    const double r = key.nCancelRange / kByte;
    if (r <= 0) {
        adjust.colAdjust = kColorDefaults;
    } else {
        adjust.dblColors = r;
        // Two divisions, not one by a product: the last bits are those that a stored key has.
        adjust.colAdjust = {1.0, key.nCancelPower / kByte / r, key.nCancelChroma / kByte / r, key.nCancelLuma / kByte / r,
                            key.nCancelAlpha / kByte / r};
    }
    adjust.dblTransparent = key.nSmoothRange / kByte;
    adjust.dblSmooth = raw.nEdgesSmooth / kSmoothUnit;
    adjust.dblMinTransparent = raw.nMinTransparent / kByte;
    adjust.dblMaxTransparent = raw.nMaxTransparent / kByte;
    return adjust;
}

bool IsAlphaKey(const SINGLE_KEY &key) { return ActsOnAlpha(key) && key.nReverseKey <= 0; }

bool IsReverseKey(const SINGLE_KEY &key) { return ActsOnAlpha(key) && key.nReverseKey > 0; }

bool IsSpillKey(const SINGLE_KEY &key) {
    return key.nDelta != 0 && key.nReverseKey <= 0 &&
           (key.nCancelPower != 0 || key.nCancelChroma != 0 || key.nCancelLuma != 0 || key.nCancelAlpha != 0);
}

int32_t KeysUsed(const CHROMA_KEY_RAW &raw) { return std::clamp(raw.nKeysUsed, 0, kKeysMax); }

int32_t InPixelOrder(int32_t word, eCK_Type type) {
    if (type != eCKT_RGB) return word;
    const auto w = static_cast<uint32_t>(word);
    return static_cast<int32_t>((w & 0xFF00FF00U) | ((w & 0xFFU) << 16) | ((w >> 16) & 0xFFU));
}

}    // namespace zck
