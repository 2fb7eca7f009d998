#include "frames/audio/level_meter.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <new>

#include "frames/audio/rounding.h"
#include "frames/audio/sample_form.h"

namespace zck {
namespace {

struct Sums {
    double squares = 0;
    double filteredSquares = 0;
    double largest = -std::numeric_limits<double>::infinity();    // filtered
};

// How a filtered value is rounded to the sample's form, and in which scale its peak is taken.
struct Rounded16 {
    using Sample = int16_t;
    static double Value(double y) { return RoundSaturateReal<int16_t>(y); }
    static double Peak(double value) { return value; }
};
struct Rounded32 {
    using Sample = float;
    static double Value(double y) { return static_cast<float>(y); }
    static double Peak(double value) { return RoundSaturateReal<int32_t>(value * 0x1p16); }
};

// What the filter makes of some samples. A loop of its own, whose state all lies in registers.
template <class Sample>
void RunFilter(const LevelTaps &taps, LevelFilter &kept, const Sample *samples, int64_t n, double *filtered) {
    LevelFilter filter = kept;
    for (int64_t i = 0; i < n; ++i) filtered[i] = filter.Run(taps, samples[i]);
    kept = filter;
}

template <class Rounded>
void Add(Sums &kept, const typename Rounded::Sample *samples, const double *filtered, int64_t n) {
    Sums sums = kept;
    for (int64_t i = 0; i < n; ++i) {
        const double x = samples[i];
        sums.squares += x * x;
        const double y = Rounded::Value(filtered[i]);
        sums.filteredSquares += y * y;
        sums.largest = std::max(sums.largest, y);
    }
    kept = sums;
}

template <class Rounded>
Sums SumUp(const LevelTaps &taps, LevelFilter &filter, const typename Rounded::Sample *samples, int64_t n) {
    constexpr int64_t kBlock = 256;
    double filtered[kBlock];
    Sums sums;
    for (int64_t i = 0; i < n; i += kBlock) {
        const int64_t count = std::min(n - i, kBlock);
        if (taps.passes)
            std::copy_n(samples + i, count, filtered);
        else
            RunFilter(taps, filter, samples + i, count, filtered);
        Add<Rounded>(sums, samples + i, filtered, count);
    }
    // Not-a-number counts as 0 among the peaks; it is in the sum if it was anywhere.
    if (sums.filteredSquares != sums.filteredSquares) sums.largest = std::max(sums.largest, 0.0);
    return sums;
}

template <class Sample>
double SquaresOf(const Sample *samples, int64_t n) {
    double sum = 0;
    for (int64_t i = 0; i < n; ++i) sum += static_cast<double>(samples[i]) * static_cast<double>(samples[i]);
    return sum;
}

float Db(double power) { return static_cast<float>(10.0 * std::log10(power)); }

template <class Rounded>
void LevelsOf(LevelTaps &taps, int32_t &tapsRate, LevelFilter &filter, const void *data, int64_t n, int32_t rate, double k,
              double peakScale, float *rms, float *vu, float *peak) {
    if (n < 1) return;
    const auto *samples = static_cast<const typename Rounded::Sample *>(data);
    if (vu == nullptr && peak == nullptr) {
        if (rms != nullptr) *rms = Db(k * SquaresOf(samples, n));
        return;
    }
    if (rate != tapsRate) {
        taps = LevelTapsFor(rate);
        tapsRate = rate;
        filter = {};
    }
    const Sums sums = SumUp<Rounded>(taps, filter, samples, n);
    if (rms != nullptr) *rms = Db(k * sums.squares);
    if (vu != nullptr) *vu = Db(k * sums.filteredSquares);
    // Rounding is monotonous: the largest of rounded values is the rounded largest.
    if (peak != nullptr) *peak = Db(Rounded::Peak(sums.largest) / peakScale);
}

void GainOf(void *samples, WorkForm form, int64_t n, double *gain, double step) {
    if (gain == nullptr || n < 1) return;
    GainApply(samples, form, 0, n, {*gain, step}, kMeterGain);
    if (step != 0.0) *gain += step * static_cast<double>(n);
}

}    // namespace

void IPPMeter16s::Levels(const void *samples, int64_t n, int32_t rate, float *rms, float *vu, float *peak) noexcept {
    const double k = 2.0 / (static_cast<double>(n) * 32767.0 * 32767.0);
    LevelsOf<Rounded16>(m_taps, m_rate, m_filter, samples, n, rate, k, 32767.0, rms, vu, peak);
}

void IPPMeter16s::GainAndLevels(void *samples, int64_t n, double *gain, double step, int32_t rate, float *rms, float *vu,
                                float *peak) noexcept {
    Gain(samples, n, gain, step);
    Levels(samples, n, rate, rms, vu, peak);
}

void IPPMeter16s::Gain(void *samples, int64_t n, double *gain, double step) noexcept {
    GainOf(samples, WorkForm::Int16, n, gain, step);
}

void IPPMeter16s::Reset() noexcept { m_filter = {}; }

void IPPMeter32f::Levels(const void *samples, int64_t n, int32_t rate, float *rms, float *vu, float *peak) noexcept {
    LevelsOf<Rounded32>(m_taps, m_rate, m_filter, samples, n, rate, 2.0 / static_cast<double>(n), 131072.0, rms, vu, peak);
}

void IPPMeter32f::GainAndLevels(void *samples, int64_t n, double *gain, double step, int32_t rate, float *rms, float *vu,
                                float *peak) noexcept {
    Gain(samples, n, gain, step);
    Levels(samples, n, rate, rms, vu, peak);
}

void IPPMeter32f::Gain(void *samples, int64_t n, double *gain, double step) noexcept {
    GainOf(samples, WorkForm::Float32, n, gain, step);
}

void IPPMeter32f::Reset() noexcept { m_filter = {}; }

bool MeterChannel(MeterHolder &holder, const Z_AUD_PROPS &props, void *samples, int64_t n, float *rms, float *vu,
                  float *peak) noexcept {
    const bool bFloat = WorkFormOf(props.nBitsPerSample) == WorkForm::Float32;
    if (!holder.meter || holder.bFloat != bFloat) {
        if (bFloat)
            holder.meter.reset(new (std::nothrow) IPPMeter32f);
        else
            holder.meter.reset(new (std::nothrow) IPPMeter16s);
        holder.bFloat = bFloat;
        if (!holder.meter) return false;
    }
    holder.meter->GainAndLevels(samples, n, nullptr, 0.0, props.nSamplesPerSec, rms, vu, peak);
    return true;
}

}    // namespace zck
