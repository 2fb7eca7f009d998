// `IPCBufferHeap`: the pool of shared-memory sections from which frames take their pixels.
#pragma once

#include <atomic>
#include <cstdint>
#include <list>
#include <map>

#include "frames/memory/ipc_buffer.h"
#include "platform/com_ptr.h"
#include "platform/sync.h"
#include "platform/worker_thread.h"

namespace zck {

/// Fresh pages cost more than all work on a picture, so sections are kept and taken again for any request of at least half
/// their usable size. After each return a thread trims the idle ones until the number of all that exist is at the minimum,
/// smallest first. Any thread may call; sections are made and destroyed outside of the lock.
class IPCBufferHeap {
public:
    /// `maxBuffers` of 0 or less is no cap.
    explicit IPCBufferHeap(int32_t maxBuffers = 0, int32_t minBuffers = 16) noexcept
        : m_nMaximum(maxBuffers), m_nMinimum(minBuffers) {}
    /// Buffers that are handed out outlive the heap; nobody may return them any more.
    ~IPCBufferHeap();
    IPCBufferHeap(const IPCBufferHeap &) = delete;
    IPCBufferHeap &operator=(const IPCBufferHeap &) = delete;

    /// Hands one buffer of at least `size` usable bytes out, when `out` is there, and sees to it that `count` are found or
    /// made altogether: the others are spares in the pool. The caller owns the buffer's single reference. It holds old pixels
    /// unless it is fresh.
    ///
    /// `S_FALSE` when the cap stopped it after something was found in the pool; `E_OUTOFMEMORY` when nothing was found
    /// there, even if some were made. `out` may be filled in both cases, and after a failed spare: it counts, not the status.
    /// Where the system has no room for the one that is handed out, all idle buffers are given up for it.
    HRESULT GetBuffer(int32_t size, IPCBuffer **out, int32_t count) noexcept;

    /// Takes a buffer back, with its reference. One that has a second owner waits outside of the pool until that owner has
    /// let go. `E_POINTER` for null.
    HRESULT ReturnFrame(IPCBuffer *buffer) noexcept;

    /// Destroys idle buffers, the smallest first, at most `n` of them (0: no limit of number), and tells how many. It starts
    /// while more exist than the minimum; within one size it goes on until fewer than the minimum exist. The second argument
    /// is not used.
    int32_t ReleaseFreeFrames(int32_t n, int32_t limit) noexcept;

    /// Buffers that exist, idle or in use.
    int32_t BufferCount() const noexcept { return m_nCount.load(); }
    /// Buffers in the pool.
    int32_t IdleCount() noexcept;

private:
    using Queue = std::list<ComPtr<IPCBuffer>>;    // first in, first out; a list, as moving its nodes can not fail

    int64_t TakeIdle(int32_t size, IPCBuffer **out, int64_t wanted) noexcept;
    HRESULT MakeBuffers(int32_t size, IPCBuffer **out, int64_t wanted, int64_t asked) noexcept;
    HRESULT MakeOne(int32_t size, IPCBuffer **out) noexcept;
    bool GiveUpIdle() noexcept;
    HRESULT Keep(Queue &one, bool bReturned) noexcept;
    void PutIdle(Queue &from, Queue::iterator buffer);
    void AdoptWaiting() noexcept;
    void CollectFree(int64_t n, int32_t limit, Queue &victims) noexcept;
    void WakeWorker() noexcept;
    static void ReleaseLoop(void *owner, int32_t index, CWorkerThread &self);

    CriticalSection m_lock;              // guards the two following
    std::map<uint32_t, Queue> m_idle;    // by usable size
    Queue m_waiting;                     // returned, but with a second owner
    const int32_t m_nMaximum;
    const int32_t m_nMinimum;
    std::atomic<int32_t> m_nCount{0};
    CriticalSection m_workerLock;    // starting the worker is slow, so not under the other lock
    CWorkerThread m_worker{ReleaseLoop};
};

}    // namespace zck
