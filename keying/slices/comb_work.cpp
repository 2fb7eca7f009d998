#include "keying/slices/comb_work.h"

#include "frames/media/pixel_format.h"
#include "frames/media/video_props.h"
#include "keying/pipeline/image_view.h"
#include "keying/slices/finish_alpha.h"

namespace zck {

HRESULT CombWork::Begin(const SlicedFrame &frame) {
    const HRESULT hr = FetchAll(frame);
    if (FAILED(hr)) return hr;
    m_frame = &frame;
    for (int32_t i = 0; i < frame.count; ++i)
        m_slices[static_cast<size_t>(i)] = {frame.pixels + int64_t{i} * frame.props.nRowBytes,
                                            frame.alpha + int64_t{i} * AlphaStride(frame.props), SliceBounds(frame, i)};
    return S_OK;
}

void CombWork::Work(int32_t slot, const CWorkerThread &, SliceStatuses &status) { WorkSlice(slot, status); }

void CombWork::WorkSlice(int32_t index, SliceStatuses &status) {
    const auto i = static_cast<size_t>(index);
    Slice &slice = m_slices[i];
    status[i] = slice.pixels == nullptr || slice.alpha == nullptr ? S_FALSE : KeySlice(slice);
    slice.pixels = nullptr;
    slice.alpha = nullptr;
}

HRESULT CombWork::KeySlice(const Slice &slice) const {
    CHROMA_KEY_RAW key = m_frame->key;
    if (m_frame->count > 1) {
        // Both need rows that other slices have: the pass over the whole plane does them.
        key.nEdgesSmooth = 0;
        key.nInterlacedVideo = 0;
    }
    return KeyImage(slice.pixels, slice.alpha, &m_frame->slice, &key, false, slice.bounds);
}

HRESULT CombWork::Finish(const SlicedFrame &frame) {
    // The result of the pass over the seams is nobody's.
    if (frame.count > 1) FinishAlphaWithin(frame.pixels, frame.alpha, &frame.props, &frame.key, SliceBounds(frame, 0));
    PremultiplyFrame(frame.pixels, frame.props, frame.pixelBytes);
    return S_OK;
}

bool CombsInTurn::Needed(const SlicedFrame &frame) {
    if (frame.count < 2) return false;
    const int32_t bits = PixelBits(frame.props.fccType);
    if (bits != 0 && int64_t{frame.props.nRowBytes} * 8 % bits != 0) return true;
    return AlphaStride(frame.slice) != int64_t{frame.count} * AlphaStride(frame.props);
}

void CombsInTurn::Work(int32_t slot, const CWorkerThread &self, SliceStatuses &status) {
    if (slot != 0) return;
    for (int32_t i = 0; i < SliceCount() && self.Running(); ++i) WorkSlice(i, status);
}

}    // namespace zck
