// The texts by which standard formats, field orders, scale types and stereo layouts are shown and chosen.
//
// A value without a text gives an empty view. All views are of literals and live for ever.
#pragma once

#include <cstddef>

#include "platform/text.h"
#include "zchromakey/media_types.h"

namespace zck {

/// Short text of a format, by its base number in the low byte: "HD1080-50i". Stereo flags do not show in it.
TextView VideoFormatShortText(eZVideoFormat format) noexcept;
/// Long text of a format, by its base number: "eZVF_HD1080_50i". Not always the enumerator: NTSC at film rate is
/// "eZVF_NTSC_2398p".
TextView VideoFormatLongText(eZVideoFormat format) noexcept;

/// The word by which options name a field order: "top".
TextView InterlaceKeyword(eZInterlace interlace) noexcept;
/// The word by which lists show a field order: "TopFirst".
TextView InterlaceDisplayName(eZInterlace interlace) noexcept;

/// The word by which options name a way to fit a picture: "letter-box".
TextView ScaleTypeName(eZScaleType type) noexcept;

/// A stereo layout and its text: "3D-HSbS" has half the width for each eye, "3D-SbS" the full width.
struct StereoName {
    eZ3DFormat e3DFormat;
    TextView name;
};
constexpr std::size_t kStereoNames = 7;
/// All layouts that have a text, in the order in which options list them.
const StereoName *StereoNameTable() noexcept;
/// Text of a layout; empty for a set of flags that is none of them.
TextView StereoNameFind(eZ3DFormat layout) noexcept;

}    // namespace zck
