// Threads of the C library. To terminate one, a real-time signal is sent to it whose handler leaves the kernel's thread at
// once. The C library's own cancellation is no means for that: it unwinds, and unwinding from an arbitrary instruction
// ends the process at the first function that cannot throw.
#include "platform/thread.h"

#include <pthread.h>
#include <signal.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>

#include "platform/process.h"
#include "platform/status.h"
#include "platform/sync.h"

namespace zck {
namespace {

/// Outlives both sides: whichever comes last frees it.
struct Run {
    SystemThread::Entry entry;
    void *argument;
    Event started{true};
    Event ended{true};
    std::atomic<uint32_t> id{0};
};

thread_local Run *t_run = nullptr;

/// Runs on the thread that is to be terminated, which is one of ours: others ignore the signal.
void OnTerminate(int) {
    Run *run = t_run;
    if (run == nullptr) return;
    run->ended.Set();
    syscall(SYS_exit, 0);
}

/// A real-time signal that nobody handled when the first thread was started.
int TerminateSignal() noexcept {
    static const int signal = [] {
        for (int candidate = SIGRTMAX; candidate > SIGRTMIN; --candidate) {
            struct sigaction present = {};
            if (sigaction(candidate, nullptr, &present) == 0 && present.sa_handler == SIG_DFL) return candidate;
        }
        return SIGRTMAX;
    }();
    return signal;
}

/// Blocks the host's signals while a thread inherits the mask; faults, profiling and termination still arrive.
class SignalsBlocked {
public:
    SignalsBlocked() noexcept {
        sigset_t blocked;
        sigfillset(&blocked);
        for (const int open : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGTRAP, SIGABRT, SIGPROF, TerminateSignal()}) {
            sigdelset(&blocked, open);
        }
        pthread_sigmask(SIG_SETMASK, &blocked, &m_before);
    }
    ~SignalsBlocked() { pthread_sigmask(SIG_SETMASK, &m_before, nullptr); }
    SignalsBlocked(const SignalsBlocked &) = delete;
    SignalsBlocked &operator=(const SignalsBlocked &) = delete;

private:
    sigset_t m_before;
};

void *ThreadMain(void *argument) {
    const std::unique_ptr<std::shared_ptr<Run>> holder(static_cast<std::shared_ptr<Run> *>(argument));
    Run &run = **holder;
    t_run = &run;
    run.id = CurrentThreadId();
    run.started.Set();
    run.entry(run.argument);
    t_run = nullptr;
    run.ended.Set();
    return nullptr;
}

class PosixThread final : public SystemThread {
public:
    explicit PosixThread(std::shared_ptr<Run> run) noexcept : m_run(std::move(run)) {}
    ~PosixThread() override {
        if (m_state == State::Ended) pthread_join(m_thread, nullptr);
        if (m_state == State::Running) pthread_detach(m_thread);
    }

    /// Returns the system's error. Allocates all it needs before the thread runs: from then on nothing fails.
    int Start() {
        auto holder = std::make_unique<std::shared_ptr<Run>>(m_run);
        int error = 0;
        {
            const SignalsBlocked blocked;
            error = pthread_create(&m_thread, nullptr, ThreadMain, holder.get());
        }
        if (error != 0) return error;
        static_cast<void>(holder.release());    // the thread has it now
        m_state = State::Running;
        m_run->started.Wait(kInfinite);
        return 0;
    }

    bool WaitEnd(uint32_t ms, bool) noexcept override {
        const bool ended = m_run->ended.Wait(ms);
        if (ended) m_state = State::Ended;
        return ended;
    }

    // The thread's stack stays mapped: others may hold pointers into it. The wait is for a thread that sits in a system call
    // which no signal interrupts.
    void Terminate() noexcept override {
        struct sigaction action = {};
        action.sa_handler = OnTerminate;
        action.sa_flags = SA_RESTART;
        sigfillset(&action.sa_mask);
        sigaction(TerminateSignal(), &action, nullptr);
        if (pthread_kill(m_thread, TerminateSignal()) == 0) m_run->ended.Wait(1000);
    }

    uint32_t Id() const noexcept override { return m_run->id; }

private:
    enum class State { NotStarted, Running, Ended };

    pthread_t m_thread{};
    std::shared_ptr<Run> m_run;
    State m_state = State::NotStarted;
};

}    // namespace

HRESULT SystemThread::Start(Entry entry, void *argument, std::unique_ptr<SystemThread> &out) noexcept {
    return Guarded([&] {
        auto run = std::make_shared<Run>();
        run->entry = entry;
        run->argument = argument;
        auto made = std::make_unique<PosixThread>(std::move(run));
        if (const int error = made->Start()) return SystemErrorStatus(error, E_FAIL);
        out = std::move(made);
        return S_OK;
    });
}

}    // namespace zck
