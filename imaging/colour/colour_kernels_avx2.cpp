// AVX2 versions of the BT.709 pair and of 10-bit packing. What is left behind the last full vector goes through a padded
// block, so that there is one arithmetic only.
#include <immintrin.h>

#include "imaging/colour/colour_kernels.h"
#include "platform/avx2.h"

namespace zck {
namespace {

using namespace avx2;

// 16 pixels. The sums are in 16 bits: of each coefficient the nearest multiple of 256 is taken out of the sum, which then
// stays inside 16 bits and is shifted down; the multiples are added afterwards. That is exact.
ZCK_INLINE void Decode709Pixels16(uint8_t *dst, const uint8_t *src) {
    const __m256i dupU = _mm256_setr_epi8(0, 1, 0, 1, 4, 5, 4, 5, 8, 9, 8, 9, 12, 13, 12, 13, 0, 1, 0, 1, 4, 5, 4, 5, 8, 9, 8,
                                          9, 12, 13, 12, 13);
    const __m256i dupV = _mm256_setr_epi8(2, 3, 2, 3, 6, 7, 6, 7, 10, 11, 10, 11, 14, 15, 14, 15, 2, 3, 2, 3, 6, 7, 6, 7, 10,
                                          11, 10, 11, 14, 15, 14, 15);
    __m256i x = _mm256_loadu_si256(reinterpret_cast<const __m256i *>(src));
    // Pixels 0-3 and 8-11 into the low lane, so that the results come out in order.
    x = _mm256_permute4x64_epi64(x, 0xD8);
    const __m256i c = _mm256_sub_epi16(_mm256_and_si256(x, _mm256_set1_epi16(0x00FF)), _mm256_set1_epi16(128));
    const __m256i y = _mm256_sub_epi16(_mm256_srli_epi16(x, 8), _mm256_set1_epi16(16));
    const __m256i u = _mm256_shuffle_epi8(c, dupU);
    const __m256i v = _mm256_shuffle_epi8(c, dupV);
    const __m256i y42 = _mm256_mullo_epi16(y, _mm256_set1_epi16(42));
    // 542 = 2 * 256 + 30
    const __m256i bRest = _mm256_add_epi16(y42, _mm256_mullo_epi16(u, _mm256_set1_epi16(30)));
    const __m256i b = _mm256_add_epi16(_mm256_add_epi16(y, _mm256_slli_epi16(u, 1)), _mm256_srai_epi16(bRest, 8));
    // 459 = 2 * 256 - 53
    const __m256i rRest = _mm256_sub_epi16(y42, _mm256_mullo_epi16(v, _mm256_set1_epi16(53)));
    const __m256i r = _mm256_add_epi16(_mm256_add_epi16(y, _mm256_slli_epi16(v, 1)), _mm256_srai_epi16(rRest, 8));
    // -137 = -256 + 119
    const __m256i uv =
        _mm256_sub_epi16(_mm256_mullo_epi16(v, _mm256_set1_epi16(119)), _mm256_mullo_epi16(u, _mm256_set1_epi16(55)));
    const __m256i g = _mm256_add_epi16(_mm256_sub_epi16(y, v), _mm256_srai_epi16(_mm256_add_epi16(y42, uv), 8));
    const __m256i br = _mm256_packus_epi16(b, r);
    const __m256i ga = _mm256_packus_epi16(g, _mm256_set1_epi16(255));
    const __m256i bg = _mm256_unpacklo_epi8(br, ga);
    const __m256i ra = _mm256_unpackhi_epi8(br, ga);
    _mm256_storeu_si256(reinterpret_cast<__m256i *>(dst), _mm256_unpacklo_epi16(bg, ra));
    _mm256_storeu_si256(reinterpret_cast<__m256i *>(dst + 32), _mm256_unpackhi_epi16(bg, ra));
}

void Decode709(uint8_t *dst, const uint8_t *src, int64_t pairs) {
    for (; pairs >= 8; pairs -= 8, src += 32, dst += 64) {
        FetchAhead(src, kAhead / 2);
        OwnAhead(dst);
        Decode709Pixels16(dst, src);
    }
    if (pairs <= 0) return;
    uint8_t in[32] = {};
    uint8_t out[64];
    CopyBytes(in, src, 4 * pairs);
    Decode709Pixels16(out, in);
    CopyBytes(dst, out, 8 * pairs);
}

// 8 pixels to words, chroma in the low byte and luma in the high one, each in 32 bits.
ZCK_INLINE __m256i Encode709Pixels8(const uint8_t *src) {
    const __m256i x = _mm256_loadu_si256(reinterpret_cast<const __m256i *>(src));
    const __m256i br = _mm256_and_si256(x, _mm256_set1_epi32(0x00FF00FF));
    const __m256i ga = _mm256_srli_epi16(x, 8);
    // Sums of the pair, in both pixels; the even one makes Cb of it, the odd one Cr.
    const __m256i br2 = _mm256_add_epi16(br, _mm256_shuffle_epi32(br, 0xB1));
    const __m256i ga2 = _mm256_add_epi16(ga, _mm256_shuffle_epi32(ga, 0xB1));
    const __m256i lumaBr = _mm256_set1_epi32(49 * 65536 + 16);
    const __m256i lumaG = _mm256_set1_epi32(157);
    const __m256i chromaBr = _mm256_set1_epi64x(0x0070FFF6FFE60070);    // 112, -26; -10, 112
    const __m256i chromaG = _mm256_set1_epi64x(0x0000FF9A0000FFA9);     // -87; -102
    __m256i luma = _mm256_add_epi32(_mm256_madd_epi16(br, lumaBr), _mm256_madd_epi16(ga, lumaG));
    luma = _mm256_srli_epi32(_mm256_add_epi32(luma, _mm256_set1_epi32(16 * 255)), 8);
    __m256i chroma = _mm256_add_epi32(_mm256_madd_epi16(br2, chromaBr), _mm256_madd_epi16(ga2, chromaG));
    chroma = _mm256_srai_epi32(_mm256_add_epi32(chroma, _mm256_set1_epi32(2 * 129 * 255)), 9);
    // Luma is 15 to 237 and chroma 16 to 240: nothing is left to clamp.
    return _mm256_or_si256(chroma, _mm256_slli_epi32(luma, 8));
}

ZCK_INLINE void Encode709Pixels16(uint8_t *dst, const uint8_t *src) {
    const __m256i words = _mm256_packus_epi32(Encode709Pixels8(src), Encode709Pixels8(src + 32));
    _mm256_storeu_si256(reinterpret_cast<__m256i *>(dst), _mm256_permute4x64_epi64(words, 0xD8));
}

void Encode709(uint8_t *dst, const uint8_t *src, int64_t blocks) {
    for (; blocks >= 4; blocks -= 4, src += 64, dst += 32) Encode709Pixels16(dst, src);
    if (blocks <= 0) return;
    uint8_t in[64] = {};
    uint8_t out[32];
    CopyBytes(in, src, 16 * blocks);
    Encode709Pixels16(out, in);
    CopyBytes(dst, out, 8 * blocks);
}

__m256i LoadTwo(const uint8_t *low, const uint8_t *high) {
    return _mm256_inserti128_si256(_mm256_castsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i *>(low))),
                                   _mm_loadu_si128(reinterpret_cast<const __m128i *>(high)), 1);
}

