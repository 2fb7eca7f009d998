// An interlaced picture as two pictures, for the stages that treat fields apart.
#pragma once

#include <limits>

#include "frames/media/video_props.h"
#include "keying/pipeline/pipeline.h"

namespace zck {

/// Calls `image(pixels, alpha, props, key, bounds)` for the upper field and then for the lower one, both also after a failure;
/// `key` is told to be progressive. The first failure, or else the second status. `E_INVALIDARG` for rows too far apart.
template <class Image>
HRESULT ByFields(uint8_t *pixels, uint8_t *alpha, const Z_VID_PROPS &props, CHROMA_KEY_RAW key, const KeyBounds &bounds,
                 const Image &image) {
    if (props.nRowBytes > std::numeric_limits<int32_t>::max() / 2) return E_INVALIDARG;
    Z_VID_PROPS field = props;
    field.nRowBytes *= 2;
    field.nHeight /= 2;    // an odd last line belongs to no field
    key.nInterlacedVideo = 0;
    const HRESULT first = image(pixels, alpha, &field, &key, bounds);
    // A picture of one line has no second field.
    if (field.nHeight == 0) return first;
    KeyBounds lower = bounds;
    lower.pixelBytes -= props.nRowBytes;
    lower.alphaBytes -= AlphaStride(props);
    const HRESULT second = image(pixels + props.nRowBytes, alpha + AlphaStride(props), &field, &key, lower);
    return FAILED(first) ? first : second;
}

}    // namespace zck
