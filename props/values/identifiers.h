// A 128-bit identifier as text.
#pragma once

#include "platform/text.h"

namespace zck {

/// "{6B0F1D32-8E54-4C1B-9A3E-5107D2A48803}": upper case, in braces.
Text IdentifierToText(const GUID &id);
/// Takes the pairs of adjacent hexadecimal digits and skips everything else, a lone digit too. All zero unless there are
/// exactly 16 pairs.
GUID IdentifierFromText(TextView text) noexcept;

}    // namespace zck