// 2 blocks; reads 4 bytes more than they have. `two` brings components 0 and 1 of each word into 16 bits each, `third` the
// last one into byte 2.
void PackBlocks2(uint8_t *dst, const uint8_t *src, __m128i two, __m128i third) {
    const __m256i x = LoadTwo(src, src + 12);
    const __m256i pair = _mm256_shuffle_epi8(x, _mm256_broadcastsi128_si256(two));
    const __m256i last = _mm256_shuffle_epi8(x, _mm256_broadcastsi128_si256(third));
    const __m256i low = _mm256_madd_epi16(pair, _mm256_set1_epi32(4096 * 65536 + 4));
    _mm256_storeu_si256(reinterpret_cast<__m256i *>(dst), _mm256_or_si256(low, _mm256_slli_epi32(last, 6)));
}

void Pack(uint8_t *dst, const uint8_t *src, int64_t blocks, __m128i two, __m128i third) {
    // Strictly: the third block is there to be read into.
    for (; blocks > 2; blocks -= 2, src += 24, dst += 32) PackBlocks2(dst, src, two, third);
    if (blocks <= 0) return;
    uint8_t in[28] = {};
    uint8_t out[32];
    CopyBytes(in, src, 12 * blocks);
    PackBlocks2(out, in, two, third);
    CopyBytes(dst, out, 16 * blocks);
}

