// A second thread for pictures.
#pragma once

#include "platform/sync.h"
#include "platform/worker_thread.h"

namespace zck {

/// A thread that does one piece of work at a time. It is started by the first piece and kept. For one caller at a time; ends
/// with the object.
class RowHelper {
public:
    using Work = void (*)(void *argument);

    /// Lets the thread do `work(argument)`, which throws nothing. False when there is no thread to be had: the work is left
    /// to the caller.
    bool Begin(Work work, void *argument) noexcept;
    /// Waits for its end; after each `Begin` that was true.
    void End() noexcept { m_done.Wait(kInfinite); }

private:
    static void Body(void *owner, int32_t index, CWorkerThread &self);

    Work m_work = nullptr;
    void *m_argument = nullptr;
    Event m_done{true};
    CWorkerThread m_thread{&RowHelper::Body};    // last, to be stopped first
};

}    // namespace zck
