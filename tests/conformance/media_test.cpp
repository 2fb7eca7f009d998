// Media records: values, tables, row sizes, the normalising step and the search for a standard format.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

#include "frames/media/audio_props.h"
#include "frames/media/pixel_format.h"
#include "frames/media/video_format.h"
#include "frames/media/video_props.h"
#include "platform/processor.h"
#include "tests/conformance/media_model.h"

namespace conformance {
namespace {

using zck::FrameBufferSize;
using zck::RowBytes;
using zck::RowPixels;
using zck::VideoFormatFromProps;
using zck::VideoPropsFromFormat;
using zck::VideoPropsUpdate;

eZVideoFormat Format(int32_t f) { return static_cast<eZVideoFormat>(f); }

Z_VID_PROPS Sized(int32_t width, int32_t height, double rate, int32_t scan = 0) {
    Z_VID_PROPS p = {};
    p.nWidth = width;
    p.nHeight = height;
    p.dblRate = rate;
    p.eInterlace = static_cast<eZInterlace>(scan);
    return p;
}

TEST(MediaValues, CodesAreTheCharactersLowByteFirst) {
    const std::pair<eZFCC, const char *> codes[] = {{eZFCC_r210, "r210"}, {eZFCC_v210, "v210"}, {eZFCC_I420, "I420"},
                                                    {eZFCC_YV12, "YV12"}, {eZFCC_NV12, "NV12"}, {eZFCC_YUY2, "YUY2"},
                                                    {eZFCC_HDYC, "HDYC"}, {eZFCC_YVYU, "YVYU"}, {eZFCC_UYVY, "UYVY"}};
    for (const auto &[code, text] : codes) {
        uint32_t value = 0;
        for (int i = 3; i >= 0; --i) value = value << 8 | static_cast<uint8_t>(text[i]);
        EXPECT_EQ(static_cast<uint32_t>(code), value) << text;
    }
    EXPECT_EQ(static_cast<uint32_t>(eZFCC_RGB8), 0xE436EB7AU);
    EXPECT_EQ(static_cast<uint32_t>(eZFCC_RGB24), 0xE436EB7DU);
    EXPECT_EQ(static_cast<uint32_t>(eZFCC_RGB32), 0xE436EB7EU);
    EXPECT_EQ(static_cast<uint32_t>(eZFCC_ARGB32), 0x773C9AC0U);
    EXPECT_EQ(static_cast<uint32_t>(eZFCC_GPU_YUV422), 0x65FFAF79U);
    EXPECT_EQ(static_cast<uint32_t>(eZFCC_GPU_RGB444), 0x65FFAF80U);
}

TEST(MediaValues, StereoFormatsAreBasePlusFlag) {
    EXPECT_EQ(eZVF_3D_SbS_720_50p, 6 + 512);
    EXPECT_EQ(eZVF_3D_SbS_1080_50i, 14 + 512);
    EXPECT_EQ(eZVF_3D_SbS_1080_60p, 19 + 512);
    EXPECT_EQ(eZVF_3D_TnB_720_50p, 6 + 1024);
    EXPECT_EQ(eZVF_3D_TnB_1080_30p, 13 + 1024);
    EXPECT_EQ(eZVF_3D_TnB_1080_50p, 17 + 1024);
    EXPECT_EQ(eZVF_3D_TnB_1080_60p, 19 + 1024);
    EXPECT_EQ(eZVF_3D_Full_SbS_720_50p, 6 + 4608);
    EXPECT_EQ(eZVF_3D_Full_SbS_1080_50i, 14 + 4608);
    EXPECT_EQ(eZVF_3D_Full_SbS_1080_60i, 16 + 4608);
    EXPECT_EQ(eZVF_3D_Full_TnB_720_50p, 6 + 5120);
    EXPECT_EQ(eZVF_3D_Full_TnB_1080_60i, 16 + 5120);
    EXPECT_EQ(eZVF_Disabled, 34);
}

TEST(MediaValues, FrameFlagNamesAreTheirParts) {
    const int32_t types[7][4] = {
        {eZFF_Intra, eZFF_Break_Intra, eZFF_Net_Intra, eZFF_Net_Break_Intra},
        {eZFF_Predicted, eZFF_Break_Predicted, eZFF_Net_Predicted, eZFF_Net_Break_Predicted},
        {eZFF_Bidir_Predicted, eZFF_Break_Bidir_Predicted, eZFF_Net_Bidir_Predicted, eZFF_Net_Break_Bidir_Predicted},
        {eZFF_S_GMC_VOP_MPEG4, eZFF_Break_S_GMC_VOP_MPEG4, eZFF_Net_S_GMC_VOP_MPEG4, eZFF_Net_Break_S_GMC_VOP_MPEG4},
        {eZFF_Switching_Intra, eZFF_Break_Switching_Intra, eZFF_Net_Switching_Intra, eZFF_Net_Break_Switching_Intra},
        {eZFF_Switching_Predicted, eZFF_Break_Switching_Predicted, eZFF_Net_Switching_Predicted,
         eZFF_Net_Break_Switching_Predicted},
        {eZFF_BI, eZFF_Break_BI, eZFF_Net_BI, eZFF_Net_Break_BI}};
    for (int32_t i = 0; i < 7; ++i) {
        const int32_t type = (i + 1) << 16;
        EXPECT_EQ(types[i][0], type);
        EXPECT_EQ(types[i][1], type | 1);
        EXPECT_EQ(types[i][2], type | 512);
        EXPECT_EQ(types[i][3], type | 513);
    }
    EXPECT_EQ(eZFF_Net_Break_BI, 459265);
    EXPECT_EQ(eZFF_Main_Mask | eZFF_Type_Mask, 65535 | 983040);
    EXPECT_EQ(eZFF_Last_Pause, 35);
    EXPECT_EQ(eZFF_Live_Break_Last, 259);
    EXPECT_EQ(eZFF_Net_Break_Last, 515);
}

TEST(MediaValues, TimecodeNamesAreTheirParts) {
    const int64_t plain[] = {eZTCF_DropFrame,
                             eZTCF_Rate_24,
                             eZTCF_Rate_25,
                             eZTCF_Rate_30,
                             eZTCF_Rate_30_DF,
                             eZTCF_Rate_50,
                             eZTCF_Rate_60,
                             eZTCF_Rate_60_DF,
                             eZTCF_Rate_50_Even,
                             eZTCF_Rate_60_Even,
                             eZTCF_Rate_60_DF_Even,
                             eZTCF_Progressive_Even_Frame,
                             eZTCF_Progressive_Odd_Frame};
    const int64_t value[] = {1, 16, 32, 64, 65, 288, 320, 321, 544, 576, 577, 256, 512};
    const int64_t source[] = {eZTCF_SrcTC_DropFrame,
                              eZTCF_SrcTC_Rate_24,
                              eZTCF_SrcTC_Rate_25,
                              eZTCF_SrcTC_Rate_30,
                              eZTCF_SrcTC_Rate_30_DF,
                              eZTCF_SrcTC_Rate_50,
                              eZTCF_SrcTC_Rate_60,
                              eZTCF_SrcTC_Rate_60_DF,
                              eZTCF_SrcTC_Rate_50_Even,
                              eZTCF_SrcTC_Rate_60_Even,
                              eZTCF_SrcTC_Rate_60_DF_Even,
                              eZTCF_SrcTC_Progressive_Even_Frame,
                              eZTCF_SrcTC_Progressive_Odd_Frame};
    const int64_t user[] = {eZTCF_UserTC_DropFrame,
                            eZTCF_UserTC_Rate_24,
                            eZTCF_UserTC_Rate_25,
                            eZTCF_UserTC_Rate_30,
                            eZTCF_UserTC_Rate_30_DF,
                            eZTCF_UserTC_Rate_50,
                            eZTCF_UserTC_Rate_60,
                            eZTCF_UserTC_Rate_60_DF,
                            eZTCF_UserTC_Rate_50_Even,
                            eZTCF_UserTC_Rate_60_Even,
                            eZTCF_UserTC_Rate_60_DF_Even,
                            eZTCF_UserTC_Progressive_Even_Frame,
                            eZTCF_UserTC_Progressive_Odd_Frame};
    for (size_t i = 0; i < std::size(plain); ++i) {
        EXPECT_EQ(plain[i], value[i]) << i;
        EXPECT_EQ(source[i], value[i] | 4096) << i;
        EXPECT_EQ(user[i], value[i] | 8192) << i;
    }
    EXPECT_EQ(static_cast<uint32_t>(eZTCF_Invalid), 0x80000000U);
    EXPECT_EQ(static_cast<uint32_t>(eZTCF_Rate), 4080U);
}

TEST(PixelFormats, BitsAndClassesOfEveryCode) {
    for (const eZFCC fcc : AllCodes()) {
        EXPECT_EQ(zck::PixelBits(fcc), Bits(fcc)) << std::hex << fcc;
        EXPECT_EQ(zck::IsPlanarFormat(fcc), Planar(fcc)) << std::hex << fcc;
        EXPECT_EQ(zck::IsPackedFormat(fcc), Packed(fcc)) << std::hex << fcc;
        EXPECT_EQ(zck::IsRgbFormat(fcc), Rgb(fcc)) << std::hex << fcc;
    }
}

TEST(PixelFormats, RowsOfEveryCodeAndWidth) {
    for (const eZFCC fcc : AllCodes()) {
        for (int32_t w = -70; w < 200; ++w) EXPECT_EQ(RowBytes(fcc, w), Row(fcc, w)) << std::hex << fcc << std::dec << " " << w;
        for (const int32_t w : {1919, 1920, 1921, 4096, INT32_MAX, INT32_MAX - 1, INT32_MIN, INT32_MAX / 4, INT32_MAX / 2})
            EXPECT_EQ(RowBytes(fcc, w), Row(fcc, w)) << std::hex << fcc << std::dec << " " << w;
        for (const int32_t r : {-513, -1, 0, 1, 2, 3, 4, 127, 128, 255, 256, 5119, 5120, 7680, INT32_MAX, INT32_MIN})
            EXPECT_EQ(RowPixels(fcc, r), Pixels(fcc, r)) << std::hex << fcc << std::dec << " " << r;
    }
    EXPECT_EQ(RowBytes(eZFCC_v210, 1920), 5120);
    EXPECT_EQ(RowBytes(eZFCC_v210, 1921), 5248);
    EXPECT_EQ(RowBytes(eZFCC_RGB24, 5), 16);
    EXPECT_EQ(RowBytes(eZFCC_RGB32, INT32_MAX), INT32_MAX);
    EXPECT_EQ(RowBytes(eZFCC_v210, INT32_MIN), INT32_MIN);
    EXPECT_EQ(RowPixels(eZFCC_GPU_YUV422, 100), 0);
}

TEST(PixelFormats, TableOfBitmapDescriptions) {
    struct Row {
        uint32_t code;
        int32_t bits, divX, divY, o0, o1, o2, s0, s1, s2;
        bool planar, tag;
    };
    const Row rows[15] = {
        {eZFCC_YUY2, 16, 2, 1, 0, 1, 3, 2, 4, 4, false, true},   {eZFCC_UYVY, 16, 2, 1, 1, 0, 2, 2, 4, 4, false, true},
        {eZFCC_YV12, 12, 2, 2, 0, 0, 0, 1, 1, 1, true, true},    {eZFCC_YVYU, 16, 2, 1, 0, 3, 1, 2, 4, 4, false, true},
        {eZFCC_I420, 12, 2, 2, 0, 0, 0, 1, 1, 1, true, true},    {0x32555949, 24, 1, 1, 2, 1, 0, 3, 3, 3, false, true},
        {eZFCC_RGB32, 32, 1, 1, 2, 1, 0, 4, 4, 4, false, false}, {eZFCC_ARGB32, 32, 1, 1, 2, 1, 0, 4, 4, 4, false, false},
        {eZFCC_RGB24, 24, 1, 1, 2, 1, 0, 3, 3, 3, false, false}, {0xE436EB7B, 16, 1, 1, 1, 0, 0, 2, 2, 2, false, false},
        {0xE436EB7C, 16, 1, 1, 1, 0, 0, 2, 2, 2, false, false},  {eZFCC_HDYC, 16, 2, 1, 1, 0, 2, 2, 4, 4, false, true},
        {eZFCC_v210, 20, 2, 1, 1, 0, 2, 2, 4, 4, false, true},   {eZFCC_r210, 32, 1, 1, 0, 1, 2, 4, 4, 4, false, false},
        {eZFCC_NV12, 12, 2, 2, 0, 0, 0, 1, 1, 1, true, true}};
    ASSERT_EQ(zck::kPixelFormatRows, 15);
    for (int i = 0; i < 15; ++i) {
        const zck::FormatRow &row = zck::PixelFormatTable()[i];
        const Row &r = rows[i];
        EXPECT_EQ(static_cast<uint32_t>(row.fcc), r.code) << i;
        EXPECT_EQ(row.nBits, r.bits) << i;
        EXPECT_EQ(row.nDivX, r.divX) << i;
        EXPECT_EQ(row.nDivY, r.divY) << i;
        EXPECT_EQ(row.nOffset[0], r.o0) << i;
        EXPECT_EQ(row.nOffset[1], r.o1) << i;
        EXPECT_EQ(row.nOffset[2], r.o2) << i;
        EXPECT_EQ(row.nStep[0], r.s0) << i;
        EXPECT_EQ(row.nStep[1], r.s1) << i;
        EXPECT_EQ(row.nStep[2], r.s2) << i;
        EXPECT_EQ(row.bPlanar, r.planar) << i;
        EXPECT_EQ(row.bCompressionTag, r.tag) << i;
        EXPECT_EQ(zck::PixelFormatFind(row.fcc), &row) << i;
    }
    EXPECT_EQ(zck::PixelFormatFind(eZFCC_RGB8), nullptr);
    EXPECT_EQ(zck::PixelFormatFind(eZFCC_Default), nullptr);
    EXPECT_EQ(zck::PixelFormatFind(eZFCC_GPU_RGB444), nullptr);
}

TEST(VideoFormats, RateScanAndMarginOfEveryLowByte) {
    for (int32_t base = 0; base < 256; ++base)
        for (const int32_t flags : {0, 512, 1024, 4608, 5120, 0x7F00, INT32_MIN}) {
            const eZVideoFormat f = Format(base | flags);
            EXPECT_EQ(zck::VideoFormatRate(f), FormatOf(base).rate) << base;
            EXPECT_EQ(zck::VideoFormatScan(f), FormatOf(base).scan) << base;
            EXPECT_EQ(zck::VideoFormatMargin(f), MarginOf(base)) << base;
        }
}

TEST(VideoFormats, RecordOfEveryFormat) {
    for (int32_t base = 0; base < 40; ++base)
        for (const int32_t flags : {0, 512, 1024, 4096, 4608, 5120, 5632, 2048})
            for (const eZFCC fcc : AllCodes())
                EXPECT_EQ(Words(VideoPropsFromFormat(Format(base | flags), fcc)), Words(FromFormat(base | flags, fcc)));
    const Z_VID_PROPS full = VideoPropsFromFormat(eZVF_3D_Full_SbS_1080_50i, eZFCC_Default);
    EXPECT_EQ(full.nWidth, 3840);
    EXPECT_EQ(full.nHeight, 1080);
    const Z_VID_PROPS half = VideoPropsFromFormat(eZVF_3D_SbS_1080_50i, eZFCC_Default);
    EXPECT_EQ(half.nWidth, 1920);
    const Z_VID_PROPS rgb = VideoPropsFromFormat(eZVF_HD1080_50i, eZFCC_RGB32);
    EXPECT_EQ(rgb.nHeight, -1080);
    EXPECT_EQ(rgb.nRowBytes, 7680);
}

TEST(VideoAspectRatio, FieldsThenPositiveHeightThenSixteenToNine) {
    EXPECT_EQ(zck::VideoAspect(nullptr), 1.0);
    EXPECT_EQ(zck::AspectRatio(nullptr), 1.0);
    for (const int32_t x : {-4, 0, 1, 4, 16, 32767})
        for (const int32_t y : {-3, 0, 3, 9})
            for (const int32_t h : {-576, 0, 1, 576}) {
                Z_VID_PROPS p = Sized(720, h, 25);
                p.nAspectX = static_cast<int16_t>(x);
                p.nAspectY = static_cast<int16_t>(y);
                EXPECT_EQ(zck::VideoAspect(&p), Aspect(&p)) << x << ":" << y << " " << h;
                EXPECT_EQ(zck::AspectRatio(&p), Aspect(&p)) << x << ":" << y << " " << h;
            }
    const Z_VID_PROPS down = Sized(100, -100, 25);
    EXPECT_EQ(zck::VideoAspect(&down), 1.7777777777777777);
}

TEST(FormatProbe, WorkedCases) {
    const auto found = [](Z_VID_PROPS p) { return static_cast<int32_t>(VideoFormatFromProps(&p)); };
    EXPECT_EQ(VideoFormatFromProps(nullptr), eZVF_Custom);
    EXPECT_EQ(found(Sized(720, 576, 25.005)), eZVF_PAL);
    EXPECT_EQ(found(Sized(720, 576, 25.02)), eZVF_Custom);
    Z_VID_PROPS tall = Sized(720, 608, 25);
    tall.nAspectX = 133;
    tall.nAspectY = 100;
    EXPECT_EQ(found(tall), eZVF_PAL);
    tall.nHeight = 615;
    EXPECT_EQ(found(tall), eZVF_PAL);
    tall.nHeight = 616;
    EXPECT_EQ(found(tall), eZVF_Custom);
    EXPECT_EQ(found(Sized(720, -576, 25)), eZVF_PAL_16x9);    // no aspect and a negative height
    EXPECT_EQ(found(Sized(720, 576, 25, eZI_Progressive)), eZVF_PAL);
    EXPECT_EQ(found(Sized(720, 519, 23.976)), eZVF_NTSC_2398);
    EXPECT_EQ(found(Sized(720, 520, 23.976)), eZVF_Custom);
    EXPECT_EQ(found(Sized(720, 480, 29.97)), eZVF_NTSC_16x9);    // 3:2 by its size
    EXPECT_EQ(found(Sized(720, 519, 29.97)), eZVF_NTSC);
    EXPECT_EQ(found(Sized(1920, 1088, 59.94, eZI_Progressive)), eZVF_HD1080_5994p);
    EXPECT_EQ(found(Sized(1920, 1080, 29.97)), eZVF_HD1080_5994i);
    EXPECT_EQ(found(Sized(1920, 1080, 25)), eZVF_HD1080_50i);
    EXPECT_EQ(found(Sized(1920, 1080, 25, eZI_Progressive)), eZVF_HD1080_25p);
    EXPECT_EQ(found(Sized(1920, 1080, 25, eZI_Field2First)), eZVF_Custom);
    EXPECT_EQ(found(Sized(1920, 2160, 25)), eZVF_HD1080_50i | 0x1400);
    EXPECT_EQ(found(Sized(1920, -2160, 25)), eZVF_Custom);
    Z_VID_PROPS wide = Sized(3840, 1080, 25);
    wide.fccType = eZFCC_UYVY;
    wide.nRowBytes = 7680;
    EXPECT_EQ(found(wide), eZVF_HD1080_50i | 0x200);
    wide.nRowBytes = 2 * 7680;
    EXPECT_EQ(found(wide), eZVF_Custom);
    wide.nRowBytes = 2 * 7680 - 1;
    EXPECT_EQ(found(wide), eZVF_HD1080_50i | 0x200);
    wide.fccType = eZFCC_Default;
    EXPECT_EQ(found(wide), eZVF_Custom);
    wide.nRowBytes = -1;
    EXPECT_EQ(found(wide), eZVF_HD1080_50i | 0x200);
    EXPECT_EQ(found(Sized(2048, 1556, 24)), eZVF_Custom);
    EXPECT_EQ(found(Sized(1920, 1080, std::numeric_limits<double>::quiet_NaN())), eZVF_Custom);
    Z_VID_PROPS stereo = Sized(1920, 1080, 24);
    stereo.e3DFormat = eZ3D_FullTopAndBottom;
    EXPECT_EQ(found(stereo), eZVF_HD1080_24p | 0x400);
}

TEST(FormatProbe, WholeTableOfSizesRatesAndScans) {
    const int32_t widths[] = {719, 720, 1279, 1280, 1440, 1920, 2048, 2560, 3839, 3840, 4096, 7680, 8192};
    const int32_t heights[] = {479,  480,  486,  519,  520,  575,   576,   608,   615,   616,  719,  720,       750,
                               751,  1079, 1080, 1088, 1125, 1126,  1439,  1440,  1500,  1502, 2159, 2160,      2250,
                               2252, 4320, -480, -576, -720, -1080, -1125, -2160, -4320, 0,    1,    INT32_MIN, INT32_MAX};
    const double rates[] = {0,  23.976023976023978, 24, 24.0099, 24.01, 25, 25.0100001, 29.970029970029973, 30,
                            50, 59.940059940059946, 60, 24.985};
    for (const int32_t w : widths)
        for (const int32_t h : heights)
            for (const double rate : rates)
                for (const int32_t scan : {0, 1, 2, 3, 4})
                    for (const int32_t stereo : {0, 512, 5120})
                        for (const int32_t row : {0, 2, 3}) {
                            Z_VID_PROPS p = Sized(w, h, rate, scan);
                            p.fccType = row == 3 ? eZFCC_RGB32 : eZFCC_UYVY;
                            p.nRowBytes = w * row;
                            p.e3DFormat = static_cast<eZ3DFormat>(stereo);
                            p.nAspectX = static_cast<int16_t>(h % 3 == 0 ? 16 : 4);
                            p.nAspectY = static_cast<int16_t>(h % 3 == 0 ? 9 : 3);
                            ASSERT_EQ(VideoFormatFromProps(&p), Found(&p)) << Words(p);
                        }
}

TEST(VideoUpdate, WorkedCases) {
    EXPECT_EQ(VideoPropsUpdate(nullptr, false), 0);
    Z_VID_PROPS p = {};
    p.eVideoFormat = eZVF_HD1080_50i;
    p.nHeight = 1;
    VideoPropsUpdate(&p, false);
    EXPECT_EQ(p.nHeight, 1080);
    p = {};
    p.eVideoFormat = eZVF_HD1080_50i;
    p.nHeight = -1;
    VideoPropsUpdate(&p, false);
    EXPECT_EQ(p.nHeight, -1080);

    p = {};
    p.eVideoFormat = eZVF_Disabled;
    p.nAspectX = 16;
    p.nRowBytes = -7;
    const std::string before = Words(p);
    EXPECT_EQ(VideoPropsUpdate(&p, false), eZVF_Disabled);
    EXPECT_EQ(VideoPropsUpdate(&p, true), eZVF_Disabled);
    EXPECT_EQ(Words(p), before);

    p.eVideoFormat = Format(34 | 512);    // not disabled but unknown: only the half-set aspect goes
    EXPECT_EQ(VideoPropsUpdate(&p, false), 0);
    EXPECT_EQ(p.nAspectX, 0);
    EXPECT_EQ(p.eVideoFormat, 34 | 512);
    EXPECT_EQ(p.nRowBytes, -7);

    // A resized record no longer claims its standard; a 2K record keeps it.
    p = VideoPropsFromFormat(eZVF_HD1080_50i, eZFCC_UYVY);
    p.nWidth = 1000;
    EXPECT_EQ(VideoPropsUpdate(&p, false), eZVF_Custom);
    p = VideoPropsFromFormat(eZVF_2K_24p, eZFCC_UYVY);
    EXPECT_EQ(VideoPropsUpdate(&p, false), eZVF_2K_24p);
    p = VideoPropsFromFormat(eZVF_3D_SbS_1080_50i, eZFCC_UYVY);
    EXPECT_EQ(VideoPropsUpdate(&p, false), eZVF_3D_SbS_1080_50i);
    p = VideoPropsFromFormat(eZVF_3D_Full_SbS_1080_50i, eZFCC_UYVY);
    EXPECT_EQ(VideoPropsUpdate(&p, false), eZVF_3D_Full_SbS_1080_50i);

    // The rate is the table's, whatever the caller set.
    p = VideoPropsFromFormat(eZVF_PAL, eZFCC_UYVY);
    p.dblRate = 50;
    VideoPropsUpdate(&p, false);
    EXPECT_EQ(p.dblRate, 25.0);

    // A trusted record of field 2 first ends progressive, also for the format that is interlaced so.
    p = VideoPropsFromFormat(eZVF_NTSC, eZFCC_UYVY);
    VideoPropsUpdate(&p, true);
    EXPECT_EQ(p.eInterlace, eZI_Progressive);
}

TEST(VideoUpdate, RandomRecordsAgreeWithTheModel) {
    const uint32_t seed = 20240;
    std::mt19937 random(seed);
    const auto pick = [&](auto list) { return *(list.begin() + static_cast<ptrdiff_t>(random() % list.size())); };
    const int32_t formats[] = {0,    0,    0,    1,    2,    3,    4,        5,   6,         9,     10,  14,  15,
                               16,   17,   20,   23,   26,   28,   31,       33,  34,        35,    518, 526, 531,
                               1030, 1038, 4614, 4622, 5126, 5134, 34 | 512, 200, 4096 + 14, 0x200, -1};
    for (int i = 0; i < 100000; ++i) {
        Z_VID_PROPS p = {};
        p.eVideoFormat = Format(formats[random() % std::size(formats)]);
        p.fccType = AllCodes()[random() % AllCodes().size()];
        p.nWidth = pick(std::initializer_list<int32_t>{0, 0, -3, 1, 720, 1280, 1920, 1920, 2048, 3840, 4096, 100, INT32_MAX});
        p.nHeight = pick(std::initializer_list<int32_t>{0,    0,     1,    -1,   2,    -2,    486, 576, -576, 720,
                                                        1080, -1080, 1088, 1556, 2160, -2160, 626, 625, -626, INT32_MIN});
        p.nRowBytes =
            pick(std::initializer_list<int32_t>{0, 0, 0, -5, 1, 1440, 2880, 3840, 7680, 7681, 15360, 5120, INT32_MAX});
        p.eInterlace = static_cast<eZInterlace>(pick(std::initializer_list<int32_t>{0, 0, 1, 2, 3, 4, 5, 256, 512}));
        p.nAspectX = static_cast<int16_t>(pick(std::initializer_list<int32_t>{0, 0, 4, 16, -1, 239}));
        p.nAspectY = static_cast<int16_t>(pick(std::initializer_list<int32_t>{0, 0, 3, 9, -1, 100}));
        p.dblRate = pick(std::initializer_list<double>{0, 23.976023976023978, 24, 25, 29.970029970029973, 30, 50, 60, -1});
        p.eScaleType = static_cast<eZScaleType>(random() % 5);
        p.e3DFormat = static_cast<eZ3DFormat>(pick(std::initializer_list<int32_t>{0, 0, 1, 512, 1024, 4608, 5120, 2048}));
        for (const bool trust : {false, true}) {
            Z_VID_PROPS got = p, want = p;
            const int32_t gave = VideoPropsUpdate(&got, trust), should = Update(&want, trust);
            ASSERT_EQ(Words(got), Words(want)) << "trust " << trust << " of " << Words(p) << " seed " << seed;
            ASSERT_EQ(gave, should) << "trust " << trust << " of " << Words(p);
        }
        ASSERT_EQ(zck::VideoPropsValid(&p), Valid(&p)) << Words(p);
        ASSERT_EQ(FrameBufferSize(&p), BufferSize(&p)) << Words(p);
        ASSERT_EQ(zck::FieldOrderSign(&p), OrderSign(&p)) << Words(p);
    }
}

TEST(FrameBuffer, WorkedSizes) {
    Z_VID_PROPS p = Picture(eZFCC_I420, 720, 576);
    EXPECT_EQ(FrameBufferSize(&p), 622080);
    p.fccType = Fcc(0x34343459);
    EXPECT_EQ(FrameBufferSize(&p), 622080);
    p = Picture(eZFCC_RGB32, 10, -7);
    EXPECT_EQ(FrameBufferSize(&p), 280);
    p.nRowBytes = -40;
    EXPECT_EQ(FrameBufferSize(&p), 280);
    EXPECT_EQ(FrameBufferSize(nullptr), 0);
    p = Picture(eZFCC_RGB32, 32768, 16384);    // one byte too many for 31 bits
    EXPECT_EQ(FrameBufferSize(&p), 0);
    p.nRowBytes = INT32_MAX;
    p.nHeight = 1;
    EXPECT_EQ(FrameBufferSize(&p), INT32_MAX);
    p.nRowBytes = 1;
    p.nHeight = INT32_MIN;
    EXPECT_EQ(FrameBufferSize(&p), 0);
    // A planar size that only the second look knows: the first update finds the format, the second fills the row.
    p = Sized(720, 576, 25);
    p.fccType = eZFCC_I420;
    EXPECT_EQ(FrameBufferSize(&p), 0);
    EXPECT_EQ(VideoPropsUpdate(&p, false), eZVF_PAL);
    EXPECT_EQ(p.nRowBytes, 0);
    EXPECT_EQ(FrameBufferSize(&p), 622080);
}

TEST(FrameBuffer, NeededBytesEndWithTheLastPixel) {
    Z_VID_PROPS p = Picture(eZFCC_RGB32, 10, 5);
    p.nRowBytes = 100;
    EXPECT_EQ(zck::VideoBytesNeeded(p), 4 * 100 + 40);
    p.nHeight = -5;
    EXPECT_EQ(zck::VideoBytesNeeded(p), 4 * 100 + 40);
    p = Picture(eZFCC_UYVY, 10, 5);
    EXPECT_EQ(zck::VideoBytesNeeded(p), 4 * 20 + 20);
    p = Picture(eZFCC_RGB24, 5, 3);
    EXPECT_EQ(zck::VideoBytesNeeded(p), 2 * 16 + 15);
    p = Picture(eZFCC_v210, 13, 3);
    EXPECT_EQ(zck::VideoBytesNeeded(p), 2 * 128 + 3 * 16);
    p = Picture(eZFCC_I420, 16, 8);
    EXPECT_EQ(zck::VideoBytesNeeded(p), 192);
}

TEST(AudioRecords, ValidityBytesAndSamples) {
    EXPECT_FALSE(zck::AudioPropsValid(nullptr, true));
    EXPECT_FALSE(zck::AudioPropsValid(nullptr, false));
    EXPECT_EQ(zck::AudioBytes(nullptr, 100), 0);
    EXPECT_EQ(zck::AudioSamples(nullptr, 100), 0);
    for (const int32_t channels : {-1, 0, 1, 2, 6})
        for (const int32_t rate : {-1, 0, 48000})
            for (const int32_t bits : {-32, 0, 1, 8, 12, 16, 17, 24, 25, 32}) {
                const Z_AUD_PROPS a = {channels, rate, bits, 7};
                const bool strict = channels > 0 && rate > 0 && bits != 0;
                EXPECT_EQ(zck::AudioPropsValid(&a, true), strict);
                EXPECT_EQ(zck::AudioPropsValid(&a, false), channels != 0 || rate != 0 || bits != 0);
                const int64_t width = (std::abs(bits) + 7) / 8;
                for (const int64_t n : {int64_t{-5}, int64_t{0}, int64_t{1}, int64_t{1920}, int64_t{10000000019}}) {
                    EXPECT_EQ(zck::AudioBytes(&a, n), strict ? n * channels * width : 0);
                    EXPECT_EQ(zck::AudioSamples(&a, n), strict ? n / (channels * width) : 0);
                }
            }
    const Z_AUD_PROPS stereo16 = {2, 48000, 16, 0}, stereo32f = {2, 48000, -32, 0};
    EXPECT_EQ(zck::AudioBytes(&stereo16, 1920), 7680);
    EXPECT_EQ(zck::AudioBytes(&stereo32f, 1920), 15360);
    EXPECT_EQ(zck::AudioWorkSampleBytes(24), 4);
    EXPECT_EQ(zck::AudioWorkSampleBytes(-17), 4);
    EXPECT_EQ(zck::AudioWorkSampleBytes(16), 2);
    EXPECT_EQ(zck::AudioSampleBytes(24), 3);
    EXPECT_EQ(zck::AudioSampleBytes(INT32_MIN), 268435456);
}

TEST(ProcessorProbe, SpeedAndLevel) {
    EXPECT_FALSE(zck::CpuSpeedMHz(nullptr, false));
    uint32_t mhz = 12345;
    if (zck::CpuSpeedMHz(&mhz, true)) {
        EXPECT_GT(mhz, 50U);
        EXPECT_LT(mhz, 20000U);
    } else {
        EXPECT_EQ(mhz, 0U);
    }
    const int level = zck::CpuFeatureLevel();
    EXPECT_TRUE(level == 0 || (level >= 64 && level <= 69)) << level;
}

}    // namespace
}    // namespace conformance
