// Picks and rectangles.
#include "tests/keyobject/key_fixture.h"
#include "tests/keyobject/own_frame.h"

namespace zck::test {
namespace {

uint32_t Numbered(int x, int y) { return 0xFF000000u | static_cast<uint32_t>(y) << 8 | static_cast<uint32_t>(x); }

/// Red, green, blue as an RGB key has them.
int32_t KeyValue(uint32_t pixel) {
    return static_cast<int32_t>((pixel & 0xFF00FF00) | (pixel >> 16 & 0xFF) | (pixel & 0xFF) << 16);
}

class Points : public KeyTest {
protected:
    int32_t Value(int entry) const { return Raw().arrKeys[entry].nValue; }
    int32_t Delta(int entry) const { return Raw().arrKeys[entry].nDelta; }
    int32_t Keys() const { return Raw().nKeysUsed; }
    void SetPicture(const Picture &picture) { ASSERT_EQ(m_key->KeyFrameSet(Frame(32, 16, picture).get(), nullptr), S_OK); }
};

TEST_F(Points, RefusalsChangeNothing) {
    EXPECT_EQ(m_key->KeyAddPoint(0, 0, nullptr, nullptr), E_POINTER);
    EXPECT_EQ(m_key->KeyExcludePoint(0, 0, nullptr, nullptr), E_POINTER);
    EXPECT_EQ(m_key->KeyAddRect(0, 0, 1, 1, nullptr, nullptr), E_POINTER);
    EXPECT_EQ(Add(0, 0), kVfwEWrongState);
    EXPECT_EQ(Exclude(0, 0), kVfwEWrongState);
    EXPECT_EQ(m_key->KeyAddRect(0, 0, 1, 1, nullptr, m_out.Put()), kVfwEWrongState);
    ASSERT_EQ(m_key->KeyFrameSet(OwnFrame::Create({}).get(), nullptr), S_OK);
    EXPECT_EQ(Add(0, 0), kVfwEInvalidMediaType);
    OwnFrameState state;
    state.cloneStatus = E_FAIL;
    EXPECT_EQ(m_key->KeyFrameSet(OwnFrame::Create(state).get(), nullptr), E_FAIL);
    EXPECT_EQ(Add(0, 0), kVfwEWrongState);
    EXPECT_TRUE(SameKey(Raw(), CHROMA_KEY_RAW{}));
    // None of them was a step.
    SetHalfGreen();
    ASSERT_EQ(Add(2, 2), S_OK);
    ASSERT_EQ(Back(), S_OK);
    EXPECT_TRUE(SameKey(Raw(), CHROMA_KEY_RAW{}));
}

TEST_F(Points, AFirstPickMakesAKeyOfTenSteps) {
    SetHalfGreen();
    EXPECT_EQ(Add(2, 8), S_OK);
    EXPECT_EQ(Raw().eType, eCKT_RGB);
    EXPECT_EQ(Keys(), 1);
    EXPECT_EQ(Value(0), KeyValue(kGreen));
    EXPECT_EQ(Delta(0), 0x0A0A0A0A);
    EXPECT_EQ(Raw().arrKeys[0].nSmoothRange, 26);
    EXPECT_EQ(Pixel(2, 8), 0u);
    EXPECT_EQ(Pixel(29, 8), kSkin);
    ASSERT_EQ(Exclude(29, 8), S_OK);
    EXPECT_EQ(Keys(), 2);
    EXPECT_EQ(Value(1), KeyValue(kSkin));
    EXPECT_EQ(Raw().arrKeys[1].nReverseKey, 1);
    EXPECT_EQ(Raw().arrKeys[1].nSmoothRange, 13);
}

TEST_F(Points, ACoveredPickIsFalseAndAStep) {
    SetHalfGreen();
    ASSERT_EQ(Add(2, 8), S_OK);
    const CHROMA_KEY_RAW before = Raw();
    EXPECT_EQ(Add(3, 3), S_FALSE);
    EXPECT_TRUE(m_out);
    EXPECT_TRUE(SameKey(Raw(), before));
    // The newest state but one is the empty one.
    ASSERT_EQ(Back(), S_OK);
    EXPECT_EQ(Keys(), 0);
}

TEST_F(Points, PlacesAreClampedAndCountFromTheTop) {
    SetPicture(Numbered);
    const auto picked = [&](int x, int y) {
        EXPECT_EQ(Reset(), S_OK);
        EXPECT_EQ(Add(x, y, "type=RGB"), S_OK);
        return Value(0);
    };
    EXPECT_EQ(picked(5, 3), KeyValue(Numbered(5, 3)));
    EXPECT_EQ(picked(-9, -1), KeyValue(Numbered(0, 0)));
    EXPECT_EQ(picked(INT32_MIN, INT32_MIN), KeyValue(Numbered(0, 0)));
    // The width is the first pixel of the next row, in the last row its own last pixel; the height is the last row.
    EXPECT_EQ(picked(32, 3), KeyValue(Numbered(0, 4)));
    EXPECT_EQ(picked(INT32_MAX, 14), KeyValue(Numbered(0, 15)));
    EXPECT_EQ(picked(32, 15), KeyValue(Numbered(31, 15)));
    EXPECT_EQ(picked(7, 16), KeyValue(Numbered(7, 15)));
    EXPECT_EQ(picked(INT32_MAX, INT32_MAX), KeyValue(Numbered(31, 15)));
}

TEST_F(Points, BottomUpViewsAndPaddedRows) {
    OwnFrameState state;
    state.props = PropsOf(30, 16);
    state.props.nHeight = 16;
    state.props.nRowBytes = 128;
    state.bytes = BytesOf(32, 16, Numbered);
    state.bytes.resize(32 * 16 * 4 - 8);
    ASSERT_EQ(m_key->KeyFrameSet(OwnFrame::Create(state).get(), nullptr), S_OK);
    const auto picked = [&](int x, int y) {
        EXPECT_EQ(Reset(), S_OK);
        EXPECT_EQ(Add(x, y, "type=RGB"), S_OK);
        return Value(0);
    };
    EXPECT_EQ(picked(5, 0), KeyValue(Numbered(5, 15)));
    EXPECT_EQ(picked(5, 15), KeyValue(Numbered(5, 0)));
    EXPECT_EQ(picked(5, 16), KeyValue(Numbered(5, 0)));
    // The next row in memory is the one above; the top row is the last in memory.
    EXPECT_EQ(picked(30, 15), KeyValue(Numbered(0, 1)));
    EXPECT_EQ(picked(30, 0), KeyValue(Numbered(29, 15)));
}

TEST_F(Points, TheSpaceIsTheCallsOrElseTheKeys) {
    SetHalfGreen();
    Store("detect.type", "YUV");
    Store("type", "YUV");
    ASSERT_EQ(Add(2, 2), S_OK);
    EXPECT_EQ(Raw().eType, eCKT_RGB);
    // Another space takes the old ranges as if they were its own.
    EXPECT_EQ(Add(2, 2, "type=HLS max_keys=4"), S_OK);
    EXPECT_EQ(Raw().eType, eCKT_HLS);
    EXPECT_EQ(Keys(), 2);
    EXPECT_EQ(Value(0), static_cast<int32_t>(kGreen));
    EXPECT_EQ(Value(1), static_cast<int32_t>(0xFFD86859));
    EXPECT_EQ(Add(2, 2, "type=none max_keys=4"), S_FALSE);
    EXPECT_EQ(Raw().eType, eCKT_HLS);
    EXPECT_EQ(Add(29, 2, "type=yuv max_keys=4"), S_OK);
    EXPECT_EQ(Raw().eType, eCKT_YUV);
    ASSERT_EQ(RawSet(GreenKey(eCKT_Auto)), S_OK);
    EXPECT_GE(Add(2, 2, "max_keys=4"), 0);
    EXPECT_EQ(Raw().eType, eCKT_RGB);
}

TEST_F(Points, WithoutALimitPicksWidenOneRange) {
    SetHalfGreen();
    ASSERT_EQ(Add(2, 2), S_OK);
    ASSERT_EQ(Add(29, 2), S_OK);
    EXPECT_EQ(Keys(), 1);
    EXPECT_EQ(Value(0), KeyValue(kGreen));
    // Half of 0x10 - 10 to 0xD0 + 10 in red, 0x90 - 10 to 0xC0 + 10, 0x20 - 10 to 0x80 + 10.
    EXPECT_EQ(Delta(0), 0x0A3A226A);
    ASSERT_EQ(Reset(), S_OK);
    ASSERT_EQ(Add(2, 2, "max_keys=2"), S_OK);
    ASSERT_EQ(Add(29, 2, "max_keys=2"), S_OK);
    EXPECT_EQ(Keys(), 2);
    // The limit of the detection plays no part; the store's own name does.
    Store("detect.max_keys", "4");
    ASSERT_EQ(Add(2, 2), S_FALSE);
    EXPECT_EQ(Keys(), 1);
    ASSERT_EQ(Reset(), S_OK);
    Store("max_keys", "2");
    ASSERT_EQ(Add(2, 2), S_OK);
    ASSERT_EQ(Add(29, 2), S_OK);
    EXPECT_EQ(Keys(), 2);
}

TEST_F(Points, EveryPickLimitsBothSets) {
    SetHalfGreen();
    ASSERT_EQ(Exclude(2, 2, "max_keys=2"), S_OK);
    ASSERT_EQ(Exclude(29, 2, "max_keys=2"), S_OK);
    EXPECT_EQ(Keys(), 2);
    ASSERT_EQ(Add(2, 2), S_OK);
    EXPECT_EQ(Keys(), 2);
    EXPECT_EQ(Raw().arrKeys[0].nReverseKey, 0);
    EXPECT_EQ(Delta(1), 0x0A3A226A);
}

TEST_F(Points, AForcedPickHasASlotOfItsOwn) {
    SetHalfGreen();
    ASSERT_EQ(Add(2, 2), S_OK);
    ASSERT_EQ(Add(29, 2, "force_point=1"), S_OK);
    EXPECT_EQ(Keys(), 2);
    EXPECT_EQ(Value(1), KeyValue(kSkin));
    // A covered colour is tried twice, and covered twice.
    EXPECT_EQ(Reset(), S_OK);
    ASSERT_EQ(Add(2, 2), S_OK);
    EXPECT_EQ(Add(2, 2, "force_point=true"), S_FALSE);
    EXPECT_EQ(Keys(), 1);
}

TEST_F(Points, AForcedPickMergesOneRangeAwayFromAFullSet) {
    SetPicture([](int x, int) { return x < 8 ? kGreen : x < 16 ? kSkin : x < 24 ? kBlue : 0xFFFFFFFF; });
    for (const int x : {1, 9, 17}) ASSERT_EQ(Add(x, 1, "max_keys=3"), S_OK);
    EXPECT_EQ(Keys(), 3);
    ASSERT_EQ(Add(30, 1, "max_keys=3 force_point=1"), S_OK);
    EXPECT_EQ(Keys(), 3);
    EXPECT_EQ(static_cast<uint32_t>(Value(2)), 0xFFFFFFFFu);
    EXPECT_NE(Delta(0), 0x0A0A0A0A);
}

TEST_F(Points, AForcedExclusionOpensItsSlotInTheOtherSet) {
    SetHalfGreen();
    ASSERT_EQ(Exclude(2, 2), S_OK);
    ASSERT_EQ(Exclude(29, 2, "force_point=1"), S_OK);
    EXPECT_EQ(Keys(), 1);
    EXPECT_EQ(Delta(0), 0x0A3A226A);
}

TEST_F(Points, AForcedExclusionTakesItsLimitFromTheOtherSet) {
    SetHalfGreen();
    ASSERT_EQ(Exclude(2, 2, "max_keys=4"), S_OK);
    ASSERT_EQ(Exclude(29, 2, "max_keys=4"), S_OK);
    EXPECT_EQ(Keys(), 2);
    // No range adds: the limit of one more merges both that exclude.
    EXPECT_EQ(Exclude(2, 2, "max_keys=4 force_point=1"), S_FALSE);
    EXPECT_EQ(Keys(), 1);
}

TEST_F(Points, LimitsAtTheEndsOf32Bits) {
    SetHalfGreen();
    for (const char *limit : {"-2147483648", "2147483647", "-99999999999", "17"}) {
        ASSERT_EQ(Reset(), S_OK);
        EXPECT_EQ(Add(2, 2, std::string("force_point=1 max_keys=") + limit), S_OK) << limit;
        EXPECT_EQ(Add(29, 2, std::string("force_point=1 max_keys=") + limit), S_OK) << limit;
        EXPECT_EQ(Keys(), 2) << limit;
    }
    // Above 16 no range is merged away and no slot opens: the pick widens the nearest.
    CHROMA_KEY_RAW key = {};
    key.eType = eCKT_RGB;
    key.nKeysUsed = 16;
    for (int i = 0; i < 16; ++i) key.arrKeys[i] = {i * 0x0F0F0F, 0x01010101, 0, 0, 0, 0, 0, 0, 0, 0};
    ASSERT_EQ(RawSet(key), S_OK);
    ASSERT_EQ(Add(29, 2, "force_point=1 max_keys=17"), S_OK);
    EXPECT_EQ(Keys(), 16);
}

TEST_F(Points, APickAfterAThinDetectionTakesItsPlaceOrWidensIt) {
    SetHalfGreen();
    ASSERT_EQ(Detect("blocks=4 type=RGB"), S_OK);
    EXPECT_EQ(Delta(0), 0x01010101);
    EXPECT_EQ(Add(2, 2), S_FALSE);
    EXPECT_EQ(Delta(0), 0x0A0A0A0A);
}

TEST_F(Points, APickAfterPowerTakesTheWideningInPlaceOfTheWidth) {
    SetHalfGreen();
    ASSERT_EQ(Add(2, 2), S_OK);
    ASSERT_EQ(Set(eCKA_Power, 1), S_OK);
    EXPECT_EQ(Delta(0), 0x0A343434);
    ASSERT_EQ(Add(2, 2), S_FALSE);
    EXPECT_EQ(Delta(0), 0x0A2A2A2A);
    ASSERT_EQ(Set(eCKA_Power, 0), S_OK);
    EXPECT_EQ(Delta(0), 0x0A000000);
}

TEST_F(Points, AKeyWithoutATopByteIsFarFromItsOwnColour) {
    SetHalfGreen();
    CHROMA_KEY_RAW key = GreenKey();
    key.arrKeys[0].nValue &= 0xFFFFFF;
    ASSERT_EQ(RawSet(key), S_OK);
    EXPECT_EQ(Add(2, 2, "max_keys=4"), S_OK);
    EXPECT_EQ(static_cast<uint32_t>(Value(1)) & 0xFF000000u, 0xFF000000u);
}

TEST_F(Points, EmptySlotsOfARawKeyAreMergedLikeRanges) {
    SetPicture([](int x, int) { return x < 16 ? kGreen : 0xFFFFFFFF; });
    CHROMA_KEY_RAW key = GreenKey();
    key.nKeysUsed = 2;
    key.arrKeys[1].nValue = -1;
    key.arrKeys[1].nDelta = 0x10101010;
    key.arrKeys[1].nReverseKey = 1;
    ASSERT_EQ(RawSet(key), S_OK);
    EXPECT_EQ(Keys(), 4);
    ASSERT_GE(Add(2, 2), 0);
    EXPECT_EQ(Keys(), 2);
    // Half the way to black and more in green; and the protected white has become a protected black.
    EXPECT_EQ(Value(0), KeyValue(kGreen));
    EXPECT_EQ(Delta(0) >> 8 & 0xFF, (0xC0 + 0x20 + 1) / 2);
    EXPECT_EQ(Value(1), 0);
    EXPECT_EQ(Raw().arrKeys[1].nReverseKey, 1);
}

TEST_F(Points, RectanglesEditNothing) {
    SetHalfGreen();
    ASSERT_EQ(Add(2, 8), S_OK);
    const CHROMA_KEY_RAW before = Raw();
    ASSERT_EQ(m_key->KeyAddRect(-5, 90, INT32_MIN, INT32_MAX, Of("type=none").get(), m_out.Put()), S_OK);
    EXPECT_EQ(Pixel(2, 8), 0u);
    EXPECT_TRUE(SameKey(Raw(), before));
    // The one step is still the only one.
    ASSERT_EQ(Back(), S_OK);
    EXPECT_EQ(Keys(), 0);
    ASSERT_EQ(Forward(), S_OK);
    EXPECT_EQ(Keys(), 0);
}

TEST_F(Points, AWorkingImageCountsForItsViewOnly) {
    SetHalfGreen();
    ASSERT_EQ(Add(2, 2, "type=RGB"), S_OK);
    SetPicture([](int, int) { return kBlue; });
    ASSERT_EQ(Reset(), S_OK);
    ASSERT_EQ(Add(2, 2, "type=RGB"), S_OK);
    EXPECT_EQ(Value(0), KeyValue(kBlue));
}

}    // namespace
}    // namespace zck::test
