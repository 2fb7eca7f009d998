#include "keying/slices/band_work.h"

#include "frames/media/pixel_format.h"
#include "frames/media/video_props.h"
#include "keying/pipeline/image_view.h"
#include "keying/pipeline/plan.h"
#include "platform/status.h"

namespace zck {

HRESULT BandWork::Begin(const SlicedFrame &frame) {
    return Guarded([&] { return Prepare(frame); });
}

HRESULT BandWork::Prepare(const SlicedFrame &frame) {
    m_plan = KeyPlanMake(frame.key);
    RowFrame rows = {};
    rows.view = MakeView(frame.pixels, frame.alpha, &frame.props, AlphaStride(frame.props), SliceBounds(frame, 0));
    rows.plan = &m_plan;
    rows.source = frame.source;
    rows.fields = frame.key.nInterlacedVideo != 0 ? 2 : 1;
    rows.seam = frame.count > 1;
    // Slices measure their rows as images with rows N times as far apart; one slice does its fields apart.
    rows.combs = rows.seam ? frame.count : rows.fields;
    rows.view.blocks = BlocksOf(frame.props.nWidth, rows.view.stride * rows.combs);
    rows.keyedRows = rows.view.height / rows.combs * rows.combs;
    rows.merge = HasAlpha(frame.props.fccType);
    rows.premultiply = true;
    if (!StreamingPath::Serves(rows)) return S_FALSE;
    rows.view.props = &frame.slice;    // lives as long as the threads may look at it
    m_bands = m_path.Start(rows, frame.count);
    m_bandStatus.fill(S_OK);
    m_edgesToCome = m_bands;
    m_edgesDone.Reset();
    return S_OK;
}

void BandWork::Work(int32_t slot, const CWorkerThread &self, SliceStatuses &status) {
    const auto i = static_cast<size_t>(slot);
    if (slot < m_bands) m_bandStatus[i] = Guarded([&] { return WalkBand(slot, self); });
    status[i] = m_plan.hasAlpha ? S_OK : S_FALSE;
}

HRESULT BandWork::WalkBand(int32_t band, const CWorkerThread &self) {
    // Counts down also after a failure: the other bands wait for it.
    const HRESULT hr = Guarded([&] { return m_path.MakeEdges(band); });
    if (m_edgesToCome.fetch_sub(1) == 1) m_edgesDone.Set();
    if (!AwaitEdges(self)) return kErrorTimeout;
    return FAILED(hr) ? hr : m_path.Walk(band);
}

bool BandWork::AwaitEdges(const CWorkerThread &self) {
    constexpr int kSpins = 2000;    // some microseconds: the bands arrive at nearly the same time
    constexpr uint32_t kLookMs = 50;
    for (int i = 0; i < kSpins; ++i) {
        if (m_edgesToCome.load(std::memory_order_acquire) == 0) return true;
    }
    while (!m_edgesDone.Wait(kLookMs)) {
        if (!self.Running()) return false;
    }
    return true;
}

HRESULT BandWork::Finish(const SlicedFrame &) {
    for (const HRESULT hr : m_bandStatus) {
        if (FAILED(hr)) return Noted(hr);
    }
    return S_OK;
}

}    // namespace zck
