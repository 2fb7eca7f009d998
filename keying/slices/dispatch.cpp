// One frame: check it, cut it into slices, wake the threads, wait, finish.
#include <limits>

#include "frames/media/video_props.h"
#include "keying/key/key.h"
#include "keying/pipeline/image_view.h"
#include "keying/pipeline/plan.h"
#include "keying/slices/finish_alpha.h"
#include "keying/slices/frame.h"
#include "keying/slices/slices.h"
#include "platform/status.h"

namespace zck {
namespace {

constexpr int64_t kAnyRow = std::numeric_limits<int64_t>::max();

int32_t RowCount(const Z_VID_PROPS &props) { return props.nHeight < 0 ? -props.nHeight : props.nHeight; }

HRESULT CheckFrame(const Z_VID_PROPS &props, int32_t slices, int64_t pixelBytes) {
    const HRESULT hr = CheckProps(props);
    if (FAILED(hr)) return hr;
    if (int64_t{props.nRowBytes} * slices > std::numeric_limits<int32_t>::max()) return E_INVALIDARG;
    return pixelBytes != 0 && pixelBytes < VideoBytesNeeded(props) ? E_INVALIDARG : S_OK;
}

HRESULT FetchAll(uint8_t *pixels, const Z_VID_PROPS &props, const RowSource *source) {
    if (source == nullptr) return S_OK;
    for (int32_t y = 0; y < RowCount(props); ++y) {
        const HRESULT hr = source->fetch(source->context, y, pixels + int64_t{y} * props.nRowBytes);
        if (FAILED(hr)) return hr;
    }
    return S_OK;
}

// Slices own their rows and nothing else; a single slice owns the plane.
KeyBounds SliceBounds(const Z_VID_PROPS &props, int64_t pixelBytes, int32_t index, int32_t count) {
    const int64_t stride = AlphaStride(props);
    const int64_t alphaBytes = stride * RowCount(props);
    const bool single = count == 1;
    return {pixelBytes - int64_t{index} * props.nRowBytes, alphaBytes - index * stride, single ? kAnyRow : props.nRowBytes,
            single ? kAnyRow : stride};
}

}    // namespace

HRESULT CSliceThreads::Dispatch(uint8_t *pixels, uint8_t *alpha, const Z_VID_PROPS *vidProps, const CHROMA_KEY_RAW *key,
                                bool bWriteAlpha, bool bReturnEarly, const RowSource *source, int64_t pixelBytes) {
    if (pixels == nullptr || alpha == nullptr || vidProps == nullptr || key == nullptr) return E_POINTER;
    Frame &frame = *m_frame;
    const Z_VID_PROPS props = *vidProps;
    const HRESULT sound = CheckFrame(props, m_count, pixelBytes);
    const bool keys = IsKeyingType(key->eType);
    if (FAILED(sound)) return keys ? sound : S_FALSE;
    if (pixelBytes == 0) pixelBytes = int64_t{RowCount(props)} * props.nRowBytes;

    frame.key = *key;
    frame.key.nKeysUsed = KeysUsed(*key);
    frame.key.nInterlacedVideo = FieldOrderSign(&props) != 0 ? 1 : 0;
    frame.bWriteAlpha = bWriteAlpha;
    const HRESULT fetched = FetchAll(pixels, props, source);
    if (FAILED(fetched)) return fetched;
    if (!keys) return S_FALSE;

    const int32_t n = m_count;
    frame.count = n;
    frame.props = props;
    frame.props.nRowBytes *= n;
    frame.props.nHeight /= n;
    frame.props.eInterlace = eZI_Progressive;
    if (frame.props.nHeight == 0) {
        // Fewer rows than slices: nothing is keyed.
        for (int32_t i = 0; i < n; ++i) m_status[static_cast<size_t>(i)] = S_OK;
        if (bReturnEarly) return S_FALSE;
        PremultiplyFrame(pixels, props, pixelBytes);
        return m_status[0] < 0 ? m_status[0] : m_status[1];
    }
    for (int32_t i = 0; i < n; ++i) {
        frame.slicePixels[i] = pixels + int64_t{i} * props.nRowBytes;
        frame.sliceAlpha[i] = alpha + int64_t{i} * AlphaStride(props);
        frame.sliceBounds[i] = SliceBounds(props, pixelBytes, i, n);
    }
    WakeAll();
    if (bReturnEarly) return S_FALSE;
    const HRESULT hr = WaitDone();
    if (FAILED(hr)) return hr;
    if (n > 1) {
        KeyBounds bounds = SliceBounds(props, pixelBytes, 0, n);
        FinishAlphaWithin(pixels, alpha, &props, &frame.key, bounds);
    }
    PremultiplyFrame(pixels, props, pixelBytes);
    return m_status[0] < 0 ? m_status[0] : m_status[1];
}

}    // namespace zck
