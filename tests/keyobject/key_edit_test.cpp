// Adjustment, steps, reset and the raw key, through the interface.
#include <cmath>

#include "tests/keyobject/key_fixture.h"

namespace zck::test {
namespace {

using KeyEdit = KeyTest;

TEST_F(KeyEdit, ANullPreviewIsRefusedBeforeAnythingChanges) {
    SetHalfGreen();
    ASSERT_EQ(RawSet(GreenKey()), S_OK);
    const CHROMA_KEY_RAW before = Raw();
    EXPECT_EQ(m_key->KeyAdjustSet(eCKA_Power, 0.5, nullptr), E_POINTER);
    EXPECT_EQ(m_key->KeyReset(nullptr), E_POINTER);
    EXPECT_EQ(m_key->KeyStepBack(1, nullptr), E_POINTER);
    EXPECT_EQ(m_key->KeyStepFwd(1, nullptr), E_POINTER);
    EXPECT_TRUE(SameKey(Raw(), before));
    // The history has the one state of `KeyRawSet`.
    EXPECT_EQ(Forward(), E_UNEXPECTED);
    EXPECT_EQ(Back(), S_OK);
    EXPECT_EQ(Raw().nKeysUsed, 0);
}

TEST_F(KeyEdit, ANewObjectHasAZeroKeyAndTheDefaults) {
    EXPECT_TRUE(SameKey(Raw(), CHROMA_KEY_RAW{}));
    EXPECT_TRUE(SameAdjust(Adjust(), AdjustDefaults()));
}

TEST_F(KeyEdit, WithoutAReference) {
    EXPECT_EQ(Set(eCKA_Power, 0.5), kVfwEWrongState);
    EXPECT_EQ(Get(eCKA_Power), 0.0);
    EXPECT_EQ(Forward(), E_UNEXPECTED);
    EXPECT_EQ(Back(), kVfwEWrongState);
    ASSERT_EQ(RawSet(GreenKey()), S_OK);
    // State and history change, and only then there is no preview.
    EXPECT_EQ(Reset(), kVfwEWrongState);
    EXPECT_FALSE(m_out);
    EXPECT_TRUE(SameKey(Raw(), CHROMA_KEY_RAW{}));
    // From the head, with two states saved, to the older one: the empty state before `KeyRawSet`.
    EXPECT_EQ(Back(), kVfwEWrongState);
    EXPECT_EQ(Raw().nKeysUsed, 0);
    EXPECT_EQ(Forward(), kVfwEWrongState);
    EXPECT_EQ(Raw().nKeysUsed, 2);
}

TEST_F(KeyEdit, AdjustmentsAreReadBackAsTheyWereSet) {
    SetHalfGreen();
    for (int32_t i = 1; i <= 16; ++i) {
        const auto what = static_cast<eCK_Adjust>(i);
        EXPECT_EQ(Set(what, i * 0.001), S_OK);
        EXPECT_EQ(Get(what), i * 0.001);
    }
    EXPECT_EQ(Adjust().rangeAdjust.dblRangeR_H_Y, 9 * 0.001);
    EXPECT_EQ(Set(eCKA_Power, 1e308), S_OK);
    EXPECT_EQ(Get(eCKA_Power), 1e308);
    EXPECT_EQ(Set(eCKA_MinTransparent, -INFINITY), S_OK);
    EXPECT_EQ(Raw().nMinTransparent, INT32_MIN);
    EXPECT_EQ(Set(eCKA_MaxTransparent, NAN), S_OK);
    EXPECT_EQ(Raw().nMaxTransparent, 0);
    EXPECT_TRUE(std::isnan(Get(eCKA_MaxTransparent)));
}

TEST_F(KeyEdit, SelectorsOfNothingStoreNothingAndMakeAStep) {
    SetHalfGreen();
    for (const int32_t i : {0, 17, -1}) {
        double value = 42;
        EXPECT_EQ(m_key->KeyAdjustGet(static_cast<eCK_Adjust>(i), &value), S_OK);
        EXPECT_EQ(value, 42);
        EXPECT_EQ(m_key->KeyAdjustGet(static_cast<eCK_Adjust>(i), nullptr), E_POINTER);
        EXPECT_EQ(Set(static_cast<eCK_Adjust>(i), 0.5), S_OK);
        EXPECT_TRUE(m_out);
    }
    EXPECT_TRUE(SameAdjust(Adjust(), AdjustDefaults()));
    // The record took the integers of the defaults, as any adjustment has it.
    EXPECT_EQ(Raw().nMaxTransparent, 230);
    EXPECT_EQ(Back(), S_OK);
    EXPECT_EQ(Back(), S_OK);
    EXPECT_EQ(Raw().nMaxTransparent, 0);
    EXPECT_EQ(m_key->KeyAdjustGet(eCKA_Power, nullptr), E_POINTER);
}

TEST_F(KeyEdit, PowerThereAndBackIsTheFirstKey) {
    SetHalfGreen();
    CHROMA_KEY_RAW key = GreenKey();
    key.arrKeys[0].nDelta = 0x01405060;
    ASSERT_EQ(RawSet(key), S_OK);
    const CHROMA_KEY_RAW before = Raw();
    EXPECT_EQ(Set(eCKA_Power, 0.5), S_OK);
    EXPECT_EQ(Raw().arrKeys[0].nDelta, 0x01556575);
    EXPECT_EQ(Set(eCKA_Power, 0.0), S_OK);
    EXPECT_TRUE(SameKey(Raw(), before));
    // A byte that was cut on the way does not come back.
    EXPECT_EQ(Set(eCKA_Power, -1.25), S_OK);
    EXPECT_EQ(Set(eCKA_Power, 0.0), S_OK);
    EXPECT_EQ(Raw().arrKeys[0].nDelta, 0x01405060);
    EXPECT_EQ(Set(eCKA_Power, -2.0), S_OK);
    EXPECT_EQ(Set(eCKA_Power, 0.0), S_OK);
    EXPECT_EQ(Raw().arrKeys[0].nDelta, 0x01545460);
}

TEST_F(KeyEdit, StepsMoveByOneWhateverTheirNumber) {
    SetHalfGreen();
    for (const double power : {0.1, 0.2, 0.3, 0.4}) ASSERT_EQ(Set(eCKA_Power, power), S_OK);
    // The head's own state is kept nowhere.
    EXPECT_EQ(m_key->KeyStepBack(5, m_out.Put()), S_OK);
    EXPECT_EQ(Get(eCKA_Power), 0.2);
    EXPECT_EQ(m_key->KeyStepBack(-7, m_out.Put()), S_OK);
    EXPECT_EQ(Get(eCKA_Power), 0.1);
    EXPECT_EQ(m_key->KeyStepFwd(0, m_out.Put()), S_OK);
    EXPECT_EQ(Get(eCKA_Power), 0.2);
    EXPECT_EQ(m_key->KeyStepFwd(100, m_out.Put()), S_OK);
    EXPECT_EQ(Get(eCKA_Power), 0.3);
    EXPECT_EQ(m_key->KeyStepFwd(1, m_out.Put()), S_OK);
    EXPECT_EQ(Get(eCKA_Power), 0.3);
    // An edit ends the walk.
    EXPECT_EQ(Set(eCKA_Power, 0.9), S_OK);
    EXPECT_EQ(Forward(), E_UNEXPECTED);
    EXPECT_FALSE(m_out);
}

TEST_F(KeyEdit, StepsOfAnEmptyHistoryRenderThePresent) {
    SetHalfGreen();
    EXPECT_EQ(Back(), S_OK);
    EXPECT_TRUE(m_out);
    EXPECT_EQ(Forward(), E_UNEXPECTED);
}

TEST_F(KeyEdit, PreviewsOfAWalkShowItsState) {
    SetHalfGreen();
    ASSERT_EQ(RawSet(GreenKey()), S_OK);
    ASSERT_EQ(Set(eCKA_Power, 0.1), S_OK);
    ASSERT_EQ(Set(eCKA_Power, -1.0), S_OK);
    ASSERT_EQ(Back(), S_OK);
    EXPECT_EQ(Pixel(2, 8), 0u);
    const std::vector<uint32_t> shown = Pixels();
    ASSERT_EQ(m_key->KeyFrameGet(m_out.Put(), nullptr), S_OK);
    EXPECT_EQ(Pixels(), shown);
    ASSERT_EQ(Back(), S_OK);
    EXPECT_EQ(Pixel(2, 8), kGreen);
}

TEST_F(KeyEdit, AResetForgetsTheKeyAndCanBeTakenBack) {
    SetHalfGreen();
    CK_ADJUST adjust = AdjustDefaults();
    adjust.dblPower = 0.5;
    ASSERT_EQ(RawSet(GreenKey(), adjust), S_OK);
    EXPECT_EQ(Reset(), S_OK);
    EXPECT_EQ(Pixel(2, 8), kGreen);
    EXPECT_TRUE(SameKey(Raw(), CHROMA_KEY_RAW{}));
    EXPECT_TRUE(SameAdjust(Adjust(), AdjustDefaults()));
    EXPECT_EQ(Back(), S_OK);
    EXPECT_EQ(Forward(), S_OK);
    EXPECT_EQ(Raw().nKeysUsed, 2);
    EXPECT_EQ(Get(eCKA_Power), 0.5);
}

TEST_F(KeyEdit, RawKeysNeedTheirRecord) {
    CK_ADJUST adjust = AdjustDefaults();
    adjust.dblPower = 5;
    EXPECT_EQ(m_key->KeyRawSet(nullptr, &adjust), E_POINTER);
    EXPECT_EQ(m_key->KeyRawGet(nullptr, &adjust), E_POINTER);
    EXPECT_EQ(adjust.dblPower, 5);
    EXPECT_EQ(Get(eCKA_Power), 0);
}

TEST_F(KeyEdit, ARawKeyIsRebuiltFromItsRanges) {
    CHROMA_KEY_RAW key = GreenKey(eCKT_HLS);
    key.nInterlacedVideo = 1;
    key.nInverseKey = 2;
    key.nMinTransparent = 1;
    key.bColorCancel = 2;
    key.arrKeys[0].nAlpha = 11;
    key.arrKeys[0].nSmoothRange = 99;
    key.arrKeys[9].nSmoothRange = 98;
    ASSERT_EQ(RawSet(key), S_OK);
    CHROMA_KEY_RAW expected = key;
    // Both sets took a slot for the entry; the exclude set's is empty.
    expected.nKeysUsed = 2;
    expected.bColorCancel = 0;
    expected.nMinTransparent = 102;
    expected.nMaxTransparent = 230;
    expected.nEdgesSmooth = 3;
    expected.arrKeys[0].nSmoothRange = 26;
    expected.arrKeys[1].nSmoothRange = 13;
    expected.arrKeys[1].nReverseKey = 1;
    EXPECT_TRUE(SameKey(Raw(), expected));
    EXPECT_TRUE(SameAdjust(Adjust(), AdjustDefaults()));
}

TEST_F(KeyEdit, AZeroRecordTakesTheIntegersOfTheAdjustment) {
    CHROMA_KEY_RAW key = {};
    key.bColorCancel = 2;
    ASSERT_EQ(RawSet(key), S_OK);
    EXPECT_EQ(Raw().nEdgesSmooth, 3);
    EXPECT_EQ(Raw().nMinTransparent, 102);
    EXPECT_EQ(Raw().nMaxTransparent, 230);
    EXPECT_EQ(Raw().bColorCancel, 2);
}

TEST_F(KeyEdit, TwoAddKeysAndAnExcludeKeyBecomeSixEntries) {
    CHROMA_KEY_RAW key = {};
    key.eType = eCKT_RGB;
    key.nKeysUsed = 3;
    for (int i = 0; i < 3; ++i) key.arrKeys[i].nValue = key.arrKeys[i].nDelta = i + 1;
    key.arrKeys[2].nReverseKey = 1;
    key.arrKeys[5].nAlpha = 33;
    ASSERT_EQ(RawSet(key), S_OK);
    CHROMA_KEY_RAW got = Raw();
    EXPECT_EQ(got.nKeysUsed, 6);
    const int32_t values[] = {1, 2, 0, 0, 0, 3};
    for (int i = 0; i < 6; ++i) {
        EXPECT_EQ(got.arrKeys[i].nValue, values[i]) << i;
        EXPECT_EQ(got.arrKeys[i].nReverseKey, i < 3 ? 0 : 1) << i;
    }
    // `nAlpha` stays with its index, not with its entry.
    EXPECT_EQ(got.arrKeys[5].nAlpha, 33);
    // Slots keep what they held: the next key finds them.
    key = {};
    key.eType = eCKT_RGB;
    key.nKeysUsed = 3;
    for (int i = 0; i < 3; ++i) key.arrKeys[i].nReverseKey = 1;
    ASSERT_EQ(RawSet(key), S_OK);
    EXPECT_EQ(Raw().arrKeys[0].nValue, 1);
    EXPECT_EQ(Raw().arrKeys[1].nValue, 2);
}

TEST_F(KeyEdit, RoundTripsDoubleTheEntries) {
    CHROMA_KEY_RAW key = GreenKey();
    for (const int32_t count : {2, 4, 8, 16, 16}) {
        ComPtr<IZKey> fresh;
        ASSERT_EQ(CreateObject<CCoZKeyValue>(nullptr, IID_IZKey, fresh.PutVoid()), S_OK);
        ASSERT_EQ(fresh->KeyRawSet(&key, nullptr), S_OK);
        ASSERT_EQ(fresh->KeyRawGet(&key, nullptr), S_OK);
        EXPECT_EQ(key.nKeysUsed, count);
    }
}

TEST_F(KeyEdit, EmptySlotsComeAliveUnderPower) {
    SetHalfGreen();
    ASSERT_EQ(RawSet(GreenKey()), S_OK);
    ASSERT_EQ(Raw().arrKeys[1].nDelta, 0);
    ASSERT_EQ(Set(eCKA_ExcludePower, 1), S_OK);
    EXPECT_EQ(Raw().arrKeys[1].nDelta, 0x002A2A2A);
}

TEST_F(KeyEdit, StaleSlotsTravelThroughTheHistory) {
    SetHalfGreen();
    ASSERT_EQ(RawSet(GreenKey()), S_OK);    // saves the empty state
    ASSERT_EQ(Reset(), S_OK);               // saves the key
    // The slot of the add set still has the key.
    CHROMA_KEY_RAW reversed = GreenKey();
    reversed.arrKeys[0].nReverseKey = 1;
    reversed.arrKeys[0].nValue = 0x01020304;
    ASSERT_EQ(RawSet(reversed), S_OK);
    EXPECT_EQ(Raw().arrKeys[0].nValue, GreenKey().arrKeys[0].nValue);
    // Before the first key the slot was empty, and is so again.
    ASSERT_EQ(Back(), S_OK);
    ASSERT_EQ(Back(), S_OK);
    ASSERT_EQ(RawSet(reversed), S_OK);
    EXPECT_EQ(Raw().arrKeys[0].nValue, 0);
}

TEST_F(KeyEdit, CountsOfARawKeyAreCut) {
    CHROMA_KEY_RAW key = {};
    key.nKeysUsed = 20;
    ASSERT_EQ(RawSet(key), S_OK);
    EXPECT_EQ(Raw().nKeysUsed, 16);
    key.nKeysUsed = -1;
    ASSERT_EQ(RawSet(key), S_OK);
    EXPECT_EQ(Raw().nKeysUsed, 0);
}

}    // namespace
}    // namespace zck::test
