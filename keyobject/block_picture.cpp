#include "keyobject/block_picture.h"

#include <cstring>

#include "keying/spill/spill_colour.h"

namespace zck {
namespace {

KeyBytes FromHls(const uint8_t *pixel) {
    const KeyBytes rgb = HlsToRgb({{pixel[0], pixel[1], pixel[2]}});
    return {{rgb.b[2], rgb.b[1], rgb.b[0]}};
}

// The space has red and blue exchanged, and so they come back in the order of memory.
KeyBytes FromYuv(const uint8_t *pixel) { return YuvToRgb({{pixel[0], pixel[1], pixel[2]}}); }

/// Converts a row in place. Painted blocks are one colour, so a neighbour's result is often at hand.
template <class Convert>
void ConvertRow(uint8_t *row, int32_t width, Convert convert) {
    uint8_t last[3] = {};
    KeyBytes result = convert(last);
    for (int32_t x = 0; x < width; ++x, row += 4) {
        if (std::memcmp(row, last, 3) != 0) {
            std::memcpy(last, row, 3);
            result = convert(last);
        }
        std::memcpy(row, result.b, 3);
    }
}

}    // namespace

HRESULT BlockPicture(IZFrames *factory, const WorkingImage &image, ComPtr<IZFrame> *result) {
    Z_VID_PROPS props = image.Props();
    props.fccType = eZFCC_RGB32;
    // A standard format would make a one-line picture as high as its own.
    if (image.Rows() == 1) props.eVideoFormat = eZVF_Custom;
    ComPtr<IZFrame> frame;
    HRESULT hr = factory->FrameCreateFromProps(&props, reinterpret_cast<int64_t>(image.Row(0)), frame.Put(), nullptr);
    PictureView view;
    if (SUCCEEDED(hr)) hr = PictureViewOf(frame.get(), &view);
    if (FAILED(hr)) return hr;
    for (int64_t y = 0; y < view.rows; ++y) {
        uint8_t *row = view.pixels + y * view.rowBytes;
        if (image.Space() == KeySpace::Hls) ConvertRow(row, image.Width(), FromHls);
        if (image.Space() == KeySpace::Yuv) ConvertRow(row, image.Width(), FromYuv);
    }
    *result = std::move(frame);
    return S_OK;
}

}    // namespace zck
