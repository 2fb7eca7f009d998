// Ranges of colour: what detection and picks gather, and what the entries of a key are made of.
//
// All arithmetic is in 64-bit reals, in the order written: ranges are compared by their last bits.
#pragma once

#include <cstdint>

namespace zck {

inline constexpr int32_t kRangesMax = 16;

/// A box of colours. Channel i is taken from byte 2, 1, 0, 3 of a pixel for i = 0, 1, 2, 3, over 255.
struct KeyRange {
    double centre[4];
    double delta[4];    ///< half-widths
    double weight;      ///< hits, as a merge counts them
};

/// `ranges` are fixed slots: whoever empties or limits a set changes `count` only, and slots beyond it keep what they held.
struct KeyRangeSet {
    KeyRange ranges[kRangesMax] = {};
    int32_t maxRanges = kRangesMax;    ///< 1 to `kRangesMax`
    int32_t count = 0;
    uint8_t changed = 0;    ///< set by every addition and merge; nothing reads it
};

/// The fate of a range that was offered to a set.
enum class RangeResult : int32_t {
    Refused = -1,    ///< too far from all ranges, or no slot left
    Covered = 0,     ///< a range holds it, or was so small that it has taken its place
    Merged = 1,
    Added = 2,
};

/// `b` lies wholly inside `a`.
bool RangeContains(const KeyRange &a, const KeyRange &b);

/// A measure of four half-widths. With `hls` the first channel counts double and the fourth not at all.
double RangeSize(const double (&delta)[4], bool hls);

/// How much `a` grows by taking `b` in; 0 when `b` adds nothing. A `b` that is larger takes the place of `a`, weight included,
/// at no cost. `ownSize`, which may be null, gets the size of `b` where `b` is smaller than the joint range, and nothing else.
double RangeGrowthCost(KeyRange &a, const KeyRange &b, double *ownSize, bool hls);

/// `a` gets half the joint span as half-width and keeps its centre, so that it can miss an edge of the union. Its weight is 0.
void RangeMerge(KeyRange &a, const KeyRange &b);

/// Decides about `r`, counts hits and merges; `Added` says that it wants a slot of its own, which it does not get here. `hls`
/// acts on the first range only. A `diff` above 0 refuses what costs as much or more.
RangeResult RangeSetClassify(KeyRangeSet &set, const KeyRange &r, double diff, bool hls);

/// `RangeSetClassify`, and the slot.
RangeResult RangeSetAdd(KeyRangeSet &set, const KeyRange &r, double diff, bool hls);

/// Sets the limit, cut to 1..`kRangesMax`, and merges ranges until they keep to it.
void RangeSetLimit(KeyRangeSet &set, int32_t n);

}    // namespace zck
