// Distances from the edges of a picture, and their text.
#pragma once

#include <cstdint>
#include <optional>

#include "platform/text.h"

namespace zck {

/// In pixels, each inwards from its edge.
struct Insets {
    int32_t left;
    int32_t top;
    int32_t right;
    int32_t bottom;

    bool Any() const { return left != 0 || top != 0 || right != 0 || bottom != 0; }
};

/// Reads one to four integers, separated by any run of blank, tab, CR, LF, ";" and ",": all sides; left and right, top and
/// bottom; left and right, top, bottom; or left, top, right, bottom. What follows the fourth is ignored. Nothing for a text
/// without an item.
std::optional<Insets> InsetsFromText(TextView text);

}    // namespace zck
