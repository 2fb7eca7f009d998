// The borders that are left unkeyed.
#pragma once

#include "props/values/insets.h"
#include "zchromakey/media_types.h"

namespace zck {

/// Borders in pixels, as the property `keying.borders` gives them.
using Borders = Insets;

/// The rectangle inside the borders. Its left edge is rounded up and its right edge down to a multiple of 8, so that the
/// keyed columns start on a block.
tagRECT BordersRect(const Borders &borders, const Z_VID_PROPS &props);

}    // namespace zck
