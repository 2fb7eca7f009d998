// The key object's ranges, and the way from them to a key and back.
#include <algorithm>
#include <cmath>

#include "tests/conformance/key_object_model.h"

namespace conformance {
namespace {

constexpr int32_t kLeast32 = -2147483647 - 1, kMost32 = 2147483647;
// The byte of a key's word that holds a channel of a range, outside RGB.
constexpr int32_t kByteOfChannel[4] = {2, 1, 0, 3};

int32_t Rounded(double v) {
    if (std::isnan(v)) return 0;
    const double moved = v >= 0 ? v + 0.5 : v - 0.5;
    if (moved >= 2147483647.0) return kMost32;
    if (moved <= -2147483648.0) return kLeast32;
    return static_cast<int32_t>(moved);
}

// The byte of a key's word that holds a channel.
int32_t WordByte(eCK_Type type, int32_t channel) { return type == eCKT_RGB ? channel : kByteOfChannel[channel]; }

int32_t Packed(eCK_Type type, const double *channels) {
    uint32_t word = 0;
    for (int32_t c = 0; c < 4; ++c) {
        const int64_t whole = static_cast<int64_t>(std::floor(channels[c] * 255.0 + 0.5));
        word |= static_cast<uint32_t>(whole & 255) << (8 * WordByte(type, c));
    }
    return static_cast<int32_t>(word);
}

void Unpack(eCK_Type type, int32_t word, double *channels) {
    for (int32_t c = 0; c < 4; ++c)
        channels[c] = static_cast<double>((static_cast<uint32_t>(word) >> (8 * WordByte(type, c))) & 255) / 255.0;
}

int32_t KeysOf(const CHROMA_KEY_RAW &key) { return key.nKeysUsed >= 0 && key.nKeysUsed <= 15 ? key.nKeysUsed : 16; }

void Widen(SINGLE_KEY &entry, double power, const CK_RANGE_ADJUST &range, int32_t sign) {
    const double r[3] = {range.dblRangeR_H_Y, range.dblRangeG_L_U, range.dblRangeB_S_V};
    uint32_t word = static_cast<uint32_t>(entry.nDelta);
    for (int c = 0; c < 3; ++c) {
        const int64_t byte = (word >> (8 * c)) & 255;
        const int64_t moved = std::clamp<int64_t>(byte + int64_t{sign} * Rounded(64.0 * power * r[c]), 0, 255);
        word = (word & ~(255U << (8 * c))) | static_cast<uint32_t>(moved) << (8 * c);
    }
    entry.nDelta = static_cast<int32_t>(word);
}

}    // namespace

void KeyModel::Load(Set &set, const CHROMA_KEY_RAW &key, bool exclude) {
    set.count = 0;
    for (int32_t i = 0; i < std::min(key.nKeysUsed, 16); ++i) {
        const SINGLE_KEY &entry = key.arrKeys[i];
        Range &range = set.ranges[set.count];
        if ((entry.nReverseKey >= 1) == exclude) {
            Unpack(key.eType, entry.nValue, range.centre);
            Unpack(key.eType, entry.nDelta, range.delta);
        }
        ++set.count;
    }
}

void KeyModel::Append(CHROMA_KEY_RAW &key, const Set &set, int32_t reverse) {
    for (int32_t i = 0; i < set.count && i + key.nKeysUsed < 16; ++i) {
        SINGLE_KEY &entry = key.arrKeys[key.nKeysUsed + i];
        entry.nValue = Packed(key.eType, set.ranges[i].centre);
        entry.nDelta = Packed(key.eType, set.ranges[i].delta);
        entry.nReverseKey = reverse;
    }
    key.nKeysUsed = std::min(16, key.nKeysUsed + set.count);
}

void KeyModel::Rebuild(int32_t type) {
    CHROMA_KEY_RAW &key = m_step.key;
    if (type >= 0) key.eType = type == 1 ? eCKT_HLS : type == 2 ? eCKT_YUV : eCKT_RGB;
    key.nKeysUsed = 0;
    Append(key, m_step.add, 0);
    Append(key, m_step.exclude, 1);
    Remove(key, m_step.adjust);
    Apply(key, m_step.adjust);
}

void KeyModel::Remove(CHROMA_KEY_RAW &key, const CK_ADJUST &adjust) {
    key.nKeysUsed = KeysOf(key);
    for (int32_t i = 0; i < key.nKeysUsed; ++i)
        Widen(key.arrKeys[i], key.arrKeys[i].nReverseKey < 1 ? adjust.dblPower : adjust.dblExclPower, adjust.rangeAdjust, -1);
}

void KeyModel::Apply(CHROMA_KEY_RAW &key, const CK_ADJUST &adjust) {
    key.nKeysUsed = KeysOf(key);
    const CK_COLOR_ADJUST &colours = adjust.colAdjust;
    const double c = adjust.dblColors;
    for (int32_t i = 0; i < key.nKeysUsed; ++i) {
        SINGLE_KEY &entry = key.arrKeys[i];
        key.bColorCancel = c > 0.0 ? 1 : 0;
        entry.nCancelRange = Rounded(255.0 * c * colours.dblCancelRange);
        entry.nCancelPower = Rounded(255.0 * c * colours.dblCancelPower);
        entry.nCancelChroma = Rounded(255.0 * c * colours.dblCancelChroma);
        entry.nCancelLuma = Rounded(255.0 * c * colours.dblCancelLuma);
        entry.nCancelAlpha = Rounded(255.0 * c * colours.dblCancelAlpha);
        const bool keys = entry.nReverseKey < 1;
        Widen(entry, keys ? adjust.dblPower : adjust.dblExclPower, adjust.rangeAdjust, 1);
        entry.nSmoothRange = Rounded(255.0 * (keys ? adjust.dblTransparent : adjust.dblExclTransparent));
    }
    key.nEdgesSmooth = Rounded(10.0 * adjust.dblSmooth);
    key.nMinTransparent = Rounded(255.0 * adjust.dblMinTransparent);
    key.nMaxTransparent = Rounded(255.0 * adjust.dblMaxTransparent);
}

bool KeyModel::Contains(const Range &a, const Range &b) {
    for (int c = 0; c < 4; ++c)
        if (!(a.centre[c] - a.delta[c] <= b.centre[c] - b.delta[c] && b.centre[c] + b.delta[c] <= a.centre[c] + a.delta[c]))
            return false;
    return true;
}

double KeyModel::Size(const double *d, bool hls) {
    if (hls) return d[0] * d[0] + d[1] * d[1] / 2 + d[2] * d[2] / 2;
    return d[0] * d[0] + d[1] * d[1] + d[2] * d[2] + d[3] * d[3];
}

double KeyModel::Cost(Range &a, const Range &b, double *own, bool hls) {
    if (Contains(a, b)) return 0.0;
    double m[4];
    for (int c = 0; c < 4; ++c) {
        const double lo = std::min(a.centre[c] - a.delta[c], b.centre[c] - b.delta[c]);
        const double hi = std::max(a.centre[c] + a.delta[c], b.centre[c] + b.delta[c]);
        m[c] = (hi - lo) / 2;
    }
    const double sizeA = Size(a.delta, hls), sizeB = Size(b.delta, hls), sizeM = Size(m, hls);
    if (sizeA >= sizeM) return 0.0;
    if (sizeB < sizeM) {
        if (own != nullptr) *own = sizeB;
        return sizeM - sizeA;
    }
    a = b;
    return 0.0;
}

void KeyModel::Merge(Range &a, const Range &b) {
    Range merged;
    for (int c = 0; c < 4; ++c) {
        const double lo = std::min(a.centre[c] - a.delta[c], b.centre[c] - b.delta[c]);
        const double hi = std::max(a.centre[c] + a.delta[c], b.centre[c] + b.delta[c]);
        merged.centre[c] = (a.centre[c] * (a.weight + 1) + a.centre[c] * (b.weight + 1)) / ((a.weight + 1) + (b.weight + 1));
        merged.delta[c] = (hi - lo) / 2;
    }
    a = merged;
}

int32_t KeyModel::Classify(Set &set, const Range &r, double diff, bool hls) {
    if (set.count == 0) return 2;
    double own = 0.0;
    int32_t bestIndex = 0;
    double best = Cost(set.ranges[0], r, &own, hls);
    if (best == 0.0) {
        set.ranges[0].weight += 1.0;
        return 0;
    }
    for (int32_t i = 1; i < set.count; ++i) {
        const double cost = Cost(set.ranges[i], r, nullptr, false);
        if (cost == 0.0) return 0;
        if (best > cost) {
            best = cost;
            bestIndex = i;
        }
    }
    if (diff > 0.0 && best >= diff) return -1;
    if (set.count < set.max && own < best * 2.0) return 2;
    Merge(set.ranges[bestIndex], r);
    return 1;
}

int32_t KeyModel::Add(Set &set, const Range &r, double diff, bool hls) {
    const int32_t kind = Classify(set, r, diff, hls);
    if (kind != 2) return kind;
    if (set.count >= set.max) return -1;
    set.ranges[set.count] = r;
    ++set.count;
    return 2;
}

void KeyModel::Limit(Set &set, int64_t n) {
    const int32_t limit = static_cast<int32_t>(std::clamp<int64_t>(n, 1, 16));
    if (limit == 1 && set.count > 1) {
        for (int32_t i = set.count - 2; i >= 0; --i) Merge(set.ranges[i], set.ranges[i + 1]);
        set.count = 1;
    }
    while (set.count > limit) {
        const Range last = set.ranges[set.count - 1];
        double bound = 1000000.0;
        int32_t found = -1;
        for (int32_t i = 0; i < set.count - 1 && bound != 0.0; ++i) {
            const double cost = Cost(set.ranges[i], last, nullptr, false);
            if (cost < bound) {
                bound = cost;
                found = i;
            }
        }
        if (found >= 0) Merge(set.ranges[found], last);
        --set.count;
    }
    set.max = limit;
}

}    // namespace conformance
