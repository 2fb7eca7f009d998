// The pixel kernels of the keying engine, one row at a time, behind one table of function pointers.
//
// The reference functions are the meaning; the vector versions give the same bytes. Where a row ends inside a block, what the
// kernel leaves alone or writes besides is part of the meaning, and each entry tells it.
//
// This header is read by files that are compiled for newer processors than the rest: plain records and declarations only.
#pragma once

#include <cstddef>
#include <cstdint>

namespace zck {

/// One key, ready for the distance kernel: alpha rises with the square root of the surplus of a weighted squared distance
/// over the key's inside surface.
struct DistanceKey {
    int32_t k[3];    ///< centre, 1 to 254, for byte 0, 1, 2 of a pixel
    int32_t w[3];    ///< weights, 0 to 16382
    int32_t off;     ///< half of the scaled inside-surface constant
    float div;       ///< divisor from distance to alpha, above 0
};

/// Makes a key of its record: `value` is the centre and `delta` the half-width, channel bytes from the low byte, `smooth` is
/// added to each half-width to find where alpha reaches its top. Depends on nothing else.
DistanceKey DistanceKeySetup(int32_t value, int32_t delta, int32_t smooth);

/// Blocks of 8 pixels that the distance kernel measures in a row: the width goes up to a multiple of 4, but not over `stride`
/// (bytes from one alpha row to the next), and a rest of 4 is not measured. So 7 pixels give one block if the stride has
/// room for 8, and 4 pixels give none.
int32_t DistanceBlocks(int32_t width, int32_t stride);

/// The kernels. Widths of 0 and below do nothing. No pointer needs an alignment. Rows must not overlap unless an entry says
/// so; "the same row" means exactly the same pointer. 32-bit pixels are blue, green, red, alpha in memory.
struct KeyingKernels {
    /// Alpha of `blocks` blocks of 8 pixels: 4 bytes a pixel from `src`, the fourth not looked at, one byte a pixel to `dst`.
    /// Beyond the last block nothing is written; `DistanceBlocks` gives the count.
    void (*distance)(uint8_t *dst, const uint8_t *src, int32_t blocks, const DistanceKey *key);

    /// dst = min(dst, min(255, src + c)) on the first 16 * (width / 16) bytes; the rest stays, and a width under 16 does
    /// nothing. `c` counts modulo 256. `src` may be the same row as `dst`.
    void (*join)(uint8_t *dst, const uint8_t *src, int32_t width, int32_t c);

    /// Each byte becomes 255 - itself, on the first 16 * (width / 16) bytes. The tail of width mod 16 bytes is done one byte
    /// late: its first byte stays, and the byte at row[width] is inverted. With `writeSlipByte` false that last byte, which
    /// is outside the row, is left alone (for rows whose next byte is not the caller's to write).
    void (*invert)(uint8_t *row, int32_t width, bool writeSlipByte);

    /// dst pixel = colour of the src pixel with `alpha` as fourth byte: the first 16 * (width / 16) pixels, then the last
    /// width mod 8 pixels. Where width mod 16 is 8 or more, the 8 pixels between keep what dst held. `src` may be `dst`.
    void (*merge)(uint8_t *dst, const uint8_t *src, const uint8_t *alpha, int32_t width);

    /// Each of the three colour bytes times the pixel's alpha over 255, rounded; all `width` pixels.
    void (*premultiply)(uint8_t *row, int32_t width);

    /// The src row with `alpha` merged into it and multiplied, in one pass: the 8 pixels that a merge leaves out are src's,
    /// multiplied by the alpha that they have there. All `width` pixels of dst are written. `src` may be `dst`.
    void (*merge_premultiply)(uint8_t *dst, const uint8_t *src, const uint8_t *alpha, int32_t width);

    /// Blue, green, red to hue (360 degrees = 255), lightness, saturation. Byte 3 of dst is not written.
    /// `src` may be `dst`.
    void (*to_hls)(uint8_t *dst, const uint8_t *src, int32_t width);

    /// Bytes 0, 1, 2 taken for red, green, blue (they hold blue, green, red: the key space has both exchanged) to Y, U, V.
    /// Byte 3 of dst is not written. `src` may be `dst`.
    void (*to_yuv)(uint8_t *dst, const uint8_t *src, int32_t width);

    /// Y, U, V of `to_yuv` back to the bytes that it read, as near as the rule comes. Byte 3 of dst is not written. `src` may
    /// be `dst`.
    void (*from_yuv)(uint8_t *dst, const uint8_t *src, int32_t width);

    /// Whether `width` pixels are flat: none is further than `limit` from its left neighbour, from the pixel of `above` over it
    /// or from the left neighbour of that one, and none further than 4 * `limit` from the pixel `first`. Distances are sums of
    /// three squared differences; fourth bytes are not looked at. Pixel -1 of both rows is read. `above` may be `row`.
    bool (*flat)(const uint8_t *row, const uint8_t *above, int32_t width, const uint8_t *first, int32_t limit);

    /// row = min(255, row + c), the whole width; `c` counts modulo 256.
    void (*add_const)(uint8_t *row, int32_t width, int32_t c);

    /// dst = min(255, dst + src), the whole width. `src` may be `dst`.
    void (*add_plane)(uint8_t *dst, const uint8_t *src, int32_t width);

    /// Above `high` becomes 255, else below `low` becomes 0; the whole width, compared as integers. Both look at the byte as
    /// it came: with `low` above `high` a byte between ends at 255. `low` <= 0 and `high` >= 255 are neutral, each alone.
    void (*threshold)(uint8_t *row, int32_t width, int32_t low, int32_t high);

    /// 3 by 3 filters. The four pointers stand at the first column of the interior, `width` is that of the interior; the
    /// source rows are read from column -1 to column `width`, dst is written from 0 to `width` - 1. dst must not overlap a
    /// source row: in place, the caller keeps the rows that are still needed (see filter_plane.h).
    using Filter3x3 = void (*)(uint8_t *dst, const uint8_t *above, const uint8_t *middle, const uint8_t *below, int32_t width);

    Filter3x3 erode;     ///< the minimum
    Filter3x3 dilate;    ///< the maximum
    Filter3x3 box;       ///< the sum s of the nine: ((s + 5) * 455) >> 12
    Filter3x3 gauss;     ///< weights 1 2 1, 2 4 2, 1 2 1, over 16, ties to even
};

/// The table for this processor and for the limit that tests set; a call keeps the one that it got for all of its rows.
const KeyingKernels &KeyingKernelsGet();

/// Fill a table for one level; `InitAvx2` only where the processor has it.
void KeyingKernelsInitRef(KeyingKernels *table);
void KeyingKernelsInitAvx2(KeyingKernels *table);

}    // namespace zck
