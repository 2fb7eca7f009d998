#include "imaging/mix/mix_alpha.h"

#include <algorithm>
#include <cstring>
#include <vector>

#include "frames/media/pixel_format.h"
#include "imaging/colour/route.h"
#include "imaging/mix/mix_kernels.h"
#include "imaging/mix/overlay_rows.h"
#include "imaging/primitives/row_kernels.h"
#include "platform/status.h"

namespace zck {
namespace {

constexpr int32_t kWhole = 256;

tagRECT All(const Z_VID_PROPS &props) { return MixPlace(0, 0, props).overlay; }

// Rows that lie on each other, from the top of both pictures.
struct Pair {
    Picture target;
    ConstPicture overlay;
    int32_t width = 0;
    int32_t rows = 0;
};

HRESULT PairMake(const MixTarget &target, const MixOverlay &overlay, Pair &pair) {
    if (!PictureMake(target.props, target.p, target.bytes, &pair.target)) return kVfwEInvalidMediaType;
    if (!PictureMake(overlay.props, overlay.p, overlay.bytes, &pair.overlay)) return kVfwEInvalidMediaType;
    pair.width = std::min(pair.target.width, pair.overlay.width);
    pair.rows = std::min(pair.target.rows, pair.overlay.rows);
    return S_OK;
}

void Compose(const Pair &pair, int32_t a) {
    const MixKernels &mix = MixKernelsGet();
    const PrimitiveKernels &plain = PrimitiveKernelsGet();
    for (int32_t y = 0; y < pair.rows; ++y) {
        uint8_t *const row = pair.target.Row(y);
        if (a == kWhole)
            plain.alpha_over(row, pair.overlay.Row(y), row, pair.width);
        else
            mix.over_scaled(row, pair.overlay.Row(y), static_cast<uint8_t>(a), 8, pair.width);
    }
}

void Copy(const Pair &pair, int64_t bytes) {
    for (int32_t y = 0; y < pair.rows; ++y) std::memcpy(pair.target.Row(y), pair.overlay.Row(y), static_cast<size_t>(bytes));
}

void Blend(const Pair &pair, int32_t a, int64_t bytes) {
    const MixKernels &mix = MixKernelsGet();
    for (int32_t y = 0; y < pair.rows; ++y) mix.blend(pair.target.Row(y), pair.overlay.Row(y), a, bytes);
}

using MaskedRow = void (*)(uint8_t *dst, const uint8_t *over, const uint8_t *mask, int32_t a, int32_t width);

MaskedRow PremultipliedOf(eZFCC target) {
    const MixKernels &mix = MixKernelsGet();
    if (PlainFormat(target) == eZFCC_UYVY) return mix.premultiplied_uyvy;
    return target == eZFCC_YUY2 ? mix.premultiplied_yuy2 : nullptr;
}

MaskedRow MaskedOf(eZFCC target) {
    const MixKernels &mix = MixKernelsGet();
    if (Is32BitFormat(target)) return mix.masked4;
    return PlainFormat(target) == eZFCC_UYVY ? mix.masked_uyvy : mix.masked_yuy2;
}

// The overlay's own alpha is the mask of its colours in the target's format. Planes are no way to it.
HRESULT ComposeConverted(const MixTarget &target, const MixOverlay &overlay, int32_t a) {
    if (ConvertRouteFind(overlay.props.fccType, target.props.fccType) == nullptr) return kVfwEInvalidSubtype;
    OverlayRows rows(overlay);
    HRESULT hr = rows.Convert(target.props.fccType, false);
    if (hr != S_OK) return hr;
    const MaskedRow mixed = PremultipliedOf(target.props.fccType);
    if (mixed == nullptr) return E_FAIL;
    Pair pair;
    hr = PairMake(target, overlay, pair);
    if (hr != S_OK || !rows.Narrow(All(rows.Record()))) return hr;
    const PrimitiveKernels &plain = PrimitiveKernelsGet();
    std::vector<uint8_t> alpha(static_cast<size_t>(pair.width));
    for (int32_t y = 0; y < pair.rows; ++y) {
        plain.get_channel(alpha.data(), pair.overlay.Row(y) + 3, pair.width);
        mixed(pair.target.Row(y), rows.Row(y), alpha.data(), a, pair.width);
    }
    return S_OK;
}

void Mask(const Pair &pair, const MixMask &mask, MaskedRow mixed, int32_t a) {
    for (int32_t y = 0; y < pair.rows; ++y) {
        const int64_t row = pair.overlay.BottomUp() ? pair.overlay.rows - 1 - y : y;
        mixed(pair.target.Row(y), pair.overlay.Row(y), mask.p + row * mask.step, a, pair.width);
    }
}

}    // namespace

HRESULT MixImage_PARGB(const MixTarget &target, const MixOverlay &overlay, double opacity) {
    if (target.p == nullptr || overlay.p == nullptr) return E_POINTER;
    if (!Is32BitFormat(overlay.props.fccType)) return E_INVALIDARG;
    const int32_t a = MixOpacity(opacity, kWhole);
    if (!Is32BitFormat(target.props.fccType)) return ComposeConverted(target, overlay, a);
    Pair pair;
    const HRESULT hr = PairMake(target, overlay, pair);
    if (hr == S_OK && a > 0) Compose(pair, a);
    return hr;
}

HRESULT MixPremultiplied(const MixTarget &target, const tagRECT &targetRect, const MixOverlay &overlay,
                         const tagRECT &overlayRect, double opacity) {
    MixTarget under = target;
    MixOverlay over = overlay;
    if (!MixNarrow(under, targetRect) || !MixNarrow(over, overlayRect)) return S_FALSE;
    return MixImage_PARGB(under, over, opacity);
}

HRESULT MixImage_Mask8(const MixTarget &target, const MixOverlay &overlay, bool bField, const MixMask *mask, double opacity) {
    if (target.p == nullptr || overlay.p == nullptr) return E_POINTER;
    const eZFCC fcc = overlay.props.fccType;
    const bool family = PlainFormat(target.props.fccType) == PlainFormat(fcc);
    const bool yuv = fcc == eZFCC_UYVY || fcc == eZFCC_HDYC || fcc == eZFCC_YUY2;
    if (!family || !(yuv || Is32BitFormat(fcc))) return E_INVALIDARG;
    const int32_t a = MixOpacity(opacity, kWhole);
    Pair pair;
    const HRESULT hr = PairMake(target, overlay, pair);
    if (hr != S_OK) return hr;
    const int64_t twoBytes = int64_t{2} * pair.width;
    if (fcc == eZFCC_ARGB32)
        Compose(pair, a);
    else if (mask != nullptr)
        Mask(pair, *mask, yuv && bField ? PremultipliedOf(fcc) : MaskedOf(fcc), a);
    else if (a == kWhole)
        Copy(pair, yuv ? twoBytes : 2 * twoBytes);
    else
        Blend(pair, a, twoBytes);
    return S_OK;
}

}    // namespace zck
