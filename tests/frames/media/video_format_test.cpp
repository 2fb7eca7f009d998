#include "frames/media/video_format.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "frames/media/pixel_format.h"
#include "frames/media/video_props.h"

namespace zck {
namespace {

constexpr double kRate2398 = 23.976023976023978;
constexpr double kRate2997 = 29.970029970029973;
constexpr double kRate5994 = 59.940059940059946;

Z_VID_PROPS Picture(int32_t w, int32_t h, double rate, eZInterlace scan = eZI_Default) {
    Z_VID_PROPS p{};
    p.nWidth = w;
    p.nHeight = h;
    p.dblRate = rate;
    p.eInterlace = scan;
    return p;
}

int Find(const Z_VID_PROPS &p) { return VideoFormatFromProps(&p); }

TEST(VideoFormat, RatesByBase) {
    const double rates[34] = {0,         kRate2997, kRate2398, kRate2997, 25,        25, 50,        kRate5994, 60,
                              kRate2398, 24,        25,        kRate2997, 30,        25, kRate2997, 30,        50,
                              kRate5994, 60,        kRate2398, 24,        25,        25, kRate2997, 30,        kRate2398,
                              24,        25,        kRate2997, 30,        kRate2398, 24, 25};
    for (int f = 0; f < 256; ++f) {
        const double rate = f < 34 ? rates[f] : 0;
        EXPECT_EQ(VideoFormatRate(static_cast<eZVideoFormat>(f)), rate) << f;
        EXPECT_EQ(VideoFormatRate(static_cast<eZVideoFormat>(f + 4608)), rate) << f;
    }
    EXPECT_EQ(VideoFormatRate(static_cast<eZVideoFormat>(-1)), 0);
}

TEST(VideoFormat, ScansByBase) {
    for (int f = 0; f < 256; ++f) {
        int scan = f >= 1 && f <= 33 ? eZI_Progressive : eZI_Default;
        if (f == 1 || f == 3) scan = eZI_Field2First;
        if (f == 4 || f == 5 || (f >= 14 && f <= 16) || (f >= 23 && f <= 25)) scan = eZI_Field1First;
        EXPECT_EQ(VideoFormatScan(static_cast<eZVideoFormat>(f)), scan) << f;
        EXPECT_EQ(VideoFormatScan(static_cast<eZVideoFormat>(f | 512)), scan) << f;
    }
}

TEST(VideoFormat, MarginsByBase) {
    for (int f = 0; f < 256; ++f) {
        int margin = 0;
        if (f >= 1 && f <= 3) margin = 39;
        if (f == 4 || f == 5) margin = 49;
        if (f >= 6 && f <= 8) margin = 30;
        if (f >= 9 && f <= 19) margin = 45;
        EXPECT_EQ(VideoFormatMargin(static_cast<eZVideoFormat>(f)), margin) << f;
    }
}

TEST(VideoFormatFromProps, NothingFitsNothing) {
    EXPECT_EQ(VideoFormatFromProps(nullptr), eZVF_Custom);
    EXPECT_EQ(Find(Picture(0, 0, 0)), eZVF_Custom);
    EXPECT_EQ(Find(Picture(640, 480, 25)), eZVF_Custom);
    EXPECT_EQ(Find(Picture(2048, 1556, 24)), eZVF_Custom);    // 2K is never found
    EXPECT_EQ(Find(Picture(1920, 1080, std::nan(""))), eZVF_Custom);
    const int32_t least = std::numeric_limits<int32_t>::min();
    EXPECT_EQ(Find(Picture(1920, least, 25)), eZVF_Custom);
    EXPECT_EQ(Find(Picture(least, 1080, 25)), eZVF_Custom);
}

TEST(VideoFormatFromProps, PalTakesHeightsByTheMarginOfNtsc) {
    EXPECT_EQ(Find(Picture(720, 576, 25.005)), eZVF_PAL);
    EXPECT_EQ(Find(Picture(720, 576, 25.02)), eZVF_Custom);
    EXPECT_EQ(Find(Picture(720, 575, 25)), eZVF_Custom);
    EXPECT_EQ(Find(Picture(720, 615, 25)), eZVF_PAL);
    EXPECT_EQ(Find(Picture(720, 616, 25)), eZVF_Custom);
    Z_VID_PROPS p = Picture(720, 608, 25);
    p.nAspectX = 133;
    p.nAspectY = 100;
    EXPECT_EQ(Find(p), eZVF_PAL);
    p.nHeight = 616;
    EXPECT_EQ(Find(p), eZVF_Custom);
}

TEST(VideoFormatFromProps, RatesMustBeStrictlyNearerThanAHundredth) {
    const double edge = 25.0 + 0.01;
    EXPECT_EQ(std::fabs(edge - 25.0) < 0.01, Find(Picture(720, 576, edge)) == eZVF_PAL);
    EXPECT_EQ(Find(Picture(720, 576, 25.0099)), eZVF_PAL);
    EXPECT_EQ(Find(Picture(720, 576, 25.0101)), eZVF_Custom);
    EXPECT_EQ(Find(Picture(720, 576, 24.9899)), eZVF_Custom);
}

TEST(VideoFormatFromProps, StandardDefinitionIsWideFromItsAspectAndIgnoresTheScan) {
    Z_VID_PROPS p = Picture(720, 576, 25, eZI_Progressive);
    EXPECT_EQ(Find(p), eZVF_PAL);
    p.nAspectX = 16;
    p.nAspectY = 9;
    EXPECT_EQ(Find(p), eZVF_PAL_16x9);
    EXPECT_EQ(Find(Picture(720, -576, 25)), eZVF_PAL_16x9);    // top-down without an aspect counts as 16:9
    EXPECT_EQ(Find(Picture(720, 480, kRate2997, eZI_Field1First)), eZVF_NTSC_16x9);    // 1.5 by its size
    EXPECT_EQ(Find(Picture(720, 519, kRate2997)), eZVF_NTSC);                          // 1.387
    EXPECT_EQ(Find(Picture(720, 520, kRate2997)), eZVF_Custom);
    EXPECT_EQ(Find(Picture(720, 479, kRate2997)), eZVF_Custom);
    p = Picture(720, 486, kRate2997);
    p.nAspectX = 4;
    p.nAspectY = 3;
    EXPECT_EQ(Find(p), eZVF_NTSC);
    EXPECT_EQ(Find(Picture(720, 486, kRate2398)), eZVF_NTSC_2398);
    EXPECT_EQ(Find(Picture(720, 486, 25)), eZVF_Custom);
}

TEST(VideoFormatFromProps, SevenTwentyIgnoresTheScanAndKeepsTheStereoFlags) {
    EXPECT_EQ(Find(Picture(1280, 720, 50, eZI_Field1First)), eZVF_HD720_50p);
    EXPECT_EQ(Find(Picture(1280, 750, kRate5994)), eZVF_HD720_5994p);
    EXPECT_EQ(Find(Picture(1280, 751, 60)), eZVF_Custom);
    EXPECT_EQ(Find(Picture(1280, -720, 60)), eZVF_HD720_60p);
    Z_VID_PROPS p = Picture(1280, 720, 50);
    p.e3DFormat = eZ3D_FullTopAndBottom;
    EXPECT_EQ(Find(p), eZVF_3D_TnB_720_50p);    // the full flag is not taken over
}

TEST(VideoFormatFromProps, TenEightyPrefersTheInterlacedForms) {
    EXPECT_EQ(Find(Picture(1920, 1088, kRate5994, eZI_Progressive)), eZVF_HD1080_5994p);
    EXPECT_EQ(Find(Picture(1920, 1080, kRate2997)), eZVF_HD1080_5994i);
    EXPECT_EQ(Find(Picture(1920, 1080, 25)), eZVF_HD1080_50i);
    EXPECT_EQ(Find(Picture(1920, 1080, 25, eZI_Progressive)), eZVF_HD1080_25p);
    EXPECT_EQ(Find(Picture(1920, 1080, 30, eZI_Field1First)), eZVF_HD1080_60i);
    EXPECT_EQ(Find(Picture(1920, 1080, 30, eZI_Progressive)), eZVF_HD1080_30p);
    EXPECT_EQ(Find(Picture(1920, 1080, 25, eZI_Field2First)), eZVF_Custom);
    EXPECT_EQ(Find(Picture(1920, 1080, 50)), eZVF_HD1080_50p);
    EXPECT_EQ(Find(Picture(1920, -1125, 24)), eZVF_HD1080_24p);
    EXPECT_EQ(Find(Picture(1920, 1126, 24)), eZVF_Custom);
    Z_VID_PROPS p = Picture(1920, 1080, 25);
    p.e3DFormat = eZ3D_SideBySide;
    EXPECT_EQ(Find(p), eZVF_3D_SbS_1080_50i);
}

TEST(VideoFormatFromProps, UltraHighPrefersTheProgressiveFormsAndDropsTheStereoFlags) {
    Z_VID_PROPS p = Picture(3840, 2160, 25);
    p.e3DFormat = eZ3D_SideBySide;
    EXPECT_EQ(Find(p), eZVF_4K_UHD_25p);
    p.eInterlace = eZI_Field1First;
    EXPECT_EQ(Find(p), eZVF_4K_UHD_50i);
    EXPECT_EQ(Find(Picture(3840, -4000, 30)), eZVF_4K_UHD_30p);    // there is no upper bound
    EXPECT_EQ(Find(Picture(4096, 2160, 24)), eZVF_4K_DCI_24p);
    EXPECT_EQ(Find(Picture(4096, 2160, 30)), eZVF_Custom);
}

TEST(VideoFormatFromProps, TopAndBottomStacks) {
    EXPECT_EQ(Find(Picture(1920, 2160, 25)), eZVF_HD1080_50i | 0x1400);
    EXPECT_EQ(Find(Picture(1280, 1440, 50)), eZVF_HD720_50p | 0x1400);
    EXPECT_EQ(Find(Picture(1280, 1439, 50)), eZVF_Custom);
    EXPECT_EQ(Find(Picture(1920, -2160, 25)), eZVF_Custom);    // not for a top-down frame
    EXPECT_EQ(Find(Picture(3840, 4320, 25, eZI_Progressive)), eZVF_4K_UHD_25p);
    Z_VID_PROPS p = Picture(1920, 2160, 25);
    p.e3DFormat = eZ3D_SideBySide;    // the layout of the whole does not pass to the half
    EXPECT_EQ(Find(p), eZVF_HD1080_50i | 0x1400);
}

TEST(VideoFormatFromProps, SideBySideNeedsRowsBelowTwiceTheWidth) {
    Z_VID_PROPS p = Picture(3840, 1080, 25);
    p.fccType = eZFCC_UYVY;
    p.nRowBytes = RowBytes(p.fccType, 3840);
    EXPECT_EQ(Find(p), eZVF_HD1080_50i | 0x200);
    p.nRowBytes *= 2;
    EXPECT_EQ(Find(p), eZVF_Custom);
    p.nRowBytes -= 1;
    EXPECT_EQ(Find(p), eZVF_HD1080_50i | 0x200);
    p.fccType = eZFCC_Default;    // an unknown format has rows of 0 bytes
    EXPECT_EQ(Find(p), eZVF_Custom);
    p.nRowBytes = -1;
    EXPECT_EQ(Find(p), eZVF_HD1080_50i | 0x200);
    p = Picture(2560, 720, 50);
    p.fccType = eZFCC_ARGB32;
    EXPECT_EQ(Find(p), eZVF_HD720_50p | 0x200);
    p.nWidth = 2558;
    EXPECT_EQ(Find(p), eZVF_Custom);
}

TEST(VideoFormatFromProps, StacksOfStacksAreNotFound) {
    EXPECT_EQ(Find(Picture(1920, 4320, 25)), eZVF_Custom);
    Z_VID_PROPS p = Picture(7680, 1080, 25);
    p.fccType = eZFCC_UYVY;
    EXPECT_EQ(Find(p), eZVF_Custom);
    // 1440 lines or more are never tried for side by side, also when the stack of lines fails.
    p = Picture(3840, 1440, 50);
    p.fccType = eZFCC_UYVY;
    EXPECT_EQ(Find(p), eZVF_Custom);
}

// What the search gives for the record of each standard format; the formats it can not find again, by name.
TEST(VideoFormatFromProps, EveryBaseFromItsOwnRecord) {
    for (int f = 1; f <= 33; ++f) {
        for (eZFCC fcc : {eZFCC_UYVY, eZFCC_ARGB32}) {
            const Z_VID_PROPS p = VideoPropsFromFormat(static_cast<eZVideoFormat>(f), fcc);
            const bool is2K = f >= eZVF_2K_2398p && f <= eZVF_2K_25p;
            EXPECT_EQ(VideoFormatFromProps(&p), is2K ? 0 : f) << f;
        }
    }
}

}    // namespace
}    // namespace zck
