// Forked children for tests of what processes leave to each other. They share the parent's memory image, not its threads.
#pragma once

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <functional>

namespace zck::test {

/// A child process that does its work, says so and then sleeps until it is killed.
class ForkedChild {
public:
    explicit ForkedChild(const std::function<bool()> &work) {
        int ends[2];
        if (pipe(ends) != 0) return;
        m_pid = fork();
        if (m_pid == 0) {
            const char answer = work() ? 1 : 0;
            const bool told = write(ends[1], &answer, 1) == 1;
            while (told) pause();
            _exit(1);
        }
        close(ends[1]);
        char answer = 0;
        m_ok = m_pid > 0 && read(ends[0], &answer, 1) == 1 && answer == 1;
        close(ends[0]);
    }
    ForkedChild(const ForkedChild &) = delete;
    ForkedChild &operator=(const ForkedChild &) = delete;
    ~ForkedChild() { Kill(); }
    bool Ok() const { return m_ok; }
    void Kill() {
        if (m_pid <= 0) return;
        kill(m_pid, SIGKILL);
        waitpid(m_pid, nullptr, 0);
        m_pid = 0;
    }

private:
    pid_t m_pid = 0;
    bool m_ok = false;
};

/// The exit status of `work` in a child process.
inline int RunForked(const std::function<int()> &work) {
    const pid_t pid = fork();
    if (pid == 0) _exit(work());
    int status = -1;
    waitpid(pid, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

}    // namespace zck::test
