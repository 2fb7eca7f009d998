#include "frames/media/video_props.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <vector>

#include "frames/media/pixel_format.h"
#include "frames/media/video_format.h"

namespace zck {
namespace {

constexpr eZFCC kUnknown = static_cast<eZFCC>(0x20202020);

eZVideoFormat Format(int f) { return static_cast<eZVideoFormat>(f); }

bool Same(const Z_VID_PROPS &a, const Z_VID_PROPS &b) { return std::memcmp(&a, &b, sizeof(a)) == 0; }

// Every public standard format but Custom and Disabled.
std::vector<int> StandardFormats() {
    std::vector<int> all;
    for (int f = 1; f <= 33; ++f) all.push_back(f);
    for (int f = 6; f <= 19; ++f) all.push_back(f + 512);
    for (int f = 6; f <= 19; ++f)
        if (f <= 13 || f >= 17) all.push_back(f + 1024);
    for (int f = 6; f <= 16; ++f) {
        all.push_back(f + 4608);
        all.push_back(f + 5120);
    }
    return all;
}

TEST(VideoPropsFromFormat, WorkedNumbers) {
    Z_VID_PROPS p = VideoPropsFromFormat(eZVF_3D_Full_SbS_1080_50i, eZFCC_UYVY);
    EXPECT_EQ(p.nWidth, 3840);
    EXPECT_EQ(p.nHeight, 1080);
    EXPECT_EQ(p.nRowBytes, 7680);
    EXPECT_EQ(p.e3DFormat, eZ3D_FullSideBySide);
    p = VideoPropsFromFormat(eZVF_3D_SbS_1080_50i, eZFCC_UYVY);
    EXPECT_EQ(p.nWidth, 1920);
    EXPECT_EQ(p.nHeight, 1080);
    EXPECT_EQ(p.e3DFormat, eZ3D_SideBySide);
    p = VideoPropsFromFormat(eZVF_3D_Full_TnB_720_50p, eZFCC_UYVY);
    EXPECT_EQ(p.nWidth, 1280);
    EXPECT_EQ(p.nHeight, 1440);
    p = VideoPropsFromFormat(eZVF_HD1080_50i, eZFCC_RGB32);
    EXPECT_EQ(p.nHeight, -1080);
    EXPECT_EQ(p.nRowBytes, 7680);
    EXPECT_EQ(p.dblRate, 25.0);
    EXPECT_EQ(p.eInterlace, eZI_Field1First);
    EXPECT_EQ(p.nAspectX, 16);
    EXPECT_EQ(p.nAspectY, 9);
}

TEST(VideoPropsFromFormat, DefaultPixelFormatIsByDefinition) {
    for (int f : StandardFormats()) {
        const int base = f & 0xFF;
        EXPECT_EQ(VideoPropsFromFormat(Format(f), eZFCC_Default).fccType, base <= 5 ? eZFCC_UYVY : eZFCC_HDYC) << f;
    }
    EXPECT_EQ(VideoPropsFromFormat(eZVF_Custom, eZFCC_Default).fccType, eZFCC_HDYC);
    EXPECT_EQ(VideoPropsFromFormat(Format(200), eZFCC_Default).fccType, eZFCC_HDYC);
}

TEST(VideoPropsFromFormat, UnknownBasesHaveNoSizeAndNoRate) {
    for (int f : {0, 34, 35, 255, 512, 4608 + 34, -1}) {
        const Z_VID_PROPS p = VideoPropsFromFormat(Format(f), eZFCC_RGB32);
        EXPECT_EQ(p.eVideoFormat, f);
        EXPECT_EQ(p.nWidth, 0);
        EXPECT_EQ(p.nHeight, 0);
        EXPECT_EQ(p.nRowBytes, 0);
        EXPECT_EQ(p.dblRate, 0);
    }
}

TEST(VideoPropsFromFormat, RecordsGoToTheWireWithoutStrayBytes) {
    const Z_VID_PROPS p = VideoPropsFromFormat(eZVF_PAL, eZFCC_UYVY);
    unsigned char bytes[sizeof(p)];
    std::memcpy(bytes, &p, sizeof(p));
    for (int i = 28; i < 32; ++i) EXPECT_EQ(bytes[i], 0);
    Z_VID_PROPS q;
    std::memset(&q, 0xFF, sizeof(q));
    q.eVideoFormat = eZVF_PAL;
    q.fccType = eZFCC_UYVY;
    VideoPropsUpdate(&q, true);
    std::memcpy(bytes, &q, sizeof(q));
    for (int i = 28; i < 32; ++i) EXPECT_EQ(bytes[i], 0);
}

TEST(VideoPropsFromFormat, OnlyRgbStandsOnItsHead) {
    for (eZFCC fcc : {eZFCC_r210, eZFCC_RGB8, eZFCC_RGB24, eZFCC_RGB32, eZFCC_ARGB32, kFccRgb565, kFccRgb555})
        EXPECT_EQ(VideoPropsFromFormat(eZVF_PAL, fcc).nHeight, -576);
    for (eZFCC fcc : {eZFCC_v210, eZFCC_I420, eZFCC_NV12, eZFCC_YUY2, eZFCC_HDYC, kFccY444, kFccRgb1, kFccArgb1555})
        EXPECT_EQ(VideoPropsFromFormat(eZVF_PAL, fcc).nHeight, 576);
}

TEST(VideoPropsUpdate, NullAndDisabled) {
    EXPECT_EQ(VideoPropsUpdate(nullptr, true), eZVF_Custom);
    for (bool trust : {false, true}) {
        Z_VID_PROPS p{};
        p.eVideoFormat = eZVF_Disabled;
        p.nAspectX = 16;
        p.nHeight = -1;
        const Z_VID_PROPS before = p;
        EXPECT_EQ(VideoPropsUpdate(&p, trust), eZVF_Disabled);
        EXPECT_TRUE(Same(p, before));
    }
}

TEST(VideoPropsUpdate, UnknownBasesAreRefusedButForTheHalfSetAspect) {
    for (int f : {35, 255, 0x200, 34 + 512}) {
        Z_VID_PROPS p{};
        p.eVideoFormat = Format(f);
        p.nAspectY = 9;
        p.nWidth = 100;
        p.nHeight = 50;
        Z_VID_PROPS expected = p;
        expected.nAspectY = 0;
        EXPECT_EQ(VideoPropsUpdate(&p, false), eZVF_Custom);
        EXPECT_TRUE(Same(p, expected)) << f;
    }
}

TEST(VideoPropsUpdate, AFormatAloneGivesItsWholeRecord) {
    for (int f : StandardFormats()) {
        for (eZFCC fcc : {eZFCC_Default, eZFCC_ARGB32, eZFCC_v210, eZFCC_NV12}) {
            for (bool trust : {false, true}) {
                Z_VID_PROPS p{};
                p.eVideoFormat = Format(f);
                p.fccType = fcc;
                Z_VID_PROPS expected = VideoPropsFromFormat(Format(f), fcc);
                // A trusted record is never field 2 first.
                if (trust && expected.eInterlace == eZI_Field2First) expected.eInterlace = eZI_Progressive;
                EXPECT_EQ(VideoPropsUpdate(&p, trust), f);
                EXPECT_TRUE(Same(p, expected)) << f << " " << trust;
            }
        }
    }
}

TEST(VideoPropsUpdate, IsAtRestOnItsOwnResult) {
    for (int f : StandardFormats()) {
        Z_VID_PROPS p = VideoPropsFromFormat(Format(f), eZFCC_ARGB32);
        const Z_VID_PROPS before = p;
        EXPECT_EQ(VideoPropsUpdate(&p, false), f);
        EXPECT_TRUE(Same(p, before)) << f;
    }
}

TEST(VideoPropsUpdate, HeightOfOneOnlyAsksForASign) {
    for (int f : StandardFormats()) {
        const int32_t h = VideoPropsFromFormat(Format(f), eZFCC_UYVY).nHeight;
        for (int32_t sign : {1, -1}) {
            for (eZFCC fcc : {eZFCC_UYVY, eZFCC_RGB32}) {
                Z_VID_PROPS p{};
                p.eVideoFormat = Format(f);
                p.fccType = fcc;
                p.nHeight = sign;
                EXPECT_EQ(VideoPropsUpdate(&p, false), f);
                EXPECT_EQ(p.nHeight, sign * h) << f;
            }
        }
    }
}

TEST(VideoPropsUpdate, FieldsWinWithoutTrust) {
    Z_VID_PROPS p{};
    p.eVideoFormat = eZVF_PAL;
    p.fccType = eZFCC_UYVY;
    p.nWidth = 360;
    p.nHeight = 288;
    p.dblRate = 12.5;
    p.eScaleType = eZST_Crop;
    p.e3DFormat = eZ3D_Tile;
    EXPECT_EQ(VideoPropsUpdate(&p, false), eZVF_Custom);    // the resized record is no standard any more
    EXPECT_EQ(p.eVideoFormat, eZVF_Custom);
    EXPECT_EQ(p.nWidth, 360);
    EXPECT_EQ(p.nHeight, 288);
    EXPECT_EQ(p.nRowBytes, 720);
    EXPECT_EQ(p.dblRate, 25.0);    // the rate is always the format's
    EXPECT_EQ(p.eScaleType, eZST_Crop);
    EXPECT_EQ(p.e3DFormat, eZ3D_None);
    EXPECT_EQ(p.nAspectX, 4);
}

TEST(VideoPropsUpdate, AResizedRecordTakesTheFormatOfItsNewFields) {
    Z_VID_PROPS p = VideoPropsFromFormat(eZVF_HD1080_50i, eZFCC_UYVY);
    p.nWidth = 720;
    p.nHeight = 576;
    EXPECT_EQ(VideoPropsUpdate(&p, false), eZVF_PAL_16x9);
    p = VideoPropsFromFormat(eZVF_HD1080_50i, eZFCC_UYVY);
    p.eInterlace = eZI_Progressive;
    EXPECT_EQ(VideoPropsUpdate(&p, false), eZVF_HD1080_25p);
    // A bottom-up record has its format's size.
    p = VideoPropsFromFormat(eZVF_2K_24p, eZFCC_RGB32);
    p.nHeight = -p.nHeight;
    EXPECT_EQ(VideoPropsUpdate(&p, false), eZVF_2K_24p);
}

TEST(VideoPropsUpdate, FieldsThatAreSetAreKept) {
    Z_VID_PROPS p{};
    p.eVideoFormat = eZVF_PAL;
    p.fccType = eZFCC_UYVY;
    p.nRowBytes = 2048;
    p.nAspectX = 5;
    p.nAspectY = 4;
    EXPECT_EQ(VideoPropsUpdate(&p, false), eZVF_PAL);
    EXPECT_EQ(p.nRowBytes, 2048);
    EXPECT_EQ(p.nAspectX, 5);
    EXPECT_EQ(p.nAspectY, 4);
    p.nAspectY = 0;    // half an aspect is none
    VideoPropsUpdate(&p, false);
    EXPECT_EQ(p.nAspectX, 4);
    EXPECT_EQ(p.nAspectY, 3);
    // Row bytes below what the width needs are raised, negative ones too.
    p.nRowBytes = 7;
    VideoPropsUpdate(&p, false);
    EXPECT_EQ(p.nRowBytes, 1440);
    p.nRowBytes = -1440;
    VideoPropsUpdate(&p, false);
    EXPECT_EQ(p.nRowBytes, 1440);
}

TEST(VideoPropsUpdate, TrustTakesTheSignOfTheHeightAndNothingElse) {
    Z_VID_PROPS p{};
    p.eVideoFormat = eZVF_HD720_50p;
    p.fccType = eZFCC_RGB32;
    p.nWidth = 10;
    p.nHeight = 20;
    p.nRowBytes = 9999;
    EXPECT_EQ(VideoPropsUpdate(&p, true), eZVF_HD720_50p);
    EXPECT_EQ(p.nWidth, 1280);
    EXPECT_EQ(p.nHeight, 720);
    EXPECT_EQ(p.nRowBytes, 5120);
    p.fccType = eZFCC_UYVY;
    p.nHeight = -20;
    VideoPropsUpdate(&p, true);
    EXPECT_EQ(p.nHeight, -720);    // signs are not corrected here
}

TEST(VideoPropsUpdate, TrustMakesEverythingElseProgressive) {
    Z_VID_PROPS p{};
    p.eVideoFormat = eZVF_NTSC;
    EXPECT_EQ(VideoPropsUpdate(&p, true), eZVF_NTSC);
    EXPECT_EQ(p.eInterlace, eZI_Progressive);
    p = Z_VID_PROPS{};
    p.eVideoFormat = eZVF_PAL;
    VideoPropsUpdate(&p, true);
    EXPECT_EQ(p.eInterlace, eZI_Field1First);
    p = Z_VID_PROPS{};
    p.nWidth = 100;
    p.nHeight = 100;
    p.eInterlace = eZI_Inverse;
    VideoPropsUpdate(&p, true);
    EXPECT_EQ(p.eInterlace, eZI_Progressive);
    p.nHeight = 0;
    p.eInterlace = eZI_Inverse;
    VideoPropsUpdate(&p, true);
    EXPECT_EQ(p.eInterlace, eZI_Inverse);
}

TEST(VideoPropsUpdate, TrustChoosesAPixelFormatByHeight) {
    for (int32_t h : {625, -625, 626, -626}) {
        Z_VID_PROPS p{};
        p.nWidth = 800;
        p.nHeight = h;
        EXPECT_EQ(VideoPropsUpdate(&p, true), eZVF_Custom);
        EXPECT_EQ(p.fccType, std::abs(h) < 626 ? eZFCC_UYVY : eZFCC_HDYC);
        EXPECT_EQ(p.nRowBytes, 1600);
        p = Z_VID_PROPS{};
        p.nWidth = 800;
        p.nHeight = h;
        VideoPropsUpdate(&p, false);
        EXPECT_EQ(p.fccType, eZFCC_Default);
        EXPECT_EQ(p.nRowBytes, 0);
    }
}

TEST(VideoPropsUpdate, ACustomRecordFindsItsFormat) {
    Z_VID_PROPS p{};
    p.fccType = eZFCC_UYVY;
    p.nWidth = 1920;
    p.nHeight = 2160;
    p.dblRate = 25;
    EXPECT_EQ(VideoPropsUpdate(&p, false), eZVF_3D_Full_TnB_1080_50i);
    EXPECT_EQ(p.e3DFormat, eZ3D_FullTopAndBottom);
    EXPECT_EQ(p.nRowBytes, 3840);
    EXPECT_EQ(p.eInterlace, eZI_Default);
}

TEST(VideoPropsUpdate, FullWidthSideBySideIsLabelledHalfWidthAndTrustHalvesIt) {
    Z_VID_PROPS p{};
    p.fccType = eZFCC_UYVY;
    p.nWidth = 3840;
    p.nHeight = 1080;
    p.dblRate = 25;
    EXPECT_EQ(VideoPropsUpdate(&p, false), eZVF_3D_SbS_1080_50i);
    EXPECT_EQ(p.e3DFormat, eZ3D_SideBySide);
    EXPECT_EQ(p.nWidth, 3840);
    VideoPropsUpdate(&p, true);
    EXPECT_EQ(p.nWidth, 1920);
}

TEST(VideoPropsUpdate, PlanarRowsAreNotComputedForCustomSizes) {
    Z_VID_PROPS p{};
    p.fccType = eZFCC_NV12;
    p.nWidth = 500;
    p.nHeight = 300;
    VideoPropsUpdate(&p, false);
    EXPECT_EQ(p.nRowBytes, 0);
    EXPECT_EQ(FrameBufferSize(&p), 0);
    p.nRowBytes = -500;
    VideoPropsUpdate(&p, false);
    EXPECT_EQ(p.nRowBytes, 0);
    p.nRowBytes = 512;
    VideoPropsUpdate(&p, false);
    EXPECT_EQ(p.nRowBytes, 512);
}

TEST(VideoPropsUpdate, ExtremeFieldsDoNotOverflow) {
    for (int32_t v : {std::numeric_limits<int32_t>::min(), std::numeric_limits<int32_t>::max()}) {
        for (int f : {0, 14}) {
            for (eZFCC fcc : {eZFCC_ARGB32, eZFCC_v210, eZFCC_NV12}) {
                Z_VID_PROPS p{};
                p.eVideoFormat = Format(f);
                p.fccType = fcc;
                p.nWidth = v;
                p.nHeight = v;
                EXPECT_EQ(VideoPropsUpdate(&p, false), eZVF_Custom);
                EXPECT_EQ(p.nRowBytes < 0, v < 0 && f != 0 && fcc != eZFCC_NV12);    // a negative width has negative rows
                EXPECT_EQ(p.nHeight, v);
            }
        }
    }
}

TEST(VideoPropsValid, NeedsAFormatOrAllOfSizeRowsAndPixels) {
    EXPECT_FALSE(VideoPropsValid(nullptr));
    Z_VID_PROPS p{};
    EXPECT_FALSE(VideoPropsValid(&p));
    p.eVideoFormat = eZVF_PAL;
    EXPECT_TRUE(VideoPropsValid(&p));
    p = Z_VID_PROPS{};
    p.nWidth = 1;
    p.nHeight = -1;
    p.nRowBytes = -4;
    p.fccType = kUnknown;
    EXPECT_TRUE(VideoPropsValid(&p));
    for (int field = 0; field < 5; ++field) {
        Z_VID_PROPS q = p;
        if (field == 0) q.nWidth = 0;
        if (field == 1) q.nWidth = -1;
        if (field == 2) q.nHeight = 0;
        if (field == 3) q.nRowBytes = 0;
        if (field == 4) q.fccType = eZFCC_Default;
        EXPECT_FALSE(VideoPropsValid(&q)) << field;
    }
}

TEST(FieldOrderSign, RecordFirstThenFormat) {
    EXPECT_EQ(FieldOrderSign(nullptr), 0);
    Z_VID_PROPS p{};
    EXPECT_EQ(FieldOrderSign(&p), 0);
    p.eVideoFormat = eZVF_PAL;
    EXPECT_EQ(FieldOrderSign(&p), 1);
    p.eVideoFormat = eZVF_NTSC;
    EXPECT_EQ(FieldOrderSign(&p), -1);
    p.eVideoFormat = eZVF_HD720_50p;
    EXPECT_EQ(FieldOrderSign(&p), 0);
    p.eInterlace = eZI_Field2First;
    EXPECT_EQ(FieldOrderSign(&p), -1);
    p.eInterlace = eZI_Field1First;
    EXPECT_EQ(FieldOrderSign(&p), 1);
    p.eVideoFormat = eZVF_PAL;
    for (eZInterlace scan : {eZI_Progressive, eZI_Inverse, eZI_OneField, eZI_DeinterlaceF1, eZI_DeinterlaceF2}) {
        p.eInterlace = scan;
        EXPECT_EQ(FieldOrderSign(&p), 0);
    }
}

TEST(VideoAspect, FieldsThenSizeThenWide) {
    for (auto *aspect : {VideoAspect, AspectRatio}) {
        EXPECT_EQ(aspect(nullptr), 1.0);
        Z_VID_PROPS p{};
        EXPECT_EQ(aspect(&p), 1.7777777777777777);
        p.nWidth = 720;
        p.nHeight = 576;
        EXPECT_EQ(aspect(&p), 1.25);
        p.nHeight = -576;
        EXPECT_EQ(aspect(&p), 1.7777777777777777);
        p.nAspectX = 4;
        EXPECT_EQ(aspect(&p), 1.7777777777777777);
        p.nAspectY = 3;
        EXPECT_EQ(aspect(&p), 4.0 / 3.0);
        p.nAspectX = -4;    // read as signed numbers
        p.nAspectY = -3;
        EXPECT_EQ(aspect(&p), 1.7777777777777777);
    }
}

}    // namespace
}    // namespace zck
