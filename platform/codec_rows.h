// The pixels of a picture that is to be encoded, as encoders want them.
#pragma once

#include "platform/codec.h"

namespace zck {

/// A colour before it was multiplied by its alpha, to the nearest; 0 for alpha 0 and at most 255.
constexpr uint8_t Unmultiplied(uint8_t colour, uint8_t alpha) noexcept {
    if (alpha == 0) return 0;
    const int32_t whole = (colour * 255 + alpha / 2) / alpha;
    return static_cast<uint8_t>(whole < 255 ? whole : 255);
}

/// A colour multiplied by its alpha, to the nearest.
constexpr uint8_t Multiplied(uint8_t colour, uint8_t alpha) noexcept {
    return static_cast<uint8_t>((colour * alpha + 127) / 255);
}

struct CodecPixel {
    uint8_t red;
    uint8_t green;
    uint8_t blue;
    uint8_t alpha;
};

/// With straight colour; opaque where the picture has no alpha.
inline CodecPixel CodecPixelAt(const CodecSource &source, int32_t x, int32_t y) noexcept {
    const uint8_t *pixel = source.top + y * source.stride + int64_t{x} * (source.pixels == CodecPixels::Rgb24 ? 3 : 4);
    if (source.pixels != CodecPixels::Premultiplied || pixel[3] == 255) return {pixel[2], pixel[1], pixel[0], 255};
    const uint8_t alpha = pixel[3];
    return {Unmultiplied(pixel[2], alpha), Unmultiplied(pixel[1], alpha), Unmultiplied(pixel[0], alpha), alpha};
}

}    // namespace zck
