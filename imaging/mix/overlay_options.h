// Options of an overlay: name=value pairs in one text.
#pragma once

#include <cstdint>
#include <optional>

#include "platform/text.h"

namespace zck {

/// Bits of the flags of `ZFOverlay`. With both of the first two it is the first field, and no sound.
constexpr int32_t kOverlayFirstField = 0x1000;
constexpr int32_t kOverlaySecondField = 0x2000;

/// What the text says. A value that is no number counts as missing.
struct OverlayOptions {
    bool audio = true;                  ///< "audio"; without it false for the second field
    std::optional<double> audioGain;    ///< "audio_gain", decibels
    bool symmetricGain = true;          ///< "symmetric_gain"
    bool async = false;                 ///< "async"
    bool video = true;                  ///< "video"
};

/// Throws `std::bad_alloc`.
OverlayOptions OverlayOptionsFromText(TextView text, int32_t flags);

}    // namespace zck
