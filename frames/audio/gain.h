// Gains: decibels, constant factors and ramps.
#pragma once

#include <cstdint>

#include "frames/audio/sample_kernels.h"

namespace zck {

/// 10 ^ (dB / 20), and back.
double GainFromDb(double dB) noexcept;
double DbFromGain(double gain) noexcept;

/// A gain that runs over samples: `start` + i * `step` at sample i. Neither need be finite.
struct GainRamp {
    double start = 1.0;
    double step = 0.0;
    /// From one gain to another over so many samples. Equal gains have step 0, also where they are infinite.
    static GainRamp Between(double from, double to, int64_t samples) noexcept;
    bool Neutral() const noexcept { return start == 1.0 && step == 0.0; }
};

/// How integers are multiplied: the gain becomes a 16-bit factor of `scale`, and the product is shifted right, with ties to
/// even and saturation. What leaves the factor's 16 bits is cut to them.
struct IntegerGain {
    double scale;
    int32_t shift;
};
constexpr IntegerGain kMeterGain = {256.0, 8};          ///< gains up to 128
constexpr IntegerGain kMixGain = {32767.0 / 32, 10};    ///< gains up to 32

/// Multiplies a part of a channel in its form: floats by the gain rounded to 32 bits, integers as told. The ramp starts
/// `first` samples before it.
void GainApply(void *samples, WorkForm form, int64_t first, int64_t count, const GainRamp &ramp,
               const IntegerGain &integer) noexcept;

}    // namespace zck
