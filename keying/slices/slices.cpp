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
        pool.m_frame->work->Work(index, self, pool.m_status);
        done->Set();
    }
}

}    // namespace zck
