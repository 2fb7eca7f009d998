// A frame with its plane for the tests of the slices.
#pragma once

#include <vector>

#include "keying/slices/slices.h"
#include "tests/keying/pipeline/image_fixture.h"

namespace zck::test {

inline uint8_t Multiplied(int32_t c, int32_t a) {
    const int32_t t = c * a;
    return static_cast<uint8_t>((t + (t >> 8) + 1) >> 8);
}

/// A frame with a plane that holds `held`.
struct Frame {
    explicit Frame(const Z_VID_PROPS &p, uint8_t held = 0x55)
        : props(p), pixels(test::PixelBytes(p)), alpha(test::AlphaBytes(p), held) {
        test::FillScene(pixels.Data(), pixels.Size(), 5);
        before = pixels.Bytes();
    }
    HRESULT Dispatch(CSliceThreads &pool, const CHROMA_KEY_RAW &key, const RowSource *source = nullptr) {
        return pool.Dispatch(pixels.Data(), alpha.Data(), &props, &key, WriteAlpha::Yes, ReturnEarly::No, source);
    }
    size_t At(int32_t x, int32_t y) const { return static_cast<size_t>(y * props.nRowBytes + 4 * x); }
    uint8_t Alpha(int32_t x, int32_t y) const { return alpha.Data()[y * AlphaStride(props) + x]; }
    uint8_t Byte(int32_t x, int32_t y, size_t j) const { return pixels.Data()[At(x, y) + j]; }
    uint8_t Old(int32_t x, int32_t y, size_t j) const { return before[At(x, y) + j]; }
    /// The pixel has this alpha, and its old colour times it.
    bool Left(int32_t x, int32_t y, int32_t a) const {
        for (size_t j = 0; j < 3; ++j) {
            if (Byte(x, y, j) != Multiplied(Old(x, y, j), a)) return false;
        }
        return Byte(x, y, 3) == a;
    }

    Z_VID_PROPS props;
    Guarded pixels;
    Guarded alpha;
    std::vector<uint8_t> before;
};

struct Pool : CSliceThreads {
    explicit Pool(int32_t n) { SetThreadCount(n); }
};

}    // namespace zck::test
