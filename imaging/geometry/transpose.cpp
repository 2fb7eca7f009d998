#include "imaging/geometry/transpose.h"

#include <algorithm>
#include <cstring>

#include "imaging/geometry/turn_kernels.h"

namespace zck {
namespace {

// Of the source: a cache line of its 4-byte pixels wide, and so high that the runs of a target row are long.
constexpr int32_t kTileColumns = 16;
constexpr int32_t kTileRows = 256;

struct Walk {
    uint8_t *dst;
    int64_t dstStep;
    const uint8_t *src;
    int64_t srcStep;

    template <int32_t pixel>
    void Pixels(int32_t x0, int32_t y0, int32_t x1, int32_t y1) const {
        for (int64_t x = x0; x < x1; ++x)
            for (int64_t y = y0; y < y1; ++y) std::memcpy(dst + x * dstStep + y * pixel, src + y * srcStep + x * pixel, pixel);
    }

    void Blocks4(int32_t x0, int32_t y0, int32_t x1, int32_t y1) const {
        const TurnKernels &k = TurnKernelsGet();
        const int32_t xEnd = x0 + (x1 - x0) / kTurnBlock * kTurnBlock;
        const int32_t yEnd = y0 + (y1 - y0) / kTurnBlock * kTurnBlock;
        for (int64_t x = x0; x < xEnd; x += kTurnBlock)
            for (int64_t y = y0; y < yEnd; y += kTurnBlock)
                k.transpose4(dst + x * dstStep + 4 * y, dstStep, src + y * srcStep + 4 * x, srcStep);
        Pixels<4>(x0, yEnd, xEnd, y1);
        Pixels<4>(xEnd, y0, x1, y1);
    }
};

}    // namespace

void Transpose(uint8_t *dst, int64_t dstStep, const uint8_t *src, int64_t srcStep, ROI size, int32_t pixel) {
    const Walk walk = {dst, dstStep, src, srcStep};
    for (int32_t y = 0; y < size.height; y += kTileRows)
        for (int32_t x = 0; x < size.width; x += kTileColumns) {
            const int32_t x1 = x + std::min(size.width - x, kTileColumns);
            const int32_t y1 = y + std::min(size.height - y, kTileRows);
            if (pixel == 4) walk.Blocks4(x, y, x1, y1);
            if (pixel == 3) walk.Pixels<3>(x, y, x1, y1);
            if (pixel == 1) walk.Pixels<1>(x, y, x1, y1);
        }
}

}    // namespace zck
