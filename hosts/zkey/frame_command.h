// zkey frame: one keyed frame as a file, and what is in such a file.
#pragma once

#include <string>
#include <vector>

#include "hosts/zkey/failure.h"

namespace zkey {

/// The arguments after "frame". Throws `Failure`.
ExitStatus RunFrameCommand(const std::vector<std::string> &arguments);

}    // namespace zkey
