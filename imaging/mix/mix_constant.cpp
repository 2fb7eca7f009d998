#include "imaging/mix/mix_constant.h"

#include <algorithm>
#include <cstring>

#include "frames/media/pixel_format.h"
#include "imaging/mix/mix_kernels.h"
#include "imaging/primitives/row_kernels.h"
#include "platform/status.h"

namespace zck {
namespace {

constexpr int32_t kWhole = 128;

// Both images, narrowed to what they have in common.
struct Pair {
    Picture target;
    OverlayRows *overlay;
    int32_t width;    // pixels
    int32_t rows;

    int64_t Bytes() const { return target.format->PixelRowBytes(width); }
};

bool Mixes(eZFCC target, eZFCC overlay) {
    return PlainFormat(target) == PlainFormat(overlay) &&
           (Is32BitFormat(target) || target == eZFCC_RGB24 || Is422Format(target));
}

HRESULT PairMake(const MixTarget &target, const tagRECT &targetRect, OverlayRows &overlay, const tagRECT &overlayRect,
                 Pair &pair) {
    MixTarget part = target;
    if (!MixNarrow(part, targetRect) || !overlay.Narrow(overlayRect)) return S_FALSE;
    if (!Mixes(target.props.fccType, overlay.Record().fccType)) return kMixFormatsDiffer;
    if (!PictureMake(part.props, part.p, part.bytes, &pair.target)) return kVfwEInvalidMediaType;
    pair.overlay = &overlay;
    pair.width = std::min(pair.target.width, overlay.Width());
    pair.rows = std::min(pair.target.rows, overlay.Rows());
    return S_OK;
}

// An odd last pixel of 4:2:2 is half a group, and stays.
void Copy(const Pair &pair) {
    const PixelGroup &group = pair.target.format->group;
    const auto bytes = static_cast<size_t>(pair.width / group.pixels * group.bytes);
    for (int32_t y = 0; y < pair.rows; ++y) std::memcpy(pair.target.Row(y), pair.overlay->Row(y), bytes);
}

// Both premultiplied.
void Compose(const Pair &pair, int32_t q) {
    const MixKernels &mix = MixKernelsGet();
    const PrimitiveKernels &plain = PrimitiveKernelsGet();
    for (int32_t y = 0; y < pair.rows; ++y) {
        uint8_t *const row = pair.target.Row(y);
        if (q == kWhole)
            plain.alpha_over(row, pair.overlay->Row(y), row, pair.width);
        else
            mix.over_scaled(row, pair.overlay->Row(y), static_cast<uint8_t>(q), 7, pair.width);
    }
}

void Weigh(const Pair &pair, int32_t q) {
    const MixKernels &mix = MixKernelsGet();
    for (int32_t y = 0; y < pair.rows; ++y) mix.constant(pair.target.Row(y), pair.overlay->Row(y), q, pair.Bytes());
}

auto WeightsOf(const FormatRow &format) {
    const MixKernels &mix = MixKernelsGet();
    return !format.bRgb ? mix.weights2 : format.Is32() ? mix.weights4 : mix.weights3;
}

}    // namespace

HRESULT MixConstant(const MixTarget &target, const tagRECT &targetRect, OverlayRows &overlay, const tagRECT &overlayRect,
                    double opacity) {
    Pair pair = {};
    const HRESULT hr = PairMake(target, targetRect, overlay, overlayRect, pair);
    if (hr != S_OK) return hr;
    const int32_t q = MixOpacity(opacity, kWhole);
    if (target.props.fccType == eZFCC_ARGB32)
        Compose(pair, q);
    else if (q == kWhole)
        Copy(pair);
    else
        Weigh(pair, q);
    return S_OK;
}

HRESULT MixWithMask(const MixTarget &target, const tagRECT &targetRect, OverlayRows &overlay, const tagRECT &overlayRect,
                    double opacity) {
    Pair pair = {};
    const HRESULT hr = PairMake(target, targetRect, overlay, overlayRect, pair);
    if (hr != S_OK) return hr;
    const int32_t q = MixOpacity(opacity, kWhole);
    const MixKernels &mix = MixKernelsGet();
    const auto weights = WeightsOf(*pair.target.format);
    std::vector<uint8_t> row(static_cast<size_t>(pair.Bytes()));
    for (int32_t y = 0; y < pair.rows; ++y) {
        weights(row.data(), overlay.SourceRow32(y), q, pair.width);
        mix.weighted(pair.target.Row(y), overlay.Row(y), row.data(), pair.Bytes());
    }
    return S_OK;
}

}    // namespace zck
