// Frames are handed to the library with room at the right and at the bottom, and the result is cropped: its block widths
// and its division of the rows among threads would otherwise leave a strip of pixels unkeyed.
#pragma once

#include "hosts/zkey/frame_format.h"

namespace zkey {

struct PictureSize {
    int32_t width;
    int32_t height;
};

/// The size to hand over: the width a multiple of 16 pixels, the height of the thread count, and of twice the thread count
/// for interlaced pictures, whose fields are each divided. 4:2:0 planes have an even height.
PictureSize PaddedSize(int32_t width, int32_t height, int32_t threads, bool interlaced, eZFCC fcc);

/// Fills what lies beyond `width` and `height` in a frame of the given description by repeating the last column and the
/// last row, in an interlaced picture the last row of the same field.
void RepeatEdges(uint8_t *pixels, const Z_VID_PROPS &props, int32_t width, int32_t height);

}    // namespace zkey
