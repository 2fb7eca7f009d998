// Decisions about a conversion, made from the records.
#include "imaging/convert/conversion_plan.h"

#include <gtest/gtest.h>

#include "frames/media/pixel_format.h"
#include "frames/media/video_props.h"
#include "zchromakey/statuses.h"

namespace {

using namespace zck;

Z_VID_PROPS Custom(eZFCC fcc, int32_t width, int32_t height, eZInterlace scan = eZI_Progressive, double rate = 12.0) {
    Z_VID_PROPS props = {};
    props.fccType = fcc;
    props.nWidth = width;
    props.nHeight = height;
    props.nRowBytes = RowBytes(fcc, width);
    props.eInterlace = scan;
    props.dblRate = rate;
    return props;
}

Z_VID_PROPS Completed(const Z_VID_PROPS &wanted, const Z_VID_PROPS &source) {
    Z_VID_PROPS target = {};
    EXPECT_EQ(TargetComplete(&wanted, source, target), S_OK);
    return target;
}

TEST(ConversionPlan, AnEmptyTargetIsTheSource) {
    Z_VID_PROPS source = Custom(eZFCC_YUY2, 322, 200, eZI_Field2First);
    source.eScaleType = eZST_Crop;
    source.nAspectX = 5;
    source.nAspectY = 3;
    const Z_VID_PROPS target = Completed({}, source);
    EXPECT_EQ(target.fccType, eZFCC_YUY2);
    EXPECT_EQ(target.nWidth, 322);
    EXPECT_EQ(target.nHeight, 200);
    EXPECT_EQ(target.nRowBytes, 644);
    EXPECT_EQ(target.eInterlace, eZI_Field2First);
    EXPECT_EQ(target.eScaleType, eZST_Crop);
    EXPECT_EQ(target.nAspectX, 5);
    EXPECT_EQ(target.nAspectY, 3);
    EXPECT_EQ(target.dblRate, 12.0);
}

TEST(ConversionPlan, AFormatAloneTakesTheSourcesPicture) {
    Z_VID_PROPS wanted = {};
    wanted.fccType = eZFCC_ARGB32;
    // A source outside the RGB family has a positive height, which makes an RGB target bottom-up.
    EXPECT_EQ(Completed(wanted, Custom(eZFCC_UYVY, 64, 48)).nHeight, 48);
    EXPECT_EQ(Completed(wanted, Custom(eZFCC_RGB24, 64, -48)).nHeight, -48);
    EXPECT_EQ(Completed(wanted, Custom(eZFCC_UYVY, 64, 48)).nRowBytes, 256);
    wanted.fccType = eZFCC_I420;
    EXPECT_EQ(Completed(wanted, Custom(eZFCC_RGB24, 64, -48)).nHeight, 48);
    EXPECT_EQ(Completed(wanted, Custom(eZFCC_RGB24, 64, -48)).nRowBytes, 64);
}

TEST(ConversionPlan, ASizeAloneTakesFormatAndRateOfTheSource) {
    Z_VID_PROPS wanted = {};
    wanted.nWidth = 100;
    wanted.nHeight = 50;
    const Z_VID_PROPS target = Completed(wanted, Custom(eZFCC_Default, 64, 48));
    EXPECT_EQ(target.fccType, eZFCC_UYVY);
    EXPECT_EQ(target.nWidth, 100);
    EXPECT_EQ(target.nRowBytes, 200);
    EXPECT_EQ(target.dblRate, 12.0);
}

TEST(ConversionPlan, AValidTargetIsNotCompleted) {
    Z_VID_PROPS wanted = Custom(eZFCC_UYVY, 64, 48, eZI_Default, 0);
    const Z_VID_PROPS target = Completed(wanted, Custom(eZFCC_RGB32, 20, 10, eZI_Field1First));
    EXPECT_EQ(target.dblRate, 0.0);
    EXPECT_EQ(target.eInterlace, eZI_Default);
    EXPECT_EQ(target.nAspectX, 0);
}

TEST(ConversionPlan, RowsOfTheTargetAreWhole) {
    Z_VID_PROPS wanted = Custom(eZFCC_UYVY, 64, 48);
    for (const int32_t rowBytes : {3, -128, 127}) {
        wanted.nRowBytes = rowBytes;
        EXPECT_EQ(Completed(wanted, wanted).nRowBytes, 128) << rowBytes;
    }
    wanted.nRowBytes = 160;
    EXPECT_EQ(Completed(wanted, wanted).nRowBytes, 160);
}

TEST(ConversionPlan, TargetsThatCannotBe) {
    const Z_VID_PROPS source = Custom(eZFCC_UYVY, 64, 48);
    Z_VID_PROPS target = Custom(eZFCC_YV12, 2, 2);
    EXPECT_EQ(TargetComplete(nullptr, source, target), E_POINTER);
    const Z_VID_PROPS none = {};
    EXPECT_EQ(TargetComplete(&none, none, target), Z_E_INVALID_VIDEO_PROPS);
    Z_VID_PROPS planar = Custom(eZFCC_I420, 64, 48);
    planar.nRowBytes = 63;
    EXPECT_EQ(TargetComplete(&planar, source, target), Z_E_INVALID_VIDEO_PROPS);
    const Z_VID_PROPS huge = Custom(eZFCC_ARGB32, 40000, 40000);
    EXPECT_EQ(TargetComplete(&huge, source, target), Z_E_INVALID_VIDEO_PROPS);
    EXPECT_EQ(target.fccType, eZFCC_YV12);
    EXPECT_EQ(target.nWidth, 2);
}

TEST(ConversionPlan, PicturesAreTheSameByFamily) {
    const Z_VID_PROPS a = Custom(eZFCC_UYVY, 64, 48);
    Z_VID_PROPS b = a;
    EXPECT_TRUE(SamePicture(a, b));
    b.fccType = eZFCC_HDYC;
    EXPECT_TRUE(SamePicture(a, b));
    b.fccType = eZFCC_YUY2;
    EXPECT_FALSE(SamePicture(a, b));
    EXPECT_TRUE(SamePicture(Custom(eZFCC_RGB32, 8, -8), Custom(eZFCC_ARGB32, 8, -8)));
    EXPECT_FALSE(SamePicture(Custom(eZFCC_RGB32, 8, 8), Custom(eZFCC_ARGB32, 8, -8)));
}

TEST(ConversionPlan, PicturesOfNoStandardAgreeInRateStereoAndFitting) {
    const Z_VID_PROPS a = Custom(eZFCC_UYVY, 64, 48);
    const auto with = [&](auto change) {
        Z_VID_PROPS b = a;
        change(b);
        return SamePicture(a, b);
    };
    EXPECT_TRUE(with([](Z_VID_PROPS &p) { p.dblRate += 0.009; }));
    EXPECT_FALSE(with([](Z_VID_PROPS &p) { p.dblRate += 0.011; }));
    EXPECT_FALSE(with([](Z_VID_PROPS &p) { p.eScaleType = eZST_Crop; }));
    EXPECT_FALSE(with([](Z_VID_PROPS &p) { p.e3DFormat = eZ3D_SideBySide; }));
    EXPECT_FALSE(with([](Z_VID_PROPS &p) { p.eInterlace = eZI_Field1First; }));
    EXPECT_FALSE(with([](Z_VID_PROPS &p) { p.nRowBytes += 4; }));
    EXPECT_FALSE(with([](Z_VID_PROPS &p) { p.nWidth -= 2; }));
    EXPECT_TRUE(with([](Z_VID_PROPS &p) { p.nAspectX = 4; }));
}

TEST(ConversionPlan, AStandardFormatOutweighsRateStereoAndFitting) {
    Z_VID_PROPS a = VideoPropsFromFormat(eZVF_PAL, eZFCC_UYVY);
    Z_VID_PROPS b = a;
    b.eScaleType = eZST_Crop;
    b.dblRate = 1;
    EXPECT_TRUE(SamePicture(a, b));
    b.nAspectX = 16;
    b.nAspectY = 9;
    EXPECT_FALSE(SamePicture(a, b));
    b.nAspectX = 0;
    EXPECT_TRUE(SamePicture(a, b));
    b.eVideoFormat = eZVF_PAL_16x9;
    EXPECT_FALSE(SamePicture(a, b));
}

TEST(ConversionPlan, OnlyFieldsForAProgressiveTargetLoseOne) {
    const Z_VID_PROPS fields = Custom(eZFCC_UYVY, 64, 48, eZI_Field1First);
    const Z_VID_PROPS whole = Custom(eZFCC_UYVY, 64, 48);
    EXPECT_EQ(FieldModeOf(-1, fields, whole), FieldMode::kFirst);
    EXPECT_EQ(FieldModeOf(0, fields, whole), FieldMode::kBoth);
    EXPECT_EQ(FieldModeOf(-1, fields, fields), FieldMode::kBoth);
    EXPECT_EQ(FieldModeOf(-1, whole, whole), FieldMode::kBoth);
    EXPECT_EQ(FieldModeOf(-1, whole, fields), FieldMode::kBoth);
}

TEST(ConversionPlan, FittingIsTheRecordsOwnIfItHasOne) {
    Z_VID_PROPS source = Custom(eZFCC_UYVY, 64, 48);
    Z_VID_PROPS target = Custom(eZFCC_UYVY, 640, 360);
    target.eScaleType = eZST_None;
    EXPECT_EQ(FittingOf(source, target, true), eZST_None);
    source.eScaleType = eZST_Crop;
    EXPECT_EQ(FittingOf(source, target, true), eZST_Crop);
}

TEST(ConversionPlan, FittingFollowsTheShapes) {
    // 4:3 into 16:9 is cropped, unless far more lines would be lost; 16:9 into 4:3 is letter-boxed.
    const Z_VID_PROPS pal = VideoPropsFromFormat(eZVF_PAL, eZFCC_UYVY);
    const Z_VID_PROPS hd = VideoPropsFromFormat(eZVF_HD1080_50i, eZFCC_HDYC);
    EXPECT_EQ(FittingOf(pal, hd, true), eZST_Crop);
    EXPECT_EQ(FittingOf(hd, pal, true), eZST_LetterBox);
    EXPECT_EQ(FittingOf(Custom(eZFCC_UYVY, 400, 420), Custom(eZFCC_UYVY, 640, 360), true), eZST_Crop);
    EXPECT_EQ(FittingOf(Custom(eZFCC_UYVY, 400, 421), Custom(eZFCC_UYVY, 640, 360), true), eZST_LetterBox);
}

TEST(ConversionPlan, HighDefinitionOfAboutOneSizeIsNotScaled) {
    const Z_VID_PROPS hd = Custom(eZFCC_UYVY, 1920, 1080);
    const Z_VID_PROPS uneven = Custom(eZFCC_UYVY, 1922, 1080);
    EXPECT_EQ(FittingOf(hd, uneven, true), eZST_NoScale);
    EXPECT_NE(FittingOf(hd, uneven, false), eZST_NoScale);
    EXPECT_NE(FittingOf(hd, hd, true), eZST_NoScale);
    EXPECT_NE(FittingOf(hd, Custom(eZFCC_UYVY, 1922, 1080, eZI_Field1First), true), eZST_NoScale);
    // A tenth of the target's width is still about one size.
    EXPECT_EQ(FittingOf(Custom(eZFCC_UYVY, 1152, 648), Custom(eZFCC_UYVY, 1280, 720), true), eZST_NoScale);
    EXPECT_NE(FittingOf(Custom(eZFCC_UYVY, 1151, 648), Custom(eZFCC_UYVY, 1280, 720), true), eZST_NoScale);
    EXPECT_NE(FittingOf(Custom(eZFCC_UYVY, 1098, 618), Custom(eZFCC_UYVY, 1280, 720), true), eZST_NoScale);
}

}    // namespace
