#include "tests/support/child_process.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/types.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <utility>

namespace zck::test {

struct ChildProcess::State {
    pid_t pid = 0;
    int input = -1;     // the end that we write
    int output = -1;    // the end that we read

    int WaitEnd() {
        if (pid == 0) return -1;
        int status = 0;
        while (waitpid(pid, &status, 0) < 0 && errno == EINTR) {
        }
        pid = 0;
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }
    static void Close(int &fd) {
        if (fd >= 0) close(fd);
        fd = -1;
    }
};

ChildProcess::ChildProcess() : m_state(std::make_unique<State>()) {}

ChildProcess::~ChildProcess() {
    Kill();
    State::Close(m_state->output);
}

bool ChildProcess::Start(const std::string &role, const std::vector<std::string> &args) {
    std::signal(SIGPIPE, SIG_IGN);    // a child that is gone shows in the result of the write
    std::vector<std::string> words = {"/proc/self/exe", "--child", role};
    words.insert(words.end(), args.begin(), args.end());
    std::vector<char *> argv;
    for (std::string &word : words) argv.push_back(word.data());
    argv.push_back(nullptr);

    int in[2];
    int out[2];
    if (pipe2(in, O_CLOEXEC) != 0) return false;
    if (pipe2(out, O_CLOEXEC) != 0) {
        close(in[0]);
        close(in[1]);
        return false;
    }
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, in[0], STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions, out[1], STDOUT_FILENO);
    const int error = posix_spawn(&m_state->pid, words[0].c_str(), &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    close(in[0]);
    close(out[1]);
    m_state->input = in[1];
    m_state->output = out[0];
    if (error != 0) m_state->pid = 0;
    return error == 0;
}

bool ChildProcess::Send(const std::string &line) {
    const std::string bytes = line + "\n";
    for (size_t done = 0; done < bytes.size();) {
        const ssize_t n = write(m_state->input, bytes.data() + done, bytes.size() - done);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) return false;
        done += static_cast<size_t>(n);
    }
    return true;
}

std::string ChildProcess::ReadLine() {
    std::string line;
    for (;;) {
        char c = 0;
        const ssize_t n = read(m_state->output, &c, 1);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0 || c == '\n') return line;
        line += c;
    }
}

int ChildProcess::Wait() {
    State::Close(m_state->input);
    return m_state->WaitEnd();
}

void ChildProcess::Kill() {
    if (m_state->pid != 0) kill(m_state->pid, SIGKILL);
    Wait();
}

}    // namespace zck::test
