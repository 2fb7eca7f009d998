#include "imaging/mix/overlay_options.h"

#include "imaging/convert/option_list.h"
#include "props/values/numbers.h"

namespace zck {
namespace {

bool Switch(OptionList &options, TextView name, bool otherwise) {
    const TextView value = options.Value(name);
    return value.empty() ? otherwise : BoolFromText(value);
}

}    // namespace

OverlayOptions OverlayOptionsFromText(TextView text, int32_t flags) {
    OverlayOptions result;
    result.audio = (flags & kOverlaySecondField) == 0;
    if (text.empty()) return result;
    OptionList options(text);
    result.audio = Switch(options, ZCK_TEXT("audio"), result.audio);
    result.symmetricGain = Switch(options, ZCK_TEXT("symmetric_gain"), result.symmetricGain);
    result.async = Switch(options, ZCK_TEXT("async"), result.async);
    result.video = Switch(options, ZCK_TEXT("video"), result.video);
    const TextView gain = options.Value(ZCK_TEXT("audio_gain"));
    size_t used = 0;
    const double number = RealFromText(gain, &used);
    if (used > 0 && used == gain.size()) result.audioGain = number;
    return result;
}

}    // namespace zck
