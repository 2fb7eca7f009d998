#include "frames/audio/resampler.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace zck {
namespace {

constexpr double kPi = 3.14159265358979323846;
using Floats = std::vector<float>;

Floats Resampled(Resampler &resampler, const Floats &input, size_t room) {
    Floats output(room);
    const int64_t made =
        resampler.Run(input.data(), static_cast<int64_t>(input.size()), output.data(), static_cast<int64_t>(room));
    output.resize(static_cast<size_t>(made));
    return output;
}

Floats Sine(double cycles, size_t n) {
    Floats samples(n);
    for (size_t i = 0; i < n; ++i) samples[i] = static_cast<float>(std::sin(2 * kPi * cycles * static_cast<double>(i)));
    return samples;
}

struct Rates {
    int32_t in, out;
};

// A sine far below the cut-off comes out as the sine at the new rate, times 0.98, without delay.
TEST(Resampler, KeepsASine) {
    for (const Rates r : {Rates{44100, 48000}, {48000, 44100}, {48000, 24000}, {8000, 48000}, {48000, 47999}, {1, 3}}) {
        Resampler resampler(r.in, r.out);
        const double cycles = 0.02 * std::min(1.0, static_cast<double>(r.out) / r.in);
        const Floats output = Resampled(resampler, Sine(cycles, 4000), 40000);
        for (size_t j = 200; j + 1 < output.size(); ++j) {
            const double position = static_cast<double>(j) * r.in / r.out;
            ASSERT_NEAR(0.98 * std::sin(2 * kPi * cycles * position), output[j], 0.01)
                << r.in << " to " << r.out << " at " << j;
        }
        // As many as lie 16 samples before the end.
        const auto wanted = static_cast<size_t>((int64_t{4000 - 16} * r.out + r.in - 1) / r.in);
        EXPECT_EQ(wanted, output.size()) << r.in << " to " << r.out;
    }
}

TEST(Resampler, CuttingTheInputChangesNothing) {
    const Floats input = Sine(0.013, 3000);
    Resampler whole(44100, 48000);
    const Floats expected = Resampled(whole, input, 5000);
    for (const size_t step : {1u, 7u, 100u, 1920u}) {
        Resampler parts(44100, 48000);
        Floats joined;
        for (size_t at = 0; at < input.size(); at += step) {
            const size_t n = std::min(step, input.size() - at);
            const Floats part = Resampled(
                parts, Floats(input.begin() + static_cast<ptrdiff_t>(at), input.begin() + static_cast<ptrdiff_t>(at + n)),
                n * 2 + 2);
            joined.insert(joined.end(), part.begin(), part.end());
        }
        EXPECT_EQ(expected, joined) << step;
    }
}

TEST(Resampler, RemovesWhatTheLowerRateCannotHold) {
    Resampler resampler(48000, 16000);
    const Floats output = Resampled(resampler, Sine(0.3, 6000), 3000);
    for (size_t j = 100; j < output.size(); ++j) ASSERT_NEAR(0.0, output[j], 0.02) << j;
}

TEST(Resampler, IntegersSaturate) {
    Resampler resampler(1, 1);
    std::vector<int16_t> input(200);
    for (size_t i = 0; i < input.size(); ++i) input[i] = i / 20 % 2 == 0 ? INT16_MAX : INT16_MIN;
    std::vector<int16_t> output(200);
    ASSERT_EQ(184, resampler.Run(input.data(), 200, output.data(), 200));
    EXPECT_EQ(INT16_MAX, *std::max_element(output.begin(), output.end()));
    EXPECT_EQ(INT16_MIN, *std::min_element(output.begin(), output.end()));
}

}    // namespace
}    // namespace zck
