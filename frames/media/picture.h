// Where the pixels of a picture lie: one value for every record, row order, field, part and plane.
//
// A record is read once, at the door of an operation; from there on the picture itself is handed on. It counts its rows from
// the top, whatever order they have in memory: the stride of a bottom-up picture is negative. A narrower picture (a field, a
// part, one turned over) is a picture as well, of the same memory. Nothing is owned, and copies are cheap.
#pragma once

#include <algorithm>
#include <cstdint>

#include "frames/media/format_table.h"

namespace zck {

/// One plane. Offsets are bytes from the start of the picture's memory.
struct PlaneGeometry {
    int64_t offset = 0;    ///< of the first sample of the top row
    int64_t stride = 0;    ///< bytes to the row below
    int32_t width = 0;     ///< samples: pixels, luma or chroma; in NV12's chroma plane pairs
    int32_t rows = 0;

    int64_t RowOffset(int64_t y) const { return offset + y * stride; }
};

/// A picture without its memory, as a conversion is prepared for it.
///
/// Packed formats have plane 0 only. Planar ones have Y, Cb, Cr in this order, whatever their order in memory; NV12 has its
/// pairs Cb Cr in plane 1, and plane 2 is the same. Chroma planes are half as wide and half as high, cut down: the last column
/// and row of an odd picture have no chroma of their own, as a frame's buffer has no room for it.
struct PictureGeometry {
    const FormatRow *format = nullptr;
    int32_t width = 0;    ///< pixels
    int32_t rows = 0;
    PlaneGeometry plane[3];

    int32_t Planes() const { return !format->bPlanar ? 1 : format->pixels == PixelClass::Nv12 ? 2 : 3; }
    int64_t Stride() const { return plane[0].stride; }
    int64_t RowOffset(int64_t y) const { return plane[0].RowOffset(y); }

    /// The bottom row comes first in memory.
    bool BottomUp() const { return plane[0].stride < 0; }
    /// The height as a record states it: positive for bottom-up RGB and for all other formats.
    int32_t SignedHeight() const { return format->bRgb && !BottomUp() ? -rows : rows; }

    /// Bytes from the start of the memory to the end of the last row in it, if `rowBytes` bytes of each row of plane 0 are
    /// touched, and all chroma samples.
    int64_t Extent(int64_t rowBytes) const;

    /// The rows `first`, `first` + n, `first` + 2 n and so on: rows / n of them (and of each plane its own rows / n), so that
    /// n combs are equally high. `first` is below n.
    PictureGeometry Comb(int32_t first, int32_t n) const;
    /// The rows of one parity.
    PictureGeometry Field(int32_t parity) const { return Comb(parity, 2); }
    /// A rectangle inside the picture. `left` is a multiple of the format's group, and `left` and `top` are even where there
    /// are chroma planes.
    PictureGeometry Part(int32_t left, int32_t top, int32_t partWidth, int32_t partRows) const;
    /// Upside down.
    PictureGeometry Turned() const;
    /// The first row is the first one in memory, for work whose row numbers count stored rows.
    PictureGeometry InMemoryOrder() const { return BottomUp() ? Turned() : *this; }
};

/// Reads the geometry of a record: |height| rows, `rowBytes` apart in the first plane, from the start of the memory.
/// A positive height of the RGB family is bottom-up; any other picture starts with its top row.
///
/// False, and an empty geometry, for a format that has no row in the table, no size, or planes of no known sampling; for a
/// picture without width or height; and for rows that are shorter than their pixels (`FormatRow::PixelRowBytes`).
bool PictureGeometryMake(eZFCC fcc, int32_t width, int32_t height, int64_t rowBytes, PictureGeometry *geometry);

/// A picture in memory. `bytes` of the memory are at hand: nothing outside may be touched.
template <class Byte>
struct BasicPicture : PictureGeometry {
    Byte *memory = nullptr;
    int64_t bytes = 0;

    BasicPicture() = default;
    BasicPicture(const PictureGeometry &geometry, Byte *start, int64_t size)
        : PictureGeometry(geometry), memory(start), bytes(size) {}

    /// A picture to write is one to read.
    operator BasicPicture<const Byte>() const { return {*this, memory, bytes}; }

    Byte *Row(int64_t y, int32_t i = 0) const { return memory + plane[i].RowOffset(y); }
    /// Bytes at hand from the start of a row on; negative if the row starts behind the end.
    int64_t BytesFrom(int64_t y, int32_t i = 0) const { return bytes - plane[i].RowOffset(y); }
    const uint8_t *End() const { return memory + bytes; }

    /// The memory holds all rows, `rowBytes` bytes of each.
    bool Holds(int64_t rowBytes) const { return Extent(rowBytes) <= bytes; }

    BasicPicture Comb(int32_t first, int32_t n) const { return With(PictureGeometry::Comb(first, n)); }
    BasicPicture Field(int32_t parity) const { return Comb(parity, 2); }
    BasicPicture Part(int32_t left, int32_t top, int32_t partWidth, int32_t partRows) const {
        return With(PictureGeometry::Part(left, top, partWidth, partRows));
    }
    BasicPicture Turned() const { return With(PictureGeometry::Turned()); }
    BasicPicture InMemoryOrder() const { return With(PictureGeometry::InMemoryOrder()); }

private:
    BasicPicture With(const PictureGeometry &geometry) const { return {geometry, memory, bytes}; }
};

using Picture = BasicPicture<uint8_t>;
using ConstPicture = BasicPicture<const uint8_t>;

/// The picture of a complete record, in `bytes` bytes from `memory` on. False as `PictureGeometryMake`, and for a memory that
/// does not hold all pixels.
template <class Byte>
bool PictureMake(const Z_VID_PROPS &props, Byte *memory, int64_t bytes, BasicPicture<Byte> *picture) {
    *picture = {};
    PictureGeometry g;
    if (!PictureGeometryMake(props.fccType, props.nWidth, props.nHeight, props.nRowBytes, &g)) return false;
    if (g.Extent(g.format->PixelRowBytes(g.width)) > bytes) return false;
    *picture = {g, memory, bytes};
    return true;
}

}    // namespace zck
