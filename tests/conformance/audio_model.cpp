#include "tests/conformance/audio_model.h"

#include <algorithm>
#include <cfenv>
#include <cmath>
#include <cstring>
#include <limits>
#include <numbers>

namespace conformance {
namespace {

constexpr double kFull = 32767.0;

int64_t Magnitude(int64_t bits) { return bits < 0 ? -bits : bits; }

int64_t IntegerAt(const uint8_t *at, int64_t width) {
    int64_t value = 0;
    for (int64_t i = 0; i < width; ++i) value += static_cast<int64_t>(at[i]) << (8 * i);
    return at[width - 1] >= 128 ? value - (int64_t{1} << (8 * width)) : value;
}

double InFloat(double value) { return static_cast<double>(static_cast<float>(value)); }

double FromDb(double db) { return std::pow(10.0, db / 20.0); }

double ToDb(double power) { return 10.0 * std::log10(power); }

// A factor as a 16-bit number, times a sample, over 2 to the shift.
double Scaled(double sample, double factor, int shift) {
    const double whole = static_cast<double>(ToNearest(factor, -32768, 32767));
    return static_cast<double>(ToNearest(sample * whole / std::pow(2.0, shift), -32768, 32767));
}

// Whole samples of one channel that a store of this size holds at most.
int64_t UsedBytes(const Z_AUD_PROPS &p, int64_t bytes, Work work) {
    return bytes / p.nChannels * Channels::Unit(work) / SampleWidth(p.nBitsPerSample);
}

}    // namespace

int64_t ToNearest(double value, int64_t least, int64_t most) {
    if (std::isnan(value)) return 0;
    if (value <= static_cast<double>(least)) return least;
    if (value >= static_cast<double>(most)) return most;
    const double down = std::floor(value);
    const auto whole = static_cast<int64_t>(down);
    const double rest = value - down;
    if (rest > 0.5 || (rest == 0.5 && whole % 2 != 0)) return whole + 1;
    return whole;
}

Work WorkOf(int64_t bits) {
    if (bits >= 9 && bits <= 16) return Work::Short;
    if (bits >= 17 && bits <= 32) return Work::Real;
    return bits <= -25 && bits >= -32 ? Work::Real : Work::None;
}

int64_t SampleWidth(int64_t bits) { return (Magnitude(bits) + 7) / 8; }

bool SoundValid(const Z_AUD_PROPS &p) { return p.nChannels > 0 && p.nSamplesPerSec > 0 && p.nBitsPerSample != 0; }

int64_t SoundBytes(const Z_AUD_PROPS &p, int64_t samples) {
    return SoundValid(p) ? samples * p.nChannels * SampleWidth(p.nBitsPerSample) : 0;
}

int64_t SoundSamples(const Z_AUD_PROPS &p, int64_t bytes) {
    return SoundValid(p) ? bytes / (p.nChannels * SampleWidth(p.nBitsPerSample)) : 0;
}

double Stored(const uint8_t *at, int64_t bits) {
    if (bits < 0) {
        float value = 0;
        std::memcpy(&value, at, 4);
        return static_cast<double>(value);
    }
    const int64_t width = SampleWidth(bits);
    return std::ldexp(static_cast<double>(IntegerAt(at, width)), static_cast<int>(1 - 8 * width));
}

void Store(uint8_t *at, int64_t bits, Work work, double value) {
    const double full = work == Work::Short ? value / 32768.0 : value;
    if (bits < 0) {
        const auto real = static_cast<float>(full);
        std::memcpy(at, &real, 4);
        return;
    }
    const int64_t width = SampleWidth(bits), most = (int64_t{1} << (8 * width - 1)) - 1;
    const int64_t whole = ToNearest(std::ldexp(full, static_cast<int>(8 * width - 1)), -most - 1, most);
    for (int64_t i = 0; i < width; ++i) at[i] = static_cast<uint8_t>(whole >> (8 * i));
}

std::vector<int32_t> MapItems(const std::string &map) {
    std::vector<int32_t> items;
    const std::string known = "0123456789-.";
    for (size_t at = map.find_first_of(known); at != std::string::npos && items.size() < 128;
         at = map.find_first_of(known, at)) {
        const size_t end = std::min(map.find_first_not_of(known, at), map.size());
        const bool minus = map[at] == '-';
        int64_t value = 0;
        for (size_t i = at + (minus ? 1 : 0); i < end && map[i] >= '0' && map[i] <= '9'; ++i)
            value = std::min<int64_t>(value * 10 + (map[i] - '0'), 0x80000000LL);
        items.push_back(static_cast<int32_t>(minus ? -value : std::min<int64_t>(value, 0x7FFFFFFF)));
        at = end;
    }
    return items;
}

double Channels::Get(size_t channel, int64_t i) const {
    const uint8_t *at = &of[channel][static_cast<size_t>(i * Unit(work))];
    if (work == Work::Short) return static_cast<double>(IntegerAt(at, 2));
    return Stored(at, -32);
}

void Channels::Put(size_t channel, int64_t i, double value) {
    uint8_t *at = &of[channel][static_cast<size_t>(i * Unit(work))];
    if (work == Work::Short) {
        const auto whole = static_cast<int32_t>(value);
        at[0] = static_cast<uint8_t>(whole);
        at[1] = static_cast<uint8_t>(whole >> 8);
    } else {
        Store(at, -32, Work::Real, value);
    }
}

HRESULT Channels::Split(const Z_AUD_PROPS &p, const Bytes &sound, const std::string &map, int32_t bits) {
    const Work wanted = WorkOf(bits == 0 ? p.nBitsPerSample : bits);
    if (!SoundValid(p) || WorkOf(p.nBitsPerSample) == Work::None || wanted == Work::None) return kBadSound;
    std::vector<int32_t> items = MapItems(map);
    if (!map.empty() && items.empty()) return E_INVALIDARG;
    if (map.empty())
        for (int32_t c = 0; c < std::min(p.nChannels, 128); ++c) items.push_back(c);
    work = wanted;
    const auto size = static_cast<int64_t>(sound.size()), width = SampleWidth(p.nBitsPerSample);
    of.assign(items.size(), Bytes(static_cast<size_t>(UsedBytes(p, size, work))));
    for (size_t c = 0; c < items.size(); ++c) {
        if (items[c] < 0 || items[c] >= std::min(p.nChannels, 128)) continue;
        for (int64_t i = 0; i < SoundSamples(p, size); ++i) {
            const uint8_t *at = &sound[static_cast<size_t>((i * p.nChannels + items[c]) * width)];
            const double value = Stored(at, p.nBitsPerSample);
            // Integers lose their low bits without rounding; real numbers are rounded.
            if (work == Work::Real)
                Put(c, i, value);
            else if (p.nBitsPerSample < 0)
                Put(c, i, static_cast<double>(ToNearest(value * 32768.0, -32768, 32767)));
            else
                Put(c, i, std::floor(value * 32768.0));
        }
    }
    return S_OK;
}

void Channels::Join(const Z_AUD_PROPS &p, int64_t first, int64_t samples, Bytes &sound) const {
    const int64_t width = SampleWidth(p.nBitsPerSample);
    for (size_t c = 0; c < std::min(of.size(), static_cast<size_t>(p.nChannels)); ++c)
        for (int64_t i = 0; i < std::min(samples, Samples(c)); ++i)
            Store(&sound[static_cast<size_t>(((first + i) * p.nChannels + static_cast<int64_t>(c)) * width)], p.nBitsPerSample,
                  work, Get(c, i));
}

bool Channels::MixDown(int32_t target) {
    if (target < 1) return false;
    const size_t t = static_cast<size_t>(std::min(target, 128)), count = of.size();
    const auto into = [this, count](size_t source, size_t dest) {
        if (source >= count || dest >= count) return;
        for (int64_t i = 0; i < std::min(Samples(source), Samples(dest)); ++i) {
            const double sum = Get(dest, i) + Get(source, i);
            Put(dest, i, work == Work::Short ? std::clamp(sum, -32768.0, 32767.0) : InFloat(sum));
        }
    };
    if (t < count && !of[0].empty()) {
        struct Rule {
            size_t source;
            size_t most;
            std::vector<size_t> always, wide, narrow;    // the last two for targets of at least 6, and for others
        };
        const Rule rules[] = {{2, 2, {0, 1}, {}, {}},     {3, 3, {0, 1}, {}, {}}, {4, 4, {0}, {}, {}},
                              {5, 5, {1}, {}, {}},        {6, 6, {0}, {4}, {}},   {7, 7, {1}, {5}, {}},
                              {8, 8, {}, {4, 5}, {0, 1}}, {9, 9, {0}, {4}, {}},   {10, 10, {1}, {5}, {}}};
        if (t == 1)
            for (size_t c = 1; c < count; ++c) into(c, 0);
        else
            for (const Rule &rule : rules) {
                if (t > rule.most) continue;
                for (const size_t dest : rule.always) into(rule.source, dest);
                for (const size_t dest : t >= 6 ? rule.wide : rule.narrow) into(rule.source, dest);
            }
    }
    of.resize(t);
    return true;
}

double Meter::Filtered(double x, int32_t rate) {
    const long double cutoff = 1.0L / (static_cast<long double>(rate) * 2 * std::numbers::pi_v<long double> * 0.3L);
    if (cutoff >= 0.5L) return x;
    // Trapezoidal integrators, which are the bilinear transform with its cut-off met.
    const long double g = std::tan(std::numbers::pi_v<long double> * cutoff);
    long double y = static_cast<long double>(x);
    const long double v = (y - m_state[0]) * g / (1 + g);
    y = v + m_state[0];
    m_state[0] = y + v;
    for (int pair = 1; pair <= 2; ++pair) {
        long double &band = m_state[2 * pair - 1], &low = m_state[2 * pair];
        const long double k = 2 * std::cos(std::numbers::pi_v<long double> * static_cast<long double>(pair) / 5);
        const long double a = 1 / (1 + g * (g + k)), rest = y - low;
        const long double v1 = a * band + g * a * rest, v2 = low + g * a * band + g * g * a * rest;
        band = 2 * v1 - band;
        low = 2 * v2 - low;
        y = v2;
    }
    return static_cast<double>(y);
}

void Meter::Measure(const Channels &channels, size_t channel, int64_t n, int32_t rate, float *rms, float *vu, float *peak) {
    if (n < 1) return;
    const bool real = channels.work == Work::Real;
    const double k = 2.0 / (static_cast<double>(n) * (real ? 1.0 : kFull * kFull));
    double squares = 0, filteredSquares = 0, largest = -std::numeric_limits<double>::infinity();
    if (m_rate != rate) std::fill(std::begin(m_state), std::end(m_state), 0.0L);
    m_rate = rate;
    for (int64_t i = 0; i < n; ++i) {
        const double x = channels.Get(channel, i);
        squares += x * x;
        const double y = Filtered(x, rate);
        const double out = real ? InFloat(y) : static_cast<double>(ToNearest(y, -32768, 32767));
        filteredSquares += out * out;
        largest = std::max(largest, real ? static_cast<double>(ToNearest(out * 65536.0, INT32_MIN, INT32_MAX)) : out);
    }
    *rms = static_cast<float>(ToDb(k * squares));
    *vu = static_cast<float>(ToDb(k * filteredSquares));
    *peak = static_cast<float>(ToDb(largest / (real ? 131072.0 : kFull)));
}

void LevelGain(Channels &channels, size_t channel, int64_t n, double start, double step) {
    if (step == 0 && start == 1.0) return;
    for (int64_t i = 0; i < n; ++i) {
        const double x = channels.Get(channel, i), at = static_cast<double>(i);
        if (channels.work == Work::Short)
            channels.Put(channel, i, Scaled(x, step == 0 ? start * 256 : start * 256 + at * (step * 256), 8));
        else
            channels.Put(channel, i, InFloat(x * InFloat(step == 0 ? start : start + at * step)));
    }
}

void MixGain(Channels &channels, size_t channel, int64_t n, double start, double step) {
    if (step == 0 && start == 1.0) return;
    const double q = kFull / 32;
    for (int64_t i = 0; i < n; ++i) {
        const double x = channels.Get(channel, i), at = static_cast<double>(i);
        if (channels.work == Work::Short)
            channels.Put(channel, i, Scaled(x, step == 0 ? start * kFull / 32 : start * q + at * (step * q), 10));
        else
            channels.Put(channel, i, InFloat(x * InFloat(step == 0 ? start : start + at * step)));
    }
}

bool Sound::Measured() const {
    const auto *at = reinterpret_cast<const uint8_t *>(&levels);
    return std::any_of(at, at + sizeof levels, [](uint8_t b) { return b != 0; });
}

void Sound::Fill(bool original) {
    Z_AUDIO_LOUDNESS &out = levels.audOutput;
    std::fill(std::begin(out.arrRMS), std::end(out.arrRMS), 0.0F);
    std::fill(std::begin(out.arrVUMeter), std::end(out.arrVUMeter), 0.0F);
    std::fill(std::begin(out.arrVUPeaks), std::end(out.arrVUPeaks), 0.0F);
    out.nValidChannels = 0;
    struct Channels split;
    if (Samples() > 0 && split.Split(props, bytes, "", 0) == S_OK) {
        Meter meter;
        for (size_t c = 0; c < std::min<size_t>(split.of.size(), 32); ++c)
            meter.Measure(split, c, Samples(), props.nSamplesPerSec, &out.arrRMS[c], &out.arrVUMeter[c], &out.arrVUPeaks[c]);
        out.nValidChannels = std::min(props.nChannels, 32);
    }
    if (original) levels.audOriginal = out;
}

HRESULT Sound::Set(const Z_AUD_PROPS *p, const Bytes &sound) {
    if (p != nullptr && SoundValid(*p)) props = *p;
    channels = {};
    levels = {};
    bytes = sound;
    Fill(true);
    return S_OK;
}

HRESULT Sound::SetSamples(const Z_AUD_PROPS *p, int32_t samples) {
    if (p == nullptr || !SoundValid(*p) || samples < 0) return E_INVALIDARG;
    if (SoundBytes(*p, samples) > INT32_MAX) return E_OUTOFMEMORY;
    props = *p;
    channels = {};
    levels = {};
    bytes.assign(static_cast<size_t>(SoundBytes(*p, samples)), 0);
    return S_OK;
}

HRESULT Sound::Channel(int32_t index, bool grow, Bytes &out) {
    if (!SoundValid(props) || bytes.empty()) return Z_E_EMPTY;
    if (channels.of.empty())
        if (const HRESULT hr = channels.Split(props, bytes, "", 0); FAILED(hr)) return hr;
    const size_t size = channels.of[0].size(), count = channels.of.size();
    if (grow && index >= 0 && static_cast<size_t>(index) >= count)
        channels.of.resize(std::min<size_t>(static_cast<size_t>(index) + 1, 128));
    for (Bytes &channel : channels.of) channel.resize(size);
    const bool there = index >= 0 && static_cast<size_t>(index) < channels.of.size();
    out = there ? channels.of[static_cast<size_t>(index)] : Bytes(size);
    return S_OK;
}

HRESULT Sound::Commit() {
    if (!SoundValid(props)) return kBadSound;
    if (channels.of.empty()) return S_FALSE;
    if (WorkOf(props.nBitsPerSample) == Work::None) return kBadSound;
    const auto want = UsedBytes(props, static_cast<int64_t>(bytes.size()), WorkOf(props.nBitsPerSample));
    for (const Bytes &channel : channels.of)
        if (static_cast<int64_t>(channel.size()) != want || channels.work != WorkOf(props.nBitsPerSample))
            return static_cast<HRESULT>(0x80040203);
    const int64_t samples = Samples();
    props.nChannels = static_cast<int32_t>(channels.of.size());
    bytes.assign(static_cast<size_t>(SoundBytes(props, samples)), 0);
    channels.Join(props, 0, samples, bytes);
    Fill(true);
    return S_OK;
}

HRESULT Sound::Gain(const std::string &map, double from, double to) {
    if (std::isnan(from) || std::isnan(to)) return E_INVALIDARG;
    const int64_t samples = Samples();
    if (samples < 1) return S_FALSE;
    const double g0 = FromDb(from), g1 = FromDb(to), step = g0 == g1 ? 0 : (g1 - g0) / static_cast<double>(samples);
    const bool measured = Measured();
    if (g0 == 1.0 && g1 == 1.0) {
        if (measured) return S_OK;
        if (WorkOf(props.nBitsPerSample) == Work::None) return kBadSound;
        Fill(true);
        return S_OK;
    }
    struct Channels split;
    if (const HRESULT hr = split.Split(props, bytes, "", 0); FAILED(hr)) return hr;
    const std::vector<int32_t> items = MapItems(map);
    Meter meter;
    for (size_t c = 0; c < split.of.size(); ++c) {
        const bool chosen = map.empty() || std::find(items.begin(), items.end(), static_cast<int32_t>(c)) != items.end();
        if (chosen) LevelGain(split, c, samples, g0, step);
        Z_AUDIO_LOUDNESS &out = chosen ? levels.audOutput : levels.audOriginal;
        if (c < 32 && (chosen || !measured))
            meter.Measure(split, c, samples, props.nSamplesPerSec, &out.arrRMS[c], &out.arrVUMeter[c], &out.arrVUPeaks[c]);
    }
    levels.audOutput.nValidChannels = levels.audOriginal.nValidChannels = std::min(props.nChannels, 32);
    split.Join(props, 0, samples, bytes);
    return S_OK;
}

HRESULT Sound::Add(const Sound *source, int32_t *sourcePos, int32_t *destPos, int32_t count, double from, double to,
                   bool fade) {
    if (std::isnan(from) || std::isnan(to)) return E_INVALIDARG;
    if (source == nullptr || source->Samples() < 1) return S_FALSE;
    if (SoundValid(props) && props.nSamplesPerSec != source->props.nSamplesPerSec) return kBadSound;
    const int64_t at = sourcePos == nullptr ? 0 : *sourcePos, to_ = destPos == nullptr ? 0 : *destPos;
    const int64_t sourceSamples = source->Samples();
    const bool fresh = Samples() < 1;
    int64_t n = sourceSamples - at;
    if (count >= 0) n = std::min<int64_t>(n, count);
    if (!fresh) n = std::min(n, Samples() - to_);
    if (at < 0 || to_ < 0 || n < 1) return S_FALSE;
    struct Channels theirs, own;
    const Z_AUD_PROPS p = fresh ? source->props : props;
    if (WorkOf(source->props.nBitsPerSample) == Work::None || WorkOf(p.nBitsPerSample) == Work::None) return kBadSound;
    if (fresh) {
        props = p;
        bytes.assign(static_cast<size_t>(SoundBytes(props, to_ + n)), 0);
    }
    const int64_t samples = Samples();
    const auto part = [n](const Z_AUD_PROPS &record, const Bytes &all, int64_t first) {
        const auto *begin = all.data() + SoundBytes(record, first);
        return Bytes(begin, begin + SoundBytes(record, n));
    };
    theirs.Split(source->props, part(source->props, source == this ? Bytes(bytes) : source->bytes, at), "", 0);
    own.Split(props, part(props, bytes, to_), "", 0);
    const double g0 = FromDb(from), g1 = FromDb(to), step = g0 == g1 ? 0 : (g1 - g0) / static_cast<double>(samples);
    if (g0 > 0) {
        const bool reals = own.work == Work::Real;
        struct Channels same = own;
        same.of.assign(theirs.of.size(), Bytes(static_cast<size_t>(n * Channels::Unit(own.work))));
        for (size_t c = 0; c < std::min(own.of.size(), theirs.of.size()); ++c) {
            for (int64_t i = 0; i < n; ++i) {
                const double x = theirs.Get(c, i);
                if (theirs.work == own.work)
                    same.Put(c, i, x);
                else
                    same.Put(c, i, reals ? x / 32768.0 : static_cast<double>(ToNearest(x * 32768.0, -32768, 32767)));
            }
            MixGain(same, c, n, g0, step);
            if (fade) MixGain(own, c, n, 1.0 - step, -step);
            for (int64_t i = 0; i < n; ++i) {
                const double sum = own.Get(c, i) + same.Get(c, i);
                own.Put(c, i, reals ? InFloat(sum) : std::clamp(sum, -32768.0, 32767.0));
            }
        }
    }
    own.Join(props, to_, n, bytes);
    Fill(fresh);
    if (sourcePos != nullptr) *sourcePos = static_cast<int32_t>(at + n >= samples ? -1 : at + n);
    if (destPos != nullptr) *destPos = static_cast<int32_t>(to_ + n >= sourceSamples ? -1 : to_ + n);
    return S_OK;
}

HRESULT Sound::Mix(const Sound *source, double from, double to, bool fade) {
    if (std::isnan(from) || std::isnan(to)) return E_INVALIDARG;
    if (source == nullptr) return S_FALSE;
    if (Samples() < 1) {
        const HRESULT hr = source->CopyTo("", this);
        return FAILED(hr) ? hr : Gain("", from, to);
    }
    if (source->Samples() < 1) {
        if (!fade) return S_FALSE;
        const auto left = [](double db) { return 20.0 * std::log10(std::max(0.0, 1.0 - FromDb(db))); };
        return Gain("", left(from), left(to));
    }
    return Add(source, nullptr, nullptr, -1, from, to, fade);
}

HRESULT Sound::CopyTo(const std::string &map, Sound *dest) const {
    if (dest == nullptr) return S_FALSE;
    if (!SoundValid(props)) return kBadSound;
    if (map.empty()) {
        if (dest == this) return S_OK;
        return dest->Set(&props, bytes);
    }
    struct Channels split;
    if (const HRESULT hr = split.Split(props, bytes, map, 0); FAILED(hr)) return hr;
    Z_AUD_PROPS p = props;
    p.nChannels = static_cast<int32_t>(split.of.size());
    Bytes sound(static_cast<size_t>(SoundBytes(p, Samples())));
    split.Join(p, 0, Samples(), sound);
    return dest->Set(&p, sound);
}

HRESULT Sound::SetProps(Z_AUD_PROPS wanted, const std::string &map) {
    if (!map.empty() && !SoundValid(wanted) && wanted.nChannels >= 0) {
        wanted = props;
        wanted.nChannels = static_cast<int32_t>(MapItems(map).size());
        if (wanted.nChannels == 0) wanted = {};
    }
    if (!SoundValid(wanted)) {
        if (wanted.nChannels < 0) {
            bytes.clear();
        }
        return S_OK;
    }
    if (!SoundValid(props) || bytes.empty()) {
        props = wanted;
        return S_OK;
    }
    props.nSamplesPerSec = wanted.nSamplesPerSec;
    props.nTrackSplitBits = wanted.nTrackSplitBits;
    const bool sameBits = wanted.nBitsPerSample < 1 || wanted.nBitsPerSample == props.nBitsPerSample;
    if (map.empty() && wanted.nChannels == props.nChannels && sameBits) return S_OK;
    const int64_t samples = Samples();
    struct Channels split;
    if (const HRESULT hr = split.Split(props, bytes, map, wanted.nBitsPerSample); FAILED(hr)) return hr;
    split.MixDown(wanted.nChannels);
    props.nChannels = wanted.nChannels;
    props.nBitsPerSample = wanted.nBitsPerSample;
    bytes.assign(static_cast<size_t>(SoundBytes(props, samples)), 0);
    split.Join(props, 0, samples, bytes);
    channels = split;
    Fill(true);
    return S_OK;
}

HRESULT Sound::FromWav(const std::string &file, int32_t first, int32_t count) {
    if (first < 0 || count < 0) return E_INVALIDARG;
    WavSeen seen;
    if (!WavRead(file, seen)) return kBadSound;
    const int64_t all = SoundSamples(seen.props, static_cast<int64_t>(seen.dataBytes));
    if (first >= all) return Z_E_HANDLE_EOF;
    int64_t wanted = count;
    if (count == 0 && Samples() > 0)
        wanted = std::llround(static_cast<double>(Samples()) * seen.props.nSamplesPerSec / props.nSamplesPerSec);
    wanted = std::min(wanted, all - first);
    const auto *begin = reinterpret_cast<const uint8_t *>(file.data()) + seen.dataAt + SoundBytes(seen.props, first);
    return Set(&seen.props, Bytes(begin, begin + SoundBytes(seen.props, wanted)));
}

}    // namespace conformance
