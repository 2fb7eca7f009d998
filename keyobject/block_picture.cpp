#include "keyobject/block_picture.h"

#include <cstring>
#include <vector>

#include "keying/kernels/kernels.h"
#include "keying/spill/spill_colour.h"

namespace zck {
namespace {

KeyBytes FromHls(const uint8_t *pixel) {
    const KeyBytes rgb = HlsToRgb({{pixel[0], pixel[1], pixel[2]}});
    return {{rgb.b[2], rgb.b[1], rgb.b[0]}};
}

/// Converts rows in place. Few of the colours that there could be are in a picture, and most come again: what was converted is
/// kept, in a table with one place for many colours.
class HlsConverter {
public:
    HlsConverter() : m_places(kPlaces) {}

    void Row(uint8_t *row, int32_t width) {
        for (int32_t x = 0; x < width; ++x, row += 4) {
            const uint32_t colour = row[0] | static_cast<uint32_t>(row[1]) << 8 | static_cast<uint32_t>(row[2]) << 16;
            Place &place = m_places[colour * 2654435761U >> (32 - kPlaceBits)];
            if (place.colour != colour) place = {colour, FromHls(row)};
            std::memcpy(row, place.result.b, 3);
        }
    }

private:
    static constexpr uint32_t kPlaceBits = 14;
    static constexpr size_t kPlaces = size_t{1} << kPlaceBits;
    struct Place {
        uint32_t colour = 0xFFFFFFFF;    // no colour
        KeyBytes result = {};
    };

    std::vector<Place> m_places;
};

void ConvertPicture(const PictureView &view, KeySpace space) {
    if (space == KeySpace::Rgb) return;
    const KeyingKernels &kernels = KeyingKernelsGet();
    HlsConverter hls;
    for (int64_t y = 0; y < view.rows; ++y) {
        uint8_t *row = view.pixels + y * view.rowBytes;
        // The YUV space has red and blue exchanged, and so they come back in the order of memory.
        if (space == KeySpace::Yuv) kernels.from_yuv(row, row, view.props.nWidth);
        if (space == KeySpace::Hls) hls.Row(row, view.props.nWidth);
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
    ConvertPicture(view, image.Space());
    *result = std::move(frame);
    return S_OK;
}

}    // namespace zck
