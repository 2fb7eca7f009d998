// The row kernels of the anti-spill, behind one table of function pointers. The reference functions are the meaning; the
// vector versions give the same bytes.
//
// Pixels are 4:2:2 in macro pixels of four bytes: two lumas and two chromas, in the order that the key records tell by
// position. This header is read by files that are compiled for newer processors than the rest: plain records and
// declarations only.
#pragma once

#include <cstdint>

namespace zck {

/// Parameters of the block path for each of the four bytes of a macro pixel, by position. Positions 0 and 2 are alike but for
/// `key`, and so are 1 and 3.
struct SpillBlockKey {
    int16_t move[4];    ///< strength with which the byte moves away from the key colour
    int16_t gain[4];    ///< added to a neutral gain of 127/128, both strengths times the mask over 128
    int16_t key[4];     ///< the key colour, less `zero`: -128 to 255
    int16_t zero[4];    ///< 0 for luma, 128 for chroma
};

/// Parameters of the per-pixel path.
struct SpillPixelKey {
    int32_t chromaAt;    ///< position of chroma 1, 0 or 1; chroma 2 is two bytes on, the lumas are at the other two
    int32_t mode;        ///< 1: green dominates the key colour; 0: blue
    int32_t key[2];      ///< chroma of the key colour, less 128
    int32_t power;
    int32_t chroma;
    int32_t luma;
};

/// The kernels. Counts of 0 and below do nothing. No pointer needs an alignment, rows must not overlap.
struct SpillKernels {
    /// Half-width mask of a row of `width` bytes, width / 2 bytes: linear, centre to centre, rounded to nearest, ties up. An
    /// even width gives the mean of each pair.
    void (*scale)(uint8_t *mask, const uint8_t *row, int32_t width);

    /// Block path over `blocks` blocks of 8 macro pixels, a mask byte each. With m the mask byte, s16() saturating to signed
    /// 16 bits and all shifts arithmetic: A(p) = s16(m * p) >> 7, G = max(127 + A(gain), 0),
    /// byte = clamp((s16((byte - zero - (s16(A(move) * key) >> 7)) * G) >> 7) + zero). The neutral gain loses a hair of
    /// contrast, also where the mask is 0; results rely on it.
    void (*block)(uint8_t *pixels, const uint8_t *mask, int32_t blocks, const SpillBlockKey *key);

    /// Per-pixel path over `count` macro pixels. Works with 255 less the mask byte, but for its first step. 32-bit products
    /// and sums wrap.
    void (*pixel)(uint8_t *pixels, const uint8_t *mask, int32_t count, const SpillPixelKey *key);
};

/// The table for this processor and for the limit that tests set; a call keeps the one that it got for all of its rows.
const SpillKernels &SpillKernelsGet();

/// Fill a table for one level; `InitAvx2` only where the processor has it.
void SpillKernelsInitRef(SpillKernels *table);
void SpillKernelsInitAvx2(SpillKernels *table);

}    // namespace zck
