// A picture of up to 256 colours, for kinds of image files that hold no more.
#pragma once

#include <cstdint>
#include <vector>

namespace zck {

/// Colours are 0x00RRGGBB; there is one index for each pixel.
struct PalettePicture {
    std::vector<uint32_t> colours;
    std::vector<uint8_t> indices;
};

/// A picture of at most 256 colours keeps them exactly. Otherwise they are gathered in 256 boxes, the longest side of the box
/// with the most pixels being halved each time. Throws `std::bad_alloc`.
PalettePicture PaletteMake(const std::vector<uint32_t> &pixels);

}    // namespace zck
