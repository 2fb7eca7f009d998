#include "imaging/colour/planar_plan.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "frames/media/pixel_format.h"
#include "imaging/colour/row_order.h"
#include "platform/status.h"

namespace zck {
namespace {

HRESULT Layout(const Z_VID_PROPS &props, int64_t bytes, ImageLayout *layout) {
    Z_VID_PROPS p = props;
    int64_t offset = 0;
    const HRESULT hr = NormaliseRecord(&p, &offset, nullptr);
    if (hr != S_OK) return hr;
    if (p.nWidth < 1 || p.nHeight == 0) return E_UNEXPECTED;
    const int64_t rowBytes = std::llabs(int64_t{p.nRowBytes});
    const bool fits = ImageLayoutMake(p.fccType, p.nWidth, p.nHeight, rowBytes, layout) && layout->bytes <= bytes;
    return fits ? S_OK : kVfwEInvalidMediaType;
}

}    // namespace

HRESULT PlanarPlan::Prepare(const Z_VID_PROPS *sp, int64_t srcBytes, const Z_VID_PROPS *tp, int64_t dstBytes) {
    *this = PlanarPlan();
    if (sp == nullptr || tp == nullptr) return E_POINTER;
    const FormatRow *from = FormatFind(sp->fccType);
    const bool served = from != nullptr && from->pixels != PixelClass::None && from->route == RouteClass::None;
    if (!served || !Is32BitFormat(tp->fccType)) return kVfwEInvalidSubtype;
    HRESULT hr = Layout(*sp, srcBytes, &m_source);
    if (hr == S_OK) hr = Layout(*tp, dstBytes, &m_target);
    if (hr != S_OK) return hr;
    m_nWidth = std::min(m_source.width, m_target.width);
    m_nRows = std::min(m_source.rows, m_target.rows);
    return S_OK;
}

void PlanarPlan::RunRows(const uint8_t *src, uint8_t *dst, int32_t y0, int32_t y1) const {
    const int32_t even = m_nWidth & ~1;
    const int32_t first = std::max(y0, 0);
    const int32_t rows = std::min(y1, m_nRows) - first;
    if (rows <= 0) return;
    for (int32_t y = first; y < first + rows; ++y) {
        if (even > 0) PictureConvert(src, m_source, dst, m_target, {0, y, 0, y, even, 1}, false);
        if (even == m_nWidth) continue;
        uint8_t *const row = dst + m_target.offset[0] + y * m_target.step[0];
        std::memset(row + int64_t{4} * even, 0, 4);
    }
}

}    // namespace zck
