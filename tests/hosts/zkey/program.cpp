#include "tests/hosts/zkey/program.h"

#include <cstdlib>

Outcome RunProgram(const Scratch &scratch, const std::string &arguments) {
    const std::filesystem::path program = std::filesystem::absolute(ZKEY_PROGRAM).make_preferred();
    const std::string command =
        program.string() + " " + arguments + " >" + scratch.Path("stdout") + " 2>" + scratch.Path("stderr");
    // -1 is no status of the program: the shell did not start, as happens on a machine that is short of processes.
    int raw = -1;
    for (int i = 0; i < 3 && raw == -1; ++i) raw = std::system(command.c_str());
    Outcome outcome;
    // One system shifts the exit status by eight bits, the other one does not.
    outcome.status = raw > 255 ? raw >> 8 : raw;
    outcome.out = scratch.Text("stdout");
    outcome.error = scratch.Text("stderr");
    return outcome;
}
