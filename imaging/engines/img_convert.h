// The stage of the high-quality engine: a part of one image into a part of another.
#pragma once

#include <cstdint>

#include "imaging/colour/color_convert.h"
#include "imaging/engines/field_converter.h"

namespace zck {

/// How `Img_Convert` works.
struct ImgConvertJob {
    bool bInterlaced;
    int32_t nQuality;    ///< a `ResizeCode`
    int32_t nSharpen;    ///< -50 to 50
    int32_t nFlags;      ///< `ScaleFlags`; progressive is added where `bInterlaced` is not set
};

/// Converts and scales the rectangle of the source (null: all of it) into that of the target. Equal sizes without sharpening
/// and flags are a `ColorConvert`, which leaves formats that it does not serve alone, with success. Otherwise rows go through
/// `Scale_Dyn` and columns through a resize with the quality's kernel; 4:2:2 pictures of equal width through `Scale_Dyn` alone.
/// RGB targets are made of a source that was converted to their format first; all other formats go by way of three planes.
///
/// S_OK; `S_FALSE` when nothing is visible; `E_INVALIDARG` without state or image and for rectangles of no size; 0x80040201
/// for formats that are not served, of which RGB8 goes into RGB8 alone; 0x80040248 when a memory does not hold its image; else
/// the failure of a stage.
HRESULT Img_Convert(ImgScaleState *state, const uint8_t *src, uint8_t *dst, const ImageView &source, const ImageView &target,
                    const tagRECT *rcSrc, const tagRECT *rcDst, const ImgConvertJob &job);

/// Width of the vertical filter by quality, for `Scale_Dyn`. 1.0 for a code that is not known.
double ScaleFactorOf(int32_t quality);

}    // namespace zck
