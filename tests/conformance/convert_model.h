// A dull conversion between images of one size, byte by byte over whole memories, against which the library's is compared.
#pragma once

#include <cstdint>
#include <vector>

#include "zchromakey/media_types.h"

namespace conformance {

using Bytes = std::vector<uint8_t>;

struct Converted {
    HRESULT hr;
    // The route goes through a rounding of BT.601, where one unit more or less is allowed.
    bool rounded;
};

// Converts `src` into `dst`; both vectors are all the memory that there is. Reads past the source give 0 or end the work,
// writes past the target are dropped.
Converted ConvertModel(const Bytes &src, Bytes &dst, const Z_VID_PROPS &sp, const Z_VID_PROPS &tp);

// BT.601 in whole thousandths, rounded to nearest, ties up.
struct Yuv {
    uint8_t y, cb, cr;
};
uint8_t Luma601(int b, int g, int r);
// The chroma of one or two pixels given by their sums.
uint8_t Cb601(int b, int g, int r, int count);
uint8_t Cr601(int b, int g, int r, int count);
void Rgb601(int y, int cb, int cr, uint8_t *bgr);

// A packed colour 0xBBGGRR for fills, limited to the video range.
Yuv FillYuv(uint32_t colour);

// The fill of an image; `memory` starts at the first row.
HRESULT FillModel(const Z_VID_PROPS &props, Bytes &memory, uint32_t colour, double opacity);

}    // namespace conformance
