#include "keying/spill/spill_colour.h"

#include <gtest/gtest.h>

#include <array>

#include "tests/keying/spill/witness.h"

namespace zck {
namespace {

using Bytes = std::array<int, 3>;

Bytes BytesOf(KeyBytes k) { return {k.b[0], k.b[1], k.b[2]}; }

CHROMA_KEY_RAW KeyOf(eCK_Type type, int32_t value) {
    CHROMA_KEY_RAW key = {};
    key.eType = type;
    key.nKeysUsed = 1;
    key.arrKeys[0].nValue = value;
    return key;
}

Bytes WordOf(eCK_Type type, int32_t value) {
    const SpillColour c = SpillColourOf(KeyOf(type, value));
    return {c.y, c.u, c.v};
}

TEST(SpillColour, KeyWordOfPlainColours) {
    EXPECT_EQ(WordOf(eCKT_RGB, 0x0000FF00), (Bytes{145, 54, 34}));      // 144.52, 53.795, 34.16
    EXPECT_EQ(WordOf(eCKT_RGB, 0x00FF0000), (Bytes{41, 240, 110}));     // 40.99, 239.945, 109.895
    EXPECT_EQ(WordOf(eCKT_RGB, 0x000000FF), (Bytes{82, 90, 240}));      // 81.535, 90.26, 239.945
    EXPECT_EQ(WordOf(eCKT_RGB, 0x00FFFFFF), (Bytes{235, 128, 128}));    // 235.045
    EXPECT_EQ(WordOf(eCKT_RGB, 0), (Bytes{16, 128, 128}));
}

TEST(SpillColour, TheTopByteOfTheValueIsNotUsed) {
    EXPECT_EQ(WordOf(eCKT_RGB, static_cast<int32_t>(0xFF00FF00)), (Bytes{145, 54, 34}));
}

TEST(SpillColour, HlsOfGreen) { EXPECT_EQ(BytesOf(HlsToRgb({{85, 128, 255}})), (Bytes{1, 255, 1})); }

TEST(SpillColour, HlsWithoutSaturationIsGrey) { EXPECT_EQ(BytesOf(HlsToRgb({{200, 77, 0}})), (Bytes{77, 77, 77})); }

TEST(SpillColour, HlsOnEachSideOfTheCircle) {
    // Lightness at most a half: m2 = (1 + s) * l = 200 / 255 and m1 = 0 with s of 1 and l of 100 / 255.
    EXPECT_EQ(BytesOf(HlsToRgb({{0, 100, 255}})), (Bytes{200, 0, 0}));      // 0 degrees; byte 2 at 240
    EXPECT_EQ(BytesOf(HlsToRgb({{255, 100, 255}})), (Bytes{200, 0, 0}));    // 360 degrees; byte 0 at 120
    EXPECT_EQ(BytesOf(HlsToRgb({{170, 100, 255}})), (Bytes{0, 0, 200}));    // 240 degrees; byte 0 at 360, not below 240
    // 30 degrees, 21.25 of 255: 21 is 29.647 degrees, byte 1 = 200 * 29.647 / 60 = 98.8.
    EXPECT_EQ(BytesOf(HlsToRgb({{21, 100, 255}})), (Bytes{200, 99, 0}));
}

TEST(SpillColour, YuvRuleShiftsDownAndClips) {
    EXPECT_EQ(BytesOf(YuvToRgb({{128, 128, 128}})), (Bytes{128, 128, 128}));
    EXPECT_EQ(BytesOf(YuvToRgb({{145, 54, 34}})), (Bytes{37, 228, 0}));    // 37.84, 228.77, -5.4
    EXPECT_EQ(BytesOf(YuvToRgb({{250, 255, 255}})), (Bytes{255, 126, 255}));
}

TEST(SpillColour, YuvKeysHaveRedAndBlueExchanged) {
    const SpillColour c = SpillColourOf(KeyOf(eCKT_YUV, 145 | 54 << 8 | 34 << 16));
    EXPECT_EQ(BytesOf(c.rgb), (Bytes{0, 228, 37}));
}

TEST(SpillColour, AllHlsAndYuvColoursAsTheWitnessHasThem) {
    for (const eCK_Type type : {eCKT_HLS, eCKT_YUV, eCKT_RGB}) {
        for (int32_t i = 0; i < 1 << 18; ++i) {
            // All high bits of each byte, and all low ones.
            const int32_t value = (i & 63) * 0x41 / 16 | ((i >> 6) & 63) * 0x41 / 16 << 8 | ((i >> 12) & 63) * 0x41 / 16 << 16;
            const CHROMA_KEY_RAW key = KeyOf(type, value);
            const SpillColour c = SpillColourOf(key);
            const test::WitnessKeyWord w = test::WitnessColour(key);
            ASSERT_EQ((std::array<int, 6>{c.rgb.b[0], c.rgb.b[1], c.rgb.b[2], c.y, c.u, c.v}),
                      (std::array<int, 6>{w.r, w.g, w.b, w.y, w.u, w.v}))
                << "type " << type << ", value " << value;
        }
    }
}

}    // namespace
}    // namespace zck
