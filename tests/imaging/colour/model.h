// What a conversion must give, pixel by pixel and byte by byte, written without a thought of speed: the model that the
// conversion is compared with.
#pragma once

#include <cstdint>
#include <vector>

#include "zchromakey/media_types.h"

namespace zck::test {

using Bytes = std::vector<uint8_t>;

// A picture in a memory that ends where the vector ends. `first` and `step`: the picture's first row and the way to the next.
struct Picture {
    eZFCC fcc;
    Bytes memory;
    int64_t first;
    int64_t step;
};

// Converts `rows` rows of `width` pixels.
void ModelConvert(const Picture &src, Picture &dst, int32_t width, int32_t rows);

// A record of tight rows but for `padding` bytes (a multiple of 4), and the picture that it describes, full of noise. The
// memory ends with the last row's pixels when `cut` is set.
Z_VID_PROPS ModelRecord(eZFCC fcc, int32_t width, int32_t height, int32_t padding);
Picture ModelPicture(const Z_VID_PROPS &props, uint32_t seed, bool cut);

}    // namespace zck::test
