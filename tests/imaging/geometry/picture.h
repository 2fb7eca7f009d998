// An image with its memory, for the tests of this folder.
#pragma once

#include <cstdint>
#include <cstdlib>
#include <random>
#include <vector>

#include "frames/media/pixel_format.h"
#include "zchromakey/media_types.h"

namespace zck::test {

using Bytes = std::vector<uint8_t>;

struct Picture {
    Z_VID_PROPS props = {};
    Bytes memory;

    // Rows are `padding` bytes longer than they need to be.
    Picture(eZFCC fcc, int32_t width, int32_t height, uint32_t seed, int32_t padding = 0) {
        props.fccType = fcc;
        props.nWidth = width;
        props.nHeight = height;
        props.nRowBytes = RowBytes(fcc, width) + padding;
        props.eInterlace = eZI_Progressive;
        memory.resize(static_cast<size_t>(props.nRowBytes) * static_cast<size_t>(std::abs(height)));
        std::mt19937 random(seed);
        for (uint8_t &b : memory) b = static_cast<uint8_t>(random() >> 8);
    }
    int64_t Size() const { return static_cast<int64_t>(memory.size()); }
    uint8_t *Row(int32_t y) { return memory.data() + static_cast<int64_t>(y) * props.nRowBytes; }
    const uint8_t *Row(int32_t y) const { return memory.data() + static_cast<int64_t>(y) * props.nRowBytes; }
};

}    // namespace zck::test
