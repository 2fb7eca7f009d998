#include "frames/media/video_format.h"

#include <cmath>
#include <cstdlib>
#include <initializer_list>

#include "frames/media/pixel_format.h"
#include "frames/media/video_props.h"

namespace zck {
namespace {

// As decimals: 30000.0 / 1001 is one unit below the first of them.
constexpr double kRate2398 = 23.976023976023978;
constexpr double kRate2997 = 29.970029970029973;
constexpr double kRate5994 = 59.940059940059946;

constexpr eZInterlace kUpper = eZI_Field1First;
constexpr eZInterlace kLower = eZI_Field2First;
constexpr eZInterlace kFrame = eZI_Progressive;

constexpr VideoFormatRow kTable[] = {
    {0, 0, 0, eZI_Default, 0, 0},
    {720, 486, kRate2997, kLower, 4, 3},
    {720, 486, kRate2398, kFrame, 4, 3},
    {720, 486, kRate2997, kLower, 16, 9},
    {720, 576, 25, kUpper, 4, 3},
    {720, 576, 25, kUpper, 16, 9},
    {1280, 720, 50, kFrame, 16, 9},
    {1280, 720, kRate5994, kFrame, 16, 9},
    {1280, 720, 60, kFrame, 16, 9},
    {1920, 1080, kRate2398, kFrame, 16, 9},
    {1920, 1080, 24, kFrame, 16, 9},
    {1920, 1080, 25, kFrame, 16, 9},
    {1920, 1080, kRate2997, kFrame, 16, 9},
    {1920, 1080, 30, kFrame, 16, 9},
    {1920, 1080, 25, kUpper, 16, 9},
    {1920, 1080, kRate2997, kUpper, 16, 9},
    {1920, 1080, 30, kUpper, 16, 9},
    {1920, 1080, 50, kFrame, 16, 9},
    {1920, 1080, kRate5994, kFrame, 16, 9},
    {1920, 1080, 60, kFrame, 16, 9},
    {2048, 1556, kRate2398, kFrame, 239, 100},
    {2048, 1556, 24, kFrame, 239, 100},
    {2048, 1556, 25, kFrame, 239, 100},
    {3840, 2160, 25, kUpper, 16, 9},
    {3840, 2160, kRate2997, kUpper, 16, 9},
    {3840, 2160, 30, kUpper, 16, 9},
    {3840, 2160, kRate2398, kFrame, 16, 9},
    {3840, 2160, 24, kFrame, 16, 9},
    {3840, 2160, 25, kFrame, 16, 9},
    {3840, 2160, kRate2997, kFrame, 16, 9},
    {3840, 2160, 30, kFrame, 16, 9},
    {4096, 2160, kRate2398, kFrame, 256, 135},
    {4096, 2160, 24, kFrame, 256, 135},
    {4096, 2160, 25, kFrame, 256, 135},
};
constexpr uint32_t kRows = sizeof(kTable) / sizeof(kTable[0]);
static_assert(kRows == eZVF_Disabled);

constexpr int32_t kStereo = eZ3D_SideBySide | eZ3D_TopAndBottom;

uint32_t Base(eZVideoFormat format) { return static_cast<uint32_t>(format) & 0xFF; }

eZVideoFormat With(eZVideoFormat format, int32_t flags) { return static_cast<eZVideoFormat>(format | flags); }

// The difference stays strictly below 0.01; a rate that is no number fits nothing.
bool RateFits(const Z_VID_PROPS &p, eZVideoFormat f) { return std::fabs(p.dblRate - VideoFormatRate(f)) < 0.01; }

bool Fits(const Z_VID_PROPS &p, eZVideoFormat f) {
    return RateFits(p, f) && (p.eInterlace == eZI_Default || p.eInterlace == VideoFormatScan(f));
}

eZVideoFormat FirstThat(bool (*fits)(const Z_VID_PROPS &, eZVideoFormat), const Z_VID_PROPS &p,
                        std::initializer_list<eZVideoFormat> formats) {
    for (eZVideoFormat f : formats)
        if (fits(p, f)) return f;
    return eZVF_Custom;
}

// Standard definition looks at the rate only, never at the interlace. The margin of NTSC bounds PAL as well; PAL's own,
// larger one has no effect.
eZVideoFormat FindStandardDefinition(const Z_VID_PROPS &p, int64_t h) {
    const int64_t margin = VideoFormatMargin(eZVF_NTSC);
    const bool wide = VideoAspect(&p) > 1.4;
    if (h >= 576 && h <= 576 + margin && RateFits(p, eZVF_PAL)) return wide ? eZVF_PAL_16x9 : eZVF_PAL;
    if (h < 480 || h > 480 + margin) return eZVF_Custom;
    if (RateFits(p, eZVF_NTSC)) return wide ? eZVF_NTSC_16x9 : eZVF_NTSC;
    return RateFits(p, eZVF_NTSC_2398) ? eZVF_NTSC_2398 : eZVF_Custom;
}

eZVideoFormat FindHigh(const Z_VID_PROPS &p, int64_t h) {
    eZVideoFormat f = eZVF_Custom;
    if (p.nWidth == 1280 && h >= 720 && h <= 720 + VideoFormatMargin(eZVF_HD720_50p)) {
        f = FirstThat(RateFits, p, {eZVF_HD720_5994p, eZVF_HD720_60p, eZVF_HD720_50p});
    } else if (p.nWidth == 1920 && h >= 1080 && h <= 1080 + VideoFormatMargin(eZVF_HD1080_50i)) {
        f = FirstThat(
            Fits, p,
            {eZVF_HD1080_2398p, eZVF_HD1080_24p, eZVF_HD1080_50i, eZVF_HD1080_25p, eZVF_HD1080_5994i, eZVF_HD1080_2997p,
             eZVF_HD1080_60i, eZVF_HD1080_30p, eZVF_HD1080_50p, eZVF_HD1080_5994p, eZVF_HD1080_60p});
    }
    return f != eZVF_Custom ? With(f, p.e3DFormat & kStereo) : f;
}

// Leaves the stereo layout out.
eZVideoFormat FindUltraHigh(const Z_VID_PROPS &p, int64_t h) {
    if (h < 2160) return eZVF_Custom;
    if (p.nWidth == 3840)
        return FirstThat(Fits, p,
                         {eZVF_4K_UHD_2398p, eZVF_4K_UHD_24p, eZVF_4K_UHD_25p, eZVF_4K_UHD_2997p, eZVF_4K_UHD_30p,
                          eZVF_4K_UHD_50i, eZVF_4K_UHD_5994i, eZVF_4K_UHD_60i});
    if (p.nWidth == 4096) return FirstThat(Fits, p, {eZVF_4K_DCI_2398p, eZVF_4K_DCI_24p, eZVF_4K_DCI_25p});
    return eZVF_Custom;
}

// Two pictures in one: the format of one of them, with the flag. A picture of 1440 lines or more is never tried for side
// by side. The row bytes go into the search of the half as they are. Side by side gets the half-width flag although the
// picture has full width: hosts know these values.
eZVideoFormat FindStacked(const Z_VID_PROPS &p) {
    Z_VID_PROPS half = p;
    half.e3DFormat = eZ3D_None;
    int32_t flags = 0;
    if (p.nHeight >= 1440) {
        half.nHeight /= 2;
        flags = eZ3D_FullTopAndBottom;
    } else if (p.nWidth >= 2560 && int64_t{p.nRowBytes} < 2 * int64_t{RowBytes(p.fccType, p.nWidth)}) {
        half.nWidth /= 2;
        flags = eZ3D_SideBySide;
    } else {
        return eZVF_Custom;
    }
    const eZVideoFormat f = VideoFormatFromProps(&half);
    return f != eZVF_Custom && (f & kStereo) == 0 ? With(f, flags) : eZVF_Custom;
}

}    // namespace

const VideoFormatRow &VideoFormatFind(eZVideoFormat format) {
    const uint32_t base = Base(format);
    return kTable[base < kRows ? base : 0];
}

double VideoFormatRate(eZVideoFormat format) { return VideoFormatFind(format).dblRate; }

eZInterlace VideoFormatScan(eZVideoFormat format) { return VideoFormatFind(format).eInterlace; }

int32_t VideoFormatMargin(eZVideoFormat format) {
    const uint32_t base = Base(format);
    if (base >= eZVF_NTSC && base <= eZVF_NTSC_16x9) return 39;
    if (base == eZVF_PAL || base == eZVF_PAL_16x9) return 49;
    if (base >= eZVF_HD720_50p && base <= eZVF_HD720_60p) return 30;
    return base >= eZVF_HD1080_2398p && base <= eZVF_HD1080_60p ? 45 : 0;
}

eZVideoFormat VideoFormatFromProps(const Z_VID_PROPS *props) {
    if (props == nullptr) return eZVF_Custom;
    const int64_t h = std::llabs(int64_t{props->nHeight});
    eZVideoFormat f = props->nWidth == 720 ? FindStandardDefinition(*props, h) : FindHigh(*props, h);
    if (f == eZVF_Custom) f = FindUltraHigh(*props, h);
    return f != eZVF_Custom ? f : FindStacked(*props);
}

}    // namespace zck
