// Every colour there is through the encoders, and every macro pixel through the decoders, against the formulas in 64-bit reals.
//
// Allowed: BT.601 rounds to the nearest, so half a unit. BT.709 cuts off, so less than one unit below the formula; what is left
// of a row behind the last block is at most one unit from what the block would have given.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "imaging/colour/convert.h"
#include "platform/processor.h"

namespace conformance {
namespace {

using Bytes = std::vector<uint8_t>;

constexpr int32_t kPairs = 256, kRows = 256;
constexpr double kRounding = 1e-9;

struct Bounds {
    double below, above;    // of the formula less the byte
};
constexpr Bounds kNearest = {-0.5 - kRounding, 0.5 + kRounding};
constexpr Bounds kCut = {-kRounding, 1.0 - kRounding};

Z_VID_PROPS Image(eZFCC fcc, int32_t width, int32_t height, int32_t rowBytes) {
    Z_VID_PROPS p = {};
    p.fccType = fcc;
    p.nWidth = width;
    p.nHeight = height;
    p.nRowBytes = rowBytes;
    p.eInterlace = eZI_Progressive;
    return p;
}

// Both ends of what the formula is from the byte, over a whole walk.
class Spread {
public:
    void Take(double formula, uint8_t byte) {
        const double d = std::clamp(formula, 0.0, 255.0) - byte;
        m_least = std::min(m_least, d);
        m_most = std::max(m_most, d);
    }
    void Expect(const Bounds &bounds, const char *what) const {
        EXPECT_GE(m_least, bounds.below) << what;
        EXPECT_LE(m_most, bounds.above) << what;
        EXPECT_LT(m_least + 0.45, m_most) << what;    // a walk that saw nothing
    }

private:
    double m_least = 1e9, m_most = -1e9;
};

struct Weights {
    double r, g, b, bias;
    double Of(double red, double green, double blue) const { return r * red + g * green + b * blue + bias; }
};

struct Encoder {
    eZFCC from, to;
    bool lumaFirst;
    Weights y, cb, cr;
    Bounds bounds;
};

constexpr Weights kY601 = {0.257, 0.504, 0.098, 16}, kCb601 = {-0.148, -0.291, 0.439, 128},
                  kCr601 = {0.439, -0.368, -0.071, 128};
constexpr Weights kY709 = {49.0 / 256, 157.0 / 256, 16.0 / 256, 16.0 * 255 / 256};
constexpr Weights kCb709 = {-26.0 / 256, -87.0 / 256, 112.0 / 256, 129.0 * 255 / 256};
constexpr Weights kCr709 = {112.0 / 256, -102.0 / 256, -10.0 / 256, 129.0 * 255 / 256};

void WalkColours(const Encoder &e) {
    const int32_t size = e.from == eZFCC_RGB24 ? 3 : 4;
    const Z_VID_PROPS sp = Image(e.from, 2 * kPairs, -kRows, 2 * kPairs * size),
                      tp = Image(e.to, 2 * kPairs, kRows, 4 * kPairs);
    Bytes src(static_cast<size_t>(sp.nRowBytes) * kRows), dst(static_cast<size_t>(tp.nRowBytes) * kRows);
    Spread y, cb, cr;
    for (int r = 0; r < 256; ++r) {
        for (size_t i = 0; i < src.size(); i += static_cast<size_t>(size)) {
            const size_t pixel = i / static_cast<size_t>(size);
            src[i] = static_cast<uint8_t>(pixel / 2 % 256);
            src[i + 1] = static_cast<uint8_t>(pixel / 512);
            src[i + 2] = static_cast<uint8_t>(r);
            if (size == 4) src[i + 3] = static_cast<uint8_t>(pixel * 37);    // of no meaning
        }
        ASSERT_EQ(zck::ConvertSameGeometry(src.data(), dst.data(), &sp, &tp), S_OK);
        const size_t luma = e.lumaFirst ? 0 : 1, chroma = 1 - luma;
        for (size_t i = 0; i < dst.size(); i += 4) {
            const double b = static_cast<double>(i / 4 % 256), g = static_cast<double>(i / 1024);
            y.Take(e.y.Of(r, g, b), dst[i + luma]);
            y.Take(e.y.Of(r, g, b), dst[i + luma + 2]);
            cb.Take(e.cb.Of(r, g, b), dst[i + chroma]);
            cr.Take(e.cr.Of(r, g, b), dst[i + chroma + 2]);
        }
    }
    y.Expect(e.bounds, "Y");
    cb.Expect(e.bounds, "Cb");
    cr.Expect(e.bounds, "Cr");
}

struct Decoder {
    eZFCC from, to;
    bool lumaFirst;
    double luma, redCr, greenCb, greenCr, blueCb;
    Bounds bounds;
};

void WalkMacroPixels(const Decoder &d) {
    const int32_t size = d.to == eZFCC_RGB24 ? 3 : 4;
    const Z_VID_PROPS sp = Image(d.from, 2 * kPairs, kRows, 4 * kPairs),
                      tp = Image(d.to, 2 * kPairs, -kRows, 2 * kPairs * size);
    Bytes src(static_cast<size_t>(sp.nRowBytes) * kRows), dst(static_cast<size_t>(tp.nRowBytes) * kRows);
    const size_t luma = d.lumaFirst ? 0 : 1, chroma = 1 - luma;
    Spread red, green, blue;
    for (int cb = 0; cb < 256; ++cb) {
        for (size_t i = 0; i < src.size(); i += 4) {
            const size_t y = i / 4 % 256;
            src[i + luma] = static_cast<uint8_t>(y);
            src[i + luma + 2] = static_cast<uint8_t>(y * 151);    // another walk over all of them
            src[i + chroma] = static_cast<uint8_t>(cb);
            src[i + chroma + 2] = static_cast<uint8_t>(i / 1024);
        }
        ASSERT_EQ(zck::ConvertSameGeometry(src.data(), dst.data(), &sp, &tp), S_OK);
        const uint8_t *p = dst.data();
        bool opaque = true;
        for (size_t i = 0; i < src.size(); i += 2, p += size) {
            const double y = src[i + luma] - 16.0, u = cb - 128.0, v = static_cast<double>(i / 1024) - 128.0;
            blue.Take(d.luma * y + d.blueCb * u, p[0]);
            green.Take(d.luma * y - d.greenCb * u - d.greenCr * v, p[1]);
            red.Take(d.luma * y + d.redCr * v, p[2]);
            opaque = opaque && (size == 3 || p[3] == 255);
        }
        ASSERT_TRUE(opaque);
    }
    red.Expect(d.bounds, "red");
    green.Expect(d.bounds, "green");
    blue.Expect(d.bounds, "blue");
}

template <class Walk>
void AtBothLevels(Walk &&walk) {
    for (const zck::KernelLevel level : {zck::KernelLevel::Reference, zck::KernelLevel::Avx2}) {
        zck::KernelLevelLimit(level);
        SCOPED_TRACE(level == zck::KernelLevel::Avx2 ? "vector rows" : "reference rows");
        walk();
    }
}

TEST(Accuracy, EveryColourInBt601) {
    AtBothLevels([] {
        WalkColours({eZFCC_RGB32, eZFCC_UYVY, false, kY601, kCb601, kCr601, kNearest});
        WalkColours({eZFCC_RGB32, eZFCC_YUY2, true, kY601, kCb601, kCr601, kNearest});
        WalkColours({eZFCC_RGB24, eZFCC_UYVY, false, kY601, kCb601, kCr601, kNearest});
    });
}

TEST(Accuracy, EveryColourInBt709) {
    AtBothLevels([] { WalkColours({eZFCC_ARGB32, eZFCC_HDYC, false, kY709, kCb709, kCr709, kCut}); });
}

TEST(Accuracy, EveryColourInTheRestOfARowInBt709) {
    constexpr int32_t kTall = 65536;
    const Z_VID_PROPS sp = Image(eZFCC_RGB32, 2, -kTall, 8), tp = Image(eZFCC_HDYC, 2, kTall, 4);
    Bytes src(8 * kTall), dst(4 * kTall);
    Spread y, cb, cr;
    for (int r = 0; r < 256; ++r) {
        for (size_t i = 0; i < src.size(); i += 4) {
            src[i] = static_cast<uint8_t>(i / 8);
            src[i + 1] = static_cast<uint8_t>(i / 8 / 256);
            src[i + 2] = static_cast<uint8_t>(r);
        }
        ASSERT_EQ(zck::ConvertSameGeometry(src.data(), dst.data(), &sp, &tp), S_OK);
        for (size_t i = 0; i < dst.size(); i += 4) {
            const double b = static_cast<double>(i / 4 % 256), g = static_cast<double>(i / 1024);
            const auto block = [&](const Weights &w) { return std::floor(w.Of(r, g, b)); };
            y.Take(block(kY709), dst[i + 1]);
            y.Take(block(kY709), dst[i + 3]);
            cb.Take(block(kCb709), dst[i]);
            cr.Take(block(kCr709), dst[i + 2]);
        }
    }
    const Bounds one = {-1, 1};
    y.Expect(one, "Y");
    cb.Expect(one, "Cb");
    cr.Expect(one, "Cr");
}

TEST(Accuracy, EveryMacroPixelInBt601) {
    AtBothLevels([] {
        WalkMacroPixels({eZFCC_UYVY, eZFCC_RGB32, false, 1.164, 1.596, 0.392, 0.813, 2.017, kNearest});
        WalkMacroPixels({eZFCC_YUY2, eZFCC_RGB24, true, 1.164, 1.596, 0.392, 0.813, 2.017, kNearest});
    });
}

TEST(Accuracy, EveryMacroPixelInBt709) {
    AtBothLevels([] {
        WalkMacroPixels(
            {eZFCC_HDYC, eZFCC_ARGB32, false, 298.0 / 256, 459.0 / 256, 55.0 / 256, 137.0 / 256, 542.0 / 256, kCut});
    });
}

}    // namespace
}    // namespace conformance
