#include "frames/media/media_names.h"

#include <algorithm>
#include <iterator>

namespace zck {
namespace {

struct FormatTexts {
    TextView shortText;
    TextView longText;
};

// By base number. Hosts know these texts as they are: the long one of base 2 has a "p" that its enumerator lacks, and only
// the interlaced 4K formats write "5994" in the short one.
constexpr FormatTexts kFormats[] = {
    {ZCK_TEXT("Custom"), ZCK_TEXT("Custom")},
    {ZCK_TEXT("NTSC"), ZCK_TEXT("eZVF_NTSC")},
    {ZCK_TEXT("NTSC-23p"), ZCK_TEXT("eZVF_NTSC_2398p")},
    {ZCK_TEXT("NTSC-16x9"), ZCK_TEXT("eZVF_NTSC_16x9")},
    {ZCK_TEXT("PAL"), ZCK_TEXT("eZVF_PAL")},
    {ZCK_TEXT("PAL-16x9"), ZCK_TEXT("eZVF_PAL_16x9")},
    {ZCK_TEXT("HD720-50p"), ZCK_TEXT("eZVF_HD720_50p")},
    {ZCK_TEXT("HD720-59p"), ZCK_TEXT("eZVF_HD720_5994p")},
    {ZCK_TEXT("HD720-60p"), ZCK_TEXT("eZVF_HD720_60p")},
    {ZCK_TEXT("HD1080-23p"), ZCK_TEXT("eZVF_HD1080_2398p")},
    {ZCK_TEXT("HD1080-24p"), ZCK_TEXT("eZVF_HD1080_24p")},
    {ZCK_TEXT("HD1080-25p"), ZCK_TEXT("eZVF_HD1080_25p")},
    {ZCK_TEXT("HD1080-29p"), ZCK_TEXT("eZVF_HD1080_2997p")},
    {ZCK_TEXT("HD1080-30p"), ZCK_TEXT("eZVF_HD1080_30p")},
    {ZCK_TEXT("HD1080-50i"), ZCK_TEXT("eZVF_HD1080_50i")},
    {ZCK_TEXT("HD1080-59i"), ZCK_TEXT("eZVF_HD1080_5994i")},
    {ZCK_TEXT("HD1080-60i"), ZCK_TEXT("eZVF_HD1080_60i")},
    {ZCK_TEXT("HD1080-50p"), ZCK_TEXT("eZVF_HD1080_50p")},
    {ZCK_TEXT("HD1080-59p"), ZCK_TEXT("eZVF_HD1080_5994p")},
    {ZCK_TEXT("HD1080-60p"), ZCK_TEXT("eZVF_HD1080_60p")},
    {ZCK_TEXT("2K-23p"), ZCK_TEXT("eZVF_2K_2398p")},
    {ZCK_TEXT("2K-24p"), ZCK_TEXT("eZVF_2K_24p")},
    {ZCK_TEXT("2K-25p"), ZCK_TEXT("eZVF_2K_25p")},
    {ZCK_TEXT("4K-UHD-50i"), ZCK_TEXT("eZVF_4K_UHD_50i")},
    {ZCK_TEXT("4K-UHD-5994i"), ZCK_TEXT("eZVF_4K_UHD_5994i")},
    {ZCK_TEXT("4K-UHD-60i"), ZCK_TEXT("eZVF_4K_UHD_60i")},
    {ZCK_TEXT("4K-UHD-23p"), ZCK_TEXT("eZVF_4K_UHD_2398p")},
    {ZCK_TEXT("4K-UHD-24p"), ZCK_TEXT("eZVF_4K_UHD_24p")},
    {ZCK_TEXT("4K-UHD-25p"), ZCK_TEXT("eZVF_4K_UHD_25p")},
    {ZCK_TEXT("4K-UHD-29p"), ZCK_TEXT("eZVF_4K_UHD_2997p")},
    {ZCK_TEXT("4K-UHD-30p"), ZCK_TEXT("eZVF_4K_UHD_30p")},
    {ZCK_TEXT("4K-DCI-23p"), ZCK_TEXT("eZVF_4K_DCI_2398p")},
    {ZCK_TEXT("4K-DCI-24p"), ZCK_TEXT("eZVF_4K_DCI_24p")},
    {ZCK_TEXT("4K-DCI-25p"), ZCK_TEXT("eZVF_4K_DCI_25p")},
};
static_assert(std::size(kFormats) == eZVF_Disabled);

constexpr TextView kInterlaceKeywords[] = {ZCK_TEXT("auto"),        ZCK_TEXT("top"),     ZCK_TEXT("bottom"),
                                           ZCK_TEXT("progressive"), ZCK_TEXT("inverse"), ZCK_TEXT("field")};
// The last one is in lower case.
constexpr TextView kInterlaceDisplayNames[] = {ZCK_TEXT("Auto"),        ZCK_TEXT("TopFirst"), ZCK_TEXT("BottomFirst"),
                                               ZCK_TEXT("Progressive"), ZCK_TEXT("Inverse"),  ZCK_TEXT("field")};
constexpr TextView kScaleTypes[] = {ZCK_TEXT("default"), ZCK_TEXT("none"), ZCK_TEXT("letter-box"), ZCK_TEXT("crop"),
                                    ZCK_TEXT("no-scale")};

constexpr StereoName kStereo[kStereoNames] = {
    {eZ3D_SideBySide, ZCK_TEXT("3D-HSbS")},
    {eZ3D_TopAndBottom, ZCK_TEXT("3D-HTnB")},
    {eZ3D_FullSideBySide, ZCK_TEXT("3D-SbS")},
    {eZ3D_FullTopAndBottom, ZCK_TEXT("3D-TnB")},
    {eZ3D_Auto, ZCK_TEXT("3D-Auto")},
    {eZ3D_Tile, ZCK_TEXT("3D-Tile")},
    {eZ3D_None, ZCK_TEXT("none")},
};

template <std::size_t N>
TextView At(const TextView (&names)[N], int32_t value) noexcept {
    return value >= 0 && value < static_cast<int32_t>(N) ? names[value] : TextView();
}

FormatTexts TextsOf(eZVideoFormat format) noexcept {
    const std::size_t base = static_cast<uint32_t>(format) & 0xFF;
    return base < std::size(kFormats) ? kFormats[base] : FormatTexts();
}

}    // namespace

TextView VideoFormatShortText(eZVideoFormat format) noexcept { return TextsOf(format).shortText; }
TextView VideoFormatLongText(eZVideoFormat format) noexcept { return TextsOf(format).longText; }

TextView InterlaceKeyword(eZInterlace interlace) noexcept { return At(kInterlaceKeywords, interlace); }
TextView InterlaceDisplayName(eZInterlace interlace) noexcept { return At(kInterlaceDisplayNames, interlace); }

TextView ScaleTypeName(eZScaleType type) noexcept { return At(kScaleTypes, type); }

const StereoName *StereoNameTable() noexcept { return kStereo; }

TextView StereoNameFind(eZ3DFormat layout) noexcept {
    const auto *row =
        std::find_if(std::begin(kStereo), std::end(kStereo), [layout](const StereoName &r) { return r.e3DFormat == layout; });
    return row != std::end(kStereo) ? row->name : TextView();
}

}    // namespace zck
