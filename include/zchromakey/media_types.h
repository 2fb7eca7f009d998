// The public media vocabulary: pixel formats, standard video formats, and the plain records that describe a frame.
//
// Records have natural alignment, and their sizes and offsets are fixed: they travel by value between objects, across
// process borders and into stream files. Every enumeration is 32 bits wide. Media time counts in units of 100
// nanoseconds. Nothing in this header allocates or owns anything.
#pragma once

#include <cstddef>
#include <cstdint>

#include "zchromakey/com.h"

/// Pixel format: a four-character code (low byte first) or the first 32 bits of a media-subtype identifier.
enum eZFCC : uint32_t {
    eZFCC_Default = 0,                ///< no format chosen yet
    eZFCC_r210 = 0x30313272,          ///< 10-bit RGB, 4 bytes a pixel; only sized and named, no conversion reads it
    eZFCC_v210 = 0x30313276,          ///< 10-bit 4:2:2, 16 bytes for 6 pixels
    eZFCC_I420 = 0x30323449,          ///< planar 4:2:0: Y, Cb, Cr
    eZFCC_YV12 = 0x32315659,          ///< planar 4:2:0: Y, Cr, Cb
    eZFCC_NV12 = 0x3231564E,          ///< 4:2:0: Y plane, then interleaved Cb Cr
    eZFCC_YUY2 = 0x32595559,          ///< packed 4:2:2, BT.601: Y0 Cb Y1 Cr
    eZFCC_HDYC = 0x43594448,          ///< packed 4:2:2, BT.709: Cb Y0 Cr Y1
    eZFCC_YVYU = 0x55595659,          ///< packed 4:2:2, BT.601: Y0 Cr Y1 Cb
    eZFCC_UYVY = 0x59565955,          ///< packed 4:2:2, BT.601: Cb Y0 Cr Y1
    eZFCC_RGB24 = 0xE436EB7D,         ///< blue, green, red
    eZFCC_RGB32 = 0xE436EB7E,         ///< blue, green, red, unused
    eZFCC_ARGB32 = 0x773C9AC0,        ///< blue, green, red, alpha; alpha 0 is transparent, 255 opaque
    eZFCC_RGB8 = 0xE436EB7A,          ///< one byte a pixel
    eZFCC_GPU_YUV422 = 0x65FFAF79,    ///< a surface held by the graphics processor, no plane in memory
    eZFCC_GPU_RGB444 = 0x65FFAF80,    ///< likewise
};

/// Field order of a picture, or the order to remove one field (`FrameAVPropsSet` of the private view).
enum eZInterlace : int32_t {
    eZI_Default = 0,        ///< as the standard format says
    eZI_Field1First = 1,    ///< upper field first
    eZI_Field2First = 2,    ///< lower field first
    eZI_Progressive = 3,
    eZI_Inverse = 4,
    eZI_OneField = 5,
    eZI_DeinterlaceF1 = 256,
    eZI_DeinterlaceF2 = 512,
};

/// How a picture is fitted when it is scaled to another shape.
enum eZScaleType : int32_t {
    eZST_Default = 0,
    eZST_None = 1,
    eZST_LetterBox = 2,
    eZST_Crop = 3,
    eZST_NoScale = 4,
};

/// Stereo layout of a picture.
enum eZ3DFormat : int32_t {
    eZ3D_None = 0,
    eZ3D_Auto = 1,
    eZ3D_SideBySide = 512,
    eZ3D_TopAndBottom = 1024,
    eZ3D_Tile = 2048,
    eZ3D_FullFlag = 4096,
    eZ3D_FullSideBySide = 4608,
    eZ3D_FullTopAndBottom = 5120,
};

/// State of the loudness block.
enum eZANCFlags : int32_t {
    eZAF_None = 0,
    eZAF_AL_Valid = 2,    ///< the loudness blocks hold valid data
};

/// What a clone takes over from its source; a set of bits.
enum eZFrameClone : int32_t {
    eZFC_Props = 0,              ///< time and properties only
    eZFC_Video = 1,              ///< a private copy of the video bytes
    eZFC_VideoRef = 2,           ///< the video bytes are shared with the source
    eZFC_Audio = 16,             ///< the audio bytes
    eZFC_VideoRef_Audio = 18,    ///< shared video and audio
    eZFC_Data = 256,             ///< ancillary data and text attributes
    eZFC_Obj = 512,              ///< attached objects
    eZFC_Data_Audio = 272,
    eZFC_ObjData_Audio = 784,
    eZFC_Reference = 786,    ///< shared video and everything else
    eZFC_Full = 785,         ///< copied video and everything else
};

