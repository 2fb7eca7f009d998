#include "imaging/colour/row_order.h"

#include <algorithm>
#include <cstdlib>
#include <limits>

#include "frames/media/pixel_format.h"
#include "frames/media/video_props.h"

namespace zck {
namespace {

// A picture of one line would grow to its format's height, past its memory.
void UpdateKeepingOneLine(Z_VID_PROPS &p) {
    const int32_t height = p.nHeight;
    const bool oneLine = (height == 1 || height == -1) && p.nRowBytes != 0;
    VideoPropsUpdate(&p, false);
    if (oneLine) p.nHeight = height;
}

int32_t Smaller(int32_t a, int64_t b) {
    const auto n =
        static_cast<int32_t>(std::clamp<int64_t>(b, std::numeric_limits<int32_t>::min(), std::numeric_limits<int32_t>::max()));
    return a >= 1 ? std::min(a, n) : n;
}

template <class Byte>
HRESULT Normalise(Byte **p, Z_VID_PROPS *props, ROI *size) {
    if (p == nullptr || *p == nullptr) return E_POINTER;
    int64_t offset = 0;
    const HRESULT hr = NormaliseRecord(props, &offset, size);
    if (hr == S_OK) *p += offset;
    return hr;
}

}    // namespace

HRESULT NormaliseRecord(Z_VID_PROPS *props, int64_t *offset, ROI *size) {
    if (props == nullptr || offset == nullptr) return E_POINTER;
    *offset = 0;
    UpdateKeepingOneLine(*props);
    if (props->nRowBytes == 0) return E_UNEXPECTED;
    if (IsRgbFormat(props->fccType) && props->nHeight >= 1) {
        // A disabled format comes through the update with whatever row bytes it had.
        const int64_t row = std::llabs(int64_t{props->nRowBytes});
        *offset = row * (int64_t{props->nHeight} - 1);
        props->nRowBytes = static_cast<int32_t>(-row);
    }
    if (size != nullptr) {
        size->width = Smaller(size->width, props->nWidth);
        size->height = Smaller(size->height, std::llabs(int64_t{props->nHeight}));
    }
    return S_OK;
}

HRESULT NormaliseRowOrder(uint8_t **p, Z_VID_PROPS *props, ROI *size) { return Normalise(p, props, size); }
HRESULT NormaliseRowOrder(const uint8_t **p, Z_VID_PROPS *props, ROI *size) { return Normalise(p, props, size); }

}    // namespace zck
