// How a run ends that cannot go on: one line for the user and an exit status.
#pragma once

#include <stdexcept>
#include <string>

namespace zkey {

enum ExitStatus : int {
    kExitDone = 0,
    kExitFailed = 1,           ///< a file, a device or the keyer refused
    kExitUsage = 2,            ///< the command line makes no sense
    kExitInterrupted = 130,    ///< stopped by the user; what was written is complete
};

class Failure : public std::runtime_error {
public:
    Failure(ExitStatus status, const std::string &line) : std::runtime_error(line), m_status(status) {}
    ExitStatus Status() const { return m_status; }

private:
    ExitStatus m_status;
};

[[noreturn]] inline void Fail(const std::string &line) { throw Failure(kExitFailed, line); }
[[noreturn]] inline void FailUsage(const std::string &line) { throw Failure(kExitUsage, line); }

}    // namespace zkey
