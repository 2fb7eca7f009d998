#include "keying/slices/slices.h"

#include <algorithm>

#include "keying/slices/frame.h"
#include "platform/status.h"

namespace zck {

CSliceThreads::CSliceThreads() : m_frame(std::make_unique<Frame>()) {
    for (CWorkerThread &thread : m_threads) thread.SetBody(Body);
}

CSliceThreads::~CSliceThreads() { StopAll(); }

void CSliceThreads::StopAll() {
    for (CWorkerThread &thread : m_threads) thread.Stop(kWaitMs, true, false);
}

HRESULT CSliceThreads::SetThreadCount(int32_t n) {
    if (n == m_count) return S_FALSE;
    if (n < 1) return E_INVALIDARG;
    WaitDone();
    const int32_t count = std::min(n, kSlotsMax);
    // A count above the limit comes again with each frame: it must not cost a restart of all threads each time.
    if (count == m_count) return S_OK;
    StopAll();
    m_count = count;
    return S_OK;
}

HRESULT CSliceThreads::WaitDone(uint32_t) {
    if (!m_done[0]) return S_FALSE;
    Event *events[kSlotsMax] = {};
    int count = 0;
    for (int32_t i = 0; i < m_count; ++i) {
        if (m_done[static_cast<size_t>(i)]) events[count++] = m_done[static_cast<size_t>(i)].get();
    }
    if (WaitAll(events, count, kWaitMs)) return S_OK;
    StopAll();
    return Noted(kErrorTimeout);
}

HRESULT CSliceThreads::MakeEvents() {
    return Guarded([&] {
        for (int32_t i = 0; i < m_count; ++i) {
            std::unique_ptr<Event> &done = m_done[static_cast<size_t>(i)];
            if (!done) done = std::make_unique<Event>(true, true);
        }
        return S_OK;
    });
}

void CSliceThreads::WakeAll() {
    for (int32_t i = 0; i < kSlotsMax; ++i) {
        CWorkerThread &thread = m_threads[static_cast<size_t>(i)];
        std::unique_ptr<Event> &done = m_done[static_cast<size_t>(i)];
        if (i >= m_count) {
            thread.Stop(kWaitMs, true, false);
            done.reset();
            continue;
        }
        done->Reset();
        // A thread that cannot be started leaves its event unset, and the wait times out on it.
        if (!thread.HasThread()) thread.Start(this, i);
        thread.Wake();
    }
}

void CSliceThreads::Body(void *owner, int32_t index, CWorkerThread &self) {
    auto &pool = *static_cast<CSliceThreads *>(owner);
    while (self.WaitWake()) {
        Event *done = pool.m_done[static_cast<size_t>(index)].get();
        pool.Work(index, self);
        done->Set();
    }
}

void CSliceThreads::Work(int32_t index, CWorkerThread &self) {
    Frame &frame = *m_frame;
    if (!frame.inTurn) {
        WorkSlot(index, self);
    } else if (index == 0) {
        for (int32_t i = 0; i < frame.count && self.Running(); ++i) WorkSlot(i, self);
    }
}

void CSliceThreads::WorkSlot(int32_t index, const CWorkerThread &self) {
    const auto i = static_cast<size_t>(index);
    Frame &frame = *m_frame;
    if (frame.slicePixels[i] == nullptr || frame.sliceAlpha[i] == nullptr) {
        m_status[i] = S_FALSE;
        return;
    }
    if (frame.byRows) {
        frame.bandStatus[i] = Guarded([&] { return WorkBand(index, self); });
        m_status[i] = frame.plan.hasAlpha ? S_OK : S_FALSE;
    } else {
        m_status[i] = WorkComb(index);
    }
    frame.slicePixels[i] = nullptr;
    frame.sliceAlpha[i] = nullptr;
}

HRESULT CSliceThreads::WorkComb(int32_t index) {
    const auto i = static_cast<size_t>(index);
    const Frame &frame = *m_frame;
    CHROMA_KEY_RAW key = frame.key;
    if (frame.count > 1) {
        // Both need rows that other slices have: the pass over the whole plane does them.
        key.nEdgesSmooth = 0;
        key.nInterlacedVideo = 0;
    }
    return KeyImage(frame.slicePixels[i], frame.sliceAlpha[i], &frame.props, &key, false, frame.sliceBounds[i]);
}

HRESULT CSliceThreads::WorkBand(int32_t index, const CWorkerThread &self) {
    Frame &frame = *m_frame;
    if (index >= frame.bands) return S_OK;
    // Whatever becomes of the edges, the others wait for this band.
    const HRESULT hr = Guarded([&] { return frame.road.MakeEdges(index); });
    if (frame.edgesToCome.fetch_sub(1) == 1) frame.edgesDone.Set();
    if (!AwaitEdges(self)) return kErrorTimeout;
    return FAILED(hr) ? hr : frame.road.Walk(index);
}

bool CSliceThreads::AwaitEdges(const CWorkerThread &self) {
    constexpr int kSpins = 2000;    // some microseconds: the bands arrive at nearly the same time
    constexpr uint32_t kLookMs = 50;
    Frame &frame = *m_frame;
    for (int i = 0; i < kSpins; ++i) {
        if (frame.edgesToCome.load(std::memory_order_acquire) == 0) return true;
    }
    while (!frame.edgesDone.Wait(kLookMs)) {
        if (!self.Running()) return false;
    }
    return true;
}

}    // namespace zck
