#include "hosts/zkey/composite.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace zkey {
namespace {

uint32_t Load(const uint8_t *p) {
    uint32_t v = 0;
    std::memcpy(&v, p, 4);
    return v;
}

void Store(uint8_t *p, uint32_t v) { std::memcpy(p, &v, 4); }

uint32_t Divide(uint32_t byte, float alpha) {
    const float v = static_cast<float>(static_cast<int32_t>(byte * 255)) / alpha;
    return static_cast<uint32_t>(static_cast<int32_t>(std::min(v + 0.5F, 255.0F)));
}

/// byte x weight / 255, rounded down but for whole results: the keyer's own rule.
uint32_t Weigh(uint32_t byte, uint32_t weight) {
    const uint32_t t = byte * weight;
    return (t + (t >> 8) + 1) >> 8;
}

}    // namespace

ImageView Inside(const ImageView &picture, const Borders &borders) {
    const int left = std::min(borders.left, picture.width - 1);
    const int top = std::min(borders.top, picture.height - 1);
    return {picture.Row(top) + std::ptrdiff_t{4} * left, picture.step, std::max(1, picture.width - left - borders.right),
            std::max(1, picture.height - top - borders.bottom)};
}

void Image::Resize(int w, int h) {
    width = w;
    height = h;
    bytes.resize(static_cast<std::size_t>(w) * static_cast<std::size_t>(h) * 4);
}

void StraightRow(uint8_t *dst, const uint8_t *src, int width) {
    for (int x = 0; x < width; ++x) {
        const uint32_t p = Load(src + std::ptrdiff_t{4} * x);
        const uint32_t a = p >> 24;
        // A transparent pixel has no colour left: all its bytes are 0, and any divisor does.
        const auto alpha = static_cast<float>(static_cast<int32_t>(std::max(a, 1U)));
        Store(dst + std::ptrdiff_t{4} * x, (a << 24) | (Divide((p >> 16) & 255, alpha) << 16) |
                                               (Divide((p >> 8) & 255, alpha) << 8) | Divide(p & 255, alpha));
    }
}

void MatteRow(uint8_t *dst, const uint8_t *src, int width) {
    for (int x = 0; x < width; ++x) {
        Store(dst + std::ptrdiff_t{4} * x, (Load(src + std::ptrdiff_t{4} * x) >> 24) * 0x010101U | 0xFF000000U);
    }
}

void OverRow(uint8_t *dst, const uint8_t *src, const uint8_t *background, int width) {
    for (int x = 0; x < width; ++x) {
        const uint32_t p = Load(src + std::ptrdiff_t{4} * x);
        const uint32_t q = Load(background + std::ptrdiff_t{4} * x);
        const uint32_t rest = 255 - (p >> 24);
        const auto mix = [&](int shift) {
            return std::min(((p >> shift) & 255) + Weigh((q >> shift) & 255, rest), 255U) << shift;
        };
        Store(dst + std::ptrdiff_t{4} * x, 0xFF000000U | mix(16) | mix(8) | mix(0));
    }
}

void FinishPicture(Finish finish, const ImageView &keyed, const ImageView &background, Image &out) {
    out.Resize(keyed.width, keyed.height);
    for (int y = 0; y < keyed.height; ++y) {
        switch (finish) {
            case Finish::Premultiplied:
                std::memcpy(out.Row(y), keyed.Row(y), static_cast<std::size_t>(keyed.width) * 4);
                break;
            case Finish::Straight:
                StraightRow(out.Row(y), keyed.Row(y), keyed.width);
                break;
            case Finish::Matte:
                MatteRow(out.Row(y), keyed.Row(y), keyed.width);
                break;
            case Finish::Over:
                OverRow(out.Row(y), keyed.Row(y), background.Row(y), keyed.width);
                break;
        }
    }
}

}    // namespace zkey
