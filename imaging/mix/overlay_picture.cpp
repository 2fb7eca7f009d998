#include "imaging/mix/overlay_picture.h"

#include <vector>

#include "frames/media/pixel_format.h"
#include "imaging/mix/mix_alpha.h"
#include "imaging/mix/mix_constant.h"
#include "platform/status.h"

namespace zck {
namespace {

// The format in which both are mixed: the target's, or the overlay's where its bytes do as well.
eZFCC WorkingFormat(eZFCC overlay, eZFCC target) {
    const auto plain = [](eZFCC fcc) { return PlainFormat(fcc) == eZFCC_UYVY; };
    const bool same = (plain(overlay) && plain(target)) || (overlay == eZFCC_ARGB32 && target == eZFCC_RGB32);
    return same ? overlay : target;
}

HRESULT Lay(const MixTarget &target, const MixOverlay &overlay, const MixPlace &place, double opacity) {
    const eZFCC from = overlay.props.fccType;
    const eZFCC working = WorkingFormat(from, target.props.fccType);
    if (from == eZFCC_ARGB32 && working != eZFCC_RGB24)
        return MixPremultiplied(target, place.target, overlay, place.overlay, opacity);
    OverlayRows rows(overlay);
    if (from != working) {
        const HRESULT hr = rows.Convert(working, target.props.nHeight > 0);
        if (hr != S_OK) return hr;
    }
    tagRECT rect = place.overlay;
    MixEvenWidth(overlay.props, rect);
    return (from == eZFCC_ARGB32 ? MixWithMask : MixConstant)(target, place.target, rows, rect, opacity);
}

}    // namespace

HRESULT OverlayPicture(const MixTarget &target, const MixOverlay &overlay, int32_t x, int32_t y, double opacity) {
    return Guarded([&] {
        MixTarget under = target;
        MixOverlay over = overlay;
        HRESULT hr = MixRecordComplete(under.props, under.bytes);
        if (hr == S_OK) hr = MixRecordComplete(over.props, over.bytes);
        if (hr != S_OK) return hr;
        std::vector<uint8_t> copy;
        if (MixMemoriesMeet(under, over)) {
            copy.assign(over.p, over.p + over.bytes);
            over.p = copy.data();
        }
        return Lay(under, over, MixPlace(x, y, over.props), opacity);
    });
}

}    // namespace zck
