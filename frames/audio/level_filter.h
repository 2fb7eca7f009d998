// The low-pass of the level meters: Butterworth, order 5.
#pragma once

#include <cstdint>

namespace zck {

/// One section: y = b * (x + 2 x1 + x2) - a1 * y1 - a2 * y2, and of order 1: y = b * (x + x1) - a1 * y1. Sections, because
/// the one direct form of order 5 is unstable at cut-offs this far below the sample rate: it grows without bound.
struct LevelSection {
    double b, a1, a2;
};

struct LevelTaps {
    LevelSection first;        // order 1
    LevelSection second[2];    // order 2
    bool passes;               // there is nothing to filter: the cut-off is half the rate or above
};

/// By bilinear transform with its cut-off met exactly; the gain at 0 is 1.
LevelTaps LevelTapsFor(int32_t rate) noexcept;

/// What the sections remember, all 0 at rest.
class LevelFilter {
public:
    double Run(const LevelTaps &taps, double x) noexcept {
        const double y0 = taps.first.b * (x + m_x[0]) - taps.first.a1 * m_y[0];
        m_x[0] = x;
        m_y[0] = y0;
        const double y1 = Second(taps.second[0], y0, m_x + 1, m_y + 1);
        return Second(taps.second[1], y1, m_x + 3, m_y + 3);
    }

private:
    static double Second(const LevelSection &s, double x, double *xs, double *ys) noexcept {
        // The newest result comes last, as the next sample waits for it.
        const double y = (s.b * (x + 2.0 * xs[0] + xs[1]) - s.a2 * ys[1]) - s.a1 * ys[0];
        xs[1] = xs[0];
        xs[0] = x;
        ys[1] = ys[0];
        ys[0] = y;
        return y;
    }

    double m_x[5] = {};
    double m_y[5] = {};
};

}    // namespace zck
