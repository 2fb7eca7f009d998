#include <algorithm>
#include <cmath>

#include "keying/kernels/kernels.h"

namespace zck {
namespace {

constexpr double kSurfaceMax = 1073741822.0;    // half of the surface constant stays within 32-bit signed sums
constexpr double kWeightMax = 16382.0;          // a weight times half a squared difference stays within them as well
constexpr double kScaleMin = 0.001;
constexpr float kDivMin = 0.001F;

uint8_t ByteOf(int32_t word, int j) { return static_cast<uint8_t>(static_cast<uint32_t>(word) >> (8 * j)); }

int32_t Scaled(uint64_t value, double f) { return static_cast<int32_t>(static_cast<double>(value) / f + 0.5); }

// The square wraps in 32 bits and is then signed: a smooth range far off the byte range gives a nonsense that keys rely on.
uint64_t OuterTerm(int32_t d, int32_t smooth, int32_t weight) {
    const uint32_t side = static_cast<uint32_t>(d) + static_cast<uint32_t>(smooth);
    return static_cast<uint64_t>(static_cast<int64_t>(static_cast<int32_t>(side * side)) * weight);
}

float Divisor(uint64_t outer, int32_t inner) {
    const float x = 2.0F * (static_cast<float>(outer) - static_cast<float>(inner));
    // A negative x has no root: written out, so that nothing leans on comparisons with not-a-number.
    const float div = x > 0 ? std::sqrt(x) / 512.0F : 0.0F;
    return div > 0 ? div : kDivMin;
}

}    // namespace

DistanceKey DistanceKeySetup(int32_t value, int32_t delta, int32_t smooth) {
    DistanceKey key = {};
    int32_t d[3];
    uint64_t sq[3];
    for (int j = 0; j < 3; ++j) {
        d[j] = std::max<int32_t>(ByteOf(delta, j), 1);
        sq[j] = static_cast<uint64_t>(d[j]) * static_cast<uint64_t>(d[j]);
        key.k[j] = std::clamp<int32_t>(ByteOf(value, j), 1, 254);
    }
    const uint64_t p = sq[0] * sq[1] * sq[2];
    double f = static_cast<double>(p >> 1) / kSurfaceMax;
    for (int j = 0; j < 3; ++j) f = std::max(f, static_cast<double>(p / sq[j]) / kWeightMax);
    f = std::max(f, kScaleMin);

    uint64_t outer = 0;
    for (int j = 0; j < 3; ++j) {
        key.w[j] = Scaled(p / sq[j], f);
        outer += OuterTerm(d[j], smooth, key.w[j]);
    }
    const int32_t inner = Scaled(p, f);
    key.off = inner >> 1;
    key.div = Divisor(outer / 3, inner);
    return key;
}

int32_t DistanceBlocks(int32_t width, int32_t stride) {
    const int64_t rounded = (int64_t{width} + 3) / 4 * 4;
    return static_cast<int32_t>(std::max<int64_t>(std::min<int64_t>(rounded, stride), 0) / 8);
}

}    // namespace zck
