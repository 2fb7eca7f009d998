// Which source samples make a sample of a resized line, and with what weights.
#pragma once

#include <cstdint>

namespace zck {

/// The most taps that one direction has: super-sampling up to a reduction of `kMostFixedReduction` to one.
constexpr int32_t kMostFixedReduction = 15;
constexpr int32_t kResizeTapsMax = 20;

/// Samples `first` to `first + count - 1`, all inside the line; the weights, in 1/16384, sum to 16384 exactly, so that a line
/// of one value keeps it.
struct ResizeTaps {
    int32_t first;
    int32_t count;
    int16_t weight[kResizeTapsMax];
};

/// Whether there is such a code.
bool ResizeCodeKnown(int32_t code);

/// The taps of sample `x` of a line of `target` samples made of `source` ones, both above 0. Sample centres lie on each other:
/// x stands at (x + 1/2) * source / target - 1/2; the line's end samples stand for what lies outside. Super-sampling takes the
/// exact share of each sample; only for a source that is at least as long and at most `kMostFixedReduction` times as long.
void ResizeTapsMake(int32_t code, int64_t source, int64_t target, int64_t x, ResizeTaps *taps);

/// The sample that nearest neighbour takes: floor((2 x + 1) * source / (2 * target)).
int64_t ResizeNearestSample(int64_t source, int64_t target, int64_t x);

}    // namespace zck