/// State flags (low 16 bits) and picture type (bits 16 to 19) of a frame.
enum eZFrameFlags : int32_t {
    eZFF_None = 0,
    eZFF_Break = 1,
    eZFF_Last = 2,
    eZFF_Live = 256,
    eZFF_Net = 512,
    eZFF_Reverse = 4096,
    eZFF_Dup = 17,
    eZFF_Pause = 33,
    eZFF_Last_Dup = 19,
    eZFF_Last_Pause = 35,
    eZFF_Break_Last = 3,
    eZFF_Live_Break = 257,
    eZFF_Live_Last = 258,
    eZFF_Live_Break_Last = 259,
    eZFF_Net_Break = 513,
    eZFF_Net_Last = 514,
    eZFF_Net_Break_Last = 515,
    eZFF_Intra = 65536,
    eZFF_Predicted = 131072,
    eZFF_Bidir_Predicted = 196608,
    eZFF_S_GMC_VOP_MPEG4 = 262144,
    eZFF_Switching_Intra = 327680,
    eZFF_Switching_Predicted = 393216,
    eZFF_BI = 458752,
    eZFF_Break_Intra = 65537,
    eZFF_Break_Predicted = 131073,
    eZFF_Break_Bidir_Predicted = 196609,
    eZFF_Break_S_GMC_VOP_MPEG4 = 262145,
    eZFF_Break_Switching_Intra = 327681,
    eZFF_Break_Switching_Predicted = 393217,
    eZFF_Break_BI = 458753,
    eZFF_Net_Intra = 66048,
    eZFF_Net_Predicted = 131584,
    eZFF_Net_Bidir_Predicted = 197120,
    eZFF_Net_S_GMC_VOP_MPEG4 = 262656,
    eZFF_Net_Switching_Intra = 328192,
    eZFF_Net_Switching_Predicted = 393728,
    eZFF_Net_BI = 459264,
    eZFF_Net_Break_Intra = 66049,
    eZFF_Net_Break_Predicted = 131585,
    eZFF_Net_Break_Bidir_Predicted = 197121,
    eZFF_Net_Break_S_GMC_VOP_MPEG4 = 262657,
    eZFF_Net_Break_Switching_Intra = 328193,
    eZFF_Net_Break_Switching_Predicted = 393729,
    eZFF_Net_Break_BI = 459265,
    eZFF_Main_Mask = 65535,     ///< the state flags
    eZFF_Type_Mask = 983040,    ///< the picture type
};

/// Kind of a time code: drop frame, rate field, field of a doubled rate, and where it came from.
enum eZTimecodeFlags : uint32_t {
    eZTCF_NonDropFrame = 0,
    eZTCF_DropFrame = 1,
    eZTCF_Rate = 4080,    ///< mask of the rate field
    eZTCF_Rate_24 = 16,
    eZTCF_Rate_25 = 32,
    eZTCF_Rate_30 = 64,
    eZTCF_Rate_30_DF = 65,
    eZTCF_Progressive_Even_Frame = 256,
    eZTCF_Progressive_Odd_Frame = 512,
    eZTCF_Rate_50 = 288,
    eZTCF_Rate_60 = 320,
    eZTCF_Rate_60_DF = 321,
    eZTCF_Rate_50_Even = 544,
    eZTCF_Rate_60_Even = 576,
    eZTCF_Rate_60_DF_Even = 577,
    eZTCF_SrcTC = 4096,    ///< the source's time code
    eZTCF_SrcTC_DropFrame = 4097,
    eZTCF_SrcTC_Rate_24 = 4112,
    eZTCF_SrcTC_Rate_25 = 4128,
    eZTCF_SrcTC_Rate_30 = 4160,
    eZTCF_SrcTC_Rate_30_DF = 4161,
    eZTCF_SrcTC_Progressive_Even_Frame = 4352,
    eZTCF_SrcTC_Progressive_Odd_Frame = 4608,
    eZTCF_SrcTC_Rate_50 = 4384,
    eZTCF_SrcTC_Rate_60 = 4416,
    eZTCF_SrcTC_Rate_60_DF = 4417,
    eZTCF_SrcTC_Rate_50_Even = 4640,
    eZTCF_SrcTC_Rate_60_Even = 4672,
    eZTCF_SrcTC_Rate_60_DF_Even = 4673,
    eZTCF_UserTC = 8192,    ///< a user's time code
    eZTCF_UserTC_DropFrame = 8193,
    eZTCF_UserTC_Rate_24 = 8208,
    eZTCF_UserTC_Rate_25 = 8224,
    eZTCF_UserTC_Rate_30 = 8256,
    eZTCF_UserTC_Rate_30_DF = 8257,
    eZTCF_UserTC_Progressive_Even_Frame = 8448,
    eZTCF_UserTC_Progressive_Odd_Frame = 8704,
    eZTCF_UserTC_Rate_50 = 8480,
    eZTCF_UserTC_Rate_60 = 8512,
    eZTCF_UserTC_Rate_60_DF = 8513,
    eZTCF_UserTC_Rate_50_Even = 8736,
    eZTCF_UserTC_Rate_60_Even = 8768,
    eZTCF_UserTC_Rate_60_DF_Even = 8769,
    eZTCF_Invalid = 0x80000000,
};

