// BT.601 video range from the formulas in thousandths, for the reference kernels.
#pragma once

#include <algorithm>
#include <cstdint>

namespace zck {

/// thousandths / (1000 * parts), to the nearest, ties up, clamped to a byte.
constexpr uint8_t Bt601Rounded(int64_t thousandths, int64_t parts = 1) {
    const int64_t n = thousandths + 500 * parts;
    const int64_t d = 1000 * parts;
    const int64_t floor = n >= 0 ? n / d : -((-n + d - 1) / d);
    return static_cast<uint8_t>(std::clamp<int64_t>(floor, 0, 255));
}

/// Luma of a pixel blue, green, red.
constexpr uint8_t Bt601Luma(const uint8_t *p) { return Bt601Rounded(257 * p[2] + 504 * p[1] + 98 * p[0] + 16000); }

/// Chroma of `parts` pixels, from the sums of their colours.
constexpr uint8_t Bt601Cb(int32_t b, int32_t g, int32_t r, int32_t parts) {
    return Bt601Rounded(-148 * r - 291 * g + 439 * b + 128000 * parts, parts);
}
constexpr uint8_t Bt601Cr(int32_t b, int32_t g, int32_t r, int32_t parts) {
    return Bt601Rounded(439 * r - 368 * g - 71 * b + 128000 * parts, parts);
}

/// A pixel blue, green, red, alpha.
constexpr void Bt601Decode(uint8_t *dst, int32_t luma, int32_t chromaB, int32_t chromaR, uint8_t alpha) {
    const int32_t y = 1164 * (luma - 16);
    const int32_t cb = chromaB - 128;
    const int32_t cr = chromaR - 128;
    dst[0] = Bt601Rounded(y + 2017 * cb);
    dst[1] = Bt601Rounded(y - 813 * cr - 392 * cb);
    dst[2] = Bt601Rounded(y + 1596 * cr);
    dst[3] = alpha;
}

}    // namespace zck
