#include "keying/plugin/borders.h"

#include <algorithm>

#include "frames/media/row_count.h"

namespace zck {

namespace {

int32_t Saturated(int64_t value) { return static_cast<int32_t>(std::clamp<int64_t>(value, INT32_MIN, INT32_MAX)); }

}    // namespace

tagRECT BordersRect(const Borders &borders, const Z_VID_PROPS &props) {
    const int64_t height = RowCount(props.nHeight);
    tagRECT rect;
    rect.left = Saturated((static_cast<int64_t>(borders.left) + 7) & ~int64_t{7});
    rect.top = borders.top;
    rect.right = Saturated((static_cast<int64_t>(props.nWidth) - borders.right) & ~int64_t{7});
    rect.bottom = Saturated(height - borders.bottom);
    return rect;
}

}    // namespace zck
