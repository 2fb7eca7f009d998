// One picture in every pixel format that a host may bring, through the exported door: what leaves is the picture keyed.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <string>
#include <vector>

#include "tests/road/keyer.h"

namespace zck {
namespace {

using Bytes = std::vector<uint8_t>;

constexpr int kWidth = 128;
constexpr int kHeight = 72;

// Samples of the picture, with chroma that is the same over blocks of 2 by 2: nothing is lost in any format.
struct Scene {
    uint8_t y[kHeight][kWidth];
    uint8_t cb[kHeight / 2][kWidth / 2];
    uint8_t cr[kHeight / 2][kWidth / 2];
};

// A soft disc of skin (Y 150, Cb 100, Cr 160) over a green screen (Y 110, Cb 70, Cr 60).
Scene MakeScene() {
    Scene s = {};
    const auto cover = [](double x, double y) {
        const double d = std::hypot(x - kWidth / 2.0, y - kHeight / 2.0);
        return std::clamp((26.0 - d) / 8.0, 0.0, 1.0);
    };
    const auto mix = [](double a, int screen, int skin) {
        return static_cast<uint8_t>(std::lround(screen + a * (skin - screen)));
    };
    for (int y = 0; y < kHeight; ++y)
        for (int x = 0; x < kWidth; ++x) s.y[y][x] = mix(cover(x, y), 110 + x % 7, 150);
    for (int y = 0; y < kHeight / 2; ++y)
        for (int x = 0; x < kWidth / 2; ++x) {
            const double a = cover(2 * x + 0.5, 2 * y + 0.5);
            s.cb[y][x] = mix(a, 70, 100);
            s.cr[y][x] = mix(a, 60, 160);
        }
    return s;
}

struct Source {
    eZFCC fcc;
    bool exchanged;    // Cb and Cr, on purpose
    Bytes pixels;
    int32_t rowBytes;
};

Bytes Packed(const Scene &s, int y0, int y1, int cb, int cr) {
    Bytes bytes(kWidth * kHeight * 2);
    for (int y = 0; y < kHeight; ++y)
        for (int x = 0; x < kWidth; x += 2) {
            uint8_t *group = &bytes[static_cast<std::size_t>((y * kWidth + x) * 2)];
            group[y0] = s.y[y][x];
            group[y1] = s.y[y][x + 1];
            group[cb] = s.cb[y / 2][x / 2];
            group[cr] = s.cr[y / 2][x / 2];
        }
    return bytes;
}

Bytes Planes(const Scene &s, eZFCC fcc) {
    Bytes bytes(&s.y[0][0], &s.y[0][0] + kWidth * kHeight);
    const Bytes cb(&s.cb[0][0], &s.cb[0][0] + kWidth * kHeight / 4);
    const Bytes cr(&s.cr[0][0], &s.cr[0][0] + kWidth * kHeight / 4);
    if (fcc == eZFCC_NV12) {
        for (std::size_t i = 0; i < cb.size(); ++i) bytes.insert(bytes.end(), {cb[i], cr[i]});
        return bytes;
    }
    const bool cbFirst = fcc == eZFCC_I420;
    bytes.insert(bytes.end(), (cbFirst ? cb : cr).begin(), (cbFirst ? cb : cr).end());
    bytes.insert(bytes.end(), (cbFirst ? cr : cb).begin(), (cbFirst ? cr : cb).end());
    return bytes;
}

// The formulas in 64-bit reals, rounded: at most one unit from any form of BT.601.
Bytes Rgb(const Scene &s, bool exchanged) {
    Bytes bytes(kWidth * kHeight * 4, 255);
    const auto byte = [](double v) { return static_cast<uint8_t>(std::clamp(static_cast<int>(std::lround(v)), 0, 255)); };
    for (int y = 0; y < kHeight; ++y)
        for (int x = 0; x < kWidth; ++x) {
            const double luma = 1.164 * (s.y[y][x] - 16);
            const double a = s.cb[y / 2][x / 2] - 128.0, b = s.cr[y / 2][x / 2] - 128.0;
            const double cb = exchanged ? b : a, cr = exchanged ? a : b;
            uint8_t *p = &bytes[static_cast<std::size_t>((y * kWidth + x) * 4)];
            p[0] = byte(luma + 2.017 * cb);
            p[1] = byte(luma - 0.813 * cr - 0.392 * cb);
            p[2] = byte(luma + 1.596 * cr);
        }
    return bytes;
}

// A keyer that takes the screen out.
class ScreenKeyer : public Keyer {
public:
    explicit ScreenKeyer(const char *threads) {
        Set("process.threads", threads);
        CHROMA_KEY_RAW key = {};
        key.eType = eCKT_RGB;
        key.nKeysUsed = 1;
        // The screen as red, green, blue from the low byte up: 2, 215, 0.
        key.arrKeys[0].nValue = 0x0000D702;
        key.arrKeys[0].nDelta = 0x00283828;
        key.arrKeys[0].nSmoothRange = 24;
        key.nMaxTransparent = 255;
        KeySet(key);
    }

