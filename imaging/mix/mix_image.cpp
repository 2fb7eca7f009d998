#include "imaging/mix/mix_image.h"

#include <algorithm>
#include <cmath>
#include <functional>

#include "frames/media/pixel_format.h"
#include "frames/media/row_count.h"
#include "frames/media/video_props.h"
#include "platform/status.h"

namespace zck {
namespace {

bool HasSize(const Z_VID_PROPS &p) { return p.nWidth != 0 && p.nHeight != 0 && p.nRowBytes != 0; }

int32_t Clamp32(int64_t v) { return static_cast<int32_t>(std::clamp<int64_t>(v, INT32_MIN, INT32_MAX)); }

tagRECT RectOf(int64_t left, int64_t top, int64_t right, int64_t bottom) {
    tagRECT rect = {};
    rect.left = Clamp32(left);
    rect.top = Clamp32(top);
    rect.right = Clamp32(right);
    rect.bottom = Clamp32(bottom);
    return rect;
}

}    // namespace

HRESULT MixRecordComplete(Z_VID_PROPS &props, int64_t bytes) {
    if (!VideoPropsValid(&props)) return kMixInvalidRecord;
    if (!HasSize(props)) VideoPropsUpdate(&props, false);
    if (!HasSize(props) || props.nWidth < 0 || props.nRowBytes < 0) return kMixInvalidRecord;
    if (IsPackedFormat(props.fccType)) props.nRowBytes = std::max(props.nRowBytes, RowBytes(props.fccType, props.nWidth));
    return VideoBytesNeeded(props) > bytes ? kVfwEInvalidMediaType : S_OK;
}

MixPlace::MixPlace(int32_t x, int32_t y, const Z_VID_PROPS &over)
    : target(RectOf(x, y, int64_t{x} + over.nWidth, int64_t{y} + RowCount(over.nHeight))),
      overlay(
          RectOf(std::max<int64_t>(0, -int64_t{x}), std::max<int64_t>(0, -int64_t{y}), over.nWidth, RowCount(over.nHeight))) {}

void MixEvenWidth(const Z_VID_PROPS &overlay, tagRECT &rect) {
    if (!IsRgbFormat(overlay.fccType)) rect.right = overlay.nWidth & ~1;
}

int32_t MixOpacity(double opacity, int32_t whole) {
    const double wish = opacity * whole;
    if (!(wish > 0)) return 0;
    return static_cast<int32_t>(std::llround(std::min<double>(wish, whole)));
}

bool MixMemoriesMeet(const MixTarget &target, const MixOverlay &overlay) {
    const std::less<const uint8_t *> before;
    return before(overlay.p, target.p + target.bytes) && before(target.p, overlay.p + overlay.bytes);
}

}    // namespace zck
