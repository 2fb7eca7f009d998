// Records of any contents, and the memory that they more or less describe.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <iterator>
#include <vector>

#include "frames/media/pixel_format.h"
#include "zchromakey/media_types.h"

namespace zck::fuzz {

inline constexpr eZFCC kFormats[] = {eZFCC_UYVY, eZFCC_HDYC, eZFCC_YUY2, eZFCC_YVYU,   eZFCC_I420,  eZFCC_YV12,
                                     eZFCC_NV12, eZFCC_v210, eZFCC_r210, eZFCC_RGB24,  eZFCC_RGB32, eZFCC_ARGB32,
                                     eZFCC_RGB8, kFccRgb565, kFccY422,   eZFCC_Default};
inline constexpr int32_t kOdd[] = {0, 1, -1, 2, 65535, 65536, INT32_MAX, INT32_MIN, 1 << 30, -(1 << 30)};
inline constexpr size_t kMostBytes = size_t{64} * 1024;

// The bytes from the front, zeros behind their end.
struct Input {
    const uint8_t *data;
    size_t size;
    uint8_t Next() {
        if (size == 0) return 0;
        --size;
        return *data++;
    }
    // A small number, or one that is asking for trouble.
    int32_t Number(int32_t most) {
        const uint8_t b = Next();
        return b >= 240 ? kOdd[Next() % std::size(kOdd)] : b % most;
    }
};

// Format; width; height; its sign and the scan; extra row bytes, or any; scale type; aspect; size of the memory.
struct Record {
    Z_VID_PROPS props = {};
    size_t bytes = 0;
};

inline Record RecordOf(Input &in) {
    Record r;
    Z_VID_PROPS &p = r.props;
    p.fccType = kFormats[in.Next() % std::size(kFormats)];
    p.nWidth = in.Number(90);
    p.nHeight = in.Number(60);
    const uint8_t bits = in.Next();
    if ((bits & 1) != 0 && p.nHeight != INT32_MIN) p.nHeight = -p.nHeight;
    constexpr eZInterlace kScans[] = {eZI_Progressive, eZI_Field1First, eZI_Field2First, eZI_Progressive};
    p.eInterlace = kScans[bits >> 1 & 3];
    const uint8_t extra = in.Next();
    p.nRowBytes = extra >= 240 ? in.Number(200) : RowBytes(p.fccType, p.nWidth);
    if (extra < 64) p.nRowBytes = static_cast<int32_t>(std::min<int64_t>(int64_t{p.nRowBytes} + extra, INT32_MAX));
    p.eScaleType = static_cast<eZScaleType>(in.Next() % 6);
    p.nAspectX = static_cast<int16_t>(in.Number(20));
    p.nAspectY = static_cast<int16_t>(in.Number(20));
    const int64_t rows = std::abs(static_cast<int64_t>(p.nHeight));
    const int64_t row = std::clamp<int64_t>(p.nRowBytes, 0, 1 << 20);
    const int64_t whole = std::min<int64_t>(rows, 1 << 20) * row * (IsPlanarFormat(p.fccType) ? 3 : 2) / 2;
    const auto enough = static_cast<size_t>(std::clamp<int64_t>(whole, 1, kMostBytes));
    // The whole picture mostly, else some of it.
    const uint8_t cut = in.Next();
    r.bytes = cut < 200 ? enough : std::max<size_t>(1, enough * (cut - 200) / 56);
    return r;
}

// The pixels of a source: what is left of the input, again and again.
inline std::vector<uint8_t> PixelsOf(const Input &in, size_t bytes) {
    std::vector<uint8_t> pixels(bytes);
    for (size_t i = 0; i < bytes; ++i) pixels[i] = in.size > 0 ? in.data[i % in.size] : static_cast<uint8_t>(i * 37);
    return pixels;
}

}    // namespace zck::fuzz
