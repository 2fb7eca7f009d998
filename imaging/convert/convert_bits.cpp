#include "imaging/convert/convert_bits.h"

#include <algorithm>
#include <cstdlib>

#include "frames/media/pixel_format.h"
#include "frames/media/video_props.h"
#include "imaging/colour/fill.h"
#include "imaging/colour/row_order.h"
#include "imaging/convert/line_up.h"
#include "imaging/convert/quality.h"
#include "platform/status.h"

namespace zck {
namespace {

constexpr int32_t kTwoEyes = eZ3D_SideBySide | eZ3D_TopAndBottom;

// From here on the source has as many rows for a row of the target that its fields are better filtered in place.
constexpr int32_t kFieldCodes = 5;

HRESULT CheckSize(const Z_VID_PROPS &p) {
    return p.nWidth < 1 || p.nHeight == 0 || p.nHeight == INT32_MIN || p.nRowBytes < 1 ? E_UNEXPECTED : S_OK;
}

// Narrows a stereo record to one half and gives the bytes by which the image's start moves.
int64_t TakeEye(Z_VID_PROPS &p, int32_t eye) {
    if ((p.e3DFormat & kTwoEyes) == 0) return 0;
    if ((p.e3DFormat & eZ3D_SideBySide) != 0) p.nWidth /= 2;
    if ((p.e3DFormat & eZ3D_TopAndBottom) != 0) p.nHeight /= 2;
    const bool beside = (p.e3DFormat & eZ3D_SideBySide) != 0;
    const int64_t other = beside ? p.nRowBytes / 2 : std::llabs(int64_t{p.nHeight}) * p.nRowBytes;
    p.eVideoFormat = eZVF_Custom;
    p.e3DFormat = eZ3D_None;
    return eye >= 1 ? other : 0;
}

EngineTarget Moved(const EngineTarget &t, int64_t bytes, const Z_VID_PROPS *props) {
    const auto move = [bytes](uint8_t *p) { return p != nullptr ? p + bytes : nullptr; };
    EngineTarget moved = t;
    moved.dst = move(t.dst);
    moved.first = move(t.first);
    moved.second = move(t.second);
    moved.bytes = t.bytes - bytes;
    moved.props = props;
    return moved;
}

HRESULT Scale(FieldConverter *ctx, const EngineSource &source, const EngineTarget &target, int32_t value) {
    const ScalingQuality quality = QualityDecode(value);
    const Z_VID_PROPS &sp = *source.props;
    const Z_VID_PROPS &tp = *target.props;
    const bool fields = FieldOrderSign(&sp) != 0 && FieldOrderSign(&tp) != 0;
    if (std::llabs(int64_t{sp.nHeight}) > std::llabs(int64_t{tp.nHeight}) && quality.nCode >= kFieldCodes && fields)
        return ConvertFrame3(ctx, source, target, quality.nCode);
    if (!quality.bHighQuality) return ConvertFrame2(ctx, source, target, quality.nCode);
    return ConvertFrame3(ctx, source, target, quality.nCode >= kFieldCodes ? quality.nCode : 4);
}

HRESULT ConvertEye(FieldConverter *ctx, const EngineSource &source, const EngineTarget &target, int32_t quality, int32_t eye) {
    Z_VID_PROPS sp = *source.props;
    Z_VID_PROPS tp = *target.props;
    int64_t from = TakeEye(sp, eye);
    const int64_t to = TakeEye(tp, eye);
    if (FAILED(CheckSize(sp)) || FAILED(CheckSize(tp))) return E_UNEXPECTED;
    if (!MemoryHolds(sp, source.bytes - from) || !MemoryHolds(tp, target.bytes - to)) return kVfwEInvalidMediaType;
    const EngineTarget half = Moved(target, to, &tp);
    const LineUp lines = LineUpHeights(sp, tp, LineUpKind::kNtsc);
    LinesBlacken(lines, tp, half.dst, half.bytes);
    LinesBlacken(lines, tp, half.first, half.bytes);
    LinesBlacken(lines, tp, half.second, half.bytes);
    from += lines.nSourceStart;
    return Scale(ctx, {source.p + from, source.bytes - from, &sp}, Moved(half, lines.nTargetStart, &tp), quality);
}

bool Missing(const FieldConverter *ctx, const EngineSource &source, const EngineTarget &target) {
    return ctx == nullptr || source.p == nullptr || source.props == nullptr || target.props == nullptr ||
           (target.dst == nullptr && target.first == nullptr && target.second == nullptr);
}

}    // namespace

HRESULT RecordComplete(Z_VID_PROPS &props) {
    int64_t offset = 0;
    const HRESULT hr = NormaliseRecord(&props, &offset, nullptr);
    if (hr != S_OK) return hr;
    props.nRowBytes = static_cast<int32_t>(std::min<int64_t>(std::llabs(int64_t{props.nRowBytes}), INT32_MAX));
    return CheckSize(props);
}

bool MemoryHolds(const Z_VID_PROPS &props, int64_t bytes) { return bytes > 0 && VideoBytesNeeded(props) <= bytes; }

HRESULT ConvertBits(FieldConverter *ctx, const EngineSource &source, const EngineTarget &target, int32_t quality, int32_t eye) {
    if (Missing(ctx, source, target)) return E_POINTER;
    Z_VID_PROPS sp = *source.props;
    Z_VID_PROPS tp = *target.props;
    HRESULT hr = RecordComplete(sp);
    if (hr == S_OK) hr = RecordComplete(tp);
    if (hr != S_OK) return hr;
    // Half a row or half a frame of luma says nothing about where the chroma of a half is.
    if (IsPlanarFormat(sp.fccType) || IsPlanarFormat(tp.fccType)) sp.e3DFormat = tp.e3DFormat = eZ3D_None;
    const EngineSource from = {source.p, source.bytes, &sp};
    const EngineTarget to = Moved(target, 0, &tp);
    if (eye != -1 || (tp.e3DFormat & kTwoEyes) == 0) return ConvertEye(ctx, from, to, quality, eye);
    hr = ConvertEye(ctx, from, to, quality, 0);
    return FAILED(hr) ? hr : ConvertEye(ctx, from, to, quality, 1);
}

HRESULT ConvertBitsScaled(FieldConverter *ctx, const EngineSource &source, uint8_t *dst, int64_t dstBytes,
                          const Z_VID_PROPS *target, int32_t quality) {
    const EngineTarget to = {dst, nullptr, nullptr, dstBytes, target};
    if (Missing(ctx, source, to)) return E_POINTER;
    if (FAILED(CheckSize(*source.props)) || FAILED(CheckSize(*target))) return E_UNEXPECTED;
    return Scale(ctx, source, to, quality);
}

}    // namespace zck
