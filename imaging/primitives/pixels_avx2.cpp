// AVX2 versions of copies, fills and mirrors. Where a vector reaches over the pixels that it stands for, the loop ends early
// enough for it to stay inside the row, and single pixels follow.
#include <immintrin.h>

#include "imaging/primitives/row_kernels.h"
#include "platform/avx2.h"

namespace zck {
namespace {

using namespace avx2;

// 8 pixels of 4 bytes are written as 32 bytes of which 24 count: 3 pixels more must follow.
void DropAlpha(uint8_t *dst, const uint8_t *src, int32_t width) {
    const __m256i dense = _mm256_setr_epi8(0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14, -1, -1, -1, -1, 0, 1, 2, 4, 5, 6, 8, 9, 10,
                                           12, 13, 14, -1, -1, -1, -1);
    const __m256i close = _mm256_setr_epi32(0, 1, 2, 4, 5, 6, 3, 7);
    int64_t x = 0;
    for (; x + 11 <= width; x += 8)
        Store(dst + 3 * x, _mm256_permutevar8x32_epi32(_mm256_shuffle_epi8(Load(src + 4 * x), dense), close));
    for (; x < width; ++x)
        for (int j = 0; j < 3; ++j) dst[3 * x + j] = src[4 * x + j];
}

void AddAlpha(uint8_t *dst, const uint8_t *src, int32_t width) {
    const __m256i open = _mm256_setr_epi32(0, 1, 2, 2, 3, 4, 5, 5);
    const __m256i wide = _mm256_setr_epi8(0, 1, 2, -1, 3, 4, 5, -1, 6, 7, 8, -1, 9, 10, 11, -1, 0, 1, 2, -1, 3, 4, 5, -1, 6, 7,
                                          8, -1, 9, 10, 11, -1);
    const __m256i opaque = _mm256_set1_epi32(static_cast<int32_t>(0xFF000000));
    int64_t x = 0;
    for (; x + 11 <= width; x += 8) {
        const __m256i pixels = _mm256_shuffle_epi8(_mm256_permutevar8x32_epi32(Load(src + 3 * x), open), wide);
        Store(dst + 4 * x, _mm256_or_si256(pixels, opaque));
    }
    for (; x < width; ++x) {
        for (int j = 0; j < 3; ++j) dst[4 * x + j] = src[3 * x + j];
        dst[4 * x + 3] = 255;
    }
}

// The pointers of the channel kernels stand at a channel: the last vector reaches 3 bytes into the next pixel, which must
// be there.
void GetChannel(uint8_t *dst, const uint8_t *src, int32_t width) {
    const __m256i low = _mm256_set1_epi32(0xFF);
    const __m256i order = _mm256_setr_epi32(0, 4, 1, 5, 2, 6, 3, 7);
    int64_t x = 0;
    for (; x + 32 < width; x += 32) {
        const uint8_t *p = src + 4 * x;
        const __m256i a = _mm256_packus_epi32(_mm256_and_si256(Load(p), low), _mm256_and_si256(Load(p + 32), low));
        const __m256i b = _mm256_packus_epi32(_mm256_and_si256(Load(p + 64), low), _mm256_and_si256(Load(p + 96), low));
        Store(dst + x, _mm256_permutevar8x32_epi32(_mm256_packus_epi16(a, b), order));
    }
    for (; x < width; ++x) dst[x] = src[4 * x];
}

void PutChannel(uint8_t *dst, const uint8_t *src, int32_t width) {
    const __m256i rest = _mm256_set1_epi32(static_cast<int32_t>(0xFFFFFF00));
    int64_t x = 0;
    for (; x + 8 < width; x += 8) {
        const __m256i bytes = _mm256_cvtepu8_epi32(_mm_loadl_epi64(reinterpret_cast<const __m128i *>(src + x)));
        Store(dst + 4 * x, _mm256_or_si256(_mm256_and_si256(Load(dst + 4 * x), rest), bytes));
    }
    for (; x < width; ++x) dst[4 * x] = src[x];
}

void SetChannel(uint8_t *dst, uint8_t value, int32_t width) {
    const __m256i rest = _mm256_set1_epi32(static_cast<int32_t>(0xFFFFFF00));
    const __m256i bytes = _mm256_set1_epi32(value);
    int64_t x = 0;
    for (; x + 8 < width; x += 8) Store(dst + 4 * x, _mm256_or_si256(_mm256_and_si256(Load(dst + 4 * x), rest), bytes));
    for (; x < width; ++x) dst[4 * x] = value;
}

// 32 pixels are three vectors.
void Set3(uint8_t *dst, const uint8_t *value, int32_t width) {
    uint8_t pattern[96];
    for (int i = 0; i < 96; ++i) pattern[i] = value[i % 3];
    const __m256i a = Load(pattern);
    const __m256i b = Load(pattern + 32);
    const __m256i c = Load(pattern + 64);
    int64_t x = 0;
    for (; x + 32 <= width; x += 32) {
        Store(dst + 3 * x, a);
        Store(dst + 3 * x + 32, b);
        Store(dst + 3 * x + 64, c);
    }
    for (; x < width; ++x)
        for (int j = 0; j < 3; ++j) dst[3 * x + j] = value[j];
}

void Set4(uint8_t *dst, const uint8_t *value, int32_t width) {
    uint8_t pattern[32];
    for (int i = 0; i < 32; ++i) pattern[i] = value[i % 4];
    const __m256i a = Load(pattern);
    int64_t x = 0;
    for (; x + 8 <= width; x += 8) Store(dst + 4 * x, a);
    for (; x < width; ++x)
        for (int j = 0; j < 4; ++j) dst[4 * x + j] = value[j];
}

__m256i SwapLanes(__m256i x) { return _mm256_permute4x64_epi64(x, 0x4E); }

void Mirror1(uint8_t *dst, const uint8_t *src, int32_t width) {
    const __m256i back = _mm256_setr_epi8(15, 14, 13, 12, 11, 10, 9, 8, 7, 6, 5, 4, 3, 2, 1, 0, 15, 14, 13, 12, 11, 10, 9, 8, 7,
                                          6, 5, 4, 3, 2, 1, 0);
    int64_t x = 0;
    for (; x + 32 <= width; x += 32) Store(dst + x, SwapLanes(_mm256_shuffle_epi8(Load(src + width - 32 - x), back)));
    for (; x < width; ++x) dst[x] = src[width - 1 - x];
}

void Mirror2(uint8_t *dst, const uint8_t *src, int32_t width) {
    const __m256i back = _mm256_setr_epi8(14, 15, 12, 13, 10, 11, 8, 9, 6, 7, 4, 5, 2, 3, 0, 1, 14, 15, 12, 13, 10, 11, 8, 9, 6,
                                          7, 4, 5, 2, 3, 0, 1);
    int64_t x = 0;
    for (; x + 16 <= width; x += 16) Store(dst + 2 * x, SwapLanes(_mm256_shuffle_epi8(Load(src + 2 * (width - 16 - x)), back)));
    for (; x < width; ++x)
        for (int j = 0; j < 2; ++j) dst[2 * x + j] = src[2 * (width - 1 - x) + j];
}

// 5 pixels at a time. The vector begins one byte before them and is written one byte over them, so a sixth pixel must be there
// on both sides.
void Mirror3(uint8_t *dst, const uint8_t *src, int32_t width) {
    const __m128i back = _mm_setr_epi8(13, 14, 15, 10, 11, 12, 7, 8, 9, 4, 5, 6, 1, 2, 3, 0);
    int64_t x = 0;
    for (; x + 6 <= width; x += 5) {
        const __m128i pixels = _mm_loadu_si128(reinterpret_cast<const __m128i *>(src + 3 * (width - 5 - x) - 1));
        _mm_storeu_si128(reinterpret_cast<__m128i *>(dst + 3 * x), _mm_shuffle_epi8(pixels, back));
    }
    for (; x < width; ++x)
        for (int j = 0; j < 3; ++j) dst[3 * x + j] = src[3 * (width - 1 - x) + j];
}

void Mirror4(uint8_t *dst, const uint8_t *src, int32_t width) {
    const __m256i back = _mm256_setr_epi32(7, 6, 5, 4, 3, 2, 1, 0);
    int64_t x = 0;
    for (; x + 8 <= width; x += 8) Store(dst + 4 * x, _mm256_permutevar8x32_epi32(Load(src + 4 * (width - 8 - x)), back));
    for (; x < width; ++x)
        for (int j = 0; j < 4; ++j) dst[4 * x + j] = src[4 * (width - 1 - x) + j];
}

void Swap4(uint8_t *dst, const uint8_t *src, const uint8_t *order, int32_t width) {
    uint8_t places[32];
    for (int i = 0; i < 32; ++i) places[i] = static_cast<uint8_t>((i & 12) + (order[i & 3] & 3));
    const __m256i shuffle = Load(places);
    int64_t x = 0;
    for (; x + 8 <= width; x += 8) Store(dst + 4 * x, _mm256_shuffle_epi8(Load(src + 4 * x), shuffle));
    for (; x < width; ++x) {
        const uint8_t pixel[4] = {src[4 * x], src[4 * x + 1], src[4 * x + 2], src[4 * x + 3]};
        for (int j = 0; j < 4; ++j) dst[4 * x + j] = pixel[places[j]];
    }
}

}    // namespace

void PrimitivePixelsInitAvx2(PrimitiveKernels *table) {
    table->drop_alpha = DropAlpha;
    table->add_alpha = AddAlpha;
    table->get_channel = GetChannel;
    table->put_channel = PutChannel;
    table->set_channel = SetChannel;
    table->set3 = Set3;
    table->set4 = Set4;
    table->mirror1 = Mirror1;
    table->mirror2 = Mirror2;
    table->mirror3 = Mirror3;
    table->mirror4 = Mirror4;
    table->swap4 = Swap4;
}

}    // namespace zck
