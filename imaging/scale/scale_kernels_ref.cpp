#include <algorithm>

#include "imaging/scale/scale_kernels.h"

namespace zck {
namespace {

constexpr int32_t kBlock = 16;

void Blend2(uint8_t *dst, const uint8_t *a, const uint8_t *b, const uint8_t *weights, int64_t blocks) {
    for (int64_t i = 0; i < blocks * kBlock; ++i)
        dst[i] = static_cast<uint8_t>(std::min(a[i] * weights[0] + b[i] * weights[1], 65535) >> 8);
}

int32_t Sum(const uint8_t *const *rows, const uint8_t *weights, int32_t taps, int64_t i) {
    int32_t sum = 0;
    for (int32_t t = 0; t < taps; ++t) sum = std::min(sum + rows[t][i] * weights[t], 65535);
    return sum;
}

void Blend3(uint8_t *dst, const uint8_t *const *rows, const uint8_t *weights, int64_t blocks) {
    for (int64_t i = 0; i < blocks * kBlock; ++i) dst[i] = static_cast<uint8_t>(Sum(rows, weights, 3, i) >> 8);
}

void BlendMany(uint8_t *dst, const uint8_t *const *rows, const uint8_t *weights, int32_t taps, int64_t blocks) {
    for (int64_t i = 0; i < blocks * kBlock; ++i)
        dst[i] = static_cast<uint8_t>(std::min(Sum(rows, weights, taps, i) + 255, 65535) >> 8);
}

void MixRows(int16_t *dst, const uint8_t *const *rows, const int16_t *weights, int32_t taps, int32_t count) {
    for (int32_t i = 0; i < count; ++i) {
        int32_t sum = 128;
        for (int32_t t = 0; t < taps; ++t) sum += rows[t][i] * weights[t];
        dst[i] = static_cast<int16_t>(std::clamp(sum >> 8, -32768, 32767));
    }
}

void Narrow(uint8_t *dst, const int16_t *src, int32_t count) {
    for (int32_t i = 0; i < count; ++i) dst[i] = static_cast<uint8_t>(std::clamp((src[i] + 32) >> 6, 0, 255));
}

template <int32_t channels>
void Columns(uint8_t *dst, const int16_t *src, const ColumnTable &table, int32_t count) {
    for (int32_t x = 0; x < count; ++x)
        for (int32_t c = 0; c < channels; ++c) {
            const int16_t *const from = src + int64_t{channels} * table.first[x] + c;
            int32_t sum = 1 << 19;
            for (int32_t t = 0; t < table.taps; ++t)
                sum += from[channels * t] * table.weights[2 * (int64_t{t / 2} * table.outputs + x) + t % 2];
            dst[int64_t{channels} * x + c] = static_cast<uint8_t>(std::clamp(sum >> 20, 0, 255));
        }
}

}    // namespace

void ScaleKernelsInitRef(ScaleKernels *table) { *table = {Blend2, Blend3, BlendMany, MixRows, Narrow, Columns<1>, Columns<4>}; }

}    // namespace zck
