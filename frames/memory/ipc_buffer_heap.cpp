#include "frames/memory/ipc_buffer_heap.h"

#include <algorithm>
#include <mutex>
#include <new>

#include "platform/status.h"

namespace zck {
namespace {

// A section that is larger than this many times the request stays for larger requests; exactly that large is taken.
constexpr double kLargestReuse = 2.0;

}    // namespace

IPCBufferHeap::~IPCBufferHeap() { m_worker.Stop(kInfinite, false); }

HRESULT IPCBufferHeap::GetBuffer(int32_t size, IPCBuffer **out, int32_t count) noexcept {
    if (out != nullptr) *out = nullptr;
    if (size < 0) return E_INVALIDARG;
    const int64_t asked = std::max(count, 1);
    int64_t wanted = asked;
    Queue victims;    // destroyed after the lock is left
    {
        std::lock_guard lock(m_lock);
        wanted = TakeIdle(size, out, asked);
        if (m_nMaximum > 0 && m_nCount >= m_nMaximum) CollectFree(std::max<int64_t>(wanted, 0), m_nMinimum, victims);
    }
    victims.clear();
    return MakeBuffers(size, out, wanted, asked);
}

// Under the lock. All that lies in a matching queue counts as found, although only one buffer is taken out. Returns how many
// are still wanted, which is below 0 when more was found than asked for.
int64_t IPCBufferHeap::TakeIdle(int32_t size, IPCBuffer **out, int64_t wanted) noexcept {
    AdoptWaiting();
    for (auto entry = m_idle.lower_bound(static_cast<uint32_t>(size)); entry != m_idle.end() && wanted >= 1;) {
        if (static_cast<double>(entry->first) / static_cast<double>(size) > kLargestReuse) break;
        Queue &queue = entry->second;
        wanted -= static_cast<int64_t>(queue.size());
        if (!queue.empty() && out != nullptr && *out == nullptr) {
            *out = queue.front().Detach();
            queue.pop_front();
        }
        entry = queue.empty() ? m_idle.erase(entry) : std::next(entry);
    }
    return wanted;
}

HRESULT IPCBufferHeap::MakeBuffers(int32_t size, IPCBuffer **out, int64_t wanted, int64_t asked) noexcept {
    for (int64_t i = 0; i < wanted; ++i) {
        if (++m_nCount > m_nMaximum && m_nMaximum > 0) {
            --m_nCount;
            // What this loop made does not turn the failure into a part success, only what the pool had.
            return wanted == asked ? E_OUTOFMEMORY : S_FALSE;
        }
        const HRESULT hr = MakeOne(size, out);
        if (FAILED(hr)) {
            --m_nCount;
            return hr;
        }
    }
    return S_OK;
}

HRESULT IPCBufferHeap::MakeOne(int32_t size, IPCBuffer **out) noexcept {
    ComPtr<IPCBuffer> buffer;
    buffer.Attach(new (std::nothrow) IPCBuffer);
    if (!buffer) return E_OUTOFMEMORY;
    const bool forCaller = out != nullptr && *out == nullptr;
    HRESULT hr = buffer->AllocBuffer(static_cast<uint32_t>(size));
    // A spare is not worth the idle ones.
    if (FAILED(hr) && forCaller && GiveUpIdle()) hr = buffer->AllocBuffer(static_cast<uint32_t>(size));
    if (FAILED(hr)) return hr;
    if (forCaller) {
        *out = buffer.Detach();
        return S_OK;
    }
    return Guarded([&] {
        Queue one;
        one.push_back(std::move(buffer));
        return Keep(one, false);
    });
}

// Puts the one buffer of the list into the pool. On a failure it stays in the list and goes with it, outside of the lock.
HRESULT IPCBufferHeap::Keep(Queue &one, bool bReturned) noexcept {
    return Guarded([&] {
        std::lock_guard lock(m_lock);
        if (bReturned && one.front()->RefCount() > 1)
            m_waiting.splice(m_waiting.end(), one);
        else
            PutIdle(one, one.begin());
        return S_OK;
    });
}

// Under the lock.
void IPCBufferHeap::PutIdle(Queue &from, Queue::iterator buffer) {
    Queue &queue = m_idle[(*buffer)->DataSize(0)];
    queue.splice(queue.end(), from, buffer);
}

// Under the lock. Without memory for a new entry a buffer waits on.
void IPCBufferHeap::AdoptWaiting() noexcept {
    for (auto it = m_waiting.begin(); it != m_waiting.end();) {
        const auto buffer = it++;
        if ((*buffer)->RefCount() > 1) continue;
        Guarded([&] {
            PutIdle(m_waiting, buffer);
            return S_OK;
        });
    }
}

HRESULT IPCBufferHeap::ReturnFrame(IPCBuffer *buffer) noexcept {
    if (buffer == nullptr) return E_POINTER;
    buffer->MarkUsed();
    ComPtr<IPCBuffer> owned;
    owned.Attach(buffer);
    const HRESULT hr = Guarded([&] {
        Queue one;
        one.push_back(std::move(owned));
        return Keep(one, true);
    });
    if (FAILED(hr)) {
        --m_nCount;
        return hr;
    }
    WakeWorker();
    return S_OK;
}

// Destroys whatever nobody uses, whatever the minimum. False when there was nothing.
bool IPCBufferHeap::GiveUpIdle() noexcept {
    Queue victims;
    std::lock_guard lock(m_lock);
    AdoptWaiting();
    CollectFree(0, 0, victims);
    return !victims.empty();
}

int32_t IPCBufferHeap::ReleaseFreeFrames(int32_t n, int32_t) noexcept {
    Queue victims;
    {
        std::lock_guard lock(m_lock);
        AdoptWaiting();
        CollectFree(n, m_nMinimum, victims);
    }
    return static_cast<int32_t>(victims.size());
}

// Under the lock. An entry is begun while the count is above the limit, and left when it has fallen below: one entry can
// take the count to one less than the limit. A positive n bounds the whole walk.
void IPCBufferHeap::CollectFree(int64_t n, int32_t limit, Queue &victims) noexcept {
    const bool bounded = n > 0;
    bool go = true;
    for (auto entry = m_idle.begin(); go && entry != m_idle.end() && m_nCount > limit;) {
        Queue &queue = entry->second;
        while (!queue.empty()) {
            victims.splice(victims.end(), queue, queue.begin());
            const int32_t left = --m_nCount;
            go = !bounded || --n > 0;
            if (left < limit || !go) break;
        }
        entry = queue.empty() ? m_idle.erase(entry) : std::next(entry);
    }
}

int32_t IPCBufferHeap::IdleCount() noexcept {
    std::lock_guard lock(m_lock);
    AdoptWaiting();
    size_t count = 0;
    for (const auto &entry : m_idle) count += entry.second.size();
    return static_cast<int32_t>(count);
}

// The thread starts with the first returned buffer. Without it nothing is trimmed, and nothing else comes of it.
void IPCBufferHeap::WakeWorker() noexcept {
    std::lock_guard lock(m_workerLock);
    if (!m_worker.HasThread()) m_worker.Start(this, 0);
    m_worker.Wake();
}

void IPCBufferHeap::ReleaseLoop(void *owner, int32_t, CWorkerThread &self) {
    auto &heap = *static_cast<IPCBufferHeap *>(owner);
    while (self.WaitWake())
        if (heap.m_nCount >= heap.m_nMinimum) heap.ReleaseFreeFrames(0, heap.m_nMinimum);
}

}    // namespace zck
