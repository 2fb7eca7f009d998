// Runs the program as a user does, through the shell of the system.
#pragma once

#include <string>

#include "tests/hosts/zkey/scratch.h"

struct Outcome {
    int status = -1;
    std::string out;      ///< what it wrote to standard output
    std::string error;    ///< and to standard error
};

/// `arguments` are words without spaces in their paths; they may redirect standard input.
Outcome RunProgram(const Scratch &scratch, const std::string &arguments);
