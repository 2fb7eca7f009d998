#include "frames/audio/resampler.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include "frames/audio/rounding.h"

namespace zck {
namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr double kRollOff = 0.95;
constexpr double kGain = 0.98;
constexpr double kKaiser = 9.0;
constexpr int64_t kPhasesMax = 2048;

// The modified Bessel function of order 0, by its series.
double Bessel0(double x) {
    double sum = 1.0;
    double term = 1.0;
    for (int k = 1; term > sum * 1e-17; ++k) {
        term *= (x / 2.0 / k) * (x / 2.0 / k);
        sum += term;
    }
    return sum;
}

double Window(double t) {
    const double part = std::clamp(1.0 - t * t, 0.0, 1.0);
    return Bessel0(kKaiser * std::sqrt(part)) / Bessel0(kKaiser);
}

double Sinc(double x) { return x == 0.0 ? 1.0 : std::sin(kPi * x) / (kPi * x); }

int16_t Rounded(double value, int16_t) { return RoundSaturate<int16_t>(value); }
float Rounded(double value, float) { return static_cast<float>(value); }

}    // namespace

Resampler::Resampler(int32_t in, int32_t out)
    : m_in(in / std::gcd(in, out)),
      m_out(out / std::gcd(in, out)),
      m_cutoff(kRollOff * std::min(1.0, static_cast<double>(out) / in)),
      m_waiting(kHalf - 1, 0.0) {
    if (m_out > kPhasesMax) return;
    m_table.reserve(static_cast<size_t>(m_out));
    for (int64_t phase = 0; phase < m_out; ++phase) m_table.push_back(Make(phase));
}

// Tap k stands for the sample k - 15 behind the position's.
Resampler::Taps Resampler::Make(int64_t phase) const {
    Taps taps = {};
    for (int k = 0; k < kTaps; ++k) {
        const double t = static_cast<double>(phase) / static_cast<double>(m_out) - (k - (kHalf - 1));
        taps[static_cast<size_t>(k)] = kGain * m_cutoff * Sinc(m_cutoff * t) * Window(t / kHalf);
    }
    return taps;
}

const Resampler::Taps &Resampler::At(int64_t phase) {
    if (!m_table.empty()) return m_table[static_cast<size_t>(phase)];
    m_one = Make(phase);
    return m_one;
}

template <class Sample>
int64_t Resampler::Run(const Sample *input, int64_t count, Sample *output, int64_t room) {
    m_waiting.insert(m_waiting.end(), input, input + count);
    int64_t made = 0;
    const auto has = static_cast<int64_t>(m_waiting.size());
    while (m_position + kTaps <= has && made < room) {
        const Taps &taps = At(m_phase);
        const double *samples = m_waiting.data() + m_position;
        double sum = 0.0;
        for (int k = 0; k < kTaps; ++k) sum += taps[static_cast<size_t>(k)] * samples[k];
        output[made++] = Rounded(sum, Sample{});
        m_position += (m_phase + m_in) / m_out;
        m_phase = (m_phase + m_in) % m_out;
    }
    const int64_t done = std::min(m_position, has);
    m_waiting.erase(m_waiting.begin(), m_waiting.begin() + done);
    m_position -= done;
    return made;
}

template int64_t Resampler::Run(const int16_t *, int64_t, int16_t *, int64_t);
template int64_t Resampler::Run(const float *, int64_t, float *, int64_t);

}    // namespace zck
