// A second telling of the anti-spill, in whole planes and plain integers, that shares no code with the room it checks.
#pragma once

#include <cstdint>
#include <vector>

#include "zchromakey/key_types.h"

namespace zck::test {

struct Witness422 {
    uint8_t *pixels;
    int64_t stride;
    bool lumaFirst;
};

struct WitnessKeyWord {
    int32_t r, g, b;
    int32_t y, u, v;
};

WitnessKeyWord WitnessColour(const CHROMA_KEY_RAW &key);

/// The half-width mask of one full-size row.
std::vector<uint8_t> WitnessScale(const std::vector<uint8_t> &row);

/// One macro pixel of the block path; `kc` is the key's luma or chroma at the position.
uint8_t WitnessBlockLuma(uint8_t v, uint8_t m, int32_t ky, const SINGLE_KEY &entry);
uint8_t WitnessBlockChroma(uint8_t v, uint8_t m, int32_t kc, const SINGLE_KEY &entry);

/// One macro pixel of the per-pixel path: y1, c1, y2, c2.
void WitnessPixel(uint8_t *y1, uint8_t *c1, uint8_t *y2, uint8_t *c2, uint8_t m, int32_t kc1, int32_t kc2, int32_t mode,
                  const SINGLE_KEY &entry);

/// The whole: `space` is the key-space image, 4 bytes a pixel in rows of 4 * `alphaStride`. False: the mask has no size.
bool WitnessSpill(const CHROMA_KEY_RAW &key, const std::vector<uint8_t> &space, int32_t width, int32_t height,
                  int32_t alphaStride, const Witness422 &image);

}    // namespace zck::test
