#include "keyobject/picture_view.h"

#include <cstdlib>

#include "frames/media/row_count.h"
#include "platform/status.h"

namespace zck {
namespace {

bool Is32BitRgb(eZFCC fcc) { return fcc == eZFCC_ARGB32 || fcc == eZFCC_RGB32; }

bool Suits(const PictureView &view) {
    const Z_VID_PROPS &props = view.props;
    if (view.pixels == nullptr || !Is32BitRgb(props.fccType) || props.nWidth < 1 || props.nHeight == 0) return false;
    const int64_t rows = RowCount(props.nHeight);
    const int64_t pixelBytes = int64_t{4} * props.nWidth;
    if (props.nRowBytes < pixelBytes || rows * props.nRowBytes > INT32_MAX) return false;
    return (rows - 1) * props.nRowBytes + pixelBytes <= view.bytes;
}

}    // namespace

HRESULT PictureViewOf(IZFrame *frame, PictureView *view) {
    *view = {};
    Z_AV_PROPS props = {};
    int32_t bytes = 0;
    int64_t address = 0;
    HRESULT hr = frame->FrameAVPropsGet(&props);
    if (SUCCEEDED(hr)) hr = frame->FrameVideoGetBytes(&bytes, &address);
    if (FAILED(hr)) return hr;
    view->props = props.vidProps;
    view->pixels = reinterpret_cast<uint8_t *>(address);
    view->bytes = bytes;
    if (!Suits(*view)) return kVfwEInvalidMediaType;
    view->rows = std::abs(view->props.nHeight);
    view->rowBytes = view->props.nRowBytes;
    return S_OK;
}

HRESULT CloneOf(IZFrame *frame, eZFrameClone type, eZFCC format, ComPtr<IZFrame> *clone) {
    const HRESULT hr = frame->FrameClone(clone->Put(), type, format);
    if (FAILED(hr)) {
        clone->Reset();
        return hr;
    }
    return *clone ? S_OK : E_UNEXPECTED;
}

}    // namespace zck
