#include "imaging/mix/print_place.h"

#include <algorithm>

#include "frames/media/row_count.h"

namespace zck {

PrintPlace PrintPlaceOf(const PrintRect &r, const Z_VID_PROPS &frame, double character) {
    const double width = frame.nWidth;
    const auto height = static_cast<double>(RowCount(frame.nHeight));
    const auto scaled = [&r](double x, double y, double column, double row) {
        const double left = x + r.left * column;
        const double top = y + r.top * row;
        return PrintPlace{left, top, left + r.width * column, top + r.height * row, 0};
    };
    if (r.eType <= 0) return scaled(0, 0, 1, 1);
    if (r.eType == 1) return scaled(0, 0, width, height);
    const double marginX = 0.07 * width;
    const double marginY = 0.07 * height;
    const double row = (height - 2 * marginY) / (r.eType == 2 ? 14 : r.eType);
    PrintPlace place = scaled(marginX, marginY, std::max(character, 0.1) * row, row);
    place.rowHeight = row;
    return place;
}

int32_t PrintPixel(double value) {
    if (value != value) return 0;
    return static_cast<int32_t>(std::clamp<double>(value, INT32_MIN, INT32_MAX));
}

}    // namespace zck
