// The numbers of the public enumerations that follow from a rule, checked against the rule.
#include <gtest/gtest.h>

#include "zchromakey/zchromakey.h"

namespace {

TEST(PublicValues, FrameFlagsAreStateOrPictureType) {
    EXPECT_EQ(eZFF_Net_Break_BI, 459265);
    EXPECT_EQ(eZFF_Last_Dup, eZFF_Last | eZFF_Dup);
    EXPECT_EQ(eZFF_Last_Pause, eZFF_Last | eZFF_Pause);
    EXPECT_EQ(eZFF_Net_Break_Last, eZFF_Net | eZFF_Break | eZFF_Last);
    EXPECT_EQ(eZFF_Live_Break_Last, 259);
    EXPECT_EQ(eZFF_Break_Intra, eZFF_Break | eZFF_Intra);
    EXPECT_EQ(eZFF_Type_Mask & eZFF_Main_Mask, 0);
}

TEST(PublicValues, TimecodeFlagsOfTheSourceAndOfAUser) {
    EXPECT_EQ(eZTCF_SrcTC_Rate_60_Even, 4672u);
    EXPECT_EQ(eZTCF_UserTC_Rate_60_Even, 8768u);
    EXPECT_EQ(eZTCF_SrcTC_DropFrame, 4097u);
    EXPECT_EQ(eZTCF_UserTC_Rate_60_DF_Even, 8192u + 577u);
    EXPECT_EQ(eZTCF_Rate & eZTCF_Rate_60_DF_Even, eZTCF_Rate_30 | eZTCF_Progressive_Odd_Frame);
}

TEST(PublicValues, StereoFormatsAreBasePlusFlag) {
    EXPECT_EQ(eZVF_Disabled, 34);
    EXPECT_EQ(eZVF_3D_SbS_720_50p, 518);
    EXPECT_EQ(eZVF_3D_SbS_1080_60p, 531);
    EXPECT_EQ(eZVF_3D_TnB_1080_30p, 1037);
    EXPECT_EQ(eZVF_3D_TnB_1080_50p, 1041);
    EXPECT_EQ(eZVF_3D_TnB_1080_60p, 1043);
    EXPECT_EQ(eZVF_3D_Full_SbS_1080_50i, 4622);
    EXPECT_EQ(eZVF_3D_Full_SbS_1080_60i, 4624);
    EXPECT_EQ(eZVF_3D_Full_TnB_720_50p, 5126);
    EXPECT_EQ(eZVF_3D_Full_TnB_1080_60i, 5136);
}

TEST(PublicValues, CountedStringsKnowTheirLength) {
    BSTR text = SysAllocStringLen(nullptr, 3);
    ASSERT_NE(text, nullptr);
    EXPECT_EQ(SysStringLen(text), 3u);
    EXPECT_EQ(SysStringByteLen(text), 6u);
    EXPECT_EQ(text[3], 0);
    SysFreeString(text);
    SysFreeString(nullptr);
    EXPECT_EQ(SysStringLen(nullptr), 0u);
}

TEST(PublicValues, RecordsOfStreamsHaveTheSystemsWidths) {
    EXPECT_EQ(sizeof(LARGE_INTEGER), 8u);
    EXPECT_EQ(sizeof(ULARGE_INTEGER), 8u);
    EXPECT_EQ(sizeof(STATSTG), 80u);
    EXPECT_EQ(offsetof(STATSTG, cbSize), 16u);
    EXPECT_EQ(offsetof(STATSTG, clsid), 56u);
    LARGE_INTEGER number = {};
    number.QuadPart = -2;
    EXPECT_EQ(number.u.HighPart, -1);
    EXPECT_EQ(number.u.LowPart, 0xFFFFFFFEu);
}

TEST(PublicValues, StreamsAreKnownByTheSystemsNumbers) {
    const IID stream = {0x0000000C, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
    const IID persist = {0x0000010C, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
    const IID persistStream = {0x00000109, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
    EXPECT_TRUE(ZIidOf<IStream>() == stream);
    EXPECT_TRUE(IID_IPersist == persist);
    EXPECT_TRUE(ZIidOf<IPersistStream>() == persistStream);
    EXPECT_EQ(STREAM_SEEK_CUR, 1u);
}

}    // namespace
