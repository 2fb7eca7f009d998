// Keyed frames, byte for byte: what the plug-in hands out against a plain scalar walk through the same arithmetic.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "tests/road/keyer.h"
#include "tests/road/scalar_walk.h"

namespace zck {
namespace {

using Bytes = std::vector<uint8_t>;

Z_VID_PROPS PropsOf(int width, int height, eZInterlace interlace = eZI_Progressive, int padding = 0) {
    Z_VID_PROPS props{};
    props.fccType = eZFCC_ARGB32;
    props.nWidth = width;
    props.nHeight = height;
    props.nRowBytes = 4 * (width + padding);
    props.eInterlace = interlace;
    return props;
}

/// Soft discs of subject colour over an uneven screen, with noise; the fourth byte is noise too.
Bytes Picture(const Z_VID_PROPS &props, uint32_t seed) {
    std::mt19937 random(seed);
    const int height = std::abs(props.nHeight);
    Bytes pixels(static_cast<std::size_t>(props.nRowBytes) * static_cast<std::size_t>(height));
    const int cx = props.nWidth / 2;
    const int cy = height / 2;
    const int radius = std::max(1, std::min(props.nWidth, height) / 3);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < props.nRowBytes / 4; ++x) {
            const int d = ((x - cx) * (x - cx) + (y - cy) * (y - cy)) * 255 / (radius * radius);
            const int subject = std::max(0, 255 - d / 2);
            auto *p = &pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(props.nRowBytes) +
                              4 * static_cast<std::size_t>(x)];
            const int noise = static_cast<int>(random() % 25) - 12;
            const auto mix = [&](int screen, int skin) {
                return static_cast<uint8_t>(std::clamp((screen * (255 - subject) + skin * subject) / 255 + noise, 0, 255));
            };
            p[0] = mix(50, 120);
            p[1] = mix(180 - 40 * x / std::max(1, props.nWidth), 140);
            p[2] = mix(40, 210);
            p[3] = static_cast<uint8_t>(random());
        }
    return pixels;
}

/// The picture as the clone holds it: a bottom-up frame is turned upright, into rows without padding.
Bytes Upright(Z_VID_PROPS *props, const Bytes &picture) {
    if (props->nHeight < 0) return picture;
    const auto height = static_cast<std::size_t>(props->nHeight);
    const auto from = static_cast<std::size_t>(props->nRowBytes);
    const auto to = 4 * static_cast<std::size_t>(props->nWidth);
    Bytes upright(to * height);
    for (std::size_t y = 0; y < height; ++y) std::memcpy(&upright[y * to], &picture[(height - 1 - y) * from], to);
    props->nHeight = -props->nHeight;
    props->nRowBytes = static_cast<int32_t>(to);
    return upright;
}

CHROMA_KEY_RAW GreenKey(eCK_Type type) {
    CHROMA_KEY_RAW key{};
    key.eType = type;
    key.nKeysUsed = 1;
    SINGLE_KEY &k = key.arrKeys[0];
    switch (type) {
        case eCKT_HLS:
            k.nValue = 0x00806858;
            k.nDelta = 0x00502818;
            break;
        case eCKT_YUV:
            k.nValue = 0x00505870;
            k.nDelta = 0x00202838;
            break;
        default:
            k.nValue = 0x0032A028;
            k.nDelta = 0x00283828;
    }
    k.nSmoothRange = 24;
    key.nMaxTransparent = 255;
    return key;
}

struct Case {
    std::string name;
    CHROMA_KEY_RAW key;
};

