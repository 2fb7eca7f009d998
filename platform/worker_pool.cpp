#include "platform/worker_pool.h"

#include <algorithm>
#include <thread>

namespace zck {

/// One `Run`, on its caller's stack. Guarded by the pool's lock, but for `call`, `work` and `bands`, which stay.
struct WorkerPool::Job {
    Band call;
    const void *work;
    int32_t bands;
    int32_t next = 0;       // the first band that nobody has taken
    int32_t running = 0;    // bands that were taken and have not ended
    int32_t failed = 0;     // band of `status`
    HRESULT status = S_OK;
    bool awaited = false;    // the caller waits for `done`
    Event done{false};
    Job *after = nullptr;
};

WorkerPool::WorkerPool(int32_t threads) noexcept : m_count(std::clamp(threads, 0, kThreadsMax)) {
    for (CWorkerThread &thread : m_threads) thread.SetBody(Body);
}

WorkerPool::~WorkerPool() {
    for (CWorkerThread &thread : m_threads) thread.Stop(kInfinite, false);
}

std::shared_ptr<WorkerPool> WorkerPool::Shared() {
    static CriticalSection lock;
    static std::weak_ptr<WorkerPool> shared;
    const std::lock_guard guard(lock);
    std::shared_ptr<WorkerPool> pool = shared.lock();
    if (pool == nullptr) {
        pool = std::make_shared<WorkerPool>(static_cast<int32_t>(std::thread::hardware_concurrency()) - 1);
        shared = pool;
    }
    return pool;
}

/// Takes the next band of `job`, which has one, and runs it outside of the lock.
void WorkerPool::RunOne(Job &job, std::unique_lock<CriticalSection> &lock) noexcept {
    const int32_t band = job.next++;
    ++job.running;
    if (job.next == job.bands) {
        Job **link = &m_jobs;
        while (*link != &job) link = &(*link)->after;
        *link = job.after;
    }
    lock.unlock();
    const HRESULT hr = job.call(job.work, band);
    lock.lock();
    if (FAILED(hr) && (SUCCEEDED(job.status) || band < job.failed)) {
        job.status = hr;
        job.failed = band;
    }
    // The caller may leave, and the job with it, as soon as the lock is free.
    if (--job.running == 0 && job.awaited) job.done.Set();
}

void WorkerPool::WakeSome(int32_t wanted) noexcept {
    for (int32_t i = 0; i < m_count && wanted > 0; ++i) {
        const auto at = static_cast<size_t>(i);
        if (m_busy[at]) continue;
        if (!m_threads[at].HasThread() && FAILED(m_threads[at].Start(this, i))) return;
        m_busy[at] = true;
        m_threads[at].Wake();
        --wanted;
    }
}

HRESULT WorkerPool::RunAlone(const Job &job) noexcept {
    HRESULT status = S_OK;
    for (int32_t band = 0; band < job.bands; ++band) {
        const HRESULT hr = job.call(job.work, band);
        if (FAILED(hr) && SUCCEEDED(status)) status = hr;
    }
    return status;
}

HRESULT WorkerPool::RunBands(int32_t bands, Band call, const void *work) noexcept {
    if (bands < 1) return S_OK;
    Job job = {call, work, bands};
    // Without an event nobody could wait for the others.
    if (!job.done.Valid()) return RunAlone(job);
    std::unique_lock lock(m_lock);
    job.after = m_jobs;
    m_jobs = &job;
    WakeSome(bands - 1);
    while (job.next < job.bands) RunOne(job, lock);
    if (job.running != 0) {
        job.awaited = true;
        lock.unlock();
        job.done.Wait(kInfinite);
    }
    return job.status;
}

void WorkerPool::Serve(int32_t index) noexcept {
    std::unique_lock lock(m_lock);
    while (m_jobs != nullptr) RunOne(*m_jobs, lock);
    m_busy[static_cast<size_t>(index)] = false;
}

void WorkerPool::Body(void *owner, int32_t index, CWorkerThread &self) {
    while (self.WaitWake()) static_cast<WorkerPool *>(owner)->Serve(index);
}

}    // namespace zck
