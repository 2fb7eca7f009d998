// Sine, cosine and exponential by additions and multiplications alone: the same bits from every compiler and on every system,
// which the C library's own do not promise. Good to about 1e-9.
#pragma once

#include <cmath>

namespace zck {

inline double ExactSine(double x) {
    constexpr double kPi = 3.14159265358979323846;
    // To the nearest multiple of pi, and the sign of that half wave.
    const double half = std::floor(x / kPi + 0.5);
    const double t = x - half * kPi;
    const double s = t * t;
    double sum = 1;
    for (int n = 17; n > 1; n -= 2) sum = 1 - s / (n * (n - 1)) * sum;
    return half == 2 * std::floor(half / 2) ? t * sum : -t * sum;
}

inline double ExactCosine(double x) { return ExactSine(x + 1.57079632679489661923); }

/// For arguments of usual size.
inline double ExactExp(double x) {
    constexpr int kHalvings = 10;
    double t = x;
    for (int i = 0; i < kHalvings; ++i) t /= 2;
    double sum = 1;
    for (int n = 8; n > 0; --n) sum = 1 + t / n * sum;
    for (int i = 0; i < kHalvings; ++i) sum *= sum;
    return sum;
}

}    // namespace zck
