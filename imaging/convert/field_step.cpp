#include "imaging/convert/field_step.h"

#include "frames/media/pixel_format.h"
#include "frames/media/record_view.h"
#include "frames/media/video_props.h"
#include "imaging/convert/convert_bits.h"
#include "imaging/convert/line_up.h"
#include "imaging/convert/quality.h"
#include "platform/status.h"

namespace zck {

bool FieldStandsAlone(const Z_VID_PROPS &picture, const Z_VID_PROPS &target) {
    if (IsPlanarFormat(picture.fccType)) return false;
    const bool twoEyes = (target.e3DFormat & (eZ3D_SideBySide | eZ3D_TopAndBottom)) != 0 && !IsPlanarFormat(target.fccType);
    return !twoEyes || (picture.e3DFormat & eZ3D_SideBySide) == 0;
}

HRESULT FieldStep::Prepare(const EngineSource &source, const EngineTarget &target, FieldMode mode, bool bothFields,
                           int32_t quality) {
    if (source.p == nullptr || source.props == nullptr || target.dst == nullptr || target.props == nullptr) return E_POINTER;
    m_source = *source.props;
    m_target = *target.props;
    HRESULT hr = RecordComplete(m_source);
    if (hr == S_OK) hr = RecordComplete(m_target);
    if (hr != S_OK) return hr;
    if (!MemoryHolds(m_source, source.bytes) || !MemoryHolds(m_target, target.bytes)) return kVfwEInvalidMediaType;
    const LineUp lines = LineUpHeights(m_source, m_target, LineUpKind::kNtscAndPal);
    LinesBlacken(lines, m_target, target.dst, target.bytes);
    m_src = source.p + lines.nSourceStart;
    m_srcBytes = source.bytes - lines.nSourceStart;
    m_dst = target.dst + lines.nTargetStart;
    m_dstBytes = target.bytes - lines.nTargetStart;
    m_mode = mode;
    m_quality = quality;
    m_source.eScaleType = FittingOf(m_source, m_target, bothFields || mode == FieldMode::kBoth);
    return S_OK;
}

// The field keeps its parity, which is another time in a target of the other order; the caller moves the picture then.
HRESULT FieldStep::RunField(FieldConverter *fields, int32_t field) const {
    const int32_t from = FieldOrderSign(&m_source);
    const int32_t to = FieldOrderSign(&m_target);
    Z_VID_PROPS sp = m_source;
    Z_VID_PROPS tp = m_target;
    const int64_t srcStart = FieldView(sp, field);
    if (from != 0 && to != 0 && from != to) field = 1 - field;
    const int64_t dstStart = FieldView(tp, field);
    const EngineTarget target = {m_dst + dstStart, nullptr, nullptr, m_dstBytes - dstStart, &tp, m_target.nRowBytes};
    return ConvertBits(&fields[field], {m_src + srcStart, m_srcBytes - srcStart, &sp}, target, m_quality, -1);
}

HRESULT FieldStep::RunPicture(FieldConverter *fields) const {
    if (m_mode == FieldMode::kBoth) return ConvertBits(&fields[0], Source(), Target(), m_quality, -1);
    if (QualityDecode(m_quality).bHighQuality)
        return ConvertBits(&fields[0], Source(), {nullptr, m_dst, nullptr, m_dstBytes, &m_target}, m_quality, -1);
    // The engine picks the rows.
    if (!FieldStandsAlone(m_source, m_target)) return ConvertBits(&fields[0], Source(), Target(), m_quality, -1);
    Z_VID_PROPS sp = m_source;
    const int64_t start = FieldView(sp, 0);
    return ConvertBits(&fields[0], {m_src + start, m_srcBytes - start, &sp}, Target(), m_quality, -1);
}

}    // namespace zck
