#include "tests/keying/spill/witness.h"

#include <cmath>

namespace zck::test {
namespace {

int32_t ByteAt(int32_t word, int j) { return static_cast<int32_t>((static_cast<uint32_t>(word) >> (8 * j)) & 255U); }

int64_t Between(int64_t v, int64_t low, int64_t high) {
    if (v < low) return low;
    return v > high ? high : v;
}

int64_t Sat16(int64_t v) { return Between(v, -32768, 32767); }

// Of a 64-bit value the 32 bits that an addition or multiplication of that width leaves.
int32_t Wrap(int64_t v) { return static_cast<int32_t>(static_cast<uint32_t>(static_cast<uint64_t>(v) & 0xFFFFFFFFU)); }

int32_t Studio(double v, int32_t high) {
    const auto n = static_cast<int32_t>(v < 0 ? v - 0.5 : v + 0.5);
    return static_cast<int32_t>(Between(n, 16, high));
}

int32_t HlsOut(float m1, float m2, float x) {
    float f = m1;
    if (x < 60.0F) {
        f = m1 + (m2 - m1) * x / 60.0F;
    } else if (x < 180.0F) {
        f = m2;
    } else if (x < 240.0F) {
        f = m1 + (m2 - m1) * (240.0F - x) / 60.0F;
    }
    return static_cast<int32_t>(f * 255.0F + 0.5F);
}

void FromHls(int32_t value, int32_t *rgb) {
    const float h = static_cast<float>(ByteAt(value, 0)) * 360.0F / 255.0F;
    const float l = static_cast<float>(ByteAt(value, 1)) / 255.0F;
    const float s = static_cast<float>(ByteAt(value, 2)) / 255.0F;
    if (ByteAt(value, 2) == 0) {
        rgb[0] = rgb[1] = rgb[2] = static_cast<int32_t>(l * 255.0F + 0.5F);
        return;
    }
    const float m2 = l <= 0.5F ? (1.0F + s) * l : l + s - s * l;
    const float m1 = 2.0F * l - m2;
    float up = h + 120.0F;
    if (up > 360.0F) up -= 360.0F;
    float down = h - 120.0F;
    if (down < 0.0F) down += 360.0F;
    rgb[0] = HlsOut(m1, m2, up);
    rgb[1] = HlsOut(m1, m2, h);
    rgb[2] = HlsOut(m1, m2, down);
}

void FromYuv(int32_t value, int32_t *rgb) {
    const int32_t y = ByteAt(value, 0) * 65536;
    const int32_t u = ByteAt(value, 1) - 128;
    const int32_t v = ByteAt(value, 2) - 128;
    // Blue is what the key space calls red.
    rgb[2] = static_cast<int32_t>(Between((y + 74711 * v) >> 16, 0, 255));
    rgb[1] = static_cast<int32_t>(Between((y - 25821 * u - 38076 * v) >> 16, 0, 255));
    rgb[0] = static_cast<int32_t>(Between((y + 133169 * u) >> 16, 0, 255));
}

struct Needle {
    int32_t k[3];
    int64_t w[3];
    int64_t off;
    float div;
};

Needle MakeNeedle(const int32_t *value, const int32_t *delta, int32_t smooth) {
    Needle n = {};
    uint64_t d[3];
    for (int j = 0; j < 3; ++j) {
        d[j] = delta[j] == 0 ? 1U : static_cast<uint64_t>(delta[j]);
        n.k[j] = static_cast<int32_t>(Between(value[j], 1, 254));
    }
    const uint64_t p = d[0] * d[0] * d[1] * d[1] * d[2] * d[2];
    double f = static_cast<double>(p / 2) / 1073741822.0;
    for (int j = 0; j < 3; ++j) {
        const double g = static_cast<double>(p / (d[j] * d[j])) / 16382.0;
        if (g > f) f = g;
    }
    if (f < 0.001) f = 0.001;
    uint64_t a = 0;
    for (int j = 0; j < 3; ++j) {
        n.w[j] = static_cast<int64_t>(static_cast<double>(p / (d[j] * d[j])) / f + 0.5);
        const uint64_t side = d[j] + static_cast<uint64_t>(smooth);
        a += side * side * static_cast<uint64_t>(n.w[j]);
    }
    a /= 3;
    const auto inner = static_cast<int64_t>(static_cast<double>(p) / f + 0.5);
    const float x = 2.0F * (static_cast<float>(a) - static_cast<float>(inner));
    n.div = x > 0.0F ? std::sqrt(x) / 512.0F : 0.0F;
    if (!(n.div > 0.0F)) n.div = 0.001F;
    n.off = inner / 2;
    return n;
}

uint8_t Far(const Needle &n, const uint8_t *pixel) {
    int64_t v = -n.off;
    for (int j = 0; j < 3; ++j) {
        const int64_t e = pixel[j] - n.k[j];
        v += e * e / 2 * n.w[j];
    }
    if (v < 0) return 0;
    const float a = std::sqrt(static_cast<float>(v)) / n.div;
    return a > 255.0F ? uint8_t{255} : static_cast<uint8_t>(std::nearbyint(a));
}

void Widen(std::vector<uint8_t> &plane, int32_t width, int32_t height, int64_t stride) {
    const std::vector<uint8_t> before = plane;
    for (int64_t y = 1; y < height - 1; ++y) {
        for (int64_t x = 1; x < width - 1; ++x) {
            uint8_t top = 0;
            for (int64_t j = y - 1; j <= y + 1; ++j) {
                for (int64_t i = x - 1; i <= x + 1; ++i) {
                    const uint8_t v = before[static_cast<size_t>(j * stride + i)];
                    if (v > top) top = v;
                }
            }
            plane[static_cast<size_t>(y * stride + x)] = top;
        }
    }
}

void InvertRow(uint8_t *row, int32_t width) {
    const int32_t whole = width / 16 * 16;
    for (int32_t i = 0; i < whole; ++i) row[i] = static_cast<uint8_t>(~row[i]);
    for (int32_t i = 1; i <= width % 16; ++i) row[whole + i] = static_cast<uint8_t>(~row[whole + i]);
}

int64_t Gain(uint8_t m, int64_t p) {
    const int64_t g = 127 + (Sat16(m * Sat16(p)) >> 7);
    return g < 0 ? 0 : g;
}

}    // namespace

WitnessKeyWord WitnessColour(const CHROMA_KEY_RAW &key) {
    const int32_t value = key.arrKeys[0].nValue;
    int32_t c[3] = {ByteAt(value, 0), ByteAt(value, 1), ByteAt(value, 2)};
    if (key.eType == eCKT_HLS) FromHls(value, c);
    if (key.eType == eCKT_YUV) FromYuv(value, c);
    const double r = c[0];
    const double g = c[1];
    const double b = c[2];
    return {c[0],
            c[1],
            c[2],
            Studio(0.257 * r + 0.504 * g + 0.098 * b + 16, 235),
            Studio(-0.148 * r - 0.291 * g + 0.439 * b + 128, 240),
            Studio(0.439 * r - 0.368 * g - 0.071 * b + 128, 240)};
}

std::vector<uint8_t> WitnessScale(const std::vector<uint8_t> &row) {
    const auto full = static_cast<int64_t>(row.size());
    const int64_t half = full / 2;
    std::vector<uint8_t> mask;
    for (int64_t x = 0; x < half; ++x) {
        const int64_t place = (2 * x + 1) * full - half;    // in 1 / (2 half) of a column
        const int64_t unit = 2 * half;
        const auto left = static_cast<size_t>(place / unit);
        const int64_t part = place % unit;
        const int64_t right = part == 0 ? 0 : row[left + 1];
        const int64_t sum = row[left] * (unit - part) + right * part;    // in 1 / unit
        int64_t value = sum / unit;
        if (2 * (sum % unit) >= unit) ++value;
        mask.push_back(static_cast<uint8_t>(value));
    }
    return mask;
}

uint8_t WitnessBlockLuma(uint8_t v, uint8_t m, int32_t ky, const SINGLE_KEY &entry) {
    const int64_t py = Sat16(-int64_t{entry.nCancelPower} / 4);
    const int64_t away = Sat16((Sat16(m * py) >> 7) * ky) >> 7;
    return static_cast<uint8_t>(Between(Sat16((v - away) * Gain(m, entry.nCancelLuma)) >> 7, 0, 255));
}

uint8_t WitnessBlockChroma(uint8_t v, uint8_t m, int32_t kc, const SINGLE_KEY &entry) {
    const int64_t pp = Sat16(entry.nCancelPower);
    const int64_t away = Sat16((Sat16(m * pp) >> 7) * (kc - 128)) >> 7;
    const int64_t moved = Sat16((v - 128 - away) * Gain(m, 2 * int64_t{entry.nCancelChroma})) >> 7;
    return static_cast<uint8_t>(Between(moved + 128, 0, 255));
}

void WitnessPixel(uint8_t *y1, uint8_t *c1, uint8_t *y2, uint8_t *c2, uint8_t m, int32_t kc1, int32_t kc2, int32_t mode,
                  const SINGLE_KEY &entry) {
    const int32_t away = 255 - m;
    int32_t c[2] = {*c1, *c2};
    if (mode == 1) {
        c[0] = 255 - (((255 - c[0]) * m) >> 8);
        c[1] = (((c[1] - 128) * m) >> 8) + 128;
    } else {
        c[0] = (c[0] * m) >> 8;
        c[1] = (c[1] * m) >> 8;
    }
    const int32_t power = Wrap(int64_t{entry.nCancelPower} * away) >> 6;
    const int32_t kc[2] = {kc1, kc2};
    for (int i = 0; i < 2; ++i) {
        const int32_t t = c[i] - 128 - (Wrap(int64_t{Wrap(int64_t{kc[i] - 128} * power)} + 255) >> 8);
        c[i] = static_cast<int32_t>(Between(t, -128, 127)) + 128;
    }
    const int32_t chroma = Wrap(int64_t{entry.nCancelChroma} * away);
    for (int i = 0; i < 2; ++i) {
        const int32_t t = c[i] - 128;
        if (mode == 1) {
            const int64_t a = Between(int64_t{t < 0 ? -t : t} + (chroma >> 7), 0, 255);
            c[i] = static_cast<int32_t>(Between(t < 0 ? -a : a, -128, 127)) + 128;
        } else {
            const int32_t g = (chroma >> 6) + 255 > 0 ? (chroma >> 6) + 255 : 0;
            c[i] = static_cast<int32_t>(Between(Wrap(int64_t{Wrap(int64_t{t} * g)} + 255) >> 8, -128, 127)) + 128;
        }
    }
    const int32_t luma = Wrap(int64_t{entry.nCancelLuma} * away);
    uint8_t *y[2] = {y1, y2};
    for (uint8_t *place : y) {
        if (mode == 1) {
            *place = static_cast<uint8_t>(Between(int64_t{*place} + (luma >> 6), 0, 255));
        } else {
            const int32_t g = (luma >> 6) + 255 > 0 ? (luma >> 6) + 255 : 0;
            *place = static_cast<uint8_t>(Between(Wrap(int64_t{Wrap(int64_t{*place} * g)} + 255) >> 8, 0, 255));
        }
    }
    *c1 = static_cast<uint8_t>(c[0]);
    *c2 = static_cast<uint8_t>(c[1]);
}

bool WitnessSpill(const CHROMA_KEY_RAW &key, const std::vector<uint8_t> &space, int32_t width, int32_t height,
                  int32_t alphaStride, const Witness422 &image) {
    const WitnessKeyWord word = WitnessColour(key);
    const int32_t half = width / 2;
    const int32_t used = key.nKeysUsed > 16 ? 16 : key.nKeysUsed;
    int32_t rounded = (width + 3) / 4 * 4;
    if (rounded > alphaStride) rounded = alphaStride;
    const int32_t measured = rounded / 8 * 8;
    std::vector<uint8_t> c(static_cast<size_t>(alphaStride) * static_cast<size_t>(height) + 32, 0);
    for (int32_t i = 0; i < used; ++i) {
        const SINGLE_KEY &e = key.arrKeys[i];
        if (e.nDelta == 0 || e.nReverseKey > 0) continue;
        const bool none = e.nCancelPower == 0 && e.nCancelChroma == 0 && e.nCancelLuma == 0 && e.nCancelAlpha == 0;
        if (none && key.bColorCancel != 2) continue;
        int32_t value[3];
        int32_t wide[3];
        for (int j = 0; j < 3; ++j) {
            const int from = key.eType == eCKT_RGB ? 2 - j : j;
            value[j] = ByteAt(e.nValue, from);
            wide[j] = static_cast<int32_t>(Between(int64_t{ByteAt(e.nDelta, from)} + e.nCancelRange, 0, 255));
        }
        const Needle needle = MakeNeedle(value, wide, 10);
        for (int64_t y = 0; y < height; ++y) {
            for (int64_t x = 0; x < measured; ++x) {
                c[static_cast<size_t>(y * alphaStride + x)] =
                    Far(needle, &space[static_cast<size_t>(4 * (y * alphaStride + x))]);
            }
        }
        if ((key.nInverseKey & 2) == 0) {
            for (int64_t y = 0; y < height; ++y) InvertRow(&c[static_cast<size_t>(y * alphaStride)], width);
        }
        Widen(c, width, height, alphaStride);
        Widen(c, width, height, alphaStride);
        if (half == 0 || height == 0) return false;
        for (int64_t y = 0; y < height; ++y) {
            const uint8_t *from = &c[static_cast<size_t>(y * alphaStride)];
            const std::vector<uint8_t> mask = WitnessScale(std::vector<uint8_t>(from, from + width));
            const int64_t count = key.bColorCancel == 2 ? half : half / 8 * 8;
            for (int64_t x = 0; x < count; ++x) {
                uint8_t *p = image.pixels + y * image.stride + 4 * x;
                uint8_t *y1 = p + (image.lumaFirst ? 0 : 1);
                uint8_t *c1 = p + (image.lumaFirst ? 1 : 0);
                const uint8_t m = mask[static_cast<size_t>(x)];
                if (key.bColorCancel == 2) {
                    WitnessPixel(y1, c1, y1 + 2, c1 + 2, m, word.u, word.v, word.g > word.b ? 1 : 0, e);
                    continue;
                }
                y1[0] = WitnessBlockLuma(y1[0], m, word.y, e);
                y1[2] = WitnessBlockLuma(y1[2], m, word.y, e);
                c1[0] = WitnessBlockChroma(c1[0], m, word.u, e);
                c1[2] = WitnessBlockChroma(c1[2], m, word.v, e);
            }
        }
    }
    return true;
}

}    // namespace zck::test
