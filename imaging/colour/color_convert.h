// Conversion of a part of one image into a part of another, at one size: YVYU, I420 and YV12 beside the formats of convert.h.
// BT.601 throughout: HDYC is read and written as UYVY. No field order is looked at.
#pragma once

#include <cstdint>

#include "imaging/colour/image_desc.h"
#include "platform/sync.h"
#include "zchromakey/com.h"

namespace zck {

/// State that conversions of one caller share. Conversions with one state run one after the other.
struct ImgConvertState {
    CriticalSection cs;
};

/// Converts the rectangle of the source (null: all of it) into that of the target, both cut to the smaller of the two (see
/// `NormalizeRects`). Rectangles count from the top of the picture, also in bottom-up images, and pictures stay upright.
///
/// Between 4:2:0 and other formats the chroma rows of the rectangle count from its top. YVYU to RGB32 exchanges Cb and Cr (see
/// picture_rows.h). Copies from RGB32 to ARGB32 and from RGB24 make the alpha 255, other copies keep it.
///
/// `S_OK`, also for formats that are not served (v210, NV12, RGB8 and others), and then nothing is written; `S_FALSE` when the
/// rectangles leave nothing to do, as for a record without size; `E_INVALIDARG` without state, image or record, and for a
/// record with rows that are shorter than their pixels.
HRESULT ColorConvert(ImgConvertState *state, const uint8_t *src, uint8_t *dst, const ImgDesc *sd, const ImgDesc *dd,
                     const tagRECT *rcSrc, const tagRECT *rcDst);

/// An image in memory that ends where the caller says, with rows that need not be whole pixels apart.
struct ImageView {
    ImgDesc desc;        ///< `nRowPixels` is not looked at
    int64_t rowBytes;    ///< above 0
    int64_t bytes;       ///< of the memory
};

/// The same for views; NV12 is served as well. 0x80040248 when a memory does not hold its image.
HRESULT ColorConvertViews(ImgConvertState *state, const uint8_t *src, uint8_t *dst, const ImageView &source,
                          const ImageView &target, const tagRECT *rcSrc, const tagRECT *rcDst);

/// Whether the views above have a conversion between two formats.
bool ColorConvertServes(eZFCC from, eZFCC to);

}    // namespace zck
