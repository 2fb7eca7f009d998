// One frame: check it, cut it into slices, wake the threads, wait, finish.
#include <algorithm>
#include <cstring>
#include <limits>

#include "frames/media/pixel_format.h"
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

int32_t RowCount(const Z_VID_PROPS &props) { return props.nHeight < 0 ? -props.nHeight : props.nHeight; }

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

HRESULT FetchAll(uint8_t *pixels, const Z_VID_PROPS &props, const RowSource *source, int64_t pixelBytes) {
    if (source == nullptr) return S_OK;
    for (int32_t y = 0; y < RowCount(props); ++y) {
        const int64_t offset = int64_t{y} * props.nRowBytes;
        const int64_t bytes = std::min<int64_t>(props.nRowBytes, pixelBytes - offset);
        const HRESULT hr = FetchRow(pixels + offset, y, bytes, *source);
        if (FAILED(hr)) return Noted(hr);
    }
    return S_OK;
}

// Some stages step from row to row by whole pixels. Where a row is none, what a slice reads and writes drifts into the rows
// of the others, and only a fixed order of the slices gives the same bytes each time.
bool SlicesDrift(const Z_VID_PROPS &props, const Z_VID_PROPS &slice, int32_t count) {
    const int32_t bits = PixelBits(props.fccType);
    if (bits != 0 && int64_t{props.nRowBytes} * 8 % bits != 0) return true;
    return AlphaStride(slice) != int64_t{count} * AlphaStride(props);
}

// Slices own their rows and nothing else; a single slice owns the plane.
KeyBounds SliceBounds(const Z_VID_PROPS &props, int64_t pixelBytes, int32_t index, int32_t count) {
    const int64_t stride = AlphaStride(props);
    const int64_t alphaBytes = stride * RowCount(props);
    const bool single = count == 1;
    return {pixelBytes - int64_t{index} * props.nRowBytes, alphaBytes - index * stride,
            single ? KeyBounds::kAnyRow : props.nRowBytes, single ? KeyBounds::kAnyRow : stride};
}

}    // namespace

HRESULT CSliceThreads::PrepareRows(uint8_t *pixels, uint8_t *alpha, const Z_VID_PROPS &props, const RowSource *source,
                                   int64_t pixelBytes) {
    Frame &frame = *m_frame;
    frame.plan = KeyPlanMake(frame.key);
    RowFrame rows = {};
    rows.view = MakeView(pixels, alpha, &props, AlphaStride(props), SliceBounds(props, pixelBytes, 0, m_count));
    rows.plan = &frame.plan;
    rows.source = source;
    rows.fields = frame.key.nInterlacedVideo != 0 ? 2 : 1;
    rows.seam = m_count > 1;
    // Slices measure their rows as images with rows N times as far apart; one slice does its fields apart.
    rows.combs = rows.seam ? m_count : rows.fields;
    rows.view.blocks = BlocksOf(props.nWidth, rows.view.stride * rows.combs);
    rows.keyedRows = rows.view.height / rows.combs * rows.combs;
    rows.merge = HasAlpha(props.fccType);
    rows.premultiply = true;
    if (!RowRoad::Serves(rows)) return S_FALSE;
    rows.view.props = &frame.props;    // lives as long as the threads may look at it
    frame.bands = frame.road.Start(rows, m_count);
    std::fill_n(frame.bandStatus, kSlotsMax, S_OK);
    frame.edgesToCome = frame.bands;
    frame.edgesDone.Reset();
    return S_OK;
}

// What keeps a frame by rows from being whole: a source that failed, or no memory. No slice's status tells it.
HRESULT CSliceThreads::FinishRows() {
    for (const HRESULT hr : m_frame->bandStatus) {
        if (FAILED(hr)) return Noted(hr);
    }
    return S_OK;
}

HRESULT CSliceThreads::Dispatch(uint8_t *pixels, uint8_t *alpha, const Z_VID_PROPS *vidProps, const CHROMA_KEY_RAW *key,
                                bool bWriteAlpha, bool bReturnEarly, const RowSource *source, int64_t pixelBytes) {
    if (pixels == nullptr || alpha == nullptr || vidProps == nullptr || key == nullptr) return Noted(E_POINTER);
    Frame &frame = *m_frame;
    const Z_VID_PROPS props = *vidProps;
    const bool keys = IsKeyingType(key->eType);
    HRESULT hr = CheckFrame(props, m_count, pixelBytes);
    if (FAILED(hr)) return keys ? Noted(hr) : S_FALSE;
    if (pixelBytes == 0) pixelBytes = int64_t{RowCount(props)} * props.nRowBytes;

    const int32_t n = m_count;
    frame.key = *key;
    frame.key.nKeysUsed = KeysUsed(*key);
    frame.key.nInterlacedVideo = FieldOrderSign(&props) != 0 ? 1 : 0;
    frame.bWriteAlpha = bWriteAlpha;
    frame.count = n;
    frame.props = props;
    frame.props.nRowBytes *= n;
    frame.props.nHeight /= n;
    frame.props.eInterlace = eZI_Progressive;
    const bool sliced = keys && frame.props.nHeight != 0;
    frame.byRows = false;
    if (sliced) hr = MakeEvents();
    if (FAILED(hr)) return hr;
    if (sliced && !bReturnEarly) {
        hr = Guarded([&] { return PrepareRows(pixels, alpha, props, source, pixelBytes); });
        if (FAILED(hr)) return hr;
        frame.byRows = hr == S_OK;
        hr = S_OK;
    }
    frame.inTurn = !frame.byRows && n > 1 && SlicesDrift(props, frame.props, n);
    if (!frame.byRows) hr = FetchAll(pixels, props, source, pixelBytes);
    if (FAILED(hr)) return hr;
    if (!keys) return S_FALSE;

    if (sliced) {
        for (int32_t i = 0; i < n; ++i) {
            frame.slicePixels[i] = pixels + int64_t{i} * props.nRowBytes;
            frame.sliceAlpha[i] = alpha + int64_t{i} * AlphaStride(props);
            frame.sliceBounds[i] = SliceBounds(props, pixelBytes, i, n);
        }
        WakeAll();
    } else {
        // Fewer rows than slices: nothing is keyed.
        m_status.fill(S_OK);
    }
    if (bReturnEarly) return S_FALSE;
    if (sliced) {
        hr = WaitDone();
        if (FAILED(hr)) return hr;
    }
    if (frame.byRows) {
        hr = FinishRows();
        if (FAILED(hr)) return hr;
    } else {
        if (sliced && n > 1) FinishAlphaWithin(pixels, alpha, &props, &frame.key, SliceBounds(props, pixelBytes, 0, n));
        PremultiplyFrame(pixels, props, pixelBytes);
    }
    return Noted(m_status[0] < 0 ? m_status[0] : m_status[1]);
}

}    // namespace zck
