// Frames are handed to the library with room at the right and at the bottom, and the result is cropped: its block widths
// and its division of the rows among threads would otherwise leave a strip of pixels unkeyed.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "hosts/zkey/composite.h"
#include "hosts/zkey/frame_format.h"

namespace zkey {

struct PictureSize {
    int32_t width;
    int32_t height;
};

/// The size to hand over: the width a multiple of 16 pixels, the height of the thread count, and of twice the thread count
/// for interlaced pictures, whose fields are each divided. 4:2:0 planes have an even height.
PictureSize PaddedSize(int32_t width, int32_t height, int32_t threads, bool interlaced, eZFCC fcc);

/// What stands in the text of `keying.borders` between its separators, as the library sees it.
std::vector<std::string_view> BorderWords(std::string_view text);
/// What `keying.borders` says: one to four numbers for left, top, right and bottom. Nothing where it bounds nothing.
std::optional<Borders> BordersFromText(const std::string &text);

/// The borders to hand over with a picture of this size, so that what they leave is keyed to its last pixel: the inside goes
/// inwards to whole blocks, and at a side without a border outwards into the room, for which `padded` grows. A picture too
/// small for a block inside of its borders keeps one.
Borders PaddedBorders(const Borders &asked, PictureSize picture, int32_t threads, bool interlaced, PictureSize &padded);

/// Fills what lies beyond `width` and `height` in a frame of the given description by repeating the last column and the
/// last row, in an interlaced picture the last row of the same field.
void RepeatEdges(uint8_t *pixels, const Z_VID_PROPS &props, int32_t width, int32_t height);

}    // namespace zkey
