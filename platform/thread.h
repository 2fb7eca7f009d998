// One run of a system thread; the back-ends' part of `worker_thread.h`.
#pragma once

#include <cstdint>
#include <memory>

#include "zchromakey/com.h"

namespace zck {

/// A thread that was started. Owned by one thread at a time.
class SystemThread {
public:
    using Entry = void (*)(void *argument) noexcept;

    virtual ~SystemThread() = default;
    /// Waits for the thread's end; false after the time-out. With `pumpMessages` the caller's message queue is served.
    virtual bool WaitEnd(uint32_t ms, bool pumpMessages) noexcept = 0;
    /// Ends the thread where it stands, without unwinding.
    virtual void Terminate() noexcept = 0;
    virtual uint32_t Id() const noexcept = 0;

    /// Starts `entry` on a new thread, with the object model initialised around it. Destroying the object lets go of a thread
    /// that still runs. A failure is the system's error, or `E_FAIL`.
    static HRESULT Start(Entry entry, void *argument, std::unique_ptr<SystemThread> &out) noexcept;
};

}    // namespace zck
