#include "imaging/scale/blend_rows.h"

#include <algorithm>
#include <cstring>

#include "imaging/scale/scale_kernels.h"

namespace zck {
namespace {

constexpr int64_t kBlock = 16;

void Rest3(uint8_t *dst, const uint8_t *a, const uint8_t *b, const uint8_t *w, int64_t count, const uint8_t *end) {
    for (int64_t j = 0; j < count; ++j) {
        const int32_t second = 2 * j < end - b ? b[2 * j] : 0;
        dst[j] = static_cast<uint8_t>((a[j] * w[0] + second * w[1] + second * w[2]) >> 8);
    }
}

void Rest(uint8_t *dst, const uint8_t *const *rows, const uint8_t *w, int32_t taps, int64_t at, int64_t count) {
    for (int64_t j = at; j < at + count; ++j) {
        int32_t sum = 0;
        for (int32_t t = 0; t < taps; ++t) sum += rows[t][j] * w[t];
        dst[j] = static_cast<uint8_t>(std::min(sum >> 8, 255));
    }
}

}    // namespace

void BlendRows(uint8_t *dst, const TapSource &src, const TapRow &taps, int64_t width) {
    const uint8_t *rows[kTapsMax];
    const int32_t n = taps.nUsed;
    for (int32_t t = 0; t < std::max(n, 1); ++t) rows[t] = src.first + taps.nSrcRow[t] * src.step;
    if (n <= 1) {
        std::memcpy(dst, rows[0], static_cast<size_t>(width));
        return;
    }
    const ScaleKernels &k = ScaleKernelsGet();
    const int64_t blocks = width / kBlock;
    const int64_t done = blocks * kBlock;
    if (n == 2) k.blend2(dst, rows[0], rows[1], taps.nWeight, blocks);
    if (n == 3) k.blend3(dst, rows, taps.nWeight, blocks);
    if (n >= 4) k.blend_many(dst, rows, taps.nWeight, n, blocks);
    if (n == 3)
        Rest3(dst + done, rows[0] + done, rows[1] + done, taps.nWeight, width - done, src.end);
    else
        Rest(dst, rows, taps.nWeight, n, done, width - done);
}

}    // namespace zck
