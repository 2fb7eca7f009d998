// What differs between the systems that the program runs on. One implementation per system, chosen by the build.
#pragma once

#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

namespace zkey {

/// Enters the object model for threads without a message queue, makes the standard streams binary, sees to it that no other
/// file gets the number of one that is closed, and takes as many open files as the system allows.
void SystemStart();
/// The command line without the program's name, as UTF-8.
std::vector<std::string> Arguments(int argc, char **argv);
/// `fopen` for a UTF-8 path.
std::FILE *OpenFile(const std::string &path, const char *mode);
/// A file or pipe that is read without buffering: a descriptor, or -1 with `errno` set. "-" is standard input.
int OpenForReading(const std::string &path);
/// How many bytes came, at least one unless the end is reached or an interrupt came (0) or the read failed (-1, `errno`).
int64_t ReadSome(int descriptor, void *to, std::size_t bytes);
void CloseReading(int descriptor);
/// Bytes of a file; 0 for a pipe.
int64_t FileSize(int descriptor);
/// Reading goes on at this byte of a file. False for a pipe.
bool SeekReading(int descriptor, int64_t offset);
/// True for a file proper: it can be opened again and read from any place.
bool IsFile(const std::string &path);
bool IsFolder(const std::string &path);
bool Exists(const std::string &path);
int64_t SizeOf(const std::string &path);
void RemoveFile(const std::string &path);
/// True when both paths name one existing file.
bool SameFile(const std::string &a, const std::string &b);
/// True when standard error is a terminal that a person watches.
bool ErrorIsTerminal();
/// True when a person types at standard input.
bool InputIsTerminal();
/// From here on the first interrupt (Ctrl-C) only sets the flag that `Interrupted` reads; a second one ends the program.
/// A reader of a pipe that is gone gives a write error instead of the end of the program.
void WatchInterrupt();
bool Interrupted();

}    // namespace zkey
