#include "imaging/mix/overlay_mask.h"

#include <cstring>
#include <vector>

#include "frames/media/pixel_format.h"
#include "frames/media/row_count.h"
#include "imaging/primitives/planar.h"
#include "imaging/primitives/row_kernels.h"
#include "imaging/scale/resizer.h"
#include "platform/status.h"

namespace zck {
namespace {

int32_t Rows(const Z_VID_PROPS &props) { return static_cast<int32_t>(RowCount(props.nHeight)); }

// One row of opacities.
class MaskRow {
public:
    MaskRow(eZFCC fcc, int32_t width) : m_fcc(fcc), m_width(width), m_rest(static_cast<size_t>(width) * 2 + 2) {}

    void Make(uint8_t *dst, const uint8_t *src) {
        const PrimitiveKernels &k = PrimitiveKernelsGet();
        uint8_t *const cb = m_rest.data();
        uint8_t *const cr = cb + m_width + 1;
        if (m_fcc == eZFCC_ARGB32)
            k.get_channel(dst, src + 3, m_width);
        else if (m_fcc == eZFCC_RGB32)
            RowBgraToPlanes422(dst, cb, cr, src, m_width);
        else if (m_fcc == eZFCC_RGB24)
            RowBgrToPlanes422(dst, cb, cr, src, m_width);
        else if (PlainFormat(m_fcc) == eZFCC_UYVY)
            k.split_uyvy(dst, cb, cr, src, m_width);
        else if (Is422Format(m_fcc))
            k.split_yuy2(dst, cb, cr, src, m_width);
        else
            std::memcpy(dst, src, static_cast<size_t>(m_width));
    }

private:
    const eZFCC m_fcc;
    const int32_t m_width;
    std::vector<uint8_t> m_rest;    // chroma, which nobody asks for
};

}    // namespace

Z_VID_PROPS MaskRecord(const Z_VID_PROPS &picture) {
    Z_VID_PROPS mask = {};
    mask.fccType = eZFCC_RGB8;
    mask.nWidth = IsRgbFormat(picture.fccType) ? picture.nWidth : picture.nWidth & ~1;
    mask.nHeight = Rows(picture);
    mask.nRowBytes = (mask.nWidth + 7) & ~7;
    return mask;
}

bool MaskUsable(MixOverlay &mask) {
    return mask.p != nullptr && mask.props.fccType == eZFCC_RGB8 && MixRecordComplete(mask.props, mask.bytes) == S_OK;
}

HRESULT MaskFromPicture(const MixOverlay &picture, uint8_t *mask) {
    const Z_VID_PROPS record = MaskRecord(picture.props);
    const FormatRow *const format = FormatFind(picture.props.fccType);
    const bool plain = picture.props.fccType == eZFCC_RGB8;
    if (format == nullptr || (format->pixels == PixelClass::None && !plain)) return E_INVALIDARG;
    ConstPicture rows;
    if (!PictureMake(picture.props, picture.p, picture.bytes, &rows)) return kVfwEInvalidMediaType;
    MaskRow row(picture.props.fccType, record.nWidth);
    for (int64_t y = 0; y < record.nHeight; ++y) row.Make(mask + y * record.nRowBytes, rows.Row(y));
    return S_OK;
}

HRESULT MaskScale(const MixOverlay &mask, const Z_VID_PROPS &record, uint8_t *scaled) {
    Resizer resizer;
    const ResizeShape shape = {{mask.props.nWidth, Rows(mask.props)}, {record.nWidth, Rows(record)}, 1, kResizeLinear};
    const int32_t status = ResizeImage(&resizer, shape, mask.p, mask.props.nRowBytes, scaled, record.nRowBytes);
    if (status == kPrimitiveNoMemory) return E_OUTOFMEMORY;
    return status == kPrimitiveOk ? S_OK : E_FAIL;
}

}    // namespace zck
