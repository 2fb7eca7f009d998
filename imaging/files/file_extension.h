// The extension of a file's name.
#pragma once

#include "platform/text.h"

namespace zck {

/// From the last dot of what follows the last slash, backslash or colon, the dot included; empty without one, and "!ERR" when
/// there is no name (not even an empty one).
TextView FileExtension(TextView name) noexcept;

}    // namespace zck
