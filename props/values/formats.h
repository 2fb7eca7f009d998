// A pixel format as text.
#pragma once

#include "platform/text.h"
#include "zchromakey/media_types.h"

namespace zck {

/// The four characters when all are printable (0x20 to 0x7E), else the name of a known number, else "0x%X".
Text FormatToText(eZFCC format);
/// The formats that a user may name, without regard to case; 0 for all others. Not everything that `FormatToText` writes is
/// read back: "BI_RGB", "RGB565", "AYUV" and "0x1234" are 0.
eZFCC FormatFromText(TextView text) noexcept;

}    // namespace zck
