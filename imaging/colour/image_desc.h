// The view of an image that the stages of a conversion hand on.
#pragma once

#include <cstdint>

#include "zchromakey/media_types.h"

namespace zck {

struct ImgDesc {
    eZFCC fcc;
    int32_t nWidth;        ///< pixels
    int32_t nHeight;       ///< lines, signed as in `Z_VID_PROPS`
    int32_t nRowPixels;    ///< length of a row in pixels, `RowPixels(fcc, nRowBytes)`; 0 means `nWidth`
};
static_assert(sizeof(ImgDesc) == 16);

}    // namespace zck
