// Vector versions. Samples go through lanes of floats or of 16-bit integers, four columns of a block at a time; where the
// columns are no multiple of four, the last four are done again. Nothing outside a sample is read or written.
#include <immintrin.h>

#include "frames/audio/sample_kernels.h"

namespace zck {
namespace {

__m128i LoadBytes4(const uint8_t *p) {
    int32_t value;
    __builtin_memcpy(&value, p, 4);
    return _mm_cvtsi32_si128(value);
}
__m128i LoadBytes8(const uint8_t *p) { return _mm_loadl_epi64(reinterpret_cast<const __m128i *>(p)); }
void StoreBytes4(uint8_t *p, __m128i v) {
    const int32_t value = _mm_cvtsi128_si32(v);
    __builtin_memcpy(p, &value, 4);
}
void StoreBytes8(uint8_t *p, __m128i v) { _mm_storel_epi64(reinterpret_cast<__m128i *>(p), v); }

// What is not a number becomes 0; the rest is cut to the limits.
__m128 Limited(__m128 v, float low, float high) {
    v = _mm_and_ps(v, _mm_cmpord_ps(v, v));
    return _mm_min_ps(_mm_max_ps(v, _mm_set1_ps(low)), _mm_set1_ps(high));
}

// Four samples that follow each other, as floats.

struct Lanes16 {
    static constexpr int64_t kBytes = 2;
    static __m128 Load(const uint8_t *p) {
        return _mm_mul_ps(_mm_cvtepi32_ps(_mm_cvtepi16_epi32(LoadBytes8(p))), _mm_set1_ps(0x1p-15F));
    }
    static void Store(uint8_t *p, __m128 v) {
        const __m128i n = _mm_cvtps_epi32(Limited(_mm_mul_ps(v, _mm_set1_ps(0x1p15F)), -0x1p15F, 0x1p15F - 1));
        StoreBytes8(p, _mm_packs_epi32(n, n));
    }
};

struct Lanes24 {
    static constexpr int64_t kBytes = 3;
    static __m128 Load(const uint8_t *p) {
        const __m128i bytes = _mm_unpacklo_epi64(LoadBytes8(p), LoadBytes4(p + 8));
        const __m128i top = _mm_setr_epi8(-1, 0, 1, 2, -1, 3, 4, 5, -1, 6, 7, 8, -1, 9, 10, 11);
        const __m128i n = _mm_srai_epi32(_mm_shuffle_epi8(bytes, top), 8);
        return _mm_mul_ps(_mm_cvtepi32_ps(n), _mm_set1_ps(0x1p-23F));
    }
    static void Store(uint8_t *p, __m128 v) {
        const __m128i n = _mm_cvtps_epi32(Limited(_mm_mul_ps(v, _mm_set1_ps(0x1p23F)), -0x1p23F, 0x1p23F - 1));
        const __m128i low = _mm_setr_epi8(0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14, -1, -1, -1, -1);
        const __m128i bytes = _mm_shuffle_epi8(n, low);
        StoreBytes8(p, bytes);
        StoreBytes4(p + 8, _mm_srli_si128(bytes, 8));
    }
};

struct Lanes32 {
    static constexpr int64_t kBytes = 4;
    static __m128 Load(const uint8_t *p) {
        const __m128i n = _mm_loadu_si128(reinterpret_cast<const __m128i *>(p));
        return _mm_mul_ps(_mm_cvtepi32_ps(n), _mm_set1_ps(0x1p-31F));
    }
    static void Store(uint8_t *p, __m128 v) {
        const __m128 scaled = _mm_mul_ps(v, _mm_set1_ps(0x1p31F));
        // Out of range the conversion gives the lowest number, which is right below and turned above.
        const __m128i above = _mm_castps_si128(_mm_cmpge_ps(scaled, _mm_set1_ps(0x1p31F)));
        const __m128i number = _mm_castps_si128(_mm_cmpord_ps(v, v));
        const __m128i n = _mm_and_si128(_mm_xor_si128(_mm_cvtps_epi32(scaled), above), number);
        _mm_storeu_si128(reinterpret_cast<__m128i *>(p), n);
    }
};

struct LanesFloat {
    static constexpr int64_t kBytes = 4;
    static __m128 Load(const uint8_t *p) { return _mm_castsi128_ps(_mm_loadu_si128(reinterpret_cast<const __m128i *>(p))); }
    static void Store(uint8_t *p, __m128 v) { _mm_storeu_si128(reinterpret_cast<__m128i *>(p), _mm_castps_si128(v)); }
};

template <class Lanes>
__m128 LoadOne(const uint8_t *p) {
    uint8_t bytes[16] = {};
    __builtin_memcpy(bytes, p, Lanes::kBytes);
    return Lanes::Load(bytes);
}

template <class Lanes>
void StoreOne(uint8_t *p, __m128 v) {
    uint8_t bytes[16];
    Lanes::Store(bytes, v);
    __builtin_memcpy(p, bytes, Lanes::kBytes);
}

// A value keeps its bits: a move through the lane, not through arithmetic.
void PutLane(float *p, __m128 v) { _mm_store_ss(p, v); }

template <class Lanes>
void SplitOne(float *channel, const uint8_t *block, int64_t stride, int64_t from, int64_t samples) {
    for (int64_t i = from; i < samples; ++i) PutLane(channel + i, LoadOne<Lanes>(block + i * stride));
}

template <class Lanes>
void JoinOne(uint8_t *block, int64_t stride, const float *channel, int64_t from, int64_t samples) {
    for (int64_t i = from; i < samples; ++i) StoreOne<Lanes>(block + i * stride, _mm_load_ss(channel + i));
}

int32_t LastFour(int32_t column, int32_t count) { return column + 4 <= count ? column : count - 4; }

template <class Lanes>
void Split(void *const *channels, int32_t count, const uint8_t *block, int64_t stride, int64_t samples) {
    if (samples < 1) return;    // then there may be no block
    constexpr int64_t w = Lanes::kBytes;
    auto *const *to = reinterpret_cast<float *const *>(channels);
    const int64_t whole = samples & ~int64_t{3};
    if (count == 1 && stride == w) {
        for (int64_t i = 0; i < whole; i += 4) _mm_storeu_ps(to[0] + i, Lanes::Load(block + i * w));
    } else if (count == 2 && stride == 2 * w) {
        for (int64_t i = 0; i < whole; i += 4) {
            const __m128 a = Lanes::Load(block + i * 2 * w);
            const __m128 b = Lanes::Load(block + (i + 2) * 2 * w);
            _mm_storeu_ps(to[0] + i, _mm_shuffle_ps(a, b, 0x88));
            _mm_storeu_ps(to[1] + i, _mm_shuffle_ps(a, b, 0xDD));
        }
    } else if (count >= 4) {
        for (int64_t i = 0; i < whole; i += 4) {
            const uint8_t *row = block + i * stride;
            for (int32_t g = 0; g < count; g += 4) {
                const int32_t c = LastFour(g, count);
                const uint8_t *p = row + c * w;
                __m128 v0 = Lanes::Load(p);
                __m128 v1 = Lanes::Load(p + stride);
                __m128 v2 = Lanes::Load(p + 2 * stride);
                __m128 v3 = Lanes::Load(p + 3 * stride);
                _MM_TRANSPOSE4_PS(v0, v1, v2, v3);
                _mm_storeu_ps(to[c] + i, v0);
                _mm_storeu_ps(to[c + 1] + i, v1);
                _mm_storeu_ps(to[c + 2] + i, v2);
                _mm_storeu_ps(to[c + 3] + i, v3);
            }
        }
    } else {
        for (int32_t c = 0; c < count; ++c) SplitOne<Lanes>(to[c], block + c * w, stride, 0, samples);
        return;
    }
    for (int32_t c = 0; c < count; ++c) SplitOne<Lanes>(to[c], block + c * w, stride, whole, samples);
}

template <class Lanes>
void Join(uint8_t *block, int64_t stride, const void *const *channels, int32_t count, int64_t samples) {
    if (samples < 1) return;    // then there may be no block
    constexpr int64_t w = Lanes::kBytes;
    const auto *const *from = reinterpret_cast<const float *const *>(channels);
    const int64_t whole = samples & ~int64_t{3};
    if (count == 1 && stride == w) {
        for (int64_t i = 0; i < whole; i += 4) Lanes::Store(block + i * w, _mm_loadu_ps(from[0] + i));
    } else if (count == 2 && stride == 2 * w) {
        for (int64_t i = 0; i < whole; i += 4) {
            const __m128 a = _mm_loadu_ps(from[0] + i);
            const __m128 b = _mm_loadu_ps(from[1] + i);
            Lanes::Store(block + i * 2 * w, _mm_unpacklo_ps(a, b));
            Lanes::Store(block + (i + 2) * 2 * w, _mm_unpackhi_ps(a, b));
        }
    } else if (count >= 4) {
        for (int64_t i = 0; i < whole; i += 4) {
            uint8_t *row = block + i * stride;
            for (int32_t g = 0; g < count; g += 4) {
                const int32_t c = LastFour(g, count);
                uint8_t *p = row + c * w;
                __m128 v0 = _mm_loadu_ps(from[c] + i);
                __m128 v1 = _mm_loadu_ps(from[c + 1] + i);
                __m128 v2 = _mm_loadu_ps(from[c + 2] + i);
                __m128 v3 = _mm_loadu_ps(from[c + 3] + i);
                _MM_TRANSPOSE4_PS(v0, v1, v2, v3);
                Lanes::Store(p, v0);
                Lanes::Store(p + stride, v1);
                Lanes::Store(p + 2 * stride, v2);
                Lanes::Store(p + 3 * stride, v3);
            }
        }
    } else {
        for (int32_t c = 0; c < count; ++c) JoinOne<Lanes>(block + c * w, stride, from[c], 0, samples);
        return;
    }
    for (int32_t c = 0; c < count; ++c) JoinOne<Lanes>(block + c * w, stride, from[c], whole, samples);
}

// 16-bit integers that stay what they are.

__m128i LoadEight(const int16_t *p) { return _mm_loadu_si128(reinterpret_cast<const __m128i *>(p)); }
void StoreEight(int16_t *p, __m128i v) { _mm_storeu_si128(reinterpret_cast<__m128i *>(p), v); }
__m256i LoadSixteen(const void *p) { return _mm256_loadu_si256(static_cast<const __m256i *>(p)); }
void StoreSixteen(void *p, __m256i v) { _mm256_storeu_si256(static_cast<__m256i *>(p), v); }

void Split16One(int16_t *channel, const uint8_t *block, int64_t stride, int64_t from, int64_t samples) {
    for (int64_t i = from; i < samples; ++i) __builtin_memcpy(channel + i, block + i * stride, 2);
}

void Join16One(uint8_t *block, int64_t stride, const int16_t *channel, int64_t from, int64_t samples) {
    for (int64_t i = from; i < samples; ++i) __builtin_memcpy(block + i * stride, channel + i, 2);
}

// Sixteen samples of two columns; the numbers of samples done come back.
int64_t Split16Pairs(int16_t *left, int16_t *right, const uint8_t *block, int64_t samples) {
    int64_t i = 0;
    for (; i + 16 <= samples; i += 16) {
        const __m256i a = LoadSixteen(block + i * 4);
        const __m256i b = LoadSixteen(block + i * 4 + 32);
        const __m256i l = _mm256_packs_epi32(_mm256_srai_epi32(_mm256_slli_epi32(a, 16), 16),
                                             _mm256_srai_epi32(_mm256_slli_epi32(b, 16), 16));
        const __m256i r = _mm256_packs_epi32(_mm256_srai_epi32(a, 16), _mm256_srai_epi32(b, 16));
        StoreSixteen(left + i, _mm256_permute4x64_epi64(l, 0xD8));
        StoreSixteen(right + i, _mm256_permute4x64_epi64(r, 0xD8));
    }
    return i;
}

int64_t Join16Pairs(uint8_t *block, const int16_t *left, const int16_t *right, int64_t samples) {
    int64_t i = 0;
    for (; i + 16 <= samples; i += 16) {
        const __m256i l = _mm256_permute4x64_epi64(LoadSixteen(left + i), 0xD8);
        const __m256i r = _mm256_permute4x64_epi64(LoadSixteen(right + i), 0xD8);
        StoreSixteen(block + i * 4, _mm256_unpacklo_epi16(l, r));
        StoreSixteen(block + i * 4 + 32, _mm256_unpackhi_epi16(l, r));
    }
    return i;
}

void Split16Four(int16_t *const *to, int64_t at, const uint8_t *p, int64_t stride) {
    __m128i pair[4];
    for (int i = 0; i < 4; ++i)
        pair[i] = _mm_unpacklo_epi16(LoadBytes8(p + (2 * i) * stride), LoadBytes8(p + (2 * i + 1) * stride));
    const __m128i low = _mm_unpacklo_epi32(pair[0], pair[1]);
    const __m128i high = _mm_unpackhi_epi32(pair[0], pair[1]);
    const __m128i low2 = _mm_unpacklo_epi32(pair[2], pair[3]);
    const __m128i high2 = _mm_unpackhi_epi32(pair[2], pair[3]);
    StoreEight(to[0] + at, _mm_unpacklo_epi64(low, low2));
    StoreEight(to[1] + at, _mm_unpackhi_epi64(low, low2));
    StoreEight(to[2] + at, _mm_unpacklo_epi64(high, high2));
    StoreEight(to[3] + at, _mm_unpackhi_epi64(high, high2));
}

void Join16Four(uint8_t *p, int64_t stride, const int16_t *const *from, int64_t at) {
    const __m128i a = LoadEight(from[0] + at);
    const __m128i b = LoadEight(from[1] + at);
    const __m128i c = LoadEight(from[2] + at);
    const __m128i d = LoadEight(from[3] + at);
    const __m128i ab[2] = {_mm_unpacklo_epi16(a, b), _mm_unpackhi_epi16(a, b)};
    const __m128i cd[2] = {_mm_unpacklo_epi16(c, d), _mm_unpackhi_epi16(c, d)};
    for (int i = 0; i < 2; ++i, p += 4 * stride) {
        const __m128i low = _mm_unpacklo_epi32(ab[i], cd[i]);
        const __m128i high = _mm_unpackhi_epi32(ab[i], cd[i]);
        StoreBytes8(p, low);
        StoreBytes8(p + stride, _mm_srli_si128(low, 8));
        StoreBytes8(p + 2 * stride, high);
        StoreBytes8(p + 3 * stride, _mm_srli_si128(high, 8));
    }
}

void Split16(void *const *channels, int32_t count, const uint8_t *block, int64_t stride, int64_t samples) {
    if (samples < 1) return;    // then there may be no block
    auto *const *to = reinterpret_cast<int16_t *const *>(channels);
    int64_t done = 0;
    if (count == 1 && stride == 2) {
        __builtin_memcpy(to[0], block, static_cast<size_t>(samples) * 2);
        return;
    }
    if (count == 2 && stride == 4) {
        done = Split16Pairs(to[0], to[1], block, samples);
    } else if (count >= 4) {
        for (; done + 8 <= samples; done += 8) {
            for (int32_t g = 0; g < count; g += 4) {
                const int32_t c = LastFour(g, count);
                Split16Four(to + c, done, block + done * stride + c * 2, stride);
            }
        }
    }
    for (int32_t c = 0; c < count; ++c) Split16One(to[c], block + c * 2, stride, done, samples);
}

void Join16(uint8_t *block, int64_t stride, const void *const *channels, int32_t count, int64_t samples) {
    if (samples < 1) return;    // then there may be no block
    const auto *const *from = reinterpret_cast<const int16_t *const *>(channels);
    int64_t done = 0;
    if (count == 1 && stride == 2) {
        __builtin_memcpy(block, from[0], static_cast<size_t>(samples) * 2);
        return;
    }
    if (count == 2 && stride == 4) {
        done = Join16Pairs(block, from[0], from[1], samples);
    } else if (count >= 4) {
        for (; done + 8 <= samples; done += 8) {
            for (int32_t g = 0; g < count; g += 4) {
                const int32_t c = LastFour(g, count);
                Join16Four(block + done * stride + c * 2, stride, from + c, done);
            }
        }
    }
    for (int32_t c = 0; c < count; ++c) Join16One(block + c * 2, stride, from[c], done, samples);
}

int16_t Saturated(int32_t value) { return static_cast<int16_t>(value > 32767 ? 32767 : value < -32768 ? -32768 : value); }

// The product, half a unit and the bit that makes ties even in one sum: sample * factor + (half - 1 + odd) * 1.
void Gain16(int16_t *samples, int64_t count, int16_t factor, int32_t shift) {
    const __m256i f = _mm256_set1_epi16(factor);
    const __m256i factorAndOne = _mm256_set1_epi32(1 << 16 | static_cast<uint16_t>(factor));
    const __m256i halfLess = _mm256_set1_epi16(static_cast<int16_t>((1 << (shift - 1)) - 1));
    const __m256i toFirstBit = _mm256_set1_epi16(static_cast<int16_t>(1 << (16 - shift)));
    const __m256i one = _mm256_set1_epi16(1);
    const __m256i by = _mm256_set1_epi32(shift);
    int64_t i = 0;
    for (; i + 16 <= count; i += 16) {
        const __m256i v = LoadSixteen(samples + i);
        const __m256i odd = _mm256_and_si256(_mm256_mulhi_epu16(_mm256_mullo_epi16(v, f), toFirstBit), one);
        const __m256i more = _mm256_add_epi16(odd, halfLess);
        const __m256i low = _mm256_madd_epi16(_mm256_unpacklo_epi16(v, more), factorAndOne);
        const __m256i high = _mm256_madd_epi16(_mm256_unpackhi_epi16(v, more), factorAndOne);
        StoreSixteen(samples + i, _mm256_packs_epi32(_mm256_srav_epi32(low, by), _mm256_srav_epi32(high, by)));
    }
    for (; i < count; ++i) {
        const int32_t product = samples[i] * factor;
        samples[i] = Saturated((product + (1 << (shift - 1)) - 1 + (product >> shift & 1)) >> shift);
    }
}

void Gain32(float *samples, int64_t count, float factor) {
    const __m256 f = _mm256_set1_ps(factor);
    int64_t i = 0;
    for (; i + 8 <= count; i += 8) _mm256_storeu_ps(samples + i, _mm256_mul_ps(_mm256_loadu_ps(samples + i), f));
    for (; i < count; ++i) samples[i] *= factor;
}

void Add16(int16_t *dst, const int16_t *src, int64_t count) {
    int64_t i = 0;
    for (; i + 16 <= count; i += 16) StoreSixteen(dst + i, _mm256_adds_epi16(LoadSixteen(dst + i), LoadSixteen(src + i)));
    for (; i < count; ++i) dst[i] = Saturated(dst[i] + src[i]);
}

void Add32(float *dst, const float *src, int64_t count) {
    int64_t i = 0;
    for (; i + 8 <= count; i += 8) _mm256_storeu_ps(dst + i, _mm256_add_ps(_mm256_loadu_ps(dst + i), _mm256_loadu_ps(src + i)));
    for (; i < count; ++i) dst[i] += src[i];
}

}    // namespace

void SampleKernelsInitAvx2(SampleKernels *table) {
    constexpr int kInt16 = static_cast<int>(WorkForm::Int16);
    constexpr int kFloat = static_cast<int>(WorkForm::Float32);
    table->split[static_cast<int>(StoredForm::Int16)][kInt16] = Split16;
    table->split[static_cast<int>(StoredForm::Int16)][kFloat] = Split<Lanes16>;
    table->split[static_cast<int>(StoredForm::Int24)][kFloat] = Split<Lanes24>;
    table->split[static_cast<int>(StoredForm::Int32)][kFloat] = Split<Lanes32>;
    table->split[static_cast<int>(StoredForm::Float32)][kFloat] = Split<LanesFloat>;
    table->join[static_cast<int>(StoredForm::Int16)][kInt16] = Join16;
    table->join[static_cast<int>(StoredForm::Int16)][kFloat] = Join<Lanes16>;
    table->join[static_cast<int>(StoredForm::Int24)][kFloat] = Join<Lanes24>;
    table->join[static_cast<int>(StoredForm::Int32)][kFloat] = Join<Lanes32>;
    table->join[static_cast<int>(StoredForm::Float32)][kFloat] = Join<LanesFloat>;
    table->gain16 = Gain16;
    table->gain32 = Gain32;
    table->add16 = Add16;
    table->add32 = Add32;
}

}    // namespace zck
