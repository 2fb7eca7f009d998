// What differs between the systems that the program runs on. One implementation per system, chosen by the build.
#pragma once

#include <cstdio>
#include <string>
#include <vector>

namespace zkey {

/// Enters the object model for threads without a message queue and makes the standard streams binary.
void SystemStart();
/// The command line without the program's name, as UTF-8.
std::vector<std::string> Arguments(int argc, char **argv);
/// `fopen` for a UTF-8 path.
std::FILE *OpenFile(const std::string &path, const char *mode);
/// True when both paths name one existing file.
bool SameFile(const std::string &a, const std::string &b);
/// True when standard error is a terminal that a person watches.
bool ErrorIsTerminal();
/// From here on the first interrupt (Ctrl-C) only sets the flag that `Interrupted` reads; a second one ends the program.
/// A reader of a pipe that is gone gives a write error instead of the end of the program.
void WatchInterrupt();
bool Interrupted();

}    // namespace zkey
