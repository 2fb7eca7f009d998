#include "frames/audio/gain.h"

#include <cmath>

#include "frames/audio/rounding.h"

namespace zck {
namespace {

int16_t Product(int16_t sample, int16_t factor, int32_t shift) {
    return RoundSaturate<int16_t>(static_cast<double>(sample * factor) / (1 << shift));
}

// Values of a ramp come from the place alone, so that blocks give what the whole gives.
void Ramp16(int16_t *samples, int64_t first, int64_t count, double start, double step, int32_t shift) {
    for (int64_t i = 0; i < count; ++i)
        samples[i] = Product(samples[i], RoundSaturate<int16_t>(start + static_cast<double>(first + i) * step), shift);
}

void Ramp32(float *samples, int64_t first, int64_t count, double start, double step) {
    for (int64_t i = 0; i < count; ++i) samples[i] *= static_cast<float>(start + static_cast<double>(first + i) * step);
}

}    // namespace

double GainFromDb(double dB) noexcept { return std::pow(10.0, dB / 20.0); }
double DbFromGain(double gain) noexcept { return 20.0 * std::log10(gain); }

GainRamp GainRamp::Between(double from, double to, int64_t samples) noexcept {
    if (from == to) return {from, 0.0};
    return {from, (to - from) / static_cast<double>(samples)};
}

void GainApply(void *samples, WorkForm form, int64_t first, int64_t count, const GainRamp &ramp,
               const IntegerGain &integer) noexcept {
    if (ramp.Neutral()) return;
    const SampleKernels &kernels = SampleKernelsGet();
    if (form == WorkForm::Float32) {
        auto *floats = static_cast<float *>(samples);
        if (ramp.step == 0.0)
            kernels.gain32(floats, count, static_cast<float>(ramp.start));
        else
            Ramp32(floats, first, count, ramp.start, ramp.step);
        return;
    }
    auto *integers = static_cast<int16_t *>(samples);
    const double start = ramp.start * integer.scale;
    if (ramp.step == 0.0)
        kernels.gain16(integers, count, RoundSaturate<int16_t>(start), integer.shift);
    else
        Ramp16(integers, first, count, start, ramp.step * integer.scale, integer.shift);
}

}    // namespace zck
