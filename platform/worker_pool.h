// `WorkerPool`: threads that wait for work which is cut into bands.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <mutex>

#include "platform/status.h"
#include "platform/sync.h"
#include "platform/worker_thread.h"

namespace zck {

/// Runs work in bands on the calling thread and on threads that are kept between calls. Any number of threads may call `Run`
/// at once, also from inside a band: a caller takes bands itself, so it never depends on a free thread.
///
/// Who converts pictures takes the shared pool for the call and runs its bands; everything that a band touches lives on the
/// caller's stack:
///
///     const std::shared_ptr<WorkerPool> pool = WorkerPool::Shared();
///     const HRESULT hr = pool->Run(bands, [&](int32_t band) { return plan.RunRows(src, dst, First(band), First(band + 1)); });
///
/// Work that has to run at the same time as the caller (two field converters that wait for each other) does not belong here:
/// bands may run one after another on one thread.
class WorkerPool {
public:
    static constexpr int32_t kThreadsMax = 15;

    /// At most `threads` threads (0 to `kThreadsMax`) beside the caller's. They start when there is work for them.
    explicit WorkerPool(int32_t threads) noexcept;
    /// Waits for the threads. Nobody may be in `Run`.
    ~WorkerPool();
    WorkerPool(const WorkerPool &) = delete;
    WorkerPool &operator=(const WorkerPool &) = delete;

    /// The process's pool, as many threads as the machine has processors, less one. It lives as long as somebody holds it: an
    /// object that is in use for long (a frame factory) holds it so that threads stay; without such a holder it ends with the
    /// call. So no thread outlives the objects of the library. Throws `std::bad_alloc`.
    static std::shared_ptr<WorkerPool> Shared();

    int32_t ThreadCount() const noexcept { return m_count; }

    /// Calls `work(band)` once for each band from 0 to `bands` - 1, in any order and on several threads, and returns when all
    /// have ended. The failure of the lowest band that failed, or `S_OK`; what a band throws becomes its status.
    template <class Work>
    HRESULT Run(int32_t bands, const Work &work) noexcept {
        return RunBands(bands, &CallBand<Work>, &work);
    }

private:
    using Band = HRESULT (*)(const void *work, int32_t band) noexcept;
    struct Job;

    template <class Work>
    static HRESULT CallBand(const void *work, int32_t band) noexcept;
    HRESULT RunBands(int32_t bands, Band call, const void *work) noexcept;
    static HRESULT RunAlone(const Job &job) noexcept;
    void WakeSome(int32_t wanted) noexcept;
    void RunOne(Job &job, std::unique_lock<CriticalSection> &lock) noexcept;
    void Serve(int32_t index) noexcept;
    static void Body(void *owner, int32_t index, CWorkerThread &self);

    const int32_t m_count;
    CriticalSection m_lock;    // guards what follows; held for a few instructions, but for the start of a thread
    Job *m_jobs = nullptr;     // those with bands that nobody has taken
    std::array<bool, kThreadsMax> m_busy = {};
    std::array<CWorkerThread, kThreadsMax> m_threads;
};

template <class Work>
HRESULT WorkerPool::CallBand(const void *work, int32_t band) noexcept {
    return Guarded([&]() -> HRESULT { return (*static_cast<const Work *>(work))(band); });
}

}    // namespace zck
