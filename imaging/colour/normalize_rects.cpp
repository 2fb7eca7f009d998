#include "imaging/colour/normalize_rects.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>

#include "frames/media/pixel_format.h"

namespace zck {
namespace {

// Sums of 32-bit numbers scaled by 32-bit ratios stay far inside.
struct Rect {
    int64_t left, top, right, bottom;

    int64_t Width() const { return right - left; }
    int64_t Height() const { return bottom - top; }
    bool Empty() const { return left >= right || top >= bottom; }
};

bool Ordered(const tagRECT *rc) { return rc == nullptr || (rc->left < rc->right && rc->top < rc->bottom); }

int64_t Rows(const ImgDesc &d) { return std::llabs(int64_t{d.nHeight}); }

Rect Wish(const ImgDesc &d, const tagRECT *rc) {
    if (rc == nullptr) return {0, 0, d.nWidth, Rows(d)};
    return {rc->left, rc->top, rc->right, rc->bottom};
}

void Even(Rect &rc) {
    rc.left = (rc.left + 1) & ~int64_t{1};
    rc.right &= ~int64_t{1};
}

// Half away from zero.
int64_t Rounded(double n) {
    constexpr double kMost = 1e15;
    return std::llround(std::clamp(n, -kMost, kMost));
}

int64_t Times(int64_t n, double scale) { return Rounded(static_cast<double>(n) * scale); }
int64_t Over(int64_t n, double scale) { return Rounded(static_cast<double>(n) / scale); }

// Cuts off what lies outside of one rectangle's image, and the matching share of the other rectangle.
void ClipStart(int64_t &src, int64_t &dst, double scale) {
    if (src < 0) {
        dst -= Times(src, scale);
        src = 0;
    }
    if (dst < 0) {
        src -= Over(dst, scale);
        dst = 0;
    }
}

void ClipEnd(int64_t &src, int64_t srcLimit, int64_t &dst, int64_t dstLimit, double scale) {
    if (src > srcLimit) {
        dst -= Times(src - srcLimit, scale);
        src = srcLimit;
    }
    if (dst > dstLimit) {
        src -= Over(dst - dstLimit, scale);
        dst = dstLimit;
    }
}

bool Outside(const Rect &rc, const ImgDesc &d) {
    return rc.Empty() || rc.right < 0 || rc.left >= d.nWidth || rc.bottom < 0 || rc.top >= Rows(d);
}

tagRECT Narrow(const Rect &rc) {
    const auto cut = [](int64_t n) {
        return static_cast<int32_t>(
            std::clamp<int64_t>(n, std::numeric_limits<int32_t>::min(), std::numeric_limits<int32_t>::max()));
    };
    return {cut(rc.left), cut(rc.top), cut(rc.right), cut(rc.bottom)};
}

}    // namespace

HRESULT NormalizeRects(const ImgDesc *sd, const ImgDesc *dd, tagRECT *rcSrc, tagRECT *rcDst, bool bProportional,
                       const tagRECT *inSrc, const tagRECT *inDst) {
    if (sd == nullptr || dd == nullptr || rcSrc == nullptr || rcDst == nullptr) return E_INVALIDARG;
    if (!Ordered(inSrc) || !Ordered(inDst)) return E_INVALIDARG;
    Rect src = Wish(*sd, inSrc);
    Rect dst = Wish(*dd, inDst);
    const bool even = !IsRgbFormat(sd->fcc) || !IsRgbFormat(dd->fcc);
    if (even) Even(src);
    if (even) Even(dst);
    *rcSrc = Narrow(src);
    *rcDst = Narrow(dst);
    if (src.Empty() || dst.Empty()) return S_FALSE;

    double x = 1.0;
    double y = 1.0;
    if (bProportional) {
        x = static_cast<double>(dst.Width()) / static_cast<double>(src.Width());
        y = static_cast<double>(dst.Height()) / static_cast<double>(src.Height());
    } else {
        const int64_t width = std::min(src.Width(), dst.Width());
        const int64_t height = std::min(src.Height(), dst.Height());
        for (Rect *rc : {&src, &dst}) {
            rc->right = rc->left + width;
            rc->bottom = rc->top + height;
        }
    }
    // The axes cross at the top and at the left, and so they must stay.
    ClipStart(src.top, dst.top, x);
    ClipStart(src.left, dst.left, y);
    ClipEnd(src.right, sd->nWidth, dst.right, dd->nWidth, x);
    ClipEnd(src.bottom, Rows(*sd), dst.bottom, Rows(*dd), y);
    if (even) Even(src);
    if (even) Even(dst);
    *rcSrc = Narrow(src);
    *rcDst = Narrow(dst);
    return Outside(src, *sd) || Outside(dst, *dd) ? S_FALSE : S_OK;
}

}    // namespace zck
