#include "platform/worker_thread.h"

#include "platform/status.h"
#include "platform/thread.h"

namespace zck {

/// One run, from `Start` to the thread's end. Shared by the object and the thread, so that a thread that was left to
/// itself still finds its own run flag and wake event.
struct CWorkerThread::Thread {
    CWorkerThread *self = nullptr;
    Body body = nullptr;
    void *owner = nullptr;
    int32_t index = 0;
    Event wake{false};
    std::atomic<bool> run{true};
    std::unique_ptr<SystemThread> system;
};

namespace {
thread_local const void *t_current = nullptr;
}

void CWorkerThread::Entry(void *argument) noexcept {
    const std::unique_ptr<std::shared_ptr<Thread>> holder(static_cast<std::shared_ptr<Thread> *>(argument));
    Thread &thread = **holder;
    t_current = &thread;
    Guarded([&] {
        thread.body(thread.owner, thread.index, *thread.self);
        return S_OK;
    });
}

CWorkerThread::~CWorkerThread() { Stop(kInfinite, false); }

HRESULT CWorkerThread::Start(void *owner, int32_t index) noexcept {
    if (owner == nullptr || m_body == nullptr) return E_INVALIDARG;
    Stop(kInfinite, false);
    return Guarded([&] {
        auto thread = std::make_shared<Thread>();
        if (!thread->wake.Valid()) return LastSystemError(E_FAIL);
        thread->self = this;
        thread->body = m_body;
        thread->owner = owner;
        thread->index = index;
        auto holder = std::make_unique<std::shared_ptr<Thread>>(thread);
        m_owner = owner;
        m_index = index;
        m_thread = thread;
        const HRESULT hr = SystemThread::Start(Entry, holder.get(), thread->system);
        if (FAILED(hr)) {
            m_thread.reset();
            return hr;
        }
        static_cast<void>(holder.release());    // the thread has it now
        return S_OK;
    });
}

void CWorkerThread::Wake() noexcept {
    if (m_thread != nullptr) m_thread->wake.Set();
}

HRESULT CWorkerThread::Stop(uint32_t timeoutMs, bool bTerminate, bool bPumpMessages) noexcept {
    if (m_thread == nullptr) return S_FALSE;
    m_thread->run = false;
    m_thread->wake.Set();
    const bool ended = m_thread->system->WaitEnd(timeoutMs, bPumpMessages);
    if (!ended && bTerminate) m_thread->system->Terminate();
    m_thread->system.reset();
    m_thread.reset();
    return ended ? S_OK : kErrorTimeout;
}

CWorkerThread::Thread *CWorkerThread::Mine() const noexcept {
    // The body's own run; anybody else sees the object's present one.
    auto *current = static_cast<Thread *>(const_cast<void *>(t_current));
    return current != nullptr && current->self == this ? current : m_thread.get();
}

bool CWorkerThread::WaitWake() noexcept {
    Thread *thread = Mine();
    if (thread == nullptr) return false;
    return thread->run && thread->wake.Wait(kInfinite) && thread->run;
}

bool CWorkerThread::Running() const noexcept {
    const Thread *thread = Mine();
    return thread != nullptr && thread->run;
}

uint32_t CWorkerThread::ThreadId() const noexcept { return m_thread != nullptr ? m_thread->system->Id() : 0; }

}    // namespace zck
