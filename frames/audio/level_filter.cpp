#include "frames/audio/level_filter.h"

#include <cmath>

namespace zck {
namespace {

constexpr double kPi = 3.14159265358979323846;

LevelSection SecondOrder(double k, double damping) {
    const double norm = 1.0 / (1.0 + damping * k + k * k);
    return {k * k * norm, 2.0 * (k * k - 1.0) * norm, (1.0 - damping * k + k * k) * norm};
}

}    // namespace

LevelTaps LevelTapsFor(int32_t rate) noexcept {
    const double cutoff = 1.0 / (static_cast<double>(rate) * 2.0 * kPi * 0.3);
    LevelTaps taps = {};
    taps.passes = !(cutoff < 0.5);
    if (taps.passes) return taps;
    const double k = std::tan(kPi * cutoff);
    taps.first = {k / (k + 1.0), (k - 1.0) / (k + 1.0), 0.0};
    taps.second[0] = SecondOrder(k, 2.0 * std::cos(kPi / 5.0));
    taps.second[1] = SecondOrder(k, 2.0 * std::cos(2.0 * kPi / 5.0));
    return taps;
}

}    // namespace zck
