// The frames that the benchmarks of colour work on: 1920 by 1080, noise in a ring of sources.
#pragma once

#include <vector>

#include "bench/measure.h"
#include "frames/media/pixel_format.h"

namespace zck {

using bench::kHeight;
using bench::kWidth;
using Ring = std::vector<std::vector<uint8_t>>;

/// Room for every format.
constexpr size_t kFrameBytes = size_t{4} * kWidth * kHeight;

struct Format {
    eZFCC fcc;
    const char *name;
};

inline Ring &Sources() {
    static Ring ring(bench::kRing, bench::Noise(kFrameBytes));
    return ring;
}

inline Ring &Targets() {
    static Ring ring(bench::kRing, std::vector<uint8_t>(kFrameBytes, 1));
    return ring;
}

inline Z_VID_PROPS Record(eZFCC fcc) {
    Z_VID_PROPS p = {};
    p.fccType = fcc;
    p.nWidth = kWidth;
    p.nHeight = IsRgbFormat(fcc) ? -kHeight : kHeight;
    p.nRowBytes = RowBytes(fcc, kWidth);
    return p;
}

}    // namespace zck
