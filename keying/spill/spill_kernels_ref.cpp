// The reference: scalar, dull, and never to be made faster. It says what the bytes are.
#include <algorithm>

#include "keying/spill/spill_kernels.h"

namespace zck {
namespace {

uint8_t ClampByte(int32_t v) { return static_cast<uint8_t>(std::clamp(v, 0, 255)); }
int32_t Saturate(int32_t v) { return std::clamp(v, -32768, 32767); }

void Scale(uint8_t *mask, const uint8_t *row, int32_t width) {
    const int64_t half = width / 2;
    for (int64_t x = 0; x < half; ++x) {
        // Column of the sample in units of 1 / (2 * half).
        const int64_t unit = 2 * half;
        const int64_t at = (2 * x + 1) * width - half;
        const int64_t left = at / unit;
        const int64_t part = at % unit;
        int64_t sum = row[left] * (unit - part);
        if (part != 0) sum += row[left + 1] * part;
        mask[x] = static_cast<uint8_t>((2 * sum + unit) / (2 * unit));
    }
}

uint8_t BlockByte(uint8_t v, uint8_t m, const SpillBlockKey &key, int j) {
    const int32_t away = Saturate((Saturate(m * key.move[j]) >> 7) * key.key[j]) >> 7;
    const int32_t gain = std::max(127 + (Saturate(m * key.gain[j]) >> 7), 0);
    return ClampByte((Saturate((v - key.zero[j] - away) * gain) >> 7) + key.zero[j]);
}

void Block(uint8_t *pixels, const uint8_t *mask, int32_t blocks, const SpillBlockKey *key) {
    for (int64_t x = 0; x < int64_t{blocks} * 8; ++x) {
        for (int j = 0; j < 4; ++j) pixels[4 * x + j] = BlockByte(pixels[4 * x + j], mask[x], *key, j);
    }
}

int32_t Times(int32_t a, int32_t b) { return static_cast<int32_t>(static_cast<uint32_t>(a) * static_cast<uint32_t>(b)); }
int32_t Plus(int32_t a, int32_t b) { return static_cast<int32_t>(static_cast<uint32_t>(a) + static_cast<uint32_t>(b)); }
int32_t ClampChroma(int32_t v) { return std::clamp(v, -128, 127); }

/// Strengths of one macro pixel.
struct PixelForces {
    int32_t power;
    int32_t chroma;
    int32_t luma;
};

PixelForces ForcesOf(const SpillPixelKey &key, int32_t rest) {
    const int32_t chroma = Times(key.chroma, rest);
    const int32_t luma = Times(key.luma, rest) >> 6;
    PixelForces f = {Times(key.power, rest) >> 6, 0, 0};
    f.chroma = key.mode == 1 ? chroma >> 7 : std::max((chroma >> 6) + 255, 0);
    f.luma = key.mode == 1 ? luma : std::max(luma + 255, 0);
    return f;
}

// Chroma after the first step and the move away from the key colour, less 128.
int32_t PixelMove(int32_t c, int32_t key, int32_t power) { return ClampChroma(c - 128 - (Plus(Times(key, power), 255) >> 8)); }

uint8_t PixelChroma(int32_t c, int32_t mode, int32_t force) {
    if (mode != 1) return static_cast<uint8_t>(ClampChroma(Plus(Times(c, force), 255) >> 8) + 128);
    const int32_t size = std::clamp((c < 0 ? -c : c) + force, 0, 255);
    return static_cast<uint8_t>(ClampChroma(c < 0 ? -size : size) + 128);
}

uint8_t PixelLuma(int32_t y, int32_t mode, int32_t force) {
    return ClampByte(mode == 1 ? y + force : Plus(Times(y, force), 255) >> 8);
}

void MacroPixel(uint8_t *p, int32_t m, const SpillPixelKey &key) {
    const PixelForces f = ForcesOf(key, 255 - m);
    uint8_t *c = p + key.chromaAt;
    uint8_t *y = p + 1 - key.chromaAt;
    // The first step treats the two chromas alike for blue and each in its own way for green.
    const int32_t first = key.mode == 1 ? 255 - (((255 - c[0]) * m) >> 8) : (c[0] * m) >> 8;
    const int32_t second = key.mode == 1 ? (((c[2] - 128) * m) >> 8) + 128 : (c[2] * m) >> 8;
    c[0] = PixelChroma(PixelMove(first, key.key[0], f.power), key.mode, f.chroma);
    c[2] = PixelChroma(PixelMove(second, key.key[1], f.power), key.mode, f.chroma);
    y[0] = PixelLuma(y[0], key.mode, f.luma);
    y[2] = PixelLuma(y[2], key.mode, f.luma);
}

void Pixel(uint8_t *pixels, const uint8_t *mask, int32_t count, const SpillPixelKey *key) {
    for (int64_t x = 0; x < count; ++x) MacroPixel(pixels + 4 * x, mask[x], *key);
}

}    // namespace

void SpillKernelsInitRef(SpillKernels *table) {
    table->scale = Scale;
    table->block = Block;
    table->pixel = Pixel;
}

}    // namespace zck
