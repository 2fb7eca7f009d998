// One frame: check it, choose a way to key it, wake the threads, wait, finish.
#include <algorithm>
#include <cstring>
#include <limits>

#include "frames/media/row_count.h"
#include "frames/media/video_props.h"
#include "keying/key/key.h"
#include "keying/pipeline/image_view.h"
#include "keying/slices/finish_alpha.h"
#include "keying/slices/frame.h"
#include "platform/status.h"

namespace zck {
namespace {

HRESULT CheckFrame(const Z_VID_PROPS &props, int32_t slices, int64_t pixelBytes) {
    const HRESULT hr = CheckProps(props);
    if (FAILED(hr)) return hr;
    if (int64_t{props.nRowBytes} * slices > std::numeric_limits<int32_t>::max()) return E_INVALIDARG;
    return pixelBytes != 0 && pixelBytes < VideoBytesNeeded(props) ? E_INVALIDARG : S_OK;
}

HRESULT FetchRow(uint8_t *dst, int32_t row, int64_t bytes, const RowSource &source) {
    if (source.view == nullptr) return source.fetch(source.context, row, dst);
    if (bytes > 0) std::memcpy(dst, source.view(source.context, row), static_cast<size_t>(bytes));
    return S_OK;
}

SlicedFrame Sliced(uint8_t *pixels, uint8_t *alpha, const Z_VID_PROPS &props, const CHROMA_KEY_RAW &key, int32_t count,
                   int64_t pixelBytes) {
    SlicedFrame frame = {};
    frame.pixels = pixels;
    frame.alpha = alpha;
    frame.pixelBytes = pixelBytes != 0 ? pixelBytes : RowCount(props.nHeight) * props.nRowBytes;
    frame.props = props;
    frame.slice = props;
    frame.slice.nRowBytes *= count;
    frame.slice.nHeight /= count;
    frame.slice.eInterlace = eZI_Progressive;
    frame.key = key;
    frame.key.nKeysUsed = KeysUsed(key);
    frame.key.nInterlacedVideo = FieldOrderSign(&props) != 0 ? 1 : 0;
    frame.count = count;
    return frame;
}

}    // namespace

KeyBounds SliceBounds(const SlicedFrame &frame, int32_t index) {
    const int64_t rowBytes = frame.props.nRowBytes;
    const int64_t stride = AlphaStride(frame.props);
    const bool single = frame.count == 1;
    return {frame.pixelBytes - index * rowBytes, stride * RowCount(frame.props.nHeight) - index * stride,
            single ? KeyBounds::kAnyRow : rowBytes, single ? KeyBounds::kAnyRow : stride};
}

HRESULT FetchAll(const SlicedFrame &frame) {
    if (frame.source == nullptr) return S_OK;
    for (int32_t y = 0; y < RowCount(frame.props.nHeight); ++y) {
        const int64_t offset = int64_t{y} * frame.props.nRowBytes;
        const int64_t bytes = std::min<int64_t>(frame.props.nRowBytes, frame.pixelBytes - offset);
        const HRESULT hr = FetchRow(frame.pixels + offset, y, bytes, *frame.source);
        if (FAILED(hr)) return Noted(hr);
    }
    return S_OK;
}

HRESULT CSliceThreads::BeginWork(ReturnEarly bReturnEarly) {
    Frame &frame = *m_frame;
    // Bands wait for one another's edges, so they need a caller that waits for them.
    if (bReturnEarly == ReturnEarly::No) {
        frame.work = &frame.bands;
        const HRESULT hr = frame.bands.Begin(frame.sliced);
        if (hr != S_FALSE) return hr;
    }
    frame.work = &frame.combs;
    if (CombsInTurn::Needed(frame.sliced)) frame.work = &frame.combsInTurn;
    return frame.work->Begin(frame.sliced);
}

HRESULT CSliceThreads::KeySlices(ReturnEarly bReturnEarly) {
    HRESULT hr = MakeEvents();
    if (SUCCEEDED(hr)) hr = BeginWork(bReturnEarly);
    if (FAILED(hr)) return hr;
    WakeAll();
    if (bReturnEarly == ReturnEarly::Yes) return S_FALSE;
    hr = WaitDone();
    if (SUCCEEDED(hr)) hr = m_frame->work->Finish(m_frame->sliced);
    return hr;
}

HRESULT CSliceThreads::KeyNothing(ReturnEarly bReturnEarly) {
    const SlicedFrame &frame = m_frame->sliced;
    const HRESULT hr = FetchAll(frame);
    if (FAILED(hr)) return hr;
    m_status.fill(S_OK);
    if (bReturnEarly == ReturnEarly::Yes) return S_FALSE;
    PremultiplyFrame(frame.pixels, frame.props, frame.pixelBytes);
    return S_OK;
}

HRESULT CSliceThreads::Dispatch(uint8_t *pixels, uint8_t *alpha, const Z_VID_PROPS *vidProps, const CHROMA_KEY_RAW *key,
                                WriteAlpha bWriteAlpha, ReturnEarly bReturnEarly, const RowSource *source, int64_t pixelBytes) {
    if (pixels == nullptr || alpha == nullptr || vidProps == nullptr || key == nullptr) return Noted(E_POINTER);
    const bool keys = IsKeyingType(key->eType);
    HRESULT hr = CheckFrame(*vidProps, m_count, pixelBytes);
    if (FAILED(hr)) return keys ? Noted(hr) : S_FALSE;
    SlicedFrame &frame = m_frame->sliced;
    frame = Sliced(pixels, alpha, *vidProps, *key, m_count, pixelBytes);
    frame.writeAlpha = bWriteAlpha;
    frame.source = source;
    if (!keys) {
        hr = FetchAll(frame);
        return FAILED(hr) ? hr : S_FALSE;
    }
    // A slice without rows: nothing is keyed.
    hr = frame.slice.nHeight != 0 ? KeySlices(bReturnEarly) : KeyNothing(bReturnEarly);
    if (FAILED(hr) || bReturnEarly == ReturnEarly::Yes) return hr;
    return Noted(m_status[0] < 0 ? m_status[0] : m_status[1]);
}

}    // namespace zck
