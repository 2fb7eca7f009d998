#include "imaging/scale/resize_taps.h"

#include <algorithm>
#include <cmath>

#include "imaging/scale/scale_kernels.h"
#include "imaging/scale/scale_options.h"

namespace zck {
namespace {

constexpr double kOne = 1 << kWeightBits;
constexpr double kPi = 3.141592653589793;

// The two-parameter family of cubics.
double Cubic(double b, double c, double x) {
    const double x2 = x * x;
    if (x < 1) return ((12 - 9 * b - 6 * c) * x2 * x + (-18 + 12 * b + 6 * c) * x2 + (6 - 2 * b)) / 6;
    if (x < 2) return ((-b - 6 * c) * x2 * x + (6 * b + 30 * c) * x2 + (-12 * b - 48 * c) * x + (8 * b + 24 * c)) / 6;
    return 0;
}

double Lanczos(double x) {
    if (x == 0) return 1;
    return x < 3 ? 3 * std::sin(kPi * x) * std::sin(kPi * x / 3) / (kPi * kPi * x * x) : 0;
}

double Kernel(int32_t code, double x) {
    switch (code) {
        case kResizeLinear:
            return std::max(0.0, 1 - x);
        case kResizeBSpline:
            return Cubic(1, 0, x);
        case kResizeSoftCubic:
            return Cubic(0.5, 0.3, x);
        case kResizeLanczos:
            return Lanczos(x);
        default:
            return Cubic(0, 0.5, x);
    }
}

int32_t Reach(int32_t code) {
    if (code == kResizeLinear) return 1;
    return code == kResizeLanczos ? 3 : 2;
}

int64_t FloorDiv(int64_t a, int64_t b) { return a / b - (a % b < 0 ? 1 : 0); }

// The largest tap takes the rest that rounding left.
void MakeExact(ResizeTaps &taps) {
    int32_t sum = 0;
    int32_t largest = 0;
    for (int32_t t = 0; t < taps.count; ++t) {
        sum += taps.weight[t];
        if (taps.weight[t] > taps.weight[largest]) largest = t;
    }
    taps.weight[largest] = static_cast<int16_t>(taps.weight[largest] + (1 << kWeightBits) - sum);
}

// Shares of 1/target each: the sample i of the source covers [i * target, (i + 1) * target), the output [x * source,
// (x + 1) * source). Rounding goes by the running sum, so that no share drifts.
void Area(int64_t source, int64_t target, int64_t x, ResizeTaps *taps) {
    const int64_t start = x * source;
    const int64_t end = start + source;
    taps->first = static_cast<int32_t>(start / target);
    taps->count = 0;
    int64_t done = 0;
    for (int64_t i = taps->first; i * target < end; ++i) {
        const int64_t covered = std::min(end, (i + 1) * target) - start;
        const int64_t share = std::llround(kOne * static_cast<double>(covered) / static_cast<double>(source));
        taps->weight[taps->count++] = static_cast<int16_t>(share - done);
        done = share;
    }
}

}    // namespace

bool ResizeCodeKnown(int32_t code) {
    return code == kResizeNearest || code == kResizeLinear || (code >= kResizeCubic && code <= kResizeSuper) ||
           code == kResizeLanczos;
}

int64_t ResizeNearestSample(int64_t source, int64_t target, int64_t x) { return (2 * x + 1) * source / (2 * target); }

void ResizeTapsMake(int32_t code, int64_t source, int64_t target, int64_t x, ResizeTaps *taps) {
    if (code == kResizeSuper) return Area(source, target, x, taps);
    if (code == kResizeNearest) {
        *taps = {static_cast<int32_t>(ResizeNearestSample(source, target, x)), 1, {1 << kWeightBits}};
        return;
    }
    const int64_t place = (2 * x + 1) * source - target;    // in 1/(2 * target)
    const int64_t whole = FloorDiv(place, 2 * target);
    const double part = static_cast<double>(place - whole * 2 * target) / (2 * static_cast<double>(target));
    const int32_t reach = Reach(code);
    const auto inside = [source](int64_t i) { return std::clamp<int64_t>(i, 0, source - 1); };
    *taps = {};
    taps->first = static_cast<int32_t>(inside(whole - reach + 1));
    taps->count = static_cast<int32_t>(inside(whole + reach)) - taps->first + 1;
    double sum = 0;
    for (int32_t j = 1 - reach; j <= reach; ++j) sum += Kernel(code, std::abs(j - part));
    double weight[kResizeTapsMax] = {};
    for (int32_t j = 1 - reach; j <= reach; ++j)
        weight[inside(whole + j) - taps->first] += Kernel(code, std::abs(j - part)) / sum;
    for (int32_t t = 0; t < taps->count; ++t) taps->weight[t] = static_cast<int16_t>(std::llround(kOne * weight[t]));
    MakeExact(*taps);
}

}    // namespace zck
