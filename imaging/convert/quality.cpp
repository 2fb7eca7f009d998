#include "imaging/convert/quality.h"

#include <cmath>

#include "frames/media/video_props.h"

namespace zck {

int32_t QualityAuto(int32_t value, const Z_VID_PROPS &source, const Z_VID_PROPS &target) {
    if (value >= 1) return value;
    const bool sourceFields = FieldOrderSign(&source) != 0;
    const bool targetFields = FieldOrderSign(&target) != 0;
    const double sourceLines = std::abs(static_cast<double>(source.nHeight));
    const double targetLines = std::abs(static_cast<double>(target.nHeight));
    if (sourceFields && targetFields) {
        if (sourceLines > 1.8 * targetLines) return 18;
        if (targetLines < sourceLines) return 16;
    }
    if (!sourceFields || targetFields) return 8;
    return target.dblRate >= 1.7 * source.dblRate ? 16 : 8;
}

ScalingQuality QualityDecode(int32_t value) {
    ScalingQuality quality{value, value >= 10};
    if (quality.bHighQuality) quality.nCode -= 10;
    if (quality.nCode < 1) {
        quality.nCode = 1;
    } else if (quality.nCode == 3) {
        quality.nCode = 2;
    } else if (quality.nCode >= 9) {
        quality.nCode = 16;
    }
    return quality;
}

}    // namespace zck
