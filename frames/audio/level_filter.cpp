#include "frames/audio/level_filter.h"

#include <cmath>

namespace zck {
namespace {

constexpr double kPi = 3.14159265358979323846;

// Gives the gain of the section.
double SecondOrder(double k, double damping, double (&a)[2]) {
    const double norm = 1.0 / (1.0 + damping * k + k * k);
    a[0] = 2.0 * (k * k - 1.0) * norm;
    a[1] = (1.0 - damping * k + k * k) * norm;
    return k * k * norm;
}

}    // namespace

LevelTaps LevelTapsFor(int32_t rate) noexcept {
    const double cutoff = 1.0 / (static_cast<double>(rate) * 2.0 * kPi * 0.3);
    LevelTaps taps = {};
    taps.passes = !(cutoff < 0.5);
    if (taps.passes) return taps;
    const double k = std::tan(kPi * cutoff);
    taps.first = (k - 1.0) / (k + 1.0);
    taps.gain = k / (k + 1.0);
    taps.gain *= SecondOrder(k, 2.0 * std::cos(kPi / 5.0), taps.second[0]);
    taps.gain *= SecondOrder(k, 2.0 * std::cos(2.0 * kPi / 5.0), taps.second[1]);
    return taps;
}

}    // namespace zck
