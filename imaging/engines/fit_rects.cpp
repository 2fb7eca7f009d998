#include "imaging/engines/fit_rects.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "frames/media/video_props.h"

namespace zck {
namespace {

int64_t Rows(const Z_VID_PROPS &p) { return std::llabs(int64_t{p.nHeight}); }

// How wide a pixel is shown for its height.
double PixelAspect(const Z_VID_PROPS &p) { return AspectRatio(&p) * static_cast<double>(Rows(p)) / p.nWidth; }

struct Fit {
    int32_t type;
    int32_t half;    // 2: the source has the rows of one field of the target
};

// Heights of 1080 lines and their like in one or the other family are shown pixel by pixel.
bool Neighbours(const Z_VID_PROPS &source, const Z_VID_PROPS &target) {
    const double apart = std::abs(static_cast<double>(int64_t{source.nWidth} - target.nWidth)) / target.nWidth;
    return source.nWidth >= 1100 && target.nWidth >= 1280 && apart <= 0.1 &&
           std::abs(PixelAspect(source) - PixelAspect(target)) < 0.01;
}

Fit FitOf(const Z_VID_PROPS &source, const Z_VID_PROPS &target) {
    const eZScaleType type = source.eScaleType != eZST_Default ? source.eScaleType : target.eScaleType;
    if (type != eZST_Default) return {type, 1};
    if (Neighbours(source, target)) return {eZST_NoScale, Rows(source) == Rows(target) / 2 ? 2 : 1};
    if (AspectRatio(&source) < AspectRatio(&target) && Rows(source) <= Rows(target) + 60) return {eZST_Crop, 1};
    return {eZST_LetterBox, 1};
}

// An even edge that leaves two columns (rows) between itself and its counterpart.
int64_t Edge(int64_t wish, int64_t whole) {
    const int64_t most = whole < 4 ? 0 : ((whole - 2) / 2) & ~int64_t{1};
    return std::clamp<int64_t>(wish, 0, most);
}

int64_t EdgeOf(double share, int64_t whole) {
    const double wish = std::round(static_cast<double>(whole) * share / 2);
    if (!(wish >= 1)) return 0;    // aspects may be no numbers
    const auto limited = static_cast<int64_t>(std::min(wish, static_cast<double>(whole)));
    return Edge((limited + 1) & ~int64_t{1}, whole);
}

void CutColumns(tagRECT &rc, int64_t edge) {
    rc.left = static_cast<int32_t>(edge);
    rc.right = static_cast<int32_t>(rc.right - edge);
}

void CutRows(tagRECT &rc, int64_t edge) {
    rc.top = static_cast<int32_t>(edge);
    rc.bottom = static_cast<int32_t>(rc.bottom - edge);
}

void CutByAspect(const Z_VID_PROPS &source, const Z_VID_PROPS &target, bool crop, tagRECT &rc) {
    const double a = AspectRatio(&source) * static_cast<double>(Rows(source));
    const double b = AspectRatio(&target) * static_cast<double>(Rows(target));
    const double x = b / a;
    const double y = static_cast<double>(Rows(target)) / static_cast<double>(Rows(source));
    const double r = crop ? x / y : y / x;
    if (r < 1.0)
        CutColumns(rc, EdgeOf(1 - r, rc.right));
    else
        CutRows(rc, EdgeOf(1 - 1 / r, rc.bottom));
}

// To the middle `width` by `rows` pixels; half of the excess is rounded up to even, a whole even half too.
void CutToMiddle(tagRECT &rc, int64_t width, int64_t rows) {
    const auto edge = [](int64_t whole, int64_t part) { return Edge(((whole - part) / 2 + 1) & ~int64_t{1}, whole); };
    CutColumns(rc, edge(rc.right, width));
    CutRows(rc, edge(rc.bottom, rows));
}

bool SameSize(const tagRECT &a, const tagRECT &b) {
    return a.right - a.left == b.right - b.left && a.bottom - a.top == b.bottom - b.top;
}

bool Whole(const tagRECT &rc, const Z_VID_PROPS &p) { return rc.right - rc.left == p.nWidth && rc.bottom - rc.top == Rows(p); }

}    // namespace

FittedRects FitRects(const Z_VID_PROPS &source, const Z_VID_PROPS &target) {
    FittedRects f = {{0, 0, source.nWidth, static_cast<int32_t>(Rows(source))},
                     {0, 0, target.nWidth, static_cast<int32_t>(Rows(target))},
                     true};
    const Fit fit = FitOf(source, target);
    if (fit.type == eZST_Crop) CutByAspect(source, target, true, f.source);
    if (fit.type == eZST_LetterBox) CutByAspect(source, target, false, f.target);
    if (fit.type == eZST_NoScale) {
        const int64_t width = std::min(source.nWidth, target.nWidth);
        const int64_t rows = std::min(Rows(source) * fit.half, Rows(target));
        CutToMiddle(f.source, width, rows / fit.half);
        CutToMiddle(f.target, width, rows);
    }
    f.bDiffers = !SameSize(f.source, f.target) || !Whole(f.source, source) || !Whole(f.target, target);
    return f;
}

}    // namespace zck