std::vector<Case> Keys() {
    std::vector<Case> cases;
    for (const eCK_Type type : {eCKT_RGB, eCKT_HLS, eCKT_YUV}) {
        cases.push_back({"plain " + std::to_string(type), GreenKey(type)});
        CHROMA_KEY_RAW key = GreenKey(type);
        key.nMinTransparent = 40;
        key.nMaxTransparent = 230;
        key.nEdgesSmooth = 3;
        cases.push_back({"adjusted " + std::to_string(type), key});
    }
    CHROMA_KEY_RAW key = GreenKey(eCKT_RGB);
    key.nKeysUsed = 20;
    for (int i = 1; i < 16; ++i) {
        key.arrKeys[i] = key.arrKeys[0];
        key.arrKeys[i].nValue = 0x00102030 + i * 0x00070B0D;
        key.arrKeys[i].nAlpha = i * 17;
        key.arrKeys[i].nReverseKey = i % 4 == 3;
    }
    key.arrKeys[2].nDelta = 0;
    key.arrKeys[5].nDelta = 0x000000FF;
    cases.push_back({"sixteen keys", key});
    for (int smooth : {1, 2}) {
        key = GreenKey(eCKT_RGB);
        key.nEdgesSmooth = smooth;
        key.nInverseKey = 1;
        cases.push_back({"inverse, smooth " + std::to_string(smooth), key});
    }
    key = GreenKey(eCKT_RGB);
    key.nInverseKey = 1;
    key.arrKeys[0].nAlpha = 30;
    cases.push_back({"inverse, lifted floor", key});
    key = GreenKey(eCKT_RGB);
    key.nMaxTransparent = 0;
    cases.push_back({"hard", key});
    key = GreenKey(eCKT_RGB);
    key.nMinTransparent = 200;
    key.nMaxTransparent = 100;
    cases.push_back({"crossed thresholds", key});
    key = GreenKey(eCKT_RGB);
    key.nEdgesSmooth = -2;
    cases.push_back({"negative smoothing", key});
    key = GreenKey(eCKT_RGB);
    key.nKeysUsed = -5;
    cases.push_back({"no keys", key});
    key = GreenKey(eCKT_RGB);
    key.nKeysUsed = 3;
    key.arrKeys[1] = key.arrKeys[2] = key.arrKeys[0];
    key.arrKeys[1].nReverseKey = key.arrKeys[2].nReverseKey = 1;
    key.arrKeys[2].nValue = 0x00503020;
    key.nEdgesSmooth = 2;
    cases.push_back({"two reverse keys", key});
    return cases;
}

void Compare(Keyer &keyer, const Z_VID_PROPS &props, const Case &test, int threads, Bytes *plane) {
    SCOPED_TRACE(test.name + ", " + std::to_string(props.nWidth) + "x" + std::to_string(props.nHeight) + ", row " +
                 std::to_string(props.nRowBytes) + ", interlace " + std::to_string(props.eInterlace) + ", threads " +
                 std::to_string(threads));
    const Bytes picture = Picture(props, static_cast<uint32_t>(props.nWidth * 31 + threads));
    Z_VID_PROPS clone = props;
    Bytes expected = Upright(&clone, picture);
    plane->resize(expected.size() / 4);
    const HRESULT status = walk::KeyFrame(expected, *plane, clone, test.key, threads);
    Bytes keyed;
    keyer.KeySet(test.key);
    const HRESULT hr = keyer.Run(props, picture, &keyed);
    if (status < 0) {
        EXPECT_EQ(hr, status);
        return;
    }
    ASSERT_EQ(hr, S_OK);
    ASSERT_EQ(keyed.size(), expected.size());
    for (std::size_t i = 0; i < keyed.size(); ++i)
        ASSERT_EQ(keyed[i], expected[i]) << "byte " << i << ", row " << i / static_cast<std::size_t>(clone.nRowBytes)
                                         << ", column " << i % static_cast<std::size_t>(clone.nRowBytes) / 4;
}

/// Every key over one picture and one keyer, so that each frame meets the plane that the one before left.
void CompareAll(const Z_VID_PROPS &props, int threads) {
    Keyer keyer;
    keyer.Set("process.threads", std::to_string(threads));
    Bytes plane;
    for (const Case &test : Keys()) Compare(keyer, props, test, threads, &plane);
}

TEST(KeyedFrames, EveryThreadCount) {
    for (int threads = 1; threads <= 16; ++threads) CompareAll(PropsOf(70, -37), threads);
}

TEST(KeyedFrames, EveryWidthClass) {
    for (int width = 1; width <= 49; ++width)
        for (const int threads : {1, 2, 3}) CompareAll(PropsOf(width, -9), threads);
}

TEST(KeyedFrames, EveryHeightClass) {
    for (int height = 1; height <= 12; ++height)
        for (const int threads : {1, 2, 5}) CompareAll(PropsOf(33, height), threads);
}

TEST(KeyedFrames, Fields) {
    for (const eZInterlace interlace : {eZI_Field1First, eZI_Field2First})
        for (const int threads : {1, 2, 3, 7})
            for (const int width : {16, 30, 45, 64})
                for (const int height : {-24, 25, -5, 3}) CompareAll(PropsOf(width, height, interlace), threads);
}

TEST(KeyedFrames, PaddedRowsAndBothRowOrders) {
    for (const int padding : {1, 3, 16})
        for (const int height : {-18, 18})
            for (const int threads : {1, 4}) CompareAll(PropsOf(38, height, eZI_Progressive, padding), threads);
}

TEST(KeyedFrames, ALargerPicture) {
    for (const int threads : {1, 2, 16}) CompareAll(PropsOf(720, -243), threads);
}

}    // namespace
}    // namespace zck
