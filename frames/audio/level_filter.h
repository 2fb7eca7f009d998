// The low-pass of the level meters: Butterworth, order 5.
#pragma once

#include <cstdint>

namespace zck {

/// The sections, each with the numerator (1 + z^-1) once or twice: a1 of order 1, then a1 and a2 twice. The gain of all stands
/// at the end. Sections, because the one direct form of order 5 is unstable at cut-offs this far below the sample rate: it
/// grows without bound.
struct LevelTaps {
    double first;
    double second[2][2];
    double gain;
    bool passes;    // there is nothing to filter: the cut-off is half the rate or above
};

/// By bilinear transform with its cut-off met exactly; the gain at 0 is 1.
LevelTaps LevelTapsFor(int32_t rate) noexcept;

/// What the sections remember, all 0 at rest.
class LevelFilter {
public:
    double Run(const LevelTaps &taps, double x) noexcept {
        const double y = (x + m_x) - taps.first * m_y;
        const double first = y + m_y;
        m_x = x;
        m_y = y;
        const double second = m_a.Run(taps.second[0], first) + m_a.before;
        return taps.gain * m_b.Run(taps.second[1], second);
    }

private:
    struct Section {
        double sum = 0;     // of two input samples, the last one's
        double last = 0;    // results, newest first
        double before = 0;
        double Run(const double (&a)[2], double pair) noexcept {
            // The newest result comes last, as the next sample waits for it.
            const double y = (pair + sum - a[1] * before) - a[0] * last;
            sum = pair;
            before = last;
            last = y;
            return y;
        }
    };

    double m_x = 0;
    double m_y = 0;
    Section m_a;
    Section m_b;
};

}    // namespace zck