/// Standard video format: a base number in the low byte, stereo flags (`eZ3DFormat`) above it.
/// Interlaced names carry the field rate: `eZVF_HD1080_50i` runs at 25 frames a second.
enum eZVideoFormat : int32_t {
    eZVF_Custom = 0,    ///< described by its other fields only
    eZVF_NTSC = 1,
    eZVF_NTSC_2398 = 2,
    eZVF_NTSC_16x9 = 3,
    eZVF_PAL = 4,
    eZVF_PAL_16x9 = 5,
    eZVF_HD720_50p = 6,
    eZVF_HD720_5994p = 7,
    eZVF_HD720_60p = 8,
    eZVF_HD1080_2398p = 9,
    eZVF_HD1080_24p = 10,
    eZVF_HD1080_25p = 11,
    eZVF_HD1080_2997p = 12,
    eZVF_HD1080_30p = 13,
    eZVF_HD1080_50i = 14,
    eZVF_HD1080_5994i = 15,
    eZVF_HD1080_60i = 16,
    eZVF_HD1080_50p = 17,
    eZVF_HD1080_5994p = 18,
    eZVF_HD1080_60p = 19,
    eZVF_2K_2398p = 20,
    eZVF_2K_24p = 21,
    eZVF_2K_25p = 22,
    eZVF_4K_UHD_50i = 23,
    eZVF_4K_UHD_5994i = 24,
    eZVF_4K_UHD_60i = 25,
    eZVF_4K_UHD_2398p = 26,
    eZVF_4K_UHD_24p = 27,
    eZVF_4K_UHD_25p = 28,
    eZVF_4K_UHD_2997p = 29,
    eZVF_4K_UHD_30p = 30,
    eZVF_4K_DCI_2398p = 31,
    eZVF_4K_DCI_24p = 32,
    eZVF_4K_DCI_25p = 33,
    eZVF_Disabled = 34,    ///< passes through normalising untouched
    eZVF_3D_SbS_720_50p = 518,
    eZVF_3D_SbS_720_5994p = 519,
    eZVF_3D_SbS_720_60p = 520,
    eZVF_3D_SbS_1080_2398p = 521,
    eZVF_3D_SbS_1080_24p = 522,
    eZVF_3D_SbS_1080_25p = 523,
    eZVF_3D_SbS_1080_2997p = 524,
    eZVF_3D_SbS_1080_30p = 525,
    eZVF_3D_SbS_1080_50i = 526,
    eZVF_3D_SbS_1080_5994i = 527,
    eZVF_3D_SbS_1080_60i = 528,
    eZVF_3D_SbS_1080_50p = 529,
    eZVF_3D_SbS_1080_5994p = 530,
    eZVF_3D_SbS_1080_60p = 531,
    eZVF_3D_TnB_720_50p = 1030,
    eZVF_3D_TnB_720_5994p = 1031,
    eZVF_3D_TnB_720_60p = 1032,
    eZVF_3D_TnB_1080_2398p = 1033,
    eZVF_3D_TnB_1080_24p = 1034,
    eZVF_3D_TnB_1080_25p = 1035,
    eZVF_3D_TnB_1080_2997p = 1036,
    eZVF_3D_TnB_1080_30p = 1037,
    eZVF_3D_TnB_1080_50p = 1041,
    eZVF_3D_TnB_1080_5994p = 1042,
    eZVF_3D_TnB_1080_60p = 1043,
    eZVF_3D_Full_SbS_720_50p = 4614,
    eZVF_3D_Full_SbS_720_5994p = 4615,
    eZVF_3D_Full_SbS_720_60p = 4616,
    eZVF_3D_Full_SbS_1080_2398p = 4617,
    eZVF_3D_Full_SbS_1080_24p = 4618,
    eZVF_3D_Full_SbS_1080_25p = 4619,
    eZVF_3D_Full_SbS_1080_2997p = 4620,
    eZVF_3D_Full_SbS_1080_30p = 4621,
    eZVF_3D_Full_SbS_1080_50i = 4622,
    eZVF_3D_Full_SbS_1080_5994i = 4623,
    eZVF_3D_Full_SbS_1080_60i = 4624,
    eZVF_3D_Full_TnB_720_50p = 5126,
    eZVF_3D_Full_TnB_720_5994p = 5127,
    eZVF_3D_Full_TnB_720_60p = 5128,
    eZVF_3D_Full_TnB_1080_2398p = 5129,
    eZVF_3D_Full_TnB_1080_24p = 5130,
    eZVF_3D_Full_TnB_1080_25p = 5131,
    eZVF_3D_Full_TnB_1080_2997p = 5132,
    eZVF_3D_Full_TnB_1080_30p = 5133,
    eZVF_3D_Full_TnB_1080_50i = 5134,
    eZVF_3D_Full_TnB_1080_5994i = 5135,
    eZVF_3D_Full_TnB_1080_60i = 5136,
};

