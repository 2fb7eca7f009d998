#include <algorithm>
#include <cstring>

#include "frames/audio/rounding.h"
#include "frames/audio/sample_kernels.h"

namespace zck {
namespace {

template <class T>
T Load(const uint8_t *p) {
    T value;
    std::memcpy(&value, p, sizeof(value));
    return value;
}

template <class T>
void Store(uint8_t *p, T value) {
    std::memcpy(p, &value, sizeof(value));
}

// The stored forms: bytes of a sample, and its value from and to a channel's.

struct Stored16 {
    static constexpr int32_t kBytes = 2;
    static void Get(const uint8_t *p, int16_t &v) { v = Load<int16_t>(p); }
    static void Get(const uint8_t *p, float &v) { v = static_cast<float>(Load<int16_t>(p)) * 0x1p-15F; }
    static void Put(uint8_t *p, int16_t v) { Store(p, v); }
    static void Put(uint8_t *p, float v) { Store(p, RoundSaturate<int16_t>(double{v} * 0x1p15)); }
};

struct Stored24 {
    static constexpr int32_t kBytes = 3;
    static void Get(const uint8_t *p, int16_t &v) { v = static_cast<int16_t>(InTop(p) >> 16); }
    static void Get(const uint8_t *p, float &v) { v = static_cast<float>(InTop(p) >> 8) * 0x1p-23F; }
    static void Put(uint8_t *p, int16_t v) { PutLow(p, static_cast<uint32_t>(v) << 8); }
    static void Put(uint8_t *p, float v) {
        const double value = v == v ? double{v} * 0x1p23 : 0.0;
        PutLow(p, static_cast<uint32_t>(static_cast<int32_t>(RoundEven(std::clamp(value, -0x1p23, 0x1p23 - 1)))));
    }

private:
    // In the upper three bytes, so that the sign is the integer's.
    static int32_t InTop(const uint8_t *p) {
        return static_cast<int32_t>(uint32_t{p[0]} << 8 | uint32_t{p[1]} << 16 | uint32_t{p[2]} << 24);
    }
    static void PutLow(uint8_t *p, uint32_t v) {
        for (int i = 0; i < kBytes; ++i) p[i] = static_cast<uint8_t>(v >> (8 * i));
    }
};

struct Stored32 {
    static constexpr int32_t kBytes = 4;
    static void Get(const uint8_t *p, int16_t &v) { v = static_cast<int16_t>(Load<int32_t>(p) >> 16); }
    static void Get(const uint8_t *p, float &v) { v = static_cast<float>(Load<int32_t>(p)) * 0x1p-31F; }
    static void Put(uint8_t *p, int16_t v) { Store(p, static_cast<uint32_t>(v) << 16); }
    static void Put(uint8_t *p, float v) { Store(p, RoundSaturate<int32_t>(double{v} * 0x1p31)); }
};

struct StoredFloat {
    static constexpr int32_t kBytes = 4;
    static void Get(const uint8_t *p, int16_t &v) { v = RoundSaturate<int16_t>(double{Load<float>(p)} * 0x1p15); }
    // As bits: a float that is not a number stays the one it is.
    static void Get(const uint8_t *p, float &v) { std::memcpy(&v, p, sizeof(v)); }
    static void Put(uint8_t *p, int16_t v) { Store(p, static_cast<float>(v) * 0x1p-15F); }
    static void Put(uint8_t *p, float v) { std::memcpy(p, &v, sizeof(v)); }
};

template <class Stored, class Work>
void Split(void *const *channels, int32_t count, const uint8_t *block, int64_t stride, int64_t samples) {
    for (int32_t c = 0; c < count; ++c) {
        auto *channel = static_cast<Work *>(channels[c]);
        for (int64_t i = 0; i < samples; ++i) Stored::Get(block + c * Stored::kBytes + i * stride, channel[i]);
    }
}

template <class Stored, class Work>
void Join(uint8_t *block, int64_t stride, const void *const *channels, int32_t count, int64_t samples) {
    for (int32_t c = 0; c < count; ++c) {
        const auto *channel = static_cast<const Work *>(channels[c]);
        for (int64_t i = 0; i < samples; ++i) Stored::Put(block + c * Stored::kBytes + i * stride, channel[i]);
    }
}

template <class Stored>
void Fill(SampleKernels &table, StoredForm form) {
    const auto stored = static_cast<int>(form);
    table.split[stored][static_cast<int>(WorkForm::Int16)] = Split<Stored, int16_t>;
    table.split[stored][static_cast<int>(WorkForm::Float32)] = Split<Stored, float>;
    table.join[stored][static_cast<int>(WorkForm::Int16)] = Join<Stored, int16_t>;
    table.join[stored][static_cast<int>(WorkForm::Float32)] = Join<Stored, float>;
}

int16_t Saturate16(int32_t value) { return static_cast<int16_t>(std::clamp(value, INT16_MIN + 0, INT16_MAX + 0)); }

void Gain16(int16_t *samples, int64_t count, int16_t factor, int32_t shift) {
    for (int64_t i = 0; i < count; ++i) {
        const int32_t product = samples[i] * factor;
        const int32_t odd = product >> shift & 1;
        samples[i] = Saturate16((product + (1 << (shift - 1)) - 1 + odd) >> shift);
    }
}

void Gain32(float *samples, int64_t count, float factor) {
    for (int64_t i = 0; i < count; ++i) samples[i] *= factor;
}

void Add16(int16_t *dst, const int16_t *src, int64_t count) {
    for (int64_t i = 0; i < count; ++i) dst[i] = Saturate16(dst[i] + src[i]);
}

void Add32(float *dst, const float *src, int64_t count) {
    for (int64_t i = 0; i < count; ++i) dst[i] += src[i];
}

}    // namespace

void SampleKernelsInitRef(SampleKernels *table) {
    Fill<Stored16>(*table, StoredForm::Int16);
    Fill<Stored24>(*table, StoredForm::Int24);
    Fill<Stored32>(*table, StoredForm::Int32);
    Fill<StoredFloat>(*table, StoredForm::Float32);
    table->gain16 = Gain16;
    table->gain32 = Gain32;
    table->add16 = Add16;
    table->add32 = Add32;
}

}    // namespace zck
