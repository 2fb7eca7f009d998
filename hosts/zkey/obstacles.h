// Why a file cannot be read or written, found out before the work begins.
#pragma once

#include <string>

namespace zkey {

/// Ends the program with a line when there is no such file, or nothing in it. Pipes and the names of sequences pass.
void RequireFile(const std::string &path);
/// Ends the program with a line that gives the system's reason when no file can be written there. Leaves no file behind.
void RequireWritable(const std::string &path);
/// True when both are one file, or one is a picture of the sequence that the other names.
bool WouldOverwrite(const std::string &written, const std::string &read);

}    // namespace zkey
