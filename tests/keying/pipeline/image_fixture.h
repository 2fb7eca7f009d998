// Pictures, keys and guarded buffers for the tests of the pipeline and the slices.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <random>
#include <vector>

#include "frames/media/video_props.h"
#include "zchromakey/key_types.h"
#include "zchromakey/media_types.h"

namespace zck::test {

/// Bytes with a zone on both sides that nobody may write.
class Guarded {
public:
    explicit Guarded(size_t bytes, uint8_t fill = 0) : m_bytes(bytes), m_data(bytes + 2 * kGuard, kMark) {
        std::fill_n(Data(), bytes, fill);
    }
    uint8_t *Data() { return m_data.data() + kGuard; }
    const uint8_t *Data() const { return m_data.data() + kGuard; }
    size_t Size() const { return m_bytes; }
    std::vector<uint8_t> Bytes() const { return {Data(), Data() + m_bytes}; }
    bool GuardsHold() const {
        for (size_t i = 0; i < kGuard; ++i) {
            if (m_data[i] != kMark || m_data[kGuard + m_bytes + i] != kMark) return false;
        }
        return true;
    }

private:
    static constexpr size_t kGuard = 256;
    static constexpr uint8_t kMark = 0xA7;
    size_t m_bytes;
    std::vector<uint8_t> m_data;
};

inline Z_VID_PROPS Props(int32_t width, int32_t height, eZFCC fcc = eZFCC_ARGB32, int32_t padPixels = 0) {
    Z_VID_PROPS props = {};
    props.fccType = fcc;
    props.nWidth = width;
    props.nHeight = height;
    props.nRowBytes = 4 * (width + padPixels);
    props.eInterlace = eZI_Progressive;
    return props;
}

inline size_t PixelBytes(const Z_VID_PROPS &props) {
    return static_cast<size_t>(props.nRowBytes) * static_cast<size_t>(std::abs(props.nHeight));
}
inline size_t AlphaBytes(const Z_VID_PROPS &props) {
    return static_cast<size_t>(AlphaStride(props)) * static_cast<size_t>(std::abs(props.nHeight));
}

/// One RGB key: green, half-width 40, smooth range 20, no thresholds, no smoothing.
inline CHROMA_KEY_RAW GreenKey() {
    CHROMA_KEY_RAW key = {};
    key.eType = eCKT_RGB;
    key.nKeysUsed = 1;
    key.arrKeys[0].nValue = 0x0020C030;
    key.arrKeys[0].nDelta = 0x00282828;
    key.arrKeys[0].nSmoothRange = 20;
    key.nMaxTransparent = 255;
    return key;
}

/// Pixels that lie near the key colour, beyond its ramp or anywhere, in runs, so that all alphas turn up.
inline void FillScene(uint8_t *pixels, size_t bytes, uint32_t seed) {
    std::mt19937 random(seed);
    const int colour[3] = {0x20, 0xC0, 0x30};
    for (size_t i = 0; i + 4 <= bytes;) {
        const uint32_t kind = random() % 4;
        const size_t run = 1 + random() % 12;
        for (size_t n = 0; n < run && i + 4 <= bytes; ++n, i += 4) {
            for (size_t j = 0; j < 3; ++j) {
                const uint32_t spread = kind == 0 ? 8 : kind == 1 ? 40 : 90;
                const int value = colour[j] + static_cast<int>(random() % (2 * spread)) - static_cast<int>(spread);
                pixels[i + j] = static_cast<uint8_t>(kind == 3 ? random() : static_cast<uint32_t>(std::clamp(value, 0, 255)));
            }
            pixels[i + 3] = static_cast<uint8_t>(random());
        }
    }
}

inline void FillNoise(uint8_t *bytes, size_t count, uint32_t seed) {
    std::mt19937 random(seed);
    for (size_t i = 0; i < count; ++i) bytes[i] = static_cast<uint8_t>(random());
}

}    // namespace zck::test
