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
    EXPECT_EQ(k.arrKeys[1].nSmoothRange, 4);
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

TEST(KeyOptions, EveryFieldOfTheRecordCanBeSetWithinItsRange) {
    const struct {
        const char *name;
        int32_t least;
        int32_t most;
        int32_t CHROMA_KEY_RAW::*ofRecord;
        int32_t SINGLE_KEY::*ofEntry;
    } fields[] = {{"nMinTransparent", 0, 255, &CHROMA_KEY_RAW::nMinTransparent, nullptr},
                  {"nMaxTransparent", 0, 255, &CHROMA_KEY_RAW::nMaxTransparent, nullptr},
                  {"nEdgesSmooth", 0, 100, &CHROMA_KEY_RAW::nEdgesSmooth, nullptr},
                  {"bColorCancel", 0, 2, &CHROMA_KEY_RAW::bColorCancel, nullptr},
                  {"nInterlacedVideo", 0, 1, &CHROMA_KEY_RAW::nInterlacedVideo, nullptr},
                  {"nInverseKey", 0, 3, &CHROMA_KEY_RAW::nInverseKey, nullptr},
                  {"nValue", 0, 0xFFFFFF, nullptr, &SINGLE_KEY::nValue},
                  {"nDelta", 0, 0xFFFFFF, nullptr, &SINGLE_KEY::nDelta},
                  {"nSmoothRange", 0, 255, nullptr, &SINGLE_KEY::nSmoothRange},
                  {"nAlpha", 0, 255, nullptr, &SINGLE_KEY::nAlpha},
                  {"nCancelRange", 0, 255, nullptr, &SINGLE_KEY::nCancelRange},
                  {"nCancelPower", -255, 255, nullptr, &SINGLE_KEY::nCancelPower},
                  {"nCancelChroma", -255, 255, nullptr, &SINGLE_KEY::nCancelChroma},
                  {"nCancelLuma", -255, 255, nullptr, &SINGLE_KEY::nCancelLuma},
                  {"nCancelAlpha", -255, 255, nullptr, &SINGLE_KEY::nCancelAlpha},
                  {"nReverseKey", 0, 1, nullptr, &SINGLE_KEY::nReverseKey}};
    for (const auto &f : fields) {
        SCOPED_TRACE(f.name);
        const std::string name = std::string(f.name) + "=";
        for (const int32_t value : {f.least, f.most}) {
            KeyOptions o = Green();
            o.SetField(name + std::to_string(value));
            const CHROMA_KEY_RAW k = BuildKey(o, {});
            EXPECT_EQ(f.ofRecord != nullptr ? k.*f.ofRecord : k.arrKeys[0].*f.ofEntry, value);
        }
        EXPECT_THROW(Green().SetField(name + std::to_string(f.least - 1)), Failure);
        EXPECT_THROW(Green().SetField(name + std::to_string(f.most + 1)), Failure);
    }
}

TEST(KeyOptions, SoftnessCanBeChangedFromWhatWasFound) {
    const std::vector<ScreenKey> parts{{0x208040, {10, 11, 12}, 33}, {0x20C040, {50, 20, 21}, 250}};
    KeyOptions o;
    o.SetSoftness("+10");
    EXPECT_EQ(KeyText(o, parts), "-c 208040 -t 10,11,12 -s 43 -c 20C040 -t 50,20,21 -s 255 --spill 25");
    o.SetSoftness("-40");
    EXPECT_EQ(BuildKey(o, parts).arrKeys[BuildKey(o, parts).nKeysUsed - 2].nSmoothRange, 0);
    KeyOptions given = Green();
    given.SetSoftness("-5");
    EXPECT_EQ(BuildKey(given, {}).arrKeys[0].nSmoothRange, kDefaultSoftness - 5);
    EXPECT_THROW(o.SetSoftness("+256"), Failure);
    EXPECT_THROW(o.SetSoftness("+-1"), Failure);
}

TEST(KeyOptions, AProtectedColourIsLessSoftUnlessSaid) {
    const auto softness = [](auto act) {
        KeyOptions o = Green();
        act(o);
        return BuildKey(o, {}).arrKeys[0].nSmoothRange;
    };
    EXPECT_EQ(softness([](KeyOptions &) {}), 40);
    EXPECT_EQ(softness([](KeyOptions &o) { o.SetReverse(); }), 4);
    EXPECT_EQ(softness([](KeyOptions &o) { o.SetField("nReverseKey=1"); }), 4);
    EXPECT_EQ(softness([](KeyOptions &o) {
                  o.SetReverse();
                  o.SetSoftness("40");
              }),
              40);
    EXPECT_EQ(softness([](KeyOptions &o) {
                  o.SetSoftness("+6");
                  o.SetReverse();
              }),
              10);
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
    EXPECT_TRUE(refuses([](KeyOptions &o) { o.SetSoftness("--1"); }));
    EXPECT_TRUE(refuses([](KeyOptions &o) { o.SetType("LAB"); }));
    EXPECT_TRUE(refuses([](KeyOptions &o) { o.SetField("nEdgesSmooth"); }));
    EXPECT_TRUE(refuses([](KeyOptions &o) { o.SetField("nEdges=1"); }));
    EXPECT_TRUE(refuses([](KeyOptions &o) { o.SetField("nAlpha=many"); }));
}

}    // namespace