void PackUyvy(uint8_t *dst, const uint8_t *src, int64_t blocks) {
    Pack(dst, src, blocks, _mm_setr_epi8(0, -1, 1, -1, 3, -1, 4, -1, 6, -1, 7, -1, 9, -1, 10, -1),
         _mm_setr_epi8(-1, -1, 2, -1, -1, -1, 5, -1, -1, -1, 8, -1, -1, -1, 11, -1));
}

void PackYuy2(uint8_t *dst, const uint8_t *src, int64_t blocks) {
    Pack(dst, src, blocks, _mm_setr_epi8(1, -1, 0, -1, 2, -1, 5, -1, 7, -1, 6, -1, 8, -1, 11, -1),
         _mm_setr_epi8(-1, -1, 3, -1, -1, -1, 4, -1, -1, -1, 9, -1, -1, -1, 10, -1));
}

// 2 blocks; writes 4 bytes more than they have.
ZCK_INLINE void UnpackBlocks2(uint8_t *dst, const uint8_t *src) {
    const __m256i x = _mm256_loadu_si256(reinterpret_cast<const __m256i *>(src));
    const __m256i c0 = _mm256_and_si256(_mm256_srli_epi32(x, 2), _mm256_set1_epi32(0x000000FF));
    const __m256i c1 = _mm256_and_si256(_mm256_srli_epi32(x, 4), _mm256_set1_epi32(0x0000FF00));
    const __m256i c2 = _mm256_and_si256(_mm256_srli_epi32(x, 6), _mm256_set1_epi32(0x00FF0000));
    const __m256i bytes = _mm256_or_si256(_mm256_or_si256(c0, c1), c2);
    const __m256i dense = _mm256_setr_epi8(0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14, -1, -1, -1, -1, 0, 1, 2, 4, 5, 6, 8, 9, 10,
                                           12, 13, 14, -1, -1, -1, -1);
    const __m256i out = _mm256_shuffle_epi8(bytes, dense);
    _mm_storeu_si128(reinterpret_cast<__m128i *>(dst), _mm256_castsi256_si128(out));
    _mm_storeu_si128(reinterpret_cast<__m128i *>(dst + 12), _mm256_extracti128_si256(out, 1));
}

void UnpackUyvy(uint8_t *dst, const uint8_t *src, int64_t blocks) {
    for (; blocks > 2; blocks -= 2, src += 32, dst += 24) {
        FetchAhead(src, kAhead / 2);
        UnpackBlocks2(dst, src);
    }
    if (blocks <= 0) return;
    uint8_t in[32] = {};
    uint8_t out[28];
    CopyBytes(in, src, 16 * blocks);
    UnpackBlocks2(out, in);
    CopyBytes(dst, out, 12 * blocks);
}

}    // namespace

void ColourKernelsInitAvx2(ColourKernels *table) {
    table->decode709 = Decode709;
    table->encode709 = Encode709;
    table->pack_uyvy = PackUyvy;
    table->pack_yuy2 = PackYuy2;
    table->unpack_uyvy = UnpackUyvy;
}

}    // namespace zck
