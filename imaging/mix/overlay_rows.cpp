#include "imaging/mix/overlay_rows.h"

#include <algorithm>

#include "frames/media/pixel_format.h"
#include "frames/media/row_count.h"
#include "frames/media/video_props.h"
#include "imaging/colour/color_convert.h"
#include "imaging/colour/image_layout.h"
#include "imaging/mix/one_size.h"
#include "platform/status.h"

namespace zck {
namespace {

// A bottom-up picture counts its rows from the end of the memory.
int64_t RowFromTop(const Z_VID_PROPS &props, int64_t y) {
    return IsRgbFormat(props.fccType) && props.nHeight > 0 ? props.nHeight - 1 - y : y;
}

int64_t BytesOf(const Z_VID_PROPS &props) {
    return IsPlanarFormat(props.fccType) ? FrameBufferSize(&props) : RowCount(props.nHeight) * props.nRowBytes;
}

}    // namespace

HRESULT OverlayRows::Convert(eZFCC fcc, bool bBottomUp) {
    const int64_t rows = RowCount(m_source.props.nHeight);
    Z_VID_PROPS target = m_source.props;
    target.fccType = fcc;
    target.nHeight = static_cast<int32_t>(IsRgbFormat(fcc) && !bBottomUp ? -rows : rows);
    target.nRowBytes = RowBytes(fcc, target.nWidth);
    m_image.props = target;
    m_image.p = nullptr;
    m_image.bytes = BytesOf(target);
    HRESULT hr = m_plan.Prepare(&m_source.props, m_source.bytes, &target, m_image.bytes);
    const bool packed = !IsPlanarFormat(fcc) && ColorConvertServes(m_source.props.fccType, fcc);
    m_way = hr == S_OK && m_plan.RowsIndependent() ? Way::ByRoute
            : hr == kVfwEInvalidSubtype && packed  ? Way::ByPlanes
                                                   : Way::AtOnce;
    if (m_way == Way::AtOnce && hr != S_OK && hr != kVfwEInvalidSubtype) return hr;
    const int64_t size = m_way == Way::AtOnce ? m_image.bytes : target.nRowBytes;
    if (size < 1 || size > INT32_MAX) return kVfwEInvalidMediaType;
    m_scratch.resize(static_cast<size_t>(size));
    if (m_way == Way::ByRoute) return S_OK;
    if (m_way == Way::ByPlanes) return PreparePlanes();
    m_image.p = m_scratch.data();
    hr = ConvertAtOneSize({m_source.p, m_source.bytes, &m_source.props}, m_scratch.data(), m_image.bytes, target);
    return hr;
}

// A target whose rows all lie in the same place.
HRESULT OverlayRows::PreparePlanes() {
    const Z_VID_PROPS &s = m_source.props;
    const Z_VID_PROPS &t = m_image.props;
    ImageLayout from;
    ImageLayout to;
    if (!ImageLayoutMake(s.fccType, s.nWidth, s.nHeight, s.nRowBytes, &from) || from.bytes > m_source.bytes)
        return kVfwEInvalidMediaType;
    if (!ImageLayoutMake(t.fccType, t.nWidth, t.nHeight, t.nRowBytes, &to)) return kVfwEInvalidMediaType;
    ScaleImage target = ScaleImageMake(m_scratch.data(), to);
    target.plane[0] = m_scratch.data();
    target.step[0] = 0;
    return m_planes.Prepare(ScaleImageMake(m_source.p, from), target, kResizeLinear, kResizeLinear);
}

bool OverlayRows::Narrow(const tagRECT &rect) {
    m_view = m_image.props;
    const int64_t offset = SubRectView(m_view, rect);
    const int64_t rowBytes = m_image.props.nRowBytes;
    m_nFirstRow = offset / rowBytes;
    m_nLeft = offset % rowBytes * 8 / std::max(PixelBits(m_image.props.fccType), 1);
    return m_view.nWidth > 0 && m_view.nHeight != 0;
}

int32_t OverlayRows::Rows() const { return static_cast<int32_t>(RowCount(m_view.nHeight)); }

int64_t OverlayRows::MemoryRow(int32_t y) const {
    const bool bottomUp = IsRgbFormat(m_view.fccType) && m_view.nHeight > 0;
    return m_nFirstRow + (bottomUp ? Rows() - 1 - y : y);
}

const uint8_t *OverlayRows::Row(int32_t y) {
    const int64_t row = MemoryRow(y);
    const int64_t column = m_nLeft * PixelBits(m_view.fccType) / 8;
    if (m_image.p != nullptr) return m_image.p + row * m_image.props.nRowBytes + column;
    const auto top = static_cast<int32_t>(RowFromTop(m_image.props, row));
    if (m_way == Way::ByPlanes)
        m_planes.Run(top, top + 1);
    else
        m_plan.RunRow(m_source.p, top, m_scratch.data(), m_image.props.nRowBytes);
    return m_scratch.data() + column;
}

const uint8_t *OverlayRows::SourceRow32(int32_t y) const {
    const int64_t row = RowFromTop(m_source.props, RowFromTop(m_image.props, MemoryRow(y)));
    return m_source.p + row * m_source.props.nRowBytes + 4 * m_nLeft;
}

}    // namespace zck
