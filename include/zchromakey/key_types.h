// The public records of a key. `CHROMA_KEY_RAW` is what the engine computes from; `CK_ADJUST` is the operator's view of
// the same key. Plain data, passed by value; nothing here owns memory.
#pragma once

#include <cstddef>
#include <cstdint>

/// The space in which the distance from the key colour is measured.
enum eCK_Type : int32_t {
    eCKT_Alpha = 0,    ///< no keying: the frame passes with the alpha that it has
    eCKT_None = 1,     ///< no keying, and no result frame at all
    eCKT_RGB = 2,      ///< blue, green and red bytes
    eCKT_HLS = 3,      ///< hue, lightness and saturation
    eCKT_YUV = 4,      ///< luma and two colour differences
    eCKT_Auto = 5,     ///< an order to the key object to choose a type; the engine declines it
};

/// Selector of `IZKey::KeyAdjustSet` and `IZKey::KeyAdjustGet`.
enum eCK_Adjust : int32_t {
    eCKA_KeyType = 0,
    eCKA_Power = 1,
    eCKA_Transparent = 2,
    eCKA_Smooth = 3,
    eCKA_Colors = 4,
    eCKA_MinTransparent = 5,
    eCKA_MaxTransparent = 6,
    eCKA_ExcludePower = 7,
    eCKA_ExcludeTransparent = 8,
    eCKA_Power_R_H_Y = 9,
    eCKA_Power_G_L_U = 10,
    eCKA_Power_B_S_V = 11,
    eCKA_Colors_Range = 12,
    eCKA_Colors_Power = 13,
    eCKA_Colors_Chroma = 14,
    eCKA_Colors_Luma = 15,
    eCKA_Colors_Alpha = 16,
};

/// One colour key: a centre, a half-width around it, and what happens near it.
///
/// An entry is an alpha key when `nDelta` is not 0, `nAlpha` is not 255 and `nReverseKey` is 0 or below; a reverse key when
/// `nReverseKey` is above 0 instead; a spill key when `nDelta` is not 0, `nReverseKey` is 0 or below and one of
/// `nCancelPower`, `nCancelChroma`, `nCancelLuma`, `nCancelAlpha` is not 0, whatever `nAlpha` says.
struct SINGLE_KEY {
    /// Centre, three channel bytes, low byte first: `eCKT_RGB` 0x00BBGGRR; `eCKT_HLS` hue, lightness, saturation (hue 360
    /// degrees = 255); `eCKT_YUV` Y, U, V. The top byte is not used.
    int32_t nValue;
    int32_t nDelta;           ///< half-width in each channel, same byte order; 0 in the whole field switches the entry off
    int32_t nSmoothRange;     ///< added to each half-width to find where alpha reaches full opacity
    int32_t nAlpha;           ///< 0 to 255, lifts the floor of the key; 255 switches the entry off
    int32_t nCancelRange;     ///< added to each byte of `nDelta` for the spill mask
    int32_t nCancelPower;     ///< strength of the move of colour away from the key colour
    int32_t nCancelChroma;    ///< gain on chroma inside the spill mask
    int32_t nCancelLuma;      ///< gain on luma inside the spill mask
    int32_t nCancelAlpha;     ///< selects the key for anti-spill and enters no arithmetic
    int32_t nReverseKey;      ///< above 0: protects its colours from being keyed out
};

/// The key as the engine reads it.
struct CHROMA_KEY_RAW {
    eCK_Type eType;
    int32_t nKeysUsed;    ///< entries in use; readers clamp it to 16, and 0 or below means none
    SINGLE_KEY arrKeys[16];
    int32_t nMinTransparent;     ///< alpha below it becomes 0; acts only above 0
    int32_t nMaxTransparent;     ///< alpha above it becomes 255; acts only below 255, so that a zeroed record is a hard key
    int32_t nEdgesSmooth;        ///< rounds of edge smoothing; 0 for none
    int32_t bColorCancel;        ///< 0: anti-spill off. 2: the per-pixel path. Any other value: the block path
    int32_t nInterlacedVideo;    ///< above 0: the fields are treated apart; the media path replaces it by what the frame says
    int32_t nInverseKey;         ///< bit 0: invert the final alpha. Bit 1: leave the spill mask uninverted
};

/// Adjustment of the spill colour.
struct CK_COLOR_ADJUST {
    double dblCancelRange;
    double dblCancelPower;
    double dblCancelChroma;
    double dblCancelLuma;
    double dblCancelAlpha;
};

/// Adjustment of the half-widths, channel by channel.
struct CK_RANGE_ADJUST {
    double dblRangeR_H_Y;
    double dblRangeG_L_U;
    double dblRangeB_S_V;
};

/// The operator's view of a key: real numbers between about -1 and 1.
struct CK_ADJUST {
    double dblPower;
    double dblTransparent;
    double dblColors;
    double dblSmooth;
    double dblMinTransparent;
    double dblMaxTransparent;
    double dblExclPower;
    double dblExclTransparent;
    CK_COLOR_ADJUST colAdjust;
    CK_RANGE_ADJUST rangeAdjust;
};

static_assert(sizeof(SINGLE_KEY) == 40 && offsetof(SINGLE_KEY, nReverseKey) == 36);
static_assert(sizeof(CHROMA_KEY_RAW) == 672 && offsetof(CHROMA_KEY_RAW, arrKeys) == 8 &&
              offsetof(CHROMA_KEY_RAW, nMinTransparent) == 648 && offsetof(CHROMA_KEY_RAW, nInverseKey) == 668);
static_assert(sizeof(CK_ADJUST) == 128 && offsetof(CK_ADJUST, colAdjust) == 64 && offsetof(CK_ADJUST, rangeAdjust) == 104);
