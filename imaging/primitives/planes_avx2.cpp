// AVX2 versions of the entries for planes. What is left behind the last full vector goes through padded blocks, so that there
// is one arithmetic only.
#include <immintrin.h>

#include "imaging/primitives/bt601_avx2.h"
#include "imaging/primitives/row_kernels.h"

namespace zck {
namespace {

__m256i LowBytes(__m256i x) { return _mm256_and_si256(x, Words(0x00FF)); }
__m256i HighBytes(__m256i x) { return _mm256_srli_epi16(x, 8); }

// 32 words to bytes, in order.
__m256i Packed(__m256i a, __m256i b) { return _mm256_permute4x64_epi64(_mm256_packus_epi16(a, b), 0xD8); }

// 16 pairs of bytes.
void SplitPairs16(uint8_t *first, uint8_t *second, __m256i pairs) {
    const __m256i x = Packed(LowBytes(pairs), HighBytes(pairs));
    StoreHalf(first, _mm256_castsi256_si128(x));
    StoreHalf(second, _mm256_extracti128_si256(x, 1));
}

__m256i JoinPairs16(const uint8_t *first, const uint8_t *second) {
    const __m128i a = LoadHalf(first);
    const __m128i b = LoadHalf(second);
    return _mm256_set_m128i(_mm_unpackhi_epi8(a, b), _mm_unpacklo_epi8(a, b));
}

// 32 pixels.
template <bool kLumaFirst>
void Split32(uint8_t *y, uint8_t *cb, uint8_t *cr, const uint8_t *src) {
    const __m256i a = Load(src);
    const __m256i b = Load(src + 32);
    const __m256i low = Packed(LowBytes(a), LowBytes(b));
    const __m256i high = Packed(HighBytes(a), HighBytes(b));
    Store(y, kLumaFirst ? low : high);
    SplitPairs16(cb, cr, kLumaFirst ? high : low);
}

template <bool kLumaFirst>
void Split(uint8_t *y, uint8_t *cb, uint8_t *cr, const uint8_t *src, int32_t width) {
    for (; width >= 32; width -= 32, src += 64, y += 32, cb += 16, cr += 16) {
        FetchAhead(src);
        Split32<kLumaFirst>(y, cb, cr, src);
    }
    if (width <= 0) return;
    const int32_t groups = (width + 1) / 2;
    uint8_t in[64] = {};
    uint8_t out[64];
    CopyBytes(in, src, 4 * groups);
    Split32<kLumaFirst>(out, out + 32, out + 48, in);
    CopyBytes(y, out, width);
    CopyBytes(cb, out + 32, groups);
    CopyBytes(cr, out + 48, groups);
}

template <bool kLumaFirst>
void Join32(uint8_t *dst, const uint8_t *y, const uint8_t *cb, const uint8_t *cr) {
    const __m256i luma = Load(y);
    const __m256i chroma = JoinPairs16(cb, cr);
    const __m256i low = kLumaFirst ? luma : chroma;
    const __m256i high = kLumaFirst ? chroma : luma;
    const __m256i a = _mm256_unpacklo_epi8(low, high);
    const __m256i b = _mm256_unpackhi_epi8(low, high);
    Store(dst, _mm256_permute2x128_si256(a, b, 0x20));
    Store(dst + 32, _mm256_permute2x128_si256(a, b, 0x31));
}

template <bool kLumaFirst>
void Join(uint8_t *dst, const uint8_t *y, const uint8_t *cb, const uint8_t *cr, int32_t width) {
    for (; width >= 32; width -= 32, dst += 64, y += 32, cb += 16, cr += 16) Join32<kLumaFirst>(dst, y, cb, cr);
    if (width <= 0) return;
    const int32_t groups = (width + 1) / 2;
    uint8_t in[64] = {};
    uint8_t out[64];
    CopyBytes(in, y, width);
    CopyBytes(in + 32, cb, groups);
    CopyBytes(in + 48, cr, groups);
    Join32<kLumaFirst>(out, in, in + 32, in + 48);
    CopyBytes(dst, out, 2 * width);
    // The second luma byte of an odd row's last group stays.
    if ((width & 1) == 0) return;
    const int32_t cr1 = kLumaFirst ? 2 * width + 1 : 2 * width;
    dst[cr1] = out[cr1];
}

void SplitPairs(uint8_t *first, uint8_t *second, const uint8_t *src, int32_t count) {
    for (; count >= 16; count -= 16, src += 32, first += 16, second += 16) SplitPairs16(first, second, Load(src));
    for (int64_t i = 0; i < count; ++i) {
        first[i] = src[2 * i];
        second[i] = src[2 * i + 1];
    }
}

void JoinPairs(uint8_t *dst, const uint8_t *first, const uint8_t *second, int32_t count) {
    for (; count >= 16; count -= 16, dst += 32, first += 16, second += 16) Store(dst, JoinPairs16(first, second));
    for (int64_t i = 0; i < count; ++i) {
        dst[2 * i] = first[i];
        dst[2 * i + 1] = second[i];
    }
}

void Mean(uint8_t *dst, const uint8_t *a, const uint8_t *b, int32_t count) {
    for (; count >= 32; count -= 32, dst += 32, a += 32, b += 32) Store(dst, _mm256_avg_epu8(Load(a), Load(b)));
    for (int64_t i = 0; i < count; ++i) dst[i] = static_cast<uint8_t>((a[i] + b[i] + 1) / 2);
}

// Luma of 16 pixels behind the chroma of each, pixels as `Decode16` wants them.
__m256i WithLuma(__m128i chroma, __m128i luma) {
    const __m256i x = _mm256_set_m128i(_mm_unpackhi_epi8(chroma, luma), _mm_unpacklo_epi8(chroma, luma));
    return _mm256_permute4x64_epi64(x, 0xD8);
}

// 8 samples, each for two pixels.
__m128i Twice(const uint8_t *p) {
    const __m128i x = _mm_loadl_epi64(reinterpret_cast<const __m128i *>(p));
    return _mm_unpacklo_epi8(x, x);
}

ZCK_INLINE void Planes16(uint8_t *dst, const uint8_t *y, const uint8_t *cb, const uint8_t *cr, __m256i alpha) {
    const __m128i luma = LoadHalf(y);
    Decode16(dst, WithLuma(Twice(cb), luma), WithLuma(Twice(cr), luma), alpha);
}

void PlanesToBgra(uint8_t *dst, const uint8_t *y, const uint8_t *cb, const uint8_t *cr, int32_t width, uint8_t alpha) {
    const __m256i alphas = Words(alpha);
    for (; width >= 16; width -= 16, dst += 64, y += 16, cb += 8, cr += 8) {
        FetchAhead(y, kAhead / 2);
        FetchAhead(cb, kAhead / 2);
        FetchAhead(cr, kAhead / 2);
        OwnAhead(dst);
        Planes16(dst, y, cb, cr, alphas);
    }
    if (width <= 0) return;
    uint8_t in[32] = {};
    uint8_t out[64];
    CopyBytes(in, y, width);
    CopyBytes(in + 16, cb, (width + 1) / 2);
    CopyBytes(in + 24, cr, (width + 1) / 2);
    Planes16(out, in, in + 16, in + 24, alphas);
    CopyBytes(dst, out, 4 * width);
}

ZCK_INLINE void Nv12Pixels16(uint8_t *dst, const uint8_t *y, const uint8_t *cbcr, __m256i alpha) {
    const __m128i atCb = _mm_setr_epi8(0, 0, 2, 2, 4, 4, 6, 6, 8, 8, 10, 10, 12, 12, 14, 14);
    const __m128i atCr = _mm_setr_epi8(1, 1, 3, 3, 5, 5, 7, 7, 9, 9, 11, 11, 13, 13, 15, 15);
    const __m128i luma = LoadHalf(y);
    const __m128i chroma = LoadHalf(cbcr);
    Decode16(dst, WithLuma(_mm_shuffle_epi8(chroma, atCb), luma), WithLuma(_mm_shuffle_epi8(chroma, atCr), luma), alpha);
}

void Nv12ToBgra(uint8_t *dst, const uint8_t *y, const uint8_t *cbcr, int32_t width, uint8_t alpha) {
    const __m256i alphas = Words(alpha);
    for (; width >= 16; width -= 16, dst += 64, y += 16, cbcr += 16) {
        FetchAhead(y, kAhead / 2);
        FetchAhead(cbcr, kAhead / 2);
        OwnAhead(dst);
        Nv12Pixels16(dst, y, cbcr, alphas);
    }
    if (width <= 0) return;
    uint8_t in[32] = {};
    uint8_t out[64];
    CopyBytes(in, y, width);
    CopyBytes(in + 16, cbcr, (width + 1) / 2 * 2);
    Nv12Pixels16(out, in, in + 16, alphas);
    CopyBytes(dst, out, 4 * width);
}

// 8 pixels of two rows: the luma of both, and the chroma of the blocks of four (Cb in even places, Cr in odd ones), in eighths
// and in 1/32 of thousandths.
struct Sums {
    __m256i luma0;
    __m256i luma1;
    __m256i chroma;
};

ZCK_INLINE Sums SumsOf8(const uint8_t *src0, const uint8_t *src1) {
    const __m256i mask = _mm256_set1_epi32(0x00FF00FF);
    const __m256i x0 = Load(src0);
    const __m256i x1 = Load(src1);
    const __m256i br0 = _mm256_and_si256(x0, mask);
    const __m256i br1 = _mm256_and_si256(x1, mask);
    const __m256i ga0 = _mm256_srli_epi16(x0, 8);
    const __m256i ga1 = _mm256_srli_epi16(x1, 8);
    const __m256i chroma = Chroma8(PairSum(_mm256_add_epi16(br0, br1)), PairSum(_mm256_add_epi16(ga0, ga1)));
    return {Luma8(br0, ga0), Luma8(br1, ga1), _mm256_srli_epi32(_mm256_add_epi32(chroma, _mm256_set1_epi32(514000)), 5)};
}

// 16 results to bytes, in order.
__m128i Bytes16(__m256i a, __m256i b) {
    const __m256i words = _mm256_permute4x64_epi64(By125(_mm256_packus_epi32(a, b)), 0xD8);
    return _mm_packus_epi16(_mm256_castsi256_si128(words), _mm256_extracti128_si256(words, 1));
}

// 16 pixels of two rows.
ZCK_INLINE void Encode16(uint8_t *y0, uint8_t *y1, uint8_t *cb, uint8_t *cr, const uint8_t *src0, const uint8_t *src1) {
    const Sums a = SumsOf8(src0, src1);
    const Sums b = SumsOf8(src0 + 32, src1 + 32);
    StoreHalf(y0, Bytes16(a.luma0, b.luma0));
    StoreHalf(y1, Bytes16(a.luma1, b.luma1));
    const __m128i apart = _mm_setr_epi8(0, 2, 4, 6, 8, 10, 12, 14, 1, 3, 5, 7, 9, 11, 13, 15);
    const __m128i chroma = _mm_shuffle_epi8(Bytes16(a.chroma, b.chroma), apart);
    _mm_storel_epi64(reinterpret_cast<__m128i *>(cb), chroma);
    _mm_storel_epi64(reinterpret_cast<__m128i *>(cr), _mm_unpackhi_epi64(chroma, chroma));
}

void PaddedRow(uint8_t *in, const uint8_t *src, int32_t width) {
    CopyBytes(in, src, 4 * width);
    if ((width & 1) != 0) CopyBytes(in + 4 * width, src + 4 * width - 4, 4);
}

void BgraTo420(uint8_t *y0, uint8_t *y1, uint8_t *cb, uint8_t *cr, const uint8_t *src0, const uint8_t *src1, int32_t width) {
    for (; width >= 16; width -= 16, y0 += 16, y1 += 16, cb += 8, cr += 8, src0 += 64, src1 += 64)
        Encode16(y0, y1, cb, cr, src0, src1);
    if (width <= 0) return;
    uint8_t in[128] = {};
    uint8_t out[48];
    PaddedRow(in, src0, width);
    PaddedRow(in + 64, src1, width);
    Encode16(out, out + 16, out + 32, out + 40, in, in + 64);
    CopyBytes(y0, out, width);
    CopyBytes(y1, out + 16, width);
    CopyBytes(cb, out + 32, (width + 1) / 2);
    CopyBytes(cr, out + 40, (width + 1) / 2);
}

}    // namespace

void PrimitivePlanesInitAvx2(PrimitiveKernels *table) {
    table->split_uyvy = Split<false>;
    table->split_yuy2 = Split<true>;
    table->join_uyvy = Join<false>;
    table->join_yuy2 = Join<true>;
    table->split_pairs = SplitPairs;
    table->join_pairs = JoinPairs;
    table->mean = Mean;
    table->planes_to_bgra = PlanesToBgra;
    table->nv12_to_bgra = Nv12ToBgra;
    table->bgra_to_420 = BgraTo420;
}

}    // namespace zck
