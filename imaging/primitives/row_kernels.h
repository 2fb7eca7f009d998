// The rows of the image primitives, behind one table of function pointers.
//
// The reference functions are the meaning; the vector versions give the same bytes. Nothing is read or written outside the
// row that an entry describes. Pixels: `bgr` is 3 bytes, `bgra` 4; `uyvy` is Cb Y0 Cr Y1, `yuy2` Y0 Cb Y1 Cr.
//
// Odd widths of 4:2:2: the last group holds one pixel. It is read as a whole group (its Cb and Cr lie in it) but for its
// second luma byte, and written but for its second luma byte, which stays.
//
// This header is read by files that are compiled for newer processors than the rest: plain records and declarations only.
#pragma once

#include <cstdint>

namespace zck {

/// The kernels. Counts of 0 and below do nothing. No pointer needs an alignment. `dst` may be `src` where an entry says so;
/// otherwise rows do not overlap.
struct PrimitiveKernels {
    /// bgra to bgr: the fourth byte goes.
    void (*drop_alpha)(uint8_t *dst, const uint8_t *src, int32_t width);
    /// bgr to bgra: the fourth byte is 255.
    void (*add_alpha)(uint8_t *dst, const uint8_t *src, int32_t width);
    /// Every fourth byte from `src` on to a row of bytes, and back.
    void (*get_channel)(uint8_t *dst, const uint8_t *src, int32_t width);
    void (*put_channel)(uint8_t *dst, const uint8_t *src, int32_t width);
    /// Every fourth byte from `dst` on becomes `value`.
    void (*set_channel)(uint8_t *dst, uint8_t value, int32_t width);
    /// `width` pixels of 3 and of 4 bytes, all alike.
    void (*set3)(uint8_t *dst, const uint8_t *value, int32_t width);
    void (*set4)(uint8_t *dst, const uint8_t *value, int32_t width);

    /// Arithmetic on `count` bytes; the exact result is divided by 2 to the `scale`, rounded to the nearest with ties to
    /// even, and saturated to 0..255. A negative scale multiplies. `dst` may be a source.
    void (*mul_const)(uint8_t *dst, const uint8_t *src, uint8_t value, int64_t count, int32_t scale);
    void (*mul)(uint8_t *dst, const uint8_t *a, const uint8_t *b, int64_t count, int32_t scale);
    void (*add)(uint8_t *dst, const uint8_t *a, const uint8_t *b, int64_t count, int32_t scale);
    /// Adds 12 bytes over and over: pixels of 1, 2, 3 or 4 bytes fill them evenly.
    void (*add_const)(uint8_t *dst, const uint8_t *src, const uint8_t *value12, int64_t count, int32_t scale);
    /// bgra, both multiplied by their alpha: over + under * (255 - alpha of over) / 255, rounded to the nearest, saturated;
    /// alpha included. `dst` may be a source.
    void (*alpha_over)(uint8_t *dst, const uint8_t *over, const uint8_t *under, int32_t width);

    /// Pixels in reverse order; pixels of 1, 2, 3, 4 bytes.
    void (*mirror1)(uint8_t *dst, const uint8_t *src, int32_t width);
    void (*mirror2)(uint8_t *dst, const uint8_t *src, int32_t width);
    void (*mirror3)(uint8_t *dst, const uint8_t *src, int32_t width);
    void (*mirror4)(uint8_t *dst, const uint8_t *src, int32_t width);
    /// Byte j of each 4-byte pixel becomes its byte order[j] (0 to 3). `dst` may be `src`.
    void (*swap4)(uint8_t *dst, const uint8_t *src, const uint8_t *order, int32_t width);

