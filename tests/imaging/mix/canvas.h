// Pictures in memory for tests of mixing.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <random>

#include "frames/media/pixel_format.h"
#include "frames/media/video_props.h"
#include "imaging/mix/mix_image.h"
#include "tests/support/kernel_check.h"

namespace zck::test {

/// A picture of noise. Pixels are counted from the top left corner.
struct Canvas {
    Canvas(eZFCC fcc, int32_t width, int32_t height, uint32_t seed = 1, int32_t more = 0) {
        props.fccType = fcc;
        props.nWidth = width;
        props.nHeight = height;
        props.nRowBytes = RowBytes(fcc, width) + more;
        props.eInterlace = eZI_Progressive;
        memory.resize(static_cast<size_t>(IsPlanarFormat(fcc) ? FrameBufferSize(&props) : Rows() * props.nRowBytes));
        std::mt19937 random(seed);
        for (uint8_t &b : memory) b = static_cast<uint8_t>(random() >> 7);
    }
    int64_t Rows() const { return std::llabs(int64_t{props.nHeight}); }
    bool BottomUp() const { return IsRgbFormat(props.fccType) && props.nHeight > 0; }
    uint8_t *At(int64_t x, int64_t y) {
        const int64_t row = BottomUp() ? Rows() - 1 - y : y;
        return memory.data() + row * props.nRowBytes + x * PixelBits(props.fccType) / 8;
    }
    Bytes Pixel(int64_t x, int64_t y) { return {At(x, y), At(x, y) + PixelBits(props.fccType) / 8}; }
    MixTarget Target() { return {props, memory.data(), static_cast<int64_t>(memory.size())}; }
    MixOverlay Overlay() const { return {props, memory.data(), static_cast<int64_t>(memory.size())}; }
    /// All pixels alike.
    void Fill(const Bytes &pixel) {
        for (int64_t y = 0; y < Rows(); ++y)
            for (int64_t i = 0; i < props.nRowBytes; ++i)
                memory[static_cast<size_t>(y * props.nRowBytes + i)] = pixel[static_cast<size_t>(i) % pixel.size()];
    }

    Z_VID_PROPS props = {};
    Bytes memory;
};

/// The same picture with its rows the other way round in memory.
inline Canvas TurnedOver(const Canvas &from) {
    Canvas turned = from;
    turned.props.nHeight = -turned.props.nHeight;
    const auto step = from.props.nRowBytes;
    for (int64_t y = 0; y < from.Rows(); ++y)
        std::copy_n(from.memory.begin() + y * step, step, turned.memory.begin() + (from.Rows() - 1 - y) * step);
    return turned;
}

}    // namespace zck::test
