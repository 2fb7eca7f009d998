// `zkey audio`: the levels of a file's sound, its gain and its channels, by the library's frames.
#pragma once

#include <string>
#include <vector>

#include "hosts/zkey/failure.h"

namespace zkey {

ExitStatus RunAudioCommand(const std::vector<std::string> &arguments);

}    // namespace zkey
