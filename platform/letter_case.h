// Case of letters of all scripts, by the system's rule.
#pragma once

#include "platform/text.h"

namespace zck {

/// Each unit in lower case, one for one; units without a lower case stay. The user's language plays no part.
void LowerInPlace(Text &text) noexcept;

}    // namespace zck
