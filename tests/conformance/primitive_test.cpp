// The image primitives by their semantics: arithmetic with a scale, composition, copies, mirrors, and every conversion between
// planes and packed pixels, with steps, guards and odd sizes.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <string>

#include "imaging/primitives/arithmetic.h"
#include "imaging/primitives/convert422.h"
#include "imaging/primitives/copy.h"
#include "imaging/primitives/mirror.h"
#include "imaging/primitives/planar.h"
#include "tests/conformance/both_levels.h"
#include "tests/conformance/convert_model.h"
#include "tests/conformance/dice.h"

namespace conformance {
namespace {

using zck::ROI;

uint8_t Scaled(int32_t exact, int32_t n) {
    return static_cast<uint8_t>(std::clamp(std::nearbyint(std::ldexp(exact, -n)), 0.0, 255.0));
}

// Rows of bytes somewhere in a memory of noise.
struct Rows {
    Bytes memory;
    int64_t step;
    int64_t first;

    Rows(Dice &dice, int64_t rowBytes, int64_t height) : step(rowBytes + dice(0, 9)), first(dice(8, 40)) {
        memory = dice.Noise(static_cast<size_t>(first + step * height + 48));
    }
    uint8_t *data() { return memory.data() + first; }
    uint8_t &At(int64_t x, int64_t y) { return memory[static_cast<size_t>(first + y * step + x)]; }
};

using InPlace = std::function<int32_t(uint8_t *dst, int64_t step, ROI size)>;

// Runs an operation on one memory and the rule, byte by byte, on a copy.
void CheckInPlace(Dice &dice, ROI size, int32_t pixel, const InPlace &run,
                  const std::function<uint8_t(uint8_t was, int64_t x, int64_t y)> &rule) {
    Rows got(dice, int64_t{size.width} * pixel, size.height);
    Rows want = got;
    ASSERT_EQ(run(got.data(), got.step, size), 0);
    for (int64_t y = 0; y < size.height; ++y)
        for (int64_t x = 0; x < int64_t{size.width} * pixel; ++x) want.At(x, y) = rule(want.At(x, y), x, y);
    ASSERT_EQ(got.memory, want.memory) << size.width << "x" << size.height;
}

TEST(Primitives, ArithmeticWithAScale) {
    Dice dice(94001);
    BothLevels([&] {
        for (int round = 0; round < 300; ++round) {
            const ROI size = {dice(1, 70), dice(1, 4)};
            const int32_t n = dice(0, 9);
            const uint8_t value[4] = {static_cast<uint8_t>(dice(0, 255)), static_cast<uint8_t>(dice(0, 255)),
                                      static_cast<uint8_t>(dice(0, 255)), static_cast<uint8_t>(dice(0, 255))};
            Rows other(dice, size.width * 4, size.height);
            CheckInPlace(
                dice, size, 1, [&](uint8_t *d, int64_t s, ROI r) { return zck::MulC_8u_C1IRSfs(value[0], d, s, r, n); },
                [&](uint8_t was, int64_t, int64_t) { return Scaled(was * value[0], n); });
            CheckInPlace(
                dice, size, 1,
                [&](uint8_t *d, int64_t s, ROI r) {
                    return zck::MulC_8u_C1RSfs(other.data(), other.step, value[1], d, s, r, n);
                },
                [&](uint8_t, int64_t x, int64_t y) { return Scaled(other.At(x, y) * value[1], n); });
            CheckInPlace(
                dice, size, 4,
                [&](uint8_t *d, int64_t s, ROI r) { return zck::MulC_8u_C4RSfs(other.data(), other.step, value, d, s, r, n); },
                [&](uint8_t, int64_t x, int64_t y) { return Scaled(other.At(x, y) * value[x % 4], n); });
            CheckInPlace(
                dice, size, 1,
                [&](uint8_t *d, int64_t s, ROI r) { return zck::Mul_8u_C1IRSfs(other.data(), other.step, d, s, r, n); },
                [&](uint8_t was, int64_t x, int64_t y) { return Scaled(was * other.At(x, y), n); });
            CheckInPlace(
                dice, size, 3,
                [&](uint8_t *d, int64_t s, ROI r) { return zck::Add_8u_C3IRSfs(other.data(), other.step, d, s, r, n); },
                [&](uint8_t was, int64_t x, int64_t y) { return Scaled(was + other.At(x, y), n); });
            CheckInPlace(
                dice, size, 3, [&](uint8_t *d, int64_t s, ROI r) { return zck::AddC_8u_C3IRSfs(value, d, s, r, n); },
                [&](uint8_t was, int64_t x, int64_t) { return Scaled(was + value[x % 3], n); });
            CheckInPlace(
                dice, size, 4, [&](uint8_t *d, int64_t s, ROI r) { return zck::AddC_8u_C4IRSfs(value, d, s, r, n); },
                [&](uint8_t was, int64_t x, int64_t) { return Scaled(was + value[x % 4], n); });
        }
    });
}

TEST(Primitives, CompositionOfPremultipliedPixels) {
    Dice dice(94002);
    BothLevels([&] {
        for (int round = 0; round < 200; ++round) {
            const ROI size = {dice(1, 50), dice(1, 3)};
            Rows over(dice, size.width * 4, size.height), under(dice, size.width * 4, size.height);
            CheckInPlace(
                dice, size, 4,
                [&](uint8_t *d, int64_t s, ROI r) {
                    return zck::AlphaComp_8u_AC4R(over.data(), over.step, under.data(), under.step, d, s, r, 6);
                },
                [&](uint8_t, int64_t x, int64_t y) {
                    const int32_t rest = 255 - over.At(x / 4 * 4 + 3, y);
                    return static_cast<uint8_t>(std::min(over.At(x, y) + (under.At(x, y) * rest + 127) / 255, 255));
                });
        }
        Bytes pixel(4);
        EXPECT_LT(zck::AlphaComp_8u_AC4R(pixel.data(), 4, pixel.data(), 4, pixel.data(), 4, {1, 1}, 5), 0);
    });
}

TEST(Primitives, CopiesAndChannels) {
    Dice dice(94003);
    BothLevels([&] {
        for (int round = 0; round < 200; ++round) {
            const ROI size = {dice(1, 70), dice(1, 4)};
            Rows src(dice, size.width * 4, size.height);
            using Move = int32_t (*)(const uint8_t *, int64_t, uint8_t *, int64_t, ROI);
            const std::pair<Move, int32_t> same[] = {
                {zck::Copy_8u_C1R, 1}, {zck::Copy_16u_C1R, 2}, {zck::Copy_8u_C3R, 3}, {zck::Copy_8u_C4R, 4}};
            for (const auto &[copy, pixel] : same)
                CheckInPlace(
                    dice, size, pixel,
                    [&, copy = copy](uint8_t *d, int64_t s, ROI r) { return copy(src.data(), src.step, d, s, r); },
                    [&](uint8_t, int64_t x, int64_t y) { return src.At(x, y); });
            CheckInPlace(
                dice, size, 3, [&](uint8_t *d, int64_t s, ROI r) { return zck::Copy_8u_C4C3R(src.data(), src.step, d, s, r); },
                [&](uint8_t, int64_t x, int64_t y) { return src.At(x / 3 * 4 + x % 3, y); });
            CheckInPlace(
                dice, size, 4, [&](uint8_t *d, int64_t s, ROI r) { return zck::Copy_8u_C3C4R(src.data(), src.step, d, s, r); },
                [&](uint8_t, int64_t x, int64_t y) { return x % 4 == 3 ? uint8_t{255} : src.At(x / 4 * 3 + x % 4, y); });
            CheckInPlace(
                dice, size, 1,
                [&](uint8_t *d, int64_t s, ROI r) { return zck::Copy_8u_C4C1R(src.data() + 3, src.step, d, s, r); },
                [&](uint8_t, int64_t x, int64_t y) { return src.At(x * 4 + 3, y); });
            CheckInPlace(
                dice, size, 4,
                [&](uint8_t *d, int64_t s, ROI r) { return zck::Copy_8u_C1C4R(src.data(), src.step, d + 3, s, r); },
                [&](uint8_t was, int64_t x, int64_t y) { return x % 4 == 3 ? src.At(x / 4, y) : was; });
            CheckInPlace(
                dice, size, 4, [&](uint8_t *d, int64_t s, ROI r) { return zck::Set_8u_C4CR(255, d + 3, s, r); },
                [&](uint8_t was, int64_t x, int64_t) { return x % 4 == 3 ? uint8_t{255} : was; });
            const int32_t order[4] = {dice(0, 3), dice(0, 3), dice(0, 3), dice(0, 3)};
            Rows turned(dice, size.width * 4, size.height);
            Rows want = turned;
            for (int64_t y = 0; y < size.height; ++y)
                for (int64_t x = 0; x < size.width * 4; ++x) want.At(x, y) = turned.At(x / 4 * 4 + order[x % 4], y);
            ASSERT_EQ(zck::SwapChannels_8u_C4IR(turned.data(), turned.step, size, order), 0);
            ASSERT_EQ(turned.memory, want.memory);
        }
    });
}

TEST(Primitives, MirrorsOnEveryAxis) {
    Dice dice(94004);
    BothLevels([&] {
        for (int round = 0; round < 200; ++round)
            for (int32_t axis = 0; axis < 3; ++axis) {
                const ROI size = {dice(1, 70), dice(1, 6)};
                using Mirror = int32_t (*)(const uint8_t *, int64_t, uint8_t *, int64_t, ROI, int32_t);
                const std::pair<Mirror, int32_t> all[] = {
                    {zck::Mirror_8u_C1R, 1}, {zck::Mirror_16u_C1R, 2}, {zck::Mirror_8u_C3R, 3}, {zck::Mirror_8u_C4R, 4}};
                const auto from = [&](Rows &src, int32_t pixel, int64_t x, int64_t y) {
                    const int64_t column = axis == 0 ? x / pixel : size.width - 1 - x / pixel;
                    return src.At(column * pixel + x % pixel, axis == 1 ? y : size.height - 1 - y);
                };
                for (const auto &[mirror, pixel] : all) {
                    Rows src(dice, size.width * pixel, size.height);
                    CheckInPlace(
                        dice, size, pixel,
                        [&, mirror = mirror](uint8_t *d, int64_t s, ROI r) {
                            return mirror(src.data(), src.step, d, s, r, axis);
                        },
                        [&, pixel = pixel](uint8_t, int64_t x, int64_t y) { return from(src, pixel, x, y); });
                }
                using Own = int32_t (*)(uint8_t *, int64_t, ROI, int32_t);
                const std::pair<Own, int32_t> own[] = {
                    {zck::Mirror_16u_C1IR, 2}, {zck::Mirror_8u_C3IR, 3}, {zck::Mirror_8u_C4IR, 4}};
                for (const auto &[mirror, pixel] : own) {
                    Rows got(dice, size.width * pixel, size.height);
                    Rows src = got, want = got;
                    for (int64_t y = 0; y < size.height; ++y)
                        for (int64_t x = 0; x < size.width * pixel; ++x) want.At(x, y) = from(src, pixel, x, y);
                    ASSERT_EQ(mirror(got.data(), got.step, size, axis), 0);
                    ASSERT_EQ(got.memory, want.memory) << axis << " " << pixel << " " << size.width << "x" << size.height;
                }
            }
    });
}

// ---- planes ----

enum class Chroma { Full, Half, Fields };

// Three planes; chroma has (width + 1) / 2 samples and as many rows as its kind says.
struct Planes {
    Rows y, cb, cr;
    const uint8_t *from[3];
    uint8_t *to[3];
    int64_t steps[3];

