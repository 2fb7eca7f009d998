// Level meters of one sample form each.
#pragma once

#include <cstdint>
#include <memory>

#include "frames/audio/gain.h"
#include "frames/audio/level_filter.h"
#include "zchromakey/media_types.h"

namespace zck {

/// A meter remembers its filter from call to call; a change of the rate starts it at rest. For one thread at a time.
class IPPMeterBase {
public:
    virtual ~IPPMeterBase() = default;
    IPPMeterBase(const IPPMeterBase &) = delete;
    IPPMeterBase &operator=(const IPPMeterBase &) = delete;

    /// Levels of `n` samples in dB; each place may be null. Nothing is written for n below 1. Logarithms are stored as they
    /// come: minus infinity for silence, not-a-number for a wave whose filtered form stays below 0.
    virtual void Levels(const void *samples, int64_t n, int32_t rate, float *rms, float *vu, float *peak) noexcept = 0;
    /// `Gain` and then `Levels`.
    virtual void GainAndLevels(void *samples, int64_t n, double *gain, double step, int32_t rate, float *rms, float *vu,
                               float *peak) noexcept = 0;
    /// Multiplies by the gain at the place, which with a step runs on and is left where it ended. Null: nothing.
    virtual void Gain(void *samples, int64_t n, double *gain, double step) noexcept = 0;
    /// The filter goes back to rest.
    virtual void Reset() noexcept = 0;

protected:
    IPPMeterBase() = default;
};

/// Of 16-bit integers. A sine of full scale has an RMS of 0 dB.
class IPPMeter16s final : public IPPMeterBase {
public:
    void Levels(const void *samples, int64_t n, int32_t rate, float *rms, float *vu, float *peak) noexcept override;
    void GainAndLevels(void *samples, int64_t n, double *gain, double step, int32_t rate, float *rms, float *vu,
                       float *peak) noexcept override;
    void Gain(void *samples, int64_t n, double *gain, double step) noexcept override;
    void Reset() noexcept override;

private:
    LevelTaps m_taps = {};
    int32_t m_rate = 0;
    LevelFilter m_filter;
};

/// Of floats. Peaks read 3 dB less than those of integers: their scale is twice the filter's.
class IPPMeter32f final : public IPPMeterBase {
public:
    void Levels(const void *samples, int64_t n, int32_t rate, float *rms, float *vu, float *peak) noexcept override;
    void GainAndLevels(void *samples, int64_t n, double *gain, double step, int32_t rate, float *rms, float *vu,
                       float *peak) noexcept override;
    void Gain(void *samples, int64_t n, double *gain, double step) noexcept override;
    void Reset() noexcept override;

private:
    LevelTaps m_taps = {};
    int32_t m_rate = 0;
    LevelFilter m_filter;
};

/// The meter that fits the samples, made on demand.
struct MeterHolder {
    std::unique_ptr<IPPMeterBase> meter;
    bool bFloat = false;
};

/// Measures one channel of the record's working form; a holder of the other form gets a new meter. False without memory.
bool MeterChannel(MeterHolder &holder, const Z_AUD_PROPS &props, void *samples, int64_t n, float *rms, float *vu,
                  float *peak) noexcept;

}    // namespace zck
