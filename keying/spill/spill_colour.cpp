#include "keying/spill/spill_colour.h"

#include <algorithm>
#include <utility>

namespace zck {
namespace {

uint8_t Studio(double value, int32_t top) {
    const auto rounded = static_cast<int32_t>(value < 0 ? value - 0.5 : value + 0.5);
    return static_cast<uint8_t>(std::clamp(rounded, 16, top));
}

// One of the three outputs, at an angle of 0 to 360 degrees.
uint8_t HlsChannel(float m1, float m2, float x) {
    float v = m1;
    if (x < 60.0F) {
        v = m1 + (m2 - m1) * x / 60.0F;
    } else if (x < 180.0F) {
        v = m2;
    } else if (x < 240.0F) {
        v = m1 + (m2 - m1) * (240.0F - x) / 60.0F;
    }
    return static_cast<uint8_t>(v * 255.0F + 0.5F);
}

}    // namespace

KeyBytes KeyBytesOf(int32_t word) {
    const auto w = static_cast<uint32_t>(word);
    return {{static_cast<uint8_t>(w), static_cast<uint8_t>(w >> 8), static_cast<uint8_t>(w >> 16)}};
}

KeyBytes HlsToRgb(KeyBytes hls) {
    const float h = static_cast<float>(hls.b[0]) * 360.0F / 255.0F;
    const float l = static_cast<float>(hls.b[1]) / 255.0F;
    const float s = static_cast<float>(hls.b[2]) / 255.0F;
    if (hls.b[2] == 0) return {{hls.b[1], hls.b[1], hls.b[1]}};
    const float m2 = l <= 0.5F ? (1.0F + s) * l : l + s - s * l;
    const float m1 = 2.0F * l - m2;
    const float up = h + 120.0F;
    const float down = h - 120.0F;
    return {{HlsChannel(m1, m2, up > 360.0F ? up - 360.0F : up), HlsChannel(m1, m2, h),
             HlsChannel(m1, m2, down < 0.0F ? down + 360.0F : down)}};
}

SpillColour SpillColourOf(const CHROMA_KEY_RAW &key) {
    SpillColour c = {};
    c.rgb = KeyBytesOf(key.arrKeys[0].nValue);
    if (key.eType == eCKT_HLS) c.rgb = HlsToRgb(c.rgb);
    if (key.eType == eCKT_YUV) {
        c.rgb = YuvToRgb(c.rgb);
        std::swap(c.rgb.b[0], c.rgb.b[2]);
    }
    const double r = c.rgb.b[0];
    const double g = c.rgb.b[1];
    const double b = c.rgb.b[2];
    c.y = Studio(0.257 * r + 0.504 * g + 0.098 * b + 16, 235);
    c.u = Studio(-0.148 * r - 0.291 * g + 0.439 * b + 128, 240);
    c.v = Studio(0.439 * r - 0.368 * g - 0.071 * b + 128, 240);
    return c;
}

}    // namespace zck
