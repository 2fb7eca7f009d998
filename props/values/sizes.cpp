#include "props/values/sizes.h"

#include "props/values/numbers.h"

namespace zck {

Text SizeToText(const SizeValue &size) {
    switch (size.unit) {
        case SizeUnit::Percent:
            return FixedToText(size.value, 3).append(ZCK_TEXT("%"));
        case SizeUnit::Pixels:
            return IntToText(RoundToInt(size.value)).append(ZCK_TEXT("px"));
        case SizeUnit::Points:
            return IntToText(RoundToInt(size.value)).append(ZCK_TEXT("pt"));
        default:
            return FixedToText(size.value, 2);
    }
}

SizeValue SizeFromText(TextView text) noexcept {
    size_t used = 0;
    SizeValue size;
    size.value = RealFromText(text, &used);
    const TextView suffix = text.substr(used);
    if (suffix.starts_with(ZCK_TEXT("%"))) size.unit = SizeUnit::Percent;
    if (suffix.starts_with(ZCK_TEXT("px"))) size.unit = SizeUnit::Pixels;
    if (suffix.starts_with(ZCK_TEXT("pt"))) size.unit = SizeUnit::Points;
    return size;
}

}    // namespace zck
