// Conversions that know 4:2:0 and YVYU, pixel by pixel and without a thought of speed.
#pragma once

#include <cstdint>
#include <vector>

#include "imaging/colour/color_convert.h"
#include "zchromakey/media_types.h"

namespace zck::test {

// An image in a memory that ends with its last sample.
struct PlanarPicture {
    eZFCC fcc = eZFCC_Default;
    int32_t width = 0;
    int32_t height = 0;    // signed
    int64_t rowBytes = 0;
    std::vector<uint8_t> memory;

    int32_t Rows() const { return height < 0 ? -height : height; }
    bool Is420() const { return fcc == eZFCC_I420 || fcc == eZFCC_YV12 || fcc == eZFCC_NV12; }
    bool IsRgb() const { return fcc == eZFCC_RGB24 || fcc == eZFCC_RGB32 || fcc == eZFCC_ARGB32; }
    ImageView View() const;
    Z_VID_PROPS Props() const;

    // The sample of a component (0 to 2: Y, Cb, Cr or blue, green, red; 3: alpha) for the pixel, rows from the top of the
    // picture.
    uint8_t &At(int component, int32_t x, int32_t y);
    // The sample of a chroma row, which is not that of a pixel row.
    uint8_t &Chroma(int component, int32_t x, int32_t chromaRow);
};

// Full of noise, rows `padding` bytes longer than needed.
PlanarPicture MakePlanarPicture(eZFCC fcc, int32_t width, int32_t height, int32_t padding, uint32_t seed);

// Converts the part of `columns` by `rows` pixels (columns even unless both are RGB); everything else of the target stays.
void ModelColorConvert(PlanarPicture &src, int32_t srcLeft, int32_t srcTop, PlanarPicture &dst, int32_t dstLeft, int32_t dstTop,
                       int32_t columns, int32_t rows);

}    // namespace zck::test
