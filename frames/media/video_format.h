// The standard video formats: what each one stands for, and which one a size and a rate amount to.
//
// Everything is looked up by the base number in the low byte; the stereo flags above it change sizes only.
#pragma once

#include <cstdint>

#include "zchromakey/media_types.h"

namespace zck {

// One standard format. An unlisted base has a row of zeros.
struct VideoFormatRow {
    int32_t nWidth;
    int32_t nHeight;
    double dblRate;    // frames per second
    eZInterlace eInterlace;
    int16_t nAspectX;
    int16_t nAspectY;
};

const VideoFormatRow &VideoFormatFind(eZVideoFormat format);

// Frames per second; 0 for unlisted formats.
double VideoFormatRate(eZVideoFormat format);

// Field order; 0 for unlisted formats.
eZInterlace VideoFormatScan(eZVideoFormat format);

// Lines by which a picture of the format may be higher than nominal; 0 for unlisted formats.
int32_t VideoFormatMargin(eZVideoFormat format);

// The standard format of a record's size, rate, interlace, aspect and stereo layout; `eZVF_Custom` when nothing fits or
// the argument is null. At 25, 29.97 and 30 frames a second 1080 lines without a known interlace count as interlaced.
// The nominal 2K formats are never found.
eZVideoFormat VideoFormatFromProps(const Z_VID_PROPS *props);

}    // namespace zck
