// The wishes that travel with a scaling job.
#pragma once

#include <cstdint>

namespace zck {

/// Interpolation codes. All but the last two are plain interpolation with a fixed support in source pixels, also when the
/// picture shrinks; codes 5 and 7 blur what keeps its size, too.
enum ResizeCode : int32_t {
    kResizeNearest = 1,
    kResizeLinear = 2,
    kResizeCubic = 4,
    kResizeBSpline = 5,
    kResizeCatmullRom = 6,
    kResizeSoftCubic = 7,    ///< two-parameter cubic, B = 1/2, C = 3/10
    kResizeSuper = 8,        ///< mean over the area of each target pixel; no direction may grow
    kResizeLanczos = 16,     ///< three lobes
};

/// Field flags. The low two bits are the field mode.
enum ScaleFlags : int32_t {
    kScaleBothFields = 0,     ///< fields stay fields
    kScaleFirstField = 1,     ///< the even source rows make the whole picture
    kScaleSecondField = 2,    ///< the odd ones
    kScaleProgressive = 3,
    kScaleModeMask = 3,
    kScaleSwapFields = 16,    ///< target rows take the other field
    kScaleLineDown = 32,      ///< the picture moves one line down, to change the field order
    kScaleLineUp = 64,
};

struct ScaleOptions {
    int32_t nQuality;    ///< a `ResizeCode`
    double dblFactor;    ///< width of the vertical filter, see `Scale_Dyn`
    int32_t nFlags;      ///< `ScaleFlags`
    int32_t nSharpen;    ///< -50 (blur) to 50 (sharpen); 0 is none
};

}    // namespace zck
