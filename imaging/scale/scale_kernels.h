// The rows of the scalers. The reference functions are the meaning; the vector versions give the same bytes.
//
// This header is read by files that are compiled for newer processors than the rest: plain records and declarations only.
#pragma once

#include <cstdint>

namespace zck {

/// Resizing works with weights in 1/16384 and keeps 6 bits of fraction between the two directions.
constexpr int32_t kWeightBits = 14;
constexpr int32_t kMidBits = 6;
/// Elements that may be read behind those of a row's last column.
constexpr int32_t kColumnSlack = 8;

/// Which elements of a row make each output, and with what weights.
struct ColumnTable {
    const int32_t *first;    ///< of each output its first element, or pixel of four channels
    /// By pairs of taps, all outputs of a pair one behind the other: taps 2 p and 2 p + 1 of output x have the two weights from
    /// 2 * (p * outputs + x) on.
    const int16_t *weights;
    /// Where outputs lie close together, so that a pair of each four of them (0 to 3, 4 to 7, ...) starts within 7 elements:
    /// the places of an output's four bytes among those that start with the first one of its four. Else null.
    const uint32_t *places;
    int32_t taps;       ///< of each output, even
    int32_t outputs;    ///< that the table has
};

/// Counts of 0 and below do nothing. No pointer needs an alignment. Nothing is read or written outside the elements that an
/// entry describes; targets do not overlap their sources.
struct ScaleKernels {
    /// Blocks of 16 bytes with 8-bit weights that sum to 255: (a * wa + b * wb) >> 8, sums saturated to 16 bits. White becomes
    /// 254.
    void (*blend2)(uint8_t *dst, const uint8_t *a, const uint8_t *b, const uint8_t *weights, int64_t blocks);
    /// The same of three rows.
    void (*blend3)(uint8_t *dst, const uint8_t *const *rows, const uint8_t *weights, int64_t blocks);
    /// Four rows and more: 255 is added before the shift, so that white stays 255.
    void (*blend_many)(uint8_t *dst, const uint8_t *const *rows, const uint8_t *weights, int32_t taps, int64_t blocks);

    /// Sum of `taps` rows by their weights, in 1/64: (sum + 128) >> 8, saturated to 16 bits.
    void (*mix_rows)(int16_t *dst, const uint8_t *const *rows, const int16_t *weights, int32_t taps, int32_t count);
    /// 1/64 back to bytes: (v + 32) >> 6, clamped.
    void (*narrow)(uint8_t *dst, const int16_t *src, int32_t count);
    /// The first `count` outputs of a table, the sums of their weighted elements: (sum + 2^19) >> 20, clamped. Up to
    /// `kColumnSlack` elements behind those of any output may be read; they do not count.
    void (*columns1)(uint8_t *dst, const int16_t *src, const ColumnTable &table, int32_t count);
    /// The same for pixels of four channels. Nothing behind its pixels is read.
    void (*columns4)(uint8_t *dst, const int16_t *src, const ColumnTable &table, int32_t count);
};

/// The table for the processor's level as it is now (see `KernelLevelLimit`).
const ScaleKernels &ScaleKernelsGet();

/// Fill a table for one level; `InitAvx2` only where the processor has it.
void ScaleKernelsInitRef(ScaleKernels *table);
void ScaleKernelsInitAvx2(ScaleKernels *table);

}    // namespace zck
