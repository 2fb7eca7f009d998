// An image as three planes of 8-bit samples, for work that is done plane by plane.
#pragma once

#include <cstdint>

#include "zchromakey/com.h"
#include "zchromakey/media_types.h"

namespace zck {

/// Y, Cb and Cr in this order, whatever the format's order in memory. The planes belong to somebody else.
struct PlanarImage {
    eZFCC fcc = eZFCC_Default;    ///< that it was loaded from
    bool bPlanar = false;
    uint8_t *plane[3] = {};
    int32_t nRowBytes[3] = {};
    int32_t nWidth[3] = {};    ///< samples
    int32_t nHeight[3] = {};
    tagRECT rect[3] = {};    ///< the part to work on; all of each plane at first
};

/// The bytes of scratch that `LoadPlanes` needs for a record; 0 if none, or if there are no planes of such a record.
int64_t PlanesScratch(const Z_VID_PROPS &props, bool hasSource);

/// Makes planes of an image. I420 and YV12 are wrapped where they stand (and then must not be written through the planes); NV12
/// is split into `scratch`, with rows as wide as the picture; 4:2:2 and RGB become 4:2:2 planes there, top row first. Chroma
/// planes are half as wide, and of 4:2:0 half as high, cut down: an odd last column has luma only. Without a source the planes
/// are laid out in the scratch and hold what was there. The record is used as it stands.
///
/// `E_POINTER` without image or record, or without a scratch that is needed; 0x80040248 for a memory that is too small and for
/// a record without size; 0x80040201 for a format that has no planes (v210, r210, RGB8 and others).
HRESULT LoadPlanes(PlanarImage *image, const uint8_t *src, int64_t srcBytes, const Z_VID_PROPS *props, uint8_t *scratch,
                   int64_t scratchBytes);

/// Writes planes as an image of a format: from 4:2:2 planes into 4:2:2 and RGB, from 4:2:0 planes into 4:2:0. `dst` is the
/// first row of the picture; a negative `rowBytes` goes up from there. All rows lie inside `dstBytes` bytes.
/// An odd last column of 4:2:2 and RGB stays as it is.
///
/// `E_POINTER` without image or target; 0x80040248 for a memory that is too small; 0x80040201 for a format that planes of this
/// sampling do not make; `E_FAIL` for planes without size.
HRESULT PackPlanes(const PlanarImage *image, uint8_t *dst, int64_t dstBytes, eZFCC fcc, int32_t rowBytes);

}    // namespace zck
