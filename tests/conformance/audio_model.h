// A second, dull walk through the arithmetic on sound, sample by sample, against which the library's is compared. Nothing here
// is shared with the library but the public records and statuses.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tests/conformance/wav_model.h"

namespace conformance {

// How a channel is worked on.
enum class Work { None, Short, Real };

Work WorkOf(int64_t bits);
int64_t SampleWidth(int64_t bits);
bool SoundValid(const Z_AUD_PROPS &p);
int64_t SoundBytes(const Z_AUD_PROPS &p, int64_t samples);
int64_t SoundSamples(const Z_AUD_PROPS &p, int64_t bytes);

// One number of a stored form as a real number of full scale 1, and back.
double Stored(const uint8_t *at, int64_t bits);
void Store(uint8_t *at, int64_t bits, Work work, double value);

int64_t ToNearest(double value, int64_t least, int64_t most);

// The items of a map; a text without one gives none.
std::vector<int32_t> MapItems(const std::string &map);

// Channels of working samples. A sample of a channel is a 16-bit number or a real one.
struct Channels {
    Work work = Work::None;
    std::vector<Bytes> of;

    static int64_t Unit(Work work) { return work == Work::Short ? 2 : 4; }
    double Get(size_t channel, int64_t i) const;
    void Put(size_t channel, int64_t i, double value);
    int64_t Samples(size_t channel) const { return static_cast<int64_t>(of[channel].size()) / Unit(work); }

    // `bits` 0 works in the record's own form. S_OK, or a status that leaves everything as it was.
    HRESULT Split(const Z_AUD_PROPS &p, const Bytes &sound, const std::string &map, int32_t bits);
    // Writes the samples from `first` on of a block; what a channel lacks stays as it is.
    void Join(const Z_AUD_PROPS &p, int64_t first, int64_t samples, Bytes &sound) const;
    bool MixDown(int32_t target);
};

// Levels as they are measured: one low-pass for all channels of a walk, in turn.
class Meter {
public:
    void Measure(const Channels &channels, size_t channel, int64_t n, int32_t rate, float *rms, float *vu, float *peak);

private:
    double Filtered(double x, int32_t rate);
    int32_t m_rate = 0;
    long double m_state[5] = {};
};

// The samples of a channel times a gain that starts at `start` and grows by `step`.
void LevelGain(Channels &channels, size_t channel, int64_t n, double start, double step);
void MixGain(Channels &channels, size_t channel, int64_t n, double start, double step);

// The sound of a frame: record, bytes, levels and the split copy.
struct Sound {
    Z_AUD_PROPS props = {};
    Bytes bytes;
    Z_ANC_DATA levels = {};
    Channels channels;

    int64_t Samples() const { return SoundSamples(props, static_cast<int64_t>(bytes.size())); }

    HRESULT Set(const Z_AUD_PROPS *p, const Bytes &sound);
    HRESULT SetSamples(const Z_AUD_PROPS *p, int32_t samples);
    HRESULT Channel(int32_t index, bool grow, Bytes &out);
    HRESULT Commit();
    HRESULT Gain(const std::string &map, double from, double to);
    HRESULT Add(const Sound *source, int32_t *sourcePos, int32_t *destPos, int32_t count, double from, double to, bool fade);
    HRESULT Mix(const Sound *source, double from, double to, bool fade);
    HRESULT CopyTo(const std::string &map, Sound *dest) const;
    HRESULT SetProps(Z_AUD_PROPS wanted, const std::string &map);
    HRESULT FromWav(const std::string &file, int32_t first, int32_t count);

private:
    void Fill(bool original);
    bool Measured() const;
};

}    // namespace conformance
