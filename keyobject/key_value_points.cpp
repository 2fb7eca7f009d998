// Picks: a pixel of the reference frame that is added to the key, or excluded from it.
#include <algorithm>

#include "keyobject/key_options.h"
#include "keyobject/key_value.h"

namespace zck {
namespace {

constexpr double kPickDelta = 0.0392156862745098;    // 10 / 255
constexpr double kPickWeight = 50.0;

KeySpace SpaceOf(eCK_Type type) {
    if (type == eCKT_HLS) return KeySpace::Hls;
    return type == eCKT_YUV ? KeySpace::Yuv : KeySpace::Rgb;
}

/// The pixel at a place counted from the top. Width and height themselves count as places: x then means the first pixel of
/// the next row in memory, or of the last row its last pixel, and y the lowest row.
const uint8_t *PixelAt(const WorkingImage &image, int32_t x, int32_t y) {
    x = std::clamp(x, 0, image.Width());
    y = std::clamp(y, 0, image.Rows() - 1);
    int32_t row = image.Props().nHeight > 0 ? image.Rows() - 1 - y : y;
    if (x == image.Width()) {
        const bool last = row == image.Rows() - 1;
        x = last ? x - 1 : 0;
        row = last ? row : row + 1;
    }
    return image.Row(row) + int64_t{x} * 4;
}

KeyRange RangeOf(const uint8_t *pixel) {
    constexpr int32_t kBytes[4] = {2, 1, 0, 3};
    KeyRange range = {};
    for (int32_t i = 0; i < 4; ++i) {
        range.centre[i] = pixel[kBytes[i]] / 255.0;
        range.delta[i] = kPickDelta;
    }
    range.weight = kPickWeight;
    return range;
}

struct Pick {
    KeyRange range;
    bool force;
    int32_t maxKeys;
};

/// Makes room as the limits say: one slot free for a forced pick, always in the add set.
void LimitSets(KeyStep &step, const Pick &pick) {
    if (pick.force) {
        RangeSetLimit(step.addRanges, pick.maxKeys == INT32_MIN ? INT32_MIN : pick.maxKeys - 1);
        RangeSetLimit(step.addRanges, std::max(pick.maxKeys, 2));
    } else {
        RangeSetLimit(step.addRanges, pick.maxKeys);
    }
    RangeSetLimit(step.excludeRanges, pick.maxKeys);
}

RangeResult TakePick(KeyStep &step, KeyRangeSet &target, const Pick &pick) {
    LimitSets(step, pick);
    const RangeResult result = RangeSetAdd(target, pick.range, 0.0, false);
    if (!pick.force || result > RangeResult::Covered) return result;
    // The count of the add set, also for a pick that excludes.
    RangeSetLimit(target, step.addRanges.count + 1);
    return RangeSetAdd(target, pick.range, 0.0, false);
}

HRESULT AnswerOf(RangeResult result, bool force) {
    if (result == RangeResult::Refused) return force ? E_OUTOFMEMORY : E_INVALIDARG;
    return result == RangeResult::Covered ? S_FALSE : S_OK;
}

}    // namespace

HRESULT CCoZKeyValue::TakePoint(KeyRangeSet KeyStep::*target, int32_t x, int32_t y, BSTR text, IUnknown **out) {
    return Edit(out, [&]() -> HRESULT {
        KeyOptions options(m_props);
        HRESULT hr = options.Parse(text);
        if (FAILED(hr)) return hr;
        const FrameSet frames = m_frames.Now();
        const KeySpace space = options.Space(ZCK_TEXT("type"), {}).value_or(SpaceOf(StepNow().key.eType));
        hr = m_work.Build(space, frames.keyingArgb.get(), frames.keyingSerial);
        if (FAILED(hr)) return hr;

        const Pick pick{RangeOf(PixelAt(m_work, x, y)), options.Bool(ZCK_TEXT("force_point"), false),
                        options.Int(ZCK_TEXT("max_keys"), ZCK_TEXT("max_keys"), 0)};
        KeyStep step = StepNow();
        m_history.Save(step);
        const RangeResult result = TakePick(step, step.*target, pick);
        StepRebuild(step, space);
        StepPut(step);
        hr = Render(out);
        return FAILED(hr) ? hr : AnswerOf(result, pick.force);
    });
}

HRESULT CCoZKeyValue::KeyAddPoint(int32_t _nXPosPixels, int32_t _nYPosPixels, BSTR _bsProps, IUnknown **_ppZFrameRes) {
    return TakePoint(&KeyStep::addRanges, _nXPosPixels, _nYPosPixels, _bsProps, _ppZFrameRes);
}

HRESULT CCoZKeyValue::KeyExcludePoint(int32_t _nXPosPixels, int32_t _nYPosPixels, BSTR _bsProps, IUnknown **_ppZFrameRes) {
    return TakePoint(&KeyStep::excludeRanges, _nXPosPixels, _nYPosPixels, _bsProps, _ppZFrameRes);
}

// Edits nothing: hosts get the preview of the key as it is.
HRESULT CCoZKeyValue::KeyAddRect(int32_t, int32_t, int32_t, int32_t, BSTR, IUnknown **_ppZFrameRes) {
    return Edit(_ppZFrameRes, [&] { return Render(_ppZFrameRes); });
}

}    // namespace zck
