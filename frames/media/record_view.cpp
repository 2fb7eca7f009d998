#include "frames/media/record_view.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>

#include "frames/media/pixel_format.h"
#include "frames/media/video_props.h"

namespace zck {
namespace {

constexpr int64_t kInt32Max = std::numeric_limits<int32_t>::max();
constexpr int64_t kInt32Min = std::numeric_limits<int32_t>::min();

int32_t Clamp32(int64_t value) { return static_cast<int32_t>(std::clamp(value, kInt32Min, kInt32Max)); }

int64_t RowsOf(const Z_VID_PROPS &props) { return std::abs(static_cast<int64_t>(props.nHeight)); }

bool BottomUp(const Z_VID_PROPS &props) { return IsRgbFormat(props.fccType) && props.nHeight > 0; }

// Start and end inside 0..limit, then moved inwards to even numbers where asked for, never past each other.
struct Span {
    Span(int32_t start, int32_t end, int64_t limit, bool even)
        : first(std::clamp<int64_t>(start, 0, limit)), last(std::clamp<int64_t>(end, 0, limit)) {
        if (even) {
            first += first & 1;
            last -= last & 1;
        }
        first = std::min(first, last);
    }
    int64_t Length() const { return last - first; }
    void MoveDown() {
        ++first;
        ++last;
    }

    int64_t first;
    int64_t last;
};

// The display aspect of a part: the pixels keep their shape.
void AspectNarrow(Z_VID_PROPS &props, const Z_VID_PROPS &whole) {
    const double pixel = whole.nWidth < 1 ? 1.0 : AspectRatio(&whole) * static_cast<double>(RowsOf(whole)) / whole.nWidth;
    int64_t x = std::llround(std::min(pixel * props.nWidth, 1e15));
    int64_t y = RowsOf(props);
    if (x <= 0 || y <= 0) {
        props.nAspectX = 0;
        props.nAspectY = 0;
        return;
    }
    const int64_t divisor = std::gcd(x, y);
    x /= divisor;
    y /= divisor;
    while (x > std::numeric_limits<int16_t>::max() || y > std::numeric_limits<int16_t>::max()) {
        x = std::max<int64_t>(x >> 1, 1);
        y = std::max<int64_t>(y >> 1, 1);
    }
    props.nAspectX = static_cast<int16_t>(x);
    props.nAspectY = static_cast<int16_t>(y);
}

}    // namespace

int64_t FieldView(Z_VID_PROPS &props, int32_t index) {
    if (index == 0 || index == 1) {
        if (FieldOrderSign(&props) < 0) index = 1 - index;
        if (BottomUp(props)) index = 1 - index;
    }
    const int64_t offset = index >= 1 ? props.nRowBytes : 0;
    props.nRowBytes = Clamp32(static_cast<int64_t>(props.nRowBytes) * 2);
    props.nHeight /= 2;
    props.eInterlace = eZI_Progressive;
    props.eVideoFormat = eZVF_Custom;
    return offset;
}

int64_t SubRectView(Z_VID_PROPS &props, const tagRECT &rect, int32_t field) {
    if (!VideoPropsValid(&props) || IsPlanarFormat(props.fccType)) return 0;
    const Z_VID_PROPS whole = props;
    const bool rgb = IsRgbFormat(whole.fccType);
    const int32_t order = FieldOrderSign(&whole);
    const Span columns(static_cast<int32_t>(rect.left), static_cast<int32_t>(rect.right), std::max<int64_t>(whole.nWidth, 0),
                       !rgb);
    Span rows(static_cast<int32_t>(rect.top), static_cast<int32_t>(rect.bottom), RowsOf(whole), order != 0 || field >= 0);
    if (field == (order < 0 ? 1 : 2)) rows.MoveDown();

    // A bottom-up picture starts one row lower than the rectangle ends; hosts rely on it.
    const int64_t row = BottomUp(whole) ? std::max<int64_t>(0, whole.nHeight - 1 - rows.last) : rows.first;
    const int64_t offset = row * whole.nRowBytes + columns.first * PixelBits(whole.fccType) / 8;

    const int64_t width = rgb ? columns.Length() : columns.Length() & ~int64_t{1};
    const int64_t height = field >= 0 ? rows.Length() / 2 : rows.Length();
    props.nWidth = Clamp32(width);
    props.nHeight = Clamp32(whole.nHeight < 0 ? -height : height);
    if (field >= 0) props.nRowBytes = Clamp32(int64_t{whole.nRowBytes} * 2);
    props.eVideoFormat = eZVF_Custom;
    AspectNarrow(props, whole);
    return offset;
}

}    // namespace zck