    Bytes Keyed(eZFCC fcc, const Bytes &pixels, int32_t rowBytes, eZInterlace interlace) {
        Z_VID_PROPS props = {};
        props.fccType = fcc;
        props.nWidth = kWidth;
        props.nHeight = fcc == eZFCC_ARGB32 ? -kHeight : kHeight;
        props.nRowBytes = rowBytes;
        props.eInterlace = interlace;
        Bytes result;
        EXPECT_EQ(Run(props, pixels, &result), S_OK);
        return result;
    }
};

std::vector<Source> Sources(const Scene &s) {
    return {{eZFCC_UYVY, false, Packed(s, 1, 3, 0, 2), 2 * kWidth}, {eZFCC_YUY2, false, Packed(s, 0, 2, 1, 3), 2 * kWidth},
            {eZFCC_YVYU, true, Packed(s, 0, 2, 3, 1), 2 * kWidth},  {eZFCC_I420, false, Planes(s, eZFCC_I420), kWidth},
            {eZFCC_YV12, false, Planes(s, eZFCC_YV12), kWidth},     {eZFCC_NV12, false, Planes(s, eZFCC_NV12), kWidth}};
}

// Colours may be one unit apart; the key's slopes make of that at most this many units of alpha.
constexpr int kAlphaError = 8;

TEST(SourceFormats, EachFormatComesOutKeyed) {
    const Scene scene = MakeScene();
    for (const char *threads : {"1", "3"})
        for (const eZInterlace interlace : {eZI_Progressive, eZI_Field1First}) {
            ScreenKeyer keyer(threads);
            const Bytes straight = keyer.Keyed(eZFCC_ARGB32, Rgb(scene, false), 4 * kWidth, interlace);
            const Bytes exchanged = keyer.Keyed(eZFCC_ARGB32, Rgb(scene, true), 4 * kWidth, interlace);
            ASSERT_EQ(straight.size(), std::size_t{4} * kWidth * kHeight);
            // A matte: clear at the edge, solid in the middle.
            const std::size_t middle = 4 * (kHeight / 2 * kWidth + kWidth / 2) + 3;
            ASSERT_EQ(straight[3], 0);
            ASSERT_EQ(straight[middle], 255);
            for (const Source &source : Sources(scene)) {
                SCOPED_TRACE(testing::Message() << std::hex << source.fcc << ", threads " << threads);
                const Bytes found = keyer.Keyed(source.fcc, source.pixels, source.rowBytes, interlace);
                const Bytes &expected = source.exchanged ? exchanged : straight;
                ASSERT_EQ(found.size(), expected.size());
                int worst = 0;
                for (std::size_t i = 3; i < found.size(); i += 4) worst = std::max(worst, std::abs(found[i] - expected[i]));
                EXPECT_LE(worst, kAlphaError);
                // With the colours of the other reading the matte would be another one.
                const Bytes &other = source.exchanged ? straight : exchanged;
                int apart = 0;
                for (std::size_t i = 3; i < found.size(); i += 4) apart = std::max(apart, std::abs(found[i] - other[i]));
                EXPECT_GT(apart, 4 * kAlphaError);
            }
        }
}

// The same samples give the same bytes, whichever road the conversion takes.
TEST(SourceFormats, FormatsOfTheSameSamplesAgreeToTheByte) {
    const Scene scene = MakeScene();
    const std::vector<Source> sources = Sources(scene);
    ScreenKeyer keyer("2");
    const Bytes uyvy = keyer.Keyed(eZFCC_UYVY, sources[0].pixels, 2 * kWidth, eZI_Progressive);
    for (const Source &source : sources) {
        const Bytes found = keyer.Keyed(source.fcc, source.pixels, source.rowBytes, eZI_Progressive);
        if (source.exchanged)
            EXPECT_NE(found, uyvy);
        else
            EXPECT_EQ(found, uyvy) << source.fcc;
    }
}

}    // namespace
}    // namespace zck
