#include "imaging/convert/conversion_plan.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "frames/media/pixel_format.h"
#include "frames/media/video_props.h"
#include "imaging/colour/color_convert.h"
#include "platform/status.h"

namespace zck {
namespace {

int64_t LinesOf(const Z_VID_PROPS &props) { return std::abs(static_cast<int64_t>(props.nHeight)); }

/// Outside the RGB family a height has no sign.
int32_t HeightFor(eZFCC fcc, int32_t height) {
    return !IsRgbFormat(fcc) && height < 0 && height > INT32_MIN ? -height : height;
}

void TakeMissing(Z_VID_PROPS &target, const Z_VID_PROPS &source) {
    if (target.fccType == eZFCC_Default) target.fccType = source.fccType;
    if (target.fccType == eZFCC_Default) target.fccType = eZFCC_UYVY;
    if (target.eScaleType == eZST_Default) target.eScaleType = source.eScaleType;
    if (target.eInterlace == eZI_Default) target.eInterlace = source.eInterlace;
    if (target.nWidth == 0 || target.nHeight == 0) {
        target.nWidth = source.nWidth;
        target.nHeight = HeightFor(target.fccType, source.nHeight);
        target.nRowBytes = RowBytes(target.fccType, target.nWidth);
    }
    if (target.nAspectX == 0 || target.nAspectY == 0) {
        target.nAspectX = source.nAspectX;
        target.nAspectY = source.nAspectY;
    }
    if (!(target.dblRate > 0)) target.dblRate = source.dblRate;
    if (target.nRowBytes == 0) target.nRowBytes = RowBytes(target.fccType, target.nWidth);
}

bool AspectDiffers(const Z_VID_PROPS &a, const Z_VID_PROPS &b) {
    if (a.nAspectX == 0 || a.nAspectY == 0 || b.nAspectX == 0 || b.nAspectY == 0) return false;
    return a.nAspectX != b.nAspectX || a.nAspectY != b.nAspectY;
}

}    // namespace

HRESULT TargetComplete(const Z_VID_PROPS *wanted, const Z_VID_PROPS &source, Z_VID_PROPS &target) {
    if (wanted == nullptr) return E_POINTER;
    Z_VID_PROPS props = *wanted;
    if (props.eVideoFormat != eZVF_Custom) VideoPropsUpdate(&props, false);
    if (!VideoPropsValid(&props)) {
        TakeMissing(props, source);
        VideoPropsUpdate(&props, false);
        if (!VideoPropsValid(&props)) return kVfwEInvalidMediaType;
    }
    if (IsPlanarFormat(props.fccType)) {
        if (props.nRowBytes < props.nWidth) return kVfwEInvalidMediaType;
    } else {
        props.nRowBytes = std::max(props.nRowBytes, RowBytes(props.fccType, props.nWidth));
    }
    if (FrameBufferSize(&props) <= 0) return kVfwEInvalidMediaType;
    target = props;
    return S_OK;
}

eZFCC FormatFamily(eZFCC fcc) { return fcc == eZFCC_HDYC ? eZFCC_UYVY : fcc == eZFCC_RGB32 ? eZFCC_ARGB32 : fcc; }

bool SamePicture(const Z_VID_PROPS &a, const Z_VID_PROPS &b) {
    if (FormatFamily(a.fccType) != FormatFamily(b.fccType) || a.nWidth != b.nWidth || a.nHeight != b.nHeight ||
        a.eInterlace != b.eInterlace || a.nRowBytes != b.nRowBytes || AspectDiffers(a, b)) {
        return false;
    }
    if (a.eVideoFormat == b.eVideoFormat && a.eVideoFormat != eZVF_Custom) return true;
    return std::abs(a.dblRate - b.dblRate) < 0.01 && a.e3DFormat == b.e3DFormat && a.eScaleType == b.eScaleType;
}

FieldMode FieldModeOf(int32_t field, const Z_VID_PROPS &source, const Z_VID_PROPS &target) {
    const bool firstOnly = field < 0 && FieldOrderSign(&source) != 0 && FieldOrderSign(&target) == 0;
    return firstOnly ? FieldMode::kFirst : FieldMode::kBoth;
}

// Fields of whole groups of four pixels and two rows have no remainder anywhere.
bool WritesWholeTarget(const Z_VID_PROPS &source, const Z_VID_PROPS &target) {
    const bool plain = target.fccType == eZFCC_YUY2 || PlainFormat(target.fccType) == eZFCC_UYVY ||
                       PlainFormat(target.fccType) == eZFCC_ARGB32;
    const bool grouped = target.nWidth % 4 == 0 && LinesOf(target) % 4 == 0 && source.nWidth >= 4 && LinesOf(source) >= 4;
    const bool twoEyes = ((source.e3DFormat | target.e3DFormat) & (eZ3D_SideBySide | eZ3D_TopAndBottom)) != 0;
    const int32_t row = RowBytes(target.fccType, target.nWidth);
    return plain && grouped && !twoEyes && ColorConvertServes(source.fccType, target.fccType) && target.nRowBytes == row &&
           FrameBufferSize(&target) == LinesOf(target) * row;
}

double PixelAspect(const Z_VID_PROPS &props) {
    return props.nWidth == 0 ? 0.0 : AspectRatio(&props) * static_cast<double>(LinesOf(props)) / props.nWidth;
}

eZScaleType FittingOf(const Z_VID_PROPS &source, const Z_VID_PROPS &target, bool wholePicture) {
    const eZScaleType own = source.eScaleType != eZST_Default ? source.eScaleType : target.eScaleType;
    if (own != eZST_Default) return own;
    const double widths = std::abs(static_cast<double>(source.nWidth) - target.nWidth);
    const bool equalSize = source.nWidth == target.nWidth && LinesOf(source) == LinesOf(target);
    const bool sameScan = (FieldOrderSign(&source) != 0) == (FieldOrderSign(&target) != 0);
    if (wholePicture && source.nWidth >= 1100 && target.nWidth >= 1280 && !equalSize && widths / target.nWidth <= 0.1 &&
        std::abs(PixelAspect(source) - PixelAspect(target)) < 0.01 && sameScan) {
        return eZST_NoScale;
    }
    const bool narrower = AspectRatio(&source) < AspectRatio(&target);
    return narrower && LinesOf(source) <= LinesOf(target) + 60 ? eZST_Crop : eZST_LetterBox;
}

}    // namespace zck
