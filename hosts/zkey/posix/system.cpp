#include "hosts/zkey/system.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <csignal>

namespace zkey {
namespace {

// Written in a signal handler, read by all threads.
std::atomic<bool> g_interrupted{false};
static_assert(std::atomic<bool>::is_always_lock_free);

// Written by the handler, so that a reader that waits for a pipe comes back, whichever thread the signal met.
int g_wake[2] = {-1, -1};

void OnInterrupt(int) {
    const int kept = errno;
    g_interrupted = true;
    const char any = 0;
    // A pipe that is full wakes the reader just as well.
    [[maybe_unused]] const ssize_t done = write(g_wake[1], &any, 1);
    errno = kept;
}

// Each frame that lives has a file open, and the usual limit is meant for programs that wait with select.
void RaiseLimitOfFiles() {
    rlimit limit{};
    if (getrlimit(RLIMIT_NOFILE, &limit) != 0) return;
    limit.rlim_cur = limit.rlim_max;
    setrlimit(RLIMIT_NOFILE, &limit);
}

}    // namespace

void SystemStart() {
    // A standard stream that was closed is taken the wrong way round, so that using it fails and no other file gets its number.
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (fcntl(stream, F_GETFD) < 0) open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY);
    }
    // A file that grows beyond the limit gives a write error instead of the end of the program.
    std::signal(SIGXFSZ, SIG_IGN);
    RaiseLimitOfFiles();
}

std::vector<std::string> Arguments(int argc, char **argv) { return {argv + (argc > 0 ? 1 : 0), argv + argc}; }

std::FILE *OpenFile(const std::string &path, const char *mode) { return std::fopen(path.c_str(), mode); }

int OpenForReading(const std::string &path) { return path == "-" ? STDIN_FILENO : open(path.c_str(), O_RDONLY | O_CLOEXEC); }

int64_t ReadSome(int descriptor, void *to, std::size_t bytes) {
    for (;;) {
        if (Interrupted()) return 0;
        pollfd wait[2] = {{descriptor, POLLIN, 0}, {g_wake[0], POLLIN, 0}};
        if (poll(wait, 2, -1) < 0 && errno != EINTR) return -1;
        if (wait[0].revents == 0) continue;
        const ssize_t got = read(descriptor, to, bytes);
        if (got >= 0 || errno != EINTR) return got;
    }
}

void CloseReading(int descriptor) {
    if (descriptor != STDIN_FILENO) close(descriptor);
}

int64_t FileSize(int descriptor) {
    struct stat info {};
    return fstat(descriptor, &info) == 0 && S_ISREG(info.st_mode) ? info.st_size : 0;
}

bool SeekReading(int descriptor, int64_t offset) { return lseek(descriptor, offset, SEEK_SET) == offset; }

bool IsFile(const std::string &path) {
    struct stat info {};
    return stat(path.c_str(), &info) == 0 && S_ISREG(info.st_mode);
}

bool IsFolder(const std::string &path) {
    struct stat info {};
    return stat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

bool Exists(const std::string &path) { return access(path.c_str(), F_OK) == 0; }

int64_t SizeOf(const std::string &path) {
    struct stat info {};
    return stat(path.c_str(), &info) == 0 ? info.st_size : 0;
}

void RemoveFile(const std::string &path) { unlink(path.c_str()); }

bool SameFile(const std::string &a, const std::string &b) {
    struct stat sa {};
    struct stat sb {};
    return stat(a.c_str(), &sa) == 0 && stat(b.c_str(), &sb) == 0 && S_ISREG(sa.st_mode) && sa.st_dev == sb.st_dev &&
           sa.st_ino == sb.st_ino;
}

bool ErrorIsTerminal() { return isatty(STDERR_FILENO) == 1; }
bool InputIsTerminal() { return isatty(STDIN_FILENO) == 1; }

void WatchInterrupt() {
    if (pipe(g_wake) != 0) return;
    struct sigaction action {};
    action.sa_handler = OnInterrupt;
    // The handler serves one signal; the next one ends the program.
    action.sa_flags = static_cast<int>(SA_RESETHAND);
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
    std::signal(SIGPIPE, SIG_IGN);
}

bool Interrupted() { return g_interrupted; }

}    // namespace zkey
