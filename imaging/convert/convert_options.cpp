#include "imaging/convert/convert_options.h"

#include <iterator>

#include "imaging/convert/option_list.h"

namespace zck {
namespace {

constexpr TextView kScaleTypes[] = {ZCK_TEXT("default"), ZCK_TEXT("none"), ZCK_TEXT("letter-box"), ZCK_TEXT("crop"),
                                    ZCK_TEXT("no-scale")};
static_assert(eZST_None == 1 && eZST_LetterBox == 2 && eZST_Crop == 3 && eZST_NoScale == 4);
constexpr TextView kMirrors[] = {{}, ZCK_TEXT("horz"), ZCK_TEXT("vert"), ZCK_TEXT("both")};
static_assert(kMirrorHorz == 1 && kMirrorVert == 2 && kMirrorHorzVert == 3);
constexpr TextView kTurns[] = {ZCK_TEXT("right"), ZCK_TEXT("left")};

}    // namespace

ConvertOptions ConvertOptionsFromText(TextView text) {
    ConvertOptions result;
    if (text.empty()) return result;
    OptionList options(text);
    constexpr TextView kScaleType = ZCK_TEXT("scale_type");
    if (const auto type = options.Keyword(kScaleType, kScaleTypes)) result.scaleType = static_cast<eZScaleType>(*type);
    result.fitAspect = EqualNoCase(options.Value(kScaleType), ZCK_TEXT("fit_ar"));
    result.quality = options.Number(ZCK_TEXT("scaling_quality"), result.quality);
    result.field = options.Number(ZCK_TEXT("field"), result.field);
    result.mirror = options.Keyword(ZCK_TEXT("mirror"), kMirrors).value_or(0);
    result.turn = static_cast<Turn>(options.Keyword(ZCK_TEXT("rotate"), kTurns).value_or(static_cast<int32_t>(Turn::kNone)));
    result.crop = InsetsFromText(options.Value(ZCK_TEXT("crop"))).value_or(Insets{});
    return result;
}

}    // namespace zck
