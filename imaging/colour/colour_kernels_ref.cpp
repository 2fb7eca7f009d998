// The reference: scalar, dull, and never to be made faster. It says what the bytes are.
#include <algorithm>

#include "imaging/colour/colour_kernels.h"

namespace zck {
namespace {

uint8_t Clamp(int32_t v) { return static_cast<uint8_t>(std::clamp(v, 0, 255)); }

void Decode709Pixel(uint8_t *dst, int32_t y, int32_t u, int32_t v) {
    dst[0] = Clamp((298 * y + 542 * u) >> 8);
    dst[1] = Clamp((298 * y - 55 * u - 137 * v) >> 8);
    dst[2] = Clamp((298 * y + 459 * v) >> 8);
    dst[3] = 255;
}

void Decode709(uint8_t *dst, const uint8_t *src, int64_t pairs) {
    for (int64_t i = 0; i < pairs; ++i, src += 4, dst += 8) {
        const int32_t u = src[0] - 128;
        const int32_t v = src[2] - 128;
        Decode709Pixel(dst, src[1] - 16, u, v);
        Decode709Pixel(dst + 4, src[3] - 16, u, v);
    }
}

// The sums have no bias yet.
int32_t Luma(const uint8_t *p) { return 16 * p[0] + 157 * p[1] + 49 * p[2]; }
int32_t Cb(const uint8_t *p) { return 112 * p[0] - 87 * p[1] - 26 * p[2]; }
int32_t Cr(const uint8_t *p) { return -10 * p[0] - 102 * p[1] + 112 * p[2]; }

constexpr int32_t kLumaBias = 16 * 255;
constexpr int32_t kChromaBias = 129 * 255;

void Encode709Pair(uint8_t *dst, const uint8_t *p) {
    const uint8_t *q = p + 4;
    dst[0] = Clamp((Cb(p) + Cb(q) + 2 * kChromaBias) >> 9);
    dst[1] = Clamp((Luma(p) + kLumaBias) >> 8);
    dst[2] = Clamp((Cr(p) + Cr(q) + 2 * kChromaBias) >> 9);
    dst[3] = Clamp((Luma(q) + kLumaBias) >> 8);
}

void Encode709(uint8_t *dst, const uint8_t *src, int64_t blocks) {
    for (int64_t pair = 0; pair < 2 * blocks; ++pair) Encode709Pair(dst + 4 * pair, src + 8 * pair);
}

void StoreWord(uint8_t *dst, uint32_t word) {
    for (int j = 0; j < 4; ++j) dst[j] = static_cast<uint8_t>(word >> (8 * j));
}

uint32_t LoadWord(const uint8_t *src) {
    return src[0] | static_cast<uint32_t>(src[1]) << 8 | static_cast<uint32_t>(src[2]) << 16 |
           static_cast<uint32_t>(src[3]) << 24;
}

// 12 components in the order of UYVY, which is that of v210; kFlip takes them from YUY2.
template <int kFlip>
void Pack(uint8_t *dst, const uint8_t *src, int64_t blocks) {
    for (int64_t i = 0; i < blocks; ++i, src += 12, dst += 16)
        for (int word = 0; word < 4; ++word) {
            uint32_t bits = 0;
            for (int j = 0; j < 3; ++j) bits |= static_cast<uint32_t>(src[(3 * word + j) ^ kFlip]) << (10 * j + 2);
            StoreWord(dst + 4 * word, bits);
        }
}

void UnpackUyvy(uint8_t *dst, const uint8_t *src, int64_t blocks) {
    for (int64_t i = 0; i < blocks; ++i, src += 16, dst += 12)
        for (int j = 0; j < 12; ++j) dst[j] = static_cast<uint8_t>(LoadWord(src + 4 * (j / 3)) >> (10 * (j % 3) + 2));
}

}    // namespace

void ColourKernelsInitRef(ColourKernels *table) {
    table->decode709 = Decode709;
    table->encode709 = Encode709;
    table->pack_uyvy = Pack<0>;
    table->pack_yuy2 = Pack<1>;
    table->unpack_uyvy = UnpackUyvy;
}

void Encode709Rest(uint8_t *dst4, const uint8_t *first, const uint8_t *second) {
    dst4[0] = Clamp(((Cb(first) + Cb(second)) >> 9) + 128);
    dst4[1] = Clamp((Luma(first) >> 8) + 16);
    dst4[2] = Clamp(((Cr(first) + Cr(second)) >> 9) + 128);
    dst4[3] = Clamp((Luma(second) >> 8) + 16);
}

}    // namespace zck
