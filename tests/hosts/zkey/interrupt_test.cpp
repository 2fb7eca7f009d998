// What an interrupt leaves behind. Needs signals between processes.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <ctime>
#include <fstream>
#include <string>

#include "hosts/zkey/failure.h"
#include "tests/hosts/zkey/scratch.h"

namespace {

void Pause(int milliseconds) {
    const timespec pause{0, milliseconds * 1'000'000};
    nanosleep(&pause, nullptr);
}

/// Starts the program reading raw frames from a pipe that stays open, and gives the writing end.
class Running {
public:
    explicit Running(const std::string &output) {
        int ends[2] = {-1, -1};
        if (pipe(ends) != 0) return;
        m_child = fork();
        if (m_child == 0) {
            dup2(ends[0], 0);
            close(ends[0]);
            close(ends[1]);
            execl(ZKEY_PROGRAM, ZKEY_PROGRAM, "key", "-", "--raw", "RGB32:64x64", "-q", "-o", output.c_str(), nullptr);
            _exit(99);
        }
        close(ends[0]);
        m_pipe = ends[1];
    }
    ~Running() {
        if (m_pipe >= 0) close(m_pipe);
        if (m_child > 0) {
            kill(m_child, SIGKILL);
            waitpid(m_child, nullptr, 0);
        }
    }
    Running(const Running &) = delete;
    Running &operator=(const Running &) = delete;

    void Feed(const std::vector<uint8_t> &bytes) const {
        EXPECT_EQ(write(m_pipe, bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
    }
    /// Until the program catches interrupts itself.
    void WaitUntilItListens() const {
        constexpr unsigned long long kInterruptBit = 1ULL << (SIGINT - 1);
        for (int i = 0; i < 3000; ++i) {
            std::ifstream status("/proc/" + std::to_string(m_child) + "/status");
            for (std::string line; std::getline(status, line);) {
                if (line.starts_with("SigCgt:") && (std::stoull(line.substr(7), nullptr, 16) & kInterruptBit) != 0) return;
            }
            Pause(10);
        }
        ADD_FAILURE() << "the program does not catch interrupts";
    }
    /// Sends the interrupt and waits for the end.
    int Interrupt() {
        kill(m_child, SIGINT);
        int status = 0;
        for (int i = 0; i < 1000; ++i) {
            if (waitpid(m_child, &status, WNOHANG) == m_child) {
                m_child = -1;
                return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
            }
            Pause(10);
        }
        return -2;    // it does not end; the destructor sees to it
    }

private:
    int m_pipe = -1;
    pid_t m_child = -1;
};

std::vector<uint8_t> GreenFrame() {
    std::vector<uint8_t> bytes;
    for (int i = 0; i < 64 * 64; ++i) bytes.insert(bytes.end(), {40, 190, 30, 0});
    return bytes;
}

void WaitForFile(const std::string &path) {
    for (int i = 0; i < 500 && !std::filesystem::exists(path); ++i) Pause(10);
}

TEST(Interrupt, KeepsTheFramesThatWereDone) {
    const Scratch scratch;
    Running program(scratch.Path("out.raw"));
    for (int i = 0; i < 6; ++i) program.Feed(GreenFrame());
    WaitForFile(scratch.Path("out.raw"));
    // It now waits in the middle of the seventh frame.
    program.Feed(std::vector<uint8_t>(100));
    EXPECT_EQ(program.Interrupt(), zkey::kExitInterrupted);
    const std::size_t size = scratch.Read("out.raw").size();
    EXPECT_EQ(size % (64 * 64 * 4), 0U);
    EXPECT_GE(size, 64U * 64 * 4);
}

TEST(Interrupt, BeforeTheFirstFrameWritesNothing) {
    const Scratch scratch;
    Running program(scratch.Path("out.raw"));
    program.WaitUntilItListens();
    EXPECT_EQ(program.Interrupt(), zkey::kExitInterrupted);
    EXPECT_FALSE(std::filesystem::exists(scratch.Path("out.raw")));
}

}    // namespace
