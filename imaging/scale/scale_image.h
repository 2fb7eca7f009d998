// An image as the plane scaler sees it.
#pragma once

#include <cstdint>

#include "imaging/colour/image_layout.h"
#include "zchromakey/com.h"

namespace zck {

/// A part of a plane, or all of it.
struct PlaneArea {
    int32_t left;
    int32_t top;
    int32_t width;
    int32_t rows;
};

/// A picture, or one of its fields, in its own format, rows from the top of the picture. Planes as in `ImageLayout`; chroma is
/// half as wide, of 4:2:0 half as high, cut down. The memory belongs to somebody else; that of a source is only read.
struct ScaleImage {
    PixelClass kind = PixelClass::None;
    uint8_t *plane[3] = {};
    int64_t step[3] = {};    ///< bytes to the next row; negative in bottom-up images
    int32_t width = 0;
    int32_t rows = 0;
    PlaneArea part[3] = {};    ///< of each plane, to work on

    bool Rgb() const { return kind == PixelClass::Rgb24 || kind == PixelClass::Rgb32; }
    /// All of a plane.
    PlaneArea Whole(int32_t i) const;
    /// Makes the parts those of a rectangle in luma pixels.
    void SetPart(const tagRECT &rect);
};

/// The image of a layout at `memory`; the parts are all of it.
ScaleImage ScaleImageMake(const uint8_t *memory, const ImageLayout &layout);

/// One field: the even (0) or odd (1) rows of the picture and of each plane. Rows and each part's top and height halve, cut
/// down.
ScaleImage SplitField(const ScaleImage &image, int32_t parity);

}    // namespace zck
