// One run of `zkey key`: read, key, finish, write, each in its own time.
#pragma once

#include "hosts/zkey/failure.h"
#include "hosts/zkey/options.h"

namespace zkey {

/// Does the whole command. Throws `Failure`.
ExitStatus RunKeyCommand(const KeyCommand &command);

}    // namespace zkey
