// Reals to integers: to the nearest, ties to even, saturated; not-a-number becomes 0. Without calls into the library, which
// cost more than the rest of a loop over samples.
#pragma once

#include <cstdint>
#include <limits>

namespace zck {

/// Of a value below 2 to the 51 in magnitude: the sum has no room for a fraction, and the processor rounds.
inline double RoundEven(double value) noexcept {
    constexpr double kNoFraction = 6755399441055744.0;    // 1.5 * 2^52
    return (value + kNoFraction) - kNoFraction;
}

/// As a real.
template <class Integer>
double RoundSaturateReal(double value) noexcept {
    constexpr double kLow = std::numeric_limits<Integer>::min();
    constexpr double kHigh = std::numeric_limits<Integer>::max();
    value = value == value ? value : 0.0;
    value = value < kLow ? kLow : value;
    value = value > kHigh ? kHigh : value;
    return RoundEven(value);
}

template <class Integer>
Integer RoundSaturate(double value) noexcept {
    return static_cast<Integer>(RoundSaturateReal<Integer>(value));
}

}    // namespace zck
