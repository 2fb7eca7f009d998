// The borders that are left unkeyed.
#pragma once

#include <cstdint>
#include <optional>

#include "platform/text.h"
#include "zchromakey/media_types.h"

namespace zck {

/// Borders in pixels, as the property `keying.borders` gives them.
struct Borders {
    int32_t left;
    int32_t top;
    int32_t right;
    int32_t bottom;

    bool Any() const { return left != 0 || top != 0 || right != 0 || bottom != 0; }
};

/// Reads one to four integers, separated by any run of blank, tab, CR, LF, ";" and ",": all sides; left and right, top and
/// bottom; left and right, top, bottom; or left, top, right, bottom. What follows the fourth is ignored. Nothing for a text
/// without an item.
std::optional<Borders> BordersFromText(TextView text);

/// The rectangle inside the borders. Its left edge is rounded up and its right edge down to a multiple of 8, so that the
/// keyed columns start on a block.
tagRECT BordersRect(const Borders &borders, const Z_VID_PROPS &props);

}    // namespace zck
