// The colour that spill is moved away from, as the anti-spill works with it.
#pragma once

#include <algorithm>
#include <cstdint>

#include "zchromakey/key_types.h"

namespace zck {

/// Three bytes as they stand in a key word, low byte first.
struct KeyBytes {
    uint8_t b[3];
};
KeyBytes KeyBytesOf(int32_t word);

/// Hue, lightness, saturation to red, green, blue.
KeyBytes HlsToRgb(KeyBytes hls);

/// Y, U, V of the key space to that space's red, green, blue; in it red and blue are exchanged.
inline KeyBytes YuvToRgb(KeyBytes yuv) {
    const auto clipped = [](int32_t sum) { return static_cast<uint8_t>(std::clamp(sum >> 16, 0, 255)); };
    const int32_t y = yuv.b[0] << 16;
    const int32_t u = yuv.b[1] - 128;
    const int32_t v = yuv.b[2] - 128;
    return {{clipped(y + 74711 * v), clipped(y - 25821 * u - 38076 * v), clipped(y + 133169 * u)}};
}

struct SpillColour {
    KeyBytes rgb;
    uint8_t y, u, v;    ///< Y within 16..235, U and V within 16..240
};

/// The colour of the key's first entry, as the caller stored it. It stands for all entries, whatever colours they have.
SpillColour SpillColourOf(const CHROMA_KEY_RAW &key);

}    // namespace zck
