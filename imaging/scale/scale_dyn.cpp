#include "imaging/scale/scale_dyn.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <mutex>

#include "imaging/scale/blend_rows.h"

namespace zck {
namespace {

// The target's rows, in the order of the picture.
struct Target {
    uint8_t *first;
    int64_t step;
    int64_t rows;
    uint8_t *Row(int64_t r) const { return first + r * step; }
};

void Walk(TapTables &tables, const TapSource &src, const Target &dst, int64_t width, int32_t flags) {
    const int32_t mode = flags & kScaleModeMask;
    const bool both = (flags & kScaleLineDown) != 0 && (flags & kScaleLineUp) != 0;
    const bool moves = dst.rows >= (both ? 3 : 2);
    const bool down = moves && (flags & kScaleLineDown) != 0;
    const bool up = moves && (flags & kScaleLineUp) != 0;
    const int64_t shift = (down ? 1 : 0) - (up ? 1 : 0);
    for (int64_t r = up ? 1 : 0; r < dst.rows - (down ? 1 : 0); ++r) {
        const int32_t swap = (flags & kScaleSwapFields) != 0 ? 1 : 0;
        const int32_t parity =
            mode == kScaleBothFields ? static_cast<int32_t>((r + swap) & 1) : (mode == kScaleSecondField ? 1 : 0);
        const TapRow &taps = tables.Row(parity, mode == kScaleBothFields ? r / 2 : r);
        BlendRows(dst.Row(r + shift), src, taps, width);
    }
    const auto bytes = static_cast<size_t>(width);
    if (down) std::memcpy(dst.Row(0), dst.Row(1), bytes);
    if (up) std::memcpy(dst.Row(dst.rows - 1), dst.Row(dst.rows - 2), bytes);
}

}    // namespace

int32_t ScaleDynTaps(int64_t srcHeight, int64_t dstHeight, int32_t mode, double factor) {
    if (factor == 0 || std::isnan(factor)) return 2;
    if (factor < 0) return 1;
    const int64_t b = mode == kScaleProgressive ? 1 : 2;
    const int64_t a = mode == kScaleBothFields ? 2 : 1;
    if (srcHeight / b == dstHeight / a) return 1;
    const auto s = static_cast<double>(srcHeight);
    const auto d = static_cast<double>(dstHeight);
    const double base = srcHeight > dstHeight ? std::max(5.0, std::trunc(s * 1.5 / d + 1)) : 4.0;
    return static_cast<int32_t>(std::clamp(std::round(base * factor), 3.0, double{kTapsMax}));
}

HRESULT Init_Dyn(TapTables *tables, int64_t srcHeight, int64_t dstHeight, int32_t mode, int32_t taps, double factor) {
    return tables->Init(srcHeight, dstHeight, mode, taps, factor);
}

HRESULT Scale_Dyn(DynScaler *scaler, const uint8_t *src, uint8_t *dst, int32_t srcHeight, int32_t dstHeight, int32_t width,
                  int64_t srcStep, int64_t dstStep, double factor, int32_t flags) {
    if (srcHeight == 0 || dstHeight == 0 || width < 1) return S_OK;
    const int64_t s = std::llabs(int64_t{srcHeight});
    const int64_t d = std::llabs(int64_t{dstHeight});
    const int32_t mode = flags & kScaleModeMask;
    double f = factor;
    if ((mode == kScaleFirstField || mode == kScaleSecondField) && s != d) f *= 1.5;
    if (s == d) f *= 0.75;
    const std::lock_guard lock(scaler->cs);
    const HRESULT hr = Init_Dyn(&scaler->taps, s, d, mode, ScaleDynTaps(s, d, mode, f), f);
    if (FAILED(hr)) return hr;
    const int64_t highest = srcStep < 0 ? 0 : (s - 1) * srcStep;
    TapSource from = {src, srcStep, nullptr};
    if (srcHeight < 0) from = {src + (s - 1) * srcStep, -srcStep, nullptr};
    from.end = src + highest + width;
    Target to = {dst, dstStep, d};
    if (dstHeight < 0) to = {dst + (d - 1) * dstStep, -dstStep, d};
    Walk(scaler->taps, from, to, width, flags);
    return S_OK;
}

}    // namespace zck