    Planes(Dice &dice, ROI size, Chroma kind)
        : y(dice, size.width, size.height),
          cb(dice, (size.width + 1) / 2, ChromaRows(size, kind)),
          cr(dice, (size.width + 1) / 2, ChromaRows(size, kind)) {
        from[0] = to[0] = y.data(), from[1] = to[1] = cb.data(), from[2] = to[2] = cr.data();
        steps[0] = y.step, steps[1] = cb.step, steps[2] = cr.step;
    }
    Planes(const Planes &) = delete;
    static int64_t ChromaRows(ROI size, Chroma kind) { return kind == Chroma::Full ? size.height : (size.height + 1) / 2; }
    Rows &Plane(int i) { return i == 0 ? y : i == 1 ? cb : cr; }
    uint8_t *const *Exchanged() {
        std::swap(to[1], to[2]);
        std::swap(from[1], from[2]);
        std::swap(steps[1], steps[2]);
        return to;
    }
};

int64_t ChromaRow(Chroma kind, int64_t y) {
    if (kind == Chroma::Full) return y;
    return kind == Chroma::Half ? y / 2 : y / 4 * 2 + y % 2;
}

// Positions of luma 0, Cb and Cr in a group.
struct Order {
    int32_t y, cb, cr;
};
constexpr Order kUyvy = {1, 0, 2}, kYuy2 = {0, 1, 3}, kYvyu = {0, 3, 1};

using Unpacker = int32_t (*)(const uint8_t *, int64_t, uint8_t *const *, const int64_t *, ROI);
using Packer = int32_t (*)(const uint8_t *const *, const int64_t *, uint8_t *, int64_t, ROI);

void CheckUnpack(Dice &dice, Unpacker run, const Order &order, int32_t rgb, Chroma kind, ROI size) {
    const int32_t groups = (size.width + 1) / 2;
    Rows src(dice, rgb != 0 ? size.width * rgb : groups * 4, size.height);
    Planes got(dice, size, kind);
    Rows want[3] = {got.y, got.cb, got.cr};
    ASSERT_EQ(run(src.data(), src.step, got.to, got.steps, size), 0);
    for (int64_t y = 0; y < size.height; ++y)
        for (int64_t x = 0; x < size.width; ++x)
            want[0].At(x, y) = rgb == 0 ? src.At(x / 2 * 4 + order.y + x % 2 * 2, y)
                                        : Luma601(src.At(x * rgb, y), src.At(x * rgb + 1, y), src.At(x * rgb + 2, y));
    for (int64_t y = 0; y < size.height; ++y) {
        // The rows that share a chroma row: this one and, once, its partner.
        const int64_t distance = kind == Chroma::Full ? 0 : kind == Chroma::Half ? 1 : 2;
        if (kind == Chroma::Half && y % 2 != 0) continue;
        if (kind == Chroma::Fields && y % 4 >= 2) continue;
        const int64_t partner = y + distance < size.height ? y + distance : y;
        if (ChromaRow(kind, y) >= Planes::ChromaRows(size, kind)) continue;
        for (int64_t x = 0; x < groups; ++x) {
            int cb, cr;
            if (rgb == 0) {
                cb = (src.At(x * 4 + order.cb, y) + src.At(x * 4 + order.cb, partner) + 1) / 2;
                cr = (src.At(x * 4 + order.cr, y) + src.At(x * 4 + order.cr, partner) + 1) / 2;
            } else {
                int sum[3] = {};
                for (const int64_t row : {y, partner})
                    for (const int64_t column : {2 * x, std::min<int64_t>(2 * x + 1, size.width - 1)})
                        for (int64_t c = 0; c < 3; ++c) sum[c] += src.At(column * rgb + c, row);
                cb = Cb601(sum[0], sum[1], sum[2], 4);
                cr = Cr601(sum[0], sum[1], sum[2], 4);
            }
            want[1].At(x, ChromaRow(kind, y)) = static_cast<uint8_t>(cb);
            want[2].At(x, ChromaRow(kind, y)) = static_cast<uint8_t>(cr);
        }
    }
    for (int i = 0; i < 3; ++i)
        ASSERT_EQ(got.Plane(i).memory, want[i].memory) << "plane " << i << " of " << size.width << "x" << size.height;
}

void CheckPack(Dice &dice, Packer run, const Order &order, int32_t rgb, Chroma kind, bool exchanged, ROI size) {
    Planes src(dice, size, kind);
    if (exchanged) src.Exchanged();
    Rows got(dice, rgb != 0 ? size.width * rgb : (size.width + 1) / 2 * 4, size.height);
    Rows want = got;
    ASSERT_EQ(run(src.from, src.steps, got.data(), got.step, size), 0);
    for (int64_t y = 0; y < size.height; ++y) {
        const int64_t row = std::min(ChromaRow(kind, y), Planes::ChromaRows(size, kind) - 1);
        for (int64_t x = 0; x < size.width; ++x) {
            const uint8_t cb = src.cb.At(x / 2, row), cr = src.cr.At(x / 2, row);
            if (rgb == 0) {
                want.At(x / 2 * 4 + order.y + x % 2 * 2, y) = src.y.At(x, y);
                want.At(x / 2 * 4 + order.cb, y) = cb;
                want.At(x / 2 * 4 + order.cr, y) = cr;
                continue;
            }
            uint8_t bgr[3];
            Rgb601(src.y.At(x, y), cb, cr, bgr);
            for (int64_t c = 0; c < 3; ++c) want.At(x * rgb + c, y) = bgr[c];
            if (rgb == 4) want.At(x * 4 + 3, y) = 99;
        }
    }
    ASSERT_EQ(got.memory, want.memory) << size.width << "x" << size.height;
}

int32_t ToBgra(const uint8_t *const *src, const int64_t *step, uint8_t *dst, int64_t dstStep, ROI size) {
    return zck::YCbCr420ToBGR_8u_P3C4R(src, step, dst, dstStep, size, 99);
}

TEST(Primitives, PackedIntoPlanes) {
    Dice dice(94005);
    BothLevels([&] {
        for (int round = 0; round < 60; ++round) {
            const ROI size = {dice(1, 80), dice(1, 9)};
            CheckUnpack(dice, zck::CbYCr422ToYCbCr422_8u_C2P3R, kUyvy, 0, Chroma::Full, size);
            CheckUnpack(dice, zck::YCbCr422_8u_C2P3R, kYuy2, 0, Chroma::Full, size);
            CheckUnpack(dice, zck::YCrCb422ToYCbCr422_8u_C2P3R, kYvyu, 0, Chroma::Full, size);
            CheckUnpack(dice, zck::BGRToYCbCr422_8u_AC4P3R, kUyvy, 4, Chroma::Full, size);
            CheckUnpack(dice, zck::BGRToYCbCr422_8u_C3P3R, kUyvy, 3, Chroma::Full, size);
            CheckUnpack(dice, zck::YCrCb422ToYCbCr420_8u_C2P3R, kYvyu, 0, Chroma::Half, size);
            CheckUnpack(dice, zck::YCbCr422ToYCbCr420_8u_C2P3R, kYuy2, 0, Chroma::Half, size);
            CheckUnpack(dice, zck::CbYCr422ToYCbCr420_8u_C2P3R, kUyvy, 0, Chroma::Half, size);
            CheckUnpack(dice, zck::CbYCr422ToYCbCr420_Interlace_8u_C2P3R, kUyvy, 0, Chroma::Fields, size);
            CheckUnpack(dice, zck::BGRToYCbCr420_8u_C3P3R, kUyvy, 3, Chroma::Half, size);
            CheckUnpack(dice, zck::BGRToYCbCr420_8u_AC4P3R, kUyvy, 4, Chroma::Half, size);
        }
    });
}

TEST(Primitives, PlanesIntoPacked) {
    Dice dice(94006);
    BothLevels([&] {
        for (int round = 0; round < 60; ++round) {
            const ROI size = {dice(1, 80), dice(1, 9)};
            CheckPack(dice, zck::YCbCr422_8u_P3C2R, kYuy2, 0, Chroma::Full, false, size);
            CheckPack(dice, zck::YCbCr422ToYCrCb422_8u_P3C2R, kYvyu, 0, Chroma::Full, false, size);
            CheckPack(dice, zck::YCbCr422ToBGR_8u_P3C3R, kUyvy, 3, Chroma::Full, false, size);
            CheckPack(dice, zck::YCbCr420ToYCrCb422_8u_P3C2R, kYvyu, 0, Chroma::Half, false, size);
            // With the chroma planes exchanged by the caller it makes the other order; and one takes them exchanged.
            CheckPack(dice, zck::YCbCr420ToYCrCb422_8u_P3C2R, kYuy2, 0, Chroma::Half, true, size);
            CheckPack(dice, zck::YCrCb420ToCbYCr422_8u_P3C2R, kUyvy, 0, Chroma::Half, true, size);
            CheckPack(dice, zck::YCbCr420ToCbYCr422_Interlace_8u_P3C2R, kUyvy, 0, Chroma::Fields, false, size);
            CheckPack(dice, zck::YCbCr420ToBGR_8u_P3C3R, kUyvy, 3, Chroma::Half, false, size);
            CheckPack(dice, ToBgra, kUyvy, 4, Chroma::Half, false, size);
        }
    });
}

TEST(Primitives, JoinedChroma) {
    Dice dice(94007);
    BothLevels([&] {
        for (int round = 0; round < 100; ++round) {
            const ROI size = {dice(1, 80), dice(1, 7)};
            const int32_t pairs = (size.width + 1) / 2, rows = (size.height + 1) / 2;
            Rows luma(dice, size.width, size.height), joined(dice, pairs * 2, rows);
            Planes got(dice, size, Chroma::Half);
            Rows want[3] = {got.y, got.cb, got.cr};
            ASSERT_EQ(zck::YCbCr420_8u_P2P3R(luma.data(), luma.step, joined.data(), joined.step, got.to, got.steps, size), 0);
            for (int64_t y = 0; y < size.height; ++y)
                for (int64_t x = 0; x < size.width; ++x) want[0].At(x, y) = luma.At(x, y);
            for (int64_t y = 0; y < rows; ++y)
                for (int64_t x = 0; x < pairs; ++x)
                    want[1].At(x, y) = joined.At(2 * x, y), want[2].At(x, y) = joined.At(2 * x + 1, y);
            for (int i = 0; i < 3; ++i) ASSERT_EQ(got.Plane(i).memory, want[i].memory) << i;
            Rows backLuma(dice, size.width, size.height), back(dice, pairs * 2, rows);
            Rows wantLuma = backLuma, wantBack = back;
            for (int64_t y = 0; y < size.height; ++y)
                for (int64_t x = 0; x < size.width; ++x) wantLuma.At(x, y) = luma.At(x, y);
            for (int64_t y = 0; y < rows; ++y)
                for (int64_t x = 0; x < pairs * 2; ++x) wantBack.At(x, y) = joined.At(x, y);
            ASSERT_EQ(zck::YCbCr420_8u_P3P2R(got.from, got.steps, backLuma.data(), backLuma.step, back.data(), back.step, size),
                      0);
            ASSERT_EQ(backLuma.memory, wantLuma.memory);
            ASSERT_EQ(back.memory, wantBack.memory);
        }
    });
}

TEST(Primitives, BadSizesAreErrors) {
    Bytes memory(64, 7);
    uint8_t *planes[3] = {memory.data(), memory.data(), memory.data()};
    const int64_t steps[3] = {8, 8, 8};
    for (const ROI bad : {ROI{0, 1}, ROI{1, 0}, ROI{-4, 2}, ROI{4, -2}}) {
        EXPECT_LT(zck::Copy_8u_C4R(memory.data(), 8, memory.data() + 32, 8, bad), 0);
        EXPECT_LT(zck::MulC_8u_C1IRSfs(9, memory.data(), 8, bad, 7), 0);
        EXPECT_LT(zck::Mirror_8u_C4IR(memory.data(), 8, bad, 0), 0);
        EXPECT_LT(zck::CbYCr422ToYCbCr420_8u_C2P3R(memory.data(), 8, planes, steps, bad), 0);
        EXPECT_LT(zck::YCbCr420ToBGR_8u_P3C3R(planes, steps, memory.data(), 8, bad), 0);
        EXPECT_LT(zck::BGRToYCbCr422_8u_AC4C2R(memory.data(), 8, memory.data() + 32, 8, bad), 0);
    }
    EXPECT_EQ(memory, Bytes(64, 7));
}

}    // namespace
}    // namespace conformance
