#include "keying/spill/rgb_row.h"

#include "frames/media/pixel_format.h"

namespace zck {

HRESULT SpillRgbRow::Prepare(eZFCC fcc, int32_t width) {
    Z_VID_PROPS rgb = {};
    rgb.fccType = fcc;
    rgb.nWidth = width;
    rgb.nHeight = -1;
    rgb.nRowBytes = RowBytes(fcc, width);
    rgb.eInterlace = eZI_Progressive;
    Z_VID_PROPS yuv = rgb;
    yuv.fccType = eZFCC_YUY2;
    yuv.nHeight = 1;
    yuv.nRowBytes = RowBytes(eZFCC_YUY2, width);
    const HRESULT hr = m_into.Prepare(&rgb, &yuv);
    return SUCCEEDED(hr) ? m_back.Prepare(&yuv, &rgb) : hr;
}

}    // namespace zck
