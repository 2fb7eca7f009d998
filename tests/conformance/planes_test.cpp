// Pictures as planes and back.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "imaging/colour/planar_image.h"
#include "tests/conformance/both_levels.h"
#include "tests/conformance/dice.h"
#include "tests/conformance/media_model.h"
#include "tests/conformance/picture_model.h"

namespace conformance {
namespace {

using zck::LoadPlanes;
using zck::PackPlanes;
using zck::PlanarImage;

constexpr HRESULT kNoRoute = static_cast<HRESULT>(0x80040201);
constexpr HRESULT kBadMedia = static_cast<HRESULT>(0x80040248);
constexpr size_t kGuard = 64;
constexpr eZFCC kHalves[] = {eZFCC_I420, eZFCC_YV12, eZFCC_NV12};
constexpr eZFCC kFull[] = {eZFCC_YUY2, eZFCC_YVYU, eZFCC_UYVY, eZFCC_HDYC, eZFCC_RGB24, eZFCC_RGB32, eZFCC_ARGB32};

// The sample that a picture has in a plane.
int Sample(const Bytes &memory, const Shape &shape, int32_t plane, int32_t x, int32_t y) {
    Bytes copy = memory;
    Samples in(copy, shape);
    if (!IsPixels(shape.fcc)) return plane == 0 ? in.Luma(x, y) : in.Chroma(plane - 1, x, y);
    if (plane == 0) return Luma601(in.Pixel(x, y, 0), in.Pixel(x, y, 1), in.Pixel(x, y, 2));
    int sum[3];
    for (int32_t c = 0; c < 3; ++c) sum[c] = in.Pixel(2 * x, y, c) + in.Pixel(2 * x + 1, y, c);
    return plane == 1 ? Cb601(sum[0], sum[1], sum[2], 2) : Cr601(sum[0], sum[1], sum[2], 2);
}

void CheckLoad(const Z_VID_PROPS &p, Dice &dice) {
    const Shape shape = ShapeOf(p);
    const Bytes src = dice.Noise(BytesOf(shape)), kept = src;
    const bool half = Is420(p.fccType), wrapped = half && p.fccType != eZFCC_NV12;
    const int32_t h = shape.Rows(), chromaRows = half ? h / 2 : h;
    const int64_t rows[3] = {wrapped ? p.nRowBytes : p.nWidth, (wrapped ? p.nRowBytes : p.nWidth) / 2,
                             (wrapped ? p.nRowBytes : p.nWidth) / 2};
    const int64_t need = wrapped ? 0 : rows[0] * h + 2 * rows[1] * chromaRows;
    ASSERT_EQ(zck::PlanesScratch(p, true), need) << Words(p);

    Bytes all = dice.Noise(2 * kGuard + static_cast<size_t>(need));
    const Bytes before = all;
    uint8_t *scratch = all.data() + kGuard;
    PlanarImage image;
    image.nHeight[2] = 77;    // what an image held is gone
    ASSERT_EQ(LoadPlanes(&image, src.data(), static_cast<int64_t>(src.size()), &p, scratch, need), S_OK) << Words(p);
    EXPECT_TRUE(image.bPlanar);
    EXPECT_EQ(image.fcc, p.fccType);
    for (int32_t i = 0; i < 3; ++i) {
        const int32_t w = i == 0 ? p.nWidth : p.nWidth / 2, planeRows = i == 0 ? h : chromaRows;
        ASSERT_EQ(image.nRowBytes[i], rows[i]) << Words(p);
        ASSERT_EQ(image.nWidth[i], w);
        ASSERT_EQ(image.nHeight[i], planeRows);
        ASSERT_EQ(image.rect[i].left, 0);
        ASSERT_EQ(image.rect[i].top, 0);
        ASSERT_EQ(image.rect[i].right, w);
        ASSERT_EQ(image.rect[i].bottom, planeRows);
        if (wrapped) {
            const int32_t third = p.fccType == eZFCC_I420 ? i : (3 - i) % 3;    // YV12 stores Cr first
            const int64_t at = third == 0 ? 0 : rows[0] * h + (third - 1) * rows[1] * chromaRows;
            ASSERT_EQ(image.plane[i], src.data() + at) << Words(p);
        } else {
            ASSERT_EQ(image.plane[i], scratch + (i == 0 ? 0 : rows[0] * h + (i - 1) * rows[1] * chromaRows)) << Words(p);
        }
        for (int32_t y = 0; y < planeRows; ++y)
            for (int32_t x = 0; x < w; ++x)
                ASSERT_EQ(image.plane[i][y * rows[i] + x], Sample(src, shape, i, x, y))
                    << Words(p) << " plane " << i << " at " << x << "," << y;
    }
    ASSERT_EQ(src, kept);
    for (size_t i = 0; i < kGuard; ++i) {
        ASSERT_EQ(all[i], before[i]);
        ASSERT_EQ(all[all.size() - 1 - i], before[all.size() - 1 - i]) << Words(p);
    }
    // One byte less on either side is refused.
    if (need > 0) {
        EXPECT_EQ(LoadPlanes(&image, src.data(), static_cast<int64_t>(src.size()), &p, scratch, need - 1), kBadMedia)
            << Words(p);
        EXPECT_EQ(LoadPlanes(&image, src.data(), static_cast<int64_t>(src.size()), &p, nullptr, need), E_POINTER) << Words(p);
    }
    const int64_t least = half ? static_cast<int64_t>(BytesOf(shape)) - (p.nRowBytes - p.nWidth) / (wrapped ? 2 : 1) : Need(p);
    if (h >= 2) {
        EXPECT_EQ(LoadPlanes(&image, src.data(), least - 2, &p, scratch, need), kBadMedia) << Words(p);
    }
}

TEST(Planes, LoadedFromEveryFormat) {
    Dice dice(92001);
    for (int round = 0; round < 14; ++round)
        for (const auto &set : {std::vector<eZFCC>(std::begin(kHalves), std::end(kHalves)),
                                std::vector<eZFCC>(std::begin(kFull), std::end(kFull))})
            for (const eZFCC fcc : set) {
                Z_VID_PROPS p = Picture(fcc, dice(2, 75), dice(1, 7));
                if (Rgb(fcc) && dice(0, 1) != 0) p.nHeight = -p.nHeight;
                if (dice(0, 1) != 0) p.nRowBytes += dice(0, 5) * 4;
                BothLevels([&] { CheckLoad(p, dice); });
                ASSERT_FALSE(HasFatalFailure()) << "round " << round;
            }
}

TEST(Planes, WithoutASourceTheyAreLaidOutInTheScratch) {
    for (const eZFCC fcc : {eZFCC_I420, eZFCC_YV12, eZFCC_NV12, eZFCC_UYVY, eZFCC_RGB24}) {
        const Z_VID_PROPS p = Picture(fcc, 14, 6);
        const bool half = Is420(fcc);
        const int64_t need = half ? 14 * 6 + 2 * 7 * 3 : 14 * 6 * 2;
        ASSERT_EQ(zck::PlanesScratch(p, false), need) << Words(p);
        Bytes scratch(static_cast<size_t>(need), 0x5A);
        PlanarImage image;
        ASSERT_EQ(LoadPlanes(&image, nullptr, 0, &p, scratch.data(), need), S_OK) << Words(p);
        EXPECT_TRUE(image.bPlanar);
        const int64_t chroma = 14 * 6, second = chroma + (half ? 21 : 42);
        const bool first = fcc == eZFCC_YV12;    // planes in the order of the format's memory, but for the joined ones
        EXPECT_EQ(image.plane[0] - scratch.data(), 0);
        EXPECT_EQ(image.plane[1] - scratch.data(), first ? second : chroma) << Words(p);
        EXPECT_EQ(image.plane[2] - scratch.data(), first ? chroma : second) << Words(p);
        EXPECT_EQ(image.nRowBytes[0], 14);
        EXPECT_EQ(image.nRowBytes[1], 7);
        EXPECT_EQ(image.nHeight[1], half ? 3 : 6);
        EXPECT_EQ(scratch, Bytes(static_cast<size_t>(need), 0x5A));
    }
}

TEST(Planes, BadInput) {
    Bytes memory(4096), scratch(4096);
    PlanarImage image;
    Z_VID_PROPS p = Picture(eZFCC_UYVY, 16, 8);
    EXPECT_EQ(LoadPlanes(nullptr, memory.data(), 4096, &p, scratch.data(), 4096), E_POINTER);
    EXPECT_EQ(LoadPlanes(&image, memory.data(), 4096, nullptr, scratch.data(), 4096), E_POINTER);
    for (const eZFCC fcc : {eZFCC_v210, eZFCC_r210, eZFCC_RGB8, Fcc(0x41424344), eZFCC_Default}) {
        p = Picture(eZFCC_UYVY, 16, 8);
        p.fccType = fcc;
        p.nRowBytes = 256;
        EXPECT_EQ(LoadPlanes(&image, memory.data(), 4096, &p, scratch.data(), 4096), kNoRoute) << std::hex << fcc;
        EXPECT_EQ(zck::PlanesScratch(p, true), 0) << std::hex << fcc;
    }
    for (const eZFCC fcc : {eZFCC_UYVY, eZFCC_I420, eZFCC_NV12, eZFCC_RGB32}) {
        p = Picture(fcc, 16, 8);
        p.nWidth = 0;
        EXPECT_EQ(LoadPlanes(&image, memory.data(), 4096, &p, scratch.data(), 4096), kBadMedia) << Words(p);
        p = Picture(fcc, 16, 8);
        p.nHeight = 0;
        EXPECT_EQ(LoadPlanes(&image, memory.data(), 4096, &p, scratch.data(), 4096), kBadMedia) << Words(p);
        p = Picture(fcc, 16, 8);
        p.nRowBytes = 15;    // shorter than the pixels
        EXPECT_EQ(LoadPlanes(&image, memory.data(), 4096, &p, scratch.data(), 4096), kBadMedia) << Words(p);
        p = Picture(fcc, 60000, 60000);
        EXPECT_EQ(LoadPlanes(&image, memory.data(), 4096, &p, scratch.data(), 4096), kBadMedia) << Words(p);
    }
}

// Planes of noise in a memory of their own, 4:2:2 or 4:2:0.
struct Noisy {
    Bytes memory;
    PlanarImage image;
    Noisy(Dice &dice, int32_t w, int32_t h, bool half) {
        const int32_t rows[3] = {w + dice(0, 9), w / 2 + dice(0, 9), w / 2 + dice(0, 9)};
        const int32_t heights[3] = {h, half ? h / 2 : h, half ? h / 2 : h};
        int64_t at[3] = {}, end = 0;
        for (int32_t i = 0; i < 3; ++i) at[i] = end, end += int64_t{rows[i]} * heights[i];
        memory = dice.Noise(static_cast<size_t>(end));
        image.fcc = half ? eZFCC_I420 : eZFCC_UYVY;
        image.bPlanar = true;
        for (int32_t i = 0; i < 3; ++i) {
            image.plane[i] = memory.data() + at[i];
            image.nRowBytes[i] = rows[i];
            image.nWidth[i] = i == 0 ? w : w / 2;
            image.nHeight[i] = heights[i];
            image.rect[i] = {0, 0, image.nWidth[i], heights[i]};
        }
    }
    int At(int32_t plane, int32_t x, int32_t y) const { return image.plane[plane][y * image.nRowBytes[plane] + x]; }
};

void CheckPack(eZFCC fcc, int32_t w, int32_t h, bool up, Dice &dice) {
    const bool half = Is420(fcc);
    const Noisy planes(dice, w, h, half);
    const int32_t row = static_cast<int32_t>(Row(fcc, w)) + (dice(0, 1) != 0 ? 12 : 0);
    // A picture that goes up in memory is, to the model, one with its last row first.
    const Shape shape = {fcc, w, up ? h : IsPixels(fcc) ? -h : h, row};
    const size_t size = BytesOf(shape);
    const Bytes before = dice.Noise(size + 2 * kGuard);
    Bytes want(before.begin() + kGuard, before.end() - kGuard);
    Samples out(want, shape);
    const int32_t whole = half ? w : w / 2 * 2;
    for (int32_t y = 0; y < h; ++y)
        for (int32_t x = 0; x < whole; ++x)
            if (IsPixels(fcc)) {
                uint8_t bgr[3];
                Rgb601(planes.At(0, x, y), planes.At(1, x / 2, y), planes.At(2, x / 2, y), bgr);
                for (int32_t c = 0; c < 3; ++c) out.Pixel(x, y, c) = bgr[c];
                if (fcc != eZFCC_RGB24) out.Pixel(x, y, 3) = 255;
            } else {
                out.Luma(x, y) = static_cast<uint8_t>(planes.At(0, x, y));
            }
    if (!IsPixels(fcc))
        for (int32_t y = 0; y < (half ? h / 2 : h); ++y)
            for (int32_t x = 0; x < w / 2; ++x)
                for (int32_t c = 0; c < 2; ++c) out.Chroma(c, x, y) = static_cast<uint8_t>(planes.At(1 + c, x, y));
    Bytes all = before;
    uint8_t *dst = all.data() + kGuard + (up ? int64_t{row} * (h - 1) : 0);
    const std::string text = "to " + Words(Picture(fcc, w, h)) + (up ? " upwards" : "") + " row " + std::to_string(row);
    ASSERT_EQ(PackPlanes(&planes.image, dst, static_cast<int64_t>(size), fcc, up ? -row : row), S_OK) << text;
    // The odd last column is somebody else's matter, but not the guards.
    for (size_t i = 0; i < all.size(); ++i) {
        const bool inside = i >= kGuard && i < kGuard + size;
        if (inside && w % 2 != 0 && !half) {
            const int64_t inRow = static_cast<int64_t>(i - kGuard) % row,
                          pixel = IsPixels(fcc) ? (fcc == eZFCC_RGB24 ? 3 : 4) : 2;
            if (inRow >= whole * pixel && inRow < (w + 1) * pixel) continue;
        }
        ASSERT_EQ(static_cast<int>(all[i]), static_cast<int>(inside ? want[i - kGuard] : before[i]))
            << text << " at " << static_cast<int64_t>(i) - static_cast<int64_t>(kGuard);
    }
}

TEST(Planes, PackedIntoEveryFormat) {
    Dice dice(92002);
    for (int round = 0; round < 40; ++round) {
        for (const eZFCC fcc : kFull)
            for (const bool up : {false, true}) {
                if (up && !IsPixels(fcc)) continue;
                const int32_t w = dice(2, 90), h = dice(1, 5);
                BothLevels([&] { CheckPack(fcc, w, h, up, dice); });
                ASSERT_FALSE(HasFatalFailure()) << "round " << round;
            }
        for (const eZFCC fcc : kHalves) {
            const int32_t w = dice(2, 90), h = dice(1, 7);
            BothLevels([&] { CheckPack(fcc, w, h, false, dice); });
            ASSERT_FALSE(HasFatalFailure()) << "round " << round;
        }
    }
}

TEST(Planes, PackingRefusals) {
    Dice dice(92003);
    const Noisy full(dice, 16, 4, false), half(dice, 16, 4, true);
    Bytes dst(1024, 3);
    EXPECT_EQ(PackPlanes(nullptr, dst.data(), 1024, eZFCC_UYVY, 32), E_POINTER);
    EXPECT_EQ(PackPlanes(&full.image, nullptr, 1024, eZFCC_UYVY, 32), E_POINTER);
    EXPECT_EQ(PackPlanes(&full.image, dst.data(), 127, eZFCC_UYVY, 32), kBadMedia);
    EXPECT_EQ(PackPlanes(&full.image, dst.data(), 1024, eZFCC_UYVY, 31), kBadMedia);
    EXPECT_EQ(PackPlanes(&full.image, dst.data(), 255, eZFCC_RGB32, 64), kBadMedia);
    EXPECT_EQ(PackPlanes(&half.image, dst.data(), 95, eZFCC_I420, 16), kBadMedia);
    EXPECT_EQ(PackPlanes(&half.image, dst.data(), 95, eZFCC_NV12, 16), kBadMedia);
    for (const eZFCC fcc : kFull) EXPECT_EQ(PackPlanes(&half.image, dst.data(), 1024, fcc, 64), kNoRoute) << std::hex << fcc;
    for (const eZFCC fcc : kHalves) EXPECT_EQ(PackPlanes(&full.image, dst.data(), 1024, fcc, 16), kNoRoute) << std::hex << fcc;
    for (const eZFCC fcc : {eZFCC_v210, eZFCC_r210, eZFCC_RGB8, eZFCC_Default})
        EXPECT_EQ(PackPlanes(&full.image, dst.data(), 1024, fcc, 256), kNoRoute) << std::hex << fcc;
    PlanarImage none = full.image;
    none.nWidth[0] = 0;
    EXPECT_EQ(PackPlanes(&none, dst.data(), 1024, eZFCC_UYVY, 32), E_FAIL);
    none = full.image;
    none.nHeight[0] = none.nHeight[1] = none.nHeight[2] = 0;
    EXPECT_EQ(PackPlanes(&none, dst.data(), 1024, eZFCC_UYVY, 32), E_FAIL);
    EXPECT_EQ(dst, Bytes(1024, 3));
    EXPECT_EQ(PackPlanes(&full.image, dst.data(), 128, eZFCC_UYVY, 32), S_OK);
    EXPECT_EQ(PackPlanes(&half.image, dst.data(), 96, eZFCC_I420, 16), S_OK);
}

}    // namespace
}    // namespace conformance
