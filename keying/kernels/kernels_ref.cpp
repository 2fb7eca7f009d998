// The reference: scalar, dull, and never to be made faster. It says what the bytes are.
#include <algorithm>
#include <cmath>

#include "keying/kernels/kernels.h"

namespace zck {
namespace {

uint8_t Byte(int32_t v) { return static_cast<uint8_t>(v); }
uint8_t ClampByte(int32_t v) { return static_cast<uint8_t>(std::clamp(v, 0, 255)); }

uint8_t DistanceAlpha(const uint8_t *pixel, const DistanceKey &key) {
    int32_t v = -key.off;
    for (int j = 0; j < 3; ++j) {
        const int32_t e = pixel[j] - key.k[j];
        v += ((e * e) >> 1) * key.w[j];
    }
    // Inside the key there is no root: alpha 0.
    if (v <= 0) return 0;
    const float a = std::sqrt(static_cast<float>(v)) / key.div;
    return a >= 255.0F ? uint8_t{255} : static_cast<uint8_t>(std::nearbyint(a));
}

void Distance(uint8_t *dst, const uint8_t *src, int32_t blocks, const DistanceKey *key) {
    for (int64_t x = 0; x < int64_t{blocks} * 8; ++x) dst[x] = DistanceAlpha(src + 4 * x, *key);
}

void Join(uint8_t *dst, const uint8_t *src, int32_t width, int32_t c) {
    const int32_t addend = Byte(c);
    for (int32_t x = 0; x < width / 16 * 16; ++x) dst[x] = std::min(dst[x], ClampByte(src[x] + addend));
}

void Invert(uint8_t *row, int32_t width, bool writeSlipByte) {
    if (width <= 0) return;
    const int32_t tail = width / 16 * 16;
    for (int32_t x = 0; x < tail; ++x) row[x] = Byte(255 - row[x]);
    // The tail starts one byte late: the byte at `tail` stays, and the byte past the row is inverted. Results rely on it.
    for (int32_t x = tail + 1; x < width; ++x) row[x] = Byte(255 - row[x]);
    if (tail < width && writeSlipByte) row[width] = Byte(255 - row[width]);
}

void MergePixel(uint8_t *dst, const uint8_t *src, uint8_t alpha) {
    for (int j = 0; j < 3; ++j) dst[j] = src[j];
    dst[3] = alpha;
}

void Merge(uint8_t *dst, const uint8_t *src, const uint8_t *alpha, int32_t width) {
    const int64_t blockEnd = width / 16 * 16;
    for (int64_t x = 0; x < blockEnd; ++x) MergePixel(dst + 4 * x, src + 4 * x, alpha[x]);
    // From the last multiple of 8, not of 16: 8 pixels between the two parts may stay as they were.
    for (int64_t x = width / 8 * 8; x < width; ++x) MergePixel(dst + 4 * x, src + 4 * x, alpha[x]);
}

void Premultiply(uint8_t *row, int32_t width) {
    for (int64_t x = 0; x < width; ++x) {
        uint8_t *pixel = row + 4 * x;
        for (int j = 0; j < 3; ++j) {
            const int32_t t = pixel[j] * pixel[3];
            pixel[j] = Byte((t + (t >> 8) + 1) >> 8);
        }
    }
}

void MergePremultiply(uint8_t *dst, const uint8_t *src, const uint8_t *alpha, int32_t width) {
    for (int64_t i = 0; i < int64_t{4} * width; ++i) dst[i] = src[i];
    Merge(dst, dst, alpha, width);
    Premultiply(dst, width);
}

// Hue in degrees, 0 to 360. Each operation is rounded to 32 bits, in this order: another order gives other bytes.
float Hue(float b, float g, float r, float top, float chroma) {
    float h = 0;
    if (r == top) {
        h = (g - b) * 60.0F / chroma;
    } else if (g == top) {
        h = 120.0F + (b - r) * 60.0F / chroma;
    } else {
        h = (r - g) * 60.0F / chroma + 240.0F;
    }
    return h < 0 ? h + 360.0F : h;
}

void HlsPixel(uint8_t *dst, const uint8_t *src) {
    constexpr float kRound = 0.499999F;
    const float b = static_cast<float>(src[0]) / 255.0F;
    const float g = static_cast<float>(src[1]) / 255.0F;
    const float r = static_cast<float>(src[2]) / 255.0F;
    const float top = std::max({b, g, r});
    const float bottom = std::min({b, g, r});
    const float chroma = top - bottom;
    const float l = (top + bottom) / 2.0F;
    float h = 0;
    float s = 0;
    if (chroma != 0) {
        s = chroma / (l <= 0.5F ? top + bottom : 2.0F - (top + bottom));
        h = Hue(b, g, r, top, chroma);
    }
    dst[0] = Byte(static_cast<int32_t>(h * 255.0F / 360.0F + kRound));
    dst[1] = Byte(static_cast<int32_t>(l * 255.0F + kRound));
    dst[2] = Byte(static_cast<int32_t>(s * 255.0F + kRound));
}

void ToHls(uint8_t *dst, const uint8_t *src, int32_t width) {
    for (int64_t x = 0; x < width; ++x) HlsPixel(dst + 4 * x, src + 4 * x);
}

void YuvPixel(uint8_t *dst, const uint8_t *src) {
    const int32_t x0 = src[0];
    const int32_t x1 = src[1];
    const int32_t x2 = src[2];
    const int32_t t = 19595 * x0 + 38470 * x1 + 7471 * x2;
    dst[0] = Byte(t >> 16);
    dst[1] = Byte(128 + (((((x2 << 16) - t + 32767) >> 16) * 32244) >> 16));
    dst[2] = ClampByte(128 + (((((x0 << 16) - t + 32767) >> 16) * 57475) >> 16));
}

void ToYuv(uint8_t *dst, const uint8_t *src, int32_t width) {
    for (int64_t x = 0; x < width; ++x) YuvPixel(dst + 4 * x, src + 4 * x);
}

void FromYuvPixel(uint8_t *dst, const uint8_t *src) {
    const int32_t y = src[0] << 16;
    const int32_t u = src[1] - 128;
    const int32_t v = src[2] - 128;
    dst[0] = ClampByte((y + 74711 * v) >> 16);
    dst[1] = ClampByte((y - 25821 * u - 38076 * v) >> 16);
    dst[2] = ClampByte((y + 133169 * u) >> 16);
}

void FromYuv(uint8_t *dst, const uint8_t *src, int32_t width) {
    for (int64_t x = 0; x < width; ++x) FromYuvPixel(dst + 4 * x, src + 4 * x);
}

int32_t SquaredDistance(const uint8_t *a, const uint8_t *b) {
    int32_t sum = 0;
    for (int j = 0; j < 3; ++j) sum += (a[j] - b[j]) * (a[j] - b[j]);
    return sum;
}

bool Flat(const uint8_t *row, const uint8_t *above, int32_t width, const uint8_t *first, int32_t limit) {
    for (int64_t x = 0; x < width; ++x) {
        const uint8_t *p = row + 4 * x;
        const uint8_t *over = above + 4 * x;
        if (SquaredDistance(p, first) > 4 * limit || SquaredDistance(p, p - 4) > limit) return false;
        if (SquaredDistance(p, over) > limit || SquaredDistance(p, over - 4) > limit) return false;
    }
    return true;
}

void AddConst(uint8_t *row, int32_t width, int32_t c) {
    const int32_t addend = Byte(c);
    for (int32_t x = 0; x < width; ++x) row[x] = ClampByte(row[x] + addend);
}

void AddPlane(uint8_t *dst, const uint8_t *src, int32_t width) {
    for (int32_t x = 0; x < width; ++x) dst[x] = ClampByte(dst[x] + src[x]);
}

void Threshold(uint8_t *row, int32_t width, int32_t low, int32_t high) {
    for (int32_t x = 0; x < width; ++x) {
        const int32_t v = row[x];
        if (v > high) {
            row[x] = 255;
        } else if (v < low) {
            row[x] = 0;
        }
    }
}

void Erode(uint8_t *dst, const uint8_t *above, const uint8_t *middle, const uint8_t *below, int32_t width) {
    for (int32_t x = 0; x < width; ++x) {
        uint8_t v = 255;
        for (int32_t i = x - 1; i <= x + 1; ++i) v = std::min({v, above[i], middle[i], below[i]});
        dst[x] = v;
    }
}

void Dilate(uint8_t *dst, const uint8_t *above, const uint8_t *middle, const uint8_t *below, int32_t width) {
    for (int32_t x = 0; x < width; ++x) {
        uint8_t v = 0;
        for (int32_t i = x - 1; i <= x + 1; ++i) v = std::max({v, above[i], middle[i], below[i]});
        dst[x] = v;
    }
}

void Box(uint8_t *dst, const uint8_t *above, const uint8_t *middle, const uint8_t *below, int32_t width) {
    for (int32_t x = 0; x < width; ++x) {
        int32_t s = 0;
        for (int32_t i = x - 1; i <= x + 1; ++i) s += above[i] + middle[i] + below[i];
        dst[x] = Byte(((s + 5) * 455) >> 12);
    }
}

void Gauss(uint8_t *dst, const uint8_t *above, const uint8_t *middle, const uint8_t *below, int32_t width) {
    for (int32_t x = 0; x < width; ++x) {
        const auto column = [&](int32_t i) { return above[i] + 2 * middle[i] + below[i]; };
        const int32_t s = column(x - 1) + 2 * column(x) + column(x + 1);
        dst[x] = Byte((s + 7 + ((s >> 4) & 1)) >> 4);
    }
}

}    // namespace

void KeyingKernelsInitRef(KeyingKernels *table) {
    table->distance = Distance;
    table->join = Join;
    table->invert = Invert;
    table->merge = Merge;
    table->premultiply = Premultiply;
    table->merge_premultiply = MergePremultiply;
    table->to_hls = ToHls;
    table->to_yuv = ToYuv;
    table->from_yuv = FromYuv;
    table->flat = Flat;
    table->add_const = AddConst;
    table->add_plane = AddPlane;
    table->threshold = Threshold;
    table->erode = Erode;
    table->dilate = Dilate;
    table->box = Box;
    table->gauss = Gauss;
}

}    // namespace zck
