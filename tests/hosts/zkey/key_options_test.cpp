#include "hosts/zkey/key_options.h"

#include <gtest/gtest.h>

#include "hosts/zkey/colours.h"
#include "hosts/zkey/failure.h"

namespace {

using namespace zkey;

KeyOptions Green() {
    KeyOptions o;
    o.AddColour("00B140");
    return o;
}

TEST(Colours, NamesAndDigits) {
    EXPECT_EQ(ParseColour("green"), 0x00B140U);
    EXPECT_EQ(ParseColour("Blue"), 0x0047BBU);
    EXPECT_EQ(ParseColour("12abEF"), 0x12ABEFU);
    EXPECT_EQ(ParseColour("#12abEF"), 0x12ABEFU);
    EXPECT_EQ(ParseColour("0x12abEF"), 0x12ABEFU);
    for (const char *bad : {"", "12345", "1234567", "grün", "#", "-12345", "0x0x12"}) EXPECT_FALSE(ParseColour(bad)) << bad;
    EXPECT_EQ(ColourText(0x0A0B0C), "0A0B0C");
}

TEST(KeyValue, EachTypeHasItsOwnByteOrder) {
    // Red in the low byte.
    EXPECT_EQ(KeyValue(eCKT_RGB, 0x102030), 0x302010);
    // Hue 120 degrees is 85 of 255; full saturation, half lightness.
    EXPECT_EQ(KeyValue(eCKT_HLS, 0x00FF00), 85 | (128 << 8) | (255 << 16));
    EXPECT_EQ(KeyValue(eCKT_HLS, 0x0000FF), 170 | (128 << 8) | (255 << 16));
    EXPECT_EQ(KeyValue(eCKT_HLS, 0x808080), 0 | (128 << 8) | (0 << 16));
    // Luma with the weights of red and blue exchanged: 0.114 red, 0.587 green, 0.299 blue.
    EXPECT_EQ(KeyValue(eCKT_YUV, 0xFF0000) & 255, (7471 * 255) >> 16);
    EXPECT_EQ(KeyValue(eCKT_YUV, 0x00FF00) & 255, (38470 * 255) >> 16);
    EXPECT_EQ(KeyValue(eCKT_YUV, 0x0000FF) & 255, (19595 * 255) >> 16);
    // Grey has no colour difference.
    EXPECT_EQ(KeyValue(eCKT_YUV, 0x808080), 128 | (128 << 8) | (128 << 16));
    // Red is on the side of U, blue on the side of V.
    EXPECT_GT((KeyValue(eCKT_YUV, 0xFF0000) >> 8) & 255, 235);
    EXPECT_GT((KeyValue(eCKT_YUV, 0x0000FF) >> 16) & 255, 235);
}

TEST(KeyOptions, ColoursTakeTheOptionsThatFollowThem) {
    KeyOptions o;
    o.SetType("rgb");
    o.AddColour("000001");
    o.SetTolerance("10");
    o.SetSoftness("5");
    o.AddColour("000002");
    o.SetReverse();
    o.SetTolerance("1,2,3");
    o.SetField("nAlpha=9");
    o.SetField("nEdgesSmooth=3");
    const CHROMA_KEY_RAW k = BuildKey(o, {});
    EXPECT_EQ(k.eType, eCKT_RGB);
    ASSERT_EQ(k.nKeysUsed, 2);
    EXPECT_EQ(k.arrKeys[0].nValue, 0x010000);
    EXPECT_EQ(k.arrKeys[0].nDelta, 0x0A0A0A);
    EXPECT_EQ(k.arrKeys[0].nSmoothRange, 5);
    EXPECT_EQ(k.arrKeys[0].nReverseKey, 0);
    EXPECT_EQ(k.arrKeys[0].nAlpha, 0);
    EXPECT_EQ(k.arrKeys[1].nDelta, 0x030201);
    EXPECT_EQ(k.arrKeys[1].nSmoothRange, kDefaultSoftness);
    EXPECT_EQ(k.arrKeys[1].nReverseKey, 1);
    EXPECT_EQ(k.arrKeys[1].nAlpha, 9);
    EXPECT_EQ(k.nEdgesSmooth, 3);
}

TEST(KeyOptions, OneToleranceIsSpreadByTheTypeWhereverItStands) {
    KeyOptions o;
    o.SetTolerance("30");
    o.AddColour("green");
    EXPECT_EQ(BuildKey(o, {}).arrKeys[0].nDelta, 60 | (30 << 8) | (30 << 16));
    o.SetType("HLS");
    EXPECT_EQ(BuildKey(o, {}).arrKeys[0].nDelta, 30 | (60 << 8) | (60 << 16));
    EXPECT_EQ(BuildKey(o, {}).nKeysUsed, 1);
    EXPECT_EQ(SpreadTolerance(eCKT_YUV, 200)[0], 255);
}

TEST(KeyOptions, ZeroToleranceStaysAKey) {
    KeyOptions o = Green();
    o.SetTolerance("0");
    EXPECT_EQ(BuildKey(o, {}).arrKeys[0].nDelta, 0x010101);
}

TEST(KeyOptions, EveryFieldOfTheRecordCanBeSet) {
    KeyOptions o = Green();
    const char *names[] = {"nMinTransparent",  "nMaxTransparent", "nEdgesSmooth", "bColorCancel",
                           "nInterlacedVideo", "nInverseKey",     "nValue",       "nDelta",
                           "nSmoothRange",     "nAlpha",          "nCancelRange", "nCancelPower",
                           "nCancelChroma",    "nCancelLuma",     "nCancelAlpha", "nReverseKey"};
    int32_t value = 100;
    for (const char *name : names) o.SetField(std::string(name) + "=" + std::to_string(value++));
    const CHROMA_KEY_RAW k = BuildKey(o, {});
    const SINGLE_KEY &e = k.arrKeys[0];
    const int32_t read[] = {k.nMinTransparent,  k.nMaxTransparent, k.nEdgesSmooth, k.bColorCancel,
                            k.nInterlacedVideo, k.nInverseKey,     e.nValue,       e.nDelta,
                            e.nSmoothRange,     e.nAlpha,          e.nCancelRange, e.nCancelPower,
                            e.nCancelChroma,    e.nCancelLuma,     e.nCancelAlpha, e.nReverseKey};
    value = 100;
    for (const int32_t r : read) EXPECT_EQ(r, value++);
}

TEST(KeyOptions, TheScreenFillsInWhereNoColourWasGiven) {
    const std::vector<ScreenKey> screen{{0x20C040, {50, 20, 21}, 33}};
    KeyOptions none;
    none.SetSpill("0");
    EXPECT_TRUE(none.NeedsScreen());
    CHROMA_KEY_RAW k = BuildKey(none, screen);
    ASSERT_EQ(k.nKeysUsed, 1);
    EXPECT_EQ(k.arrKeys[0].nValue, KeyValue(eCKT_YUV, 0x20C040));
    EXPECT_EQ(k.arrKeys[0].nDelta, 50 | (20 << 8) | (21 << 16));
    EXPECT_EQ(k.arrKeys[0].nSmoothRange, 33);

    KeyOptions softer;
    softer.SetSpill("0");
    softer.SetSoftness("80");
    EXPECT_TRUE(softer.NeedsScreen());
    k = BuildKey(softer, screen);
    EXPECT_EQ(k.nKeysUsed, 1);
    EXPECT_EQ(k.arrKeys[0].nSmoothRange, 80);
    EXPECT_EQ(k.arrKeys[0].nDelta, 50 | (20 << 8) | (21 << 16));

    KeyOptions onlyProtected;
    onlyProtected.SetSpill("0");
    onlyProtected.AddColour("red");
    onlyProtected.SetReverse();
    EXPECT_TRUE(onlyProtected.NeedsScreen());
    k = BuildKey(onlyProtected, screen);
    ASSERT_EQ(k.nKeysUsed, 2);
    EXPECT_EQ(k.arrKeys[0].nReverseKey, 0);
    EXPECT_EQ(k.arrKeys[1].nReverseKey, 1);

    // A screen in parts takes an entry for each.
    const std::vector<ScreenKey> parts{{0x208040, {10, 11, 12}, 33}, {0x20C040, {50, 20, 21}, 33}};
    k = BuildKey(softer, parts);
    ASSERT_EQ(k.nKeysUsed, 2);
    EXPECT_EQ(k.arrKeys[0].nDelta, 10 | (11 << 8) | (12 << 16));
    EXPECT_EQ(k.arrKeys[1].nSmoothRange, 80);
    EXPECT_EQ(BuildKey(onlyProtected, parts).nKeysUsed, 3);

    EXPECT_FALSE(Green().NeedsScreen());
    KeyOptions plain;
    plain.SetType("alpha");
    EXPECT_FALSE(plain.NeedsScreen());
    KeyOptions byNumber;
    byNumber.SetField("nValue=0x102030");
    EXPECT_FALSE(byNumber.NeedsScreen());
}

TEST(KeyOptions, SpillIsForFoundScreensUnlessSaid) {
    const std::vector<ScreenKey> screen{{0x20C040, {50, 20, 21}, 33}};
    KeyOptions o;
    CHROMA_KEY_RAW k = BuildKey(o, screen);
    EXPECT_EQ(k.bColorCancel, 1);
    ASSERT_EQ(k.nKeysUsed, 2);
    EXPECT_EQ(k.arrKeys[0].nAlpha, 255);
    EXPECT_EQ(k.arrKeys[0].nCancelPower, 16);
    EXPECT_EQ(k.arrKeys[1].nCancelPower, 0);
    EXPECT_EQ(k.arrKeys[1].nValue, KeyValue(eCKT_YUV, 0x20C040));
    o.SetSpill("0");
    k = BuildKey(o, screen);
    EXPECT_EQ(k.bColorCancel, 0);
    EXPECT_EQ(k.nKeysUsed, 1);

    KeyOptions given = Green();
    EXPECT_EQ(BuildKey(given, {}).bColorCancel, 0);
    given.SetSpill("100:0:50");
    given.AddColour("red");
    given.SetReverse();
    k = BuildKey(given, {});
    EXPECT_EQ(k.bColorCancel, 1);
    ASSERT_EQ(k.nKeysUsed, 3);
    EXPECT_EQ(k.arrKeys[0].nCancelPower, 64);
    EXPECT_EQ(k.arrKeys[2].nReverseKey, 1);
    given.SetField("bColorCancel=2");
    EXPECT_EQ(BuildKey(given, {}).bColorCancel, 2);
    EXPECT_THROW(given.SetSpill("101"), Failure);
}

TEST(KeyOptions, SixteenColoursAndNoMore) {
    KeyOptions o;
    for (int i = 0; i < 16; ++i) o.AddColour("10203" + std::to_string(i % 10));
    EXPECT_EQ(BuildKey(o, {}).nKeysUsed, 16);
    EXPECT_THROW(o.AddColour("green"), Failure);
    o.SetSpill("10");
    EXPECT_THROW(BuildKey(o, {}), Failure);
}

TEST(KeyOptions, NonsenseIsAUsageError) {
    const auto refuses = [](auto act) {
        KeyOptions o;
        try {
            act(o);
        } catch (const Failure &f) {
            return f.Status() == kExitUsage;
        }
        return false;
    };
    EXPECT_TRUE(refuses([](KeyOptions &o) { o.AddColour("gren"); }));
    EXPECT_TRUE(refuses([](KeyOptions &o) { o.SetTolerance("300"); }));
    EXPECT_TRUE(refuses([](KeyOptions &o) { o.SetTolerance("1,2"); }));
    EXPECT_TRUE(refuses([](KeyOptions &o) { o.SetTolerance("1,2,3,4"); }));
    EXPECT_TRUE(refuses([](KeyOptions &o) { o.SetSoftness("-1"); }));
    EXPECT_TRUE(refuses([](KeyOptions &o) { o.SetType("LAB"); }));
    EXPECT_TRUE(refuses([](KeyOptions &o) { o.SetField("nEdgesSmooth"); }));
    EXPECT_TRUE(refuses([](KeyOptions &o) { o.SetField("nEdges=1"); }));
    EXPECT_TRUE(refuses([](KeyOptions &o) { o.SetField("nAlpha=many"); }));
}

}    // namespace
