// `CWorkerThread`: a thread with a wake event, a run flag, an owner and an index.
#pragma once

#include <memory>

#include "platform/sync.h"
#include "zchromakey/com.h"

namespace zck {

/// A thread object that can be started and stopped again and again. `Start`, `Wake` and `Stop` are for the owner, whose
/// calls do not overlap; `WaitWake` and `Running` are for the body, on the thread itself.
///
/// The usual body:
///
///     void Body(void *owner, int32_t index, CWorkerThread &self) {
///         while (self.WaitWake()) static_cast<Owner *>(owner)->Work(index);
///     }
///
/// The object model is initialised on the thread around the body. What the body throws ends the thread and nothing else.
class CWorkerThread {
public:
    using Body = void (*)(void *owner, int32_t index, CWorkerThread &self);

    explicit CWorkerThread(Body body = nullptr) noexcept : m_body(body) {}
    /// Stops without limit of time and without termination.
    ~CWorkerThread();
    CWorkerThread(const CWorkerThread &) = delete;
    CWorkerThread &operator=(const CWorkerThread &) = delete;

    /// What the thread runs from the next `Start` on.
    void SetBody(Body body) noexcept { m_body = body; }

    /// Starts the thread, after stopping it if it runs (without limit of time, without termination). `E_INVALIDARG` without
    /// an owner or a body; otherwise the system's error, or `E_FAIL` if it gave none.
    HRESULT Start(void *owner, int32_t index) noexcept;
    /// Sets the wake event, if there is a thread.
    void Wake() noexcept;
    /// Clears the run flag, wakes the thread and waits `timeoutMs` for its end; with `bPumpMessages` the thread's message queue
    /// is served meanwhile, where there is one. Then the thread is terminated if it did not end and `bTerminate` is set;
    /// without, it is left to itself and must not touch this object later than this object lives. In all cases the object
    /// has no thread afterwards. `S_OK`; `S_FALSE` without a thread; the time-out status when the thread had not ended.
    ///
    /// A terminated thread stops between two instructions: nothing is unwound, locks that it held stay locked and memory
    /// that it owned is lost.
    HRESULT Stop(uint32_t timeoutMs, bool bTerminate, bool bPumpMessages = false) noexcept;

    /// Waits without limit for the wake event. False when the thread has to leave.
    bool WaitWake() noexcept;
    /// The run flag. A thread that `Stop` left to itself sees it cleared for ever, whatever was started in its place.
    bool Running() const noexcept;

    bool HasThread() const noexcept { return m_thread != nullptr; }
    /// The system's number of the thread, 0 without one.
    uint32_t ThreadId() const noexcept;
    void *Owner() const noexcept { return m_owner; }
    int32_t Index() const noexcept { return m_index; }

private:
    struct Thread;
    static void Entry(void *argument) noexcept;
    Thread *Mine() const noexcept;

    Body m_body;
    std::shared_ptr<Thread> m_thread;
    void *m_owner = nullptr;
    int32_t m_index = 0;
};

}    // namespace zck
