#include "tests/conformance/mix_rows_model.h"

#include <algorithm>
#include <cmath>

namespace conformance {
namespace {

uint8_t Limited(int64_t v) { return static_cast<uint8_t>(std::clamp<int64_t>(v, 0, 255)); }

int64_t Signed16(int64_t v) { return std::clamp<int64_t>(v, -32768, 32767); }

bool IsLuma(int64_t byte, Order422 order) { return (byte % 2 != 0) == (order == Order422::LumaSecond); }

// Division by a power of two toward minus infinity.
int64_t Down(int64_t v, int64_t by) { return v >= 0 ? v / by : -((-v + by - 1) / by); }

int32_t Fixed(double opacity, int32_t solid) {
    if (std::isnan(opacity)) return 0;
    return static_cast<int32_t>(std::round(std::clamp(opacity * solid, 0.0, static_cast<double>(solid))));
}

}    // namespace

int32_t Opacity128Model(double opacity) { return Fixed(opacity, 128); }
int32_t Opacity256Model(double opacity) { return Fixed(opacity, 256); }

uint8_t TimesModel(int32_t a, int32_t b, int32_t shift) {
    const int64_t product = int64_t{a} * b, unit = int64_t{1} << shift;
    int64_t whole = product / unit;
    const int64_t rest = product % unit;
    if (2 * rest > unit || (2 * rest == unit && whole % 2 != 0)) ++whole;
    return Limited(whole);
}

void CopyRowModel(uint8_t *d, const uint8_t *s, int64_t bytes) { std::copy(s, s + bytes, d); }

void ConstantRowModel(uint8_t *d, const uint8_t *s, int64_t bytes, int32_t a128) {
    for (int64_t i = 0; i < bytes; ++i) d[i] = Limited(TimesModel(d[i], 128 - a128, 7) + TimesModel(s[i], a128, 7));
}

void AlphaPairRowModel(uint8_t *d, const uint8_t *s, const uint8_t *alpha, int64_t n, int32_t a128) {
    for (int64_t i = 0; i < 3 * n; ++i) {
        const int32_t k = (alpha[i / 3] + 1) * a128 / 256;
        d[i] = Limited(TimesModel(d[i], 128 - k, 7) + TimesModel(s[i], k, 7));
    }
}

void OverRowModel(uint8_t *d, const uint8_t *s, int64_t n, int32_t opacity, int32_t shift) {
    for (int64_t x = 0; x < n; ++x) {
        uint8_t pixel[4];
        for (int c = 0; c < 4; ++c) pixel[c] = TimesModel(s[x * 4 + c], opacity, shift);
        for (int c = 0; c < 4; ++c) d[x * 4 + c] = Limited(pixel[c] + (d[x * 4 + c] * (255 - pixel[3]) + 127) / 255);
    }
}

void Premultiplied422RowModel(uint8_t *d, const uint8_t *s, const uint8_t *k, int64_t n, int32_t a256, Order422 order) {
    const int64_t a = std::clamp(a256, 0, 256), q = a / 2, blocks = n / 8 * 8;
    for (int64_t i = 0; i < n / 2 * 4; ++i) {
        const int64_t pixel = i / 2, first = i / 4 * 2;
        const bool luma = IsLuma(i, order);
        const int64_t offset = luma ? 16 : 128;
        if (pixel < blocks) {
            const auto weight = [&](int64_t x) { return std::min<int64_t>(255, k[x] * q / 128); };
            const int64_t w = luma ? weight(pixel) : (weight(first) + weight(first + 1)) / 2;
            const int64_t c = 255 - w, rest = c > 0 ? (c + 1) / 2 : 0;
            const int64_t over = Signed16((s[i] - offset) * q), under = Signed16((d[i] - offset) * rest);
            d[i] = Limited(Down(Signed16(Signed16(under + over) + 127), 128) + offset);
        } else {
            const auto weight = [&](int64_t x) { return k[x] == 255 ? int64_t{256} : int64_t{k[x]}; };
            const int64_t m = luma ? weight(pixel) : (weight(first) + weight(first + 1)) / 2;
            d[i] = Limited(Down((d[i] - offset) * (256 - a * m / 256) + a * (s[i] - offset), 256) + offset);
        }
    }
}

void Masked422RowModel(uint8_t *d, const uint8_t *s, const uint8_t *k, int64_t n, int32_t a256, Order422 order) {
    const int64_t a = std::clamp(a256, 0, 256), blocks = n / 8 * 8;
    for (int64_t i = 0; i < 2 * n; ++i) {
        const int64_t pixel = i / 2, first = i / 4 * 2;
        int64_t w = k[pixel] * a / 256;
        if (pixel < blocks) {
            const auto weight = [&](int64_t x) { return a < 255 ? k[x] * a / 256 : int64_t{k[x]}; };
            w = IsLuma(i, order) ? weight(pixel) : (weight(first) + weight(first + 1)) / 2;
        }
        d[i] = Limited((s[i] * w + d[i] * (255 - w) + 255) / 256);
    }
}

void Plain422RowModel(uint8_t *d, const uint8_t *s, int64_t n, int32_t a256, Order422 order) {
    if (a256 >= 256) return CopyRowModel(d, s, 2 * n);
    for (int64_t i = 0; i < 2 * n; ++i) {
        const int64_t offset = IsLuma(i, order) ? 0 : 128;
        d[i] = Limited(Down((s[i] - offset) * a256 + (d[i] - offset) * (256 - a256), 256) + offset);
    }
}

void Masked4RowModel(uint8_t *d, const uint8_t *s, const uint8_t *k, int64_t n, int32_t a256) {
    for (int64_t i = 0; i < 4 * n; ++i) d[i] = Limited((s[i] * int64_t{a256} + (255 - k[i / 4]) * d[i] + 255) / 256);
}

void Plain4RowModel(uint8_t *d, const uint8_t *s, int64_t n, int32_t a256) {
    if (a256 >= 256) return CopyRowModel(d, s, 4 * n);
    for (int64_t i = 0; i < 2 * n; ++i) d[i] = Limited((s[i] * a256 + d[i] * (256 - a256)) / 256);
}

}    // namespace conformance
