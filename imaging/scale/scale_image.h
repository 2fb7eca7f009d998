// An image as the plane scaler sees it.
#pragma once

#include <cstdint>

#include "imaging/colour/image_layout.h"
#include "zchromakey/com.h"

namespace zck {

/// A picture, or one of its fields, in its own format, rows from the top of the picture. Planes as in `ImageLayout`. The memory
/// belongs to somebody else; that of a source is only read.
struct ScaleImage {
    PixelClass kind = PixelClass::None;
    uint8_t *plane[3] = {};
    int64_t step[3] = {};    ///< bytes to the next row; negative in bottom-up images
    int32_t width = 0;
    int32_t rows = 0;
    tagRECT rect = {};    ///< the part to work on, in luma pixels

    bool Rgb() const { return kind == PixelClass::Rgb24 || kind == PixelClass::Rgb32; }
};

/// Width and height of a plane or a part of it: chroma is half as wide, of 4:2:0 half as high, cut down.
struct PlaneArea {
    int32_t left;
    int32_t top;
    int32_t width;
    int32_t rows;
};
PlaneArea PlaneSize(const ScaleImage &image, int32_t plane);
PlaneArea PlaneRect(const ScaleImage &image, int32_t plane);

/// The image of a layout at `memory`; the rectangle is all of it.
ScaleImage ScaleImageMake(const uint8_t *memory, const ImageLayout &layout);

/// One field: the even (0) or odd (1) rows of the picture and of its planes. Rows and the rectangle's top and height halve, cut
/// down.
ScaleImage SplitField(const ScaleImage &image, int32_t parity);

}    // namespace zck
