#include "keyobject/key_adjust.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "keying/key/key.h"

namespace zck {
namespace {

constexpr double kByte = 255.0;
constexpr double kWidening = 64.0;      // steps of a half-width at full power and range
constexpr double kSmoothUnit = 10.0;    // rounds of smoothing per unit of `dblSmooth`

int32_t CountNormalise(CHROMA_KEY_RAW &key) {
    if (key.nKeysUsed < 0 || key.nKeysUsed >= kKeysMax) key.nKeysUsed = kKeysMax;
    return key.nKeysUsed;
}

bool Excludes(const SINGLE_KEY &entry) { return entry.nReverseKey >= 1; }

void Widen(SINGLE_KEY &entry, const CK_ADJUST &adjust, int32_t sign) {
    const CK_RANGE_ADJUST &range = adjust.rangeAdjust;
    const double power = Excludes(entry) ? adjust.dblExclPower : adjust.dblPower;
    const double parts[3] = {range.dblRangeR_H_Y, range.dblRangeG_L_U, range.dblRangeB_S_V};
    auto word = static_cast<uint32_t>(entry.nDelta);
    for (uint32_t c = 0; c < 3; ++c) {
        const int64_t amount = AdjustRounded(kWidening * power * parts[c]);
        const int64_t byte = std::clamp<int64_t>((word >> 8 * c & 0xFF) + sign * amount, 0, 255);
        word = (word & ~(0xFFU << 8 * c)) | static_cast<uint32_t>(byte) << 8 * c;
    }
    entry.nDelta = static_cast<int32_t>(word);
}

void SetSpill(SINGLE_KEY &entry, const CK_ADJUST &adjust) {
    const CK_COLOR_ADJUST &colour = adjust.colAdjust;
    const double unit = kByte * adjust.dblColors;
    entry.nCancelRange = AdjustRounded(unit * colour.dblCancelRange);
    entry.nCancelPower = AdjustRounded(unit * colour.dblCancelPower);
    entry.nCancelChroma = AdjustRounded(unit * colour.dblCancelChroma);
    entry.nCancelLuma = AdjustRounded(unit * colour.dblCancelLuma);
    entry.nCancelAlpha = AdjustRounded(unit * colour.dblCancelAlpha);
}

}    // namespace

int32_t AdjustRounded(double x) {
    using Limits = std::numeric_limits<int32_t>;
    if (std::isnan(x)) return 0;
    const double half = x >= 0 ? x + 0.5 : x - 0.5;
    return static_cast<int32_t>(std::clamp<double>(half, Limits::min(), Limits::max()));
}

double *AdjustField(CK_ADJUST &adjust, eCK_Adjust selector) {
    switch (selector) {
        case eCKA_Power:
            return &adjust.dblPower;
        case eCKA_Transparent:
            return &adjust.dblTransparent;
        case eCKA_Smooth:
            return &adjust.dblSmooth;
        case eCKA_Colors:
            return &adjust.dblColors;
        case eCKA_MinTransparent:
            return &adjust.dblMinTransparent;
        case eCKA_MaxTransparent:
            return &adjust.dblMaxTransparent;
        case eCKA_ExcludePower:
            return &adjust.dblExclPower;
        case eCKA_ExcludeTransparent:
            return &adjust.dblExclTransparent;
        case eCKA_Power_R_H_Y:
            return &adjust.rangeAdjust.dblRangeR_H_Y;
        case eCKA_Power_G_L_U:
            return &adjust.rangeAdjust.dblRangeG_L_U;
        case eCKA_Power_B_S_V:
            return &adjust.rangeAdjust.dblRangeB_S_V;
        case eCKA_Colors_Range:
            return &adjust.colAdjust.dblCancelRange;
        case eCKA_Colors_Power:
            return &adjust.colAdjust.dblCancelPower;
        case eCKA_Colors_Chroma:
            return &adjust.colAdjust.dblCancelChroma;
        case eCKA_Colors_Luma:
            return &adjust.colAdjust.dblCancelLuma;
        case eCKA_Colors_Alpha:
            return &adjust.colAdjust.dblCancelAlpha;
        default:
            return nullptr;
    }
}

void AdjustRemove(CHROMA_KEY_RAW &key, const CK_ADJUST &adjust) {
    const int32_t count = CountNormalise(key);
    for (int32_t i = 0; i < count; ++i) Widen(key.arrKeys[i], adjust, -1);
}

void AdjustApply(CHROMA_KEY_RAW &key, const CK_ADJUST &adjust) {
    const int32_t count = CountNormalise(key);
    for (int32_t i = 0; i < count; ++i) {
        SINGLE_KEY &entry = key.arrKeys[i];
        key.bColorCancel = adjust.dblColors > 0.0 ? 1 : 0;
        SetSpill(entry, adjust);
        Widen(entry, adjust, 1);
        entry.nSmoothRange = AdjustRounded(kByte * (Excludes(entry) ? adjust.dblExclTransparent : adjust.dblTransparent));
    }
    key.nEdgesSmooth = AdjustRounded(kSmoothUnit * adjust.dblSmooth);
    key.nMinTransparent = AdjustRounded(kByte * adjust.dblMinTransparent);
    key.nMaxTransparent = AdjustRounded(kByte * adjust.dblMaxTransparent);
}

}    // namespace zck
