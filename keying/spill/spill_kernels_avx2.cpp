#include <immintrin.h>

#include "keying/spill/spill_kernels.h"
#include "platform/avx2.h"

namespace zck {
namespace {

using namespace avx2;

constexpr int32_t kMacroPixels = 8;    // of a block

// ---- half-width mask ----

ZCK_INLINE __m256i PairMeans(const uint8_t *p) {
    const __m256i sums = _mm256_maddubs_epi16(Load(p), _mm256_set1_epi8(1));
    return _mm256_srli_epi16(_mm256_add_epi16(sums, Words(1)), 1);
}

void ScaleEven(uint8_t *mask, const uint8_t *row, int32_t half) {
    int32_t x = 0;
    for (; x + 32 <= half; x += 32) {
        const uint8_t *p = row + 2 * int64_t{x};
        Store(mask + x, _mm256_permute4x64_epi64(_mm256_packus_epi16(PairMeans(p), PairMeans(p + 32)), 0xD8));
    }
    for (; x < half; ++x) {
        const uint8_t *p = row + 2 * int64_t{x};
        mask[x] = static_cast<uint8_t>((p[0] + p[1] + 1) >> 1);
    }
}

// Of an odd width 2 * half + 1 sample x lies at 2 * x + q / (2 * half) with q = 2 * x + half + 1, which is below 2 units.
struct OddSample {
    int64_t left, part;
};

ZCK_INLINE OddSample OddSampleAt(int64_t x, int64_t half) {
    const int64_t q = 2 * x + half + 1;
    return q < 2 * half ? OddSample{2 * x, q} : OddSample{2 * x + 1, q - 2 * half};
}

ZCK_INLINE void ScaleOddOne(uint8_t *mask, const uint8_t *row, int64_t x, int64_t half) {
    const OddSample s = OddSampleAt(x, half);
    int64_t sum = row[s.left] * (2 * half - s.part) + half;
    if (s.part != 0) sum += row[s.left + 1] * s.part;
    mask[x] = static_cast<uint8_t>(sum / (2 * half));
}

// Four samples: whole numbers of at most 31 bits, whose quotient a double holds well enough to cut it off.
ZCK_INLINE __m128i Quotient(__m128i sum, __m256d unit) {
    return _mm256_cvttpd_epi32(_mm256_div_pd(_mm256_cvtepi32_pd(sum), unit));
}

void ScaleOdd(uint8_t *mask, const uint8_t *row, int32_t half) {
    const __m256d unit = _mm256_set1_pd(2.0 * half);
    const __m256i steps = _mm256_setr_epi32(0, 2, 4, 6, 8, 10, 12, 14);
    int32_t x = 0;
    while (x < half) {
        const OddSample first = OddSampleAt(x, half);
        const OddSample last = OddSampleAt(int64_t{x} + 7, half);
        // Eight samples on the same side of the step, and sums of 31 bits.
        if (x + 8 > half || first.left - 2 * int64_t{x} != last.left - 2 * (int64_t{x} + 7) || half >= 1 << 22) {
            ScaleOddOne(mask, row, x++, half);
            continue;
        }
        const __m128i pairs = _mm_loadu_si128(reinterpret_cast<const __m128i *>(row + first.left));
        const __m256i a = _mm256_cvtepu16_epi32(_mm_and_si128(pairs, _mm_set1_epi16(255)));
        const __m256i b = _mm256_cvtepu16_epi32(_mm_srli_epi16(pairs, 8));
        const __m256i part = _mm256_add_epi32(Dwords(static_cast<int32_t>(first.part)), steps);
        const __m256i other = _mm256_sub_epi32(Dwords(2 * half), part);
        const __m256i sum =
            _mm256_add_epi32(_mm256_add_epi32(_mm256_mullo_epi32(a, other), _mm256_mullo_epi32(b, part)), Dwords(half));
        const __m128i low = Quotient(_mm256_castsi256_si128(sum), unit);
        const __m128i high = Quotient(_mm256_extracti128_si256(sum, 1), unit);
        const __m128i words = _mm_packs_epi32(low, high);
        _mm_storel_epi64(reinterpret_cast<__m128i *>(mask + x), _mm_packus_epi16(words, words));
        x += 8;
    }
}

void Scale(uint8_t *mask, const uint8_t *row, int32_t width) {
    if (width < 2) return;
    if (width % 2 == 0) {
        ScaleEven(mask, row, width / 2);
    } else {
        ScaleOdd(mask, row, width / 2);
    }
}

// ---- block path ----

// Pairs hold two words a macro pixel, for the positions 0 and 1; quads four, the macro pixels 0, 1, 4, 5 or 2, 3, 6, 7.
struct BlockLanes {
    __m256i move, gain;    // pairs
    __m256i key8;          // quads, times 8
    __m256i zero;          // quads
};

/// What a mask makes of the bytes of four macro pixels.
struct BlockForce {
    __m256i base;     // quads: to be taken from the byte
    __m256i gain8;    // quads: times 8
};

ZCK_INLINE __m256i Pairs(const int16_t *v) {
    return Dwords(static_cast<int32_t>((static_cast<uint32_t>(v[0]) & 0xFFFFU) | static_cast<uint32_t>(v[1]) << 16));
}

ZCK_INLINE __m256i Quads(const int16_t *v, int32_t factor) {
    const auto at = [v, factor](int j) { return static_cast<int16_t>(v[j] * factor); };
    return _mm256_setr_epi16(at(0), at(1), at(2), at(3), at(0), at(1), at(2), at(3), at(0), at(1), at(2), at(3), at(0), at(1),
                             at(2), at(3));
}

// Mask times strength, saturated to 16 bits, over 128.
ZCK_INLINE __m256i Strength(__m256i mask, __m256i p) {
    const __m256i low = _mm256_mullo_epi16(mask, p);
    const __m256i high = _mm256_mulhi_epi16(mask, p);
    const __m256i sat = _mm256_packs_epi32(_mm256_unpacklo_epi16(low, high), _mm256_unpackhi_epi16(low, high));
    return _mm256_srai_epi16(sat, 7);
}

// a * b >> 7 as the high word of (a << 6) * (b << 3); a has at most 10 bits.
ZCK_INLINE __m256i TimesOver128(__m256i a, __m256i b8) { return _mm256_mulhi_epi16(_mm256_slli_epi16(a, 6), b8); }

ZCK_INLINE BlockForce ForceOf(__m256i move, __m256i gain8, const BlockLanes &l) {
    // A sum that saturates at 16 bits is at most 255 after its shift.
    const __m256i away = _mm256_min_epi16(_mm256_max_epi16(TimesOver128(move, l.key8), Words(-256)), Words(255));
    return {_mm256_add_epi16(away, l.zero), gain8};
}

ZCK_INLINE void ForcesOf(__m256i mask, const BlockLanes &l, BlockForce *low, BlockForce *high) {
    const __m256i move = Strength(mask, l.move);
    const __m256i gain = _mm256_max_epi16(_mm256_add_epi16(Strength(mask, l.gain), Words(127)), _mm256_setzero_si256());
    const __m256i gain8 = _mm256_slli_epi16(gain, 3);
    *low = ForceOf(_mm256_unpacklo_epi32(move, move), _mm256_unpacklo_epi32(gain8, gain8), l);
    *high = ForceOf(_mm256_unpackhi_epi32(move, move), _mm256_unpackhi_epi32(gain8, gain8), l);
}

ZCK_INLINE __m256i Moved(__m256i words, const BlockForce &force, const BlockLanes &l) {
    return _mm256_add_epi16(TimesOver128(_mm256_sub_epi16(words, force.base), force.gain8), l.zero);
}

ZCK_INLINE void BlockAt(uint8_t *p, const BlockForce &low, const BlockForce &high, const BlockLanes &l) {
    const __m256i v = Load(p);
    const __m256i none = _mm256_setzero_si256();
    Store(p, _mm256_packus_epi16(Moved(_mm256_unpacklo_epi8(v, none), low, l), Moved(_mm256_unpackhi_epi8(v, none), high, l)));
}

void Block(uint8_t *pixels, const uint8_t *mask, int32_t blocks, const SpillBlockKey *key) {
    const BlockLanes l = {Pairs(key->move), Pairs(key->gain), Quads(key->key, 8), Quads(key->zero, 1)};
    // Most blocks lie wholly outside or wholly inside the mask.
    const BlockForce outside = {l.zero, Words(127 * 8)};
    BlockForce inside, low, high;
    ForcesOf(Words(255), l, &inside, &high);
    for (int32_t i = 0; i < blocks; ++i, pixels += 4 * kMacroPixels, mask += kMacroPixels) {
        const __m128i bytes = _mm_loadl_epi64(reinterpret_cast<const __m128i *>(mask));
        const int64_t word = _mm_cvtsi128_si64(bytes);
        if (word == 0) {
            BlockAt(pixels, outside, outside, l);
        } else if (word == -1) {
            BlockAt(pixels, inside, inside, l);
        } else {
            const __m256i m = _mm256_cvtepu8_epi32(bytes);
            ForcesOf(_mm256_or_si256(m, _mm256_slli_epi32(m, 16)), l, &low, &high);
            BlockAt(pixels, low, high, l);
        }
    }
}

// ---- per-pixel path ----

ZCK_INLINE __m256i Clamp(__m256i v, int32_t low, int32_t high) {
    return _mm256_min_epi32(_mm256_max_epi32(v, Dwords(low)), Dwords(high));
}
ZCK_INLINE __m256i Times(__m256i a, int32_t b) { return _mm256_mullo_epi32(a, Dwords(b)); }
ZCK_INLINE __m256i Plus(__m256i a, int32_t b) { return _mm256_add_epi32(a, Dwords(b)); }
ZCK_INLINE __m256i Over256(__m256i v) { return _mm256_srai_epi32(v, 8); }

struct PixelForces {
    __m256i power, chroma, luma;
};

ZCK_INLINE __m256i PixelMove(__m256i c, int32_t key, __m256i power) {
    const __m256i away = Over256(Plus(Times(power, key), 255));
    return Clamp(_mm256_sub_epi32(Plus(c, -128), away), -128, 127);
}

template <bool kGreen>
ZCK_INLINE __m256i PixelChroma(__m256i c, __m256i force) {
    __m256i t;
    if (kGreen) {
        const __m256i size = Clamp(_mm256_add_epi32(_mm256_abs_epi32(c), force), 0, 255);
        const __m256i sign = _mm256_srai_epi32(c, 31);
        t = _mm256_sub_epi32(_mm256_xor_si256(size, sign), sign);
    } else {
        t = Over256(Plus(_mm256_mullo_epi32(c, force), 255));
    }
    return Plus(Clamp(t, -128, 127), 128);
}

template <bool kGreen>
ZCK_INLINE __m256i PixelLuma(__m256i y, __m256i force) {
    return Clamp(kGreen ? _mm256_add_epi32(y, force) : Over256(Plus(_mm256_mullo_epi32(y, force), 255)), 0, 255);
}

template <bool kGreen>
ZCK_INLINE PixelForces PixelForcesOf(__m256i rest, const SpillPixelKey &key) {
    const __m256i chroma = Times(rest, key.chroma);
    const __m256i luma = _mm256_srai_epi32(Times(rest, key.luma), 6);
    PixelForces f = {_mm256_srai_epi32(Times(rest, key.power), 6), _mm256_srai_epi32(chroma, 7), luma};
    if (!kGreen) {
        const __m256i none = _mm256_setzero_si256();
        f.chroma = _mm256_max_epi32(Plus(_mm256_srai_epi32(chroma, 6), 255), none);
        f.luma = _mm256_max_epi32(Plus(luma, 255), none);
    }
    return f;
}

ZCK_INLINE __m256i ByteAt(__m256i v, int32_t at) {
    return _mm256_and_si256(_mm256_srl_epi32(v, _mm_cvtsi32_si128(8 * at)), Dwords(255));
}
ZCK_INLINE __m256i AtByte(__m256i v, int32_t at) { return _mm256_sll_epi32(v, _mm_cvtsi32_si128(8 * at)); }

template <bool kGreen>
ZCK_INLINE __m256i Pixels8(__m256i v, __m256i m, const SpillPixelKey &key) {
    const int32_t c = key.chromaAt;
    const int32_t y = 1 - c;
    const PixelForces f = PixelForcesOf<kGreen>(_mm256_sub_epi32(Dwords(255), m), key);
    __m256i c1 = ByteAt(v, c);
    __m256i c2 = ByteAt(v, c + 2);
    if (kGreen) {
        c1 = _mm256_sub_epi32(Dwords(255), Over256(_mm256_mullo_epi32(_mm256_sub_epi32(Dwords(255), c1), m)));
        c2 = Plus(Over256(_mm256_mullo_epi32(Plus(c2, -128), m)), 128);
    } else {
        c1 = Over256(_mm256_mullo_epi32(c1, m));
        c2 = Over256(_mm256_mullo_epi32(c2, m));
    }
    c1 = PixelChroma<kGreen>(PixelMove(c1, key.key[0], f.power), f.chroma);
    c2 = PixelChroma<kGreen>(PixelMove(c2, key.key[1], f.power), f.chroma);
    const __m256i y1 = PixelLuma<kGreen>(ByteAt(v, y), f.luma);
    const __m256i y2 = PixelLuma<kGreen>(ByteAt(v, y + 2), f.luma);
    return _mm256_or_si256(_mm256_or_si256(AtByte(c1, c), AtByte(c2, c + 2)),
                           _mm256_or_si256(AtByte(y1, y), AtByte(y2, y + 2)));
}

template <bool kGreen>
ZCK_INLINE void PixelRow(uint8_t *pixels, const uint8_t *mask, int32_t count, const SpillPixelKey &key) {
    for (; count >= kMacroPixels; count -= kMacroPixels, pixels += 4 * kMacroPixels, mask += kMacroPixels) {
        const __m256i m = _mm256_cvtepu8_epi32(_mm_loadl_epi64(reinterpret_cast<const __m128i *>(mask)));
        Store(pixels, Pixels8<kGreen>(Load(pixels), m, key));
    }
    if (count <= 0) return;
    uint8_t rest[4 * kMacroPixels] = {};
    uint8_t m[16] = {};
    for (int32_t i = 0; i < 4 * count; ++i) rest[i] = pixels[i];
    for (int32_t i = 0; i < count; ++i) m[i] = mask[i];
    const __m256i wide = _mm256_cvtepu8_epi32(_mm_loadl_epi64(reinterpret_cast<const __m128i *>(m)));
    Store(rest, Pixels8<kGreen>(Load(rest), wide, key));
    for (int32_t i = 0; i < 4 * count; ++i) pixels[i] = rest[i];
}

void Pixel(uint8_t *pixels, const uint8_t *mask, int32_t count, const SpillPixelKey *key) {
    if (key->mode == 1) {
        PixelRow<true>(pixels, mask, count, *key);
    } else {
        PixelRow<false>(pixels, mask, count, *key);
    }
}

}    // namespace

void SpillKernelsInitAvx2(SpillKernels *table) {
    table->scale = Scale;
    table->block = Block;
    table->pixel = Pixel;
}

}    // namespace zck
