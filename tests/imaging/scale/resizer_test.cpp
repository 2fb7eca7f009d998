#include "imaging/scale/resizer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

#include "imaging/primitives/mirror.h"
#include "imaging/scale/resize_taps.h"
#include "platform/processor.h"

namespace zck {
namespace {

using Bytes = std::vector<uint8_t>;

constexpr int32_t kCodes[] = {1, 2, 4, 5, 6, 7, 8, 16};

Bytes Noise(int64_t bytes, uint32_t seed) {
    std::mt19937 random(seed);
    Bytes noise(static_cast<size_t>(bytes));
    for (uint8_t &b : noise) b = static_cast<uint8_t>(random() >> 8);
    return noise;
}

Bytes Resized(const Bytes &src, ResizeShape shape) {
    Resizer resizer;
    Bytes dst(static_cast<size_t>(int64_t{shape.target.width} * shape.target.height * shape.channels));
    EXPECT_EQ(ResizeImage(&resizer, shape, src.data(), int64_t{shape.source.width} * shape.channels, dst.data(),
                          int64_t{shape.target.width} * shape.channels),
              0);
    return dst;
}

// The kernels from their formulas, in real numbers.
double Value(int32_t code, double x) {
    const auto cubic = [x](double b, double c) {
        if (x < 1) return ((12 - 9 * b - 6 * c) * x * x * x + (-18 + 12 * b + 6 * c) * x * x + 6 - 2 * b) / 6;
        if (x < 2) return ((-b - 6 * c) * x * x * x + (6 * b + 30 * c) * x * x + (-12 * b - 48 * c) * x + 8 * b + 24 * c) / 6;
        return 0.0;
    };
    const double pi = std::acos(-1.0);
    if (code == 2) return std::max(0.0, 1 - x);
    if (code == 5) return cubic(1, 0);
    if (code == 7) return cubic(0.5, 0.3);
    if (code == 16) return x == 0 ? 1 : x >= 3 ? 0 : std::sin(pi * x) / (pi * x) * std::sin(pi * x / 3) / (pi * x / 3);
    return cubic(0, 0.5);
}

// A line's weights over all source samples, exact but for the rounding of reals.
std::vector<double> Weights(int32_t code, int32_t source, int32_t target, int32_t x) {
    std::vector<double> w(static_cast<size_t>(source));
    if (code == 1) {
        w[static_cast<size_t>((2 * int64_t{x} + 1) * source / (2 * target))] = 1;
        return w;
    }
    if (code == 8) {
        const double left = static_cast<double>(x) * source / target, right = static_cast<double>(x + 1) * source / target;
        for (int32_t i = 0; i < source; ++i)
            w[static_cast<size_t>(i)] =
                std::max(0.0, std::min(right, i + 1.0) - std::max(left, static_cast<double>(i))) * target / source;
        return w;
    }
    const double u = (x + 0.5) * source / target - 0.5;
    double sum = 0;
    for (int32_t i = -4; i < source + 4; ++i) {
        const double v = Value(code, std::abs(i - u));
        w[static_cast<size_t>(std::clamp(i, 0, source - 1))] += v;
        sum += v;
    }
    for (double &v : w) v /= sum;
    return w;
}

Bytes Exact(const Bytes &src, const ResizeShape &s) {
    Bytes out;
    for (int32_t y = 0; y < s.target.height; ++y) {
        const std::vector<double> wy = Weights(s.code, s.source.height, s.target.height, y);
        for (int32_t x = 0; x < s.target.width; ++x) {
            const std::vector<double> wx = Weights(s.code, s.source.width, s.target.width, x);
            for (int32_t c = 0; c < s.channels; ++c) {
                double sum = 0;
                for (int32_t j = 0; j < s.source.height; ++j)
                    for (int32_t i = 0; i < s.source.width; ++i)
                        sum += wy[static_cast<size_t>(j)] * wx[static_cast<size_t>(i)] *
                               src[static_cast<size_t>((int64_t{j} * s.source.width + i) * s.channels + c)];
                out.push_back(static_cast<uint8_t>(std::clamp(std::floor(sum + 0.5), 0.0, 255.0)));
            }
        }
    }
    return out;
}

TEST(Resizer, IsWithinOneUnitOfTheExactSum) {
    constexpr ROI kSizes[] = {{1, 1}, {2, 3}, {3, 2}, {5, 7}, {16, 4}, {9, 17}, {40, 3}};
    uint32_t seed = 1;
    for (const int32_t code : kCodes)
        for (const ROI source : kSizes)
            for (const ROI target : kSizes)
                for (const int32_t channels : {1, 4}) {
                    const ResizeShape shape = {source, target, channels, code};
                    if (code == 8 && (target.width > source.width || target.height > source.height)) continue;
                    SCOPED_TRACE(testing::Message() << "code " << code << ", " << source.width << " x " << source.height
                                                    << " to " << target.width << " x " << target.height);
                    const Bytes src = Noise(int64_t{source.width} * source.height * channels, ++seed);
                    const Bytes exact = Exact(src, shape);
                    const Bytes found = Resized(src, shape);
                    ASSERT_EQ(exact.size(), found.size());
                    for (size_t i = 0; i < exact.size(); ++i)
                        ASSERT_LE(std::abs(exact[i] - found[i]), code == 1 ? 0 : 1) << "byte " << i;
                }
}

TEST(Resizer, APlaneOfOneValueKeepsIt) {
    for (const int32_t code : kCodes)
        for (const int32_t value : {0, 1, 127, 254, 255})
            for (const ROI target : {ROI{37, 29}, ROI{13, 7}, ROI{1, 1}, ROI{90, 100}}) {
                if (code == 8 && target.width > 37) continue;
                const Bytes dst = Resized(Bytes(37 * 29, static_cast<uint8_t>(value)), {{37, 29}, target, 1, code});
                for (const uint8_t b : dst) ASSERT_EQ(b, value) << "code " << code;
            }
}

TEST(Resizer, ADirectionThatKeepsItsSizeIsCopiedButByTheBlurringCodes) {
    const Bytes src = Noise(31 * 17 * 4, 77);
    for (const int32_t code : kCodes) {
        const bool same = Resized(src, {{31, 17}, {31, 17}, 4, code}) == src;
        EXPECT_EQ(same, code != 5 && code != 7) << code;
    }
    // Rows that differ from each other by a constant keep that through a change of their length.
    Bytes steps(31 * 4);
    for (size_t i = 0; i < steps.size(); ++i) steps[i] = static_cast<uint8_t>(i / 31 * 60);
    for (const int32_t code : {1, 2, 4, 6, 8, 16}) {
        const Bytes dst = Resized(steps, {{31, 4}, {20, 4}, 1, code});
        for (size_t i = 0; i < dst.size(); ++i) ASSERT_EQ(dst[i], i / 20 * 60) << code;
    }
}

TEST(Resizer, Areas) {
    EXPECT_EQ(Resized({10, 20, 30, 40}, {{4, 1}, {2, 1}, 1, 8}), Bytes({15, 35}));
    EXPECT_EQ(Resized({10, 21}, {{2, 1}, {1, 1}, 1, 8}), Bytes({16})) << "half up";
    EXPECT_EQ(Resized({0, 90, 30}, {{3, 1}, {2, 1}, 1, 8}), Bytes({30, 50})) << "the middle belongs to both";
    // More than fifteen to one: summed exactly.
    Bytes ramp(100 * 2);
    for (size_t i = 0; i < ramp.size(); ++i) ramp[i] = static_cast<uint8_t>(i % 100);
    EXPECT_EQ(Resized(ramp, {{100, 2}, {2, 1}, 1, 8}), Bytes({25, 75})) << "24.5 and 74.5";
}

TEST(Resizer, Statuses) {
    Resizer r;
    const auto status = [&](ROI source, ROI target, int32_t channels, int32_t code) {
        return r.Prepare({source, target, channels, code});
    };
    EXPECT_EQ(status({0, 1}, {1, 1}, 1, 2), kPrimitiveBadSize);
    EXPECT_EQ(status({1, 1}, {1, -1}, 1, 2), kPrimitiveBadSize);
    EXPECT_EQ(status({4, 4}, {5, 4}, 1, 8), kPrimitiveBadArgument);
    EXPECT_EQ(status({4, 4}, {4, 5}, 1, 8), kPrimitiveBadArgument);
    EXPECT_EQ(status({4, 4}, {4, 4}, 3, 2), kPrimitiveBadArgument);
    for (const int32_t code : {0, 3, 9, 15, 17, -1}) EXPECT_EQ(status({4, 4}, {4, 4}, 1, code), kPrimitiveBadArgument) << code;
    EXPECT_EQ(status({4, 4}, {4, 4}, 1, 8), kPrimitiveOk);
    uint8_t byte = 0;
    EXPECT_EQ(ResizeImage(&r, {{1, 1}, {1, 1}, 1, 2}, nullptr, 1, &byte, 1), kPrimitiveNull);
    EXPECT_EQ(ResizeImage(&r, {{1, 1}, {1, 1}, 1, 2}, &byte, 1, nullptr, 1), kPrimitiveNull);
}

// Rows longer than the tables are resized piece by piece.
TEST(Resizer, VeryLongRows) {
    const Bytes src = Noise(700, 3);
    for (const int32_t code : {1, 2, 16}) {
        const Bytes dst = Resized(src, {{700, 1}, {70000, 1}, 1, code});
        for (int32_t x = 0; x < 70000; x += 331) {
            const std::vector<double> w = Weights(code, 700, 70000, x);
            double sum = 0;
            for (size_t i = 0; i < w.size(); ++i) sum += w[i] * src[i];
            ASSERT_NEAR(dst[static_cast<size_t>(x)], std::clamp(sum, 0.0, 255.0), 1.01) << x;
        }
    }
}

TEST(Resizer, TheSameAtAllLevelsAndInBothDirectionsOfTheMemory) {
    const Bytes src = Noise(64 * 50 * 4, 5);
    for (const int32_t code : kCodes)
        for (const ROI target : {ROI{41, 33}, ROI{64, 20}, ROI{30, 50}}) {
            const ResizeShape shape = {{64, 50}, target, 4, code};
            KernelLevelLimit(KernelLevel::Reference);
            const Bytes ref = Resized(src, shape);
            KernelLevelLimit(kKernelLevelHighest);
            ASSERT_EQ(Resized(src, shape), ref) << code;
            // Upside down in, upside down out; nearest neighbour takes the lower of two at one distance.
            Resizer r;
            Bytes turned(ref.size());
            const int64_t row = int64_t{4} * target.width;
            ASSERT_EQ(ResizeImage(&r, shape, src.data() + 49 * 256, -256, turned.data() + (target.height - 1) * row, -row), 0);
            for (size_t i = 0; i < ref.size(); ++i) ASSERT_LE(std::abs(turned[i] - ref[i]), code == 1 ? 255 : 1);
        }
}

TEST(ResizeTaps, WeightsOfEveryOutputSumExactly) {
    for (const int32_t code : kCodes)
        for (const auto &[source, target] : {std::pair(1920, 1280), {720, 1920}, {3, 1000}, {1000, 67}, {1, 9}, {8, 8}})
            for (int32_t x = 0; x < target; ++x) {
                if (code == 8 && source < target) continue;
                ResizeTaps taps = {};
                ResizeTapsMake(code, source, target, x, &taps);
                int32_t sum = 0;
                for (int32_t t = 0; t < taps.count; ++t) sum += taps.weight[t];
                ASSERT_EQ(sum, 16384);
                ASSERT_GE(taps.first, 0);
                ASSERT_LE(taps.first + taps.count, source);
                ASSERT_LE(taps.count, kResizeTapsMax);
            }
}

}    // namespace
}    // namespace zck
