// The rows of mixing, behind one table of function pointers.
//
// The reference functions are the meaning; the vector versions give the same bytes. Nothing is read or written outside the
// row that an entry describes. "Over" is the row that is laid on, `dst` the row below it, which becomes the mix.
//
// Rounded: divided, to the nearest, with ties to even. `>>` is an arithmetic shift: it rounds down.
//
// This header is read by files that are compiled for newer processors than the rest: plain records and declarations only.
#pragma once

#include <cstdint>

namespace zck {

/// The kernels. Counts of 0 and below do nothing. No pointer needs an alignment; rows do not overlap.
struct MixKernels {
    /// dst * (128 - q) / 128 + over * q / 128, each product rounded, the sum saturated; `count` bytes, q from 0 to 128.
    void (*constant)(uint8_t *dst, const uint8_t *over, int32_t q, int64_t count);
    /// The same with a q of its own for each byte.
    void (*weighted)(uint8_t *dst, const uint8_t *over, const uint8_t *q, int64_t count);
    /// The q of each byte for an overlay that is mixed by its alpha: ((alpha + 1) * a) >> 8 of the bgra pixel for the three
    /// bytes of a bgr pixel. a from 0 to 128.
    void (*weights3)(uint8_t *q, const uint8_t *bgra, int32_t a, int32_t width);
    /// The same for bgra pixels.
    void (*weights4)(uint8_t *q, const uint8_t *bgra, int32_t a, int32_t width);
    /// (alpha * a) >> 8 for the two bytes of a 4:2:2 pixel: without the 1, so that no q reaches 128.
    void (*weights2)(uint8_t *q, const uint8_t *bgra, int32_t a, int32_t width);
    /// bgra, both multiplied by their alpha: `over` times value / 2^scale, rounded, in all four bytes, then that over `dst` as
    /// `PrimitiveKernels::alpha_over` does it. value / 2^scale is below 1, scale from 1 to 8.
    void (*over_scaled)(uint8_t *dst, const uint8_t *over, uint8_t value, int32_t scale, int32_t width);

    /// 4:2:2 over 4:2:2 where `over` is multiplied by `mask`; a from 0 to 256. Offsets: 128 of chroma, 16 of luma.
    ///
    /// Blocks of 8 pixels: with q = a / 2 the weight of a luma byte is k = (mask * q) >> 7, that of a chroma byte the mean of
    /// its two pixels, rounded down; c = (255 - weight + 1) >> 1; ((dst - offset) * c + (over - offset) * q + 127) >> 7,
    /// sums saturated to 16 bits, + offset, saturated.
    ///
    /// The pairs of pixels behind the last block: m is the mask with 256 in place of 255, of chroma the mean of two;
    /// (((dst - offset) * (256 - ((a * m) >> 8)) + a * (over - offset)) >> 8) + offset, saturated. An odd last pixel stays.
    void (*premultiplied_uyvy)(uint8_t *dst, const uint8_t *over, const uint8_t *mask, int32_t a, int32_t width);
    void (*premultiplied_yuy2)(uint8_t *dst, const uint8_t *over, const uint8_t *mask, int32_t a, int32_t width);

    /// 4:2:2 by a mask; a from 0 to 256: (over * k + dst * (255 - k) + 255) >> 8.
    ///
    /// Blocks of 8 pixels: k is (mask * a) >> 8 for an `a` below 255 and the mask itself from there on; that of a chroma byte
    /// is the mean of its two pixels, rounded down. Behind the last block k is (mask * a) >> 8 for every a, and a chroma byte
    /// goes by its own pixel, an odd last one too.
    void (*masked_uyvy)(uint8_t *dst, const uint8_t *over, const uint8_t *mask, int32_t a, int32_t width);
    void (*masked_yuy2)(uint8_t *dst, const uint8_t *over, const uint8_t *mask, int32_t a, int32_t width);
    /// Pixels of 4 bytes, `over` multiplied by `mask`; a from 0 to 256: (over * a + (255 - mask) * dst + 255) >> 8, saturated.
    /// At an `a` of 0 the mask still darkens.
    void (*masked4)(uint8_t *dst, const uint8_t *over, const uint8_t *mask, int32_t a, int32_t width);

    /// (over * a + dst * (256 - a)) >> 8; a from 0 to 256. An offset of the bytes changes nothing: it is a whole multiple of
    /// the divisor on both sides.
    void (*blend)(uint8_t *dst, const uint8_t *over, int32_t a, int64_t count);
};

/// The table for the processor's level as it is now (see `KernelLevelLimit`).
const MixKernels &MixKernelsGet();

/// Fill a table for one level; `InitAvx2` only where the processor has it.
void MixKernelsInitRef(MixKernels *table);
void MixKernelsInitAvx2(MixKernels *table);

/// What comes behind the last block of 8 pixels, for every level: `width` is 0 to 7.
void MixPremultipliedTail(uint8_t *dst, const uint8_t *over, const uint8_t *mask, int32_t a, int32_t width, bool lumaFirst);
void MixMaskedTail(uint8_t *dst, const uint8_t *over, const uint8_t *mask, int32_t a, int32_t width);

}    // namespace zck
