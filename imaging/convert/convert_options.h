// Options of the converting operations: name=value pairs in one text.
#pragma once

#include <cstdint>
#include <optional>

#include "imaging/geometry/mirror_bits.h"
#include "platform/text.h"
#include "props/values/insets.h"
#include "zchromakey/media_types.h"

namespace zck {

enum class Turn : int32_t { kNone = -1, kRight = 0, kLeft = 1 };

/// What the text of the options says. Keywords go without regard to case; a value that is none of an option's keywords or no
/// number counts as missing, and so does all of a text that is too long to be read.
struct ConvertOptions {
    std::optional<eZScaleType> scaleType;    ///< "scale_type": "default", "none", "letter-box", "crop" or "no-scale"
    bool fitAspect = false;                  ///< "scale_type" is "fit_ar", which only resizing knows
    int32_t quality = 4;                     ///< "scaling_quality"; 0 or less is automatic
    int32_t field = -1;                      ///< "field"; 0 or more keeps the fields of the source
    int32_t mirror = 0;                      ///< "mirror": a `MirrorIndex`, by "horz", "vert" or "both"; 0 for none
    Turn turn = Turn::kNone;                 ///< "rotate": "right" or "left"
    Insets crop = {};                        ///< "crop": what is cut off at each edge, by the forms of `InsetsFromText`
};

/// Throws `std::bad_alloc`.
ConvertOptions ConvertOptionsFromText(TextView text);

}    // namespace zck
