// A position in pixels, in fractions of a frame, or on a grid of text.
#pragma once

#include "zchromakey/frame_info.h"
#include "zchromakey/media_types.h"

namespace zck {

/// Pixels of a frame; the row height is 0 without a grid.
struct PrintPlace {
    double left = 0;
    double top = 0;
    double right = 0;
    double bottom = 0;
    double rowHeight = 0;
};

/// `eType` 0 and below: pixels; 1: fractions of the frame; from 2 on a grid of so many rows (14 for 2) inside margins of 7 %,
/// whose columns are `character` of a row wide, at least a tenth.
PrintPlace PrintPlaceOf(const PrintRect &rect, const Z_VID_PROPS &frame, double character);

/// A coordinate as a whole number: truncated, no number 0, the limits of 32 bits for what is beyond them.
int32_t PrintPixel(double value);

}    // namespace zck