/// Description of a picture. 48 bytes; offset 28 to 31 is padding and travels as zero.
struct Z_VID_PROPS {
    eZVideoFormat eVideoFormat;    ///< standard format or `eZVF_Custom`
    eZFCC fccType;                 ///< pixel format
    int32_t nWidth;                ///< pixels
    /// Lines. For the RGB family the sign is the row order: negative means that the first row in memory is the top row
    /// of the picture, positive that it is the bottom row. Positive for all other formats.
    int32_t nHeight;
    int32_t nRowBytes;         ///< bytes from one row to the next (of the first plane for planar formats)
    eZInterlace eInterlace;    ///< field order
    int16_t nAspectX;          ///< display aspect, numerator; both zero means that none is set
    int16_t nAspectY;          ///< display aspect, denominator
    double dblRate;            ///< frames per second
    eZScaleType eScaleType;
    eZ3DFormat e3DFormat;
};

/// Description of sound. 16 bytes.
struct Z_AUD_PROPS {
    int32_t nChannels;
    int32_t nSamplesPerSec;
    int32_t nBitsPerSample;     ///< negative marks floating-point samples; the magnitude is the width in bits
    int32_t nTrackSplitBits;    ///< the host's; copied along and not interpreted
};

/// Audio levels, one value per channel. 1036 bytes.
struct Z_AUDIO_LOUDNESS {
    float arrVUMeter[32];
    float arrVUPeaks[32];
    float arrRMS[32];
    float arrEBUMode_M[32];
    float arrEBUMode_S[32];
    float arrEBUMode_I[32];
    float arrPeaks_QPPM[32];
    float arrPeaks_TPL[32];
    int32_t nValidChannels;
    int32_t nValidTracks;
    int32_t nTracksSplitBit;
};

/// Loudness block of a frame. 2076 bytes.
struct Z_ANC_DATA {
    eZANCFlags eFlags;
    Z_AUDIO_LOUDNESS audOriginal;    ///< levels of the audio as it arrived
    Z_AUDIO_LOUDNESS audOutput;      ///< levels after gain and mapping
};

/// The complete description of a frame's media. 2144 bytes.
struct Z_AV_PROPS {
    Z_VID_PROPS vidProps;
    Z_AUD_PROPS audProps;
    Z_ANC_DATA ancData;
    int32_t bLocked;    ///< the host's; copied along and not interpreted
};

/// Time code of a frame. 24 bytes.
struct Z_TIMECODE {
    int32_t nHours;
    int32_t nMinutes;
    int32_t nSeconds;
    int32_t nFrames;
    eZTimecodeFlags eTCFlags;
    int32_t nExtraCounter;
};

/// Time of a frame, in units of 100 nanoseconds. 48 bytes; offset 44 is padding.
struct Z_TIME {
    int64_t rtStartTime;
    int64_t rtEndTime;
    Z_TIMECODE tcFrame;
    eZFrameFlags eFFlags;
};

static_assert(sizeof(Z_VID_PROPS) == 48 && offsetof(Z_VID_PROPS, nAspectX) == 24 && offsetof(Z_VID_PROPS, dblRate) == 32 &&
              offsetof(Z_VID_PROPS, e3DFormat) == 44);
static_assert(sizeof(Z_AUD_PROPS) == 16);
static_assert(sizeof(Z_AUDIO_LOUDNESS) == 1036 && offsetof(Z_AUDIO_LOUDNESS, arrPeaks_TPL) == 896 &&
              offsetof(Z_AUDIO_LOUDNESS, nValidChannels) == 1024);
static_assert(sizeof(Z_ANC_DATA) == 2076 && offsetof(Z_ANC_DATA, audOriginal) == 4 && offsetof(Z_ANC_DATA, audOutput) == 1040);
static_assert(sizeof(Z_AV_PROPS) == 2144 && offsetof(Z_AV_PROPS, audProps) == 48 && offsetof(Z_AV_PROPS, ancData) == 64 &&
              offsetof(Z_AV_PROPS, bLocked) == 2140);
static_assert(sizeof(Z_TIMECODE) == 24);
static_assert(sizeof(Z_TIME) == 48 && offsetof(Z_TIME, tcFrame) == 16 && offsetof(Z_TIME, eFFlags) == 40);
static_assert(sizeof(tagRECT) == 16);
