#include "frames/media/video_props.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <limits>

#include "frames/media/pixel_format.h"
#include "frames/media/video_format.h"

namespace zck {
namespace {

constexpr int32_t kStereo = eZ3D_SideBySide | eZ3D_TopAndBottom;
constexpr int32_t kStereoFull = kStereo | eZ3D_FullFlag;

// Heights of this and more are high definition.
constexpr int64_t kHighDefinitionLines = 626;

int64_t Abs64(int32_t n) { return std::llabs(int64_t{n}); }

int32_t WithSign(int32_t magnitude, int32_t sign) { return sign < 0 ? -std::abs(magnitude) : std::abs(magnitude); }

eZFCC DefaultFcc(eZVideoFormat format) {
    const int32_t base = format & 0xFF;
    return base >= eZVF_NTSC && base <= eZVF_PAL_16x9 ? eZFCC_UYVY : eZFCC_HDYC;
}

// Lays the fields that the caller set over the format's record.
void MergeFields(Z_VID_PROPS &s, const Z_VID_PROPS &p) {
    if (p.nRowBytes != 0) s.nRowBytes = p.nRowBytes;
    if (p.nAspectX != 0 && p.nAspectY != 0) {
        s.nAspectX = p.nAspectX;
        s.nAspectY = p.nAspectY;
    }
    if (Abs64(p.nHeight) >= 2)
        s.nHeight = p.nHeight;
    else if (p.nHeight != 0)
        s.nHeight = WithSign(s.nHeight, p.nHeight);
    if (p.nWidth != 0) {
        s.nWidth = p.nWidth;
        if (p.nRowBytes == 0) s.nRowBytes = RowBytes(s.fccType, s.nWidth);
    }
    if (p.eInterlace != eZI_Default) s.eInterlace = p.eInterlace;
}

// The fields win: a record that still has the size and the interlace of its format keeps it (several formats could not
// be found again from their fields), any other gets the one that its fields amount to.
void MergeAndFind(Z_VID_PROPS &s, const Z_VID_PROPS &p) {
    const Z_VID_PROPS standard = s;
    MergeFields(s, p);
    const bool same =
        s.nWidth == standard.nWidth && Abs64(s.nHeight) == Abs64(standard.nHeight) && s.eInterlace == standard.eInterlace;
    if (!same) s.eVideoFormat = VideoFormatFromProps(&s);
}

// False when the format has no rate: the record stays as it is.
bool ApplyFormat(Z_VID_PROPS &p, bool bTrustFormat) {
    Z_VID_PROPS s = VideoPropsFromFormat(p.eVideoFormat, p.fccType);
    if (s.dblRate == 0) return false;
    s.eScaleType = p.eScaleType;
    if (!bTrustFormat)
        MergeAndFind(s, p);
    else if (p.nHeight != 0)
        s.nHeight = WithSign(s.nHeight, p.nHeight);
    // By bytes: the padding goes to the wire and must be zero.
    std::memcpy(&p, &s, sizeof(p));
    return true;
}

// Field 2 first becomes progressive too, also for NTSC.
void FillTrusted(Z_VID_PROPS &p) {
    if (p.nWidth < 1 || p.nHeight == 0) return;
    if (p.eInterlace != eZI_Progressive && p.eInterlace != eZI_Field1First) p.eInterlace = eZI_Progressive;
    if (p.fccType == eZFCC_Default) p.fccType = Abs64(p.nHeight) < kHighDefinitionLines ? eZFCC_UYVY : eZFCC_HDYC;
}

uint64_t FrameBytes(const Z_VID_PROPS &p) {
    const uint64_t plane = static_cast<uint64_t>(Abs64(p.nHeight)) * static_cast<uint64_t>(Abs64(p.nRowBytes));
    return IsPlanarFormat(p.fccType) ? plane * 3 / 2 : plane;
}

Z_VID_PROPS Completed(const Z_VID_PROPS &props) {
    Z_VID_PROPS copy = props;
    if (copy.nHeight == 0 || copy.nRowBytes == 0) VideoPropsUpdate(&copy, false);
    return copy;
}

// Bytes that the pixels of one row take, without padding; 0 for a format of unknown width.
int64_t PixelRowBytes(eZFCC fcc, int32_t width) {
    const FormatRow *row = FormatFind(fcc);
    return row != nullptr ? row->GroupRowBytes(std::max(width, 0)) : 0;
}

}    // namespace

Z_VID_PROPS VideoPropsFromFormat(eZVideoFormat format, eZFCC fcc) {
    Z_VID_PROPS s;
    std::memset(&s, 0, sizeof(s));
    const VideoFormatRow &row = VideoFormatFind(format);
    const int32_t flags = format & kStereoFull;
    s.eVideoFormat = format;
    s.fccType = fcc != eZFCC_Default ? fcc : DefaultFcc(format);
    s.nWidth = (flags & eZ3D_FullSideBySide) == eZ3D_FullSideBySide ? 2 * row.nWidth : row.nWidth;
    s.nHeight = (flags & eZ3D_FullTopAndBottom) == eZ3D_FullTopAndBottom ? 2 * row.nHeight : row.nHeight;
    if (IsRgbFormat(s.fccType)) s.nHeight = -s.nHeight;
    s.dblRate = row.dblRate;
    s.eInterlace = row.eInterlace;
    s.nAspectX = row.nAspectX;
    s.nAspectY = row.nAspectY;
    s.nRowBytes = RowBytes(s.fccType, s.nWidth);
    s.e3DFormat = static_cast<eZ3DFormat>(flags);
    return s;
}

eZVideoFormat VideoPropsUpdate(Z_VID_PROPS *props, bool bTrustFormat) {
    if (props == nullptr) return eZVF_Custom;
    Z_VID_PROPS &p = *props;
    if (p.eVideoFormat == eZVF_Disabled) return eZVF_Disabled;
    if ((p.nAspectX == 0) != (p.nAspectY == 0)) p.nAspectX = p.nAspectY = 0;
    if (p.eVideoFormat == eZVF_Custom)
        p.eVideoFormat = VideoFormatFromProps(&p);
    else if (!ApplyFormat(p, bTrustFormat))
        return eZVF_Custom;
    if ((p.eVideoFormat & kStereo) != 0) p.e3DFormat = static_cast<eZ3DFormat>(p.eVideoFormat & kStereoFull);
    if (bTrustFormat) FillTrusted(p);
    p.nRowBytes = std::max(p.nRowBytes, IsPackedFormat(p.fccType) ? RowBytes(p.fccType, p.nWidth) : 0);
    return p.eVideoFormat;
}

bool VideoPropsValid(const Z_VID_PROPS *props) {
    if (props == nullptr) return false;
    return props->eVideoFormat != eZVF_Custom ||
           (props->nWidth >= 1 && props->nHeight != 0 && props->nRowBytes != 0 && props->fccType != eZFCC_Default);
}

int32_t FrameBufferSize(const Z_VID_PROPS *props) {
    if (props == nullptr) return 0;
    const uint64_t bytes = FrameBytes(Completed(*props));
    return bytes <= std::numeric_limits<int32_t>::max() ? static_cast<int32_t>(bytes) : 0;
}

int64_t VideoBytesNeeded(const Z_VID_PROPS &props) {
    const Z_VID_PROPS p = Completed(props);
    if (p.nHeight == 0) return 0;
    if (IsPlanarFormat(p.fccType)) return static_cast<int64_t>(FrameBytes(p));
    int64_t step = Abs64(p.nRowBytes);
    if (IsPackedFormat(p.fccType)) step = std::max<int64_t>(step, RowBytes(p.fccType, p.nWidth));
    const int64_t last = PixelBits(p.fccType) != 0 ? PixelRowBytes(p.fccType, p.nWidth) : step;
    return (Abs64(p.nHeight) - 1) * step + last;
}

int32_t AlphaStride(const Z_VID_PROPS &props) { return RowPixels(props.fccType, props.nRowBytes); }

int32_t FieldOrderSign(const Z_VID_PROPS *props) {
    if (props == nullptr) return 0;
    const eZInterlace scan = props->eInterlace != eZI_Default ? props->eInterlace : VideoFormatScan(props->eVideoFormat);
    if (scan == eZI_Field1First) return 1;
    return scan == eZI_Field2First ? -1 : 0;
}

double VideoAspect(const Z_VID_PROPS *props) {
    if (props == nullptr) return 1.0;
    if (props->nAspectX > 0 && props->nAspectY > 0) return static_cast<double>(props->nAspectX) / props->nAspectY;
    if (props->nHeight >= 1) return static_cast<double>(props->nWidth) / props->nHeight;
    return 1.7777777777777777;
}

double AspectRatio(const Z_VID_PROPS *props) { return VideoAspect(props); }

}    // namespace zck
