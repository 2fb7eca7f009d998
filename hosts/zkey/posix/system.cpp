#include "hosts/zkey/system.h"

#include <sys/stat.h>
#include <unistd.h>

#include <csignal>

namespace zkey {
namespace {

volatile std::sig_atomic_t g_interrupted = 0;

void OnInterrupt(int) { g_interrupted = 1; }

}    // namespace

void SystemStart() {}

std::vector<std::string> Arguments(int argc, char **argv) { return {argv + (argc > 0 ? 1 : 0), argv + argc}; }

std::FILE *OpenFile(const std::string &path, const char *mode) { return std::fopen(path.c_str(), mode); }

bool SameFile(const std::string &a, const std::string &b) {
    struct stat sa {};
    struct stat sb {};
    return stat(a.c_str(), &sa) == 0 && stat(b.c_str(), &sb) == 0 && S_ISREG(sa.st_mode) && sa.st_dev == sb.st_dev &&
           sa.st_ino == sb.st_ino;
}

bool ErrorIsTerminal() { return isatty(STDERR_FILENO) == 1; }

void WatchInterrupt() {
    struct sigaction action {};
    action.sa_handler = OnInterrupt;
    // No restart of system calls: a blocked read of a pipe has to come back. The handler serves one signal only.
    action.sa_flags = static_cast<int>(SA_RESETHAND);
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
    std::signal(SIGPIPE, SIG_IGN);
}

bool Interrupted() { return g_interrupted != 0; }

}    // namespace zkey
