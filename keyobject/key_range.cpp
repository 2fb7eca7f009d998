#include "keyobject/key_range.h"

#include <algorithm>

namespace zck {
namespace {

double Low(const KeyRange &r, int32_t i) { return r.centre[i] - r.delta[i]; }
double High(const KeyRange &r, int32_t i) { return r.centre[i] + r.delta[i]; }

/// Half the joint span.
double JointDelta(const KeyRange &a, const KeyRange &b, int32_t i) {
    return (std::max(High(a, i), High(b, i)) - std::min(Low(a, i), Low(b, i))) / 2;
}

// Higher than any cost that colours can have.
constexpr double kCostBound = 1000000.0;

void MergeLast(KeyRangeSet &set) {
    const KeyRange &last = set.ranges[set.count - 1];
    double best = kCostBound;
    KeyRange *nearest = nullptr;
    for (int32_t i = 0; i < set.count - 1 && best != 0.0; ++i) {
        const double cost = RangeGrowthCost(set.ranges[i], last, nullptr, false);
        if (cost >= best) continue;
        best = cost;
        nearest = &set.ranges[i];
    }
    if (nearest != nullptr) RangeMerge(*nearest, last);
    --set.count;
}

void MergeAll(KeyRangeSet &set) {
    for (int32_t i = set.count - 2; i >= 0; --i) RangeMerge(set.ranges[i], set.ranges[i + 1]);
    set.count = 1;
}

}    // namespace

bool RangeContains(const KeyRange &a, const KeyRange &b) {
    for (int32_t i = 0; i < 4; ++i) {
        if (!(Low(a, i) <= Low(b, i) && High(b, i) <= High(a, i))) return false;
    }
    return true;
}

double RangeSize(const double (&d)[4], bool hls) {
    if (hls) return d[0] * d[0] + d[1] * d[1] / 2 + d[2] * d[2] / 2;
    return d[0] * d[0] + d[1] * d[1] + d[2] * d[2] + d[3] * d[3];
}

double RangeGrowthCost(KeyRange &a, const KeyRange &b, double *ownSize, bool hls) {
    if (RangeContains(a, b)) return 0.0;
    double joint[4];
    for (int32_t i = 0; i < 4; ++i) joint[i] = JointDelta(a, b, i);
    const double sizeA = RangeSize(a.delta, hls);
    const double sizeB = RangeSize(b.delta, hls);
    const double sizeJoint = RangeSize(joint, hls);
    if (sizeA >= sizeJoint) return 0.0;
    if (sizeB < sizeJoint) {
        if (ownSize != nullptr) *ownSize = sizeB;
        return sizeJoint - sizeA;
    }
    a = b;
    return 0.0;
}

void RangeMerge(KeyRange &a, const KeyRange &b) {
    const double weightA = a.weight + 1;
    const double weightB = b.weight + 1;
    for (int32_t i = 0; i < 4; ++i) {
        const double delta = JointDelta(a, b, i);
        // Both terms have the centre of `a`: results rely on it, last bit included.
        a.centre[i] = (a.centre[i] * weightA + a.centre[i] * weightB) / (weightA + weightB);
        a.delta[i] = delta;
    }
    a.weight = 0;
}

RangeResult RangeSetClassify(KeyRangeSet &set, const KeyRange &r, double diff, bool hls) {
    if (set.count == 0) return RangeResult::Added;
    double own = 0.0;
    double best = RangeGrowthCost(set.ranges[0], r, &own, hls);
    int32_t bestIndex = 0;
    if (best == 0.0) {
        set.ranges[0].weight += 1.0;
        return RangeResult::Covered;
    }
    for (int32_t i = 1; i < set.count; ++i) {
        const double cost = RangeGrowthCost(set.ranges[i], r, nullptr, false);
        if (cost == 0.0) return RangeResult::Covered;
        if (best > cost) {
            best = cost;
            bestIndex = i;
        }
    }
    if (diff > 0.0 && best >= diff) return RangeResult::Refused;
    if (set.count < set.maxRanges && own < best * 2.0) return RangeResult::Added;
    RangeMerge(set.ranges[bestIndex], r);
    set.changed = 1;
    return RangeResult::Merged;
}

RangeResult RangeSetAdd(KeyRangeSet &set, const KeyRange &r, double diff, bool hls) {
    const RangeResult result = RangeSetClassify(set, r, diff, hls);
    if (result != RangeResult::Added) return result;
    if (set.count >= set.maxRanges) return RangeResult::Refused;
    set.ranges[set.count++] = r;
    set.changed = 1;
    return RangeResult::Added;
}

void RangeSetLimit(KeyRangeSet &set, int32_t n) {
    n = std::clamp(n, 1, kRangesMax);
    if (n < set.count) {
        if (n == 1) MergeAll(set);
        while (set.count > n) MergeLast(set);
        set.changed = 1;
    }
    set.maxRanges = n;
}

}    // namespace zck
