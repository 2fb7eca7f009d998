// Records of the wide frame views.
#pragma once

#include "zchromakey/media_types.h"

/// All about a frame at one moment, filled under one lock. The two addresses are good while the frame lives, and only in
/// the process whose id stands in `nProcessId`; elsewhere `llSectionId` leads to the pixels.
struct ZF_INFO {
    int64_t llSectionId;    ///< the section that holds the pixels, 0 if there is none
    Z_TIME time;
    Z_AV_PROPS avProps;
    int32_t cbAudio;
    int32_t cbVideo;
    int64_t pbVideo;
    int64_t pbAudio;
    int32_t nAudioSamples;
    uint32_t nProcessId;
    int32_t nDataCount;      ///< entries of ancillary data
    int32_t nObjectCount;    ///< attached objects
    int32_t nTextCount;      ///< text attributes
};

static_assert(offsetof(ZF_INFO, time) == 8 && offsetof(ZF_INFO, avProps) == 56 && offsetof(ZF_INFO, cbAudio) == 2200 &&
              offsetof(ZF_INFO, cbVideo) == 2204 && offsetof(ZF_INFO, pbVideo) == 2208 && offsetof(ZF_INFO, pbAudio) == 2216 &&
              offsetof(ZF_INFO, nAudioSamples) == 2224 && offsetof(ZF_INFO, nProcessId) == 2228 &&
              offsetof(ZF_INFO, nDataCount) == 2232 && offsetof(ZF_INFO, nObjectCount) == 2236 &&
              offsetof(ZF_INFO, nTextCount) == 2240 && sizeof(ZF_INFO) == 2248);

/// A position on a picture. `eType` 0: pixels; 1: fractions of the picture; 2 or more: a text grid of that many rows,
/// where 2 stands for 14.
struct PrintRect {
    double left;
    double top;
    double width;
    double height;
    int32_t eType;
};
static_assert(sizeof(PrintRect) == 40 && offsetof(PrintRect, eType) == 32);
