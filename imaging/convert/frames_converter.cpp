#include "imaging/convert/frames_converter.h"

#include <algorithm>
#include <cstring>
#include <mutex>

#include "frames/media/video_props.h"
#include "imaging/convert/convert_bits.h"
#include "imaging/convert/field_step.h"
#include "imaging/convert/quality.h"
#include "platform/status.h"

namespace zck {
namespace {

// By one line in memory: up for a target whose first field comes first.
void MoveLine(const EngineTarget &target, const Z_VID_PROPS &props) {
    const int64_t row = props.nRowBytes;
    const int64_t rest = std::min<int64_t>(FrameBufferSize(&props), target.bytes) - row;
    if (rest <= 0) return;
    const bool up = FieldOrderSign(&props) > 0;
    std::memmove(target.dst + (up ? 0 : row), target.dst + (up ? row : 0), static_cast<size_t>(rest));
}

}    // namespace

HRESULT FramesConverter::Convert(const EngineSource &source, const EngineTarget &target, FieldMode mode,
                                 int32_t quality) noexcept {
    if (source.props == nullptr || target.props == nullptr) return E_POINTER;
    return Guarded([&] {
        Z_VID_PROPS sp = *source.props;
        Z_VID_PROPS tp = *target.props;
        HRESULT hr = RecordComplete(sp);
        if (hr == S_OK) hr = RecordComplete(tp);
        if (hr != S_OK) return hr;
        // What the records say themselves; a standard that is only found by the size does not cut a picture into fields.
        const int32_t from = FieldOrderSign(source.props);
        const int32_t to = FieldOrderSign(target.props);
        if (target.props->eInterlace == eZI_Progressive && from != 0) mode = FieldMode::kFirst;
        const bool apart = FieldStandsAlone(sp, tp) && FieldStandsAlone(tp, tp);
        const bool both = mode == FieldMode::kBoth && from != 0 && !QualityDecode(quality).bHighQuality && apart;
        const std::lock_guard lock(m_cs);
        FieldStep step;
        hr = step.Prepare(source, target, mode, both, quality);
        if (hr != S_OK) return hr;
        if (!both) return Whole(step);
        hr = BothFields(step);
        if (SUCCEEDED(hr) && from != 0 && to != 0 && from != to) MoveLine(target, tp);
        return hr;
    });
}

HRESULT FramesConverter::Rotate(const EngineSource &source, const EngineTarget &target, bool bLeft, bool bInterlaced) noexcept {
    return Guarded([&] {
        const std::lock_guard lock(m_cs);
        return RotateBits(&m_rotate, source.p, source.bytes, target.dst, target.bytes, source.props, target.props, bLeft,
                          bInterlaced);
    });
}

HRESULT FramesConverter::Whole(const FieldStep &step) noexcept {
    if (m_pPool->ThreadCount() > 0) m_field[0].pool = m_pPool.get();
    const HRESULT hr = step.RunPicture(m_field);
    m_field[0].pool = nullptr;
    return hr;
}

HRESULT FramesConverter::BothFields(const FieldStep &step) noexcept {
    return m_pPool->Run(2, [&](int32_t field) { return step.RunField(m_field, field); });
}

}    // namespace zck
