#include "hosts/zkey/spill.h"

#include <gtest/gtest.h>

#include <string>

#include "hosts/zkey/failure.h"
#include "hosts/zkey/key_options.h"

namespace {

using namespace zkey;

SINGLE_KEY Key(int32_t y, int32_t u, int32_t v, int32_t tolerance, int32_t softness) {
    SINGLE_KEY k{};
    k.nValue = y | (u << 8) | (v << 16);
    k.nDelta = tolerance | (tolerance << 8) | (tolerance << 16);
    k.nSmoothRange = softness;
    return k;
}

int32_t ByteOf(int32_t value, int channel) { return (value >> (8 * channel)) & 255; }

TEST(Spill, TextsAreReadInAllTheirForms) {
    const struct {
        const char *text;
        int32_t power, chroma, luma;
        const char *shortest;
    } cases[] = {{"25", 25, 50, 0, "25"},     {"25:50:0", 25, 50, 0, "25"},  {"0", 0, 0, 0, "0"},
                 {"100", 100, 100, 0, "100"}, {"60:20", 60, 20, 0, "60:20"}, {"10:20:30", 10, 20, 30, "10:20:30"},
                 {"0x10", 16, 32, 0, "16"},   {"0:40", 0, 40, 0, "0:40"},    {"0:0:9", 0, 0, 9, "0:0:9"}};
    for (const auto &c : cases) {
        const Spill s = ParseSpill(c.text);
        EXPECT_EQ(s.power, c.power) << c.text;
        EXPECT_EQ(s.chroma, c.chroma) << c.text;
        EXPECT_EQ(s.luma, c.luma) << c.text;
        EXPECT_EQ(SpillText(s), c.shortest) << c.text;
    }
    EXPECT_EQ(SpillText({}), "25");
}

TEST(Spill, NonsenseIsAUsageErrorThatNamesIt) {
    for (const char *bad :
         {"", "101", "-1", "much", "10:", ":10", "10:101", "10:20:", "10:20:30:40", "10,20", "1.5", "10: 20"}) {
        try {
            ParseSpill(bad);
            ADD_FAILURE() << bad;
        } catch (const Failure &f) {
            EXPECT_EQ(f.Status(), kExitUsage) << bad;
            EXPECT_NE(std::string(f.what()).find(std::string("--spill ") + bad), std::string::npos) << f.what();
            EXPECT_NE(std::string(f.what()).find("POWER[:CHROMA[:LUMA]]"), std::string::npos) << f.what();
        }
    }
}

TEST(Spill, PercentBecomesTheUnitsOfTheKey) {
    const std::vector<SINGLE_KEY> keys{Key(120, 60, 60, 10, 20)};
    // All of the power takes the key's whole chroma off: 64 at a mask of 255 is one. It lightens, and a part goes back in luma.
    SINGLE_KEY e = *SpillEntry(eCKT_YUV, keys, {100, 100, 100});
    EXPECT_EQ(e.nCancelPower, 64);
    EXPECT_EQ(e.nCancelChroma, -32);
    EXPECT_EQ(e.nCancelLuma, -64 - 16);
    e = *SpillEntry(eCKT_YUV, keys, {25, 50, 0});
    EXPECT_EQ(e.nCancelPower, 16);
    EXPECT_EQ(e.nCancelChroma, -16);
    EXPECT_EQ(e.nCancelLuma, -4);
    EXPECT_EQ(e.nAlpha, 255);    // cuts nothing out
    EXPECT_EQ(e.nReverseKey, 0);
    EXPECT_FALSE(SpillEntry(eCKT_YUV, keys, {0, 0, 0}));
    EXPECT_TRUE(SpillEntry(eCKT_YUV, keys, {0, 1, 0}));
}

TEST(Spill, ReachesAsFarIntoTheTranslucentColoursAsThePowerSays) {
    // The ramp of a tolerance of 10 and a softness of 20 ends at 30.
    const std::vector<SINGLE_KEY> keys{Key(120, 20, 20, 10, 20)};
    EXPECT_EQ(SpillEntry(eCKT_YUV, keys, {100, 0, 0})->nDelta, 30 | (30 << 8) | (30 << 16));
    EXPECT_EQ(SpillEntry(eCKT_YUV, keys, {0, 50, 0})->nDelta, 10 | (10 << 8) | (10 << 16));
    // A quarter of the ramp's square: sqrt(1 + (9 - 1) / 4) times the tolerance.
    EXPECT_EQ(ByteOf(SpillEntry(eCKT_YUV, keys, {25, 0, 0})->nDelta, 1), 17);
    EXPECT_EQ(SpillEntry(eCKT_YUV, keys, {25, 0, 0})->nCancelRange, 0);
}

TEST(Spill, NeverReachesGrey) {
    for (const eCK_Type type : {eCKT_YUV, eCKT_RGB, eCKT_HLS}) {
        for (const uint32_t colour : {0x00B140U, 0x9EDC82U, 0x6E8278U, 0x0047BBU}) {
            SINGLE_KEY k = Key(0, 0, 0, 40, 60);
            k.nValue = KeyValue(type, colour);
            const SINGLE_KEY e = *SpillEntry(type, {k}, {100, 0, 0});
            const int32_t grey =
                KeyValue(type, 0x010101U * ((2 * (colour >> 16) + 5 * ((colour >> 8) & 255) + (colour & 255)) / 8));
            double sum = 0;
            for (int c = 0; c < 3; ++c) {
                const bool free = (type == eCKT_HLS && c == 0) || (type != eCKT_RGB && c == (type == eCKT_HLS ? 1 : 0));
                const double distance = free ? 0 : ByteOf(grey, c) - ByteOf(e.nValue, c);
                const double half = std::max(ByteOf(e.nDelta, c) + e.nCancelRange, 1);
                sum += distance * distance / half / half;
            }
            EXPECT_GE(sum, 1.4) << type << " " << std::hex << colour;
        }
    }
}

TEST(Spill, OneEntryServesTheScreenAndLeavesOtherColoursAlone) {
    SINGLE_KEY reverse = Key(0, 0, 0, 50, 50);
    reverse.nReverseKey = 1;
    SINGLE_KEY idle = Key(200, 200, 200, 50, 0);
    idle.nAlpha = 255;
    const std::vector<SINGLE_KEY> keys{reverse, idle, Key(100, 20, 20, 10, 0), Key(110, 24, 20, 10, 0),
                                       Key(100, 200, 200, 10, 0)};
    const SINGLE_KEY e = *SpillEntry(eCKT_YUV, keys, {25, 50, 0});
    // From 90 to 120, from 10 to 34, from 10 to 30.
    EXPECT_EQ(e.nValue, 105 | (22 << 8) | (20 << 16));
    EXPECT_EQ(e.nDelta, 15 | (12 << 8) | (10 << 16));
    EXPECT_FALSE(SpillEntry(eCKT_YUV, {reverse, idle}, {25, 50, 0}));
}

}    // namespace
