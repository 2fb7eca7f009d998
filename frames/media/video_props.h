// Arithmetic on `Z_VID_PROPS`: making a record from a standard format, normalising a half-filled one, and the bytes that
// a picture takes. A null record gives 0, false or the neutral value that is named.
#pragma once

#include <cstdint>

#include "zchromakey/media_types.h"

namespace zck {

// The complete record of a standard format; an unknown base gives size 0 and rate 0. With `eZFCC_Default` the pixel
// format is UYVY for standard definition and HDYC for everything else. RGB formats get a negative height (top row
// first).
Z_VID_PROPS VideoPropsFromFormat(eZVideoFormat format, eZFCC fcc);

// Normalises a record after any change and returns its standard format. With bTrustFormat the format wins over the
// fields, and the size may change: never do that to a record that describes pixels. Without it the fields win and the
// format is found again; the rate is always the format's. A height of 1 or -1 in a record with a known format only asks
// for a sign and grows to the format's height. `eZVF_Disabled` passes untouched.
eZVideoFormat VideoPropsUpdate(Z_VID_PROPS *props, bool bTrustFormat);

// There is a known format, or size, row bytes and pixel format are there.
bool VideoPropsValid(const Z_VID_PROPS *props);

// Bytes of one picture, whole rows; planar pictures count one and a half planes whatever their sampling is. A record
// without height or row bytes is normalised first (on a copy). 0 for what needs 2 GB or more.
int32_t FrameBufferSize(const Z_VID_PROPS *props);

// The bytes from the first to the last byte of pixels, which is what an operation may touch when it walks the record:
// (lines - 1) whole rows and the pixels of one more row, so that a cut picture, whose last row ends early, still fits.
// A packed row counts at least `RowBytes`, as all work is done on normalised records. Pixels that share their chroma or
// a word (4:2:2, v210) count in whole groups.
int64_t VideoBytesNeeded(const Z_VID_PROPS &props);

// Distance in pixels between the rows of an alpha plane (one byte a pixel) that belongs to a picture of these props.
int32_t AlphaStride(const Z_VID_PROPS &props);

// Field order: 0 progressive or none, +1 field 1 first, -1 field 2 first. The format's own where the record has none.
int32_t FieldOrderSign(const Z_VID_PROPS *props);

// Width to height of the display: the aspect fields, else width / height for a positive height, else 16:9. A negative
// height is on purpose not used. A null record gives 1.0.
double VideoAspect(const Z_VID_PROPS *props);
double AspectRatio(const Z_VID_PROPS *props);

}    // namespace zck
