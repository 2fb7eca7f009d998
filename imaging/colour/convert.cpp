#include "imaging/colour/convert.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <limits>

#include "frames/media/pixel_format.h"
#include "frames/media/video_props.h"
#include "imaging/colour/row_order.h"
#include "platform/status.h"

namespace zck {
namespace {

bool HasSize(const Z_VID_PROPS &p) { return p.nWidth >= 1 && p.nHeight != 0; }

// The memory of whole rows; more than a frame can have is refused as if there were none.
int64_t BytesOfRecord(const Z_VID_PROPS &p) {
    const int64_t bytes = std::llabs(int64_t{p.nHeight}) * std::llabs(int64_t{p.nRowBytes});
    return bytes <= std::numeric_limits<int32_t>::max() ? bytes : 0;
}

// Only a record that no update completes (a disabled format) can run backwards from the start of its memory.
bool RunsBackwards(const Z_VID_PROPS &p) { return p.nRowBytes < 0 && !(IsRgbFormat(p.fccType) && p.nHeight >= 1); }

bool Fits(const Z_VID_PROPS &p, int64_t bytes) { return !RunsBackwards(p) && VideoBytesNeeded(p) <= bytes; }

}    // namespace

HRESULT ConvertPlan::Prepare(const Z_VID_PROPS *sp, const Z_VID_PROPS *tp) { return PrepareBoth(sp, nullptr, tp, nullptr); }

HRESULT ConvertPlan::Prepare(const Z_VID_PROPS *sp, int64_t srcBytes, const Z_VID_PROPS *tp, int64_t dstBytes) {
    return PrepareBoth(sp, &srcBytes, tp, &dstBytes);
}

HRESULT ConvertPlan::PrepareBoth(const Z_VID_PROPS *sp, const int64_t *srcBytes, const Z_VID_PROPS *tp,
                                 const int64_t *dstBytes) {
    *this = ConvertPlan();
    if (sp == nullptr || tp == nullptr) return E_POINTER;
    Z_VID_PROPS s = *sp;
    Z_VID_PROPS t = *tp;
    ROI size = {0, 0};
    HRESULT hr = NormaliseRecord(&s, &m_source.offset, &size);
    if (hr == S_OK) hr = NormaliseRecord(&t, &m_target.offset, &size);
    if (hr != S_OK) return hr;
    // A record without size would take that of the other image.
    if (!HasSize(s) || !HasSize(t)) return E_UNEXPECTED;
    m_pRoute = ConvertRouteFind(s.fccType, t.fccType);
    if (m_pRoute == nullptr) return kVfwEInvalidSubtype;
    m_source.bytes = srcBytes != nullptr ? *srcBytes : BytesOfRecord(s);
    m_target.bytes = dstBytes != nullptr ? *dstBytes : BytesOfRecord(t);
    if (!Fits(s, m_source.bytes) || !Fits(t, m_target.bytes)) return kVfwEInvalidMediaType;
    m_source.step = s.nRowBytes;
    m_target.step = t.nRowBytes;
    m_nWidth = size.width;
    m_nRows = size.height;
    const int64_t reach = ConvertRouteReach(s.fccType, t.fccType, m_nWidth);
    m_bIndependent = m_pRoute->routine != nullptr && (m_nRows == 1 || reach <= std::llabs(m_target.step));
    PrepareFieldOrder(*sp, *tp);
    return S_OK;
}

// A bottom-up RGB target turns the direction of the move.
void ConvertPlan::PrepareFieldOrder(const Z_VID_PROPS &sp, const Z_VID_PROPS &tp) {
    const int32_t from = FieldOrderSign(&sp);
    const int32_t to = FieldOrderSign(&tp);
    if (from == 0 || to == 0 || from == to || m_nRows < 2) return;
    const int32_t sign = IsRgbFormat(tp.fccType) && tp.nHeight > 0 ? -1 : 1;
    if ((from - to) * sign < 0) {
        m_nRepeatFrom = TargetOffset(1);
        m_nRepeatTo = TargetOffset(0);
        m_target.offset = TargetOffset(1);
    } else {
        m_nRepeatFrom = TargetOffset(m_nRows - 2);
        m_nRepeatTo = TargetOffset(m_nRows - 1);
        m_source.offset = SourceOffset(1);
    }
    --m_nRows;
    m_bIndependent = false;
}

// The whole row with its padding, as far as the memory goes.
void ConvertPlan::RepeatRow(uint8_t *dst) const {
    if (m_nRepeatTo < 0) return;
    const int64_t room = m_target.bytes - std::max(m_nRepeatFrom, m_nRepeatTo);
    const int64_t bytes = std::min<int64_t>(std::llabs(m_target.step), room);
    std::memcpy(dst + m_nRepeatTo, dst + m_nRepeatFrom, static_cast<size_t>(bytes));
}

void ConvertPlan::RunRow(const uint8_t *src, int32_t y, uint8_t *row, int64_t room) const {
    if (m_pRoute == nullptr || m_pRoute->routine == nullptr || y < 0 || y >= m_nRows) return;
    m_pRoute->routine({src + SourceOffset(y), src + m_source.bytes, row, row + room, m_nWidth});
}

void ConvertPlan::RunRows(const uint8_t *src, uint8_t *dst, int32_t y0, int32_t y1) const {
    for (int32_t y = std::max(y0, 0); y < std::min(y1, m_nRows); ++y)
        RunRow(src, y, dst + TargetOffset(y), std::min(m_target.bytes - TargetOffset(y), m_nRowRoom));
}

HRESULT ConvertPlan::Run(const uint8_t *src, uint8_t *dst) const {
    if (src == nullptr || dst == nullptr) return E_POINTER;
    RunRows(src, dst, 0, m_nRows);
    // Also when nothing was converted: the repair does not ask how the conversion went.
    RepeatRow(dst);
    return m_pRoute != nullptr && m_pRoute->routine != nullptr ? S_OK : E_FAIL;
}

HRESULT ConvertSameGeometry(const uint8_t *src, uint8_t *dst, const Z_VID_PROPS *sp, const Z_VID_PROPS *tp) {
    if (src == nullptr || dst == nullptr) return E_POINTER;
    ConvertPlan plan;
    const HRESULT hr = plan.Prepare(sp, tp);
    return hr == S_OK ? plan.Run(src, dst) : hr;
}

HRESULT ConvertSameGeometry(const uint8_t *src, int64_t srcBytes, uint8_t *dst, int64_t dstBytes, const Z_VID_PROPS *sp,
                            const Z_VID_PROPS *tp) {
    if (src == nullptr || dst == nullptr) return E_POINTER;
    ConvertPlan plan;
    const HRESULT hr = plan.Prepare(sp, srcBytes, tp, dstBytes);
    return hr == S_OK ? plan.Run(src, dst) : hr;
}

}    // namespace zck
