// Another sample rate for one channel.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

namespace zck {

/// Windowed sinc of 32 taps (Kaiser, 9.0), roll-off 0.95 of the lower half rate, gain 0.98. Output j lies at input position
/// j * in / out, counted from the first sample, before which 16 samples of silence stand; it is made as soon as 16 samples
/// behind that position are there. What a call leaves waits for the next: cutting the input differently changes no sample.
class Resampler {
public:
    static constexpr int kTaps = 32;
    static constexpr int64_t kHalf = kTaps / 2;

    /// Both rates above 0. May throw `std::bad_alloc`.
    Resampler(int32_t in, int32_t out);

    /// Takes all of `input` and makes at most `room` samples, with room for all that it can make: input * out / in + 2.
    /// `Sample` is `int16_t` or `float`. May throw `std::bad_alloc`.
    template <class Sample>
    int64_t Run(const Sample *input, int64_t count, Sample *output, int64_t room);

private:
    using Taps = std::array<double, kTaps>;
    Taps Make(int64_t phase) const;
    const Taps &At(int64_t phase);

    int64_t m_in;
    int64_t m_out;
    double m_cutoff;
    std::vector<Taps> m_table;        // by phase, where there are not too many
    std::vector<double> m_waiting;    // from 15 samples before the next position's on
    int64_t m_position = 0;           // of the next output, relative to sample 15 of those that wait
    int64_t m_phase = 0;              // behind that, in parts of m_out
    Taps m_one{};
};

}    // namespace zck
