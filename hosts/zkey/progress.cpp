#include "hosts/zkey/progress.h"

#include <cstdio>

namespace zkey {
namespace {

constexpr std::chrono::milliseconds kRenewal{200};
constexpr const char *kClear = "\r\033[K";

}    // namespace

void Note(const std::string &text) { std::fprintf(stderr, "zkey: %s\n", text.c_str()); }

std::string ProgressText(int64_t frames, int64_t total, double speed) {
    char text[128];
    std::string out = "frame " + std::to_string(frames);
    if (total > 0) out += " of " + std::to_string(total);
    std::snprintf(text, sizeof text, ", %.1f frames a second", speed);
    out += text;
    if (total > frames && speed > 0) {
        const auto left = static_cast<int64_t>(static_cast<double>(total - frames) / speed + 0.5);
        std::snprintf(text, sizeof text, ", %d:%02d left", static_cast<int>(left / 60), static_cast<int>(left % 60));
        out += text;
    }
    return out;
}

Progress::Progress(bool show, int64_t total) : m_show(show), m_total(total) {}

double Progress::Speed() const {
    const double seconds = std::chrono::duration<double>(Clock::now() - m_start).count();
    return seconds > 0 ? static_cast<double>(m_frames) / seconds : 0;
}

void Progress::Frame() {
    ++m_frames;
    const Clock::time_point now = Clock::now();
    if (!m_show || now - m_shown < kRenewal) return;
    m_shown = now;
    std::fprintf(stderr, "%szkey: %s", kClear, ProgressText(m_frames, m_total, Speed()).c_str());
    std::fflush(stderr);
}

void Progress::Done(const std::string &output) const {
    if (!m_show) return;
    char speed[64];
    std::snprintf(speed, sizeof speed, " frames, %.1f frames a second", Speed());
    std::fprintf(stderr, "%szkey: %s: %s%s\n", kClear, output.c_str(), std::to_string(m_frames).c_str(), speed);
}

}    // namespace zkey
