// The rows that this system keeps by hand: the BT.709 pair and 10-bit packing. The reference is the meaning; the vector
// versions give the same bytes. All counts are whole blocks; what happens in the rest of a row is told in route.h.
//
// This header is read by files that are compiled for newer processors than the rest: plain records and declarations only.
#pragma once

#include <cstdint>

namespace zck {

/// Counts of 0 and below do nothing. No pointer needs an alignment; rows do not overlap.
struct ColourKernels {
    /// Pairs of pixels Cb Y0 Cr Y1 (4 bytes) to two times blue, green, red, 255 (8 bytes): BT.709, sums in 1/256 shifted
    /// down, clamped. Both pixels take the pair's chroma.
    void (*decode709)(uint8_t *dst, const uint8_t *src, int64_t pairs);
    /// Blocks of 4 pixels blue, green, red, anything (16 bytes) to 2 pairs Cb Y0 Cr Y1 (8 bytes). White gives 237: the luma
    /// row is not scaled to 235, and files in the field are made with it.
    void (*encode709)(uint8_t *dst, const uint8_t *src, int64_t blocks);
    /// Blocks of 6 pixels, 12 bytes of 8-bit 4:2:2, to 16 bytes of v210. The low two bits are 0.
    void (*pack_uyvy)(uint8_t *dst, const uint8_t *src, int64_t blocks);
    void (*pack_yuy2)(uint8_t *dst, const uint8_t *src, int64_t blocks);
    /// And back to UYVY. The low two bits are cut off, not rounded.
    void (*unpack_uyvy)(uint8_t *dst, const uint8_t *src, int64_t blocks);
};

/// The table for the processor's level as it is now (see `KernelLevelLimit`).
const ColourKernels &ColourKernelsGet();

/// Fill a table for one level; `InitAvx2` only where the processor has it.
void ColourKernelsInitRef(ColourKernels *table);
void ColourKernelsInitAvx2(ColourKernels *table);

/// The encoder's way with what is left of a row behind the last block: one group of Cb Y0 Cr Y1 from two pixels. It rounds
/// otherwise than the blocks do, by 1 at most.
void Encode709Rest(uint8_t *dst4, const uint8_t *first, const uint8_t *second);

}    // namespace zck