    /// BT.601 video range, from the formulas in thousandths, rounded to the nearest with ties up, clamped. Down: chroma of
    /// the exact mean of the pair; the last pixel of an odd row stands for its pair. Up: both pixels take the group's chroma.
    void (*bgra_to_uyvy)(uint8_t *dst, const uint8_t *src, int32_t width);
    void (*bgra_to_yuy2)(uint8_t *dst, const uint8_t *src, int32_t width);
    void (*uyvy_to_bgra)(uint8_t *dst, const uint8_t *src, int32_t width, uint8_t alpha);
    void (*yuy2_to_bgra)(uint8_t *dst, const uint8_t *src, int32_t width, uint8_t alpha);

    /// The bytes of each pair of bytes change places. `dst` may be `src`.
    void (*uyvy_to_yuy2)(uint8_t *dst, const uint8_t *src, int32_t width);
    void (*yuy2_to_uyvy)(uint8_t *dst, const uint8_t *src, int32_t width);
    /// yuy2 to yvyu and back: Cb and Cr change places. `dst` may be `src`.
    void (*swap_chroma)(uint8_t *dst, const uint8_t *src, int32_t width);

    /// 4:2:2 to rows of one component each and back; chroma rows have (width + 1) / 2 samples.
    void (*split_uyvy)(uint8_t *y, uint8_t *cb, uint8_t *cr, const uint8_t *src, int32_t width);
    void (*split_yuy2)(uint8_t *y, uint8_t *cb, uint8_t *cr, const uint8_t *src, int32_t width);
    void (*join_uyvy)(uint8_t *dst, const uint8_t *y, const uint8_t *cb, const uint8_t *cr, int32_t width);
    void (*join_yuy2)(uint8_t *dst, const uint8_t *y, const uint8_t *cb, const uint8_t *cr, int32_t width);
    /// `count` pairs of bytes to two rows and back: the joined chroma of NV12.
    void (*split_pairs)(uint8_t *first, uint8_t *second, const uint8_t *src, int32_t count);
    void (*join_pairs)(uint8_t *dst, const uint8_t *first, const uint8_t *second, int32_t count);
    /// (a + b + 1) / 2 of each byte. `dst` may be a source.
    void (*mean)(uint8_t *dst, const uint8_t *a, const uint8_t *b, int32_t count);
    /// BT.601 as above from a row of luma and a row of each chroma with (width + 1) / 2 samples, or of pairs Cb Cr.
    void (*planes_to_bgra)(uint8_t *dst, const uint8_t *y, const uint8_t *cb, const uint8_t *cr, int32_t width, uint8_t alpha);
    void (*nv12_to_bgra)(uint8_t *dst, const uint8_t *y, const uint8_t *cbcr, int32_t width, uint8_t alpha);
    /// Two rows of bgra to two rows of luma and one of each chroma, of the exact mean of the four pixels. The last pixels of
    /// odd rows stand for their pairs. A row without partner is given as both, and `y1` is `y0` then.
    void (*bgra_to_420)(uint8_t *y0, uint8_t *y1, uint8_t *cb, uint8_t *cr, const uint8_t *src0, const uint8_t *src1,
                        int32_t width);
};

/// The table for the processor's level as it is now (see `KernelLevelLimit`).
const PrimitiveKernels &PrimitiveKernelsGet();

/// Fill a table for one level; `InitAvx2` only where the processor has it.
void PrimitiveKernelsInitRef(PrimitiveKernels *table);
void PrimitiveKernelsInitAvx2(PrimitiveKernels *table);

/// The entries for planes, a part of `PrimitiveKernelsInitRef`.
void PrimitivePlanesInitRef(PrimitiveKernels *table);

/// The parts of `PrimitiveKernelsInitAvx2`, one for each file.
void PrimitivePixelsInitAvx2(PrimitiveKernels *table);
void PrimitiveArithmeticInitAvx2(PrimitiveKernels *table);
void PrimitiveConvertInitAvx2(PrimitiveKernels *table);
void PrimitivePlanesInitAvx2(PrimitiveKernels *table);

/// A product or sum of two bytes over 2 to the `scale`, as the arithmetic entries round it.
uint8_t PrimitiveScaled(int32_t v, int32_t scale);

}    // namespace zck
