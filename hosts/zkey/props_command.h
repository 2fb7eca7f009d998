// zkey props: the keyer's properties, what they mean, and which of them are kept for the next time.
#pragma once

#include <string>
#include <vector>

#include "hosts/zkey/failure.h"

namespace zkey {

/// The arguments after "props". Writes to standard output.
ExitStatus RunPropsCommand(const std::vector<std::string> &arguments);

}    // namespace zkey
