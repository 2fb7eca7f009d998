#include "keyobject/working_image.h"

#include <cstring>

#include "keying/kernels/kernels.h"
#include "platform/status.h"

namespace zck {
namespace {

eZFCC TagOf(KeySpace space) {
    if (space == KeySpace::Rgb) return eZFCC_ARGB32;
    return space == KeySpace::Hls ? eZFCC_Default : eZFCC_YUY2;
}

}    // namespace

HRESULT WorkingImage::Build(KeySpace space, IZFrame *view, uint64_t serial) {
    if (view == nullptr) return kVfwEWrongState;
    if (m_valid && space == m_space && serial == m_serial) return S_OK;
    PictureView picture;
    HRESULT hr = PictureViewOf(view, &picture);
    if (SUCCEEDED(hr)) hr = m_buffer.Reserve(static_cast<uint32_t>(picture.rows * picture.rowBytes));
    if (FAILED(hr)) {
        m_valid = false;
        return hr;
    }
    m_props = picture.props;
    m_props.fccType = TagOf(space);
    m_rows = picture.rows;
    m_space = space;
    m_serial = serial;
    Fill(picture);
    m_valid = true;
    return S_OK;
}

void WorkingImage::Fill(const PictureView &view) {
    const KeyingKernels &kernels = KeyingKernelsGet();
    const auto pixelBytes = static_cast<size_t>(Width()) * 4;
    for (int64_t y = 0; y < m_rows; ++y) {
        uint8_t *row = Row(y);
        std::memcpy(row, view.pixels + y * view.rowBytes, pixelBytes);
        std::memset(row + pixelBytes, 0, static_cast<size_t>(RowBytes()) - pixelBytes);
        if (m_space == KeySpace::Hls) kernels.to_hls(row, row, Width());
        if (m_space == KeySpace::Yuv) kernels.to_yuv(row, row, Width());
    }
}

}    // namespace zck
