// `zkey detect` and `zkey edit`: a key built on one picture by the library's key object.
#pragma once

#include <string>
#include <vector>

#include "hosts/zkey/failure.h"

namespace zkey {

/// The arguments after "edit". Throws `Failure`.
ExitStatus RunEditCommand(const std::vector<std::string> &arguments);
/// The arguments after "detect". Throws `Failure`.
ExitStatus RunDetectCommand(const std::vector<std::string> &arguments);

}    // namespace zkey
