// The scaling quality: which number serves a pair of pictures, and what a number means.
#pragma once

#include <cstdint>

#include "zchromakey/media_types.h"

namespace zck {

/// Interpolation codes of the scalers: 1 nearest, 2 linear, 4 cubic, 5 B-spline, 6 Catmull-Rom, 7 the cubic between them,
/// 8 super-sampling, 16 Lanczos.
struct ScalingQuality {
    int32_t nCode;
    bool bHighQuality;    ///< asked for the engine that filters along the time axis of fields
};

/// The quality for a conversion: `value` when it is 1 or more, otherwise one that suits the scan, the lines and the rates.
int32_t QualityAuto(int32_t value, const Z_VID_PROPS &source, const Z_VID_PROPS &target);

/// 10 and more selects the high-quality engine, and the rest is the code: below 1 is 1, 3 is 2, 9 and more is 16.
ScalingQuality QualityDecode(int32_t value);

}    // namespace zck
