// What the user sees while the program works: one line on a terminal that renews itself, nothing in a pipe.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>

namespace zkey {

class Progress {
public:
    /// `total` 0: unknown.
    Progress(bool show, int64_t total);
    void Frame();
    /// Clears the line and, when `show` was set, tells frames and speed.
    void Done(const std::string &output) const;
    int64_t Frames() const { return m_frames; }
    /// Frames per second since the first one.
    double Speed() const;

private:
    using Clock = std::chrono::steady_clock;

    bool m_show;
    int64_t m_total;
    int64_t m_frames = 0;
    Clock::time_point m_start = Clock::now();
    Clock::time_point m_shown = m_start;
};

/// The text of the line.
std::string ProgressText(int64_t frames, int64_t total, double speed);
/// A note to the user on standard error: "zkey: ..." and a new line.
void Note(const std::string &text);

}    // namespace zkey
