// Loops over samples, behind one table of function pointers.
//
// The reference functions are the meaning; the vector versions give the same bytes. Blocks are interleaved and may lie at any
// address; channels lie at multiples of their sample width. Nothing is read or written but the samples that an entry names.
//
// Reals become integers by rounding to the nearest, ties to even, saturated; not-a-number becomes 0.
//
// This header is read by files that are compiled for newer processors than the rest: plain records and declarations only.
#pragma once

#include <cstdint>

namespace zck {

/// How a sample stands in an interleaved block.
enum class StoredForm : uint8_t { Int16, Int24, Int32, Float32, None };
constexpr int kStoredForms = 4;

/// How a sample stands in a channel.
enum class WorkForm : uint8_t { Int16, Float32, None };
constexpr int kWorkForms = 2;

/// A block, as the place of its first sample and the bytes from one sample of a channel to the next, into `count` channels.
using SplitSamples = void (*)(void *const *channels, int32_t count, const uint8_t *block, int64_t stride, int64_t samples);
/// The way back. Bytes of the block between its samples and behind them stay.
using JoinSamples = void (*)(uint8_t *block, int64_t stride, const void *const *channels, int32_t count, int64_t samples);

struct SampleKernels {
    /// By stored and working form. Integers of n bits are full scale at 2 to the n - 1, floats at 1; to a narrower integer the
    /// low bits are cut off, to a wider one they are 0.
    SplitSamples split[kStoredForms][kWorkForms];
    JoinSamples join[kStoredForms][kWorkForms];

    /// samples[i] = samples[i] * factor / 2 to the shift (1 to 15), the exact product rounded with ties to even, saturated.
    void (*gain16)(int16_t *samples, int64_t count, int16_t factor, int32_t shift);
    void (*gain32)(float *samples, int64_t count, float factor);
    /// dst[i] += src[i]; integers saturate.
    void (*add16)(int16_t *dst, const int16_t *src, int64_t count);
    void (*add32)(float *dst, const float *src, int64_t count);
};

void SampleKernelsInitRef(SampleKernels *table);
void SampleKernelsInitAvx2(SampleKernels *table);

/// The table of this processor, or the reference while the kernel level is limited.
const SampleKernels &SampleKernelsGet();

}    // namespace zck
